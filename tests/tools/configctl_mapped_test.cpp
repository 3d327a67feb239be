// configctl --mapped: get, set and watch of a generic parameter through the
// unit's mapper over configd's connection.
#include "tools_fixture.h"

using namespace tools_test;

TEST_F(ConfigctlDaemonTest, MappedCommandsFollowTheSelector) {
  const std::string gain = "eParamID_Vid1YUVProcAmpGain", hdmi = gain + "_HDMI";
  ASSERT_EQ(0, Ctl({"set", "Vid1VideoInput", "HDMI"}).exitCode);
  ASSERT_EQ(0, Ctl({"set", hdmi, "321"}).exitCode);
  Outcome got = Ctl({"--mapped", "get", "Vid1YUVProcAmpGain"});
  EXPECT_EQ(gain + " = 321\n", got.out);
  EXPECT_EQ("", got.err) << "the mapper's build lines stay off the output";
  std::string sdi1 = Ctl({"get", gain + "_SDI1"}).out;
  EXPECT_EQ(0, Ctl({"--mapped", "set", "Vid1YUVProcAmpGain", "400"}).exitCode);
  EXPECT_EQ(hdmi + " = 400\n", Ctl({"get", hdmi}).out);
  EXPECT_EQ(sdi1, Ctl({"get", gain + "_SDI1"}).out) << "only the selected specific changes";

  ChildProcess watch;
  ASSERT_TRUE(watch.Start(CtlArgs(daemon.Uri(), {"--mapped", "watch", gain, "--count", "1"})));
  std::string line;
  ASSERT_TRUE(NextWatchLine(
      watch,
      [&] {
        Ctl({"set", hdmi, "500"});
      },
      line));
  EXPECT_EQ(" " + gain + " = 500", line.substr(23)) << "the specific's change, as the generic's";
  EXPECT_EQ(0, watch.Wait(kStopMs).exitCode);
  EXPECT_EQ(2, Ctl({"--mapped", "describe", gain}).exitCode) << "--mapped is for get, set, watch";
}
