#include "config/values/integer_value.h"

#include <cstdio>

IntegerValue::IntegerValue() : TypedConfigValue(0u) {}

IntegerValue::IntegerValue(eConfigID_t config, unsigned int param, eParamType_t type,
                           unsigned int v)
    : TypedConfigValue(eClassID_IntegerValue, config, param, type, v) {}

IntegerValue* IntegerValue::Create(eConfigID_t config, unsigned int param, eParamType_t type,
                                   unsigned int v) {
  return new IntegerValue(config, param, type, v);
}

IntegerValue* IntegerValue::Create(unsigned int param, eParamType_t type, unsigned int v) {
  return Create(eConfigID_Default, param, type, v);
}

std::string IntegerValue::ToString() {
  unsigned int v;
  Get(v);
  char text[48];
  snprintf(text, sizeof text, ", value = %d = 0X%x", static_cast<int>(v), v);
  return ConfigValue::ToString() + text;
}
