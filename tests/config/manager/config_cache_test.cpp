// The client-side cache over a real store, through a fake that counts what
// reaches the store, can inject change events in the middle of a call and
// can report lost events.
#include "config/manager/config_cache.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>

#include "config/event_loss_counter.h"
#include "config/manager/config_manager.h"
#include "recording_listener.h"
#include "test_catalogue.h"
#include "test_stderr.h"

using namespace test_catalogue;

namespace {

// Forwards to a store it does not own and counts the calls that reach it.
// A quiet fake registers no listeners, so the cache hears of no change.
class FakeStore : public Config, public EventLossCounter {
 public:
  FakeStore(ConfigManager* s, bool q) : store(s), quiet(q) {}

  bool Set(eParam_t id, unsigned int value) override {
    ++sets;
    bool ok = store->Set(id, value);
    if (duringCall) duringCall();
    return ok;
  }
  unsigned int Get(eParam_t id) override {
    unsigned int value = 0;
    return Get(id, value) ? value : 0;
  }
  bool Get(eParam_t id, unsigned int& value) override {
    ++gets;
    bool ok = store->Get(id, value);
    if (duringCall) duringCall();
    return ok;
  }
  bool Set(eParam_t id, std::string value) override {
    ++sets;
    return store->Set(id, value);
  }
  bool Get(eParam_t id, std::string& value) override {
    ++gets;
    return store->Get(id, value);
  }
  bool GetData(eParam_t id, std::string& data) override {
    ++dataGets;
    return store->GetData(id, data);
  }
  bool SetData(eParam_t id, std::string& data) override { return store->SetData(id, data); }
  eConfigID_t GetConfigID() override { return store->GetConfigID(); }
  timeval GetLastConfigUpdate() override { return timeval{7, 8}; }
  ParamDescriptor* GetParamDescriptor(eParam_t id) override {
    ++lookups;
    return store->GetParamDescriptor(id);
  }
  ParamDescriptor* GetParamDescriptor(std::string name) override {
    return store->GetParamDescriptor(name);
  }
  std::vector<unsigned int> GetParamIDs() override { return store->GetParamIDs(); }
  bool AddConfigEventListener(ConfigEventListener* listener) override {
    return !quiet && store->AddConfigEventListener(listener);
  }
  bool RemoveConfigEventListener(ConfigEventListener* listener) override {
    return !quiet && store->RemoveConfigEventListener(listener);
  }
  uint64_t LostEvents() const override { return lost; }

  ConfigManager* store;
  bool quiet;
  std::atomic<int> gets{0}, sets{0}, dataGets{0}, lookups{0};
  std::atomic<uint64_t> lost{0};
  std::function<void()> duringCall;
};

class ConfigCacheTest : public testing::Test {
 protected:
  void SetUp() override {
    Register();
    Stderr([this] { manager.Init(); });
  }
  // A cache over a fake of the store; the cache owns the fake.
  ConfigCache* Make(bool quiet = false) {
    fake = new FakeStore(&manager, quiet);
    cache.reset(new ConfigCache(fake));
    return cache.get();
  }
  ConfigManager manager{eConfigID_Default};  // outlives the cache
  FakeStore* fake = nullptr;
  std::unique_ptr<ConfigCache> cache;
};

}  // namespace

TEST_F(ConfigCacheTest, ReadsOnceAndSkipsWritesOfTheHeldValue) {
  Make();
  EXPECT_EQ(50u, cache->Get(kPercent));
  EXPECT_EQ(50u, cache->Get(kPercent));
  EXPECT_EQ(1, fake->gets) << "the second read is answered from the cache";
  EXPECT_TRUE(cache->Set(kPercent, 5));
  EXPECT_TRUE(cache->Set(kPercent, 5));
  EXPECT_EQ(1, fake->sets) << "writing the held value sends nothing";
  EXPECT_EQ(5u, manager.Get(kPercent));
  // A refused write reports false and keeps no value.
  Stderr([&] { EXPECT_FALSE(cache->Set(kUnknown, 1)); });
  EXPECT_EQ(2, fake->sets);
  EXPECT_EQ(0u, cache->Get(kUnknown));
  EXPECT_EQ(eConfigID_Default, cache->GetConfigID());
  EXPECT_EQ(manager.GetParamIDs(), cache->GetParamIDs());
  EXPECT_EQ(manager.GetParamDescriptor(kMode), cache->GetParamDescriptor("eParamID_TestMode"));
}

