// EventSender sends one connection's change events on a thread of its own.
// A store calls its listeners on the writer's thread with the store's
// listener lock held; a connection that sent there would make every writer
// of the store wait on its client. Instead the connection Posts each event
// into a queue (a short lock, never a socket) and the sender thread takes
// whatever has queued, up to kMaxBatch events, and sends it in one go, in
// the order the events were posted. Sending in batches lets a client that
// reads keep up with any writer the store can take.
//
// The rule for a client that does not keep up is time, not count: a client
// is cut off when its queue has not been fully drained (emptied by the
// sender) for the drain limit (kDefaultDrainLimitMs unless set otherwise).
// A burst that a reading client works through, however long, never cuts it
// off; a client that stops reading is cut off once the limit has passed.
// kMaxQueuedEvents is only a safety net against memory exhaustion, far
// above what a reading client ever holds: about 6 MiB of queued events.
// The post that finds either limit passed cuts the client off: the queue is
// dropped, the cut-off callback runs once on the posting thread with the
// reason (it must not block: the connection prints its line and shuts its
// socket), and every later post is refused. A post never waits on the peer.
//
// Ownership: the connection owns its sender and makes it when it first
// registers as a listener, so an idle connection has no extra thread. It
// stops the sender after leaving the store's listeners and before it lets
// go of what the send callback uses.
//
// Threads and locks: Post is called by the store's writers, Start and Stop
// by the connection's thread, the send callback by the sender thread only.
// _lock guards _queue, _undrained_since, _stopping, _cut_off and _idle;
// _pending wakes an idle sender thread. The process-wide drain limit is an
// atomic read when a sender is made.
#ifndef CLASSES_CONFIG_ACCESS_EVENT_SENDER_H
#define CLASSES_CONFIG_ACCESS_EVENT_SENDER_H

#include <pthread.h>
#include <semaphore.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <vector>

#include "config/access/xconfigmgr_records.h"

namespace zyn {
namespace config {
namespace access {

// One change as queued: what the event record needs besides the payload,
// which a string change reads from the store when it is sent.
struct QueuedEvent {
  bool text;  // a string change: the value is read at sending
  uint32_t paramID;
  uint32_t value;  // the new value of an integer change
  uint32_t connectionID;
  uint32_t configID;
};

// The "Param Changed Event" of an integer change.
XCONFIGMGR_RESPONSE_T ParamChangedEvent(const QueuedEvent& event);
// The request from which a "Param String Changed Event" with the store's
// current value is built.
XCONFIGMGR_REQUEST_T StreamChangedEvent(const QueuedEvent& event);
// The records of a batch of events, one after another, for one send:
// integer changes packed here, string changes through `buildStream` (the
// connection's own stream encoder; a record it refuses is left out).
std::vector<char> EncodeEventBatch(
    const std::vector<QueuedEvent>& events,
    const std::function<bool(const XCONFIGMGR_REQUEST_T&, std::vector<char>&)>& buildStream);

class EventSender {
 public:
  // How long a client's queue may stay undrained before it is cut off.
  static constexpr long kDefaultDrainLimitMs = 5000;
  // The safety net: queued events past which a client is cut off at once.
  static constexpr size_t kMaxQueuedEvents = 256 * 1024;
  // The most events sent in one go.
  static constexpr size_t kMaxBatch = 256;
  // Stack of the sender thread: it builds one record at a time.
  static constexpr size_t kThreadStackSize = 128 * 1024;
  // The send buffer of a listening connection's socket. The kernel's own
  // grows to megabytes, tens of thousands of events a stalled client would
  // hold before its queue even starts to fill.
  static constexpr int kSocketSendBuffer = 32 * 1024;

  // Sends a batch of events, oldest first, on the sender thread; its result
  // is not used.
  using SendFunction = std::function<bool(const std::vector<QueuedEvent>&)>;
  // Told why: "not drained for 5000 ms" or "over 262144 events".
  using CutOffFunction = std::function<void(const char* why)>;

  // `drainLimitMs` 0 or less: the process-wide limit (DrainLimitMs).
  EventSender(SendFunction send, CutOffFunction cutOff, long drainLimitMs = 0,
              size_t bound = kMaxQueuedEvents);
  // Stops and joins the sender thread.
  ~EventSender();
  EventSender(const EventSender&) = delete;
  EventSender& operator=(const EventSender&) = delete;

  // A started sender for the connection on socket `fd`, whose send buffer
  // it bounds; null, with a message, when the thread cannot be started.
  static std::unique_ptr<EventSender> StartFor(int fd, SendFunction send, CutOffFunction cutOff);
  // Starts the sender thread; false, with a message, when it cannot.
  bool Start();
  // Queues `event` without waiting. False when it was not queued: the client
  // was cut off, now or before, or the sender is stopping.
  bool Post(const QueuedEvent& event);
  // True once a post has cut the client off.
  [[nodiscard]] bool IsCutOff();
  // The drain limit of senders made from now on, process-wide (tests
  // shorten it; an owner may tune it). 0 or less restores the default.
  static void SetDrainLimitMs(long ms);
  [[nodiscard]] static long DrainLimitMs();
  // Ends the sender thread after the event it may be sending and joins it;
  // queued events are dropped. A send blocked on the socket holds it up to
  // the socket's send time-out. Calls after the first do nothing.
  void Stop();

 private:
  static void* pthread_start(void* arg);
  void Run();
  // Takes the next events into `batch`: 1, or 0 when the queue is empty
  // (the sender is then idle), or -1 when stopping.
  int Next(std::vector<QueuedEvent>& batch);

  SendFunction _send;
  CutOffFunction _cut_off_callback;
  std::chrono::milliseconds _drain_limit;
  size_t _bound;
  std::deque<QueuedEvent> _queue;  // guarded by _lock
  // When the queue last went from empty to holding an event; guarded by _lock.
  std::chrono::steady_clock::time_point _undrained_since;
  bool _stopping;  // guarded by _lock
  bool _cut_off;   // guarded by _lock
  bool _idle;      // guarded by _lock; the sender waits on _pending
  bool _started;   // connection's thread only
  pthread_t _thread;
  sem_t _lock;
  sem_t _pending;
};

}  // namespace access
}  // namespace config
}  // namespace zyn

#endif  // CLASSES_CONFIG_ACCESS_EVENT_SENDER_H
