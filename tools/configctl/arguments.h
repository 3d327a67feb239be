// configctl's command line: the global options, the command and its
// operands, checked for form (counts, numbers, which option goes with which
// command) but not for meaning: whether a parameter or value exists is the
// commands' business.
//
// Plain values; no shared state.
#ifndef TOOLS_CONFIGCTL_ARGUMENTS_H
#define TOOLS_CONFIGCTL_ARGUMENTS_H

#include <string>
#include <vector>

namespace configctl {

// The exit statuses of configctl.
constexpr int kExitOk = 0;
constexpr int kExitFailure = 1;  // unreachable daemon, unknown name, refused value, unhealthy
constexpr int kExitUsage = 2;    // the command line itself is wrong

constexpr const char* kDefaultUri = "socket://127.0.0.1:43110";

enum class Command {
  kHelp,
  kGet,
  kSet,
  kWatch,
  kDescribe,
  kList,
  kMap,
  kExportMapping,
  kPreset,
  kFactoryReset,
  kHealth,
  kConformance,
  kVersion
};

struct Arguments {
  std::string uri = kDefaultUri;  // or CONFIGCTL_URI's
  bool json = false;
  bool verbose = false;  // keep the library's diagnostics on standard error
  bool mapped = false;   // get, set and watch through the unit's parameter mapper
  Command command = Command::kHelp;
  std::vector<std::string> operands;
  unsigned int count = 0;  // watch --count; 0: until interrupted
  bool hasGroup = false;   // list --group
  int group = 0;
  bool hasName = false;  // preset save --name
  std::string name;
  bool hard = false;   // factory-reset --hard
  bool force = false;  // set --force: also a value read-only to users
  bool raw = false;    // set --raw: VALUE is the store's number, not the shown one
  // conformance --scratch: the parameters it may change; --allow-remote.
  std::vector<std::string> scratch;
  bool allowRemote = false;
};

// Fills `out` from argv, the URI from the environment variable CONFIGCTL_URI
// unless --uri gives one. Options may stand anywhere; "--" ends them. False
// with a one-line reason in `error` when the command line is malformed.
bool ParseArguments(int argc, const char* const* argv, Arguments& out, std::string& error);

// The help text.
const char* UsageText();

}  // namespace configctl

#endif  // TOOLS_CONFIGCTL_ARGUMENTS_H
