// TypedConfigValue is the shared body of IntegerValue and StringValue: a
// ConfigValue holding one value of type T under its own semaphore, with the
// dirty, equality, copy, clone, reset and serialisation rules the two share.
// Derived supplies the field name of the value in the encoding
// (Derived::kValueFieldName); Descriptor is the descriptor class whose
// GetFactoryDefault() gives the value after a factory reset.
//
// Locks: _lock serialises every write of the value (and the dirty flag it
// sets) and every read of a string. An integer (T = unsigned int) is held in
// an atomic word, so its Get takes no lock: writers store it with release
// order and readers load it with acquire order, so a reader that sees a new
// value also sees what its writer did before storing it.
#ifndef CLASSES_CONFIG_VALUES_TYPED_CONFIG_VALUE_H
#define CLASSES_CONFIG_VALUES_TYPED_CONFIG_VALUE_H

#include <semaphore.h>

#include <atomic>
#include <type_traits>

#include "config/descriptors/param_descriptors.h"
#include "config/values/config_value.h"
#include "config/values/deserializer.h"
#include "config/values/serializer.h"
#include "support/semaphore_helper.h"

// The storage of one value: a plain field read under the owner's lock, or
// for an integer an atomic word that Get may read without it.
template <typename T>
class ValueCell {
 public:
  explicit ValueCell(T v) : held(std::move(v)) {}
  const T& Load() const { return held; }
  void Store(const T& v) { held = v; }

 private:
  T held;
};

template <>
class ValueCell<unsigned int> {
 public:
  explicit ValueCell(unsigned int v) : held(v) {}
  unsigned int Load() const { return held.load(std::memory_order_acquire); }
  void Store(unsigned int v) { held.store(v, std::memory_order_release); }

 private:
  std::atomic<unsigned int> held;
};

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
    return value.Load() == theirs;
  }

  void Serialize(Serializer* serializer) override {
    ConfigValue::Serialize(serializer);
    SemaphoreHelper lock(&_lock);
    const auto& held = value.Load();
    serializer->Write(Derived::kValueFieldName, held);
  }

  void Deserialize(DeSerializer* deserializer) override {
    ConfigValue::Deserialize(deserializer);
    SemaphoreHelper lock(&_lock);
    T read = value.Load();
    deserializer->Read(Derived::kValueFieldName, read);
    value.Store(read);
  }

  // A new object of the same class with this identity and value, class ID
  // of the typed constructor and a clean dirty flag; caller owns it.
  ConfigValue* Clone() override {
    SemaphoreHelper lock(&_lock);
    return new Derived(GetConfigID(), GetParamID(), GetParamType(), value.Load());
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
    if (v == value.Load()) return;
    value.Store(v);
    SetDirty(true);
  }

  // An integer is read without the lock (see above); a string under it.
  void Get(T& v) {
    if constexpr (std::is_same_v<T, unsigned int>) {
      v = value.Load();
    } else {
      SemaphoreHelper lock(&_lock);
      v = value.Load();
    }
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
  ValueCell<T> value;  // written under _lock; see the header for reads
  sem_t _lock;
};

#endif  // CLASSES_CONFIG_VALUES_TYPED_CONFIG_VALUE_H
