// configctl's mapping commands. map prints, for each parameter, the one it
// stands for now: a generic parameter's specific under the selector values
// that configd holds, any other parameter itself. export-mapping writes the
// mapper's tables as JSON to a file; it needs no daemon.
//
// Run on configctl's main thread after the catalogue is built. The mapper's
// table build reports on standard output, which here carries only results:
// its lines go wherever the library's diagnostics go (see Console).
#ifndef TOOLS_CONFIGCTL_MAPPING_COMMANDS_H
#define TOOLS_CONFIGCTL_MAPPING_COMMANDS_H

#include "configctl/arguments.h"

namespace configctl {

int RunMap(const Arguments& arguments);
int RunExportMapping(const Arguments& arguments);

}  // namespace configctl

#endif  // TOOLS_CONFIGCTL_MAPPING_COMMANDS_H
