// Presets (class ID 8) names a user preset ("register"): its number and its
// name, encoded as "RegisterID" and "Name". PresetsFactory makes the
// concrete preset class selected by its policy.
#ifndef CLASSES_CONFIG_VALUES_PRESETS_H
#define CLASSES_CONFIG_VALUES_PRESETS_H

#include <string>

#include "config/values/serializable.h"

namespace zyn {
namespace config {
namespace values {

enum ePresetsPolicy : int32_t {
  ePresetsPolicy_ParamVector = 1,  // presets carry the whole settings image
};

class Presets : public Serializable {
 public:
  Presets();
  Presets(const Presets&) = delete;
  Presets& operator=(const Presets&) = delete;

  void Serialize(Serializer* serializer) override;
  void Deserialize(DeSerializer* deserializer) override;

  unsigned int GetRegisterID() const { return registerID; }
  void SetRegisterID(unsigned int id) { registerID = id; }
  const std::string& GetName() const { return name; }
  void SetName(const std::string& n) { name = n; }

 private:
  unsigned int registerID;
  std::string name;
};

}  // namespace values
}  // namespace config
}  // namespace zyn

#endif  // CLASSES_CONFIG_VALUES_PRESETS_H
