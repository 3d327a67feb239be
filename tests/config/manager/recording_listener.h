// A listener that records every notification with the thread it ran on.
#ifndef TESTS_CONFIG_MANAGER_RECORDING_LISTENER_H
#define TESTS_CONFIG_MANAGER_RECORDING_LISTENER_H

#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "config/config_event_listener.h"

class RecordingListener : public ConfigEventListener {
 public:
  struct Event {
    eParam_t id;
    unsigned int value;
    std::string text;
    bool isString;
    timeval when;
    std::thread::id thread;
  };

  bool ParamChanged(eParam_t id, unsigned int value, timeval when) override {
    Record({id, value, "", false, when, std::this_thread::get_id()});
    return true;
  }
  bool ParamChanged(eParam_t id, std::string value, timeval when) override {
    Record({id, 0, value, true, when, std::this_thread::get_id()});
    return true;
  }
  bool DataChanged(eParam_t id, std::string& data, timeval when) override {
    Record({id, 0, "data:" + data, true, when, std::this_thread::get_id()});
    return true;
  }

  std::vector<Event> Events() {
    std::lock_guard<std::mutex> hold(lock);
    return events;
  }

  // "id=value" per event, hexadecimal IDs, for compact comparisons.
  std::string Rendered() {
    std::string text;
    for (const Event& e : Events()) {
      char id[16];
      snprintf(id, sizeof id, "%s%X=", text.empty() ? "" : " ", e.id);
      text += id + (e.isString ? "'" + e.text + "'" : std::to_string(e.value));
    }
    return text;
  }

 private:
  void Record(Event e) {
    std::lock_guard<std::mutex> hold(lock);
    events.push_back(e);
  }
  std::mutex lock;
  std::vector<Event> events;
};

#endif  // TESTS_CONFIG_MANAGER_RECORDING_LISTENER_H
