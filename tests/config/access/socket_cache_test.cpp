// "caching=true" on the socket transport, against a real server.
#include <gtest/gtest.h>
#include <unistd.h>

#include "config/access/socket_factory.h"
#include "config/manager/config_cache.h"
#include "loopback_server.h"
#include "test_stderr.h"

using namespace zyn::config::access;
using namespace test_catalogue;

TEST(SocketCacheTest, AnotherClientsWriteReachesTheCache) {
  LoopbackServer server;
  server.store->Set(kPercent, 50);
  SocketFactory factory;
  std::string uri = "socket://127.0.0.1:" + std::to_string(server.port) + "/configid=0";
  Config *cache = nullptr, *writer = nullptr;
  Stderr([&] { cache = factory.Connect(uri + "/caching=true"), writer = factory.Connect(uri); });
  ASSERT_NE(nullptr, dynamic_cast<ConfigCache *>(cache));
  EXPECT_EQ(3, SocketConnection::LiveCount()) << "the cache's events have their own connection";
  EXPECT_EQ(50u, cache->Get(kPercent));
  // The change reaches the held value as an event once the registration on
  // the events connection is in: write until it is heard, for 5 s at most.
  bool heard = false;
  for (int i = 0; i < 5000 && !heard; ++i) {
    writer->Set(kPercent, 77);
    heard = writer->Get(kPercent) == 77 && cache->Get(kPercent) == 77;
    if (!heard) usleep(1000);
  }
  EXPECT_TRUE(heard);
  std::string err = Stderr([&] {
    factory.Disconnect(writer);
    factory.Disconnect(cache);
  });
  EXPECT_FALSE(Has(err, "fail")) << err;
}
