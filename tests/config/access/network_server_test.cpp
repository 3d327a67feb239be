// The network server over real loopback sockets: TCP clients and UDP
// datagrams driven by raw peers, multicast events heard on the test's own
// port, every record checked word for word. The plain exchanges both
// transports answer like the local server are judged by configctl's
// conformance run against configd; these tests cover the rest.
#include <dirent.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>

#include <fstream>

#include "config/access/network_connection.h"
#include "config/values/integer_value.h"
#include "config/values/string_value.h"
#include "loopback_server.h"
#include "test_stderr.h"

using namespace zyn::config::access;
using namespace test_catalogue;
using zyn::boxline::config::access::NetworkServer;
using zyn::boxline::config::access::NetworkTCPConnection;

namespace {

constexpr uint32_t kClient = 0x00071234;
constexpr uint32_t kRefused = 0xFFFFFFFF;
using Words = std::vector<uint32_t>;

XCONFIGMGR_REQUEST_T Request(uint32_t msgtype, uint32_t requestID, uint32_t paramID,
                             uint32_t value = 0, uint32_t streamLength = 0, uint32_t configID = 0) {
  return XCONFIGMGR_REQUEST_T{MakeHeader(msgtype, kClient, requestID, configID), paramID, value,
                              streamLength, 0};
}

XCONFIGMGR_CONNECTION_REQUEST_T Connection(uint32_t msgtype, uint32_t requestID,
                                           uint32_t configID = 0) {
  return XCONFIGMGR_CONNECTION_REQUEST_T{MakeHeader(msgtype, kClient, requestID, configID)};
}

std::vector<char> StringPayload(unsigned int paramID, const std::string& text) {
  StringValue value(eConfigID_Default, paramID, eCParam_StringValue, text);
  return EncodePayload(&value);
}

// True once a thread of this process sits in system call `number` (a wait
// with a deadline, not a fixed sleep).
bool SomeThreadBlockedIn(long number, int timeoutMs = 5000) {
  for (int waited = 0; waited < timeoutMs; waited += 5) {
    DIR* tasks = opendir("/proc/self/task");
    bool found = false;
    while (dirent* task = readdir(tasks)) {
      std::ifstream in(std::string("/proc/self/task/") + task->d_name + "/syscall");
      long current = -1;
      found = found || ((in >> current) && current == number);
    }
    closedir(tasks);
    if (found) return true;
    usleep(5000);
  }
  return false;
}

class NetworkTCPServerTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_NE(0, server.port);
    server.store->Set(kPercent, 50);
    server.store->Set(kName, std::string("unit"));
    server.store->Set(kMode, 1);
  }
  RawDatagramPeer events;  // unused by TCP, but gives the server a port of its own
  NetworkLoopbackServer server{SOCK_STREAM, events.port};
};

class NetworkUDPServerTest : public NetworkTCPServerTest {
 protected:
  void SetUp() override {
    ASSERT_NE(0, udp.port);
    NetworkTCPServerTest::SetUp();
    if (!events.JoinEvents()) GTEST_SKIP() << "no multicast on the loopback interface here";
    peer.Send(udp.port, Connection(XCFG_CONNECT_REQUEST, 1));
    ASSERT_EQ((Words{32, kClient, 1, 0, 0, 4096, 0, 0, 0, 0, 0}),
              peer.ReceiveWords<XCONFIGMGR_RESPONSE_T>())
        << "a UDP Connect Response is a whole 44-byte response record";
  }
  NetworkLoopbackServer udp{SOCK_DGRAM, events.port};
  RawDatagramPeer peer;
};

}  // namespace

