// SendLoop sends for every stream connection of the process: a small fixed
// set of threads (one per core, at most kMaxThreads), each with an epoll
// instance, that write each connection's queued bytes (Outbox) without ever
// blocking on a peer.
//
// A store writer hands an event to a connection's outbox and the outbox asks
// its loop thread to flush it (Schedule). The first request since the
// thread last looked writes its eventfd; later ones only join the list, so
// one change fanned out to a hundred connections wakes each thread once. An
// outbox whose socket would block is watched for EPOLLOUT (edge-triggered)
// and flushed again when the socket drains.
//
// Ownership: an outbox is attached to one thread when it is made and
// detached by Outbox::Close. The thread keeps a reference to every attached
// outbox until the end of the pass in which it saw the detachment, so an
// epoll event already taken for it never reaches a freed object. The shared
// loop is made on first use and lives until the process ends.
//
// Threads and locks: Attach, Detach and Schedule are called from any
// thread; each loop thread's _lock guards its request lists and _woken. A
// thread takes an outbox's lock only while holding no lock of its own.
#ifndef CLASSES_CONFIG_ACCESS_SEND_LOOP_H
#define CLASSES_CONFIG_ACCESS_SEND_LOOP_H

#include <atomic>
#include <cstddef>
#include <memory>
#include <mutex>
#include <thread>
#include <unordered_map>
#include <vector>

namespace zyn {
namespace config {
namespace access {

class Outbox;

class SendLoop {
 public:
  static constexpr unsigned kMaxThreads = 4;
  // The most epoll events taken in one wait.
  static constexpr int kEventsPerWait = 64;
  // How often each thread checks its outboxes' drain limit.
  static constexpr int kDrainCheckMs = 500;

  // A loop with `threads` threads (0: one per core, at most kMaxThreads).
  explicit SendLoop(unsigned threads = 0);
  // Ends and joins the threads; every outbox must have been closed.
  ~SendLoop();
  SendLoop(const SendLoop&) = delete;
  SendLoop& operator=(const SendLoop&) = delete;

  // The process-wide loop that connections use.
  static SendLoop& Shared();

  // Hands `outbox`, sending on `fd`, to one of the threads; returns which.
  int Attach(const std::shared_ptr<Outbox>& outbox, int fd);
  // Stops watching `fd` for `outbox` on thread `slot`; the thread lets go
  // of the outbox after its current pass.
  void Detach(int slot, Outbox* outbox, int fd);
  // Asks thread `slot` to flush `outbox` soon.
  void Schedule(int slot, std::shared_ptr<Outbox> outbox);
  [[nodiscard]] unsigned ThreadCount() const { return static_cast<unsigned>(_threads.size()); }

 private:
  struct Thread {
    int epoll = -1;
    int wake = -1;  // eventfd
    std::thread runner;
    std::mutex lock;
    std::vector<std::shared_ptr<Outbox>> ready;  // guarded by lock
    std::vector<Outbox*> detached;               // guarded by lock
    bool woken = false;                          // guarded by lock: wake written, not yet read
    bool stopping = false;                       // guarded by lock
    // Every attached outbox, by the pointer epoll carries; guarded by lock.
    std::unordered_map<Outbox*, std::shared_ptr<Outbox>> attached;
  };

  void Run(Thread& thread);
  // Cuts off the thread's clients whose queues have stalled.
  static void CheckDrained(Thread& thread);
  void Wake(Thread& thread);

  std::vector<std::unique_ptr<Thread>> _threads;
  std::atomic<unsigned> _next{0};  // round-robin choice of thread
};

}  // namespace access
}  // namespace config
}  // namespace zyn

#endif  // CLASSES_CONFIG_ACCESS_SEND_LOOP_H
