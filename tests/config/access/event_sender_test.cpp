// A connection's event queue without sockets.
#include "config/access/event_sender.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

using zyn::config::access::EventSender;
using zyn::config::access::QueuedEvent;

TEST(EventSenderTest, OrderCutOffAndStop) {
  std::mutex lock;
  std::condition_variable changed;
  std::vector<uint32_t> sent;
  bool blocked = false;  // sends wait while it is set
  int cutOffs = 0;
  auto waitFor = [&](size_t count) {
    std::unique_lock<std::mutex> hold(lock);
    return changed.wait_for(hold, std::chrono::seconds(10), [&] { return sent.size() == count; });
  };
  EventSender sender(
      [&](const QueuedEvent& event) {
        std::unique_lock<std::mutex> hold(lock);
        sent.push_back(event.paramID);
        changed.notify_all();
        changed.wait(hold, [&] { return !blocked; });
        return true;
      },
      [&] { ++cutOffs; }, 4);
  ASSERT_TRUE(sender.Start());
  auto post = [&](uint32_t id) { return sender.Post(QueuedEvent{false, id, 0, 0, 0}); };

  std::vector<uint32_t> expected;
  for (uint32_t id = 1; id <= 48; ++id) {  // bursts that fill the queue
    ASSERT_TRUE(post(id)) << id;
    expected.push_back(id);
    if (id % 4 == 0) {
      ASSERT_TRUE(waitFor(id));
    }
  }
  EXPECT_EQ(expected, sent) << "events leave in the order they were posted";

  // A send blocks: four events queue behind it, the fifth cuts the client
  // off once, and nothing queued is sent afterwards.
  {
    std::lock_guard<std::mutex> hold(lock);
    blocked = true;
  }
  ASSERT_TRUE(post(100));
  ASSERT_TRUE(waitFor(49));
  for (uint32_t id = 101; id <= 104; ++id) EXPECT_TRUE(post(id)) << id;
  EXPECT_FALSE(post(105));
  EXPECT_EQ(1, cutOffs) << "one cut-off per client";
  EXPECT_TRUE(sender.IsCutOff());

  // Stop waits for the send in progress, and only for it.
  std::thread release([&] {
    std::lock_guard<std::mutex> hold(lock);
    blocked = false;
    changed.notify_all();
  });
  sender.Stop();
  release.join();
  expected.push_back(100);
  EXPECT_EQ(expected, sent);
  EXPECT_FALSE(post(107)) << "a stopped sender takes nothing";
}
