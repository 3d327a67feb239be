// The conformance cases: one table row per case (name, protocol group, the
// transports it applies to, the scratch parameter it changes, if any, and
// the function that runs it against a Session). A case passes when its
// function returns true; it fails with the Session's detail lines, or
// skips with the Session's reason.
//
// Read-only data; any thread.
#ifndef TOOLS_CONFIGCTL_CONFORMANCE_CASES_H
#define TOOLS_CONFIGCTL_CONFORMANCE_CASES_H

#include <cstddef>

#include "configctl/conformance/session.h"

namespace configctl {
namespace conformance {

// What a case changes: nothing, or the integer or string scratch parameter
// (which the runner reads before and restores after the case).
enum class Scratch { kNone, kInteger, kString };

struct Case {
  const char* name;
  const char* group;
  unsigned transports;  // Transport bits
  Scratch scratch;
  bool (*run)(Session& session);
};

// The table and its length.
const Case* Cases(size_t& count);

}  // namespace conformance
}  // namespace configctl

#endif  // TOOLS_CONFIGCTL_CONFORMANCE_CASES_H
