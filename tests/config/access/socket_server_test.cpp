// The server side of the local protocol over real loopback sockets, driven
// by raw peers so every record is checked word for word. The plain
// exchanges every server answers alike (connect, get, set, strings, listener
// and disconnect replies) are judged case by case by configctl's conformance
// run against configd; these tests cover the rest.
#include <dirent.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <fstream>
#include <memory>

#include "config/access/send_loop.h"
#include "config/values/integer_value.h"
#include "config/values/string_value.h"
#include "loopback_server.h"
#include "support/logger.h"
#include "test_bytes.h"
#include "test_stderr.h"
#include "test_temp_folder.h"

using namespace zyn::config::access;
using namespace test_catalogue;
using zyn::logging::Logger;

namespace {

constexpr uint32_t kConnection = 0x00051234;

XCONFIGMGR_REQUEST_T Request(uint32_t msgtype, uint32_t requestID, uint32_t paramID,
                             uint32_t value = 0, uint32_t streamLength = 0) {
  return XCONFIGMGR_REQUEST_T{MakeHeader(msgtype, kConnection, requestID, 0), paramID, value,
                              streamLength, 0};
}

XCONFIGMGR_EVENT_HANDLER_REQUEST_T Listener(uint32_t msgtype, uint32_t paramID) {
  return XCONFIGMGR_EVENT_HANDLER_REQUEST_T{MakeHeader(msgtype, kConnection, 9, 0), paramID};
}

// How long a refused client may wait to be closed: long enough for a loaded
// machine, and a closed client ends the wait at once.
constexpr int kRefusalMs = 10000;

int OpenDescriptors() {
  int count = 0;
  DIR* dir = opendir("/proc/self/fd");
  while (readdir(dir) != nullptr) ++count;
  closedir(dir);
  return count;
}

class SocketServerTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_NE(0, server.port);
    server.store->Set(kPercent, 50);
    server.store->Set(kName, std::string("unit"));
    server.store->Set(kMode, 1);
  }
  LoopbackServer server;
};

}  // namespace

TEST_F(SocketServerTest, StringRequestsAreTakenByTheValuesClassAndTracedWhenWatched) {
  RawPeer peer(server.port);
  ASSERT_EQ(0u, peer.Connect(kConnection));
  // A string for an integer parameter is refused with error 15.
  StringValue wrong(eConfigID_Default, kPercent, eCParam_StringValue, "x");
  std::vector<char> set = EncodePayload(&wrong);
  peer.Send(Request(XCFG_SET_STREAM_PARAM_REQUEST, 22, kPercent, 0, set.size()));
  peer.SendBytes(set.data(), set.size());
  XCONFIGMGR_RESPONSE_T response{};
  ASSERT_TRUE(peer.ReadRecord(response));
  EXPECT_EQ((std::vector<uint32_t>{129, kConnection, 22, 0, 0, 4096, kPercent, 15, 0, 0, 0}),
            WordsOf(response));

  // An integer value in a string request is applied as an integer, unanswered.
  IntegerValue number(eConfigID_Default, kPercent, eCParam_IntegerValue, 33);
  set = EncodePayload(&number);
  peer.Send(Request(XCFG_SET_STREAM_PARAM_REQUEST, 23, kPercent, 0, set.size()));
  peer.SendBytes(set.data(), set.size());
  EXPECT_TRUE(peer.Read(1, 200).empty());
  EXPECT_EQ(33u, server.store->Get(kPercent));

  // Both stream servers trace a string set once, with its payload, and trace a
  // listener request for one parameter only when that parameter is watched.
  TempFolder folder;
  std::ofstream(folder.path + "/" + program_invocation_short_name + ".log")
      << "watch eParamID_TestName\n";
  std::unique_ptr<Logger> logger = Logger::Create(folder.path);
  NetworkLoopbackServer tcp(SOCK_STREAM, 0);
  Logger::Install(logger.get());
  for (int port : {server.port, tcp.port}) {
    StringValue text(eConfigID_Default, kName, eCParam_StringValue, "traced");
    std::vector<char> payload = EncodePayload(&text);
    std::string err = Stderr([&] {
      RawPeer traced(port);
      traced.Connect(kConnection);
      traced.Send(Request(XCFG_SET_STREAM_PARAM_REQUEST, 2, kName, 0, payload.size()));
      traced.SendBytes(payload.data(), payload.size());
      traced.Send(Listener(XCFG_ADD_CONFIG_EVENT_LISTENER_REQUEST, kPercent));
      traced.Send(Listener(XCFG_ADD_CONFIG_EVENT_LISTENER_REQUEST, kName));
      traced.Sync();
    });
    EXPECT_EQ(1u, Count(err, "(->) Set String Request")) << port << ":\n" << err;
    EXPECT_TRUE(Has(err, " [2] {0x")) << "traced with its payload";
    EXPECT_EQ(1u, Count(err, "(->) Add Listener Request")) << "only the watched parameter's";
  }
  Logger::Install(nullptr);  // the servers' threads have ended their traces
}

