#include "configweb/change_batcher.h"

#include <chrono>

#include "common/formatting.h"
#include "config/descriptors/param_descriptors.h"
#include "configweb/event_hub.h"

namespace configweb {

namespace {

// Appends the change objects of `changes` to `out`, comma-separated.
template <typename Changes>
void AppendChanges(std::string& out, const Changes& changes) {
  bool first = true;
  for (const auto& entry : changes) {
    const ChangeBatcher::Change& change = entry.second;
    if (!first) out += ',';
    first = false;
    out += common::EventJson(change.when, change.id, GetDescriptor(change.id), change.value);
  }
}

}  // namespace

ChangeBatcher::ChangeBatcher(EventHub& hub, std::function<bool()> connected)
    : _hub(hub), _connected(std::move(connected)) {
  _hub.SetResyncSource([this] { return ResyncFrame(); });
}

ChangeBatcher::~ChangeBatcher() { Stop(); }

void ChangeBatcher::Start() {
  std::lock_guard<std::mutex> hold(_lock);
  _stopping = false;
  if (!_publisher.joinable()) _publisher = std::thread(&ChangeBatcher::Publish, this);
}

void ChangeBatcher::Stop() {
  {
    std::lock_guard<std::mutex> hold(_lock);
    _stopping = true;
  }
  _wake.notify_all();
  if (_publisher.joinable()) _publisher.join();
}

void ChangeBatcher::Record(Change change) {
  std::unique_lock<std::mutex> hold(_lock);
  unsigned int id = change.id;
  if (!_publishing && !_stopping && _pending.empty() && std::chrono::steady_clock::now() >= _next) {
    // Quiet until now: this change is its own frame, sent from here.
    _publishing = true;
    _latest[id] = change;
    hold.unlock();
    PublishFrame(std::map<unsigned int, Change>{{id, std::move(change)}});
    hold.lock();
    _publishing = false;
    _next = std::chrono::steady_clock::now() + std::chrono::milliseconds(kFrameMs);
    hold.unlock();
    _wake.notify_all();  // a publisher may wait for this publish to end
    return;
  }
  bool first = _pending.empty();
  _pending[id] = std::move(change);
  hold.unlock();
  if (first) _wake.notify_all();
}

template <typename Changes>
void ChangeBatcher::PublishFrame(const Changes& changes) {
  std::string data = "[";
  AppendChanges(data, changes);
  _hub.Publish(EventFrame("", data + "]"));
}

std::vector<unsigned int> ChangeBatcher::KnownIds() {
  std::lock_guard<std::mutex> hold(_lock);
  std::vector<unsigned int> ids;
  for (const auto& entry : _latest) ids.push_back(entry.first);
  for (const auto& entry : _pending)
    if (_latest.count(entry.first) == 0) ids.push_back(entry.first);
  return ids;
}

void ChangeBatcher::Resync(const std::vector<Change>& current) {
  {
    std::lock_guard<std::mutex> hold(_lock);
    // A pending change came after the read, or with it: the publisher
    // sends it after the resync frame, so it still ends the stream.
    for (const Change& change : current) _latest[change.id] = change;
  }
  _hub.ResyncAll();
}

std::string ChangeBatcher::ResyncFrame() {
  std::map<unsigned int, Change> latest;
  {
    std::lock_guard<std::mutex> hold(_lock);
    latest = _latest;
  }
  std::string data =
      std::string("{\"connected\":") + (_connected() ? "true" : "false") + ",\"values\":[";
  AppendChanges(data, latest);
  return EventFrame("resync", data + "]}");
}

void ChangeBatcher::Publish() {
  std::unique_lock<std::mutex> hold(_lock);
  for (;;) {
    _wake.wait(hold, [this] { return _stopping || !_pending.empty(); });
    // Changes that come within the frame interval join this frame.
    while (!_stopping && _wake.wait_until(hold, _next) != std::cv_status::timeout) {
    }
    _wake.wait(hold, [this] { return !_publishing; });
    if (_pending.empty()) {
      if (_stopping) return;
      continue;
    }
    std::unordered_map<unsigned int, Change> batch;
    batch.swap(_pending);
    // Known before the frame is queued: a stream that is resynchronised
    // meanwhile gets these values in its resync frame.
    for (const auto& entry : batch) _latest[entry.first] = entry.second;
    _publishing = true;
    hold.unlock();
    PublishFrame(batch);
    hold.lock();
    _publishing = false;
    _next = std::chrono::steady_clock::now() + std::chrono::milliseconds(kFrameMs);
  }
}

}  // namespace configweb
