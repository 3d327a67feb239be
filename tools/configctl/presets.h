// configctl's preset and factory-reset commands. Each sends its command to
// configd as a tokened request of its own (OwnerRequest), waits for
// configd's answer to that request, and exits non-zero with one clear line
// when configd reports a failure, an empty preset or no answer. export and
// import hand the preset image over through /tmp/zyn.
//
// Run on configctl's main thread after the catalogue is built.
#ifndef TOOLS_CONFIGCTL_PRESETS_H
#define TOOLS_CONFIGCTL_PRESETS_H

#include "configctl/arguments.h"

namespace configctl {

// preset save N [--name TEXT] | recall N | list | export N FILE | import N FILE
int RunPreset(const Arguments& arguments);
// factory-reset [--hard]; waits for configd's answer to the reset.
int RunFactoryReset(const Arguments& arguments);

}  // namespace configctl

#endif  // TOOLS_CONFIGCTL_PRESETS_H
