// configctl as a process against a real configd: every command in text and
// JSON, refused and clamped sets, and each failure's message and status.
#include <signal.h>
#include <unistd.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "config/descriptors/param_descriptor.h"
#include "config/descriptors/param_groups.h"
#include "tools_fixture.h"

using namespace tools_test;

namespace {

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

// The words of a command line: "set a b" as {"set", "a", "b"}.
std::vector<std::string> Words(const std::string& text) {
  std::vector<std::string> words;
  std::istringstream in(text);
  for (std::string word; in >> word;) words.push_back(word);
  return words;
}

// The local time as watch prints it, "2024-05-01T12:00:00.123".
bool IsTimestamp(const std::string& text) {
  const std::string pattern = "dddd-dd-ddTdd:dd:dd.ddd";
  if (text.size() != pattern.size()) return false;
  for (size_t i = 0; i < text.size(); ++i) {
    bool digit = text[i] >= '0' && text[i] <= '9';
    if (pattern[i] == 'd' ? !digit : text[i] != pattern[i]) return false;
  }
  return true;
}

}  // namespace

TEST_F(ConfigctlDaemonTest, GetAndSetTakeEveryFormOfNameAndValueAndPrintTextOrJson) {
  // The library's diagnostics stay out of sight.
  EXPECT_EQ("0|eParamID_FrontPanelLock = 0 (Unlocked)\neParamID_SystemName = zyn-kr-9\n|",
            Summary(Ctl({"get", "FrontPanelLock", "eParamID_SystemName"})));
  for (const char* form :
       {"eParamID_FrontPanelLock", "0x4D575A8E", "0x4d575a8e", "1297570446", "frontpanellock"}) {
    EXPECT_EQ("eParamID_FrontPanelLock = 0 (Unlocked)\n", Ctl({"get", form}).out) << form;
  }
  EXPECT_EQ(
      "0|{\"param\":\"eParamID_FrontPanelLock\",\"id\":1297570446,\"value\":0,"
      "\"display\":\"0 (Unlocked)\",\"value_name\":\"Unlocked\"}\n"
      "{\"param\":\"eParamID_SystemName\",\"id\":1715415909,\"value\":\"zyn-kr-9\"}\n|",
      Summary(Ctl({"--json", "get", "FrontPanelLock", "SystemName"})));

  // set takes names, numbers and text, and prints what the store kept.
  EXPECT_EQ("eParamID_FrontPanelLock = 1 (Locked)\n", Ctl({"set", "FrontPanelLock", "Locked"}).out);
  EXPECT_EQ("eParamID_FrontPanelLock = 1 (Locked)\n", Ctl({"get", "FrontPanelLock"}).out);
  EXPECT_EQ("eParamID_FrontPanelLock = 0 (Unlocked)\n", Ctl({"set", "FrontPanelLock", "0x0"}).out);
  EXPECT_EQ("eParamID_FrontPanelLock = 1 (Locked)\n", Ctl({"set", "FrontPanelLock", "1"}).out);
  // A string is taken as it is, also one that looks like an option.
  EXPECT_EQ("eParamID_SystemName = rack \"7\"\n", Ctl({"set", "SystemName", "rack \"7\""}).out);
  EXPECT_EQ("eParamID_SystemName = -left\n", Ctl({"set", "SystemName", "--", "-left"}).out);
  EXPECT_EQ(
      "0|{\"param\":\"eParamID_SystemName\",\"id\":1715415909,\"value\":\"tab\\there\","
      "\"requested\":\"tab\\there\",\"result\":\"accepted\"}\n|",
      Summary(Ctl({"set", "--json", "SystemName", "tab\there"})));
}