TEST_F(SocketServerTest, StreamLengthBounds) {
  RawPeer peer(server.port);
  ASSERT_EQ(0u, peer.Connect(kConnection));
  testing::internal::CaptureStderr();
  peer.Send(Request(XCFG_SET_STREAM_PARAM_REQUEST, 30, kName, 0, 0));
  peer.Send(Request(XCFG_GET_PARAM_REQUEST, 31, kPercent));
  XCONFIGMGR_RESPONSE_T response{};
  EXPECT_TRUE(peer.ReadRecord(response)) << "a zero length is refused and the connection goes on";
  EXPECT_EQ(31u, response.header.requestID);

  // A payload of exactly the buffer's 3072 bytes is taken; one byte more
  // closes the connection and changes nothing.
  StringValue longest(eConfigID_Default, kName, eCParam_StringValue, std::string(3055, 'x'));
  std::vector<char> payload = EncodePayload(&longest);
  ASSERT_EQ(3072u, payload.size());
  peer.Send(Request(XCFG_SET_STREAM_PARAM_REQUEST, 32, kName, 0, 3072));
  peer.SendBytes(payload.data(), payload.size());
  peer.Sync();
  payload[payload.size() - 2] = 'y';
  payload.push_back(0);
  peer.Send(Request(XCFG_SET_STREAM_PARAM_REQUEST, 33, kName, 0, 3073));
  peer.SendBytes(payload.data(), payload.size());
  EXPECT_TRUE(peer.ClosedByPeer(10000, true)) << "a length beyond any value closes the connection";
  std::string err = testing::internal::GetCapturedStderr();
  EXPECT_TRUE(Has(err,
                  "SocketConnection::ProcessSetStreamMessage - invalid "
                  "streamLength\n"))
      << err;
  std::string name;
  server.store->Get(kName, name);
  EXPECT_EQ(std::string(3055, 'x'), name);
}

TEST_F(SocketServerTest, EventsWithFilterAndReregistration) {
  RawPeer events(server.port);
  ASSERT_EQ(0u, events.Connect(kConnection));
  events.Send(Listener(XCFG_ADD_CONFIG_EVENT_LISTENER_REQUEST, kPercent));
  events.Send(Listener(XCFG_ADD_CONFIG_EVENT_LISTENER_REQUEST, kPercent));  // stored once
  events.Sync();  // Add Listener is not answered: only the Get's response arrives
  server.store->Set(kTenToHundred, 20);  // filtered out
  server.store->Set(kPercent, 60);
  XCONFIGMGR_RESPONSE_T event{};
  ASSERT_TRUE(events.ReadRecord(event));  // its words are judged by the conformance run
  EXPECT_EQ(60u, event.value);
  EXPECT_TRUE(events.Read(1, 200).empty()) << "one event per change, only the filtered ones";

  // String events carry the value of their own change, even when changes
  // come faster than they are sent: none skipped, none repeated.
  events.Send(Listener(XCFG_ADD_CONFIG_EVENT_LISTENER_REQUEST, 0));  // every parameter
  events.Sync();
  for (int i = 0; i < 300; ++i) server.store->Set(kName, "Studio " + std::to_string(i));
  for (int i = 0; i < 300; ++i) {
    ASSERT_TRUE(events.ReadRecord(event)) << i;
    EXPECT_EQ(145u, event.header.msgtype);
    EXPECT_EQ(kName, event.paramID);
    std::vector<char> payload = events.Read(event.streamLength);
    std::unique_ptr<ConfigValue> value(DecodePayload(payload.data(), payload.size()));
    ASSERT_NE(nullptr, value);
    ASSERT_EQ(
        "configID = 0, paramID = 0xFEEDC004, paramType = 12, value = Studio " + std::to_string(i),
        value->ToString());
  }

  events.Send(Listener(XCFG_REMOVE_CONFIG_EVENT_LISTENER_REQUEST, 0));
  XCONFIGMGR_CONNECTION_RESPONSE_T removed{};
  ASSERT_TRUE(events.ReadRecord(removed));

  // Re-adding for every parameter resumes events, once per change: the
  // connection is not added to the store a second time.
  events.Send(Listener(XCFG_ADD_CONFIG_EVENT_LISTENER_REQUEST, 0));
  events.Sync();
  server.store->Set(kPercent, 62);
  ASSERT_TRUE(events.ReadRecord(event));
  EXPECT_EQ(62u, event.value);
  EXPECT_TRUE(events.Read(1, 200).empty());
}

