// EventHub carries the page's live changes from the one daemon connection to
// every open event stream. Publish hands a rendered Server-Sent Events frame
// to each subscriber's queue; each stream's connection thread takes its
// frames with Next and writes them out. A subscriber that falls more than
// kQueueLimit frames behind is not let grow, nor closed: its queue is
// dropped and its next frame is a resync frame (from the resync source)
// that gives the page every current value at once. ResyncAll does the same
// for every subscriber, after a gap in configd's events.
//
// Locks: _lock guards the subscriber list; each Subscriber's own mutex
// guards its queue. Publish runs on the change batcher's publisher (and the
// session's supervisor); Subscribe, Unsubscribe and Next on the HTTP
// connection threads. Next renders a resync frame with no lock held.
// Subscribers are shared: the hub drops its reference on Unsubscribe or
// Close, the stream when it ends.
#ifndef TOOLS_CONFIGWEB_EVENT_HUB_H
#define TOOLS_CONFIGWEB_EVENT_HUB_H

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace configweb {

class Subscriber {
 public:
  // Writes bytes to the stream's peer without blocking: how many went out,
  // or -1.
  using DirectWriter = std::function<long(const char* bytes, size_t length)>;

  explicit Subscriber(std::function<std::string()> resyncSource)
      : _resyncSource(std::move(resyncSource)) {}

  // Lets Publish write a frame straight to the peer when nothing is queued
  // and the stream thread is not writing, which spares a thread wake-up per
  // frame; what does not go out at once is queued as usual. Set once, from
  // the stream thread, before the first Next.
  void SetDirectWriter(DirectWriter writer);
  // Waits up to `timeoutMs` for frames and moves all pending ones, joined,
  // into `frames` (a resync frame alone when the queue was dropped), or an
  // idle comment when none came in time. The caller then writes `frames`
  // and calls Written; until then no frame is written directly. False when
  // the subscriber is closed.
  bool Next(std::string& frames, long timeoutMs);
  void Written();
  bool Closed();

 private:
  friend class EventHub;
  // Who is writing to the peer.
  enum class Writer { kNone, kStream, kPublisher };

  void Push(const std::string& frame, size_t limit);
  void Resync();
  void Close();

  const std::function<std::string()> _resyncSource;
  DirectWriter _direct;  // set once under _lock, then only read
  std::mutex _lock;
  std::condition_variable _ready;
  std::string _partial;             // the unsent end of a direct write; guarded by _lock
  std::deque<std::string> _frames;  // guarded by _lock
  bool _resync = false;             // guarded by _lock; _frames is then empty
  bool _closed = false;             // guarded by _lock
  Writer _writer = Writer::kNone;   // guarded by _lock
  bool _awaiting_writer = false;    // Next waits for a direct write; guarded by _lock
};

class EventHub {
 public:
  // Frames come at most once per ChangeBatcher::kFrameMs: this is seconds
  // of a stream that does not drain.
  static constexpr size_t kQueueLimit = 256;

  EventHub() = default;
  EventHub(const EventHub&) = delete;
  EventHub& operator=(const EventHub&) = delete;

  // What a resynchronised subscriber is sent; set before the first
  // Subscribe. Without one, the resync frame carries no values.
  void SetResyncSource(std::function<std::string()> source) { _resyncSource = std::move(source); }
  // A new subscriber that gets every frame published from now on; null once
  // the hub is closed.
  std::shared_ptr<Subscriber> Subscribe();
  void Unsubscribe(const std::shared_ptr<Subscriber>& subscriber);
  // Queues `frame` for every subscriber.
  void Publish(const std::string& frame);
  // Drops every subscriber's queue for one resync frame.
  void ResyncAll();
  // Closes every subscriber and refuses new ones (the server is stopping).
  void Close();
  size_t SubscriberCount();

 private:
  std::function<std::string()> _resyncSource;
  std::mutex _lock;
  std::vector<std::shared_ptr<Subscriber>> _subscribers;  // guarded by _lock
  bool _closed = false;                                   // guarded by _lock
};

// A Server-Sent Events frame: "event: <name>\n" unless `name` is empty, then
// "data: <data>\n\n". `data` must be one line (rendered JSON is).
std::string EventFrame(const std::string& name, const std::string& data);

}  // namespace configweb

#endif  // TOOLS_CONFIGWEB_EVENT_HUB_H
