// The polling listeners over a real store: the bounded queue with its
// drop-oldest policy and poll arithmetic, and the change monitor's flag.
#include "config/access/config_event_queue.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "config/access/config_param_monitor.h"
#include "config/config_factory_impl.h"
#include "test_catalogue.h"
#include "test_stderr.h"

using namespace test_catalogue;
using zyn::config::access::ConfigEventQueue;
using zyn::config::access::ConfigParamMonitor;

namespace {

// A store of the test catalogue of its own, so that other tests' listeners
// never see these changes.
class PollingTest : public testing::Test {
 protected:
  void SetUp() override {
    Register();
    Stderr([this] { store = ConfigFactoryImpl::GetInstance()->Connect("local:configid=45"); });
    ASSERT_NE(nullptr, store);
  }
  void TearDown() override { ConfigFactoryImpl::GetInstance()->Disconnect(store); }
  Config* store = nullptr;
};

// "id:value" for an integer event, "id:'text'" for a string event.
std::string Render(const ConfigEvent& e) {
  char line[64];
  if (e.paramType == 12)
    snprintf(line, sizeof line, "%X:'%s'", e.paramID, e.stringValue.c_str());
  else
    snprintf(line, sizeof line, "%X:%u/%u", e.paramID, e.intValue, e.paramType);
  return line;
}

std::vector<std::string> Drain(ConfigEventQueue& queue) {
  std::vector<std::string> out;
  ConfigEvent e;
  while (queue.GetNextConfigEvent(e, 0, 1)) out.push_back(Render(e));
  return out;
}

// The sleeps a queue asked for, and an optional change made during one.
std::vector<long> sleeps;
Config* changeDuringSleep = nullptr;
size_t changeAtSleep = 0;
void RecordSleep(long ms) {
  sleeps.push_back(ms);
  if (changeDuringSleep != nullptr && sleeps.size() == changeAtSleep)
    changeDuringSleep->Set(kPercent, 77);
}

}  // namespace

TEST_F(PollingTest, QueueKeepsTheNewestEvents) {
  ConfigEventQueue queue(store, 3);
  for (unsigned int v = 1; v <= 5; ++v) store->Set(kPercent, v);
  EXPECT_EQ((std::vector<std::string>{"FEEDC001:3/4", "FEEDC001:4/4", "FEEDC001:5/4"}),
            Drain(queue))
      << "a full queue drops its oldest event";

  store->Set(kName, std::string("Rack 7"));
  store->Set(kMode, 2);
  EXPECT_EQ((std::vector<std::string>{"FEEDC004:'Rack 7'", "FEEDC003:2/4"}), Drain(queue));

  store->Set(kMode, 0);
  store->Set(kMode, 1);
  queue.FlushEventQueue();
  EXPECT_EQ(0u, queue.Size());
  EXPECT_TRUE(Drain(queue).empty());

  ConfigEventQueue tiny(nullptr, 0);  // a maximum of 0 still keeps the newest event
  for (unsigned int v = 1; v <= 3; ++v) tiny.ParamChanged(kPercent, v, timeval{7, 8});
  ConfigEvent e;
  ASSERT_TRUE(tiny.GetNextConfigEvent(e, 0, 1));
  EXPECT_EQ("FEEDC001:3/4", Render(e));
  EXPECT_EQ(8, e.timestamp.tv_usec) << "the event keeps the notification's time";
  EXPECT_TRUE(e.stringValue.empty() && e.dataValue.empty());
  store->RemoveConfigEventListener(&queue);
}

TEST_F(PollingTest, WaitIsCountedInWholePollIntervals) {
  ConfigEventQueue queue(nullptr, 4);
  queue.SetSleepFunction(RecordSleep);
  ConfigEvent e;
  struct Case {
    long timeout, poll;
    std::vector<long> expected;
  } cases[] = {
      {100, 30, {30, 30, 30, 30}},  // rounded up to 120 ms
      {90, 30, {30, 30, 30}},
      {0, 30, {30}},  // even no time-out sleeps once
      {5, 50, {50}},
  };
  for (const Case& c : cases) {
    sleeps.clear();
    EXPECT_FALSE(queue.GetNextConfigEvent(e, c.timeout, c.poll));
    EXPECT_EQ(c.expected, sleeps) << "timeout " << c.timeout << " poll " << c.poll;
  }

  sleeps.clear();
  std::string err;
  err = Stderr([&] { EXPECT_FALSE(queue.GetNextConfigEvent(e, 100, 0)); });
  EXPECT_TRUE(sleeps.empty()) << "a zero interval must not spin until the time-out";
  EXPECT_EQ("ConfigEventQueue::GetNextConfigEvent - invalid poll interval 0 ms\n", err);

  // An event that arrives during the second sleep is taken on the next look.
  ConfigEventQueue listening(store, 4);
  listening.SetSleepFunction(RecordSleep);
  sleeps.clear();
  changeDuringSleep = store;
  changeAtSleep = 2;
  EXPECT_TRUE(listening.GetNextConfigEvent(e, 1000, 30));
  changeDuringSleep = nullptr;
  EXPECT_EQ(2u, sleeps.size());
  EXPECT_EQ("FEEDC001:77/4", Render(e));
  store->RemoveConfigEventListener(&listening);
}

