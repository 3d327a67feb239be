// configd: the settings-owner daemon. Keeps the unit's settings across
// restarts and power cuts, answers the preset and factory-reset commands,
// and serves the settings store to the other processes over the local
// socket protocol until SIGINT or SIGTERM.
//
// DESIGN: the stop signals are blocked in the main thread before any other
// thread exists, so every thread inherits the mask and the signals stay
// pending until the main thread takes them with sigwait. No handler runs
// asynchronously; the shutdown happens on the main thread in plain code.
#include <arpa/inet.h>
#include <signal.h>
#include <sys/resource.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "config/access/xconfigmgr_records.h"
#include "config/owner/daemon.h"
#include "support/logger.h"

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
          "Usage: configd [OPTION]...\n"
          "Owns the unit's settings and serves them to the unit's processes over the\n"
          "local socket protocol and to other machines over TCP and UDP, until SIGINT\n"
          "or SIGTERM. Every server listens on every interface unless an address is\n"
          "given; the UDP server's change events are multicast to 239.18.27.18 and\n"
          "leave through the loopback interface unless another is named.\n"
          "\n"
          "  --port N                  the local socket server's TCP port (default %d)\n"
          "  --address ADDR            the local socket server's listening address\n"
          "  --tcp-port N              the network TCP server's port (default %d)\n"
          "  --tcp-address ADDR        the network TCP server's listening address\n"
          "  --udp-port N              the network UDP server's port (default %d)\n"
          "  --udp-address ADDR        the network UDP server's listening address\n"
          "  --multicast-port N        the port change events are multicast to\n"
          "                            (default %d)\n"
          "  --multicast-interface ADDR  the interface they leave by (default\n"
          "                            127.0.0.1: they stay on this machine)\n"
          "  --max-connections N       live clients per TCP server; more are closed at\n"
          "                            once (default %d, 0: no limit)\n"
          "  --max-stores N            stores (config IDs) open at once, store 0\n"
          "                            included; a client asking for one more is\n"
          "                            refused (default %d, 0: no limit)\n"
          "  --read-timeout-ms N       the longest a stream client's request may take\n"
          "                            to arrive once it has begun; a client stalled\n"
          "                            mid-request is closed, an idle one never is\n"
          "                            (0 to 3600000, default %ld, 0: no limit)\n"
          "  --udp-store-idle-s N      a store opened over UDP that no request names\n"
          "                            for N seconds is given back (0 to 604800,\n"
          "                            default %ld, 0: never)\n"
          "  --state-dir DIR           where the settings and presets are kept, created\n"
          "                            if missing (default $HOME/.local/state/configd,\n"
          "                            or /var/lib/configd without HOME)\n"
          "  --flush-ms N              the longest a changed setting waits to be\n"
          "                            written (1 to 60000, default 100)\n"
          "  --verbose                 also print the library's diagnostics and\n"
          "                            start-up and stop progress on standard error\n"
          "  --version                 the version\n"
          "  --help                    this text\n"
          "Ports 0 let the system choose; each server prints the port it got.\n",
          kXConfigPort, DaemonOptions().tcpPort, DaemonOptions().udpPort,
          DaemonOptions().multicastPort, DaemonOptions().maxConnections, DaemonOptions().maxStores,
          DaemonOptions().readTimeoutMs, DaemonOptions().udpStoreIdleS);
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

// A port number into the field; `min` 0 lets the system choose.
template <int DaemonOptions::*field, long min = 0>
bool SetPortOf(const char* text, DaemonOptions& options) {
  long port = 0;
  if (!ParseNumber(text, min, 65535, port)) return false;
  options.*field = static_cast<int>(port);
  return true;
}

// A dotted IPv4 address into the field.
template <std::string DaemonOptions::*field>
bool SetAddressOf(const char* text, DaemonOptions& options) {
  in_addr parsed{};
  if (inet_pton(AF_INET, text, &parsed) != 1) return false;
  options.*field = text;
  return true;
}

