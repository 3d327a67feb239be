// configd as a process: the ready line, serving, a clean stop on SIGTERM and
// SIGINT with clients still connected, and its start-up failures.
#include <signal.h>
#include <unistd.h>

#include "config/access/loopback_server.h"
#include "config/access/socket_factory.h"
#include "config/config_factory_impl.h"
#include "test_stderr.h"
#include "tools_fixture.h"

using namespace tools_test;

TEST(ConfigdTest, ServesUntilSignalledAndSaysWhyItCannotStart) {
  Socket holder(Socket::kInternetDomain, Socket::kStream);
  ASSERT_TRUE(holder.create() && holder.bind(0) && holder.listen());
  std::string port = std::to_string(PortOf(holder));

  Outcome outcome = RunToEnd({CONFIGD_PATH, "--port", port});
  EXPECT_EQ(1, outcome.exitCode);
  EXPECT_EQ("", outcome.out);
  EXPECT_TRUE(Has(outcome.err, "configd: cannot listen on port " + port + "\n")) << outcome.err;
  // A low soft descriptor limit is raised to the hard one; a hard limit
  // below what the connection limit needs is said before anything else.
  for (std::string limit : {"-S -n 100", "-n 100"}) {
    outcome = RunToEnd({"/bin/sh", "-c", "ulimit " + limit + " && exec \"$0\" \"$@\"", CONFIGD_PATH,
                        "--port", port, "--max-connections", "100"});
    EXPECT_EQ(limit == "-n 100" ? 0 : std::string::npos,
              outcome.err.find("configd: the descriptor limit of 100 is below the 264 that "
                               "--max-connections 100 needs; clients past it are closed\n"))
        << limit << ": " << outcome.err;
  }
  holder.close();

  // The command line: help, version and each malformed option.
  EXPECT_EQ(0u, Summary(RunToEnd({CONFIGD_PATH, "--help"})).find("0|Usage: configd [OPTION]..."));
  EXPECT_EQ("configd " LIBCONFIG_VERSION "\n", RunToEnd({CONFIGD_PATH, "--version"}).out);
  for (std::vector<std::string> args :
       std::vector<std::vector<std::string>>{{"--port"},
                                             {"--port", "http"},
                                             {"--port", "65536"},
                                             {"--port", "-1"},
                                             {"--daemon"},
                                             {"--flush-ms", "0"},
                                             {"--flush-ms=60001"},
                                             {"--state-dir="},
                                             {"--multicast-port=0"},
                                             {"--address", "lan"},
                                             {"--max-connections", "-1"},
                                             {"--read-timeout-ms", "-5"},
                                             {"--read-timeout-ms=3600001"},
                                             {"--udp-store-idle-s", "604801"}}) {
    args.insert(args.begin(), CONFIGD_PATH);
    outcome = RunToEnd(args);
    EXPECT_EQ(0u, Summary(outcome).find("2||configd: ")) << args.back() << ": " << outcome.err;
  }

  CreateDescriptors();
  for (int signal : {SIGTERM, SIGINT}) {
    SCOPED_TRACE(signal == SIGTERM ? "SIGTERM" : "SIGINT");
    // SIGTERM's run is verbose; SIGINT's prints nothing on standard error.
    const bool verbose = signal == SIGTERM;
    Daemon daemon;
    ASSERT_TRUE(
        daemon.Start(verbose ? std::vector<std::string>{"--verbose"} : std::vector<std::string>{}));
    EXPECT_EQ("configd: ready on port " + std::to_string(daemon.port), daemon.readyLine);
    EXPECT_NE(0, daemon.tcpPort) << "a tcp ready line with its port";
    EXPECT_NE(0, daemon.udpPort) << "a udp ready line with its port";
    daemon.process->Signal(SIGHUP);  // a closed terminal does not stop the unit
    // A watching client keeps two connections open through the stop.
    ChildProcess watch;
    ASSERT_TRUE(watch.Start(CtlArgs(daemon.Uri(), {"watch", "FrontPanelLock"})));
    std::string line;
    ASSERT_TRUE(NextWatchLine(
        watch,
        [&] {
          RunToEnd(CtlArgs(daemon.Uri(), {"set", "FrontPanelLock", "1"}));
        },
        line));

    Outcome stopped = daemon.Stop(signal);
    EXPECT_EQ(0u, Summary(stopped).find("0||")) << stopped.err;
    if (!verbose) {
      EXPECT_EQ("", stopped.err) << "nothing was wrong";
    } else {
      EXPECT_TRUE(Has(stopped.err, "configd: SIGHUP ignored\n")) << stopped.err;
      EXPECT_TRUE(Has(stopped.err, "configd: stopped")) << stopped.err;
      for (const char* alarming : {"failed", "rror", "Invalid argument"})
        EXPECT_FALSE(Has(stopped.err.substr(stopped.err.find("received, stopping")), alarming))
            << "a clean stop says nothing alarming: " << stopped.err;
    }
    // The watcher notices that the daemon has gone.
    Outcome watched = watch.Wait(kStopMs);
    EXPECT_EQ(1, watched.exitCode);
    EXPECT_TRUE(Has(watched.err, "configctl: lost the connection to configd")) << watched.err;
  }
}

