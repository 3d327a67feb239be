// ConfigEventListener is the callback interface of change notifications. A
// listener is not owned by the Config it is registered with: the registrant
// removes it before destroying it. Callbacks run on the thread that made the
// change (in the store) or on a client's events thread, with the store's
// listener lock held: a callback must not add or remove listeners of the
// same store.
#ifndef CLASSES_CONFIG_CONFIG_EVENT_LISTENER_H
#define CLASSES_CONFIG_CONFIG_EVENT_LISTENER_H

#include <sys/time.h>

#include <string>

#include "config/config_types.h"

class ConfigEventListener {
 public:
  ConfigEventListener() = default;
  virtual ~ConfigEventListener() = default;
  ConfigEventListener(const ConfigEventListener&) = delete;
  ConfigEventListener& operator=(const ConfigEventListener&) = delete;

  virtual bool ParamChanged(eParam_t id, unsigned int value, timeval when) = 0;
  virtual bool ParamChanged(eParam_t id, std::string value, timeval when) = 0;
  // Data changes are optional: the default ignores them and returns false.
  virtual bool DataChanged(eParam_t id, std::string& data, timeval when);
};

#endif  // CLASSES_CONFIG_CONFIG_EVENT_LISTENER_H
