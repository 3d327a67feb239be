// PackageHeader (class ID 14) heads a package file: header version, product
// ID, file size and two reserved words, stored as five big-endian words.
#ifndef CLASSES_CONFIG_VALUES_PACKAGE_HEADER_H
#define CLASSES_CONFIG_VALUES_PACKAGE_HEADER_H

#include <string>

#include "config/values/serializable.h"

class PackageHeader : public Serializable {
 public:
  static constexpr unsigned int kPackageHeaderVersion = 0x1001;
  static constexpr unsigned int kNoProduct = 0xFFFFFFFF;

  // Version 0x1001, no product, size 0, reserved words 0.
  PackageHeader();

  void Serialize(Serializer* serializer) override;
  void Deserialize(DeSerializer* deserializer) override;
  std::string ToString() const;

  unsigned int GetPackageHeaderVersion() const { return packageHeaderVersion; }
  void SetPackageHeaderVersion(unsigned int v) { packageHeaderVersion = v; }
  unsigned int GetProductID() const { return productID; }
  void SetProductID(unsigned int v) { productID = v; }
  unsigned int GetFileSize() const { return fileSize; }
  void SetFileSize(unsigned int v) { fileSize = v; }

 private:
  unsigned int packageHeaderVersion;
  unsigned int productID;
  unsigned int fileSize;
  unsigned int unused1;
  unsigned int unused2;
};

#endif  // CLASSES_CONFIG_VALUES_PACKAGE_HEADER_H
