#include "config/values/sector_header.h"

#include "config/values/deserializer.h"
#include "config/values/serializer.h"

SectorHeader::SectorHeader(unsigned int o, unsigned int v, unsigned int l)
    : Serializable(eClassID_SectorHeader), odometer(o), configVersion(v), length(l) {}

SectorHeader* SectorHeader::Create(unsigned int o, unsigned int v, unsigned int l) {
  return new SectorHeader(o, v, l);
}

bool SectorHeader::IsEqual(Serializable* other) {
  if (!Serializable::IsEqual(other)) return false;
  SectorHeader* header = dynamic_cast<SectorHeader*>(other);
  return header != nullptr && header->odometer == odometer &&
         header->configVersion == configVersion && header->length == length;
}

void SectorHeader::Serialize(Serializer* serializer) {
  serializer->Write("Odometer", odometer);
  serializer->Write("ConfigVersion", configVersion);
  serializer->Write("Length", length);
}

void SectorHeader::Deserialize(DeSerializer* deserializer) {
  deserializer->Read("Odometer", odometer);
  deserializer->Read("ConfigVersion", configVersion);
  deserializer->Read("Length", length);
}
