// The store: validation and clamping through Set, the update queue with its
// preconditions, dependent-parameter notification, listeners and threads.
#include "config/manager/config_manager.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "config/manager/update_precondition.h"
#include "config/manager/update_precondition_values.h"
#include "config/values/integer_value.h"
#include "recording_listener.h"
#include "test_catalogue.h"
#include "test_stderr.h"

using namespace test_catalogue;

namespace {

// A store of the test catalogue, initialised like the factory does it, with
// a listener that outlives it.
class ConfigManagerTest : public testing::Test {
 protected:
  void SetUp() override {
    Register();
    Stderr([this] { manager.Init(); });
    manager.AddConfigEventListener(&listener);
  }
  RecordingListener listener;
  ConfigManager manager{eConfigID_Default};
};

// A precondition driven by a function, for queue manipulations.
class ScriptedPrecondition : public zyn::config::UpdatePrecondition {
 public:
  typedef std::function<bool(zyn::config::IntegerUpdates&)> Script;
  explicit ScriptedPrecondition(Script s) : script(std::move(s)) {}
  bool IsUpdateValid(Config*, zyn::config::IntegerUpdates& updates) override {
    return script(updates);
  }
  bool IsUpdateValid(Config*, zyn::config::StringUpdates&) override { return true; }
  bool IsUpdateValid(Config*, unsigned int, Serializable&) override { return true; }

 private:
  Script script;
};

}  // namespace

// (That every parameter starts at its factory default is checked over the
// unit's whole catalogue, as are the clamps and refusals at its ranges' ends.)
TEST_F(ConfigManagerTest, InitMakesCleanValuesInStoreZeroAndParametersMayComeAfterIt) {
  ConfigValue* value = dynamic_cast<ConfigValue*>(manager.GetSerializable(kPercent));
  ASSERT_NE(nullptr, value);
  EXPECT_FALSE(value->IsDirty()) << "store 0 values start clean";

  ConfigManager other(static_cast<eConfigID_t>(2));
  Stderr([&] { other.Init(); });
  value = dynamic_cast<ConfigValue*>(other.GetSerializable(kPercent));
  ASSERT_NE(nullptr, value);
  EXPECT_EQ(2, value->GetConfigID());
  EXPECT_TRUE(value->IsDirty()) << "moving a value to another store marks it";

  // Not part of the shared catalogue: registered here, after the store was
  // made, under IDs no other test uses.
  constexpr unsigned int kLateNumber = 0xFEEDC0A1, kLateText = 0xFEEDC0A2;
  static bool registered = false;
  if (!registered) {
    registered = true;
    Integer(kLateNumber, "eParamID_TestLateNumber", 0, 10, 3);
    StringDescriptor* text = new StringDescriptor();
    text->SetParamID(kLateText);
    text->SetParamIDName("eParamID_TestLateText");
    text->SetParamType(eCParam_StringValue);
    text->SetFactoryDefault("late");
    AddDescriptor(text);
  }
  // As before: an integer write does not create its value, a string one does.
  Stderr([&] { EXPECT_FALSE(manager.Set(kLateNumber, 4)); });
  EXPECT_EQ(0u, manager.Get(kLateNumber));
  EXPECT_TRUE(manager.Set(kLateText, std::string("x")));
  Serializable* made = nullptr;
  ASSERT_TRUE(manager.GetConfigValue(kLateNumber, made));
  EXPECT_EQ(3u, manager.Get(kLateNumber));
  EXPECT_TRUE(manager.Set(kLateNumber, 40));
  EXPECT_EQ(10u, manager.Get(kLateNumber)) << "clamped like any parameter";
  std::string text;
  EXPECT_TRUE(manager.Get(kLateText, text));
  EXPECT_EQ("x", text);
  EXPECT_EQ(made, manager.GetSerializable(kLateNumber));
  EXPECT_TRUE(manager.Set(kPercent, 42));
  EXPECT_EQ(42u, manager.Get(kPercent)) << "older parameters keep their values";
}

