// configd's kept state as a process: a new state folder, an unusable one, a
// restart after a clean stop, SIGKILL at random moments under a full-speed writer, and
// configctl's preset and factory-reset commands.
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <random>
#include <thread>

#include "config/access/socket_client.h"
#include "config/access/socket_factory.h"
#include "tools_fixture.h"

using namespace tools_test;
using Clock = std::chrono::steady_clock;

TEST(ConfigdStateTest, CreatesItsStateFolderKeepsSettingsAcrossAStopAndSaysWhenOneIsUnusable) {
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
  // A change still pending at the stop that cannot be written is a failed
  // stop: exit status 1.
  ASSERT_TRUE(daemon.Start({"--state-dir", folder, "--flush-ms", "60000"}));
  RunToEnd(CtlArgs(daemon.Uri(), {"set", "FrontPanelLock", "0"}));
  std::filesystem::remove_all(parent.path + "/new");
  Outcome stopped = daemon.Stop(SIGTERM);
  EXPECT_EQ(1, stopped.exitCode) << stopped.err;

  // An unusable folder is said as such. (A symlink, or a folder others may
  // write to, is refused by the same check of the preset folder, whose tests
  // try each.)
  const std::string file = parent.path + "/file";
  std::ofstream(file) << "x";
  for (auto [unusable, why] : std::vector<std::pair<std::string, std::string>>{
           {file, "it is not a folder"}, {file + "/below", "Not a directory"}}) {
    Outcome refused = RunToEnd(ConfigdArgs("0", unusable));
    EXPECT_EQ(1, refused.exitCode) << unusable;
    EXPECT_TRUE(
        Has(refused.err, "configd: the state folder " + unusable + " is not usable: " + why))
        << refused.err;
    EXPECT_FALSE(Has(refused.err, "in use by another")) << refused.err;
  }
}

TEST_F(ConfigctlDaemonTest, PresetCommandsOfConfigctlAndConcurrentClientsEachGetTheirOwnOutcome) {
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
    EXPECT_EQ("1||configctl: " + message + "\n", Summary(Ctl(args)));
  }

  // A soft reset keeps the saved presets with their names; a hard one clears both.
  EXPECT_EQ("FACTORY done\n", Ctl({"factory-reset"}).out);
  EXPECT_TRUE(Has(Ctl({"preset", "list"}).out, "21  studio A              saved"));
  EXPECT_EQ("HARD FACTORY done\n", Ctl({"factory-reset", "--hard"}).out);
  EXPECT_TRUE(Has(Ctl({"preset", "list"}).out, "21  Preset 21             empty"));

  // Two clients at once, one recalling a saved preset and one an empty one:
  // each must be told its own outcome, never the other's.
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

// SIGKILL at a random moment in each round, configd restarted on the same
// state folder. A writer sets a kept integer to the steps n+1, n+2, ... and
// notes when a Get on its connection returned each. A restart must restore
// the last step acknowledged at least the flush bound before the kill (the
// flush interval, the write under way and one more write: a 500 ms margin on
// a loaded machine) or a later one sent. Every fourth round the writer stops
// at a random moment and the kill comes after the bound, so the exact value
// is checked. No start may find a damaged file, factory values or another
// kept setting changed. CONFIGD_CRASH_KILLS sets the number of kills.
TEST(ConfigdCrashTest, SigkillLosesNothingAcknowledgedBeforeTheFlushBound) {
  constexpr unsigned int kSNMPPort1 = 0xC599BE36;  // kept, 1..65535: a step n writes 1 + n % 65535
  constexpr long kFlushMs = 20, kBoundMs = kFlushMs + 500;
  CreateDescriptors();
  const char* asked = getenv("CONFIGD_CRASH_KILLS");
  const int kills = asked != nullptr ? atoi(asked) : 12;
  std::mt19937 random(std::random_device{}());
  TempFolder state;
  long floor = 0, last = 0;  // the steps the next start may restore
  int corrupt = 0, lost = 0, exact = 0;
  const auto started = Clock::now();
  for (int round = 0; round <= kills + 1; ++round) {
    ChildProcess configd;
    std::string ready, name;
    std::vector<std::string> args = ConfigdArgs("0", state.path);
    args.insert(args.end(), {"--flush-ms", std::to_string(kFlushMs)});
    ASSERT_TRUE(configd.Start(args) && configd.ReadLine(ready, kStartMs)) << "round " << round;
    zyn::config::access::SocketFactory factory;
    auto* client = factory.Connect("socket://127.0.0.1:" + ready.substr(ready.rfind(' ') + 1));
    ASSERT_NE(nullptr, client) << "round " << round;
    unsigned int value = 0;
    if (round == 0) {  // stopped cleanly: every later start must restore these
      ASSERT_TRUE(client->Set(kSystemName, std::string("crash-check")) &&
                  client->Set(kSNMPPort1, 1));
    } else {
      bool intact =
          client->Get(kSNMPPort1, value) && client->Get(kSystemName, name) && name == "crash-check";
      const long n = last - ((last - long(value) + 1) % 65535 + 65535) % 65535;  // latest step
      corrupt += !intact;
      lost += intact && n < floor;
      EXPECT_TRUE(intact && n >= floor)
          << "round " << round << ": restored step " << n << " of " << last << " sent, " << floor
          << " acknowledged in time, system name " << name;
      floor = last = n;  // now on disk until a newer value is
    }
    if (round == 0 || round == kills + 1) {
      factory.Disconnect(client);
      configd.Signal(SIGTERM);
      EXPECT_EQ(0, configd.Wait(kStopMs).exitCode);
      continue;
    }
    const bool quiet = round % 4 == 0;
    const auto begin = Clock::now(), stopWriting = begin + std::chrono::milliseconds(random() % 60);
    const auto killAt = begin + std::chrono::milliseconds(random() % 150);
    Clock::time_point killed;
    std::atomic<bool> dead{false};
    auto kill = [&](Clock::time_point at) {
      std::this_thread::sleep_until(at);  // the random moment
      killed = Clock::now();
      configd.Signal(SIGKILL);
      dead = true;
    };
    std::thread killer;
    if (!quiet) killer = std::thread(kill, killAt);
    std::vector<std::pair<Clock::time_point, long>> acknowledged;
    testing::internal::CaptureStderr();  // the client's lines about its lost connection
    do {
      const unsigned int next = 1 + ++last % 65535;
      if (!client->Set(kSNMPPort1, next) || !client->Get(kSNMPPort1, value) || value != next) break;
      acknowledged.emplace_back(Clock::now(), last);
    } while (quiet ? Clock::now() < stopWriting : !dead);
    if (quiet) kill(Clock::now() + std::chrono::milliseconds(kBoundMs) + (killAt - begin));
    if (killer.joinable()) killer.join();
    testing::internal::GetCapturedStderr();
    for (const auto& [when, step] : acknowledged)
      if (killed - when >= std::chrono::milliseconds(kBoundMs)) floor = step;
    exact += quiet && floor == last;
    factory.Disconnect(client);
    std::string err = configd.Wait(kStopMs).err;
    corrupt += Has(err, "damaged") || Has(err, "unreadable") || Has(err, "factory values");
  }
  printf(
      "configd crash: kills=%d corrupt=%d lost_beyond_bound=%d exact_checks=%d ms_per_kill=%ld\n",
      kills, corrupt, lost, exact,
      long((Clock::now() - started) / std::chrono::milliseconds(1)) / std::max(kills, 1));
  EXPECT_EQ(0, corrupt);
  EXPECT_EQ(0, lost);
}
