#include "configweb/event_hub.h"

#include <algorithm>
#include <chrono>

namespace configweb {

void Subscriber::SetDirectWriter(DirectWriter writer) {
  std::lock_guard<std::mutex> hold(_lock);
  _direct = std::move(writer);
}

bool Subscriber::Next(std::string& frames, long timeoutMs) {
  std::unique_lock<std::mutex> hold(_lock);
  auto pending = [this] { return !_partial.empty() || _resync || !_frames.empty(); };
  _ready.wait_for(hold, std::chrono::milliseconds(timeoutMs),
                  [&] { return _closed || (pending() && _writer != Writer::kPublisher); });
  // A direct write is a non-blocking send: it ends at once.
  _awaiting_writer = true;
  _ready.wait(hold, [this] { return _closed || _writer != Writer::kPublisher; });
  _awaiting_writer = false;
  if (_closed) return false;
  _writer = Writer::kStream;
  frames.swap(_partial);
  _partial.clear();
  if (_resync) {
    // Rendered after the flag is cleared: whatever is published from here
    // on is queued behind it, and what was dropped is in the values.
    _resync = false;
    hold.unlock();
    frames += _resyncSource ? _resyncSource()
                            : EventFrame("resync", "{\"connected\":true,\"values\":[]}");
    return true;
  }
  if (frames.empty() && _frames.empty()) {
    frames = ": idle\n\n";
    return true;
  }
  for (const std::string& frame : _frames) frames += frame;
  _frames.clear();
  return true;
}

void Subscriber::Written() {
  {
    std::lock_guard<std::mutex> hold(_lock);
    _writer = Writer::kNone;
  }
  _ready.notify_one();
}

bool Subscriber::Closed() {
  std::lock_guard<std::mutex> hold(_lock);
  return _closed;
}

void Subscriber::Push(const std::string& frame, size_t limit) {
  {
    std::unique_lock<std::mutex> hold(_lock);
    if (_closed) return;
    if (_resync) return;  // the resync frame will carry it
    if (_direct && _writer == Writer::kNone && _partial.empty() && _frames.empty()) {
      _writer = Writer::kPublisher;
      hold.unlock();
      long sent = _direct(frame.data(), frame.size());
      hold.lock();
      _writer = Writer::kNone;
      if (sent > 0) {
        // Begun on the wire: the rest goes out before anything else.
        _partial = frame.substr(static_cast<size_t>(sent));
        if (_partial.empty()) {
          // Only a stream thread that waits for this write is woken: one
          // that waits for frames has none to take.
          bool waiting = _awaiting_writer;
          hold.unlock();
          if (waiting) _ready.notify_one();
          return;
        }
      } else {
        _frames.push_back(frame);
      }
    } else if (_frames.size() >= limit) {
      _resync = true;
      _frames.clear();
    } else {
      _frames.push_back(frame);
    }
  }
  _ready.notify_one();
}

void Subscriber::Resync() {
  {
    std::lock_guard<std::mutex> hold(_lock);
    _resync = true;
    _frames.clear();
  }
  _ready.notify_one();
}

void Subscriber::Close() {
  {
    std::lock_guard<std::mutex> hold(_lock);
    _closed = true;
  }
  _ready.notify_one();
}

std::shared_ptr<Subscriber> EventHub::Subscribe() {
  std::lock_guard<std::mutex> hold(_lock);
  if (_closed) return nullptr;
  _subscribers.push_back(std::make_shared<Subscriber>(_resyncSource));
  return _subscribers.back();
}

void EventHub::Unsubscribe(const std::shared_ptr<Subscriber>& subscriber) {
  std::lock_guard<std::mutex> hold(_lock);
  _subscribers.erase(std::remove(_subscribers.begin(), _subscribers.end(), subscriber),
                     _subscribers.end());
}

void EventHub::Publish(const std::string& frame) {
  std::lock_guard<std::mutex> hold(_lock);
  for (const std::shared_ptr<Subscriber>& subscriber : _subscribers)
    subscriber->Push(frame, kQueueLimit);
}

void EventHub::ResyncAll() {
  std::lock_guard<std::mutex> hold(_lock);
  for (const std::shared_ptr<Subscriber>& subscriber : _subscribers) subscriber->Resync();
}

void EventHub::Close() {
  std::lock_guard<std::mutex> hold(_lock);
  _closed = true;
  for (const std::shared_ptr<Subscriber>& subscriber : _subscribers) subscriber->Close();
  _subscribers.clear();
}

size_t EventHub::SubscriberCount() {
  std::lock_guard<std::mutex> hold(_lock);
  return _subscribers.size();
}

std::string EventFrame(const std::string& name, const std::string& data) {
  std::string frame;
  if (!name.empty()) frame = "event: " + name + "\n";
  return frame + "data: " + data + "\n\n";
}

}  // namespace configweb
