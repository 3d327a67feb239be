// configd: the settings-owner daemon. Serves the unit's settings store to
// the other processes over the local socket protocol until SIGINT or
// SIGTERM.
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

void PrintUsage(FILE* out) {
  fprintf(out,
          "Usage: configd [--port N]\n"
          "Owns the unit's settings and serves them on 127.0.0.1 and every other\n"
          "interface, port N (default %d), until SIGINT or SIGTERM.\n"
          "\n"
          "  --port N   the TCP port to listen on (0 lets the system choose)\n"
          "  --help     this text\n",
          kXConfigPort);
}

// A port number 0..65535 in decimal.
bool ParsePort(const char* text, int& port) {
  if (*text < '0' || *text > '9') return false;
  errno = 0;
  char* end = nullptr;
  unsigned long value = strtoul(text, &end, 10);
  if (errno != 0 || *end != '\0' || value > 65535) return false;
  port = static_cast<int>(value);
  return true;
}

int UsageError(const std::string& message) {
  fprintf(stderr, "configd: %s\n", message.c_str());
  fprintf(stderr, "Try 'configd --help'.\n");
  return kExitUsage;
}

}  // namespace

int main(int argc, char** argv) {
  int port = kXConfigPort;
  for (int i = 1; i < argc; ++i) {
    std::string arg = argv[i];
    if (arg == "--help" || arg == "-h") {
      PrintUsage(stdout);
      return 0;
    }
    const char* value = nullptr;
    if (arg == "--port") {
      if (i + 1 == argc) return UsageError("--port needs a value");
      value = argv[++i];
    } else if (arg.rfind("--port=", 0) == 0) {
      value = argv[i] + strlen("--port=");
    } else {
      return UsageError("unknown argument '" + arg + "'");
    }
    if (!ParsePort(value, port)) return UsageError("invalid port '" + std::string(value) + "'");
  }

  sigset_t stopSignals;
  sigemptyset(&stopSignals);
  sigaddset(&stopSignals, SIGINT);
  sigaddset(&stopSignals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);
  signal(SIGPIPE, SIG_IGN);  // a vanished client is reported by send, not by a signal

  ConfigDaemon daemon;
  if (!daemon.Start(port)) return 1;
  fprintf(stderr, "configd: serving %zu parameters\n", daemon.GetParamCount());
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
