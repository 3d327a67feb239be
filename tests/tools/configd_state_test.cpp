// configd's kept state as a process: restarts after a clean stop, damaged,
// foreign and missing state, SIGKILL at random moments under a full-speed
// writer, and the preset and factory-reset commands of configctl.
#include <signal.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <random>

#include "config/access/socket_client.h"
#include "config/access/socket_factory.h"
#include "tools_fixture.h"

using namespace tools_test;
using Clock = std::chrono::steady_clock;

namespace {

constexpr unsigned int kPresetName40 = 0xAB8994F6;  // a kept text, 1 to 20 characters

// The counter in a text "c<n>", or -1 for any other text.
long Counter(const std::string& text) {
  if (text.size() < 2 || text[0] != 'c') return -1;
  return strtol(text.c_str() + 1, nullptr, 10);
}

std::string Get(const Daemon& daemon, const std::string& param) {
  return RunToEnd(CtlArgs(daemon.Uri(), {"get", param})).out;
}

}  // namespace

TEST(ConfigdStateTest, KeepsSettingsAcrossStopsAndStartsOnAnyState) {
  CreateDescriptors();
  Daemon daemon;
  ASSERT_TRUE(daemon.Start());
  RunToEnd(CtlArgs(daemon.Uri(), {"set", "FrontPanelLock", "1"}));
  RunToEnd(CtlArgs(daemon.Uri(), {"set", "SystemName", "rack-7"}));
  EXPECT_EQ(0, daemon.Stop(SIGTERM).exitCode);
  ASSERT_TRUE(daemon.Start());
  EXPECT_EQ("eParamID_FrontPanelLock = 1 (Locked)\n", Get(daemon, "FrontPanelLock"));
  EXPECT_EQ("eParamID_SystemName = rack-7\n", Get(daemon, "SystemName"));
  daemon.Stop(SIGKILL);

  // A damaged slot and a foreign one: the unit starts at factory values.
  std::ofstream(daemon.state.path + "/settings.a") << "torn";
  std::ofstream(daemon.state.path + "/settings.b") << std::string(40, '\x7f');
  ASSERT_TRUE(daemon.Start());
  EXPECT_EQ("eParamID_FrontPanelLock = 0 (Unlocked)\n", Get(daemon, "FrontPanelLock"));
  Outcome damaged = daemon.Stop(SIGTERM);
  EXPECT_NE(std::string::npos, damaged.err.find("settings.a damaged (truncated at 4 bytes)"));
  EXPECT_NE(std::string::npos, damaged.err.find("no valid saved settings, starting at factory"));

  // A missing state folder is created, parents included.
  std::string nested = daemon.state.path + "/new";
  Daemon fresh;
  ASSERT_TRUE(fresh.Start({"--state-dir", nested + "/deeper"}));
  EXPECT_NE(std::string::npos, fresh.Stop(SIGTERM).err.find("no saved settings, starting"));
  RunToEnd({"rm", "-r", nested});
}

TEST(ConfigdStateTest, PresetCommandsOfConfigctl) {
  CreateDescriptors();
  Daemon daemon;
  ASSERT_TRUE(daemon.Start());
  auto ctl = [&](std::vector<std::string> args) { return RunToEnd(CtlArgs(daemon.Uri(), args)); };
  TempFolder files;
  std::string image = files.path + "/p21.bin";
  EXPECT_EQ("preset 21 saved\n", ctl({"preset", "save", "21", "--name", "studio A"}).out);
  Outcome list = ctl({"preset", "list"});
  EXPECT_NE(std::string::npos, list.out.find(" 0  Factory values        factory\n")) << list.out;
  EXPECT_NE(std::string::npos, list.out.find("21  studio A              saved\n")) << list.out;
  EXPECT_NE(std::string::npos, list.out.find("22  Preset 22             empty\n")) << list.out;
  EXPECT_EQ(0, ctl({"preset", "export", "21", image}).exitCode);
  EXPECT_EQ(image + " imported as preset 22\n", ctl({"preset", "import", "22", image}).out);
  EXPECT_EQ("preset 22 recalled\n", ctl({"preset", "recall", "22"}).out);

  Outcome empty = ctl({"preset", "recall", "23"});
  EXPECT_EQ(1, empty.exitCode);
  EXPECT_EQ("configctl: preset 23 not recalled: Preset Empty\n", empty.err);
  Outcome factory = ctl({"preset", "save", "0"});
  EXPECT_EQ(1, factory.exitCode);
  EXPECT_EQ("configctl: preset 0 holds the factory values and cannot be overwritten\n",
            factory.err);
  std::ofstream(image) << "not an image";
  Outcome rejected = ctl({"preset", "import", "23", image});
  EXPECT_EQ(1, rejected.exitCode);
  EXPECT_EQ("configctl: " + image + " not imported as preset 23: Store Rejected\n", rejected.err);
  EXPECT_EQ(2, ctl({"preset", "save"}).exitCode);

  ctl({"set", "FrontPanelLock", "1"});
  EXPECT_EQ("FACTORY done\n", ctl({"factory-reset"}).out);
  EXPECT_EQ("eParamID_FrontPanelLock = 1 (Locked)\n", Get(daemon, "FrontPanelLock"));
  EXPECT_EQ("HARD FACTORY done\n", ctl({"factory-reset", "--hard"}).out);
  EXPECT_EQ("eParamID_FrontPanelLock = 0 (Unlocked)\n", Get(daemon, "FrontPanelLock"));
  EXPECT_NE(std::string::npos, ctl({"preset", "list"}).out.find("21  Preset 21             empty"));
}

