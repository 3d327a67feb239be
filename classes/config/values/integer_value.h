// IntegerValue holds the value of a numeric, enumerated or decimal
// parameter as an unsigned 32-bit pattern (the descriptor gives its
// meaning). The value is guarded by the object's own semaphore; Set marks
// the value dirty only when it changes.
#ifndef CLASSES_CONFIG_VALUES_INTEGER_VALUE_H
#define CLASSES_CONFIG_VALUES_INTEGER_VALUE_H

#include "config/descriptors/integer_descriptor.h"
#include "config/values/typed_config_value.h"

class IntegerValue : public TypedConfigValue<unsigned int, IntegerValue, IntegerDescriptor> {
 public:
  static constexpr const char* kValueFieldName = "IntegerValue";

  // Class ID 17 (unset), everything 0.
  IntegerValue();
  // Class ID 0.
  IntegerValue(eConfigID_t configID, unsigned int paramID, eParamType_t paramType,
               unsigned int value);

  // New values owned by the caller; the second form is for store 0.
  static IntegerValue* Create(eConfigID_t configID, unsigned int paramID, eParamType_t paramType,
                              unsigned int value);
  static IntegerValue* Create(unsigned int paramID, eParamType_t paramType, unsigned int value);

  std::string ToString() override;
};

#endif  // CLASSES_CONFIG_VALUES_INTEGER_VALUE_H
