// The built-in class factories, one per serialisable class. Each registers
// itself with ClassFactory from its constructor.
//
// IntegerFactory, StringFactory and CheckpointFactory own one prototype
// object and hand out that same object on every Create; SectorHeaderFactory
// hands out one process-wide SectorHeader. VectorFactory, PresetsFactory and
// PackageHeaderFactory make a new object per Create, owned by the caller.
#ifndef CLASSES_CONFIG_VALUES_FACTORIES_H
#define CLASSES_CONFIG_VALUES_FACTORIES_H

#include "config/values/checkpoint.h"
#include "config/values/class_factory.h"
#include "config/values/integer_value.h"
#include "config/values/presets.h"
#include "config/values/string_value.h"

// A factory whose Create returns the one prototype object it owns.
template <typename T, eClassID_t ID>
class PrototypeFactory : public ClassFactory {
 public:
  PrototypeFactory() : ClassFactory(ID), prototype(new T()) { Register(this); }
  ~PrototypeFactory() override { delete prototype; }
  Serializable* Create() override { return prototype; }
  bool CreatesShared() override { return true; }

 private:
  T* prototype;
};

class IntegerFactory : public PrototypeFactory<IntegerValue, eClassID_IntegerValue> {};
class StringFactory : public PrototypeFactory<StringValue, eClassID_StringValue> {};
class CheckpointFactory : public PrototypeFactory<Checkpoint, eClassID_Checkpoint> {};

class SectorHeaderFactory : public ClassFactory {
 public:
  SectorHeaderFactory();
  // The process-wide header, created on the first call with class ID 17.
  Serializable* Create() override;
  bool CreatesShared() override { return true; }
};

namespace zyn {
namespace config {
namespace values {

class VectorFactory : public ClassFactory {
 public:
  VectorFactory();
  // A new, empty Vector owned by the caller.
  Serializable* Create() override;
};

class PresetsFactory : public ClassFactory {
 public:
  explicit PresetsFactory(ePresetsPolicy policy);
  // A new PresetsParamVector for policy 1; null, with a message, otherwise.
  Serializable* Create() override;

 private:
  ePresetsPolicy policy;
};

class PackageHeaderFactory : public ClassFactory {
 public:
  PackageHeaderFactory();
  // A new PackageHeader in its initial state, owned by the caller.
  Serializable* Create() override;
};

}  // namespace values
}  // namespace config
}  // namespace zyn

#endif  // CLASSES_CONFIG_VALUES_FACTORIES_H
