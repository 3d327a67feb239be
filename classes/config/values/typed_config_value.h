// TypedConfigValue is the shared body of IntegerValue and StringValue: a
// ConfigValue holding one value of type T under its own semaphore, with the
// dirty, equality, copy, clone, reset and serialisation rules the two share.
// Derived supplies the field name of the value in the encoding
// (Derived::kValueFieldName); Descriptor is the descriptor class whose
// GetFactoryDefault() gives the value after a factory reset.
#ifndef CLASSES_CONFIG_VALUES_TYPED_CONFIG_VALUE_H
#define CLASSES_CONFIG_VALUES_TYPED_CONFIG_VALUE_H

#include <semaphore.h>

#include "config/descriptors/param_descriptors.h"
#include "config/values/config_value.h"
#include "config/values/deserializer.h"
#include "config/values/serializer.h"
#include "support/semaphore_helper.h"

template <typename T, typename Derived, typename Descriptor>
class TypedConfigValue : public ConfigValue {
 public:
  ~TypedConfigValue() override { SemaphoreHelper::DestroySemaphore(&_lock); }

  // The ConfigValue test, then the values compared.
  bool IsEqual(Serializable* other) override {
    if (!ConfigValue::IsEqual(other)) return false;
    Derived* typed = dynamic_cast<Derived*>(other);
    if (typed == nullptr) return false;
    T theirs;
    typed->Get(theirs);
    SemaphoreHelper lock(&_lock);
    return value == theirs;
  }

  void Serialize(Serializer* serializer) override {
    ConfigValue::Serialize(serializer);
    SemaphoreHelper lock(&_lock);
    serializer->Write(Derived::kValueFieldName, value);
  }

  void Deserialize(DeSerializer* deserializer) override {
    ConfigValue::Deserialize(deserializer);
    SemaphoreHelper lock(&_lock);
    deserializer->Read(Derived::kValueFieldName, value);
  }

  // A new object of the same class with this identity and value, class ID
  // of the typed constructor and a clean dirty flag; caller owns it.
  ConfigValue* Clone() override {
    SemaphoreHelper lock(&_lock);
    return new Derived(GetConfigID(), GetParamID(), GetParamType(), value);
  }

  void Copy(ConfigValue& other) override {
    ConfigValue::Copy(other);
    CopyValue(other);
  }

  // Takes the value of another value of the same class through Set (so a
  // change marks this one dirty); values of another class are ignored.
  void CopyValue(ConfigValue& other) override {
    Derived* typed = dynamic_cast<Derived*>(&other);
    if (typed == nullptr) return;
    T theirs;
    typed->Get(theirs);
    Set(theirs);
  }

  // Sets the factory default of the parameter's descriptor; nothing happens
  // when the parameter has no descriptor of the expected class.
  void ResetToFactory() override {
    Descriptor* descriptor = dynamic_cast<Descriptor*>(GetDescriptor(GetParamID()));
    if (descriptor != nullptr) Set(descriptor->GetFactoryDefault());
  }

  // Stores `v` and marks the value dirty when it differs from the held one.
  void Set(const T& v) {
    SemaphoreHelper lock(&_lock);
    if (v == value) return;
    value = v;
    SetDirty(true);
  }

  void Get(T& v) {
    SemaphoreHelper lock(&_lock);
    v = value;
  }

 protected:
  TypedConfigValue(eClassID_t cls, eConfigID_t config, unsigned int param, eParamType_t type, T v)
      : ConfigValue(cls, config, param, type), value(std::move(v)) {
    SemaphoreHelper::InitSemaphore(&_lock);
  }
  explicit TypedConfigValue(T v) : ConfigValue(), value(std::move(v)) {
    SemaphoreHelper::InitSemaphore(&_lock);
  }

 private:
  T value;
  sem_t _lock;  // guards value
};

#endif  // CLASSES_CONFIG_VALUES_TYPED_CONFIG_VALUE_H
