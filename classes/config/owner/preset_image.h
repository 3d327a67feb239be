// PresetImage is the file form of a preset handed between the owner and the
// library: a PackageHeader (version, the unit's product number, the size of
// the whole file) followed by the preset's values as one encoded Vector.
// Decode accepts an image only whole: right version, this unit's product,
// a size equal to the file's, and values that read back exactly.
//
// Stateless; safe from any thread once the product identity has been read
// (the owner reads it before its threads start).
#ifndef CLASSES_CONFIG_OWNER_PRESET_IMAGE_H
#define CLASSES_CONFIG_OWNER_PRESET_IMAGE_H

#include <string>

class PresetImage {
 public:
  static constexpr size_t kHeaderSize = 20;
  // The largest image the owner reads.
  static constexpr size_t kMaxImageBytes = 4u << 20;

  // The product number of this unit: one per model of the family, the
  // first model when the environment names none.
  static unsigned int UnitProduct();

  // The file image of the encoded values `values` for `product`.
  static std::string Encode(unsigned int product, const std::string& values);
  // The encoded values of a whole image made for `product`. False with the
  // reason in `problem`; `values` is then empty.
  static bool Decode(const std::string& image, unsigned int product, std::string& values,
                     std::string& problem);
};

#endif  // CLASSES_CONFIG_OWNER_PRESET_IMAGE_H