TEST_F(ConfigManagerTest, WrappedRangesAndDependentMinimums) {
  // A range that starts at its minimum and wraps through zero: a signed
  // distance below the minimum goes to the minimum, above the maximum to the
  // maximum, and 1 (out of the range, not above the maximum) is kept.
  const std::pair<unsigned int, unsigned int> wrapped[] = {
      {0xFFFFFFF8, 0xFFFFFFF8}, {0xFFFFFFFF, 0xFFFFFFFF}, {0, 0}, {50, 10}, {1, 1},
      {0xFFFFFFF5, 0xFFFFFFF6}, {0x7FFFFFFF, 0xFFFFFFF6}};
  for (const auto& [in, out] : wrapped) {
    EXPECT_TRUE(manager.Set(kWrapped, in));
    EXPECT_EQ(out, manager.Get(kWrapped)) << std::hex << in;
  }

  // "do_not_validate" skips the preconditions entirely.
  EXPECT_TRUE(manager.Set(kRaw, 500));
  EXPECT_EQ(500u, manager.Get(kRaw));

  // A dependent minimum keeps its formula.
  ASSERT_TRUE(manager.Set(kPercent, 100));
  EXPECT_TRUE(manager.Set(kLimited, 950));
  EXPECT_EQ(950u, manager.Get(kLimited));
  EXPECT_TRUE(manager.Set(kLimited, 800));
  EXPECT_EQ(901u, manager.Get(kLimited)) << "moved to 1000 - 100 + 1";
  // With the named parameter at 0 the value becomes limit + 1.
  ASSERT_TRUE(manager.Set(kPercent, 0));
  EXPECT_TRUE(manager.Set(kLimited, 5));
  EXPECT_EQ(1001u, manager.Get(kLimited));
}

TEST_F(ConfigManagerTest, UnknownParametersStringsAndData) {
  std::string err = Stderr([&] { EXPECT_FALSE(manager.Set(kUnknown, 1)); });
  EXPECT_EQ("GetParamDescriptor Error in classes/config/manager/config_manager at line 103\n", err);
  err = Stderr([&] { EXPECT_FALSE(manager.Set(kUnknown, std::string("x"))); });
  EXPECT_EQ("GetParamDescriptor Error in classes/config/manager/config_manager at line 188\n", err);
  EXPECT_EQ(0u, manager.Get(kUnknown));
  unsigned int v = 9;
  EXPECT_FALSE(manager.Get(kUnknown, v));
  EXPECT_EQ(nullptr, manager.GetSerializable(kUnknown));
  EXPECT_FALSE(manager.SetSerializable(kPercent, manager.GetSerializable(kPercent)));
  err = Stderr([&] {
    std::string s;
    EXPECT_FALSE(manager.Get(kPercent, s));
  });
  EXPECT_EQ("ConfigManager::GetConfigParam - error - not a StringValue\n", err);
  err = Stderr([&] { EXPECT_FALSE(manager.Set(kName, 5u)); });
  EXPECT_EQ("ConfigManager::SetConfigParam() - configValue == NULL for paramID = FEEDC004\n", err);

  EXPECT_TRUE(manager.Set(kName, std::string("Rack 7")));
  std::string data = "blob";
  EXPECT_TRUE(manager.SetData(kName, data));
  std::string read;
  EXPECT_TRUE(manager.GetData(kName, read));
  EXPECT_EQ("blob", read);
  EXPECT_EQ("FEEDC004='Rack 7' FEEDC004='data:blob'", listener.Rendered());
}

