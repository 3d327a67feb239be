// The client-side cache over a store that counts the reads and writes that
// reach it, can run a step in the middle of a call and reports lost events.
#include "config/manager/config_cache.h"

#include <gtest/gtest.h>

#include <functional>

#include "config/event_loss_counter.h"
#include "config/manager/config_manager.h"
#include "test_catalogue.h"
#include "test_stderr.h"

using namespace test_catalogue;

namespace {

class CountingStore : public ConfigManager, public EventLossCounter {
 public:
  CountingStore() : ConfigManager(eConfigID_Default) { Init(); }
  bool Set(eParam_t id, unsigned int value) override {
    ++sets;
    return ConfigManager::Set(id, value);
  }
  bool Get(eParam_t id, unsigned int& value) override {
    ++gets;
    bool ok = ConfigManager::Get(id, value);
    if (during) during();
    return ok;
  }
  uint64_t LostEvents() const override { return lost; }

  int gets = 0, sets = 0;
  uint64_t lost = 0;
  std::function<void()> during;
};

class ConfigCacheTest : public testing::Test {
 protected:
  bool registered = (Register(), true);
  CountingStore* store = new CountingStore();
  ConfigCache cache{store};  // owns the store
};

}  // namespace

TEST_F(ConfigCacheTest, AsksTheStoreOnceExceptForVolatileParameters) {
  EXPECT_EQ(50u, cache.Get(kPercent));
  EXPECT_EQ(50u, cache.Get(kPercent));
  EXPECT_EQ(1, store->gets) << "the second read is answered from the cache";
  EXPECT_TRUE(cache.Set(kPercent, 5) && cache.Set(kPercent, 5));
  EXPECT_EQ(1, store->sets) << "writing the held value sends nothing";
  unsigned int value = 9;
  EXPECT_FALSE(cache.Get(kRaw, value)) << "a value of 0 reads as failure";
  EXPECT_EQ(0u, value);
  EXPECT_EQ(0u, cache.Get(kVolatile));
  store->SetConfigParam(kVolatile, 7);  // unheard
  EXPECT_EQ(7u, cache.Get(kVolatile)) << "a volatile parameter is read every time";
  int gets = store->gets;
  std::string err = Stderr([&] { EXPECT_EQ(0u, cache.Get(kUnknown) + cache.Get(kUnknown)); });
  EXPECT_EQ("IsVolatile: paramID: FEEDC0FF has a NULL descriptor, please fix.\n", err);
  EXPECT_EQ(gets + 2, store->gets) << "a failed read is not kept";
}

TEST_F(ConfigCacheTest, EventsRefreshEveryMapAndNoValueIsOlderThanTheLastEventOrLoss) {
  std::string text, data = "third";
  EXPECT_TRUE(cache.Get(kName, text) && cache.GetData(kName, text) && cache.Get(kPercent));
  store->ConfigManager::Set(kPercent, 61);
  store->ConfigManager::Set(kName, std::string("second"));
  EXPECT_EQ(61u, cache.Get(kPercent));
  EXPECT_EQ(1, store->gets) << "a value from an event is served without a request";
  EXPECT_TRUE(cache.Get(kName, text) && text == "second") << text;
  EXPECT_TRUE(cache.GetData(kName, text) && text == "second") << "data form left stale";
  store->SetData(kName, data);
  EXPECT_TRUE(cache.GetData(kName, text) && text == "third") << text;
  EXPECT_TRUE(cache.Get(kName, text) && text == "third") << text;
  // A value by event is served on its first read.
  store->ConfigManager::Set(kTenToHundred, 40);
  store->ConfigManager::Set(kVolatile, 9);
  EXPECT_EQ(40u, cache.Get(kTenToHundred));
  EXPECT_EQ(1, store->gets) << "the event's value needs no request";
  store->SetConfigParam(kVolatile, 8);  // unheard
  EXPECT_EQ(8u, cache.Get(kVolatile)) << "a volatile parameter is still read through";
  // An event during the fetch: the fetched value is returned, the event's kept.
  store->during = [this] { cache.ParamChanged(kMode, 2u, timeval{1, 0}); };
  EXPECT_EQ(1u, cache.Get(kMode));
  store->during = nullptr;
  EXPECT_EQ(2u, cache.Get(kMode));
  // Lost events drop the maps.
  store->SetConfigParam(kMode, 0);
  EXPECT_EQ(2u, cache.Get(kMode));
  store->lost = 1;
  EXPECT_EQ(0u, cache.Get(kMode));
}

TEST(ConfigCacheNullTest, EveryOperationFailsCleanly) {
  ConfigCache cache(nullptr);
  std::string text,
      err = Stderr([&] {
        EXPECT_FALSE(cache.Set(kPercent, 1) || cache.Get(kPercent) || cache.Get(kName, text) ||
                     cache.GetData(kName, text) || cache.AddConfigEventListener(&cache));
      });
  EXPECT_EQ(0u, err.find("ConfigCache::Set - NULL config\nConfigCache::Get - NULL config\n"));
}
