// configctl's preset and factory-reset commands. Each sends its command to
// configd through the register parameters (setting the result parameter to
// "in progress" first, as the library's preset hand-over does), waits for
// configd's answer in the result parameter, and exits non-zero with one
// clear line when configd reports a failure, an empty preset or no answer.
// export and import go through PresetsParamVector::Load and ::Store.
//
// Run on configctl's main thread after the catalogue is built.
#ifndef TOOLS_CONFIGCTL_PRESETS_H
#define TOOLS_CONFIGCTL_PRESETS_H

#include "configctl/arguments.h"

namespace configctl {

// preset save N [--name TEXT] | recall N | list | export N FILE | import N FILE
int RunPreset(const Arguments& arguments);
// factory-reset [--hard]; waits for eParamID_FactorySettings to return to idle.
int RunFactoryReset(const Arguments& arguments);

}  // namespace configctl

#endif  // TOOLS_CONFIGCTL_PRESETS_H
