#include "config/values/class_factory.h"

#include <cstdio>

#include "config/values/factories.h"

// Never destroyed, so the factories stay reachable until the process ends.
std::map<eClassID_t, ClassFactory*>& ClassFactory::_factories =
    *new std::map<eClassID_t, ClassFactory*>();

ClassFactory::ClassFactory(eClassID_t id) : classID(id) {}

eClassID_t ClassFactory::GetClassID() { return classID; }

void ClassFactory::Register(ClassFactory* factory) { _factories[factory->GetClassID()] = factory; }

void ClassFactory::InitFactories() {
  if (!_factories.empty()) return;
  // Each factory registers itself from its constructor.
  new IntegerFactory();
  new StringFactory();
  new SectorHeaderFactory();
  new CheckpointFactory();
  new zyn::config::values::VectorFactory();
  new zyn::config::values::PresetsFactory(zyn::config::values::ePresetsPolicy_ParamVector);
  new zyn::config::values::PackageHeaderFactory();
}

Serializable* ClassFactory::Create(eClassID_t id) {
  InitFactories();
  // A miss leaves an entry holding no factory, which a later Register fills.
  ClassFactory* factory = _factories[id];
  if (factory == nullptr) {
    fprintf(stderr, "Unable to find class factory for classID = %d\n", static_cast<int>(id));
    return nullptr;
  }
  Serializable* object = factory->Create();
  if (object != nullptr) object->SetClassID(id);
  return object;
}

void ClassFactory::DestroyFactories() {
  for (auto& entry : _factories) delete entry.second;
  _factories.clear();
}

bool ClassFactory::IsSharedClass(eClassID_t id) {
  auto it = _factories.find(id);
  return it != _factories.end() && it->second != nullptr && it->second->CreatesShared();
}