TEST_F(ConfigctlDaemonTest, ValuesAreTakenInTheirUnitsOrRefusedBeforeAnythingIsPrinted) {
  // A level: tenths of a dB held 600 above the shown value.
  const char* level = "AudioLevelCh10_SDI1";
  EXPECT_EQ("eParamID_AudioLevelCh10_SDI1 = 0.0 dB\n", Ctl({"get", level}).out);
  EXPECT_EQ("eParamID_AudioLevelCh10_SDI1 = -3.0 dB\n", Ctl({"set", level, "-3.0"}).out);
  EXPECT_EQ("eParamID_AudioLevelCh10_SDI1 = -2.5 dB\n", Ctl({"set", level, "-2.5 dB"}).out);
  EXPECT_EQ("eParamID_AudioLevelCh10_SDI1 = 12.0 dB (clamped from 60.0 dB)\n",
            Ctl({"set", level, "60"}).out);
  EXPECT_EQ("eParamID_AudioLevelCh10_SDI1 = -2.0 dB\n", Ctl({"set", "--raw", level, "580"}).out);
  EXPECT_EQ(
      "{\"param\":\"eParamID_AudioLevelCh10_SDI1\",\"id\":1366763169,\"value\":-2.0,"
      "\"display\":\"-2.0 dB\",\"raw\":580,\"scale_by\":10,\"offset_by\":600,"
      "\"display_precision\":1,\"units\":\"dB\"}\n",
      Ctl({"--json", "get", level}).out);
  std::string described = Ctl({"describe", level}).out;
  EXPECT_TRUE(Has(described, "range           -60.0 to 12.0 dB (raw 0 to 720)\n")) << described;
  EXPECT_TRUE(Has(described, "default         0.0 dB\n")) << described;
  for (const auto& refused : std::vector<std::pair<std::string, std::string>>{
           {"-3.25", "'-3.25' is finer than eParamID_AudioLevelCh10_SDI1's step of 0.1 dB"},
           {"3 dBu", "'3 dBu' is not a number of dB for eParamID_AudioLevelCh10_SDI1"},
           {"-61",
            "'-61' is below the lowest value eParamID_AudioLevelCh10_SDI1 can hold, "
            "-60.0 dB"}}) {
    EXPECT_EQ("1||configctl: " + refused.second + "\n",
              Summary(Ctl({"set", level, refused.first})));
  }
  EXPECT_EQ("eParamID_AudioLevelCh10_SDI1 = -2.0 dB\n", Ctl({"get", level}).out);
  // An address the user gives the unit is an IPv4 address in dotted-quad form.
  for (const char* wrong : {"127.0.0.300", "127.0.0", "127.0.0.1 ", "host.local"}) {
    EXPECT_EQ("1||configctl: refused \"" + std::string(wrong) +
                  "\" for eParamID_IPAddress_Static: it takes an IPv4 address in dotted-quad "
                  "form, such as 192.168.0.2\n",
              Summary(Ctl({"set", "IPAddress_Static", wrong})));
  }
  EXPECT_EQ("eParamID_IPAddress_Static = 127.0.0.5\n",
            Ctl({"set", "IPAddress_Static", "127.0.0.5"}).out);
  // A clamped value says so.
  EXPECT_EQ("0|eParamID_DisplayIntensity = 100 % (clamped from 250 %)\n|",
            Summary(Ctl({"set", kClampedParam, "250"})));
  EXPECT_EQ(
      "0|{\"param\":\"eParamID_DisplayIntensity\",\"id\":830445425,\"value\":25,"
      "\"display\":\"25 %\",\"units\":\"%\",\"requested\":10,\"result\":\"clamped\"}\n|",
      Summary(Ctl({"--json", "set", kClampedParam, "0x0A"})));
  EXPECT_EQ("eParamID_DisplayIntensity = 25 %\n", Ctl({"get", kClampedParam}).out);

  struct Case {
    std::vector<std::string> args;
    std::string err;
  };
  for (const Case& c : std::vector<Case>{
           {{"get", "FrontPanelLock", "NoSuchParam"}, "unknown parameter 'NoSuchParam'"},
           {{"get", "0x12345678"}, "unknown parameter '0x12345678'"},
           {{"get", "4294967296"}, "unknown parameter '4294967296'"},
           {{"describe", "eParamID_"}, "unknown parameter 'eParamID_'"},
           {{"watch", "Nope"}, "unknown parameter 'Nope'"},
           {{"set", "FrontPanelLock", "Sideways"},
            "'Sideways' is not a value of eParamID_FrontPanelLock (0 Unlocked, 1 Locked)"},
           {{"set", kClampedParam, "ten"}, "'ten' is not a number (decimal or 0x hex)"},
           {{"set", kClampedParam, "4294967296"}, "'4294967296' is not a number"},
           {{"set", kClampedParam, " 5"}, "' 5' is not a number"},
           // Checked whole before anything is sent, so the store keeps its value.
           {{"set", "FrontPanelLock", "7"},
            "'7' is not a value of eParamID_FrontPanelLock (0 Unlocked, 1 Locked)"},
           {{"set", "SystemName", "ab\xFF"},
            "the text for eParamID_SystemName is not valid UTF-8 (byte 2)"},
           {{"set", "SystemName", "\xC0\xAF"},
            "the text for eParamID_SystemName is not valid UTF-8 (byte 0)"},
           {{"set", "SystemName", std::string(21, 'x')},
            "refused \"" + std::string(21, 'x') +
                "\" for eParamID_SystemName: it takes 1 to 20 bytes, not 21"},
           {{"set", "SystemName", ""},
            "refused \"\" for eParamID_SystemName: it takes 1 to 20 bytes, not 0"},
       }) {
    Outcome outcome = Ctl(c.args);
    EXPECT_EQ(1, outcome.exitCode) << c.err;
    EXPECT_EQ("", outcome.out) << c.err;
    EXPECT_EQ(0u, outcome.err.find("configctl: " + c.err)) << outcome.err;
    EXPECT_EQ(1u, Lines(outcome.err).size()) << outcome.err;
  }
  EXPECT_EQ("eParamID_FrontPanelLock = 0 (Unlocked)\neParamID_SystemName = zyn-kr-9\n",
            Ctl({"get", "FrontPanelLock", "SystemName"}).out);
}

