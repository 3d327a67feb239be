// A connection's outbox and the send loop over a local socket pair.
#include "config/access/outbox.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "config/access/send_loop.h"

using zyn::config::access::Outbox;
using zyn::config::access::SendLoop;

namespace {

// A connected pair: the outbox sends on `near`, the test reads `far`.
struct Pair {
  explicit Pair(long drainLimitMs = 0, size_t bound = Outbox::kMaxQueuedBytes) {
    int fds[2];
    EXPECT_EQ(0, socketpair(AF_UNIX, SOCK_STREAM, 0, fds));
    near = fds[0];
    far = fds[1];
    outbox = Outbox::Make(
        near,
        [this](const char* why) {
          std::lock_guard<std::mutex> hold(lock);
          failures.push_back(why);
        },
        drainLimitMs, bound, &loop);
  }
  ~Pair() {
    outbox->Close();
    close(near);
    close(far);
  }
  // Reads until `count` bytes came or nothing came for 10 s.
  std::string Read(size_t count) {
    std::string got;
    char buffer[65536];
    while (got.size() < count) {
      pollfd readable{far, POLLIN, 0};
      if (poll(&readable, 1, 10000) != 1) break;
      ssize_t n = read(far, buffer, std::min(sizeof buffer, count - got.size()));
      if (n <= 0) break;
      got.append(buffer, static_cast<size_t>(n));
    }
    return got;
  }
  std::vector<std::string> Failures() {
    std::lock_guard<std::mutex> hold(lock);
    return failures;
  }

  SendLoop loop{1};
  int near = -1, far = -1;
  std::mutex lock;
  std::vector<std::string> failures;  // guarded by lock
  std::shared_ptr<Outbox> outbox;
};

std::string Record(char kind, int n) {
  char text[32];
  snprintf(text, sizeof text, "%c%09d;", kind, n);
  return text;
}

}  // namespace

// Responses sent now and events queued for the loop leave in the order they
// were handed over, whole, while the peer reads nothing at first (partial
// writes and a full socket) and then everything.
TEST(OutboxTest, KeepsHandOverOrderAcrossResponsesEventsAndPartialWrites) {
  Pair pair;
  std::string expected;
  for (int i = 0; i < 40000; ++i) {  // ~440 kB: far past the socket's buffers
    std::string record = Record(i % 3 == 0 ? 'R' : 'E', i);
    ASSERT_TRUE(i % 3 == 0 ? pair.outbox->Send(record.data(), record.size())
                           : pair.outbox->Post(record.data(), record.size()))
        << i;
    expected += record;
  }
  // A writer thread keeps posting while the peer drains.
  std::thread writer([&] {
    for (int i = 40000; i < 60000; ++i) {
      std::string record = Record('E', i);
      pair.outbox->Post(record.data(), record.size());
    }
  });
  std::string got = pair.Read(expected.size());
  writer.join();
  for (int i = 40000; i < 60000; ++i) expected += Record('E', i);
  got += pair.Read(expected.size() - got.size());
  EXPECT_EQ(expected.size(), got.size());
  EXPECT_TRUE(expected == got) << "bytes reordered, lost or repeated";
  EXPECT_TRUE(pair.Failures().empty()) << "a reading peer was cut off";
}

// A peer that stops reading is cut off by time, not count: thousands of
// events queue while the limit has not passed; the loop's check ends it
// even when nothing more is handed over, once, and every later hand-over
// is refused. A safety ceiling on queued bytes cuts off at once. A peer
// that has gone fails the next send with its cause, once; Close after
// that, or with bytes still queued, returns and nothing is sent.
TEST(OutboxTest, CutsOffAStalledPeerByTimeAndAtTheCeilingAndAVanishedOneOnce) {
  Pair timed(300);
  std::string record = Record('E', 0);
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < 20000; ++i) ASSERT_TRUE(timed.outbox->Post(record.data(), record.size()));
  auto deadline = start + std::chrono::seconds(20);
  while (timed.Failures().empty() && std::chrono::steady_clock::now() < deadline)
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(290));
  EXPECT_EQ(std::vector<std::string>{"queue not drained for 300 ms"}, timed.Failures());
  EXPECT_TRUE(timed.outbox->IsCutOff());
  EXPECT_FALSE(timed.outbox->Post(record.data(), record.size()));
  EXPECT_FALSE(timed.outbox->Send(record.data(), record.size()));
  EXPECT_EQ(1u, timed.Failures().size());

  // Past the limit, the next check cuts the peer off (the loop checks only
  // every half second; here the check is made at once). On a loaded machine
  // the posting itself may outlast the limit and be cut at hand-over.
  Pair prompt(50);
  for (int i = 0; i < 20000 && prompt.outbox->Post(record.data(), record.size()); ++i) {
  }
  std::this_thread::sleep_for(std::chrono::milliseconds(60));
  prompt.outbox->CheckDrained();
  EXPECT_EQ(std::vector<std::string>{"queue not drained for 50 ms"}, prompt.Failures());

  Pair bounded(60000, 200000);
  bool refused = false;
  for (int i = 0; i < 100000 && !refused; ++i)
    refused = !bounded.outbox->Post(record.data(), record.size());
  EXPECT_TRUE(refused);
  EXPECT_EQ(std::vector<std::string>{"queue over 200000 bytes"}, bounded.Failures());

  Pair pair;
  shutdown(pair.far, SHUT_RDWR);
  record = Record('R', 1);
  EXPECT_FALSE(pair.outbox->Send(record.data(), record.size()));
  EXPECT_FALSE(pair.outbox->Post(record.data(), record.size()));
  ASSERT_EQ(1u, pair.Failures().size());
  EXPECT_EQ(0u, pair.Failures()[0].find("send failed: ")) << pair.Failures()[0];

  Pair closing;
  for (int i = 0; i < 20000; ++i) closing.outbox->Post(record.data(), record.size());
  closing.outbox->Close();
  EXPECT_FALSE(closing.outbox->Post(record.data(), record.size()));
  EXPECT_TRUE(closing.Failures().empty());
}
