// The network clients against the real network servers on loopback ports,
// raw multicast senders for the event stream, and silent peers for the
// fatal response time-out.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <memory>
#include <thread>

#include "config/access/network_factory.h"
#include "config/access/network_tcp_client.h"
#include "config/access/network_udp_client.h"
#include "config/manager/config_cache.h"
#include "config/manager/recording_listener.h"
#include "config/values/string_value.h"
#include "loopback_server.h"
#include "test_stderr.h"

using namespace zyn::boxline::config::access;
using namespace test_catalogue;
using zyn::config::access::MakeHeader;

namespace {

// True when "<hex ID>=<value>", as the listener renders events, has arrived
// within the deadline.
bool Heard(RecordingListener& listener, const std::string& entry, int timeoutMs = 5000) {
  for (int waited = 0; waited <= timeoutMs; waited += 2) {
    if ((" " + listener.Rendered() + " ").find(" " + entry + " ") != std::string::npos) return true;
    usleep(2000);
  }
  return false;
}

template <typename F>
auto Quietly(F body) {
  testing::internal::CaptureStderr();
  auto result = body();
  testing::internal::GetCapturedStderr();
  return result;
}

class NetworkClientTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_NE(0, tcp.port);
    ASSERT_NE(0, udp.port);
    multicast = events.JoinEvents();
    tcp.store->Set(kPercent, 50);
    tcp.store->Set(kName, std::string("unit"));
    tcp.store->Set(kMode, 1);
  }
  template <typename Client>
  std::unique_ptr<Client> Open(const std::string& scheme, int port, const std::string& tail = "") {
    NetworkClient* client = Quietly(
        [&] { return factory.Connect(scheme + "://127.0.0.1:" + std::to_string(port) + tail); });
    EXPECT_NE(nullptr, dynamic_cast<Client*>(client)) << scheme;
    return std::unique_ptr<Client>(dynamic_cast<Client*>(client));
  }
  // A client bound to the events port, listening; null where the loopback
  // interface cannot join the group.
  std::unique_ptr<NetworkUDPClient> Listening(RecordingListener& recorder,
                                              const std::string& tail = "") {
    auto client = Open<NetworkUDPClient>("multicast", events.port, tail);
    if (!multicast || client == nullptr) return nullptr;
    Quietly([&] { return client->AddConfigEventListener(&recorder); });
    return client;
  }
  // Multicasts a Param Changed Event from the test, as a server would.
  void Multicast(uint32_t sequence, uint32_t configID, uint32_t paramID, uint32_t value) {
    Socket sender(Socket::kInternetDomain, Socket::kDatagram);
    ASSERT_TRUE(sender.create() && sender.set_multicast_interface("127.0.0.1"));
    XCONFIGMGR_RESPONSE_T event{
        MakeHeader(XCFG_PARAM_CHANGED_EVENT, 0, sequence, configID), paramID, 0, value, 0, 3072};
    char bytes[sizeof event];
    zyn::config::access::Pack(event, bytes);
    sockaddr_in group{};
    group.sin_family = AF_INET;
    group.sin_port = htons(static_cast<uint16_t>(events.port));
    group.sin_addr.s_addr = inet_addr(kXConfigEventGroup);
    ASSERT_TRUE(sender.sendto(bytes, sizeof bytes, group));
  }

  RawDatagramPeer events;  // keeps the test's own event port
  bool multicast = false;  // the loopback interface takes the event group
  NetworkLoopbackServer tcp{SOCK_STREAM, events.port};
  NetworkLoopbackServer udp{SOCK_DGRAM, events.port};
  NetworkFactory factory;
};

}  // namespace