// A count from 0 (no limit) to a million into the field.
template <int DaemonOptions::*field>
bool SetLimitOf(const char* text, DaemonOptions& options) {
  long count = 0;
  if (!ParseNumber(text, 0, 1000000, count)) return false;
  options.*field = static_cast<int>(count);
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

bool SetReadTimeoutMs(const char* text, DaemonOptions& options) {
  return ParseNumber(text, 0, 3600000, options.readTimeoutMs);
}

bool SetUdpStoreIdleS(const char* text, DaemonOptions& options) {
  return ParseNumber(text, 0, 7 * 86400, options.udpStoreIdleS);
}

// The options that take a value: "--name VALUE" or "--name=VALUE".
struct Option {
  const char* name;
  bool (*set)(const char* value, DaemonOptions& options);
  const char* what;  // for the error message
};

constexpr Option kOptions[] = {
    {"--port", &SetPortOf<&DaemonOptions::port>, "port"},
    {"--address", &SetAddressOf<&DaemonOptions::socketAddress>, "address"},
    {"--tcp-port", &SetPortOf<&DaemonOptions::tcpPort>, "tcp port"},
    {"--tcp-address", &SetAddressOf<&DaemonOptions::tcpAddress>, "tcp address"},
    {"--udp-port", &SetPortOf<&DaemonOptions::udpPort>, "udp port"},
    {"--udp-address", &SetAddressOf<&DaemonOptions::udpAddress>, "udp address"},
    {"--multicast-port", &SetPortOf<&DaemonOptions::multicastPort, 1>, "multicast port"},
    {"--multicast-interface", &SetAddressOf<&DaemonOptions::multicastInterface>,
     "multicast interface"},
    {"--max-connections", &SetLimitOf<&DaemonOptions::maxConnections>, "connection limit"},
    {"--max-stores", &SetLimitOf<&DaemonOptions::maxStores>, "store limit"},
    {"--state-dir", &SetStateDir, "state folder"},
    {"--flush-ms", &SetFlushMs, "flush interval"},
    {"--read-timeout-ms", &SetReadTimeoutMs, "read time-out"},
    {"--udp-store-idle-s", &SetUdpStoreIdleS, "udp store idle time"},
};

// Descriptors configd keeps besides its clients' (state files, servers,
// standard streams).
constexpr rlim_t kOwnDescriptors = 64;

// Every client holds a descriptor. The soft limit (often 1024) is raised to
// the hard one, so that --max-connections, not the shell's default, decides
// how many clients are served; a hard limit below what both stream servers
// may hold is said once. Clients that come when no descriptor is left are
// closed at once by the servers.
void RaiseDescriptorLimit(int maxConnections) {
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return;
  if (limit.rlim_cur != limit.rlim_max) {
    limit.rlim_cur = limit.rlim_max;
    if (setrlimit(RLIMIT_NOFILE, &limit) != 0) getrlimit(RLIMIT_NOFILE, &limit);
  }
  rlim_t needed = 2 * static_cast<rlim_t>(maxConnections) + kOwnDescriptors;
  if (maxConnections > 0 && limit.rlim_cur != RLIM_INFINITY && limit.rlim_cur < needed)
    fprintf(stderr,
            "configd: the descriptor limit of %lu is below the %lu that --max-connections %d "
            "needs; clients past it are closed\n",
            static_cast<unsigned long>(limit.rlim_cur), static_cast<unsigned long>(needed),
            maxConnections);
}

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
    if (arg == "--version") {
      printf("configd %s\n", LIBCONFIG_VERSION);
      return 0;
    }
    if (arg == "--verbose") {
      zyn::logging::SetVerbose(true);
      continue;
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
  sigaddset(&stopSignals, SIGHUP);  // taken and ignored: a closed terminal does not stop the unit
  pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);
  signal(SIGPIPE, SIG_IGN);  // a vanished client is reported by send, not by a signal

  RaiseDescriptorLimit(options.maxConnections);
  ConfigDaemon daemon;
  if (!daemon.Start(options)) return 1;
  const bool verbose = zyn::logging::IsVerbose();
  if (verbose)
    fprintf(stderr, "configd: serving %zu parameters, state in %s\n", daemon.GetParamCount(),
            options.stateDir.c_str());
  printf("configd: ready on port %d\n", daemon.GetPort());
  printf("configd: tcp ready on port %d\n", daemon.GetTcpPort());
  printf("configd: udp ready on port %d\n", daemon.GetUdpPort());
  fflush(stdout);

  int received = 0;
  while (sigwait(&stopSignals, &received) != 0 || received == SIGHUP) {
    if (received == SIGHUP && verbose) fprintf(stderr, "configd: SIGHUP ignored\n");
    received = 0;
  }
  if (verbose)
    fprintf(stderr, "configd: %s received, stopping\n", received == SIGINT ? "SIGINT" : "SIGTERM");
  if (!daemon.Stop()) return 1;
  if (verbose) fprintf(stderr, "configd: stopped\n");
  return 0;
}
