// configctl's map and --mapped get, set and watch (a generic parameter
// through the unit's mapper over configd's connection), with the selectors
// configd holds, and export-mapping.
#include <stdlib.h>
#include <unistd.h>

#include <fstream>
#include <nlohmann/json.hpp>

#include "tools_fixture.h"

using namespace tools_test;

TEST_F(ConfigctlDaemonTest, MapAndMappedCommandsFollowTheSelectorsConfigdHolds) {
  EXPECT_EQ(
      "0|eParamID_Vid1YUVProcAmpGain -> eParamID_Vid1YUVProcAmpGain_SDI1\n"
      "eParamID_IPAddress -> eParamID_IPAddress_DHCP\n"
      "eParamID_FrontPanelLock -> eParamID_FrontPanelLock\n|",  // nor the mapper's build lines
      Summary(Ctl({"map", "Vid1YUVProcAmpGain", "IPAddress", "FrontPanelLock"})));
  // A generic parameter is as writable as the one it stands for now.
  EXPECT_EQ(
      "1||configctl: eParamID_IPAddress_DHCP is read-only (eParamID_IPAddress stands for it now)\n",
      Summary(Ctl({"--mapped", "set", "IPAddress", "127.0.0.9"})));
  ASSERT_EQ(0, Ctl({"set", "Vid1VideoInput", "HDMI"}).exitCode);
  ASSERT_EQ(0, Ctl({"set", "IPConfig", "1"}).exitCode);
  EXPECT_EQ(0, Ctl({"--mapped", "set", "IPAddress", "127.0.0.9"}).exitCode);
  EXPECT_EQ("eParamID_IPAddress_Static = 127.0.0.9\n", Ctl({"get", "IPAddress_Static"}).out);
  EXPECT_EQ("eParamID_Vid1YUVProcAmpGain -> eParamID_Vid1YUVProcAmpGain_HDMI\n",
            Ctl({"map", "Vid1YUVProcAmpGain"}).out);
  EXPECT_EQ(
      "{\"param\":\"eParamID_SubnetMask\",\"id\":4087209610,\"maps_to\":"
      "\"eParamID_SubnetMask_Static\",\"maps_to_id\":1115367906}\n",
      Ctl({"--json", "map", "SubnetMask"}).out);

  const std::string gain = "eParamID_Vid1YUVProcAmpGain", hdmi = gain + "_HDMI";
  ASSERT_EQ(0, Ctl({"set", hdmi, "32.1"}).exitCode);
  EXPECT_EQ("0|" + gain + " = 32.1 %\n|", Summary(Ctl({"--mapped", "get", "Vid1YUVProcAmpGain"})))
      << "the mapper's build lines stay off the output";
  std::string sdi1 = Ctl({"get", gain + "_SDI1"}).out;
  EXPECT_EQ(0, Ctl({"--mapped", "set", "Vid1YUVProcAmpGain", "40.0 %"}).exitCode);
  EXPECT_EQ(hdmi + " = 40.0 %\n", Ctl({"get", hdmi}).out);
  EXPECT_EQ(sdi1, Ctl({"get", gain + "_SDI1"}).out) << "only the selected specific changes";

  auto change = [&] { Ctl({"set", "--raw", hdmi, "500"}); };
  std::string line;
  std::vector<std::string> watch = {"--mapped", "watch", gain, "--count", "1"};
  ASSERT_TRUE(WatchOnce(CtlArgs(daemon.Uri(), watch), line, change)) << line;
  EXPECT_EQ(" " + gain + " = 50.0 %", line.substr(23)) << "the specific's change, as the generic's";
  EXPECT_EQ(2, Ctl({"--mapped", "describe", gain}).exitCode) << "--mapped is for get, set, watch";
}

TEST(ConfigctlTest, ExportMappingWritesTheTablesWithoutADaemon) {
  char path[] = "/tmp/configctl_mapping_XXXXXX";
  ASSERT_EQ(0, close(mkstemp(path)));
  Outcome written = RunToEnd({CONFIGCTL_PATH, "export-mapping", path});
  nlohmann::json tables = nlohmann::json::parse(std::ifstream(path), nullptr, false);
  unlink(path);
  EXPECT_EQ("0||", Summary(written));
  EXPECT_EQ(24u, tables["forward_maps"].size()) << "the mapper's own export, checked there";
  EXPECT_EQ("1||configctl: cannot write the mapping tables to /nonexistent/m.json\n",
            Summary(RunToEnd({CONFIGCTL_PATH, "export-mapping", "/nonexistent/m.json"})));
}
