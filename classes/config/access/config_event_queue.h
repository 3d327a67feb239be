// ConfigEventQueue turns the change callbacks of a Config into a bounded
// queue of ConfigEvent copies that a consumer takes one by one with a
// time-out, for code that polls instead of handling callbacks. When the queue
// is full the oldest event is dropped to make room: a slow consumer sees the
// latest changes, not the first ones.
//
// Ownership: the queue registers itself with the Config given to the
// constructor but does not remove itself when destroyed; the owner calls
// RemoveConfigEventListener before deleting it.
//
// Locks: _lock guards _queue. ParamChanged runs on whatever thread the Config
// notifies from; GetNextConfigEvent and FlushEventQueue run on the
// consumer's thread. The lock is never held while sleeping.
#ifndef CLASSES_CONFIG_ACCESS_CONFIG_EVENT_QUEUE_H
#define CLASSES_CONFIG_ACCESS_CONFIG_EVENT_QUEUE_H

#include <semaphore.h>

#include <deque>
#include <string>

#include "config/config.h"

namespace zyn {
namespace config {
namespace access {

class ConfigEventQueue : public ConfigEventListener {
 public:
  // Sleeps `ms` milliseconds between two looks at an empty queue.
  typedef void (*SleepFunction)(long ms);

  // Registers with `config` unless it is null. `maximumSize` should be at
  // least 1; 0 behaves like 1.
  ConfigEventQueue(Config* config, unsigned int maximumSize);
  ~ConfigEventQueue() override;

  // Queue an integer event (type 4) or a string event (type 12).
  bool ParamChanged(eParam_t id, unsigned int value, timeval when) override;
  bool ParamChanged(eParam_t id, std::string value, timeval when) override;

  // Appends a copy of `event`, first dropping the oldest events while the
  // queue is full.
  void AddToQueue(const ConfigEvent& event);
  // Removes the oldest event into `out` and returns true, or returns false
  // once the queue stayed empty for `timeoutMs`. An empty queue is looked at
  // again every `pollMs`; the wait is rounded up to whole poll intervals and
  // is at least one interval, even with a time-out of 0.
  bool GetNextConfigEvent(ConfigEvent& out, const long& timeoutMs, const long& pollMs);
  void FlushEventQueue();

  // The number of queued events.
  [[nodiscard]] size_t Size();
  // Replaces the sleep between polls; tests count the sleeps instead of
  // measuring them. Call before the consumer starts.
  void SetSleepFunction(SleepFunction sleep) { _sleep = sleep; }

 private:
  Config* _config;
  sem_t _lock;
  std::deque<ConfigEvent> _queue;  // oldest first; guarded by _lock
  unsigned int _maximumSize;
  SleepFunction _sleep;
};

}  // namespace access
}  // namespace config
}  // namespace zyn

#endif  // CLASSES_CONFIG_ACCESS_CONFIG_EVENT_QUEUE_H