// Kills configd with SIGKILL at random moments while a writer sets a kept
// value at full speed, and restarts it. After each restart the state must be
// valid and hold every value that was in the store longer than the flush
// interval (plus an allowance for the write itself on a loaded machine)
// before the kill. CONFIGD_CRASH_KILLS raises the count (bench/ runs 10000).
TEST(ConfigdCrashTest, SigkillAtRandomMomentsLosesNothingFlushed) {
  CreateDescriptors();
  const char* wanted = getenv("CONFIGD_CRASH_KILLS");
  const int kills = wanted != nullptr ? atoi(wanted) : 200;
  constexpr long kFlushMs = 20;
  constexpr long kWriteAllowanceMs = 150;
  std::mt19937 random(std::random_device{}());
  TempFolder state;
  long lastSent = -1;
  long mustHave = -1;  // the newest value confirmed long enough before the kill
  int corrupt = 0, lost = 0, checked = 0;
  for (int round = 0; round <= kills; ++round) {
    ChildProcess configd;
    ASSERT_TRUE(configd.Start({CONFIGD_PATH, "--port", "0", "--state-dir", state.path, "--flush-ms",
                               std::to_string(kFlushMs)}));
    std::string ready;
    ASSERT_TRUE(configd.ReadLine(ready, kStartMs)) << "round " << round;
    zyn::config::access::SocketFactory factory;
    auto* client = factory.Connect("socket://127.0.0.1:" + ready.substr(ready.rfind(' ') + 1));
    ASSERT_NE(nullptr, client);
    std::string text;
    ASSERT_TRUE(client->Get(kPresetName40, text));
    long restored = Counter(text);
    if (round > 0) {
      ++checked;
      if (restored < mustHave) {
        ++lost;
        ADD_FAILURE() << "round " << round << ": restored " << text << ", needed c" << mustHave;
      }
      EXPECT_LE(restored, lastSent) << "round " << round;
    }
    if (round == kills) {
      factory.Disconnect(client);
      configd.Signal(SIGTERM);
      EXPECT_EQ(0, configd.Wait(kStopMs).exitCode);
      break;
    }
    // Write at full speed for a random time; every Get confirms what the
    // store holds at that moment.
    std::vector<std::pair<Clock::time_point, long>> confirmed;
    auto end = Clock::now() + std::chrono::milliseconds(random() % 250);
    long n = restored < 0 ? 0 : restored;
    do {
      client->Set(kPresetName40, "c" + std::to_string(++n));
      lastSent = n;
      if (n % 8 == 0 && client->Get(kPresetName40, text)) confirmed.emplace_back(Clock::now(), n);
    } while (Clock::now() < end);
    configd.Signal(SIGKILL);
    auto killed = Clock::now();
    for (const auto& [when, value] : confirmed)
      if (killed - when > std::chrono::milliseconds(kFlushMs + kWriteAllowanceMs))
        mustHave = std::max(mustHave, value);
    factory.Disconnect(client);
    Outcome outcome = configd.Wait(kStopMs);
    // No state is fine only while nothing was ever confirmed as written.
    bool unusable = outcome.err.find("no valid saved settings") != std::string::npos;
    bool none = outcome.err.find("starting at factory values") != std::string::npos;
    if (round > 0 && (unusable || (none && mustHave >= 0))) {
      ++corrupt;
      ADD_FAILURE() << "round " << round << " started without valid state:\n" << outcome.err;
    }
  }
  printf("configd crash: kills=%d corrupt_starts=%d lost_values=%d checked_restarts=%d\n", kills,
         corrupt, lost, checked);
}
