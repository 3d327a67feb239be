// configd's kept state as a process: a new state folder, an unusable one, a
// restart after a clean stop, SIGKILL at random moments under a full-speed writer, and
// configctl's preset and factory-reset commands.
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <random>
#include <thread>

#include "config/access/socket_client.h"
#include "config/access/socket_factory.h"
#include "tools_fixture.h"

using namespace tools_test;
using Clock = std::chrono::steady_clock;

namespace {

constexpr unsigned int kPresetName40 = 0xAB8994F6;  // a kept text, 1 to 20 characters

}  // namespace

TEST(ConfigdStateTest, CreatesItsStateFolderAndKeepsSettingsAcrossAStop) {
  CreateDescriptors();
  TempFolder parent;
  std::string folder = parent.path + "/new/deeper";
  Daemon daemon;
  // Verbose, a first start says that nothing was saved yet.
  ASSERT_TRUE(daemon.Start({"--state-dir", folder, "--verbose"}));
  RunToEnd(CtlArgs(daemon.Uri(), {"set", "FrontPanelLock", "1"}));
  Outcome second = RunToEnd(ConfigdArgs("0", folder));
  EXPECT_EQ(1, second.exitCode);
  EXPECT_TRUE(Has(second.err, "configd: the state folder " + folder + " is in use by another"));
  EXPECT_TRUE(Has(daemon.Stop(SIGTERM).err, "no saved settings, starting at factory values"));
  ASSERT_TRUE(daemon.Start({"--state-dir", folder}));
  EXPECT_EQ("eParamID_FrontPanelLock = 1 (Locked)\n",
            RunToEnd(CtlArgs(daemon.Uri(), {"get", "FrontPanelLock"})).out);
  daemon.Stop(SIGTERM);
  RunToEnd({"rm", "-r", parent.path + "/new"});
}

TEST(ConfigdStateTest, AnUnusableStateFolderIsSaidAsSuch) {
  TempFolder parent;
  const std::string file = parent.path + "/file", link = parent.path + "/link",
                    open = parent.path + "/open";
  std::ofstream(file) << "x";
  ASSERT_EQ(0, symlink(parent.path.c_str(), link.c_str()));
  ASSERT_EQ(0, mkdir(open.c_str(), 0700));
  ASSERT_EQ(0, chmod(open.c_str(), 0777));
  for (auto [folder, why] :
       std::vector<std::pair<std::string, std::string>>{{file, "it is not a folder"},
                                                        {link, "it is a symlink"},
                                                        {open, "it is writable by others"},
                                                        {file + "/below", "Not a directory"}}) {
    Outcome refused = RunToEnd(ConfigdArgs("0", folder));
    EXPECT_EQ(1, refused.exitCode) << folder;
    EXPECT_TRUE(Has(refused.err, "configd: the state folder " + folder + " is not usable: " + why))
        << refused.err;
    EXPECT_FALSE(Has(refused.err, "in use by another")) << refused.err;
  }
  rmdir(open.c_str());
}

TEST_F(ConfigctlDaemonTest, PresetCommandsOfConfigctl) {
  std::string image = daemon.state.path + "/p21.bin";
  EXPECT_EQ("preset 21 saved\n", Ctl({"preset", "save", "21", "--name", "studio A"}).out);
  std::string list = Ctl({"preset", "list"}).out;
  EXPECT_TRUE(Has(list, " 0  Factory values        factory\n")) << list;
  EXPECT_TRUE(Has(list, "21  studio A              saved\n22  Preset 22             empty\n"));
  // export and import hand the image over through /tmp/zyn as their own requests.
  EXPECT_EQ(0, Ctl({"preset", "export", "21", image}).exitCode);
  EXPECT_EQ(image + " imported as preset 22\n", Ctl({"preset", "import", "22", image}).out);
  EXPECT_EQ("preset 22 recalled\n", Ctl({"preset", "recall", "22"}).out);

  std::ofstream(image) << "not an image";
  for (auto [args, message] : std::vector<std::pair<std::vector<std::string>, std::string>>{
           {{"preset", "recall", "23"},
            "preset 23 not recalled: Preset Empty (preset 23 is empty)"},
           {{"preset", "save", "0"}, "preset 0 holds the factory values and cannot be overwritten"},
           {{"preset", "import", "23", image},
            image + " not imported as preset 23: Store Rejected (/tmp/zyn/preset_23.bin " +
                "rejected: truncated at 12 bytes)"}}) {
    Outcome failed = Ctl(args);
    EXPECT_EQ(1, failed.exitCode) << message;
    EXPECT_EQ("configctl: " + message + "\n", failed.err);
  }

  // A soft reset keeps the saved presets with their names; a hard one clears both.
  EXPECT_EQ("FACTORY done\n", Ctl({"factory-reset"}).out);
  EXPECT_TRUE(Has(Ctl({"preset", "list"}).out, "21  studio A              saved"));
  EXPECT_EQ("HARD FACTORY done\n", Ctl({"factory-reset", "--hard"}).out);
  EXPECT_TRUE(Has(Ctl({"preset", "list"}).out, "21  Preset 21             empty"));
}

