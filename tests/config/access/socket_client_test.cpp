// The client side: SocketFactory and SocketClient against a real server.
#include "config/access/socket_client.h"

#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "config/access/socket_factory.h"
#include "config/access/stream_io.h"
#include "loopback_server.h"
#include "test_stderr.h"

using namespace zyn::config::access;
using namespace test_catalogue;

namespace {

// Records delivered events and lets a test wait for a number of them.
class WaitingListener : public ConfigEventListener {
 public:
  bool ParamChanged(eParam_t id, unsigned int value, timeval when) override {
    std::lock_guard<std::mutex> hold(lock);
    seen.push_back(std::to_string(id - 0xFEEDC000) + "=" + std::to_string(value));
    stamped = stamped && when.tv_sec != 0;
    arrived.notify_all();
    return true;
  }
  bool ParamChanged(eParam_t id, std::string value, timeval) override {
    std::lock_guard<std::mutex> hold(lock);
    seen.push_back(std::to_string(id - 0xFEEDC000) + "='" + value + "'");
    arrived.notify_all();
    return true;
  }
  std::vector<std::string> WaitFor(size_t count, int timeoutMs = 5000) {
    std::unique_lock<std::mutex> hold(lock);
    arrived.wait_for(hold, std::chrono::milliseconds(timeoutMs),
                     [&] { return seen.size() >= count; });
    return seen;
  }
  // An Add Listener Request has no answer, so a write made right after it
  // can reach the store before the registration does. Writes probe texts
  // to kName through `writer` until one comes back as an event, then a last
  // marker, and forgets everything seen up to that marker.
  void AwaitRegistration(Config* writer) {
    for (int i = 0; i < 500 && WaitFor(1, 20).empty(); ++i)
      writer->Set(kName, "probe" + std::to_string(i));
    writer->Set(kName, std::string("sync"));
    std::unique_lock<std::mutex> hold(lock);
    arrived.wait_for(hold, std::chrono::seconds(5),
                     [&] { return !seen.empty() && seen.back() == "4='sync'"; });
    EXPECT_EQ("4='sync'", seen.empty() ? "" : seen.back()) << "the registration never landed";
    seen.clear();
  }

  std::mutex lock;
  std::condition_variable arrived;
  std::vector<std::string> seen;
  bool stamped = true;
};

class SocketClientTest : public testing::Test {
 protected:
  void SetUp() override {
    server.store->Set(kPercent, 50);
    server.store->Set(kName, std::string("unit"));
    uri = "socket://127.0.0.1:" + std::to_string(server.port) + "/configid=0";
  }
  SocketClient* Open() {
    SocketClient* client = nullptr;
    Stderr([&] { client = dynamic_cast<SocketClient*>(factory.Connect(uri)); });
    EXPECT_NE(nullptr, client);
    return client;
  }
  // A client listening for every change, its registration seen through
  // writes by `writer`.
  SocketClient* OpenListening(WaitingListener& listener, Config* writer) {
    SocketClient* client = Open();
    client->AddConfigEventListener(&listener);
    listener.AwaitRegistration(writer);
    return client;
  }
  LoopbackServer server;
  SocketFactory factory;
  std::string uri;
};

}  // namespace

TEST_F(SocketClientTest, RequestsInOrderAndConnectMessages) {
  SocketClient* client = Open();
  ASSERT_NE(nullptr, client);
  EXPECT_EQ(50u, client->Get(kPercent));
  EXPECT_TRUE(client->Set(kPercent, 70));
  EXPECT_EQ(70u, client->Get(kPercent)) << "a Get after a Set on one connection sees it";
  unsigned int value = 0;
  EXPECT_TRUE(client->Get(kPercent, value));
  EXPECT_EQ(70u, value);

  std::string text;
  EXPECT_TRUE(client->Get(kName, text));
  EXPECT_EQ("unit", text);
  EXPECT_TRUE(client->Set(kName, std::string("Rack 4")));
  EXPECT_TRUE(client->Get(kName, text));
  EXPECT_EQ("Rack 4", text);

  // A refused string set is answered later; the next exchange skips it.
  std::string err = Stderr([&] {
    EXPECT_TRUE(client->Set(kPercent, std::string("not a number")));
    EXPECT_EQ(70u, client->Get(kPercent));
    EXPECT_FALSE(client->Get(kPercent, text)) << "an integer parameter has no string";
  });
  EXPECT_TRUE(Has(err, "store refused the value of paramID 0xFEEDC001"));
  EXPECT_EQ(50u + 20u, client->Get(kPercent)) << "the connection is still in step";
  EXPECT_EQ(0u, client->Get(kUnknown));
  factory.Disconnect(client);

  VerboseDiagnostics verbose;
  Config* plain = nullptr;
  err =
      Stderr([&] { plain = factory.Connect("socket://127.0.0.1:" + std::to_string(server.port)); });
  ASSERT_NE(nullptr, plain);
  EXPECT_EQ(0, plain->GetConfigID());
  EXPECT_TRUE(Has(err,
                  "SocketFactory::Connect - unable to read configid, "
                  "matches = 0, uri = socket://127.0.0.1:"));
  factory.Disconnect(plain);

  // Nobody listens on the port of a socket that was bound and closed.
  const int free = LoopbackServer().port;
  err = Stderr([&] {
    EXPECT_EQ(nullptr,
              factory.Connect("socket://127.0.0.1:" + std::to_string(free) + "/configid=0"));
  });
  EXPECT_TRUE(Has(err, "SocketFactory::Connect - failed to connect to host 127.0.0.1, port " +
                           std::to_string(free)))
      << err;
}

