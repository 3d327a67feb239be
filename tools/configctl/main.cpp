// configctl: the command-line client of configd. Reads, changes, watches
// and describes the unit's parameters; see UsageText for the commands.
#include <cstdio>
#include <string>

#include "config/descriptors/owner_params.h"
#include "config/descriptors/param_descriptors.h"
#include "configctl/arguments.h"
#include "configctl/commands.h"
#include "configctl/console.h"
#include "support/logger.h"

int main(int argc, char** argv) {
  configctl::Arguments arguments;
  std::string error;
  if (!configctl::ParseArguments(argc, argv, arguments, error)) {
    fprintf(stderr, "configctl: %s\nTry 'configctl --help'.\n", error.c_str());
    return configctl::kExitUsage;
  }
  if (arguments.command == configctl::Command::kHelp) {
    fputs(configctl::UsageText(), stdout);
    return configctl::kExitOk;
  }
  if (arguments.command == configctl::Command::kVersion) {
    printf("configctl %s\n", LIBCONFIG_VERSION);
    return configctl::kExitOk;
  }
  zyn::logging::SetVerbose(arguments.verbose);
  configctl::Console::Init(arguments.verbose);
  // The catalogue gives the names and descriptors; like the logger's watch
  // list, it is built before any thread starts.
  CreateDescriptors();
  AddOwnerDescriptors();
  zyn::logging::Logger::GetLogger();
  int status = configctl::RunCommand(arguments);
  fflush(stdout);
  return status;
}
