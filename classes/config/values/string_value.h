// StringValue holds the value of a text parameter. The text is guarded by
// the object's own semaphore; Set marks the value dirty only when the text
// changes (same length and same bytes are equal).
#ifndef CLASSES_CONFIG_VALUES_STRING_VALUE_H
#define CLASSES_CONFIG_VALUES_STRING_VALUE_H

#include <string>

#include "config/descriptors/string_descriptor.h"
#include "config/values/typed_config_value.h"

class StringValue : public TypedConfigValue<std::string, StringValue, StringDescriptor> {
 public:
  static constexpr const char* kValueFieldName = "StringValue";

  // Class ID 1, store 0, parameter 0, type eCParam_StringValue, empty text.
  StringValue();
  // Class ID 1.
  StringValue(eConfigID_t configID, unsigned int paramID, eParamType_t paramType,
              std::string value);

  std::string ToString() override;
};

#endif  // CLASSES_CONFIG_VALUES_STRING_VALUE_H