TEST_F(ConfigctlDaemonTest, WatchPrintsOneLinePerChangeUntilCountOrSignal) {
  ChildProcess counted;
  ASSERT_TRUE(counted.Start(CtlArgs(daemon.Uri(), {"watch", "FrontPanelLock", "--count", "2"})));
  ChildProcess everything;
  ASSERT_TRUE(everything.Start(CtlArgs(daemon.Uri(), {"--json", "watch"})));
  auto poke = [&] {
    Ctl({"set", "SystemName", "watched"});  // not watched by `counted`
    Ctl({"set", "FrontPanelLock", "Locked"});
  };
  std::string line;
  for (int n = 0; n < 2; ++n) {
    ASSERT_TRUE(NextWatchLine(counted, poke, line));
    EXPECT_TRUE(IsTimestamp(line.substr(0, 23))) << line;
    EXPECT_EQ(" eParamID_FrontPanelLock = 1 (Locked)", line.substr(23));
  }
  Outcome done = counted.Wait(kStopMs);
  EXPECT_EQ(0, done.exitCode) << done.err;

  bool sawString = false;
  for (int n = 0; n < 50 && !sawString && NextWatchLine(everything, poke, line); ++n)
    sawString = line.size() > 33 && line.compare(0, 9, "{\"time\":\"") == 0 &&
                IsTimestamp(line.substr(9, 23)) &&
                line.substr(32) ==
                    "\",\"param\":\"eParamID_SystemName\",\"id\":1715415909,"
                    "\"value\":\"watched\"}";
  EXPECT_TRUE(sawString);
  everything.Signal(SIGINT);
  Outcome interrupted = everything.Wait(kStopMs);
  EXPECT_EQ(0, interrupted.exitCode) << interrupted.err;
}

