// Stored layouts of the three record classes, alone and framed.
#include <gtest/gtest.h>

#include "config/values/checkpoint.h"
#include "config/values/class_factory.h"
#include "config/values/package_header.h"
#include "config/values/sector_header.h"
#include "test_bytes.h"

TEST(RecordsTest, LayoutsAndEquality) {
  Checkpoint checkpoint;
  EXPECT_EQ("00 00 00 00 FF FF FF FF", Hex(EncodeFields(&checkpoint)));
  checkpoint.SetOffset(0x10);
  checkpoint.SetConfigID(static_cast<eConfigID_t>(2));
  EXPECT_EQ("00 00 00 07 00 00 00 10 00 00 00 02", Hex(EncodeFramed(&checkpoint)))
      << "offset first, then the store";

  PackageHeader package;
  EXPECT_EQ("00 00 10 01 FF FF FF FF 00 00 00 00 00 00 00 00 00 00 00 00",
            Hex(EncodeFields(&package)));
  EXPECT_EQ(24u, EncodeFramed(&package).size());

  SectorHeader sector(1, 2, 3);
  EXPECT_EQ("00 00 00 06 00 00 00 01 00 00 00 02 00 00 00 03", Hex(EncodeFramed(&sector)));

  SectorHeader same(1, 2, 3), other(1, 2, 4);
  EXPECT_TRUE(sector.IsEqual(&same));
  EXPECT_FALSE(sector.IsEqual(&other));
  EXPECT_FALSE(sector.IsEqual(&checkpoint));
  Checkpoint x(static_cast<eConfigID_t>(1)), y(static_cast<eConfigID_t>(2));
  EXPECT_TRUE(x.IsEqual(&y)) << "checkpoints compare by class only";
}

TEST(RecordsTest, ReadBackThroughRegistry) {
  SectorHeader sector(0xA, 0xB, 0xC);
  std::vector<char> bytes = EncodeFramed(&sector);
  Serializable* object = DecodeFramed(bytes);
  ASSERT_NE(nullptr, object);
  EXPECT_TRUE(sector.IsEqual(object));
  EXPECT_EQ(object, ClassFactory::Create(eClassID_SectorHeader)) << "shared scratch header";

  PackageHeader package;
  package.SetProductID(0x1234);
  package.SetFileSize(0x20);
  bytes = EncodeFramed(&package);
  PackageHeader* read = dynamic_cast<PackageHeader*>(DecodeFramed(bytes));
  ASSERT_NE(nullptr, read);
  EXPECT_EQ("class=PackageHeader, _packageHeaderVersion=0x1001, _productID=1234, _fileSize=0x20.",
            read->ToString());
  delete read;
}