TEST_F(ConfigCacheTest, ZeroReadsAsFailure) {
  Make();
  unsigned int value = 99;
  EXPECT_FALSE(cache->Get(kRaw, value)) << "a held 0 reads as failure";
  EXPECT_EQ(0u, value);
  EXPECT_TRUE(cache->Get(kPercent, value));
  EXPECT_EQ(50u, value);

  // An unknown parameter: reported once, and the failed read is not kept.
  std::string err = Stderr([&] { EXPECT_FALSE(cache->Get(kUnknown, value)); });
  EXPECT_EQ("IsVolatile: paramID: FEEDC0FF has a NULL descriptor, please fix.\n", err);
  int before = fake->gets;
  err = Stderr([&] { EXPECT_EQ(0u, cache->Get(kUnknown)); });
  EXPECT_EQ("", err) << "the volatility test is memoised";
  EXPECT_EQ(before + 1, fake->gets) << "a failed read asks again";
}

TEST_F(ConfigCacheTest, VolatileParametersBypassTheCache) {
  Make(true);
  for (unsigned int i = 1; i <= 3; ++i) {
    manager.Set(kVolatile, i);
    EXPECT_EQ(i, cache->Get(kVolatile)) << "read " << i;
  }
  EXPECT_EQ(3, fake->gets);
  EXPECT_TRUE(cache->Set(kVolatile, 3));
  EXPECT_TRUE(cache->Set(kVolatile, 3));
  EXPECT_EQ(2, fake->sets) << "every write of a volatile parameter is sent";
  EXPECT_EQ(1, fake->lookups) << "one descriptor look-up per parameter";
}

TEST_F(ConfigCacheTest, EventsKeepTheMapsCurrent) {
  Make();
  EXPECT_EQ(7, cache->GetLastConfigUpdate().tv_sec) << "taken from the store at construction";
  std::string text;
  EXPECT_TRUE(cache->Get(kName, text));
  EXPECT_TRUE(cache->GetData(kName, text));
  EXPECT_EQ(50u, cache->Get(kPercent));
  int gets = fake->gets, dataGets = fake->dataGets;

  // Another writer of the store: its events refresh the cache.
  manager.Set(kPercent, 61);
  manager.Set(kName, std::string("second"));
  EXPECT_EQ(61u, cache->Get(kPercent));
  EXPECT_TRUE(cache->Get(kName, text));
  EXPECT_EQ("second", text);
  EXPECT_EQ(gets, fake->gets) << "values from events are served without a request";
  // The data form of the same value was forgotten, not left stale.
  EXPECT_TRUE(cache->GetData(kName, text));
  EXPECT_EQ("second", text);
  EXPECT_EQ(dataGets + 1, fake->dataGets);

  std::string data = "third";
  manager.SetData(kName, data);
  EXPECT_TRUE(cache->GetData(kName, text));
  EXPECT_EQ("third", text);
  EXPECT_TRUE(cache->Get(kName, text));
  EXPECT_EQ("third", text);

  data = "fourth";
  EXPECT_TRUE(cache->SetData(kName, data));
  EXPECT_TRUE(cache->Get(kName, text));
  EXPECT_EQ("fourth", text);

  cache->ParamChanged(kMode, 2u, timeval{1234, 5});
  EXPECT_EQ(1234, cache->GetLastConfigUpdate().tv_sec);
  EXPECT_EQ(5, cache->GetLastConfigUpdate().tv_usec);
  EXPECT_EQ(2u, cache->Get(kMode));

  // Application listeners hear the store through the cache.
  RecordingListener listener;
  EXPECT_TRUE(cache->AddConfigEventListener(&listener));
  manager.Set(kMode, 0);
  EXPECT_TRUE(cache->RemoveConfigEventListener(&listener));
  EXPECT_EQ("FEEDC003=0", listener.Rendered());

  // Destroying the cache unregisters it from the store.
  cache.reset();
  manager.Set(kPercent, 62);
}