// Two clients at once, one recalling a saved preset and one an empty one:
// each must be told its own outcome, never the other's.
TEST_F(ConfigctlDaemonTest, ConcurrentPresetClientsEachGetTheirOwnOutcome) {
  ASSERT_EQ(0, Ctl({"preset", "save", "7"}).exitCode);
  int wrong = 0;
  for (int round = 0; round < 8; ++round) {
    Outcome saved, empty;
    std::thread other([&] { empty = Ctl({"preset", "recall", "31"}); });
    saved = Ctl({"preset", "recall", "7"});
    other.join();
    wrong += (saved.exitCode != 0) + (empty.exitCode != 1);
    EXPECT_TRUE(Has(empty.err, "Preset Empty (preset 31 is empty)")) << empty.err;
  }
  EXPECT_EQ(0, wrong);
}

// SIGKILL at random moments while a writer sets a kept text ("c<n>") at full
// speed. After each restart the state must be valid and hold every value the
// store held longer than the flush interval, plus an allowance for the write
// on a loaded machine, before the kill. CONFIGD_CRASH_KILLS raises the count;
// sanitizer builds, whose daemon starts several times slower, run fewer.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int kDefaultKills = 50;
#else
constexpr int kDefaultKills = 200;
#endif
TEST(ConfigdCrashTest, SigkillAtRandomMomentsLosesNothingFlushed) {
  const char* asked = getenv("CONFIGD_CRASH_KILLS");
  const int kills = asked != nullptr ? atoi(asked) : kDefaultKills;
  constexpr long kFlushMs = 20, kWriteAllowanceMs = 500;
  std::mt19937 random(std::random_device{}());
  TempFolder state;
  long lastSent = 0, mustHave = -1;  // mustHave: confirmed long enough before a kill
  int corrupt = 0, lost = 0;
  for (int round = 0; round <= kills; ++round) {
    ChildProcess configd;
    std::string ready, text;
    std::vector<std::string> args = ConfigdArgs("0", state.path);
    args.insert(args.end(), {"--flush-ms", std::to_string(kFlushMs)});
    ASSERT_TRUE(configd.Start(args));
    ASSERT_TRUE(configd.ReadLine(ready, kStartMs)) << "round " << round;
    zyn::config::access::SocketFactory factory;
    auto* client = factory.Connect("socket://127.0.0.1:" + ready.substr(ready.rfind(' ') + 1));
    ASSERT_TRUE(client != nullptr && client->Get(kPresetName40, text));
    long restored = text[0] == 'c' ? atol(text.c_str() + 1) : -1;
    const long neededAtStart = mustHave;
    lost += restored < mustHave;
    EXPECT_LE(restored, lastSent) << "round " << round;
    if (round == kills) {
      factory.Disconnect(client);
      break;
    }
    std::vector<std::pair<Clock::time_point, long>> confirmed;  // the store held n then
    auto end = Clock::now() + std::chrono::milliseconds(random() % 150);
    long n = std::max(restored, 0L);
    do {
      client->Set(kPresetName40, "c" + std::to_string(lastSent = ++n));
      if (n % 8 == 0 && client->Get(kPresetName40, text)) confirmed.emplace_back(Clock::now(), n);
    } while (Clock::now() < end);
    configd.Signal(SIGKILL);
    for (const auto& [when, value] : confirmed)
      if (Clock::now() - when > std::chrono::milliseconds(kFlushMs + kWriteAllowanceMs))
        mustHave = std::max(mustHave, value);
    factory.Disconnect(client);
    std::string err = configd.Wait(kStopMs).err;
    // No state at all is fine only until a value was confirmed as written.
    if (Has(err, "no valid saved settings") || (Has(err, "factory values") && neededAtStart >= 0))
      ++corrupt;
  }
  printf("configd crash: kills=%d corrupt_starts=%d lost_values=%d\n", kills, corrupt, lost);
  EXPECT_EQ(0, corrupt);
  EXPECT_EQ(0, lost);
}