TEST_F(PollingTest, ConsumerThreadSeesEveryChangeInOrder) {
  ConfigEventQueue queue(store, 1000);
  constexpr unsigned int kChanges = 200;
  std::thread writer([this] {
    for (unsigned int v = 1; v <= kChanges; ++v)
      store->Set(kRaw, v);  // not validated: every value is kept
  });
  std::vector<unsigned int> seen;
  ConfigEvent e;
  while (seen.size() < kChanges && queue.GetNextConfigEvent(e, 10000, 1)) {
    if (e.paramID == kRaw) seen.push_back(e.intValue);
  }
  writer.join();
  ASSERT_EQ(kChanges, seen.size());
  for (unsigned int i = 0; i < kChanges; ++i) ASSERT_EQ(i + 1, seen[i]) << "event " << i;
  store->RemoveConfigEventListener(&queue);
}

TEST_F(PollingTest, MonitorFlagsOnlyMonitoredChanges) {
  ConfigParamMonitor monitor(store);
  const unsigned int ids[] = {kPercent, kName};
  monitor.AddParamsToMonitor(ids, 0);
  monitor.AddParamsToMonitor(ids, -1);
  EXPECT_FALSE(monitor.IsParamMonitored(kPercent)) << "a count of 0 or less adds nothing";
  monitor.AddParamsToMonitor(ids, 2);
  std::vector<unsigned int> more{kMode, kPercent};
  monitor.AddParamsToMonitor(more);

  store->Set(kTenToHundred, 20);
  EXPECT_FALSE(monitor.DidSomethingChange(false)) << "kTenToHundred is not monitored";

  store->Set(kName, std::string("Rack 9"));
  EXPECT_TRUE(monitor.DidSomethingChange(false));
  EXPECT_TRUE(monitor.DidSomethingChange(false)) << "asking without reset keeps the flag";
  EXPECT_TRUE(monitor.DidSomethingChange(true)) << "the value before the reset";
  EXPECT_FALSE(monitor.DidSomethingChange(true));

  monitor.RemoveParamFromMonitorList(kMode);
  store->Set(kMode, 2);
  EXPECT_FALSE(monitor.DidSomethingChange(false)) << "removed from the list";
  store->Set(kPercent, 12);
  EXPECT_TRUE(monitor.DidSomethingChange(true));

  // Moved to another store, it no longer hears the first one.
  Config* other = nullptr;
  Stderr([&] { other = ConfigFactoryImpl::GetInstance()->Connect("local:configid=46"); });
  ASSERT_NE(nullptr, other);
  monitor.SetConfig(other);
  store->Set(kPercent, 13);
  EXPECT_FALSE(monitor.DidSomethingChange(false));
  other->Set(kPercent, 14);
  EXPECT_TRUE(monitor.DidSomethingChange(false));
  monitor.SetConfig(nullptr);
  ConfigFactoryImpl::GetInstance()->Disconnect(other);
}

TEST_F(PollingTest, MonitorUnderConcurrentWritersAndReaders) {
  auto* monitor = new ConfigParamMonitor(store);
  monitor->AddParamToMonitor(kPercent);
  std::thread writer([this] {
    for (unsigned int v = 0; v < 200; ++v) store->Set(kPercent, v % 100);
  });
  std::thread editor([monitor] {
    for (int i = 0; i < 200; ++i) {
      monitor->AddParamToMonitor(kMode);
      monitor->RemoveParamFromMonitorList(kMode);
    }
  });
  int seen = 0;
  for (int i = 0; i < 200; ++i) seen += monitor->DidSomethingChange(true) ? 1 : 0;
  writer.join();
  editor.join();
  monitor->DidSomethingChange(true);
  store->Set(kPercent, 99);
  EXPECT_TRUE(monitor->DidSomethingChange(true)) << seen;
  delete monitor;  // leaves the store's listeners
  store->Set(kPercent, 98);
}