TEST_F(NetworkClientTest, EveryExchangeOverBothTransportsAndCachingUrisStayCurrent) {
  auto tcpClient = Open<NetworkTCPClient>("tcp", tcp.port);
  auto udpClient = Open<NetworkUDPClient>("udp", udp.port);
  ASSERT_TRUE(tcpClient && udpClient);
  for (NetworkClient* client : {static_cast<NetworkClient*>(tcpClient.get()),
                                static_cast<NetworkClient*>(udpClient.get())}) {
    const char* name = client == tcpClient.get() ? "tcp" : "udp";
    EXPECT_TRUE(client->Set(kPercent, 60)) << name;
    EXPECT_EQ(60u, client->Get(kPercent)) << name << ": a Get after a Set sees it";
    EXPECT_TRUE(client->Set(kName, std::string("deck"))) << name;
    std::string text;
    EXPECT_TRUE(client->Get(kName, text)) << name;
    EXPECT_EQ("deck", text) << name;
    EXPECT_EQ(0u, client->LostEvents()) << name;
    EXPECT_NE(nullptr, client->GetParamDescriptor(kPercent)) << "answered from this process";

    std::string err = Stderr([&] {
      EXPECT_EQ(0u, client->Get(kUnknown));
      EXPECT_FALSE(client->Set(kUnknown, 1));
      EXPECT_FALSE(client->Set(kUnknown, std::string("x")));
    });
    for (std::string call : {"Get(eParam_t)", "Set(eParam_t)", "Set(string)"})
      EXPECT_TRUE(Has(err, "NetworkClient::" + call + " - invalid paramid 0xFEEDC0FF \n")) << err;
  }

  // Only UDP answers a Set, so only there a refused value fails it.
  EXPECT_TRUE(Quietly([&] { return tcpClient->Set(kMode, 7); }));
  std::string err = Stderr([&] { EXPECT_FALSE(udpClient->Set(kMode, 7)); });
  EXPECT_TRUE(Has(err, "NetworkUDPClient::Set - response error:-1\n")) << err;
  EXPECT_EQ(1u, udpClient->Get(kMode));

  std::string data = "blob";
  EXPECT_TRUE(udpClient->SetData(kName, data));
  std::string back;
  EXPECT_TRUE(udpClient->GetData(kName, back));
  EXPECT_EQ("blob", back);

  // The process's factory takes network clients back too.
  for (Config* client : std::vector<Config*>{tcpClient.release(), udpClient.release()})
    EXPECT_TRUE(Quietly([&] { return ConfigFactoryImpl::GetInstance()->Disconnect(client); }));

  // "caching=true" over either transport: another client's write reaches the
  // cache through the events, whichever transport it came by (a UDP client,
  // or the owner's own store, which UDP clients hear through the multicast).
  if (!multicast) GTEST_SKIP() << "no multicast on the loopback interface here";
  auto udpWriter = Open<NetworkUDPClient>("udp", udp.port);
  ASSERT_NE(nullptr, udpWriter);
  unsigned int value = 60;
  for (Config* writer : {static_cast<Config*>(udpWriter.get()), tcp.store}) {
    for (const auto& [scheme, port] : {std::make_pair("tcp", tcp.port), {"udp", udp.port}}) {
      const std::string uri = std::string(scheme) + "://127.0.0.1:" + std::to_string(port) +
                              "/caching=true/eventport=" + std::to_string(events.port);
      std::unique_ptr<Config> cache(
          Quietly([&] { return ConfigFactoryImpl::GetInstance()->Connect(uri); }));
      ASSERT_NE(nullptr, dynamic_cast<ConfigCache*>(cache.get())) << uri;
      EXPECT_EQ(tcp.store->Get(kPercent), cache->Get(kPercent)) << uri;
      // The registration has no answer, so the write repeats until its event
      // has come back; a cache without events would keep the old value.
      ++value;
      bool current = false;
      for (int i = 0; i < 250 && !current; ++i) {
        writer->Set(kPercent, value);
        for (int j = 0; j < 10 && !current; ++j) {
          current = cache->Get(kPercent) == value;
          if (!current) usleep(2000);
        }
      }
      EXPECT_TRUE(current) << uri << " never heard the write of "
                           << (writer == tcp.store ? "the owner's store" : "a UDP client");
    }
  }
}

