#include "config/values/serializer.h"

Serializer::Serializer(eSerializationFormat f) : format(f), bytesWritten(0) {}

void Serializer::Write(ClassFactoryHeader& header) {
  Write("ClassID", static_cast<unsigned int>(header.classID));
}

void Serializer::Wrote(unsigned int n) { bytesWritten += n; }

void Serializer::WriteFramed(Serializable* object) {
  if (object == nullptr) return;
  ClassFactoryHeader header{object->GetClassID()};
  Write(header);
  object->Serialize(this);
}
