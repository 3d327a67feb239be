// The owner's preset image reader: PresetImage::Decode of the input (after a
// flags byte) for this unit's product, then each value read back checked
// against its parameter as a register load does. Flag bit 0 repairs the
// header's product and file size, so that the values behind it are reached.
#include <string>

#include "config/owner/preset_image.h"
#include "config/owner/value_image.h"
#include "config/values/big_endian.h"
#include "config/values/config_value.h"
#include "config/values/vector.h"
#include "fuzz_common.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz::Initialize(true);
  PresetImage::UnitProduct();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  std::string image(reinterpret_cast<const char*>(data) + 1, size - 1);
  unsigned int product = PresetImage::UnitProduct();
  if ((data[0] & 1) && image.size() >= PresetImage::kHeaderSize) {
    std::string valid = PresetImage::Encode(product, image.substr(PresetImage::kHeaderSize));
    image.replace(0, PresetImage::kHeaderSize, valid, 0, PresetImage::kHeaderSize);
  }
  std::string values;
  std::string problem;
  if (!PresetImage::Decode(image, product, values, problem)) return 0;
  zyn::config::values::Vector parsed;
  if (!ValueImage::Parse(values, parsed)) abort();  // Decode accepted what does not read back
  for (size_t i = 0; i < parsed.Size(); ++i) {
    std::string why;
    ValueImage::Check(static_cast<ConfigValue*>(parsed.Get(i)), why);
  }
  return 0;
}
