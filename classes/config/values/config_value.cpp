#include "config/values/config_value.h"

#include <cstdio>

#include "config/values/deserializer.h"
#include "config/values/serializer.h"

ConfigValue::ConfigValue()
    : Serializable(eClassID_Unset),
      configID(eConfigID_Default),
      paramID(0),
      paramType(eCParam_None) {}

ConfigValue::ConfigValue(eClassID_t cls, eConfigID_t config, unsigned int param, eParamType_t type)
    : Serializable(cls), configID(config), paramID(param), paramType(type) {}

bool ConfigValue::IsEqual(Serializable* other) {
  if (other == nullptr || other->GetClassID() != GetClassID()) return false;
  ConfigValue* value = dynamic_cast<ConfigValue*>(other);
  if (value == nullptr) return false;
  return value->IsDirty() == IsDirty() && value->GetConfigID() == GetConfigID() &&
         value->GetParamID() == GetParamID() && value->GetParamType() == GetParamType();
}

void ConfigValue::Serialize(Serializer* serializer) {
  serializer->Write("ConfigID", static_cast<int>(configID));
  serializer->Write("ParamID", paramID);
  serializer->Write("ParamType", static_cast<int>(paramType));
}

void ConfigValue::Deserialize(DeSerializer* deserializer) {
  unsigned int config = 0, type = 0;
  if (deserializer->Read("ConfigID", config)) configID = static_cast<eConfigID_t>(config);
  deserializer->Read("ParamID", paramID);
  if (deserializer->Read("ParamType", type)) paramType = static_cast<eParamType_t>(type);
}

eConfigID_t ConfigValue::GetConfigID() { return configID; }

void ConfigValue::SetConfigID(eConfigID_t id) {
  if (id == configID) return;
  configID = id;
  SetDirty(true);
}

unsigned int ConfigValue::GetParamID() { return paramID; }

void ConfigValue::SetParamID(unsigned int id) {
  if (id == paramID) return;
  paramID = id;
  SetDirty(true);
}

eParamType_t ConfigValue::GetParamType() { return paramType; }

void ConfigValue::SetParamType(eParamType_t type) {
  if (type == paramType) return;
  paramType = type;
  SetDirty(true);
}

void ConfigValue::Copy(ConfigValue& other) { SetConfigID(other.GetConfigID()); }

void ConfigValue::ResetToFactory() {}

std::string ConfigValue::ToString() {
  char text[96];
  snprintf(text, sizeof text, "configID = %d, paramID = 0x%0X, paramType = %d",
           static_cast<int>(GetConfigID()), GetParamID(), static_cast<int>(GetParamType()));
  return text;
}
