#include "config/values/package_header.h"

#include <cstdio>

#include "config/values/deserializer.h"
#include "config/values/serializer.h"

PackageHeader::PackageHeader()
    : Serializable(eClassID_PackageHeader),
      packageHeaderVersion(kPackageHeaderVersion),
      productID(kNoProduct),
      fileSize(0),
      unused1(0),
      unused2(0) {}

void PackageHeader::Serialize(Serializer* serializer) {
  serializer->Write("PackageHeaderVersion", packageHeaderVersion);
  serializer->Write("productID", productID);
  serializer->Write("FileSize", fileSize);
  serializer->Write("Unused1", unused1);
  serializer->Write("Unused2", unused2);
}

void PackageHeader::Deserialize(DeSerializer* deserializer) {
  deserializer->Read("PackageHeaderVersion", packageHeaderVersion);
  deserializer->Read("productID", productID);
  deserializer->Read("FileSize", fileSize);
  deserializer->Read("Unused1", unused1);
  deserializer->Read("Unused2", unused2);
}

std::string PackageHeader::ToString() const {
  char text[128];
  snprintf(text, sizeof text,
           "class=PackageHeader, _packageHeaderVersion=0x%0X, _productID=%0X, _fileSize=0x%0X.",
           packageHeaderVersion, productID, fileSize);
  return text;
}
