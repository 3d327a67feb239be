#include "config/values/string_value.h"

StringValue::StringValue()
    : TypedConfigValue(eClassID_StringValue, eConfigID_Default, 0, eCParam_StringValue,
                       std::string()) {}

StringValue::StringValue(eConfigID_t config, unsigned int param, eParamType_t type, std::string v)
    : TypedConfigValue(eClassID_StringValue, config, param, type, std::move(v)) {}

std::string StringValue::ToString() {
  std::string v;
  Get(v);
  return ConfigValue::ToString() + ", value = " + v;
}