TEST_F(SocketClientTest, GlobalAndFilteredListenersOnEventConnections) {
  SocketClient* events = Open();
  SocketClient* requests = Open();
  WaitingListener listener;
  EXPECT_TRUE(events->AddConfigEventListener(&listener));
  EXPECT_TRUE(events->AddConfigEventListener(&listener));  // listed once
  listener.AwaitRegistration(requests);
  requests->Set(kPercent, 10);
  requests->Set(kName, std::string("Studio"));
  EXPECT_EQ((std::vector<std::string>{"1=10", "4='Studio'"}), listener.WaitFor(2));
  EXPECT_TRUE(listener.stamped) << "events are stamped on arrival";

  // Removing the last listener unregisters (answer 65) and closes the
  // connection; the server's side of it ends.
  EXPECT_FALSE(events->RemoveConfigEventListener(&listener));
  for (int i = 0; i < 300 && SocketConnection::LiveCount() > 1; ++i) usleep(10000);
  EXPECT_EQ(1, SocketConnection::LiveCount());
  requests->Set(kPercent, 11);
  EXPECT_EQ(11u, requests->Get(kPercent));
  EXPECT_EQ(2u, listener.WaitFor(3, 300).size()) << "no events after removal";
  EXPECT_EQ(0u, events->LostEvents()) << "an orderly end loses nothing";
  delete events;

  // A filtered registration hears only its parameters.
  SocketClient* filtered = Open();
  WaitingListener selective;
  std::string err = Stderr([&] {
    EXPECT_TRUE(filtered->AddConfigEventListener(std::list<eParam_t>{kName}, &selective));
  });
  EXPECT_FALSE(Has(err, "WARNING")) << "no global registration yet";
  selective.AwaitRegistration(requests);
  requests->Set(kPercent, 12);  // not in the filter
  requests->Set(kName, std::string("B"));
  EXPECT_EQ((std::vector<std::string>{"4='B'"}), selective.WaitFor(1));

  // Mixing a global registration with a filtered one is warned about.
  SocketClient* mixed = Open();
  WaitingListener other;
  err = Stderr([&] {
    mixed->AddConfigEventListener(&other);
    mixed->AddConfigEventListener(kPercent, &other);
  });
  EXPECT_TRUE(Has(err,
                  "SocketClient::AddConfigEventListener - WARNING: use "
                  "either filtered or global event registration, not "
                  "both\n"));
  factory.Disconnect(mixed);
  // Disconnecting an event connection: the events thread hands the
  // Disconnect Response over and ends.
  EXPECT_TRUE(filtered->ConfirmDisconnect());
  delete filtered;
  factory.Disconnect(requests);
}

// A client whose events ended has closed its socket; the descriptor number
// may already be another connection's, which its Disconnect must not touch.
// An event connection that the owner closes counts as losing events, so a
// client that keeps copies knows to read again and reconnect.
TEST_F(SocketClientTest, WaitForConfigEventAndEndedEventConnections) {
  SocketClient* writer = Open();
  WaitingListener gone;
  SocketClient* first = OpenListening(gone, writer);
  first->RemoveConfigEventListener(&gone);  // closes first's connection
  WaitingListener listening;
  SocketClient* second = OpenListening(listening, writer);  // likely on first's number
  Stderr([&] { factory.Disconnect(first); });
  writer->Set(kPercent, 33);
  EXPECT_EQ(std::vector<std::string>{"1=33"}, listening.WaitFor(1))
      << "the other client's events go on";

  EXPECT_EQ(0u, second->LostEvents());
  Stderr([&] {
    SocketConnection::StopAll();
    for (int i = 0; i < 500 && second->LostEvents() == 0; ++i) usleep(10000);
  });
  EXPECT_EQ(1u, second->LostEvents());
  EXPECT_EQ(0u, writer->LostEvents()) << "a request connection has no events to lose";
  delete second;
  delete writer;

  SocketClient* events = Open();
  SocketClient* requests = Open();
  // The wait registers first; writes repeat until one is seen after it.
  std::atomic<bool> seen{false};
  std::thread repeater([&] {
    while (!seen) {
      requests->Set(kPercent, 44);
      usleep(5000);
    }
  });
  ConfigEvent event;
  EXPECT_TRUE(events->WaitForConfigEvent(event, 0, 0));
  seen = true;
  repeater.join();
  EXPECT_EQ(kPercent, event.paramID);
  EXPECT_EQ(44u, event.intValue);
  EXPECT_EQ(4u, event.paramType);
  requests->Set(kName, std::string("W"));
  for (int i = 0; i < 1000 && event.paramID != kName; ++i)
    EXPECT_TRUE(events->WaitForConfigEvent(event, 0, 0));  // skips the writer's late repeats
  EXPECT_EQ(12u, event.paramType);
  EXPECT_EQ("W", event.stringValue);
  factory.Disconnect(events);
  factory.Disconnect(requests);
}