TEST(ConfigctlTest, DescribeAndListReadTheCatalogueUsageErrorsExitTwoAndNoDaemonOne) {
  CreateDescriptors();
  std::string menu;
  ASSERT_TRUE(GetDescriptor(kFrontPanelLock)->GetAttribute("menu_number", menu));
  Outcome text = RunToEnd({CONFIGCTL_PATH, "describe", "FrontPanelLock"});
  EXPECT_EQ(0, text.exitCode);
  for (const std::string& expected : std::vector<std::string>{
           "eParamID_FrontPanelLock (0x4D575A8E)\n", "\n  type            enumeration (3)\n",
           "\n  values          0 Unlocked\n                  1 Locked\n",
           "\n  default         0 (Unlocked)\n", "\n  class names     panel_hidden\n",
           "\n  menu number     " + menu + "\n"}) {
    EXPECT_TRUE(Has(text.out, expected)) << expected << text.out;
  }
  std::string json = Summary(RunToEnd({CONFIGCTL_PATH, "--json", "describe", "SystemName"}));
  EXPECT_EQ(0u, json.find("0|{\"param\":\"eParamID_SystemName\",\"id\":1715415909,"));
  EXPECT_TRUE(Has(json, ",\"kind\":\"string\",\"type\":12,"));
  EXPECT_TRUE(Has(json, ",\"default\":\"zyn-kr-9\","));

  // The catalogue without configd's own parameters, which configctl knows too.
  Outcome list = RunToEnd({CONFIGCTL_PATH, "list"});
  std::vector<std::string> all = Lines(list.out);
  EXPECT_EQ(GetParamIDs().size(), all.size());
  EXPECT_FALSE(Has(list.out, "eParamID_Owner"));
  EXPECT_EQ(0, RunToEnd({CONFIGCTL_PATH, "describe", "OwnerHealth"}).exitCode);
  std::vector<std::string> allJson = Lines(RunToEnd({CONFIGCTL_PATH, "list", "--json"}).out);
  EXPECT_EQ(GetParamIDs().size() + 2, allJson.size());  // the brackets on lines of their own

  unsigned int group = 0;
  ASSERT_TRUE(GetDescriptor(kFrontPanelLock)->GetAttribute("ParamGroup", group));
  std::vector<std::string> rows =
      Lines(RunToEnd({CONFIGCTL_PATH, "list", "--group", std::to_string(group)}).out);
  std::list<unsigned int> expected = GetParamGroup(static_cast<int>(group));
  ASSERT_EQ(expected.size(), rows.size());
  auto id = expected.begin();
  for (const std::string& row : rows) {  // "<menu number>  0x<ID>  <ID name>  <display name>"
    EXPECT_EQ(std::stoul(row.substr(row.find("0x"), 10), nullptr, 16), *id++) << row;
  }
  EXPECT_EQ(1, RunToEnd({CONFIGCTL_PATH, "list", "--group", "99999"}).exitCode);

  for (const char* line :
       {"", "frobnicate", "get", "set FrontPanelLock", "set a b c", "describe", "describe a b",
        "list extra", "watch --count 0", "watch --count", "list --group x", "get a --count 2",
        "watch --group 1", "--json=yes list", "--bogus list", "--uri http://127.0.0.1:43110 list",
        "get SystemName --force", "health extra"}) {
    std::vector<std::string> argv = Words(line);
    argv.insert(argv.begin(), CONFIGCTL_PATH);
    Outcome outcome = RunToEnd(argv);
    EXPECT_EQ(2, outcome.exitCode) << line;
    EXPECT_EQ("", outcome.out) << line;
    EXPECT_EQ(0u, outcome.err.find("configctl: ")) << outcome.err;
  }
  EXPECT_EQ(0u, Summary(RunToEnd({CONFIGCTL_PATH, "--help"})).find("0|Usage: configctl"));

  // An unreachable configd is one line and status 1.
  CreateDescriptors();
  std::string uri = "socket://127.0.0.1:" + std::to_string(FreePort());
  for (const std::vector<std::string>& args :
       std::vector<std::vector<std::string>>{{"get", "FrontPanelLock"},
                                             {"set", "SystemName", "x"},
                                             {"watch", "--json"},
                                             {"health"}}) {
    EXPECT_EQ("1||configctl: cannot reach configd at " + uri + "\n",
              Summary(RunToEnd(CtlArgs(uri, args))));
  }
  // --verbose lets the library's own diagnostics through as well.
  Outcome verbose = RunToEnd(CtlArgs(uri, {"--verbose", "get", "FrontPanelLock"}));
  EXPECT_EQ(1, verbose.exitCode);
  EXPECT_LT(1u, Lines(verbose.err).size());
  // describe and list need no daemon.
  EXPECT_EQ(0, RunToEnd(CtlArgs(uri, {"describe", "SystemName"})).exitCode);
}

