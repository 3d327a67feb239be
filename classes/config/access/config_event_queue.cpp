#include "config/access/config_event_queue.h"

#include <cerrno>
#include <cstdio>
#include <ctime>

#include "support/semaphore_helper.h"

namespace {

// Event type codes of ConfigEvent.
constexpr unsigned int kIntegerEvent = 4;
constexpr unsigned int kStringEvent = 12;

// nanosleep rather than usleep: the interval may exceed one second.
void SleepMilliseconds(long ms) {
  timespec left = {ms / 1000, (ms % 1000) * 1000000L};
  while (nanosleep(&left, &left) != 0 && errno == EINTR) {
  }
}

}  // namespace

namespace zyn {
namespace config {
namespace access {

ConfigEventQueue::ConfigEventQueue(Config* config, unsigned int maximumSize)
    : _config(config), _maximumSize(maximumSize), _sleep(SleepMilliseconds) {
  SemaphoreHelper::InitSemaphore(&_lock);
  if (_config != nullptr) _config->AddConfigEventListener(this);
}

ConfigEventQueue::~ConfigEventQueue() { SemaphoreHelper::DestroySemaphore(&_lock); }

bool ConfigEventQueue::ParamChanged(eParam_t id, unsigned int value, timeval when) {
  ConfigEvent event;
  event.paramID = id;
  event.paramType = kIntegerEvent;
  event.intValue = value;
  event.timestamp = when;
  AddToQueue(event);
  return true;
}

bool ConfigEventQueue::ParamChanged(eParam_t id, std::string value, timeval when) {
  ConfigEvent event;
  event.paramID = id;
  event.paramType = kStringEvent;
  event.stringValue = std::move(value);
  event.timestamp = when;
  AddToQueue(event);
  return true;
}

void ConfigEventQueue::AddToQueue(const ConfigEvent& event) {
  SemaphoreHelper hold(&_lock);
  while (!_queue.empty() && _queue.size() >= _maximumSize) _queue.pop_front();
  _queue.push_back(event);
}

bool ConfigEventQueue::GetNextConfigEvent(ConfigEvent& out, const long& timeoutMs,
                                          const long& pollMs) {
  long waited = 0;
  for (;;) {
    {
      SemaphoreHelper hold(&_lock);
      if (!_queue.empty()) {
        out = _queue.front();
        _queue.pop_front();
        return true;
      }
    }
    // Without a positive interval the wait would never reach the time-out.
    if (pollMs <= 0 && timeoutMs > 0) {
      fprintf(stderr, "ConfigEventQueue::GetNextConfigEvent - invalid poll interval %ld ms\n",
              pollMs);
      return false;
    }
    if (pollMs > 0) _sleep(pollMs);
    waited += pollMs;
    if (waited >= timeoutMs) return false;
  }
}

void ConfigEventQueue::FlushEventQueue() {
  SemaphoreHelper hold(&_lock);
  _queue.clear();
}

size_t ConfigEventQueue::Size() {
  SemaphoreHelper hold(&_lock);
  return _queue.size();
}

}  // namespace access
}  // namespace config
}  // namespace zyn
