// configctl's watch command and the queue that carries changes from the
// event client's thread to the main thread, which alone prints.
//
// ChangeQueue: ParamChanged runs on the client's events thread and only
// appends under _lock; Next runs on the main thread. The queue must outlive
// the client it listens to (remove it, or disconnect the client, first).
#ifndef TOOLS_CONFIGCTL_WATCH_H
#define TOOLS_CONFIGCTL_WATCH_H

#include <sys/time.h>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <set>
#include <string>

#include "common/parameters.h"
#include "config/config_event_listener.h"
#include "configctl/arguments.h"

namespace configctl {

class ChangeQueue : public ConfigEventListener {
 public:
  struct Change {
    unsigned int id = 0;
    common::ParamValue value;
    timeval when{};
  };

  bool ParamChanged(eParam_t id, unsigned int value, timeval when) override;
  bool ParamChanged(eParam_t id, std::string value, timeval when) override;

  // The oldest change, waiting up to `timeoutMs` for one; false when none
  // came in time.
  bool Next(Change& change, long timeoutMs);
  // From now on only changes of these parameters are kept (empty: all).
  void KeepOnly(std::set<unsigned int> ids);

 private:
  void Push(Change change);

  std::mutex _lock;
  std::condition_variable _ready;
  std::deque<Change> _changes;   // guarded by _lock
  std::set<unsigned int> _only;  // guarded by _lock
};

// Prints one line per change of the parameters named (of every parameter
// when none is) until SIGINT or SIGTERM (exit 0), --count changes (exit 0)
// or the loss of configd (exit 1).
int RunWatch(const Arguments& arguments);

}  // namespace configctl

#endif  // TOOLS_CONFIGCTL_WATCH_H