TEST_F(NetworkTCPServerTest, RegisteredClientHearsEveryParameter) {
  RawPeer listener(server.port);
  ASSERT_EQ(0u, listener.Connect(kClient));
  // Named parameters are remembered but never filter, and 0 clears them.
  for (uint32_t id : {kPercent, kPercent, 0u})
    listener.Send(XCONFIGMGR_EVENT_HANDLER_REQUEST_T{
        MakeHeader(XCFG_ADD_CONFIG_EVENT_LISTENER_REQUEST, kClient, 2, 0), id});
  listener.Sync();
  RawPeer writer(server.port);
  ASSERT_EQ(0u, writer.Connect(kClient + 1));
  writer.Send(Request(XCFG_SET_PARAM_REQUEST, 3, kMode, 2));
  XCONFIGMGR_RESPONSE_T event{};
  ASSERT_TRUE(listener.ReadRecord(event)) << "no event for a parameter never named";
  EXPECT_EQ((Words{144, kClient, kRefused, 0, 0, 4096, kMode, 0, 2, 0, 3072}), WordsOf(event));
  server.store->Set(kName, std::string("tape"));
  ASSERT_TRUE(listener.ReadRecord(event));
  std::vector<char> text = StringPayload(kName, "tape");
  EXPECT_EQ((Words{145, kClient, kRefused, 0, 0, 4096, kName, 0, 0, uint32_t(text.size()), 3072}),
            WordsOf(event));
  EXPECT_EQ(text, listener.Read(text.size()));
  // After the Remove Listener Response no event follows.
  listener.Send(XCONFIGMGR_EVENT_HANDLER_REQUEST_T{
      MakeHeader(XCFG_REMOVE_CONFIG_EVENT_LISTENER_REQUEST, kClient, 4, 0), 0});
  XCONFIGMGR_CONNECTION_RESPONSE_T removed{};
  ASSERT_TRUE(listener.ReadRecord(removed));
  server.store->Set(kPercent, 71);
  listener.Sync();
  EXPECT_FALSE(listener.ReadRecord(event, 500)) << "an event after the listener was removed";
}

TEST_F(NetworkTCPServerTest, BadRecordEndsOnlyThatConnectionAndSetsCheckTheValueClass) {
  RawPeer other(server.port);
  ASSERT_EQ(0u, other.Connect(kClient + 1));
  std::string err = Stderr([&] {
    RawPeer data(server.port);
    ASSERT_EQ(0u, data.Connect(kClient));
    data.Send(Request(XCFG_GET_DATA_REQUEST, 2, kName));
    EXPECT_TRUE(data.ClosedByPeer()) << "a Get Data Request did not close the TCP connection";
    RawPeer big(server.port);
    ASSERT_EQ(0u, big.Connect(kClient));
    big.Send(Request(XCFG_SET_STREAM_PARAM_REQUEST, 3, kName, 0, 3073));
    EXPECT_TRUE(big.ClosedByPeer()) << "an oversized payload did not close the connection";
  });
  EXPECT_TRUE(Has(err, "NetworkTCPConnection::ProcessMessages - Unknown message type 256\n"));
  EXPECT_TRUE(Has(err, "NetworkTCPConnection::ProcessSetStreamMessage - invalid streamLength\n"));
  other.Sync();

  // A Set checks the value's class.
  zyn::boxline::config::access::NetworkConnection connection;
  IntegerValue mode(eConfigID_Default, kMode, eCParam_IntegerValue, 2);
  EXPECT_TRUE(connection.DoSetRequest(server.store, &mode));
  EXPECT_EQ(2u, server.store->Get(kMode));
  StringValue text(eConfigID_Default, kName, eCParam_StringValue, "x");
  mode.SetClassID(eClassID_StringValue);
  text.SetClassID(eClassID_IntegerValue);
  err = Stderr([&] {
    EXPECT_FALSE(connection.DoSetRequest(server.store, &mode));
    EXPECT_FALSE(connection.DoSetRequest(server.store, &text));
    text.SetClassID(static_cast<eClassID_t>(6));
    EXPECT_FALSE(connection.DoSetRequest(server.store, &text));
  });
  EXPECT_EQ(
      "NetworkConnection::DoSetRequest - type error, configValue is not a StringValue\n"
      "NetworkConnection::DoSetRequest - type error, configValue is not an IntegerValue\n"
      "NetworkConnection::DoSetRequest - returning error (unsupported classID)\n",
      err);
}