TEST_F(NetworkClientTest, FactoryRefusalsAndAMulticastUriThatOnlyBinds) {
  std::string err = Stderr([&] {
    EXPECT_EQ(nullptr, factory.Connect("ftp://127.0.0.1:1"));
    EXPECT_EQ(nullptr, factory.Connect("tcp://127.0.0.1"));
    EXPECT_EQ(nullptr, factory.Connect("tcp://127.0.0.1:" + std::to_string(events.port)));
  });
  EXPECT_TRUE(Has(err,
                  "NetworkFactory::Connect - The transport for ftp://127.0.0.1:1 is not "
                  "supported\n"));
  EXPECT_TRUE(Has(err,
                  "NetworkFactory::Connect - failed to connect to host "
                  "127.0.0.1, port " +
                      std::to_string(events.port) + "\n"));
  err = Stderr([&] {
    NetworkClient* client =
        factory.Connect("udp://127.0.0.1:" + std::to_string(udp.port) + "/configid=x");
    EXPECT_NE(nullptr, client);
    EXPECT_EQ(0, client != nullptr ? client->GetConfigID() : -1);
    factory.Disconnect(client);
  });
  EXPECT_TRUE(Has(err, "unable to read configid, matches = 0")) << err;

  // A multicast URI binds without connecting: nothing answers on the events
  // port, so any Connect exchange would fail.
  auto client = Open<NetworkUDPClient>("multicast", events.port, "/configid=3");
  ASSERT_NE(nullptr, client);
  EXPECT_EQ(3, client->GetConfigID());
  err = Stderr([&] { EXPECT_EQ(0u, client->Get(kPercent)); });
  EXPECT_TRUE(Has(err, "NetworkClient::Get - send failed")) << err;
  EXPECT_TRUE(factory.Disconnect(client.release())) << "no goodbye to say";
}

TEST_F(NetworkClientTest, TcpListenersKeptAndRegisteredOnceWhileRequestsAreAnswered) {
  // A fake server counts what the client sends on the event connection.
  Socket listening(Socket::kInternetDomain, Socket::kStream);
  ASSERT_TRUE(listening.create() && listening.bind("127.0.0.1", 0) && listening.listen());
  Socket* socket = new Socket(Socket::kInternetDomain, Socket::kStream);
  ASSERT_TRUE(socket->create() && socket->connect("127.0.0.1", PortOf(listening)));
  RecordingListener first, second;
  NetworkTCPClient client(0x10001, socket, eConfigID_Default);
  Socket server(Socket::kInternetDomain, Socket::kStream);
  ASSERT_TRUE(listening.accept(&server));

  EXPECT_TRUE(client.AddConfigEventListener(&first));
  EXPECT_TRUE(client.AddConfigEventListener(&first));
  EXPECT_TRUE(client.AddConfigEventListener(&second));
  XCONFIGMGR_RESPONSE_T event{
      MakeHeader(XCFG_PARAM_CHANGED_EVENT, 1, 0xFFFFFFFF, 0), kPercent, 0, 7, 0, 3072};
  char bytes[sizeof event];
  zyn::config::access::Pack(event, bytes);
  ASSERT_TRUE(server.send(bytes, sizeof bytes));
  ASSERT_TRUE(Heard(second, "FEEDC001=7"));
  EXPECT_EQ("FEEDC001=7", first.Rendered()) << "a listener added twice runs once";

  // Exactly one Add Listener Request (for every parameter) reached the server.
  char received[64];
  ssize_t n = ::recv(server.get_fd(), received, sizeof received, MSG_DONTWAIT);
  ASSERT_EQ(28, n);
  XCONFIGMGR_EVENT_HANDLER_REQUEST_T request;
  zyn::config::access::Unpack(received, request);
  EXPECT_EQ((std::vector<uint32_t>{48, 0x10001, 0, 0, 0, 4096, 0}), WordsOf(request));

  // An event and the answer to a Get that arrive in one segment: the answer
  // waits in the events thread's buffer, where no poll of the socket sees it.
  unsigned int got = 0;
  std::thread requester([&] { got = client.Get(kPercent); });
  ASSERT_EQ(40, server.recv(received, 40)) << "the Get Request";
  XCONFIGMGR_RESPONSE_T answer{
      MakeHeader(XCFG_GET_PARAM_RESPONSE, 0x10001, 0, 0), kPercent, 0, 42, 0, 0};
  char both[2 * sizeof event];
  event.value = 8;
  zyn::config::access::Pack(event, both);
  zyn::config::access::Pack(answer, both + sizeof event);
  ASSERT_TRUE(server.send(both, sizeof both));
  requester.join();
  EXPECT_EQ(42u, got);
  EXPECT_TRUE(Heard(second, "FEEDC001=8"));
  EXPECT_TRUE(client.RemoveConfigEventListener(&first));
  EXPECT_FALSE(client.RemoveConfigEventListener(&first)) << "a listener is removed once";

  // Against the real server: requests on the listening connection.
  auto real = Open<NetworkTCPClient>("tcp", tcp.port);
  auto writer = Open<NetworkTCPClient>("tcp", tcp.port);
  ASSERT_TRUE(real && writer);
  RecordingListener heard;
  ASSERT_TRUE(real->AddConfigEventListener(&heard));
  // Answered after the Add Listener Request on the same connection: the
  // server has registered the real.
  EXPECT_EQ(50u, real->Get(kPercent));
  for (unsigned int value : {61u, 62u, 63u}) {
    EXPECT_TRUE(writer->Set(kPercent, value));
    ASSERT_TRUE(Heard(heard, "FEEDC001=" + std::to_string(value)));
    EXPECT_EQ(value, real->Get(kPercent)) << "a Get on the event connection";
  }
  EXPECT_TRUE(real->Set(kName, std::string("reel")));
  ASSERT_TRUE(Heard(heard, "FEEDC004='reel'"));
  std::string text;
  EXPECT_TRUE(real->Get(kName, text));
  EXPECT_EQ("reel", text);

  // The last listener leaves through the Remove Listener exchange; the
  // connection still serves requests afterwards.
  EXPECT_TRUE(Quietly([&] { return real->RemoveConfigEventListener(&heard); }));
  EXPECT_TRUE(writer->Set(kPercent, 64));
  EXPECT_EQ(64u, writer->Get(kPercent));
  EXPECT_EQ(64u, real->Get(kPercent));
}

