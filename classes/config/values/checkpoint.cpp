#include "config/values/checkpoint.h"

#include "config/values/deserializer.h"
#include "config/values/serializer.h"

Checkpoint::Checkpoint() : Checkpoint(eConfigID_Invalid) {}

Checkpoint::Checkpoint(eConfigID_t id)
    : Serializable(eClassID_Checkpoint), configID(id), offset(0) {}

void Checkpoint::Serialize(Serializer* serializer) {
  serializer->Write("offset", offset);
  serializer->Write("configID", static_cast<int>(configID));
}

void Checkpoint::Deserialize(DeSerializer* deserializer) {
  deserializer->Read("offset", offset);
  int id;
  if (deserializer->Read("configID", id)) configID = static_cast<eConfigID_t>(id);
}
