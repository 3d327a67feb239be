// PresetsParamVector is a preset that carries a saved image of the unit's
// settings as opaque bytes: the Presets fields, then the image as a data
// block ("PresetsFile"). The image buffer is owned by the object; it is
// filled from a preset file (Slurp) or from a stream.
//
// Not thread-safe.
#ifndef CLASSES_CONFIG_VALUES_PRESETS_PARAM_VECTOR_H
#define CLASSES_CONFIG_VALUES_PRESETS_PARAM_VECTOR_H

#include <string>

#include "config/values/presets.h"

namespace zyn {
namespace config {
namespace values {

class PresetsParamVector : public Presets {
 public:
  PresetsParamVector();
  ~PresetsParamVector() override;

  void Serialize(Serializer* serializer) override;
  void Deserialize(DeSerializer* deserializer) override;

  // The held image (still owned by this object) and its size; null and 0
  // when there is none.
  char* GetData(unsigned int& size);
  // Replaces the held image with a copy of `size` bytes at `bytes`.
  void SetData(const char* bytes, unsigned int size);
  // Drops the held image.
  void ClearData();

  // Reads the whole file at `path` into the held image. A failed allocation
  // still reports success, with no image held.
  bool Slurp(const std::string& path);

 private:
  char* data;
  unsigned int size;
};

}  // namespace values
}  // namespace config
}  // namespace zyn

#endif  // CLASSES_CONFIG_VALUES_PRESETS_PARAM_VECTOR_H
