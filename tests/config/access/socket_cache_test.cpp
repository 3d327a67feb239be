// "caching=true" on the socket transport: a cache over a request connection
// and an event connection, against a real server.
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>

#include "config/access/socket_client.h"
#include "config/access/socket_factory.h"
#include "config/manager/config_cache.h"
#include "config/manager/config_manager.h"
#include "config/manager/recording_listener.h"
#include "loopback_server.h"
#include "test_stderr.h"

using namespace zyn::config::access;
using namespace test_catalogue;

namespace {

class SocketCacheTest : public testing::Test {
 protected:
  void SetUp() override {
    server.store->Set(kPercent, 50);
    uri = "socket://127.0.0.1:" + std::to_string(server.port) + "/configid=0";
  }
  Config* Open(const std::string& options) {
    Config* config = nullptr;
    Stderr([&] { config = factory.Connect(uri + options); });
    EXPECT_NE(nullptr, config);
    return config;
  }
  // Polls `done` until it holds or five seconds pass.
  template <typename F>
  static bool Eventually(F done) {
    auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (!done()) {
      if (std::chrono::steady_clock::now() > deadline) return false;
      usleep(1000);
    }
    return true;
  }
  LoopbackServer server;
  SocketFactory factory;
  std::string uri;
};

}  // namespace

TEST_F(SocketCacheTest, CachingConnectsTwoClients) {
  Config* plain = Open("");
  Config* cached = Open("/caching=true");
  ASSERT_TRUE(plain != nullptr && cached != nullptr);
  EXPECT_NE(nullptr, dynamic_cast<SocketClient*>(plain));
  ConfigCache* cache = dynamic_cast<ConfigCache*>(cached);
  ASSERT_NE(nullptr, cache);
  EXPECT_NE(nullptr, dynamic_cast<SocketClient*>(cache->GetConfig()));
  EXPECT_NE(cache->GetConfig(), cache->GetEvents()) << "events come on a second connection";
  EXPECT_TRUE(Eventually([] { return SocketConnection::LiveCount() == 3; }));

  std::string err = Stderr([&] {
    factory.Disconnect(cached);
    factory.Disconnect(plain);
  });
  EXPECT_TRUE(Eventually([] { return SocketConnection::LiveCount() == 0; }));
  EXPECT_EQ(std::string::npos, err.find("fail")) << err;

  // Anything the factory did not hand out is refused, not destroyed.
  ConfigManager stranger(eConfigID_Default);
  err = Stderr([&] { factory.Disconnect(&stranger); });
  EXPECT_EQ("SocketFactory::Disconnect - not a client of this factory\n", err);
}

TEST_F(SocketCacheTest, RepeatedWritesSendOneRequest) {
  Config* cache = Open("/caching=true");
  ASSERT_NE(nullptr, cache);
  RecordingListener seen;
  server.store->AddConfigEventListener(&seen);
  EXPECT_TRUE(cache->Set(kPercent, 5));
  EXPECT_TRUE(cache->Set(kPercent, 5));
  // The connection's requests are handled in order: once 6 is in, any
  // second 5 would have been too.
  EXPECT_TRUE(cache->Set(kPercent, 6));
  EXPECT_TRUE(Eventually([&] { return seen.Rendered().find("=6") != std::string::npos; }));
  server.store->RemoveConfigEventListener(&seen);
  EXPECT_EQ("FEEDC001=5 FEEDC001=6", seen.Rendered());
  EXPECT_EQ(6u, cache->Get(kPercent));
  Stderr([&] { factory.Disconnect(cache); });
}

TEST_F(SocketCacheTest, AnotherClientsWriteReachesTheCache) {
  Config* cache = Open("/caching=true");
  Config* writer = Open("");
  ASSERT_TRUE(cache != nullptr && writer != nullptr);
  std::string text;
  EXPECT_EQ(50u, cache->Get(kPercent));
  EXPECT_TRUE(cache->Get(kName, text));
  // The event registration travels on its own connection: write until the
  // cache hears of it.
  unsigned int heard = 0;
  EXPECT_TRUE(Eventually([&] {
    writer->Set(kPercent, 77);
    writer->Set(kName, std::string("written"));
    writer->Get(kPercent);  // the writes are in before the cache is asked
    heard = cache->Get(kPercent);
    return heard == 77 && cache->Get(kName, text) && text == "written";
  })) << "cache still holds "
      << heard << " and '" << text << "'";
  Stderr([&] {
    factory.Disconnect(writer);
    factory.Disconnect(cache);
  });
}
