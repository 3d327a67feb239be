// EventLossCounter is implemented by a Config whose change events travel
// over a transport that can drop them (UDP multicast). It tells how many
// events were lost so far, so that a layer that keeps copies of values (the
// client-side cache) can drop them and read again from the store.
//
// Thread-safety: LostEvents may be called from any thread at any time; the
// count only grows.
#ifndef CLASSES_CONFIG_EVENT_LOSS_COUNTER_H
#define CLASSES_CONFIG_EVENT_LOSS_COUNTER_H

#include <cstdint>

class EventLossCounter {
 public:
  EventLossCounter() = default;
  virtual ~EventLossCounter() = default;
  EventLossCounter(const EventLossCounter&) = delete;
  EventLossCounter& operator=(const EventLossCounter&) = delete;

  // Events known to be lost since the object was made.
  [[nodiscard]] virtual uint64_t LostEvents() const = 0;
};

#endif  // CLASSES_CONFIG_EVENT_LOSS_COUNTER_H
