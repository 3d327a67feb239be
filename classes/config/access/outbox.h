// Outbox holds what one stream connection has still to send to its client,
// responses and change events alike, and sends it without ever making the
// caller wait on the peer.
//
// A response (the connection's own thread) goes out at once with a
// non-blocking send when nothing is queued before it, so a request/response
// exchange costs what a plain send costs. An event (a store writer's thread,
// inside the store's notification) is only appended, already encoded, and
// the connection's send loop (SendLoop) is woken; the loop writes whatever
// has queued with one gathered send until the socket would block, keeps a
// partial write, and carries on when epoll says the socket is writable
// again. Bytes leave in the order they were handed over, whichever path
// sends them.
//
// The rule for a client that does not keep up is time, not count: it is cut
// off when its queue has not been emptied for the drain limit
// (kDefaultDrainLimitMs unless set otherwise). A burst that a reading client
// works through, however long, never cuts it off; a client that stops
// reading is cut off by the first hand-over after the limit, or by the
// loop's periodic check when nothing more comes. kMaxQueuedBytes
// is only a safety net against memory exhaustion, far above what a reading
// client ever holds. A cut-off drops the queue and runs the failure callback
// once, on the thread that found it, with the reason ("queue not drained
// for 5000 ms", "queue over 12582912 bytes", "send failed: Broken pipe"),
// with the outbox's lock held so that Close waits for it: the callback must
// not block or call the outbox (the connection prints its line and shuts
// its socket down). Every later hand-over is refused.
//
// Ownership and threads: a connection makes its outbox with Make when it
// first needs one and calls Close before it closes the socket. After Close returns no thread
// sends on the descriptor again; the loop may still hold the object (it is
// shared) but never touches the socket. Post and Send may be called from any
// thread. _lock guards every field below it in the class; the send itself
// runs outside the lock by whichever thread holds the sending turn
// (_sending), and only that thread touches _writing.
#ifndef CLASSES_CONFIG_ACCESS_OUTBOX_H
#define CLASSES_CONFIG_ACCESS_OUTBOX_H

#include <sys/uio.h>

#include <condition_variable>
#include <cstddef>
#include <ctime>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace zyn {
namespace config {
namespace access {

class SendLoop;

class Outbox : public std::enable_shared_from_this<Outbox> {
 public:
  // How long a client's queue may stay unemptied before it is cut off.
  static constexpr long kDefaultDrainLimitMs = 5000;
  // The safety net: queued bytes past which a client is cut off at once
  // (about 286,000 integer events: a burst of a writer's maximum that a
  // reading client works through stays far below it).
  static constexpr size_t kMaxQueuedBytes = 12 * 1024 * 1024;
  // Queued bytes are kept in blocks of up to this size, so a long queue
  // grows without copying what it already holds.
  static constexpr size_t kBlockSize = 64 * 1024;
  // The kernel's send buffer of a connection socket; past it the queue
  // holds the bytes, where the drain limit sees them.
  static constexpr int kSocketSendBuffer = 64 * 1024;

  using FailureFunction = std::function<void(const char* why)>;

  // An outbox for the connected stream socket `fd` (not owned), sending
  // through `loop` (the process-wide one when null). `drainLimitMs` 0 or
  // less: the process-wide limit (DrainLimitMs).
  static std::shared_ptr<Outbox> Make(int fd, FailureFunction failure, long drainLimitMs = 0,
                                      size_t bound = kMaxQueuedBytes, SendLoop* loop = nullptr);
  ~Outbox();
  Outbox(const Outbox&) = delete;
  Outbox& operator=(const Outbox&) = delete;

  // A response: sent now when nothing is queued and the socket takes it,
  // else queued for the loop. False when the client was cut off or the
  // outbox closed.
  bool Send(const char* bytes, size_t length);
  // A response of a connection that makes its outbox only when it needs
  // one (an idle connection holds none): while `outbox` is null the bytes
  // go straight out without waiting, and what the socket does not take
  // makes `outbox` (Make with `fd` and `failure`) and queues there. False,
  // after `failure`, when the send failed.
  static bool Send(std::shared_ptr<Outbox>& outbox, int fd, const FailureFunction& failure,
                   const char* bytes, size_t length);
  // An event: queued, and the loop woken if it is not already on its way.
  // False when the client was cut off, now or before, or the outbox closed.
  bool Post(const char* bytes, size_t length);
  [[nodiscard]] bool IsCutOff();
  // Drops what is queued and waits for a send in progress on another
  // thread (never for the peer); afterwards the socket is not used again.
  void Close();

  // The drain limit of outboxes made from now on, process-wide (tests
  // shorten it; an owner may tune it). 0 or less restores the default.
  static void SetDrainLimitMs(long ms);
  [[nodiscard]] static long DrainLimitMs();

  // The loop's side: writes what is queued until the socket would block.
  // `writable`: epoll reported the socket writable again.
  void Flush(bool writable);
  // The loop's side, now and then: cuts off a client whose queue has not
  // been emptied for the drain limit, though nothing more was handed over.
  void CheckDrained();

 private:
  Outbox(int fd, FailureFunction failure, long drainLimitMs, size_t bound, SendLoop* loop);

  // Appends under _lock; false, and the client cut off, when a limit is
  // passed.
  bool AppendLocked(const char* bytes, size_t length);
  // Runs the failure callback with `why`, drops the queue and marks the
  // client cut off.
  void CutOffLocked(const char* why);
  // Takes the sending turn's next bytes from _queue into _writing.
  void RefillLocked();
  // Sends from _writing until it is empty or the socket would block:
  // 1 emptied, 0 would block, -1 failed (`error` set). Holder of the turn
  // only.
  int SendWriting(int& error);
  // Send's path when nothing is queued: sends now, queues what the socket
  // did not take. False, and the client cut off, when the send failed.
  bool SendNowLocked(std::unique_lock<std::mutex>& hold, const char* bytes, size_t length);
  // Gives the sending turn back; asks the loop for more when bytes wait.
  void ReleaseTurnLocked();
  void ScheduleLocked();

  const int _fd;
  const FailureFunction _failure;
  const long _drain_limit_ms;
  const size_t _bound;
  SendLoop& _loop;

  std::mutex _lock;
  std::condition_variable _turn_free;     // Close waits on it for _sending
  std::vector<std::vector<char>> _queue;  // blocks not yet taken by a sender
  std::vector<char> _spare;               // an emptied block kept for reuse
  size_t _queued = 0;                     // bytes in _queue and _writing
  timespec _undrained_since{};            // when _queued last left 0
  bool _sending = false;                  // a thread holds the sending turn
  bool _blocked = false;                  // the socket would block: wait for epoll
  bool _scheduled = false;                // the loop has been asked to flush
  bool _kick = false;                     // the loop found the turn taken: the holder retries
  bool _cut_off = false;
  bool _closed = false;
  int _slot = -1;  // the loop thread attached to, once the loop was needed
  // The sending turn's bytes: blocks taken from _queue, the first one sent
  // up to _offset. Touched only by the holder of the turn.
  std::vector<std::vector<char>> _writing;
  size_t _offset = 0;
};

}  // namespace access
}  // namespace config
}  // namespace zyn

#endif  // CLASSES_CONFIG_ACCESS_OUTBOX_H