TEST_F(NetworkTCPServerTest, ReadingListenerKeepsUpWithAPipeliningWriterAndStopEndsBlockedAccept) {
  CheckReaderKeepsUpWithPipelinedSets(server.port, &NetworkTCPConnection::LiveCount);

  RawPeer peer(server.port);
  ASSERT_EQ(0u, peer.Connect(kClient));
  VerboseDiagnostics verbose;
  std::string err = Stderr([&] { server.Stop(); });
  EXPECT_TRUE(Has(err, "NetworkServer::Run - exiting\n"));
  EXPECT_EQ(0, NetworkTCPConnection::LiveCount());
  EXPECT_TRUE(peer.ClosedByPeer()) << "StopAll left a client connected";
}

TEST(NetworkTCPServerLimitsTest, PeersStalledMidRecordAreClosedAfterTheReadTimeOut) {
  RawDatagramPeer events;
  auto* configured = NetworkLoopbackServer::Make(SOCK_STREAM, events.port);
  configured->SetMaxConnections(4);
  configured->SetReadTimeoutMs(300);
  ServerOnLoopback<NetworkServer, NetworkTCPConnection> server(configured);
  CheckStalledRecordsTimedOut(server.port, 4,
                              "incomplete after the read time-out of 300 ms, connection closed");
}

// Data travels as a string value; its event carries the request's header.
TEST_F(NetworkUDPServerTest, DataSetIsMulticastAndReadBackAndStopEndsBlockedReceive) {
  std::vector<char> payload, text = StringPayload(kName, "blob");
  peer.Send(udp.port, Request(XCFG_SET_DATA_REQUEST, 5, kName, 0, text.size()), text);
  EXPECT_EQ((Words{146, kClient, 5, 0, 0, 4096, kName, 0, 0, uint32_t(text.size()), 3072}),
            events.ReceiveWords<XCONFIGMGR_RESPONSE_T>(&payload));
  peer.Send(udp.port, Request(XCFG_GET_DATA_REQUEST, 6, kName));
  EXPECT_EQ((Words{257, kClient, 6, 0, 0, 4096, kName, 0, 0, uint32_t(text.size()), 3072}),
            peer.ReceiveWords<XCONFIGMGR_RESPONSE_T>(&payload));
  EXPECT_EQ(text, payload);

  ASSERT_TRUE(SomeThreadBlockedIn(SYS_recvfrom)) << "the server never waited for a datagram";
  VerboseDiagnostics verbose;
  std::string err = Stderr([&] { udp.Stop(); });
  EXPECT_TRUE(Has(err,
                  "NetworkServer::WaitForDatagram - recvfrom shutting down normally\n"
                  "NetworkServer::Run - exiting\n"))
      << err;
}

