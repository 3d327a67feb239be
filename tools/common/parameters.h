// How the tools read a user's words against the catalogue: a parameter
// given by ID name, by name without the "eParamID_" prefix or by number, and
// a value given as text for that parameter's kind. The catalogue is this
// process's own (CreateDescriptors), the same one configd builds.
//
// Functions over the read-only registry; call them after the catalogue is
// built.
#ifndef TOOLS_COMMON_PARAMETERS_H
#define TOOLS_COMMON_PARAMETERS_H

#include <string>

class Config;
class ParamDescriptor;

namespace common {

// A parameter's value: text for string parameters, a number for the rest.
struct ParamValue {
  bool isString = false;
  unsigned int number = 0;
  std::string text;
};

// The descriptor named by `text`, or null: an exact ID name, the name
// without its prefix, an ID in decimal or 0x hex, then either name form
// ignoring case when that matches one parameter only.
ParamDescriptor* FindParameter(const std::string& text);

// An unsigned 32-bit number in decimal or with a 0x prefix in hex, the whole
// text and nothing else.
bool ParseNumber(const std::string& text, unsigned int& value);

// True for parameters whose values are strings.
bool IsStringParam(const ParamDescriptor* descriptor);

// The value `text` means for `descriptor`: its text for a string parameter,
// a number as it is shown (DisplayScale: "-3.0" or "-3.0 dB" for a level),
// or the store's own number with `raw` or for a parameter shown unscaled, or
// for an enumeration also a value name or short name (exact first, then
// ignoring case), checked by CheckValue. False with a one-line reason in
// `error`: nothing that fails here may be sent to the store.
bool ParseValue(ParamDescriptor* descriptor, const std::string& text, ParamValue& value,
                std::string& error, bool raw = false);

// True when `value` is one `descriptor` holds as it is: a string of valid
// UTF-8 without U+0000 within the length limits (in bytes),
// an enumeration's listed value. Numbers of other kinds pass (the store
// clamps them into range and says so). False with a one-line reason.
[[nodiscard]] bool CheckValue(const ParamDescriptor* descriptor, const ParamValue& value,
                              std::string& error);

// Reads the parameter's current value from `config`, as a string or a number
// by its descriptor. False when the store gave no value.
bool ReadValue(Config* config, const ParamDescriptor* descriptor, ParamValue& value);

// Builds the mapper's tables with their build diagnostics sent to standard
// error when the library's diagnostics switch is on, and dropped otherwise,
// so that standard output carries only the program's results. Call once,
// before any other thread starts.
void BuildMapperTables();

}  // namespace common

#endif  // TOOLS_COMMON_PARAMETERS_H
