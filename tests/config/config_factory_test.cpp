// The Config defaults, the standard URIs and the factories that hand out the
// in-process store.
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>

#include "config/config_factory_impl.h"
#include "config/config_uri.h"
#include "config/local_config_factory.h"
#include "config/manager/config_cache.h"
#include "config/manager/config_manager.h"
#include "test_catalogue.h"
#include "test_config.h"
#include "test_stderr.h"

TEST(ConfigDeathTest, DataAccessIsMandatory) {
  IntegerConfig config;
  std::string data;
  EXPECT_DEATH(config.GetData(1, data),
               "classes/config/config:65: virtual bool Config::GetData\\(eParam_t, "
               "std::string&\\): Assertion `false' failed");
  EXPECT_DEATH(config.SetData(1, data), "classes/config/config:66: virtual bool Config::SetData");
}

TEST(ConfigURITest, StandardURIs) {
  // A row and a column of the table; the rest would only restate it.
  EXPECT_EQ("socket://127.0.0.1:43110/caching=true", GetConfigURI("socket"));
  EXPECT_EQ("multicast://127.0.0.1:63110", GetEventsURI("udp"));
  // A UDP client's events come from the multicast port its URI names, for its store.
  EXPECT_EQ("multicast://127.0.0.1:63111/configid=2",
            MulticastEventsURI("udp://127.0.0.1:43110/configid=2/eventport=63111"));
  EXPECT_EQ("multicast://127.0.0.1:63110", MulticastEventsURI("udp://127.0.0.1:43110"));
  EXPECT_EQ("INVALID_URI", GetConfigURI("TCP"));
  EXPECT_EQ("INVALID_URI", GetEventsURI("tcp "));
  EXPECT_EQ(0, zyn::config::access::LocalConfigFactory::GetConfigID("local:"));
  EXPECT_EQ(0, zyn::config::access::LocalConfigFactory::GetConfigID("local:configid=x"));
  EXPECT_EQ(12, zyn::config::access::LocalConfigFactory::GetConfigID("x/configid=12/local:"));
  EXPECT_EQ(-3, zyn::config::access::LocalConfigFactory::GetConfigID("local:configid=-3"));
}

TEST(LocalConfigFactoryTest, SharesOneManagerPerStoreAndRefusesStrangers) {
  test_catalogue::Register();
  zyn::config::access::LocalConfigFactory factory;
  Config* first = nullptr;
  Config* second = nullptr;
  Stderr([&] {
    first = factory.Connect("local:configid=3");
    second = factory.Connect("local:configid=3");
  });
  ASSERT_NE(nullptr, first);
  EXPECT_EQ(first, second);
  ConfigManager* manager = dynamic_cast<ConfigManager*>(first);
  ASSERT_NE(nullptr, manager);
  EXPECT_EQ(3, manager->GetConfigID());
  EXPECT_EQ(2, manager->GetUseCount());
  EXPECT_EQ(50u, first->Get(test_catalogue::kPercent)) << "values start at their default";
  EXPECT_TRUE(first->Set(test_catalogue::kPercent, 7));

  Config* other = nullptr;
  Stderr([&] { other = factory.Connect("local:"); });
  EXPECT_NE(first, other);
  EXPECT_EQ(0, other->GetConfigID());

  EXPECT_TRUE(factory.Disconnect(first));
  EXPECT_EQ(1, manager->GetUseCount()) << "the first Disconnect keeps the manager";
  EXPECT_TRUE(factory.Disconnect(second));
  // The last Disconnect destroyed the store: the next Connect starts afresh.
  Config* fresh = nullptr;
  Stderr([&] { fresh = factory.Connect("local:configid=3"); });
  EXPECT_EQ(50u, fresh->Get(test_catalogue::kPercent));
  EXPECT_EQ(1, dynamic_cast<ConfigManager*>(fresh)->GetUseCount());
  EXPECT_TRUE(factory.Disconnect(fresh));
  EXPECT_TRUE(factory.Disconnect(other));

  // What it did not hand out is refused.
  EXPECT_FALSE(factory.Disconnect(nullptr));
  IntegerConfig bare;
  EXPECT_FALSE(factory.Disconnect(&bare));
  ConfigManager stranger(static_cast<eConfigID_t>(9));
  std::string err = Stderr([&] { EXPECT_FALSE(factory.Disconnect(&stranger)); });
  EXPECT_EQ("LocalConfigFactory::Disconnect - This instance not tracking configID 9\n", err);
}

TEST(ConfigFactoryImplTest, RoutesByURI) {
  test_catalogue::Register();
  ConfigFactoryImpl* factory = ConfigFactoryImpl::GetInstance();
  EXPECT_EQ(factory, ConfigFactoryImpl::GetInstance());

  std::string err =
      Stderr([&] { EXPECT_EQ(nullptr, factory->Connect("socket://127.0.0.1:43110")); });
  EXPECT_EQ("", err) << "a socket URI is not this factory's, silently";

  // A port nobody listens on: bound by the system, then closed.
  int fd = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  ASSERT_EQ(0, bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address));
  ASSERT_EQ(0, getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length));
  close(fd);
  const std::string closed = "127.0.0.1:" + std::to_string(ntohs(address.sin_port));

  const std::string kFailed = "ConfigFactoryImpl::Connect - _network_factory->Connect() failed\n";
  err = Stderr([&] { EXPECT_EQ(nullptr, factory->Connect("local:configid=4 tcp://" + closed)); });
  EXPECT_EQ(kFailed, err.substr(err.size() - std::min(err.size(), kFailed.size())))
      << "a network transport wins over local:";
  // A failed connect with caching still yields a cache, over nothing.
  Config* cache = nullptr;
  err = Stderr([&] { cache = factory->Connect("tcp://" + closed + "/caching=true"); });
  ASSERT_NE(nullptr, dynamic_cast<ConfigCache*>(cache)) << err;
  EXPECT_FALSE(Has(err, kFailed));
  Stderr([&] { EXPECT_EQ(0u, cache->Get(test_catalogue::kPercent)); });
  EXPECT_FALSE(factory->Disconnect(cache)) << "a cache is the caller's to delete";
  delete cache;

  Config* local = nullptr;
  Stderr([&] { local = factory->Connect("local:configid=5"); });
  ASSERT_NE(nullptr, local);
  EXPECT_EQ(5, local->GetConfigID());
  EXPECT_TRUE(factory->Disconnect(local));
  EXPECT_FALSE(factory->Disconnect(nullptr));
}