TEST_F(ConfigctlDaemonTest, ValuesReadOnlyToUsersAreRefusedUnlessForcedAndHealthReadsOne) {
  std::string before = Ctl({"get", "SoftwareVersion", "ReferenceAlarm", "LED_Alarm"}).out;
  for (const char* name : {"SoftwareVersion", "ReferenceAlarm", "LED_Alarm", "OwnerHealth"}) {
    EXPECT_EQ("1||configctl: eParamID_" + std::string(name) + " is read-only\n",
              Summary(Ctl({"set", name, "1"})));
  }
  EXPECT_EQ(before, Ctl({"get", "SoftwareVersion", "ReferenceAlarm", "LED_Alarm"}).out);
  // The user's alarm settings stay settable; --force simulates the hardware.
  EXPECT_EQ(0, Ctl({"set", "SuppressReferenceAlarm", "1"}).exitCode);
  Outcome forced = Ctl({"set", "--force", "ReferenceAlarm", "Alarm"});
  EXPECT_EQ(0, forced.exitCode) << forced.err;
  EXPECT_EQ("eParamID_ReferenceAlarm = 1 (Alarm)\n", Ctl({"get", "ReferenceAlarm"}).out);

  // health is ok, or configd's error line in the read-only OwnerHealth.
  EXPECT_EQ("0|ok\n|", Summary(Ctl({"health"})));
  EXPECT_EQ("{\"health\":\"ok\"}\n", Ctl({"--json", "health"}).out);
  // configd publishes a failed write as one line; a forced set stands in for it.
  const std::string failed = "state folder /var/lib/configd: No space left on device";
  ASSERT_EQ(0, Ctl({"set", "--force", "OwnerHealth", failed}).exitCode);
  EXPECT_EQ("1|" + failed + "\n|", Summary(Ctl({"health"})));
}

TEST_F(ConfigctlDaemonTest, PresetUsageJsonListEnvironmentUriAndVersions) {
  const std::string usage = "configctl: usage: configctl preset ",
                    help = "Try 'configctl --help'.\n";
  for (const auto& [args, outcome] : std::vector<std::pair<std::vector<std::string>, std::string>>{
           {{"preset", "save"}, "2||" + usage + "save N [--name TEXT]\n" + help},
           {{"preset", "recall", "abc"}, "2||" + usage + "recall N\n" + help},
           {{"preset", "export", "x", "file"}, "2||" + usage + "export N FILE\n" + help},
           {{"preset", "recall", "41"}, "1||configctl: invalid preset '41' (0 to 40)\n"}}) {
    EXPECT_EQ(outcome, Summary(Ctl(args)));
  }

  Outcome list = Ctl({"--json", "preset", "list"});
  EXPECT_EQ(0, list.exitCode) << list.err;
  nlohmann::json presets = nlohmann::json::parse(list.out, nullptr, false);
  ASSERT_TRUE(presets.is_array()) << list.out;
  ASSERT_EQ(41u, presets.size());
  EXPECT_EQ((nlohmann::json{{"preset", 0}, {"name", "Factory values"}, {"state", "factory"}}),
            presets[0]);
  EXPECT_EQ("empty", presets[40]["state"]);

  // CONFIGCTL_URI names the daemon unless --uri does; it is checked like --uri.
  setenv("CONFIGCTL_URI", daemon.Uri().c_str(), 1);
  Outcome fromEnvironment = RunToEnd({CONFIGCTL_PATH, "get", "SystemName"});
  setenv("CONFIGCTL_URI", "http://127.0.0.1:1", 1);
  Outcome badEnvironment = RunToEnd({CONFIGCTL_PATH, "get", "SystemName"});
  Outcome overridden = Ctl({"get", "SystemName"});
  unsetenv("CONFIGCTL_URI");
  EXPECT_EQ("eParamID_SystemName = zyn-kr-9\n", fromEnvironment.out) << fromEnvironment.err;
  EXPECT_EQ(2, badEnvironment.exitCode);
  EXPECT_TRUE(Has(badEnvironment.err, "unsupported URI 'http://127.0.0.1:1'"))
      << badEnvironment.err;
  EXPECT_EQ(0, overridden.exitCode) << overridden.err;

  // configweb states the same version as configctl.
  std::string web = CONFIGCTL_PATH;
  web = web.substr(0, web.rfind('/')) + "/configweb/configweb";
  if (access(web.c_str(), X_OK) != 0) GTEST_SKIP() << web << " is not built";
  Outcome version = RunToEnd({web, "--version"});
  EXPECT_EQ(0, version.exitCode);
  EXPECT_EQ(std::string("configweb ") + LIBCONFIG_VERSION + "\n", version.out);
  EXPECT_EQ(RunToEnd({CONFIGCTL_PATH, "--version"}).out, "configctl " LIBCONFIG_VERSION "\n");
}
