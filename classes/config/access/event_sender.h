// EventSender sends one connection's change events on a thread of its own.
// A store calls its listeners on the writer's thread with the store's
// listener lock held; a connection that sent there would make every writer
// of the store wait on its client. Instead the connection Posts each event
// into a bounded queue (a short lock, never a socket) and the sender thread
// sends them, one after the other, in the order they were posted.
//
// A client that reads too slowly lets the queue fill. The post that finds it
// full cuts the client off: the queue is dropped, the cut-off callback runs
// once on the posting thread (it must not block: the connection prints its
// line and shuts its socket), and every later post is refused.
//
// Ownership: the connection owns its sender and makes it when it first
// registers as a listener, so an idle connection has no extra thread. It
// stops the sender after leaving the store's listeners and before it lets
// go of what the send callback uses.
//
// Threads and locks: Post is called by the store's writers, Start and Stop
// by the connection's thread, the send callback by the sender thread only.
// _lock guards _queue, _stopping, _cut_off and _idle; _pending wakes an idle
// sender thread.
#ifndef CLASSES_CONFIG_ACCESS_EVENT_SENDER_H
#define CLASSES_CONFIG_ACCESS_EVENT_SENDER_H

#include <pthread.h>
#include <semaphore.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>

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

class EventSender {
 public:
  // Events a client may fall behind by before it is cut off.
  static constexpr size_t kMaxQueuedEvents = 1024;
  // Stack of the sender thread: it builds one record at a time.
  static constexpr size_t kThreadStackSize = 128 * 1024;
  // The send buffer of a listening connection's socket. The kernel's own
  // grows to megabytes, tens of thousands of events a stalled client would
  // hold before its queue even starts to fill.
  static constexpr int kSocketSendBuffer = 32 * 1024;

  // Sends one event on the sender thread; its result is not used.
  using SendFunction = std::function<bool(const QueuedEvent&)>;
  using CutOffFunction = std::function<void()>;

  EventSender(SendFunction send, CutOffFunction cutOff, size_t bound = kMaxQueuedEvents);
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
  // True once a post has found the queue full.
  [[nodiscard]] bool IsCutOff();
  // Ends the sender thread after the event it may be sending and joins it;
  // queued events are dropped. A send blocked on the socket holds it up to
  // the socket's send time-out. Calls after the first do nothing.
  void Stop();

 private:
  static void* pthread_start(void* arg);
  void Run();
  // Takes the next event: 1, or 0 when the queue is empty (the sender is
  // then idle), or -1 when stopping.
  int Next(QueuedEvent& event);

  SendFunction _send;
  CutOffFunction _cut_off_callback;
  size_t _bound;
  std::deque<QueuedEvent> _queue;  // guarded by _lock
  bool _stopping;                  // guarded by _lock
  bool _cut_off;                   // guarded by _lock
  bool _idle;                      // guarded by _lock; the sender waits on _pending
  bool _started;                   // connection's thread only
  pthread_t _thread;
  sem_t _lock;
  sem_t _pending;
};

}  // namespace access
}  // namespace config
}  // namespace zyn

#endif  // CLASSES_CONFIG_ACCESS_EVENT_SENDER_H
