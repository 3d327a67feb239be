// Shared by the configd and configctl tests: a configd started on a free
// port, configctl runs against it, and the catalogue entries the tests use.
#ifndef TESTS_TOOLS_TOOLS_FIXTURE_H
#define TESTS_TOOLS_TOOLS_FIXTURE_H

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "child_process.h"
#include "config/descriptors/param_descriptors.h"
#include "test_stderr.h"
#include "test_temp_folder.h"

namespace tools_test {

constexpr int kStartMs = 15000;  // generous: sanitizer builds start slowly
constexpr int kStopMs = 15000;

// An enumeration {0 Unlocked, 1 Locked}, a string with the default
// "zyn-kr-9" and an integer limited to 25..100.
constexpr unsigned int kFrontPanelLock = 0x4D575A8E;
constexpr unsigned int kSystemName = 0x663F2B65;
constexpr const char* kClampedParam = "eParamID_DisplayIntensity";

// configd's command line: its local port and state folder, its network
// servers on ports of the system's choice and its events on a port of their
// own, so that daemons of tests running side by side never meet.
inline std::vector<std::string> ConfigdArgs(const std::string& port, const std::string& stateDir,
                                            int multicastPort = FreePort()) {
  std::vector<std::string> args = {CONFIGD_PATH, "--port", port, "--state-dir", stateDir};
  args.insert(args.end(), {"--tcp-port", "0", "--udp-port", "0", "--multicast-port"});
  args.push_back(std::to_string(multicastPort));
  return args;
}

// A configd child on a free port, its state in a folder of its own.
class Daemon {
 public:
  // Starts configd and waits for its ready lines; a port taken between
  // FreePort and the bind is retried.
  bool Start(std::vector<std::string> extra = {}) {
    for (int attempt = 0; attempt < 5; ++attempt) {
      port = FreePort();
      multicastPort = FreePort();
      process = std::make_unique<ChildProcess>();
      std::vector<std::string> args = ConfigdArgs(std::to_string(port), state.path, multicastPort);
      args.insert(args.end(), extra.begin(), extra.end());
      if (!process->Start(args)) return false;
      std::string tcpLine, udpLine;
      if (process->ReadLine(readyLine, kStartMs) && process->ReadLine(tcpLine, kStartMs) &&
          process->ReadLine(udpLine, kStartMs)) {
        tcpPort = atoi(tcpLine.c_str() + tcpLine.rfind(' ') + 1);
        udpPort = atoi(udpLine.c_str() + udpLine.rfind(' ') + 1);
        return true;
      }
      Outcome failed = process->Wait(kStopMs);
      if (failed.exitCode != 1) {
        ADD_FAILURE() << "configd did not start: " << failed.err;
        return false;
      }
    }
    return false;
  }
  Outcome Stop(int signal) {
    process->Signal(signal);
    return process->Wait(kStopMs);
  }
  std::string Uri() const { return "socket://127.0.0.1:" + std::to_string(port); }
  // "tcp", "udp" or "multicast" (the UDP server's events).
  std::string NetworkUri(const std::string& scheme) const {
    if (scheme == "multicast") return "multicast://127.0.0.1:" + std::to_string(multicastPort);
    return scheme + "://127.0.0.1:" + std::to_string(scheme == "tcp" ? tcpPort : udpPort) +
           "/eventport=" + std::to_string(multicastPort);
  }

  TempFolder state;
  int port = 0;
  int tcpPort = 0;
  int udpPort = 0;
  int multicastPort = 0;
  std::string readyLine;
  std::unique_ptr<ChildProcess> process;
};

inline std::vector<std::string> CtlArgs(const std::string& uri, std::vector<std::string> args) {
  args.insert(args.begin(), {CONFIGCTL_PATH, "--uri", uri});
  return args;
}

// Runs `poke` until `watch` prints a line (at most kStartMs); the watch
// registers for events asynchronously, so a single change may come too early.
inline bool NextWatchLine(ChildProcess& watch, const std::function<void()>& poke,
                          std::string& line) {
  for (int waited = 0; waited < kStartMs; waited += 200) {
    poke();
    if (watch.ReadLine(line, 200)) return true;
  }
  return false;
}

// Runs a watch that ends after one line (--count 1), poking until it prints;
// true when it printed `line` and then exited with status 0.
inline bool WatchOnce(const std::vector<std::string>& argv, std::string& line,
                      const std::function<void()>& poke) {
  ChildProcess watch;
  if (!watch.Start(argv) || !NextWatchLine(watch, poke, line)) return false;
  return watch.Wait(kStopMs).exitCode == 0;
}

// Tests that talk to a running configd.
class ConfigctlDaemonTest : public testing::Test {
 protected:
  void SetUp() override {
    CreateDescriptors();
    ASSERT_TRUE(daemon.Start());
  }
  Outcome Ctl(std::vector<std::string> args) { return RunToEnd(CtlArgs(daemon.Uri(), args)); }

  Daemon daemon;
};

}  // namespace tools_test

#endif  // TESTS_TOOLS_TOOLS_FIXTURE_H