TEST_F(SocketServerTest, BadInputEndsOnlyThatConnection) {
  RawPeer good(server.port);
  ASSERT_EQ(0u, good.Connect(kConnection));
  testing::internal::CaptureStderr();

  RawPeer unknown(server.port);
  ASSERT_EQ(0u, unknown.Connect(kConnection + 1));
  unknown.Send(Request(XCFG_POPULATE_PARAM_REQUEST, 1, kPercent));
  EXPECT_TRUE(unknown.ClosedByPeer());

  RawPeer early(server.port);
  early.Send(Request(XCFG_GET_PARAM_REQUEST, 1, kPercent));
  EXPECT_TRUE(early.ClosedByPeer()) << "requests before Connect end the connection";

  // A Set Request cut at every offset changes nothing.
  XCONFIGMGR_REQUEST_T set = Request(XCFG_SET_PARAM_REQUEST, 2, kPercent, 99);
  char bytes[sizeof set];
  Pack(set, bytes);
  for (size_t cut = 1; cut < sizeof bytes; ++cut) {
    RawPeer partial(server.port);
    ASSERT_EQ(0u, partial.Connect(kConnection + 2));
    partial.SendBytes(bytes, cut);
  }
  std::string err = testing::internal::GetCapturedStderr();
  EXPECT_TRUE(Has(err, "SocketConnection::ProcessMessages - Unknown message type 114\n")) << err;
  EXPECT_EQ(1u, Count(err, "SocketConnection::ProcessMessages - error calling recv for "))
      << "the cut records are reported once in the second: " << err;

  good.Send(Request(XCFG_GET_PARAM_REQUEST, 3, kPercent));
  XCONFIGMGR_RESPONSE_T response{};
  ASSERT_TRUE(good.ReadRecord(response)) << "the other client is still served";
  EXPECT_EQ(50u, response.value) << "no cut-off Set reached the store";
}

