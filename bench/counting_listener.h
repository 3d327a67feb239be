// A listener that only adds up what it hears, so that a bench times the
// store's notification and not the listener.
#ifndef BENCH_COUNTING_LISTENER_H
#define BENCH_COUNTING_LISTENER_H

#include <atomic>
#include <string>

#include "config/config_event_listener.h"

class CountingListener : public ConfigEventListener {
 public:
  bool ParamChanged(eParam_t, unsigned int value, timeval) override {
    sum.fetch_add(value, std::memory_order_relaxed);
    return true;
  }
  bool ParamChanged(eParam_t, std::string value, timeval) override {
    sum.fetch_add(value.size(), std::memory_order_relaxed);
    return true;
  }
  std::atomic<unsigned long> sum{0};
};

#endif  // BENCH_COUNTING_LISTENER_H