TEST_F(NetworkUDPServerTest, SetAnsweredThenMulticastWithDependants) {
  peer.Send(udp.port, Request(XCFG_SET_PARAM_REQUEST, 2, kPercent, 60));
  EXPECT_EQ((Words{97, kClient, 2, 0, 0, 4096, kPercent, 0, 60, 0, 0}),
            peer.ReceiveWords<XCONFIGMGR_RESPONSE_T>());
  // The event sequence of a fresh server starts at 0.
  const uint32_t sequence = 0;
  EXPECT_EQ((Words{144, 0, sequence, 0, 0, 4096, kPercent, 0, 60, 0, 3072}),
            events.ReceiveWords<XCONFIGMGR_RESPONSE_T>());

  // Refused: answered with the error and the value read back, and the
  // unchanged value is announced all the same.
  std::string err = Stderr([&] {
    peer.Send(udp.port, Request(XCFG_SET_PARAM_REQUEST, 3, kMode, 7));
    EXPECT_EQ((Words{97, kClient, 3, 0, 0, 4096, kMode, kRefused, 1, 0, 0}),
              peer.ReceiveWords<XCONFIGMGR_RESPONSE_T>());
  });
  EXPECT_TRUE(Has(err,
                  "\tNetworkUDPConnection::ProcessSetRequest - Set failed "
                  "for paramID 0xfeedc003 (eParamID_TestMode), value 7\n"))
      << err;
  EXPECT_EQ((Words{144, 0, sequence + 1, 0, 0, 4096, kMode, 0, 1, 0, 3072}),
            events.ReceiveWords<XCONFIGMGR_RESPONSE_T>());

  // kSource's dependants follow its own event, from store 0.
  peer.Send(udp.port, Request(XCFG_SET_PARAM_REQUEST, 4, kSource, 3));
  EXPECT_EQ(97u, peer.ReceiveWords<XCONFIGMGR_RESPONSE_T>()[0]);
  EXPECT_EQ((Words{144, 0, sequence + 2, 0, 0, 4096, kSource, 0, 3, 0, 3072}),
            events.ReceiveWords<XCONFIGMGR_RESPONSE_T>());
  EXPECT_EQ((Words{144, 0, sequence + 3, 0, 0, 4096, kPercent, 0, 60, 0, 3072}),
            events.ReceiveWords<XCONFIGMGR_RESPONSE_T>());
  std::vector<char> payload;
  std::vector<char> text = StringPayload(kName, "unit");
  EXPECT_EQ((Words{145, 0, 0, 0, 0, 4096, kName, 0, 0, uint32_t(text.size()), 3072}),
            events.ReceiveWords<XCONFIGMGR_RESPONSE_T>(&payload));
  EXPECT_EQ(text, payload);
  // Also when the request addressed another store (whose kPercent is 50).
  peer.Send(udp.port, Connection(XCFG_CONNECT_REQUEST, 5, 3));
  peer.ReceiveWords<XCONFIGMGR_RESPONSE_T>();
  peer.Send(udp.port, Request(XCFG_SET_PARAM_REQUEST, 6, kSource, 4, 0, 3));
  EXPECT_EQ(97u, peer.ReceiveWords<XCONFIGMGR_RESPONSE_T>()[0]);
  EXPECT_EQ((Words{144, 0, sequence + 4, 3, 0, 4096, kSource, 0, 4, 0, 3072}),
            events.ReceiveWords<XCONFIGMGR_RESPONSE_T>());
  EXPECT_EQ((Words{144, 0, sequence + 5, 0, 0, 4096, kPercent, 0, 60, 0, 3072}),
            events.ReceiveWords<XCONFIGMGR_RESPONSE_T>());
}

TEST_F(NetworkUDPServerTest, BadDatagramsDroppedWhileServing) {
  std::vector<char> text = StringPayload(kName, "deck");
  std::string err = Stderr([&] {
    peer.SendBytes(udp.port, {16, 0, 0});
    peer.Send(udp.port, XCONFIGMGR_EVENT_HANDLER_REQUEST_T{
                            MakeHeader(XCFG_ADD_CONFIG_EVENT_LISTENER_REQUEST, kClient, 2, 0), 0});
    peer.Send(udp.port, Request(XCFG_GET_PARAM_REQUEST, 3, kPercent, 0, 0, 7));
    // A payload claimed longer than what arrived.
    peer.Send(udp.port, Request(XCFG_SET_STREAM_PARAM_REQUEST, 4, kName, 0, text.size() + 1), text);
    peer.Send(udp.port, Request(XCFG_GET_PARAM_REQUEST, 5, kPercent));
    EXPECT_EQ(5u, peer.ReceiveWords<XCONFIGMGR_RESPONSE_T>()[2]) << "a dropped datagram answered";
  });
  for (const char* line :
       {"NetworkUDPConnection::ProcessDatagramMessages - insufficient message length\n",
        "NetworkUDPConnection::ProcessDatagramMessages - Unknown message type \"Add Listener "
        "Request\" (0x30 )\n",
        "NetworkUDPConnection::GetConfig - ConfigID 7 instance not present\n",
        "NetworkUDPConnection::ProcessSetStreamMessage - invalid streamLength\n"})
    EXPECT_TRUE(Has(err, line)) << "missing: " << line << "in:\n" << err;
  EXPECT_TRUE(events.Receive(200).empty()) << "a dropped Set String was multicast";
}

