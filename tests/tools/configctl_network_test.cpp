// configctl against a running configd over the network transports: the
// TCP and UDP servers, the UDP server's multicast events, and caching.
#include <signal.h>

#include "tools_fixture.h"

using namespace tools_test;

TEST_F(ConfigctlDaemonTest, GetSetAndWatchOverTcpUdpAndMulticast) {
  int round = 0;
  for (const char* scheme : {"tcp", "udp"}) {
    SCOPED_TRACE(scheme);
    const std::string uri = daemon.NetworkUri(scheme);
    Outcome set = RunToEnd(CtlArgs(uri, {"set", "FrontPanelLock", "Locked"}));
    EXPECT_EQ("eParamID_FrontPanelLock = 1 (Locked)\n", set.out) << set.err;
    EXPECT_EQ("eParamID_FrontPanelLock = 1 (Locked)\n", Ctl({"get", "FrontPanelLock"}).out)
        << "the change reached the store the local clients see";
    Outcome refused = RunToEnd(CtlArgs(uri, {"set", "FrontPanelLock", "7"}));
    EXPECT_EQ(1, refused.exitCode);
    EXPECT_TRUE(Has(refused.err, "'7' is not a value of eParamID_FrontPanelLock")) << refused.err;
    Outcome clamped = RunToEnd(CtlArgs(uri + "/caching=true", {"set", kClampedParam, "250"}));
    EXPECT_EQ("eParamID_DisplayIntensity = 100 % (clamped from 250 %)\n", clamped.out)
        << clamped.err;
    EXPECT_EQ("eParamID_FrontPanelLock = 1 (Locked)\n",
              RunToEnd(CtlArgs(uri + "/caching=true", {"get", "FrontPanelLock"})).out);

    // A change made over the local socket reaches a watch over the network.
    std::string line;
    ASSERT_TRUE(WatchOnce(CtlArgs(uri, {"watch", "SystemName", "--count", "1"}), line, [&] {
      Ctl({"set", "SystemName", "net-" + std::to_string(++round)});
    })) << line;
    EXPECT_TRUE(Has(line, "eParamID_SystemName = net-")) << line;
    Ctl({"set", "FrontPanelLock", "Unlocked"});
  }
  // The multicast URI alone is an events-only client on the event port.
  auto lock = [&] { Ctl({"set", "FrontPanelLock", "Locked"}); };
  std::string line;
  ASSERT_TRUE(
      WatchOnce(CtlArgs(daemon.NetworkUri("multicast"), {"watch", "--count", "1"}), line, lock))
      << line;
  EXPECT_TRUE(Has(line, "eParamID_FrontPanelLock = 1 (Locked)")) << line;
}

TEST_F(ConfigctlDaemonTest, NetworkWatchEndsWithStatusOneWhenConfigdStops) {
  // A multicast URI carries events only: a request over it is refused.
  EXPECT_EQ(
      "1||configctl: get: multicast URIs carry configd's events only (watch); use socket://, "
      "tcp:// or udp://\n",
      Summary(RunToEnd(CtlArgs(daemon.NetworkUri("multicast"), {"get", "SystemName"}))));

  ChildProcess watches[2];
  int round = 0;
  for (int i = 0; i < 2; ++i) {
    ASSERT_TRUE(watches[i].Start(CtlArgs(daemon.NetworkUri(i == 0 ? "tcp" : "udp"), {"watch"})));
    std::string line;
    ASSERT_TRUE(NextWatchLine(
        watches[i],
        [&] {
          Ctl({"set", "SystemName", "stop-" + std::to_string(++round)});
        },
        line))
        << "the watch never heard a change";
  }
  daemon.Stop(SIGTERM);
  for (int i = 0; i < 2; ++i) {
    SCOPED_TRACE(i == 0 ? "tcp" : "udp");
    Outcome watched = watches[i].Wait(kStopMs);
    EXPECT_EQ(1, watched.exitCode) << "not a crash: " << watched.err;
    EXPECT_TRUE(Has(watched.err, "configctl: lost the connection to configd at ")) << watched.err;
  }
}