TEST_F(NetworkClientTest, UdpEventsReachListeners) {
  RecordingListener recorder, other;
  auto listener = Listening(recorder);
  if (listener == nullptr) GTEST_SKIP() << "no multicast on the loopback interface here";
  auto elsewhere = Listening(other, "/configid=2");
  auto client = Open<NetworkUDPClient>("udp", udp.port);
  ASSERT_TRUE(client && elsewhere);
  RecordingListener own;
  // The requester's own socket is read by its events thread once it
  // listens: responses are handed over.
  ASSERT_TRUE(Quietly([&] { return client->AddConfigEventListener(&own); }));

  std::string err = Stderr([&] {
    EXPECT_TRUE(client->Set(kPercent, 71));
    ASSERT_TRUE(Heard(recorder, "FEEDC001=71"));
    EXPECT_EQ(71u, client->Get(kPercent));
    EXPECT_TRUE(client->Set(kName, std::string("film")));
    ASSERT_TRUE(Heard(recorder, "FEEDC004='film'"));
    EXPECT_FALSE(client->Set(kMode, 7));
    EXPECT_TRUE(Heard(recorder, "FEEDC003=1")) << "a refused Set re-announces the value";
    EXPECT_EQ(0u, listener->LostEvents());
    // Store 2's listener saw the server's events go by, for store 0: once
    // it has one for its own store, it has dropped them all.
    Multicast(1000, 2, kPercent, 99);
    ASSERT_TRUE(Heard(other, "FEEDC001=99"));
  });
  EXPECT_EQ("FEEDC001=99", other.Rendered()) << "an event for another store reached a listener";
  EXPECT_TRUE(Has(err, "NetworkUDPClient::ProcessEvents - ConfigID:2  Inbound ConfigID:0\n"));
  EXPECT_TRUE(Quietly([&] { return client->RemoveConfigEventListener(&own); }));
  EXPECT_EQ(71u, client->Get(kPercent)) << "requests after the last listener left";
}