TEST_F(NetworkUDPServerTest, GarbageFloodCostsALineASecondPerKind) {
  const auto begin = std::chrono::steady_clock::now();
  std::string err = Stderr([&] {
    for (uint32_t round = 0; round < 20; ++round) {
      for (int i = 0; i < 1000; ++i) {
        peer.SendBytes(udp.port, {16, 0, 0});                 // too short
        peer.SendBytes(udp.port, {48, 0, 0, 0, 0, 0, 0, 0});  // not a UDP request
      }
      // Answered once the server has worked through the round. The flood can
      // fill the server's socket buffer, and the kernel then drops the
      // request: it is sent again, as a UDP client would.
      bool answered = false;
      for (int attempt = 0; attempt < 30 && !answered; ++attempt) {
        peer.Send(udp.port, Request(XCFG_GET_PARAM_REQUEST, round, kPercent));
        for (Words words; !answered;) {
          words = peer.ReceiveWords<XCONFIGMGR_RESPONSE_T>(nullptr, 1000);
          if (words.size() < 3) break;
          answered = words[2] == round;  // not an earlier round's late answer
        }
      }
      ASSERT_TRUE(answered) << "round " << round;
    }
  });
  const long seconds =
      std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - begin)
          .count();
  EXPECT_LE(Count(err, "NetworkUDPConnection::ProcessDatagramMessages"),
            static_cast<size_t>(2 * (seconds + 2)))
      << err;
  EXPECT_TRUE(Has(err, "insufficient message length")) << err;
  EXPECT_TRUE(Has(err, "Unknown message type")) << err;
}

TEST(NetworkUDPStoreTest, IdleStoresAreGivenBackUnlessHeldElsewhere) {
  RawDatagramPeer events, peer;
  auto* configured = NetworkLoopbackServer::Make(SOCK_DGRAM, events.port);
  configured->SetUdpStoreIdleMs(300);
  ServerOnLoopback<NetworkServer, NetworkTCPConnection> udp(configured);
  LoopbackServer local;
  // The Connect Response's error, or kRefused when none came.
  auto connect = [&](uint32_t configID) {
    peer.Send(udp.port, Connection(XCFG_CONNECT_REQUEST, 1, configID));
    Words words = peer.ReceiveWords<XCONFIGMGR_RESPONSE_T>();
    return words.size() > 7 ? words[7] : kRefused;
  };
  auto answered = [&](uint32_t configID) {
    peer.Send(udp.port, Request(XCFG_GET_PARAM_REQUEST, 2, kPercent, 0, 0, configID));
    return peer.ReceiveWords<XCONFIGMGR_RESPONSE_T>(nullptr, 1000).size() > 1;
  };
  std::string err = Stderr([&] {
    RawPeer stream(local.port);
    ASSERT_EQ(0u, stream.Connect(kClient, 7));
    EXPECT_EQ(0u, connect(0));
    EXPECT_EQ(0u, connect(7));
    ConfigFactoryImpl* factory = ConfigFactoryImpl::GetInstance();
    factory->SetMaxStores(static_cast<int>(factory->OpenStoreCount()) + 1);  // room for one
    EXPECT_EQ(0u, connect(5));
    // Refused (error 2) while store 5 is open.
    uint32_t error = connect(6);
    for (int tries = 0; error != 0 && tries < 200; ++tries) {
      usleep(50000);
      error = connect(6);
    }
    EXPECT_EQ(0u, error) << "the idle store 5 was never given back";
    EXPECT_TRUE(answered(0)) << "store 0 is never given back";
    EXPECT_TRUE(answered(7)) << "a store a stream client holds is kept for UDP too";
    EXPECT_FALSE(answered(5)) << "store 5, given back, cannot open again while 6 holds its place";
    factory->SetMaxStores(0);
  });
  EXPECT_TRUE(Has(err, "store limit of")) << "the limit never bound:\n" << err;
  EXPECT_TRUE(Has(err, "idle stores released")) << err;
}
