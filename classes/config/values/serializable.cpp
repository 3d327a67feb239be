#include "config/values/serializable.h"

Serializable::Serializable() : classID(eClassID_Unset), dirty(false) {}

Serializable::Serializable(eClassID_t id) : classID(id), dirty(false) {}

eClassID_t Serializable::GetClassID() { return classID; }

void Serializable::SetClassID(eClassID_t id) { classID = id; }

bool Serializable::IsEqual(Serializable* other) {
  return other != nullptr && other->GetClassID() == classID;
}

void Serializable::Serialize(Serializer*) {}

void Serializable::Deserialize(DeSerializer*) {}

bool Serializable::IsDirty() { return dirty; }

void Serializable::SetDirty(bool d) { dirty = d; }
