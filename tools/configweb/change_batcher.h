// ChangeBatcher stands between configd's event connection and the EventHub.
// Record, called on the event client's receive thread for every change,
// publishes a change at once when nothing was published for a frame
// interval (one change, one small frame: a quiet unit's changes reach the
// pages without a thread hand-over); otherwise it only notes the
// parameter's latest value in a map under a short lock and wakes the
// publisher thread. The publisher takes the map at most once per kFrameMs
// and publishes all of it as one frame: a JSON array of change objects, one
// per parameter, each the last value of that parameter. A page
// wants the current value of what it shows, not every step in between, so
// the stream keeps up with any writer while configd's event connection is
// always drained at once.
//
// The batcher also keeps the last value sent of every parameter it has
// seen. ResyncFrame renders them all ("event: resync"); a stream whose
// queue overflowed gets it in place of what it missed, and Resync replaces
// them with values just read from configd after a gap in the events.
//
// Locks: _lock guards _pending, _latest, _next, _publishing and _stopping;
// it is never held while rendering or publishing, so a Record that only
// notes a change never waits behind JSON work. One publish runs at a time
// (_publishing), so frames leave in the order of the changes.
// Record may be called from any thread; Start and Stop from one
// controlling thread; ResyncFrame from the HTTP stream threads.
#ifndef TOOLS_CONFIGWEB_CHANGE_BATCHER_H
#define TOOLS_CONFIGWEB_CHANGE_BATCHER_H

#include <sys/time.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

#include "common/parameters.h"

namespace configweb {

class EventHub;

class ChangeBatcher {
 public:
  // The longest a change waits for its frame; about one display refresh.
  static constexpr long kFrameMs = 16;

  struct Change {
    unsigned int id = 0;
    common::ParamValue value;
    timeval when{};
  };

  // `connected` says, for the resync frame, whether configd is linked.
  ChangeBatcher(EventHub& hub, std::function<bool()> connected);
  ~ChangeBatcher();
  ChangeBatcher(const ChangeBatcher&) = delete;
  ChangeBatcher& operator=(const ChangeBatcher&) = delete;

  void Start();
  // Publishes what is pending and ends the publisher.
  void Stop();

  // Notes `change` as its parameter's latest value; cheap, never blocks on
  // the streams.
  void Record(Change change);
  // The parameters whose values have been sent to the pages.
  std::vector<unsigned int> KnownIds();
  // Takes `current` (read from configd) as the values of those parameters
  // and gives every stream a resync frame in place of its queue.
  void Resync(const std::vector<Change>& current);
  // "event: resync" with {"connected":BOOL,"values":[change, ...]}.
  std::string ResyncFrame();

 private:
  void Publish();
  // Renders `changes` as one frame and hands it to the hub.
  template <typename Changes>
  void PublishFrame(const Changes& changes);

  EventHub& _hub;
  const std::function<bool()> _connected;
  std::mutex _lock;
  std::condition_variable _wake;
  std::unordered_map<unsigned int, Change> _pending;  // guarded by _lock
  std::map<unsigned int, Change> _latest;             // guarded by _lock
  bool _stopping = false;                             // guarded by _lock
  bool _publishing = false;                           // guarded by _lock
  // Before it, a change waits for the publisher; guarded by _lock.
  std::chrono::steady_clock::time_point _next;
  std::thread _publisher;
};

}  // namespace configweb

#endif  // TOOLS_CONFIGWEB_CHANGE_BATCHER_H
