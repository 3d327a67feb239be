#include "config/values/presets.h"

#include "config/values/deserializer.h"
#include "config/values/serializer.h"

namespace zyn {
namespace config {
namespace values {

Presets::Presets() : Serializable(eClassID_Presets), registerID(0) {}

void Presets::Serialize(Serializer* serializer) {
  serializer->Write("RegisterID", registerID);
  serializer->Write("Name", name);
}

void Presets::Deserialize(DeSerializer* deserializer) {
  deserializer->Read("RegisterID", registerID);
  deserializer->Read("Name", name);
}

}  // namespace values
}  // namespace config
}  // namespace zyn