TEST_F(SocketServerTest, ManyConnectionsAndCyclesAndClientsPastTheDescriptorLimit) {
  zyn::config::access::SendLoop::Shared();  // the process's descriptors, not a connection's
  const int before = OpenDescriptors();
  {
    std::vector<std::unique_ptr<RawPeer>> peers;
    for (int i = 0; i < 200; ++i) {
      peers.emplace_back(new RawPeer(server.port));
      ASSERT_EQ(0u, peers.back()->Connect(kConnection + i)) << i;
    }
    for (int i = 0; i < 200; ++i) {
      peers[i]->Send(Request(XCFG_GET_PARAM_REQUEST, i, kPercent));
      XCONFIGMGR_RESPONSE_T response{};
      ASSERT_TRUE(peers[i]->ReadRecord(response)) << i;
      EXPECT_EQ(static_cast<uint32_t>(i), response.header.requestID);
    }
  }
  for (int i = 0; i < 1000; ++i) {
    RawPeer peer(server.port);
    ASSERT_EQ(0u, peer.Connect(kConnection));
  }
  // Every connection thread ends and closes its socket.
  for (int i = 0; i < 500 && SocketConnection::LiveCount() > 0; ++i) usleep(10000);
  EXPECT_EQ(0, SocketConnection::LiveCount());
  EXPECT_EQ(before, OpenDescriptors());

  RawPeer first(server.port);
  ASSERT_EQ(0u, first.Connect(kConnection));
  testing::internal::CaptureStderr();
  rlimit saved{};
  ASSERT_EQ(0, getrlimit(RLIMIT_NOFILE, &saved));
  rlimit low{static_cast<rlim_t>(OpenDescriptors()) + 16, saved.rlim_max};
  ASSERT_EQ(0, setrlimit(RLIMIT_NOFILE, &low));
  // Every descriptor is taken but the one handed back for each client.
  std::vector<int> fillers;
  for (int fd; (fd = dup(0)) >= 0;) fillers.push_back(fd);
  std::vector<std::unique_ptr<RawPeer>> refused;
  for (size_t i = 0; i < 3; ++i) {
    close(fillers[i]);
    refused.emplace_back(new RawPeer(server.port));
    EXPECT_TRUE(refused.back()->ClosedByPeer(kRefusalMs)) << "client " << i << " left waiting";
  }
  first.Sync();  // the client already served goes on
  for (size_t i = 3; i < fillers.size(); ++i) close(fillers[i]);
  ASSERT_EQ(0, setrlimit(RLIMIT_NOFILE, &saved));
  RawPeer later(server.port);
  EXPECT_EQ(0u, later.Connect(kConnection)) << "served again once descriptors are free";
  std::string err = testing::internal::GetCapturedStderr();
  EXPECT_TRUE(Has(err,
                  "SocketServer::WaitForConnection - out of descriptors, 1 clients refused so "
                  "far\n"))
      << err;
  EXPECT_EQ(err.find("Socket::accept"), err.rfind("Socket::accept"))
      << "only the first refusal tries to accept: " << err;
}

TEST_F(SocketServerTest, ReadingListenerKeepsUpWithAPipeliningWriter) {
  CheckReaderKeepsUpWithPipelinedSets(server.port, &SocketConnection::LiveCount);
}

TEST(SocketServerLimitsTest, PeersStalledMidRecordAreClosedAfterTheReadTimeOut) {
  auto* configured = new SocketServer(0);
  configured->SetMaxConnections(4);
  configured->SetReadTimeoutMs(300);
  ServerOnLoopback<SocketServer, SocketConnection> server(configured);
  CheckStalledRecordsTimedOut(server.port, 4,
                              "incomplete after the read time-out of 300 ms, connection closed");
}

TEST(SocketServerLimitsTest, ConnectionLimitAndListeningAddress) {
  SocketServer invalid(0);
  invalid.SetListenAddress("not-an-address");
  auto* configured = new SocketServer(0);
  configured->SetListenAddress("127.0.0.1");
  configured->SetMaxConnections(1);
  ServerOnLoopback<SocketServer, SocketConnection> server(configured);
  time_t refusalsBegin = 0, refusalsEnd = 0;
  std::string err = Stderr([&] {
    EXPECT_FALSE(invalid.Init());
    RawPeer first(server.port);
    EXPECT_EQ(0u, first.Connect(kConnection));
    first.Sync();
    refusalsBegin = time(nullptr);
    for (int i = 0; i < 10; ++i) {
      RawPeer more(server.port);
      EXPECT_TRUE(more.ClosedByPeer(kRefusalMs)) << "a client past the limit is closed at once";
    }
    refusalsEnd = time(nullptr);
    first.Sync();  // the client within the limit is still served
    server.Stop();
  });
  EXPECT_TRUE(Has(err, "SocketServer::Init - invalid listening address not-an-address\n"));
  EXPECT_TRUE(Has(err,
                  "SocketServer::WaitForConnection - connection limit of 1 reached, 1 clients "
                  "refused so far\n"))
      << err;
  EXPECT_LE(Count(err, "connection limit"), static_cast<size_t>(refusalsEnd - refusalsBegin) + 1)
      << "ten refusals are one line a second at most";
}
