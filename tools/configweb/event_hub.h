// EventHub carries the page's live changes from the one daemon connection to
// every open event stream. Publish hands a rendered Server-Sent Events frame
// to each subscriber's queue; each stream's connection thread takes its
// frames with Next and writes them out. A subscriber that falls more than
// kQueueLimit frames behind is closed rather than let grow: its page
// reconnects and reads the values again.
//
// Locks: _lock guards the subscriber list; each Subscriber's own mutex
// guards its queue. Publish runs on the daemon connection's events thread
// (and the session's supervisor); Subscribe, Unsubscribe and Next on the
// HTTP connection threads. Subscribers are shared: the hub drops its
// reference on Unsubscribe or Close, the stream when it ends.
#ifndef TOOLS_CONFIGWEB_EVENT_HUB_H
#define TOOLS_CONFIGWEB_EVENT_HUB_H

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace configweb {

class Subscriber {
 public:
  // Waits up to `timeoutMs` for frames and moves all pending ones, joined,
  // into `frames`. False when none came in time or the subscriber is closed
  // (then Closed() says so).
  bool Next(std::string& frames, long timeoutMs);
  bool Closed();

 private:
  friend class EventHub;
  void Push(const std::string& frame, size_t limit);
  void Close();

  std::mutex _lock;
  std::condition_variable _ready;
  std::deque<std::string> _frames;  // guarded by _lock
  bool _closed = false;             // guarded by _lock
};

class EventHub {
 public:
  static constexpr size_t kQueueLimit = 4096;

  EventHub() = default;
  EventHub(const EventHub&) = delete;
  EventHub& operator=(const EventHub&) = delete;

  // A new subscriber that gets every frame published from now on; null once
  // the hub is closed.
  std::shared_ptr<Subscriber> Subscribe();
  void Unsubscribe(const std::shared_ptr<Subscriber>& subscriber);
  // Queues `frame` for every subscriber.
  void Publish(const std::string& frame);
  // Closes every subscriber and refuses new ones (the server is stopping).
  void Close();
  size_t SubscriberCount();

 private:
  std::mutex _lock;
  std::vector<std::shared_ptr<Subscriber>> _subscribers;  // guarded by _lock
  bool _closed = false;                                   // guarded by _lock
};

// A Server-Sent Events frame: "event: <name>\n" unless `name` is empty, then
// "data: <data>\n\n". `data` must be one line (rendered JSON is).
std::string EventFrame(const std::string& name, const std::string& data);

}  // namespace configweb

#endif  // TOOLS_CONFIGWEB_EVENT_HUB_H
