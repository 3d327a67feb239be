#include "config/values/vector.h"

#include <cstdio>

#include "config/values/checkpoint.h"
#include "config/values/class_factory.h"
#include "config/values/config_value.h"
#include "config/values/deserializer.h"
#include "config/values/sector_header.h"
#include "config/values/serializer.h"

namespace zyn {
namespace config {
namespace values {

namespace {

// An object the vector may own: the registry's shared scratch objects are
// overwritten by the next reader, so the vector keeps a copy of them.
Serializable* OwnedCopy(Serializable* object) {
  if (!ClassFactory::IsSharedClass(object->GetClassID())) return object;
  if (ConfigValue* value = dynamic_cast<ConfigValue*>(object)) return value->Clone();
  if (SectorHeader* header = dynamic_cast<SectorHeader*>(object)) return new SectorHeader(*header);
  if (Checkpoint* checkpoint = dynamic_cast<Checkpoint*>(object))
    return new Checkpoint(*checkpoint);
  fprintf(stderr, "Vector::Deserialize - cannot copy shared object of classID = %d\n",
          static_cast<int>(object->GetClassID()));
  return nullptr;
}

}  // namespace

Vector::Vector() : Serializable(eClassID_Vector) {}

Vector::~Vector() { Clear(); }

void Vector::Serialize(Serializer* serializer) {
  serializer->Write("Size", static_cast<unsigned int>(elements.size()));
  for (Serializable* element : elements) serializer->Write("Serializable", element);
}

void Vector::Deserialize(DeSerializer* deserializer) {
  Clear();
  unsigned int count = 0;
  if (!deserializer->Read("Size", count)) return;
  // Every element takes at least its class ID, so a count larger than the
  // input ends at the first failed read instead of allocating up front.
  for (unsigned int i = 0; i < count; ++i) {
    Serializable* element = nullptr;
    if (!deserializer->Read("Serializable", element) || element == nullptr) return;
    Add(OwnedCopy(element));
  }
}

void Vector::Add(Serializable* element) {
  if (element != nullptr) elements.push_back(element);
}

Serializable* Vector::Get(size_t index) const {
  return index < elements.size() ? elements[index] : nullptr;
}

void Vector::Clear() {
  for (Serializable* element : elements) delete element;
  elements.clear();
}

}  // namespace values
}  // namespace config
}  // namespace zyn
