#include "config/access/send_loop.h"

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <utility>

#include "config/access/outbox.h"

namespace zyn {
namespace config {
namespace access {

SendLoop::SendLoop(unsigned threads) {
  if (threads == 0)
    threads = std::max(1u, std::min(kMaxThreads, std::thread::hardware_concurrency()));
  for (unsigned i = 0; i < threads; ++i) {
    auto thread = std::make_unique<Thread>();
    thread->epoll = epoll_create1(EPOLL_CLOEXEC);
    thread->wake = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (thread->epoll < 0 || thread->wake < 0) {
      perror("SendLoop - unable to create the loop's descriptors");
    } else {
      epoll_event event{};
      event.events = EPOLLIN;
      event.data.ptr = nullptr;  // the wake-up
      epoll_ctl(thread->epoll, EPOLL_CTL_ADD, thread->wake, &event);
    }
    Thread& self = *thread;
    thread->runner = std::thread([this, &self] { Run(self); });
    _threads.push_back(std::move(thread));
  }
}

SendLoop::~SendLoop() {
  for (auto& thread : _threads) {
    {
      std::lock_guard<std::mutex> hold(thread->lock);
      thread->stopping = true;
    }
    Wake(*thread);
    thread->runner.join();
    if (thread->epoll >= 0) close(thread->epoll);
    if (thread->wake >= 0) close(thread->wake);
  }
}

SendLoop& SendLoop::Shared() {
  // Never destroyed: connections may still close their outboxes during exit.
  static SendLoop* shared = new SendLoop();
  return *shared;
}

int SendLoop::Attach(const std::shared_ptr<Outbox>& outbox, int fd) {
  unsigned slot = _next.fetch_add(1, std::memory_order_relaxed) % _threads.size();
  Thread& thread = *_threads[slot];
  {
    std::lock_guard<std::mutex> hold(thread.lock);
    thread.attached.emplace(outbox.get(), outbox);
  }
  epoll_event event{};
  event.events = EPOLLOUT | EPOLLET;
  event.data.ptr = outbox.get();
  if (epoll_ctl(thread.epoll, EPOLL_CTL_ADD, fd, &event) != 0)
    perror("SendLoop::Attach - epoll_ctl failed");
  return static_cast<int>(slot);
}

void SendLoop::Detach(int slot, Outbox* outbox, int fd) {
  Thread& thread = *_threads[static_cast<size_t>(slot)];
  epoll_ctl(thread.epoll, EPOLL_CTL_DEL, fd, nullptr);
  bool wake = false;
  {
    std::lock_guard<std::mutex> hold(thread.lock);
    thread.detached.push_back(outbox);
    wake = !thread.woken;
    thread.woken = true;
  }
  if (wake) Wake(thread);
}

void SendLoop::Schedule(int slot, std::shared_ptr<Outbox> outbox) {
  Thread& thread = *_threads[static_cast<size_t>(slot)];
  bool wake = false;
  {
    std::lock_guard<std::mutex> hold(thread.lock);
    thread.ready.push_back(std::move(outbox));
    wake = !thread.woken;
    thread.woken = true;
  }
  if (wake) Wake(thread);
}

void SendLoop::Wake(Thread& thread) {
  uint64_t one = 1;
  while (write(thread.wake, &one, sizeof one) < 0 && errno == EINTR) {
  }
}

void SendLoop::CheckDrained(Thread& thread) {
  std::vector<std::shared_ptr<Outbox>> attached;
  {
    std::lock_guard<std::mutex> hold(thread.lock);
    attached.reserve(thread.attached.size());
    for (const auto& entry : thread.attached) attached.push_back(entry.second);
  }
  // Outside the thread's lock: an outbox takes its own lock first.
  for (const std::shared_ptr<Outbox>& outbox : attached) outbox->CheckDrained();
}

void SendLoop::Run(Thread& thread) {
  epoll_event events[kEventsPerWait];
  std::vector<std::shared_ptr<Outbox>> ready;
  std::vector<Outbox*> detached;
  std::vector<std::shared_ptr<Outbox>> released;
  auto lastCheck = std::chrono::steady_clock::now();
  for (;;) {
    int count = epoll_wait(thread.epoll, events, kEventsPerWait, kDrainCheckMs);
    if (count < 0) {
      if (errno == EINTR) continue;
      perror("SendLoop - epoll_wait failed");
      return;
    }
    bool woken = false;
    for (int i = 0; i < count; ++i) {
      if (events[i].data.ptr == nullptr) {
        woken = true;
        continue;
      }
      // Kept alive by `attached` until after this pass.
      static_cast<Outbox*>(events[i].data.ptr)->Flush(true);
    }
    // The wake-up is read before the lists are taken: a request made after
    // the read either is in the lists or writes the eventfd again.
    if (woken) {
      uint64_t ignored;
      while (read(thread.wake, &ignored, sizeof ignored) < 0 && errno == EINTR) {
      }
    }
    // Requests are taken until none is left; meanwhile `woken` stays set, so
    // writers that join the lists make no system call to wake the thread.
    for (;;) {
      {
        std::lock_guard<std::mutex> hold(thread.lock);
        if (thread.stopping) return;
        if (thread.ready.empty() && thread.detached.empty()) {
          thread.woken = false;
          break;
        }
        ready.swap(thread.ready);
        detached.insert(detached.end(), thread.detached.begin(), thread.detached.end());
        thread.detached.clear();
      }
      for (const std::shared_ptr<Outbox>& outbox : ready) outbox->Flush(false);
      ready.clear();
    }
    auto now = std::chrono::steady_clock::now();
    if (now - lastCheck >= std::chrono::milliseconds(kDrainCheckMs)) {
      lastCheck = now;
      CheckDrained(thread);
    }
    if (detached.empty()) continue;
    {
      std::lock_guard<std::mutex> hold(thread.lock);
      for (Outbox* outbox : detached) {
        auto it = thread.attached.find(outbox);
        if (it == thread.attached.end()) continue;
        released.push_back(std::move(it->second));
        thread.attached.erase(it);
      }
    }
    detached.clear();
    released.clear();  // outboxes freed here, outside the lock
  }
}

}  // namespace access
}  // namespace config
}  // namespace zyn
