// configctl's commands. Each runs one command line to its end, prints its
// results on standard output and its failures through Console, and returns
// the exit status. get, set and watch talk to configd; describe and list
// only read this process's catalogue and work without a daemon.
//
// Run on configctl's main thread after the catalogue is built.
#ifndef TOOLS_CONFIGCTL_COMMANDS_H
#define TOOLS_CONFIGCTL_COMMANDS_H

#include <string>
#include <vector>

#include "configctl/arguments.h"

class ParamDescriptor;

namespace configctl {

// Runs the command of `arguments` (not kHelp).
int RunCommand(const Arguments& arguments);

int RunGet(const Arguments& arguments);
int RunSet(const Arguments& arguments);
int RunDescribe(const Arguments& arguments);
int RunList(const Arguments& arguments);
// Prints configd's health line; 0 when it is "ok", 1 when it is not, when
// configd cannot be reached or publishes none.
int RunHealth(const Arguments& arguments);

// The descriptors of `words`, in order. False after reporting every word
// that names no parameter.
bool ResolveParameters(const std::vector<std::string>& words,
                       std::vector<ParamDescriptor*>& descriptors);

}  // namespace configctl

#endif  // TOOLS_CONFIGCTL_COMMANDS_H
