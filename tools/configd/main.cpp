// configd: the settings-owner daemon. Keeps the unit's settings across
// restarts and power cuts, answers the preset and factory-reset commands,
// and serves the settings store to the other processes over the local
// socket protocol until SIGINT or SIGTERM.
//
// DESIGN: the stop signals are blocked in the main thread before any other
// thread exists, so every thread inherits the mask and the signals stay
// pending until the main thread takes them with sigwait. No handler runs
// asynchronously; the shutdown happens on the main thread in plain code.
#include <signal.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "config/access/xconfigmgr_records.h"
#include "configd/daemon.h"

namespace {

constexpr int kExitUsage = 2;

// The state folder when none is given: per user, so that a plain
// ./scripts/run works on a fresh machine; the installed service names
// /var/lib/configd.
std::string DefaultStateDir() {
  const char* home = getenv("HOME");
  if (home == nullptr || *home == '\0') return "/var/lib/configd";
  return std::string(home) + "/.local/state/configd";
}

void PrintUsage(FILE* out) {
  fprintf(out,
          "Usage: configd [--port N] [--state-dir DIR] [--flush-ms N]\n"
          "Owns the unit's settings and serves them on 127.0.0.1 and every other\n"
          "interface, port N (default %d), until SIGINT or SIGTERM.\n"
          "\n"
          "  --port N         the TCP port to listen on (0 lets the system choose)\n"
          "  --state-dir DIR  where the settings and presets are kept, created if\n"
          "                   missing (default $HOME/.local/state/configd, or\n"
          "                   /var/lib/configd without HOME)\n"
          "  --flush-ms N     the longest a changed setting waits to be written\n"
          "                   (1 to 60000, default 100)\n"
          "  --help           this text\n",
          kXConfigPort);
}

// A decimal number from `min` to `max`.
bool ParseNumber(const char* text, long min, long max, long& number) {
  if (*text < '0' || *text > '9') return false;
  errno = 0;
  char* end = nullptr;
  long value = strtol(text, &end, 10);
  if (errno != 0 || *end != '\0' || value < min || value > max) return false;
  number = value;
  return true;
}

bool SetPort(const char* text, DaemonOptions& options) {
  long port = 0;
  if (!ParseNumber(text, 0, 65535, port)) return false;
  options.port = static_cast<int>(port);
  return true;
}

bool SetStateDir(const char* text, DaemonOptions& options) {
  if (*text == '\0') return false;
  options.stateDir = text;
  return true;
}

bool SetFlushMs(const char* text, DaemonOptions& options) {
  return ParseNumber(text, 1, 60000, options.flushMs);
}

// The options that take a value: "--name VALUE" or "--name=VALUE".
struct Option {
  const char* name;
  bool (*set)(const char* value, DaemonOptions& options);
  const char* what;  // for the error message
};

constexpr Option kOptions[] = {
    {"--port", &SetPort, "port"},
    {"--state-dir", &SetStateDir, "state folder"},
    {"--flush-ms", &SetFlushMs, "flush interval"},
};

int UsageError(const std::string& message) {
  fprintf(stderr, "configd: %s\n", message.c_str());
  fprintf(stderr, "Try 'configd --help'.\n");
  return kExitUsage;
}

}  // namespace

int main(int argc, char** argv) {
  DaemonOptions options;
  options.port = kXConfigPort;
  options.stateDir = DefaultStateDir();
  for (int i = 1; i < argc; ++i) {
    std::string arg = argv[i];
    if (arg == "--help" || arg == "-h") {
      PrintUsage(stdout);
      return 0;
    }
    const Option* option = nullptr;
    const char* value = nullptr;
    for (const Option& candidate : kOptions) {
      size_t length = strlen(candidate.name);
      if (arg == candidate.name) {
        if (i + 1 == argc) return UsageError(arg + " needs a value");
        option = &candidate;
        value = argv[++i];
      } else if (arg.compare(0, length, candidate.name) == 0 && arg[length] == '=') {
        option = &candidate;
        value = argv[i] + length + 1;
      }
    }
    if (option == nullptr) return UsageError("unknown argument '" + arg + "'");
    if (!option->set(value, options))
      return UsageError(std::string("invalid ") + option->what + " '" + value + "'");
  }

  sigset_t stopSignals;
  sigemptyset(&stopSignals);
  sigaddset(&stopSignals, SIGINT);
  sigaddset(&stopSignals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);
  signal(SIGPIPE, SIG_IGN);  // a vanished client is reported by send, not by a signal

  ConfigDaemon daemon;
  if (!daemon.Start(options)) return 1;
  fprintf(stderr, "configd: serving %zu parameters, state in %s\n", daemon.GetParamCount(),
          options.stateDir.c_str());
  printf("configd: ready on port %d\n", daemon.GetPort());
  fflush(stdout);

  int received = 0;
  while (sigwait(&stopSignals, &received) != 0) {
  }
  fprintf(stderr, "configd: %s received, stopping\n", received == SIGINT ? "SIGINT" : "SIGTERM");
  if (!daemon.Stop()) return 1;
  fprintf(stderr, "configd: stopped\n");
  return 0;
}
