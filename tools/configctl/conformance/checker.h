// The conformance command: `configctl conformance URI` runs every case of
// the case table that applies to the URI's transport against the server
// there and prints a Report. It refuses a server outside 127.0.0.0/8 unless
// --allow-remote is given; cases that change a value run only on the
// scratch parameters named with --scratch, whose values it reads first and
// puts back after each such case.
//
// Runs on configctl's main thread after the catalogue is built.
#ifndef TOOLS_CONFIGCTL_CONFORMANCE_CHECKER_H
#define TOOLS_CONFIGCTL_CONFORMANCE_CHECKER_H

#include "configctl/arguments.h"

namespace configctl {
namespace conformance {

// 0 when no case failed, 1 when one did or the server could not be checked,
// 2 for a URI or scratch parameter that cannot be used.
int RunConformance(const Arguments& arguments);

}  // namespace conformance
}  // namespace configctl

#endif  // TOOLS_CONFIGCTL_CONFORMANCE_CHECKER_H
