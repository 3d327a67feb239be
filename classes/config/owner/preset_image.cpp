#include "config/owner/preset_image.h"

#include <cstdio>

#include "config/owner/value_image.h"
#include "config/values/memory_deserializer.h"
#include "config/values/memory_serializer.h"
#include "config/values/package_header.h"
#include "support/product_id.h"

namespace {

constexpr eSerializationFormat kFormat = eSerializationFormat_Binary;

// Product numbers of the family, written into every image.
struct ProductNumber {
  bool (CProductID::*is)() const;
  unsigned int number;
};
constexpr unsigned int kKR9Number = 0x4B520009;
constexpr ProductNumber kProductNumbers[] = {
    {&CProductID::isKR21, 0x4B520021},
    {&CProductID::isKR2, 0x4B520002},
    {&CProductID::isTundra, 0x54554E44},
};

std::string Hex(unsigned int v) {
  char text[16];
  snprintf(text, sizeof text, "0x%08X", v);
  return text;
}

}  // namespace

unsigned int PresetImage::UnitProduct() {
  CProductID identity;
  if (identity.getProductID() == nullptr) return kKR9Number;
  for (const ProductNumber& entry : kProductNumbers)
    if ((identity.*entry.is)()) return entry.number;
  return kKR9Number;
}

std::string PresetImage::Encode(unsigned int product, const std::string& values) {
  PackageHeader header;
  header.SetProductID(product);
  header.SetFileSize(static_cast<unsigned int>(kHeaderSize + values.size()));
  std::string image(kHeaderSize, '\0');
  MemorySerializer writer(kFormat, &image[0], &image[0] + kHeaderSize, false);
  header.Serialize(&writer);
  return image + values;
}

bool PresetImage::Decode(const std::string& image, unsigned int product, std::string& values,
                         std::string& problem) {
  values.clear();
  if (image.size() < kHeaderSize) {
    problem = "truncated at " + std::to_string(image.size()) + " bytes";
    return false;
  }
  std::string head = image.substr(0, kHeaderSize);
  MemoryDeSerializer reader(kFormat, &head[0], &head[0] + kHeaderSize, false);
  PackageHeader header;
  header.Deserialize(&reader);
  if (header.GetPackageHeaderVersion() != PackageHeader::kPackageHeaderVersion) {
    problem = "header version " + Hex(header.GetPackageHeaderVersion());
    return false;
  }
  if (header.GetProductID() != product) {
    problem = "made for product " + Hex(header.GetProductID()) + ", not " + Hex(product);
    return false;
  }
  if (header.GetFileSize() != image.size()) {
    problem = "size " + std::to_string(header.GetFileSize()) + " in the header, " +
              std::to_string(image.size()) + " in the file";
    return false;
  }
  std::string body = image.substr(kHeaderSize);
  zyn::config::values::Vector parsed;
  if (!ValueImage::Parse(body, parsed)) {
    problem = "the values do not read back";
    return false;
  }
  values.swap(body);
  return true;
}