// Each open store holds a whole catalogue of values: every server refuses a
// store beyond --max-stores, with few lines, and still serves open ones.
TEST(ConfigdTest, MaxStoresRefusesNewStoresOnEveryServer) {
  Daemon daemon;
  ASSERT_TRUE(daemon.Start({"--max-stores", "2"}));  // store 0 and one more
  auto uri = [&](const std::string& scheme, int store) {
    return (scheme == "socket" ? daemon.Uri() : daemon.NetworkUri(scheme)) +
           "/configid=" + std::to_string(store);
  };
  zyn::config::access::SocketFactory factory;
  ConfigFactoryImpl* network = ConfigFactoryImpl::GetInstance();
  std::string err = Stderr([&] {
    Config* open = factory.Connect(uri("socket", 1));
    for (int store = 2; store < 12; ++store) factory.Connect(uri("socket", store));
    for (const char* scheme : {"tcp", "udp"}) EXPECT_EQ(nullptr, network->Connect(uri(scheme, 2)));
    Config* again = network->Connect(uri("udp", 1));
    EXPECT_TRUE(open != nullptr && again != nullptr) << "open stores still connect";
    network->Disconnect(again);
    factory.Disconnect(open);
  });
  EXPECT_EQ(10u, Count(err, "SocketFactory::ConfirmConnection: server responded with error 2\n"));
  EXPECT_EQ(2u, Count(err, "NetworkClient::ConfirmConnection: server responded with error 2\n"));
  size_t lines = Count(daemon.Stop(SIGTERM).err, "store limit of 2 reached, configid");
  EXPECT_TRUE(lines >= 1 && lines < 12) << lines << " lines for 12 refusals: one a second at most";
}

// A stream client stalled mid-request loses its connection slot after
// --read-timeout-ms; a store opened over UDP and left unused is given back
// after --udp-store-idle-s, making room under --max-stores.
TEST(ConfigdTest, StalledClientsAndIdleUdpStoresAreReleased) {
  Daemon daemon;
  ASSERT_TRUE(daemon.Start({"--max-connections", "1", "--read-timeout-ms", "200", "--max-stores",
                            "2", "--udp-store-idle-s", "1"}));
  RawPeer stalled(daemon.port);
  stalled.SendBytes("\x03\x00", 2);  // half a message type
  EXPECT_TRUE(stalled.ClosedByPeer(10000)) << "the stalled client was kept";
  stalled.Close();
  EXPECT_EQ(0, RunToEnd(CtlArgs(daemon.Uri(), {"get", "FrontPanelLock"})).exitCode)
      << "the freed slot serves the next client";

  ConfigFactoryImpl* network = ConfigFactoryImpl::GetInstance();
  auto uri = [&](int store) {
    return daemon.NetworkUri("udp") + "/configid=" + std::to_string(store);
  };
  Stderr([&] {
    Config* first = network->Connect(uri(1));
    EXPECT_NE(nullptr, first);
    Config* second = nullptr;
    for (int tries = 0; second == nullptr && tries < 100; ++tries) {
      usleep(100000);
      second = network->Connect(uri(2));
    }
    EXPECT_NE(nullptr, second) << "the idle store 1 was never given back";
    network->Disconnect(second);
    network->Disconnect(first);
  });
  EXPECT_EQ(0, daemon.Stop(SIGTERM).exitCode);
}