TEST_F(ConfigManagerTest, PreconditionsAddOrDropUpdatesAndFailureKeepsEarlierRounds) {
  // Writing kSource first queues kTenToHundred = 70 in front of it; the
  // source update itself is then refused when its value is 4.
  ConfigManager* store = &manager;
  manager.AddUpdatePrecondition(new ScriptedPrecondition([store](zyn::config::IntegerUpdates& u) {
    if (u.front().first == kSource && store->Get(kTenToHundred) != 70) {
      u.push_front({kTenToHundred, 70});
      return true;
    }
    return !(u.front().first == kSource && u.front().second == 4);
  }));
  EXPECT_TRUE(manager.Set(kSource, 3));
  EXPECT_EQ(70u, manager.Get(kTenToHundred));
  EXPECT_EQ(3u, manager.Get(kSource));
  // The dependants of kSource follow its own event.
  EXPECT_EQ("FEEDC002=70 FEEDC008=3 FEEDC001=50 FEEDC004='unit'", listener.Rendered());

  ASSERT_TRUE(manager.Set(kTenToHundred, 10));
  std::string err = Stderr([&] { EXPECT_FALSE(manager.Set(kSource, 4)); });
  EXPECT_EQ("ConfigManager::Set(uint32_t) - update precondition failed, returning false\n", err);
  EXPECT_EQ(70u, manager.Get(kTenToHundred)) << "the earlier round stays applied";
  EXPECT_EQ(3u, manager.Get(kSource));

  // A precondition that empties the queue: nothing is stored or announced.
  const std::string heard = listener.Rendered();
  manager.AddUpdatePrecondition(new ScriptedPrecondition([](zyn::config::IntegerUpdates& u) {
    u.clear();
    return true;
  }));
  EXPECT_FALSE(manager.Set(kPercent, 20));
  EXPECT_EQ(50u, manager.Get(kPercent));
  EXPECT_EQ(heard, listener.Rendered());
}

TEST_F(ConfigManagerTest, ListenersSeeEveryParameterOnTheWritersThreadAndWhoChecksAnUpdate) {
  RecordingListener filtered, twice;
  manager.AddConfigEventListener(kPercent, &filtered);  // the ID is not a filter
  manager.AddConfigEventListener(&twice);
  manager.AddConfigEventListener(&twice);
  std::thread writer([&] { manager.Set(kTenToHundred, 20); });
  std::thread::id writerID = writer.get_id();
  writer.join();
  manager.Set(kTenToHundred, 20);  // an unchanged value is still notified
  std::vector<RecordingListener::Event> events = filtered.Events();
  ASSERT_EQ(2u, events.size());
  EXPECT_EQ(kTenToHundred, events[0].id);
  EXPECT_EQ(writerID, events[0].thread);
  EXPECT_EQ(0, events[0].when.tv_sec);
  EXPECT_EQ(0, events[0].when.tv_usec);
  EXPECT_EQ(4u, twice.Events().size()) << "a listener registered twice hears twice";

  EXPECT_TRUE(manager.RemoveConfigEventListener(&twice));
  EXPECT_TRUE(manager.RemoveConfigEventListener(&twice));
  EXPECT_FALSE(manager.RemoveConfigEventListener(&twice));
  EXPECT_TRUE(manager.RemoveConfigEventListener(&filtered));
  manager.Set(kTenToHundred, 30);
  EXPECT_EQ(2u, filtered.Events().size());
  EXPECT_EQ(0, manager.GetLastConfigUpdate().tv_sec);

  // A subclass of the default precondition keeps its overrides.
  class LenientEnums : public zyn::config::UpdatePreconditionValues {
   public:
    bool IsValidEnum(EnumDescriptor*, unsigned int&) override { return true; }
  };
  manager.DeleteAllUpdatePreconditions();
  manager.AddUpdatePrecondition(new LenientEnums());
  EXPECT_TRUE(manager.Set(kMode, 7));
  EXPECT_EQ(7u, manager.Get(kMode));
  EXPECT_TRUE(manager.Set(kPercent, 150));
  EXPECT_EQ(100u, manager.Get(kPercent)) << "the inherited range check still applies";
  // No precondition at all: nothing is checked.
  manager.DeleteAllUpdatePreconditions();
  EXPECT_TRUE(manager.Set(kPercent, 150));
  EXPECT_EQ(150u, manager.Get(kPercent));
  // The default one back: refuses and clamps again.
  manager.AddDefaultPreconditions();
  Stderr([&] { EXPECT_FALSE(manager.Set(kMode, 3)); });
  EXPECT_TRUE(manager.Set(kPercent, 150));
  EXPECT_EQ(100u, manager.Get(kPercent));
  // A removed precondition is handed back to its caller and no longer asked.
  auto* refuseAll = new ScriptedPrecondition([](zyn::config::IntegerUpdates&) { return false; });
  manager.AddUpdatePrecondition(refuseAll);
  Stderr([&] { EXPECT_FALSE(manager.Set(kPercent, 1)); });
  EXPECT_TRUE(manager.RemoveUpdatePrecondition(refuseAll));
  EXPECT_FALSE(manager.RemoveUpdatePrecondition(refuseAll));
  EXPECT_TRUE(manager.Set(kPercent, 1));
  delete refuseAll;
}

