// ConfigValue is the current value of one parameter in one store: it knows
// its store (configID), parameter and parameter type, carries the dirty flag
// for persistence, and serialises itself for transport and storage. The
// concrete classes are IntegerValue (every numeric, enumerated and decimal
// parameter) and StringValue (text parameters).
//
// The identity fields and the dirty flag are not guarded; each concrete
// class guards its own value with a per-object lock. The store (the
// ConfigManager) owns one value object per parameter.
#ifndef CLASSES_CONFIG_VALUES_CONFIG_VALUE_H
#define CLASSES_CONFIG_VALUES_CONFIG_VALUE_H

#include <string>

#include "config/config_types.h"
#include "config/descriptors/param_types.h"
#include "config/values/serializable.h"

class ConfigValue : public Serializable {
 public:
  ConfigValue();
  ConfigValue(eClassID_t classID, eConfigID_t configID, unsigned int paramID,
              eParamType_t paramType);
  ConfigValue(const ConfigValue&) = delete;
  ConfigValue& operator=(const ConfigValue&) = delete;

  // Equal when the class IDs match, `other` is a ConfigValue, and the dirty
  // flag, store, parameter and type all agree: a changed-but-unsaved value
  // is not equal to its saved twin.
  bool IsEqual(Serializable* other) override;
  void Serialize(Serializer* serializer) override;
  void Deserialize(DeSerializer* deserializer) override;

  // The identity setters mark the value dirty only when they change it.
  virtual eConfigID_t GetConfigID();
  virtual void SetConfigID(eConfigID_t id);
  virtual unsigned int GetParamID();
  virtual void SetParamID(unsigned int id);
  virtual eParamType_t GetParamType();
  virtual void SetParamType(eParamType_t type);
  // A new value of the same class, identity and value; caller owns it.
  virtual ConfigValue* Clone() = 0;
  // Copies the store ID and the value (not the parameter ID or type).
  virtual void Copy(ConfigValue& other);
  virtual void CopyValue(ConfigValue& other) = 0;
  // Sets the value to its descriptor's factory default.
  virtual void ResetToFactory();
  virtual std::string ToString();

 private:
  eConfigID_t configID;
  unsigned int paramID;
  eParamType_t paramType;
};

#endif  // CLASSES_CONFIG_VALUES_CONFIG_VALUE_H
