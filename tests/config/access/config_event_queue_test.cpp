// The polling listeners over a real store: the queue's drop-oldest policy
// and poll arithmetic, and the monitor's flag, with writers on other threads.
#include "config/access/config_event_queue.h"

#include <gtest/gtest.h>

#include <thread>

#include "config/access/config_param_monitor.h"
#include "config/config_factory_impl.h"
#include "test_catalogue.h"
#include "test_stderr.h"

using namespace test_catalogue;
using zyn::config::access::ConfigEventQueue;
using zyn::config::access::ConfigParamMonitor;

namespace {

// The sleeps a queue asked for; the second one lets a change in.
std::vector<long> sleeps;
Config* changeInSecondSleep = nullptr;
void RecordSleep(long ms) {
  sleeps.push_back(ms);
  if (changeInSecondSleep != nullptr && sleeps.size() == 2) changeInSecondSleep->Set(kPercent, 77);
}

// The queued events' values, oldest first.
std::string Drain(ConfigEventQueue& queue) {
  std::string out;
  for (ConfigEvent e; queue.GetNextConfigEvent(e, 0, 1);)
    out += (e.paramType == 12 ? e.stringValue : std::to_string(e.intValue)) + " ";
  return out;
}

// A store of the test catalogue of its own, open for the whole process.
Config* Store() {
  static Config* store = nullptr;
  if (store == nullptr) {
    Register();
    Stderr([] { store = ConfigFactoryImpl::GetInstance()->Connect("local:configid=45"); });
  }
  return store;
}

}  // namespace

TEST(PollingTest, QueueKeepsTheNewestEventsAndWaitsInWholePolls) {
  Config* store = Store();
  ConfigEventQueue queue(store, 3);
  for (unsigned int v = 1; v <= 4; ++v) store->Set(kPercent, v);
  store->Set(kName, std::string("Rack 7"));
  EXPECT_EQ("3 4 Rack 7 ", Drain(queue)) << "a full queue drops its oldest event";
  store->Set(kMode, 2);
  queue.FlushEventQueue();
  EXPECT_EQ("", Drain(queue));

  queue.SetSleepFunction(RecordSleep);
  ConfigEvent e;
  for (long timeout : {100, 0}) {  // whole polls, and at least one
    sleeps.clear();
    EXPECT_FALSE(queue.GetNextConfigEvent(e, timeout, 30));
    EXPECT_EQ(std::vector<long>(timeout == 0 ? 1 : 4, 30), sleeps) << timeout;
  }
  EXPECT_EQ("ConfigEventQueue::GetNextConfigEvent - invalid poll interval 0 ms\n",
            Stderr([&] { EXPECT_FALSE(queue.GetNextConfigEvent(e, 100, 0)); }))
      << "a zero interval must not spin until the time-out";
  sleeps.clear();
  changeInSecondSleep = store;
  EXPECT_TRUE(queue.GetNextConfigEvent(e, 1000, 30));
  changeInSecondSleep = nullptr;
  EXPECT_EQ(2u, sleeps.size()) << "an event that came during a sleep is taken at the next look";
  EXPECT_EQ(77u, e.intValue);
  store->RemoveConfigEventListener(&queue);
}

TEST(PollingTest, QueueAndMonitorUnderAWriterThread) {
  Config* store = Store();
  ConfigEventQueue queue(store, 1000);
  ConfigParamMonitor monitor(store);
  monitor.AddParamToMonitor(kRaw);
  std::thread writer([store] {
    for (unsigned int v = 1; v <= 200; ++v) store->Set(kRaw, v);  // kept as written
  });
  unsigned int expected = 1;
  ConfigEvent e;
  while (expected <= 200 && queue.GetNextConfigEvent(e, 10000, 1))
    if (e.paramID == kRaw && e.intValue == expected) ++expected;
  writer.join();
  EXPECT_EQ(201u, expected) << "every change, in order";
  EXPECT_TRUE(monitor.DidSomethingChange(false));
  EXPECT_TRUE(monitor.DidSomethingChange(true)) << "without reset the flag stays";
  EXPECT_FALSE(monitor.DidSomethingChange(true)) << "the reset cleared it";
  store->Set(kPercent, 3);
  monitor.RemoveParamFromMonitorList(kRaw);
  store->Set(kRaw, 1);
  EXPECT_FALSE(monitor.DidSomethingChange(false)) << "changes outside the set leave the flag";
  store->RemoveConfigEventListener(&queue);
}  // the monitor leaves the store's listeners