// An owner that leaves a request unanswered (as a string Get of an unknown
// parameter) and answers late: the request times out, and the late answer
// is dropped, by the next exchange and by the events thread alike.
TEST(SocketClientLateTest, UnansweredRequestsTimeOutAndLateAnswersAreDropped) {
  Socket listener(Socket::kInternetDomain, Socket::kStream);
  Socket owner(Socket::kInternetDomain, Socket::kStream);
  ASSERT_TRUE(listener.create() && listener.bind("127.0.0.1", 0) && listener.listen());
  auto* near = new Socket(Socket::kInternetDomain, Socket::kStream);
  ASSERT_TRUE(near->create() && near->connect("127.0.0.1", PortOf(listener)));
  ASSERT_TRUE(listener.accept(&owner));
  auto answer = [&](const auto& record) {
    char bytes[sizeof record];
    Pack(record, bytes);
    ASSERT_TRUE(SendAll(owner.get_fd(), bytes, sizeof bytes));
  };
  sem_t lock;
  sem_init(&lock, 0, 1);
  int requests = 0;
  WaitingListener heard;
  SocketClient client(7, near, &lock, requests, eConfigID_Default);
  client.SetResponseTimeout(100);
  std::string text;
  std::string err = Stderr([&] { EXPECT_FALSE(client.Get(kUnknown, text)); });  // request 0
  EXPECT_TRUE(Has(err,
                  "SocketClient::Get - no response to "
                  "XCFG_GET_STREAM_PARAM_REQUEST within 100 ms\n"))
      << err;
  answer(XCONFIGMGR_RESPONSE_T{MakeHeader(XCFG_GET_STREAM_PARAM_RESPONSE, 7, 0, 0), kUnknown,
                               0xFFFFFFFF, 0, 0, 0});
  answer(
      XCONFIGMGR_RESPONSE_T{MakeHeader(XCFG_GET_PARAM_RESPONSE, 7, 1, 0), kPercent, 0, 11, 0, 0});
  EXPECT_EQ(11u, client.Get(kPercent)) << "request 1's answer, not request 0's";
  // An answer for another connection is no answer to request 2.
  answer(
      XCONFIGMGR_RESPONSE_T{MakeHeader(XCFG_GET_PARAM_RESPONSE, 8, 2, 0), kPercent, 0, 12, 0, 0});
  unsigned int value = 0;
  err = Stderr([&] { EXPECT_FALSE(client.Get(kPercent, value)); });
  EXPECT_TRUE(Has(err, "response does not match request")) << err;
  // An answer already there is taken though a 1 ms time-out has run out
  // before the poll.
  answer(
      XCONFIGMGR_RESPONSE_T{MakeHeader(XCFG_GET_PARAM_RESPONSE, 7, 3, 0), kPercent, 0, 13, 0, 0});
  client.SetResponseTimeout(1);
  EXPECT_EQ(13u, client.Get(kPercent));
  client.SetResponseTimeout(100);

  client.AddConfigEventListener(&heard);  // request 4; the events thread reads from now on
  Stderr([&] { EXPECT_FALSE(client.ConfirmDisconnect()); });  // request 5, unanswered
  answer(XCONFIGMGR_CONNECTION_RESPONSE_T{MakeHeader(XCFG_DISCONNECT_RESPONSE, 7, 5, 0), 0});
  answer(XCONFIGMGR_RESPONSE_T{MakeHeader(XCFG_PARAM_CHANGED_EVENT, 7, kXConfigEventRequestID, 0),
                               kPercent, 0, 42, 0, kXConfigStreamBufferSize});
  EXPECT_EQ(std::vector<std::string>{"1=42"}, heard.WaitFor(1)) << "the events thread goes on";
}