TEST_F(ConfigCacheTest, NoValueOlderThanTheLastEvent) {
  Make(true);
  // An event for the parameter arrives while its fetch is under way: the
  // fetched value is returned, but the event's value is the one kept.
  fake->duringCall = [this] { cache->ParamChanged(kPercent, 77u, timeval{1, 0}); };
  EXPECT_EQ(50u, cache->Get(kPercent));
  fake->duringCall = nullptr;
  EXPECT_EQ(77u, cache->Get(kPercent));
  EXPECT_EQ(1, fake->gets);

  // A write with no event during it is kept; one overtaken by an event is
  // forgotten, so the next read asks the store.
  EXPECT_TRUE(cache->Set(kMode, 2));
  int gets = fake->gets;
  EXPECT_EQ(2u, cache->Get(kMode));
  EXPECT_EQ(gets, fake->gets);
  fake->duringCall = [this] { cache->ParamChanged(kPercent, 78u, timeval{2, 0}); };
  EXPECT_TRUE(cache->Set(kMode, 0));
  fake->duringCall = nullptr;
  EXPECT_EQ(0u, cache->Get(kMode));
  EXPECT_EQ(gets + 1, fake->gets);
}

TEST_F(ConfigCacheTest, LostEventsDropTheMaps) {
  Make(true);
  std::string text;
  EXPECT_EQ(50u, cache->Get(kPercent));
  EXPECT_TRUE(cache->Get(kName, text));
  EXPECT_EQ(0u, cache->Get(kVolatile));
  manager.Set(kPercent, 70);  // unheard: the cache still holds 50
  manager.Set(kName, std::string("moved"));
  EXPECT_EQ(50u, cache->Get(kPercent));
  int lookups = fake->lookups;

  fake->lost = 3;
  EXPECT_EQ(70u, cache->Get(kPercent));
  EXPECT_TRUE(cache->Get(kName, text));
  EXPECT_EQ("moved", text);
  EXPECT_EQ(lookups, fake->lookups) << "the volatility memo survives the drop";
  int gets = fake->gets;
  EXPECT_EQ(70u, cache->Get(kPercent));
  EXPECT_EQ(gets, fake->gets) << "cached again until the count grows";

  // A loss noticed while a fetch is under way keeps that fetch out.
  manager.Set(kMode, 2);
  fake->duringCall = [this] { fake->lost = 4; };
  EXPECT_EQ(2u, cache->Get(kMode));
  fake->duringCall = nullptr;
  EXPECT_EQ(2u, cache->Get(kMode));
  EXPECT_EQ(gets + 2, fake->gets);
}

TEST_F(ConfigCacheTest, ReadersRacingWithWritersEndCurrent) {
  Make();
  std::atomic<bool> done{false};
  std::thread reader([&] {
    std::string text;
    while (!done) {
      cache->Get(kPercent);
      cache->Get(kName, text);
    }
  });
  for (unsigned int i = 0; i <= 2000; ++i) {
    manager.Set(kPercent, i % 100);
    if (i % 10 == 0) manager.Set(kName, std::to_string(i));
  }
  done = true;
  reader.join();
  std::string text;
  EXPECT_EQ(0u, manager.Get(kPercent));
  EXPECT_EQ(manager.Get(kPercent), cache->Get(kPercent)) << "a stale fetch was kept";
  EXPECT_TRUE(cache->Get(kName, text));
  EXPECT_EQ("2000", text);
}

TEST(ConfigCacheNullTest, EveryOperationFailsCleanly) {
  Register();
  for (bool separate : {false, true}) {
    ConfigCache* cache = separate ? new ConfigCache(nullptr, nullptr) : new ConfigCache(nullptr);
    std::string text = "kept", err;
    unsigned int value = 3;
    err = Stderr([&] {
      EXPECT_EQ(0u, cache->Get(kPercent));
      EXPECT_FALSE(cache->Get(kPercent, value));
      EXPECT_FALSE(cache->Set(kPercent, 1));
      EXPECT_FALSE(cache->Get(kName, text));
      EXPECT_FALSE(cache->Set(kName, std::string("x")));
      EXPECT_FALSE(cache->GetData(kName, text));
      EXPECT_FALSE(cache->SetData(kName, text));
      EXPECT_EQ(nullptr, cache->GetParamDescriptor(kPercent));
      EXPECT_TRUE(cache->GetParamIDs().empty());
      EXPECT_EQ(eConfigID_Invalid, cache->GetConfigID());
    });
    EXPECT_EQ(0u, value);
    EXPECT_EQ("kept", text);
    EXPECT_NE(std::string::npos, err.find("ConfigCache::Get - NULL config\n"));
    EXPECT_NE(std::string::npos, err.find("ConfigCache::SetData - NULL config\n"));
    ConfigEvent event;
    EXPECT_FALSE(cache->AddConfigEventListener(cache));
    EXPECT_FALSE(cache->WaitForConfigEvent(event, 1, 1));
    EXPECT_EQ(0, cache->GetLastConfigUpdate().tv_sec);
    delete cache;
  }
}
