// What the tools (configctl, configweb) show, in text and in JSON: a parameter's value, a change
// seen by watch, the outcome of a set, a descriptor, and the rows of a list.
// Text output is meant for people; JSON output for scripts, with the same
// member names everywhere ("param" the ID name, "id" the number, "value" and,
// for enumerations, "value_name").
//
// Pure functions over descriptors of the read-only registry (they may pass
// null for a parameter this process does not know). No output happens here.
#ifndef TOOLS_COMMON_FORMATTING_H
#define TOOLS_COMMON_FORMATTING_H

#include <sys/time.h>

#include <string>

#include "common/parameters.h"

class ParamDescriptor;

namespace common {

// How the store treated a set.
enum class SetOutcome { kAccepted, kClamped, kAdjusted, kRefused };

// What the store did with a set, told from the values before and after it.
// Enumerations and strings are only taken or refused; numbers out of range
// are clamped; a number in range that the store changed was adjusted.
SetOutcome ClassifySet(const ParamDescriptor* descriptor, const ParamValue& requested,
                       const ParamValue& before, const ParamValue& after);

// The name of an outcome as JSON shows it: "accepted", "clamped"...
const char* OutcomeName(SetOutcome outcome);

// The ID name, or "0x" and eight hex digits when `descriptor` is null.
std::string ParamName(unsigned int id, const ParamDescriptor* descriptor);

// "1 (Lock All)" for an enumeration, "42" for a number, the text itself for
// a string.
std::string ValueText(const ParamDescriptor* descriptor, const ParamValue& value);

// "eParamID_X = <value>", and its JSON object.
std::string ValueLine(unsigned int id, const ParamDescriptor* descriptor, const ParamValue& value);
std::string ValueJson(unsigned int id, const ParamDescriptor* descriptor, const ParamValue& value);

// A change as watch prints it: the local time with milliseconds, then the
// value line; and its JSON object with "time" first.
std::string EventLine(const timeval& when, unsigned int id, const ParamDescriptor* descriptor,
                      const ParamValue& value);
std::string EventJson(const timeval& when, unsigned int id, const ParamDescriptor* descriptor,
                      const ParamValue& value);

// The result of a set: the value the store kept and, unless it is the one
// asked for, what happened to the request.
std::string SetLine(ParamDescriptor* descriptor, const ParamValue& requested,
                    const ParamValue& stored, SetOutcome outcome);
std::string SetJson(ParamDescriptor* descriptor, const ParamValue& requested,
                    const ParamValue& stored, SetOutcome outcome);

// Every field of the descriptor, one per line, or as one JSON object.
std::string DescribeText(ParamDescriptor* descriptor);
std::string DescribeJson(ParamDescriptor* descriptor);

// The menu number attribute, or "".
std::string MenuNumber(const ParamDescriptor* descriptor);

// A list row: the ID in hex, the ID name padded to `nameWidth`, the display
// name; with `withMenu` the menu number first. And its JSON object.
std::string ListRow(const ParamDescriptor* descriptor, size_t nameWidth, bool withMenu);
std::string ListJson(const ParamDescriptor* descriptor, bool withMenu);

}  // namespace common

#endif  // TOOLS_COMMON_FORMATTING_H
