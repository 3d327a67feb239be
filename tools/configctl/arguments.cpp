#include "configctl/arguments.h"

#include <cctype>
#include <cerrno>
#include <cstdlib>

namespace configctl {

namespace {

struct CommandName {
  const char* name;
  Command command;
  size_t minOperands;
  size_t maxOperands;
  const char* form;
};

constexpr size_t kAny = static_cast<size_t>(-1);

constexpr CommandName kCommands[] = {
    {"get", Command::kGet, 1, kAny, "get PARAM..."},
    {"set", Command::kSet, 2, 2, "set [--force] [--raw] PARAM VALUE"},
    {"watch", Command::kWatch, 0, kAny, "watch [PARAM...] [--count N]"},
    {"describe", Command::kDescribe, 1, 1, "describe PARAM"},
    {"list", Command::kList, 0, 0, "list [--group N]"},
    {"map", Command::kMap, 1, kAny, "map PARAM..."},
    {"export-mapping", Command::kExportMapping, 1, 1, "export-mapping FILE"},
    {"preset", Command::kPreset, 1, 3, "preset save|recall|list|export|import ..."},
    {"factory-reset", Command::kFactoryReset, 0, 0, "factory-reset [--hard]"},
    {"health", Command::kHealth, 0, 0, "health"},
    {"conformance", Command::kConformance, 1, 1,
     "conformance URI [--scratch PARAM]... [--allow-remote]"},
    {"help", Command::kHelp, 0, 0, "help"},
};

// A decimal number up to `max`.
bool ParseCount(const std::string& text, unsigned long max, unsigned long& value) {
  if (text.empty() || text[0] < '0' || text[0] > '9') return false;
  errno = 0;
  char* end = nullptr;
  value = strtoul(text.c_str(), &end, 10);
  return errno == 0 && *end == '\0' && value <= max;
}

}  // namespace

const char* UsageText() {
  return "Usage: configctl [--uri URI] [--json] [--mapped] [--verbose] COMMAND\n"
         "Reads, changes and watches the unit's settings held by configd.\n"
         "\n"
         "Commands:\n"
         "  get PARAM...                  print each parameter's value\n"
         "  set [--force] [--raw] PARAM VALUE\n"
         "                                change a value and print what the store kept;\n"
         "                                values the unit reports (read-only) are\n"
         "                                refused unless --force (for integrators who\n"
         "                                simulate the hardware); --raw: VALUE is the\n"
         "                                store's number, not the value as shown\n"
         "  watch [PARAM...] [--count N]  print one line per change (all parameters\n"
         "                                without PARAM) until interrupted or N changes\n"
         "  describe PARAM                print the parameter's descriptor\n"
         "  list [--group N]              list the parameters, or one menu group in\n"
         "                                menu order\n"
         "  map PARAM...                  print the parameter each one stands for now\n"
         "                                under the selectors configd holds\n"
         "  export-mapping FILE           write the generic-to-specific mapping tables\n"
         "                                to FILE as JSON\n"
         "  preset save N [--name TEXT]   save the preset settings as preset N (1-40)\n"
         "  preset recall N               apply preset N (0: the factory values)\n"
         "  preset list                   each preset's number, name, saved or empty\n"
         "  preset export N FILE          write preset N's image to FILE\n"
         "  preset import N FILE          take FILE's image in as preset N\n"
         "  factory-reset [--hard]        return the settings to their factory values\n"
         "                                (--hard: also network identity, panel lock,\n"
         "                                system name, and clear every saved preset)\n"
         "  health                        print \"ok\" when configd has every accepted kept\n"
         "                                setting on disk, otherwise its error line\n"
         "  conformance URI               check that the server at URI (socket://, tcp://,\n"
         "                                udp://) speaks the unit's protocol: one line per\n"
         "                                case, exit 0 when none fails; --scratch PARAM\n"
         "                                (an integer and a string parameter) lets cases\n"
         "                                change and restore them; --allow-remote checks a\n"
         "                                server outside 127.0.0.0/8\n"
         "\n"
         "PARAM is an ID name (eParamID_FrontPanelLock), the name without its prefix\n"
         "(FrontPanelLock) or the ID as a number (decimal or 0x hex). VALUE is a number\n"
         "as shown (-3.0 or \"-3.0 dB\" for a level the store holds as tenths of a dB;\n"
         "decimal or 0x hex where the shown number is the stored one), an enumeration's\n"
         "value name, or a string parameter's text. Values are shown scaled, with their\n"
         "units; --json also gives the store's \"raw\" number and the scale.\n"
         "\n"
         "Options:\n"
         "  --uri URI   the daemon to talk to (default $CONFIGCTL_URI, else\n"
         "              socket://127.0.0.1:43110; also tcp://, udp:// and\n"
         "              multicast://HOST:PORT, caching=true; multicast is for watch)\n"
         "  --json      print JSON: one object per line for get, watch and map, one object or\n"
         "              array for set, describe and list\n"
         "  --mapped    get, set and watch generic parameters as the parameters they stand\n"
         "              for now (the proc amp of the current input, for example)\n"
         "  --verbose   show the library's diagnostics on standard error\n"
         "  --version   print the version and exit\n"
         "  --help      this text\n"
         "\n"
         "Exit status: 0 success, 1 failure (daemon unreachable, unknown parameter or\n"
         "value, value refused or read-only, configd not healthy), 2 malformed command\n"
         "line.\n";
}

bool ParseArguments(int argc, const char* const* argv, Arguments& out, std::string& error) {
  out = Arguments();
  const char* environment = getenv("CONFIGCTL_URI");
  if (environment != nullptr && environment[0] != '\0') out.uri = environment;
  std::vector<std::string> words;  // the command and its operands
  bool countGiven = false;
  bool optionsEnded = false;
  for (int i = 1; i < argc; ++i) {
    std::string arg = argv[i];
    // A negative number ("-3.0 dB" for a level) is a value, not an option.
    bool negativeNumber = arg.size() >= 2 && arg[0] == '-' &&
                          (isdigit(static_cast<unsigned char>(arg[1])) || arg[1] == '.');
    if (optionsEnded || arg.size() < 2 || arg[0] != '-' || negativeNumber) {
      words.push_back(arg);
      continue;
    }
    if (arg == "--") {
      optionsEnded = true;
      continue;
    }
    std::string name = arg;
    std::string value;
    bool hasValue = false;
    size_t equals = arg.find('=');
    if (arg.rfind("--", 0) == 0 && equals != std::string::npos) {
      name = arg.substr(0, equals);
      value = arg.substr(equals + 1);
      hasValue = true;
    }
    bool takesValue = name == "--uri" || name == "--count" || name == "--group" ||
                      name == "--name" || name == "--scratch";
    if (!takesValue && hasValue) {
      error = "option " + name + " takes no value";
      return false;
    }
    if (takesValue && !hasValue) {
      if (i + 1 == argc) {
        error = "option " + name + " needs a value";
        return false;
      }
      value = argv[++i];
    }
    if (name == "--help" || name == "-h") {
      out.command = Command::kHelp;
      return true;
    } else if (name == "--version") {
      out.command = Command::kVersion;
      return true;
    } else if (name == "--json") {
      out.json = true;
    } else if (name == "--mapped") {
      out.mapped = true;
    } else if (name == "--verbose" || name == "-v") {
      out.verbose = true;
    } else if (name == "--uri") {
      out.uri = value;
    } else if (name == "--count") {
      unsigned long count = 0;
      if (!ParseCount(value, 0xFFFFFFFFul, count) || count == 0) {
        error = "invalid count '" + value + "' (a number from 1)";
        return false;
      }
      out.count = static_cast<unsigned int>(count);
      countGiven = true;
    } else if (name == "--group") {
      unsigned long group = 0;
      if (!ParseCount(value, 0x7FFFFFFFul, group)) {
        error = "invalid group '" + value + "'";
        return false;
      }
      out.group = static_cast<int>(group);
      out.hasGroup = true;
    } else if (name == "--name") {
      out.name = value;
      out.hasName = true;
    } else if (name == "--hard") {
      out.hard = true;
    } else if (name == "--force") {
      out.force = true;
    } else if (name == "--raw") {
      out.raw = true;
    } else if (name == "--scratch") {
      out.scratch.push_back(value);
    } else if (name == "--allow-remote") {
      out.allowRemote = true;
    } else {
      error = "unknown option '" + arg + "'";
      return false;
    }
  }

  if (words.empty()) {
    error = "no command given";
    return false;
  }
  const CommandName* command = nullptr;
  for (const CommandName& candidate : kCommands) {
    if (words[0] == candidate.name) command = &candidate;
  }
  if (command == nullptr) {
    error = "unknown command '" + words[0] + "'";
    return false;
  }
  out.command = command->command;
  out.operands.assign(words.begin() + 1, words.end());
  size_t n = out.operands.size();
  if (n < command->minOperands || n > command->maxOperands) {
    error = std::string("usage: configctl ") + command->form;
    return false;
  }
  if (countGiven && out.command != Command::kWatch) {
    error = "--count belongs to watch";
    return false;
  }
  if (out.mapped && out.command != Command::kGet && out.command != Command::kSet &&
      out.command != Command::kWatch) {
    error = "--mapped belongs to get, set and watch";
    return false;
  }
  if (out.hasGroup && out.command != Command::kList) {
    error = "--group belongs to list";
    return false;
  }
  if (out.hasName && (out.command != Command::kPreset || out.operands[0] != "save")) {
    error = "--name belongs to preset save";
    return false;
  }
  if (out.force && out.command != Command::kSet) {
    error = "--force belongs to set";
    return false;
  }
  if (out.raw && out.command != Command::kSet) {
    error = "--raw belongs to set";
    return false;
  }
  if (out.hard && out.command != Command::kFactoryReset) {
    error = "--hard belongs to factory-reset";
    return false;
  }
  if ((!out.scratch.empty() || out.allowRemote) && out.command != Command::kConformance) {
    error = "--scratch and --allow-remote belong to conformance";
    return false;
  }
  bool known = false;
  for (const char* scheme : {"socket://", "tcp://", "udp://", "multicast://"})
    known = known || out.uri.rfind(scheme, 0) == 0;
  if (!known) {
    error = "unsupported URI '" + out.uri +
            "' (socket://, tcp://, udp:// or multicast://HOST:PORT expected)";
    return false;
  }
  return true;
}

}  // namespace configctl