TEST_F(NetworkClientTest, UdpEventSequenceGapsCountedUntilTheSystemShutsDown) {
  RecordingListener recorder;
  auto listener = Listening(recorder);
  if (listener == nullptr) GTEST_SKIP() << "no multicast on the loopback interface here";
  std::string err = Stderr([&] {
    Multicast(5, 0, kPercent, 1);
    ASSERT_TRUE(Heard(recorder, "FEEDC001=1"));
    EXPECT_EQ(0u, listener->LostEvents()) << "the first event seen sets the count's start";
    Multicast(6, 0, kPercent, 2);
    Multicast(9, 0, kPercent, 3);
    ASSERT_TRUE(Heard(recorder, "FEEDC001=3"));
    EXPECT_EQ(2u, listener->LostEvents());
    // Another store's events count too, before they are dropped.
    Multicast(10, 7, kPercent, 4);
    Multicast(12, 0, kPercent, 5);
    ASSERT_TRUE(Heard(recorder, "FEEDC001=5"));
    EXPECT_EQ(3u, listener->LostEvents());
    // A restarted server counts from 0 again: its events before this one
    // were missed.
    Multicast(2, 0, kPercent, 6);
    ASSERT_TRUE(Heard(recorder, "FEEDC001=6"));
    EXPECT_EQ(5u, listener->LostEvents());
    Multicast(2, 0, kPercent, 7);
    Multicast(3, 0, kPercent, 8);
    ASSERT_TRUE(Heard(recorder, "FEEDC001=8"));
    EXPECT_EQ(5u, listener->LostEvents()) << "a repeated number loses nothing";
    // The system's shut-down ends the events.
    Multicast(4, 0, kSystemStateParamID, 3);
    Multicast(5, 0, kSystemStateParamID, kSystemStateShutdown);
    ASSERT_TRUE(Heard(recorder, "7D02010A=9")) << "the shut-down event itself is delivered";
    Multicast(6, 0, kPercent, 9);
    EXPECT_FALSE(Heard(recorder, "FEEDC001=9", 300)) << "an event after the shut-down was handled";
  });
  EXPECT_TRUE(Has(err, "NetworkUDPClient::ProcessEvents - lost 2 events (sequence 9 after 6)\n"))
      << err;
  EXPECT_TRUE(Has(err,
                  "NetworkUDPClient::ProcessEvents exiting due to system state going into "
                  "shutdown state\n"));
  EXPECT_EQ(
      "FEEDC001=1 FEEDC001=2 FEEDC001=3 FEEDC001=5 FEEDC001=6 FEEDC001=7 FEEDC001=8 7D02010A=3 "
      "7D02010A=9",
      recorder.Rendered());
}

// A server that never answers ends its client's process, after the wait.
TEST(NetworkClientDeathTest, SilentServerIsFatal) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  NetworkClient::SetResponseTimeoutMs(50);
  auto failed = [](int status) { return WIFEXITED(status) && WEXITSTATUS(status) != 0; };
  test_catalogue::Register();
  // The kernel completes TCP connections to a listening socket that never
  // accepts; nothing ever answers on them, nor on a bare datagram socket.
  Socket listening(Socket::kInternetDomain, Socket::kStream);
  ASSERT_TRUE(listening.create() && listening.bind("127.0.0.1", 0) && listening.listen());
  RawDatagramPeer silent;
  int port = PortOf(listening);
  NetworkFactory factory;

  EXPECT_EXIT(factory.Connect("tcp://127.0.0.1:" + std::to_string(port)), failed,
              "NetworkClient::ConfirmConnection - select failed on port [0-9]+\n");
  EXPECT_EXIT(factory.Connect("udp://127.0.0.1:" + std::to_string(silent.port)), failed,
              "NetworkClient::ConfirmConnection - select failed on port");
  auto connected = [&](int type, int to) {
    Socket* socket = new Socket(Socket::kInternetDomain, type);
    EXPECT_TRUE(socket->create() && socket->connect("127.0.0.1", to));
    return socket;
  };
  EXPECT_EXIT(
      NetworkTCPClient(1, connected(Socket::kStream, port), eConfigID_Default).Get(kPercent),
      failed, "NetworkClient::Get - select failed on port [0-9]+ \\(PID:[0-9]+\\)");
  EXPECT_EXIT(NetworkUDPClient(1, connected(Socket::kDatagram, silent.port), eConfigID_Default)
                  .Set(kPercent, 1),
              failed, "NetworkUDPClient::Set - select failed on port [0-9]+ \\(PID:[0-9]+\\)");
  NetworkClient::SetResponseTimeoutMs(0);
  EXPECT_EQ(60000, NetworkClient::ResponseTimeoutMs()) << "the default is restored";
}
