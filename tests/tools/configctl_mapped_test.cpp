// configctl --mapped: get, set and watch of generic parameters through the
// unit's mapper over configd's connection.
#include "tools_fixture.h"

using namespace tools_test;

namespace {

const std::string kGeneric = "eParamID_Vid1YUVProcAmpGain";

// The line a plain get prints for `specific`, under the generic's name.
std::string AsGeneric(const std::string& line, const std::string& specific) {
  return kGeneric + line.substr(specific.size());
}

}  // namespace

TEST_F(ConfigctlDaemonTest, MappedCommandsFollowTheSelector) {
  const std::string hdmi = kGeneric + "_HDMI";
  ASSERT_EQ(0, Ctl({"set", "Vid1VideoInput", "HDMI"}).exitCode);
  ASSERT_EQ(0, Ctl({"set", hdmi, "321"}).exitCode);
  Outcome got = Ctl({"--mapped", "get", "Vid1YUVProcAmpGain", "FrontPanelLock"});
  EXPECT_EQ(0, got.exitCode);
  EXPECT_EQ("", got.err) << "the mapper's build lines stay off the output";
  EXPECT_EQ(AsGeneric(Ctl({"get", hdmi}).out, hdmi) + Ctl({"get", "FrontPanelLock"}).out, got.out);

  std::string sdi1 = Ctl({"get", kGeneric + "_SDI1"}).out;
  Outcome set = Ctl({"--mapped", "set", "Vid1YUVProcAmpGain", "400"});
  EXPECT_EQ(0, set.exitCode) << set.err;
  EXPECT_EQ(hdmi + " = 400\n", Ctl({"get", hdmi}).out);
  EXPECT_EQ(sdi1, Ctl({"get", kGeneric + "_SDI1"}).out) << "only the selected specific changes";

  // A change of the selected specific is watched as a change of the generic.
  ChildProcess watch;
  ASSERT_TRUE(watch.Start(
      CtlArgs(daemon.Uri(), {"--mapped", "watch", "Vid1YUVProcAmpGain", "--count", "1"})));
  std::string line;
  ASSERT_TRUE(NextWatchLine(
      watch,
      [&] {
        Ctl({"set", hdmi, "500"});
      },
      line));
  EXPECT_EQ(" " + kGeneric + " = 500", line.substr(23));
  Outcome done = watch.Wait(kStopMs);
  EXPECT_EQ(0, done.exitCode) << done.err;

  Outcome misplaced = Ctl({"--mapped", "describe", "Vid1YUVProcAmpGain"});
  EXPECT_EQ(2, misplaced.exitCode);
  EXPECT_NE(std::string::npos, misplaced.err.find("--mapped belongs to get, set and watch"));
}