TEST_F(ConfigManagerTest, ConcurrentWritersAndReadersAndTheLastEventCarriesTheValue) {
  std::atomic<bool> stop{false};
  std::atomic<int> badReads{0};
  auto reader = [&] {
    while (!stop) {
      if (manager.Get(kPercent) > 100) ++badReads;
      std::string name;
      manager.Get(kName, name);
      if (name != "unit" && name != "a" && name != "bb") ++badReads;
    }
  };
  auto writer = [&](unsigned int base, const char* text) {
    for (unsigned int i = 0; i < 500; ++i) {
      manager.Set(kPercent, base + i % 150);
      manager.Set(kName, std::string(text));
    }
  };
  std::thread r1(reader), r2(reader);
  std::thread w1(writer, 0, "a"), w2(writer, 30, "bb");
  w1.join();
  w2.join();
  stop = true;
  r1.join();
  r2.join();
  EXPECT_EQ(0, badReads.load());
  EXPECT_EQ(2000u, listener.Events().size());
  EXPECT_LE(manager.Get(kPercent), 100u);

  // Two writers of one parameter: listeners hear the writes in the order
  // they were stored, so the last event always matches the stored value.
  for (int round = 0; round < 20; ++round) {
    size_t before = listener.Events().size();
    auto write = [&](unsigned int base) {
      for (unsigned int i = 0; i < 200; ++i) manager.Set(kPercent, base + i % 40);
    };
    std::thread a(write, 0), b(write, 50);
    a.join();
    b.join();
    std::vector<RecordingListener::Event> events = listener.Events();
    ASSERT_EQ(before + 400, events.size());
    ASSERT_EQ(manager.Get(kPercent), events.back().value) << "round " << round;
  }
}

TEST_F(ConfigManagerTest, NestedSetsFromAPrecondition) {
  // A precondition that writes to another store: each Set on the thread has
  // a queue of its own.
  ConfigManager other{static_cast<eConfigID_t>(3)};
  Stderr([&] { other.Init(); });
  other.AddUpdatePrecondition(new ScriptedPrecondition([](zyn::config::IntegerUpdates& u) {
    if (u.front().first == kPercent) u.push_back({kTenToHundred, 60});
    return true;
  }));
  manager.AddUpdatePrecondition(new ScriptedPrecondition([&](zyn::config::IntegerUpdates& u) {
    if (u.front().first == kSource) {
      EXPECT_TRUE(other.Set(kPercent, 30));
      u.push_back({kPercent, 31});
    }
    return true;
  }));
  EXPECT_TRUE(manager.Set(kSource, 2));
  EXPECT_EQ(2u, manager.Get(kSource));
  EXPECT_EQ(31u, manager.Get(kPercent)) << "the outer queue survived the inner Set";
  EXPECT_EQ(30u, other.Get(kPercent));
  EXPECT_EQ(60u, other.Get(kTenToHundred));
}
