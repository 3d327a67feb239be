// configctl's map and export-mapping: the mapping as configd's selectors
// make it, and the mapper's tables written to a file.
#include <stdlib.h>
#include <unistd.h>

#include <fstream>
#include <nlohmann/json.hpp>

#include "tools_fixture.h"

using namespace tools_test;

TEST_F(ConfigctlDaemonTest, MapFollowsTheSelectorsConfigdHolds) {
  std::vector<std::string> map = {"map", "Vid1YUVProcAmpGain", "IPAddress", "FrontPanelLock"};
  Outcome before = Ctl(map);
  EXPECT_EQ(0, before.exitCode);
  EXPECT_EQ(
      "eParamID_Vid1YUVProcAmpGain -> eParamID_Vid1YUVProcAmpGain_SDI1\n"
      "eParamID_IPAddress -> eParamID_IPAddress_DHCP\n"
      "eParamID_FrontPanelLock -> eParamID_FrontPanelLock\n",
      before.out);
  EXPECT_EQ("", before.err);  // nor the mapper's build lines

  ASSERT_EQ(0, Ctl({"set", "Vid1VideoInput", "HDMI"}).exitCode);
  ASSERT_EQ(0, Ctl({"set", "IPConfig", "1"}).exitCode);
  EXPECT_EQ(
      "eParamID_Vid1YUVProcAmpGain -> eParamID_Vid1YUVProcAmpGain_HDMI\n"
      "eParamID_IPAddress -> eParamID_IPAddress_Static\n"
      "eParamID_FrontPanelLock -> eParamID_FrontPanelLock\n",
      Ctl(map).out);
  EXPECT_EQ(
      "{\"param\":\"eParamID_SubnetMask\",\"id\":4087209610,\"maps_to\":"
      "\"eParamID_SubnetMask_Static\",\"maps_to_id\":1115367906}\n",
      Ctl({"--json", "map", "SubnetMask"}).out);

  Outcome unknown = Ctl({"map", "IPAddress", "NoSuchParam"});
  EXPECT_EQ(1, unknown.exitCode);
  EXPECT_EQ("", unknown.out);
  EXPECT_EQ("configctl: unknown parameter 'NoSuchParam'\n", unknown.err);
}

TEST(ConfigctlTest, ExportMappingWritesTheTablesWithoutADaemon) {
  char path[] = "/tmp/configctl_mapping_XXXXXX";
  int fd = mkstemp(path);
  ASSERT_GE(fd, 0);
  close(fd);
  // An unreachable URI: export-mapping does not need configd.
  std::string uri = "socket://127.0.0.1:" + std::to_string(FreePort());
  Outcome written = RunToEnd(CtlArgs(uri, {"export-mapping", path}));
  std::ifstream in(path);
  nlohmann::json tables = nlohmann::json::parse(in, nullptr, false);
  unlink(path);
  EXPECT_EQ(0, written.exitCode) << written.err;
  EXPECT_EQ("", written.out);
  EXPECT_EQ("", written.err);
  ASSERT_FALSE(tables.is_discarded());
  EXPECT_EQ(24u, tables["forward_maps"].size());
  const nlohmann::json& gain = tables["forward_maps"]["0x883AD0D9"];
  EXPECT_EQ("eMapByInput", gain["map_scheme"]);
  EXPECT_EQ("eParamID_Vid1YUVProcAmpGain_HDMI", gain["param_maps"][6]["param"]);

  Outcome failed = RunToEnd({CONFIGCTL_PATH, "export-mapping", "/nonexistent/m.json"});
  EXPECT_EQ(1, failed.exitCode);
  EXPECT_EQ("configctl: cannot write the mapping tables to /nonexistent/m.json\n", failed.err);
  for (const std::vector<std::string>& args : std::vector<std::vector<std::string>>{
           {"map"}, {"export-mapping"}, {"export-mapping", "a", "b"}}) {
    std::vector<std::string> argv = args;
    argv.insert(argv.begin(), CONFIGCTL_PATH);
    EXPECT_EQ(2, RunToEnd(argv).exitCode) << args.size();
  }
}
