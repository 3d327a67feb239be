// A connection's event queue without sockets.
#include "config/access/event_sender.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

using zyn::config::access::EventSender;
using zyn::config::access::QueuedEvent;

namespace {

// A sender whose sends can be held up, recording what it sent and why it
// cut the client off.
struct HeldSender {
  explicit HeldSender(long drainLimitMs, size_t bound = EventSender::kMaxQueuedEvents)
      : sender(
            [this](const std::vector<QueuedEvent>& events) {
              std::unique_lock<std::mutex> hold(lock);
              for (const QueuedEvent& event : events) sent.push_back(event.paramID);
              changed.notify_all();
              changed.wait(hold, [&] { return !blocked; });
              return true;
            },
            [this](const char* why) { cutOffs.push_back(why); }, drainLimitMs, bound) {}
  bool WaitForSent(size_t count) {
    std::unique_lock<std::mutex> hold(lock);
    return changed.wait_for(hold, std::chrono::seconds(10), [&] { return sent.size() >= count; });
  }
  void Block(bool on) {
    std::lock_guard<std::mutex> hold(lock);
    blocked = on;
    changed.notify_all();
  }
  bool Post(uint32_t id) { return sender.Post(QueuedEvent{false, id, 0, 0, 0}); }

  std::mutex lock;
  std::condition_variable changed;
  std::vector<uint32_t> sent;
  bool blocked = false;  // sends wait while it is set
  std::vector<std::string> cutOffs;
  EventSender sender;
};

}  // namespace

TEST(EventSenderTest, CutOffByTimeUndrainedNotByCount) {
  HeldSender held(300);
  ASSERT_TRUE(held.sender.Start());
  std::vector<uint32_t> expected;
  for (uint32_t id = 1; id <= 5000; ++id) {  // far past any old count, drained as it goes
    ASSERT_TRUE(held.Post(id)) << id;
    expected.push_back(id);
  }
  ASSERT_TRUE(held.WaitForSent(expected.size()));
  EXPECT_EQ(expected, held.sent) << "events leave in the order they were posted";

  // A send blocks: thousands more queue behind it while the limit has not
  // passed; the first post after it cuts the client off, once.
  held.Block(true);
  ASSERT_TRUE(held.Post(10000));
  ASSERT_TRUE(held.WaitForSent(expected.size() + 1));
  const auto undrained = std::chrono::steady_clock::now();
  for (uint32_t id = 10001; id <= 13000; ++id) ASSERT_TRUE(held.Post(id)) << id;
  while (std::chrono::steady_clock::now() - undrained < std::chrono::milliseconds(400))
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  EXPECT_FALSE(held.Post(13001));
  EXPECT_FALSE(held.Post(13002));
  EXPECT_EQ(std::vector<std::string>{"not drained for 300 ms"}, held.cutOffs);
  EXPECT_TRUE(held.sender.IsCutOff());

  // Stop waits for the send in progress, and only for it.
  std::thread release([&] { held.Block(false); });
  held.sender.Stop();
  release.join();
  EXPECT_EQ(expected.size() + 1, held.sent.size()) << "nothing queued is sent after a cut-off";
  EXPECT_FALSE(held.Post(13003)) << "a stopped sender takes nothing";
}

TEST(EventSenderTest, CountCeilingIsASafetyNet) {
  HeldSender held(60000, 4);
  ASSERT_TRUE(held.sender.Start());
  held.Block(true);
  ASSERT_TRUE(held.Post(1));
  ASSERT_TRUE(held.WaitForSent(1));
  for (uint32_t id = 2; id <= 5; ++id) EXPECT_TRUE(held.Post(id)) << id;
  EXPECT_FALSE(held.Post(6));
  EXPECT_EQ(std::vector<std::string>{"over 4 events"}, held.cutOffs);
  held.Block(false);
}
