// ClassFactory turns a class ID met in a stream back into an object of the
// right class, through a registry of per-class factories (_factories). The
// registry fills itself with the built-in factories on the first Create (or
// an explicit InitFactories) and holds them until DestroyFactories.
//
// Ownership of what Create returns is part of the contract: for class IDs 0,
// 1, 6 and 7 it is a shared scratch object that the caller must neither
// delete nor keep (the next Create for the same ID returns the same object);
// for IDs 8, 9 and 14 the caller owns a new object.
//
// The registry has no lock: make one Create (or InitFactories) call before
// starting threads that deserialise.
#ifndef CLASSES_CONFIG_VALUES_CLASS_FACTORY_H
#define CLASSES_CONFIG_VALUES_CLASS_FACTORY_H

#include <map>

#include "config/values/serializable.h"

class ClassFactory {
 public:
  explicit ClassFactory(eClassID_t classID);
  virtual ~ClassFactory() = default;
  ClassFactory(const ClassFactory&) = delete;
  ClassFactory& operator=(const ClassFactory&) = delete;

  virtual eClassID_t GetClassID();
  virtual Serializable* Create() = 0;
  // True when Create hands out one shared object instead of new ones.
  virtual bool CreatesShared() { return false; }

  // Enters `factory` under its class ID; a later registration for the same
  // ID replaces the earlier one (which is not destroyed).
  static void Register(ClassFactory* factory);
  // Creates the built-in factories, unless the registry already holds any.
  static void InitFactories();
  // The object for `id` with its class ID set, or null (with a message) when
  // no factory is registered for it.
  static Serializable* Create(eClassID_t id);
  // Destroys every registered factory in ascending class-ID order and
  // empties the registry.
  static void DestroyFactories();
  // True when Create(id) returns a shared scratch object.
  static bool IsSharedClass(eClassID_t id);

 private:
  eClassID_t classID;
  static std::map<eClassID_t, ClassFactory*>& _factories;
};

#endif  // CLASSES_CONFIG_VALUES_CLASS_FACTORY_H
