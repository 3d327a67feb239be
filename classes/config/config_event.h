// ConfigEvent is one queued change notification, a plain record copied by
// value: which parameter changed, the type code of the new value (4 for an
// integer change, 12 for a string change), the new value and when.
#ifndef CLASSES_CONFIG_CONFIG_EVENT_H
#define CLASSES_CONFIG_CONFIG_EVENT_H

#include <sys/time.h>

#include <string>

#include "config/config_types.h"

struct ConfigEvent {
  eParam_t paramID = 0;
  unsigned int paramType = 0;
  unsigned int intValue = 0;
  std::string stringValue;  // empty for an integer change
  std::string dataValue;    // left empty by parameter changes
  timeval timestamp = {0, 0};
};

#endif  // CLASSES_CONFIG_CONFIG_EVENT_H
