// PresetsParamVector is a preset that carries a saved image of the unit's
// settings as opaque bytes: the Presets fields, then the image as a data
// block ("PresetsFile"). The image buffer is owned by the object; it is
// filled from a preset file (Slurp) or from a stream.
//
// Load and Store hand a preset over to the owner of the settings through the
// register parameters: the requester sets the result parameter to 1 (in
// progress) and the register parameter to the preset number, and the owner
// answers in the result parameter with 2 (done) or a failure state (3, 4).
// The image travels in the file "/tmp/zyn/preset_<number>.bin".
//
// Not thread-safe.
#ifndef CLASSES_CONFIG_VALUES_PRESETS_PARAM_VECTOR_H
#define CLASSES_CONFIG_VALUES_PRESETS_PARAM_VECTOR_H

#include <string>
#include <vector>

#include "config/config_types.h"
#include "config/values/presets.h"

class Config;

namespace zyn {
namespace config {
namespace values {

// The register parameters and result states of the preset hand-over.
constexpr unsigned int kRegisterLoadParamID = 0xCF27576A;
constexpr unsigned int kRegisterLoadResultParamID = 0xC2FB5816;
constexpr unsigned int kRegisterStoreParamID = 0x8266D0C6;
constexpr unsigned int kRegisterStoreResultParamID = 0xE2755FEE;
constexpr unsigned int kRegisterInProgress = 1;
constexpr unsigned int kRegisterDone = 2;
constexpr unsigned int kRegisterFailed = 3;
constexpr unsigned int kRegisterEmpty = 4;

class PresetsParamVector : public Presets {
 public:
  static constexpr long kDefaultWaitTimeoutMs = 30000;
  static constexpr long kPollIntervalMs = 100;

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

  // Reads the whole file at `path` into the held image. A symlink is not
  // followed and anything but a regular file is refused as a failed open. A
  // failed allocation still reports success, with no image held.
  bool Slurp(const std::string& path);

  // Polls `paramID` every 100 ms until it holds one of `goodStates` (true),
  // one of `errorStates` (false) or `timeoutMs` pass (false).
  bool WaitForStates(Config* config, unsigned int paramID, std::vector<unsigned int>& goodStates,
                     std::vector<unsigned int>& errorStates, long timeoutMs);
  // Has the owner write preset `preset` to its file and takes the image in.
  // The preset number travels in a configuration-ID argument.
  bool Load(eConfigID_t preset, Config* config);
  // Writes the held image to the preset file and has the owner take it in as
  // preset `preset`; false at once when no image is held.
  bool Store(eConfigID_t preset, Config* config);

  // The file a preset travels in.
  static std::string PresetFileName(unsigned int preset);
  // How long Load and Store wait for the owner; 30000 ms unless a test
  // shortens it.
  void SetWaitTimeout(long ms) { waitTimeoutMs = ms; }

 private:
  char* data;
  unsigned int size;
  long waitTimeoutMs;
};

}  // namespace values
}  // namespace config
}  // namespace zyn

#endif  // CLASSES_CONFIG_VALUES_PRESETS_PARAM_VECTOR_H
