// Vectors, presets with their image, and the preset file reader and writer.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <fstream>

#include "config/values/class_factory.h"
#include "config/values/file.h"
#include "config/values/integer_value.h"
#include "config/values/presets_param_vector.h"
#include "config/values/string_value.h"
#include "config/values/vector.h"
#include "test_bytes.h"
#include "test_temp_folder.h"

using zyn::config::values::PresetsParamVector;
using zyn::config::values::Vector;

TEST(PresetsTest, VectorEncodingAndOwnedElements) {
  Vector vector;
  vector.Add(new IntegerValue(eConfigID_Default, 1, eCParam_IntegerValue, 2));
  vector.Add(new StringValue(eConfigID_Default, 3, eCParam_StringValue, "z"));
  std::vector<char> bytes = EncodeFramed(&vector);
  EXPECT_EQ(
      "00 00 00 09 00 00 00 02 "
      "00 00 00 00 00 00 00 00 00 00 00 01 00 00 00 03 00 00 00 02 "
      "00 00 00 01 00 00 00 00 00 00 00 03 00 00 00 0C 7A 00",
      Hex(bytes));

  Vector* read = dynamic_cast<Vector*>(DecodeFramed(bytes));
  ASSERT_NE(nullptr, read);
  ASSERT_EQ(2u, read->Size());
  EXPECT_TRUE(vector.Get(0)->IsEqual(read->Get(0)));
  EXPECT_TRUE(vector.Get(1)->IsEqual(read->Get(1)));
  // The elements are the vector's own, not the registry's scratch objects.
  EXPECT_NE(ClassFactory::Create(eClassID_IntegerValue), read->Get(0));
  delete read;  // frees its elements (checked by the sanitizer build)

  std::vector<char> overcounted = Bytes({0, 0, 0, 9, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0});
  EXPECT_EQ(nullptr, DecodeFramed(overcounted)) << "a count larger than the input";
}

TEST(PresetsTest, ParamVectorWithImage) {
  PresetsParamVector presets;
  presets.SetRegisterID(3);
  presets.SetName("Ab");
  const char image[] = {1, 2, 3};
  presets.SetData(image, 3);
  std::vector<char> bytes = EncodeFields(&presets);
  EXPECT_EQ("00 00 00 03 41 62 00 00 00 00 03 01 02 03", Hex(bytes));

  presets.SetData(nullptr, 0);
  EXPECT_EQ("00 00 00 03 41 62 00 00 00 00 00", Hex(EncodeFields(&presets)));

  presets.SetData(image, 3);
  std::vector<char> framed = EncodeFramed(&presets);
  PresetsParamVector* read = dynamic_cast<PresetsParamVector*>(DecodeFramed(framed));
  ASSERT_NE(nullptr, read);
  unsigned int size = 0;
  char* data = read->GetData(size);
  ASSERT_EQ(3u, size);
  EXPECT_EQ(0, memcmp(image, data, 3));
  EXPECT_EQ("Ab", read->GetName());
  EXPECT_EQ(3u, read->GetRegisterID());
  delete read;
}

TEST(PresetsTest, WriteThenSlurpAndTheirFailures) {
  TempFolder folder;
  std::string path = folder.path + "/preset";
  const char image[] = "settings image";
  ASSERT_TRUE(File::write_file(path, image, sizeof image));
  PresetsParamVector presets;
  ASSERT_TRUE(presets.Slurp(path));
  unsigned int size = 0;
  char* data = presets.GetData(size);
  ASSERT_EQ(sizeof image, size);
  EXPECT_EQ(0, memcmp(image, data, size));

  // Rewriting truncates.
  ASSERT_TRUE(File::write_file(path, "x", 1));
  ASSERT_TRUE(presets.Slurp(path));
  presets.GetData(size);
  EXPECT_EQ(1u, size);

  std::string err = Stderr([&] { EXPECT_FALSE(presets.Slurp("/nonexistent-dir/preset_1.bin")); });
  EXPECT_TRUE(Has(err, "PresetsParamVector::Slurp - open /nonexistent-dir/preset_1.bin failed\n"))
      << err;

  err = Stderr([] { EXPECT_FALSE(File::write_file("/nonexistent-dir/preset_1.bin", "x", 1)); });
  EXPECT_TRUE(Has(err, "File::write_file - open /nonexistent-dir/preset_1.bin failed\n")) << err;
  EXPECT_EQ(0u, err.find("open failed: ")) << err;

  // A symlink or a FIFO planted as the preset file is refused as a failed
  // open: the link's target stays untouched, and nothing blocks.
  std::string target = folder.path + "/target", link = folder.path + "/preset_2.bin";
  std::ofstream(target) << "keep";
  ASSERT_EQ(0, symlink(target.c_str(), link.c_str()));
  std::string fifo = folder.path + "/preset_3.bin";
  ASSERT_EQ(0, mkfifo(fifo.c_str(), 0600));
  for (const std::string& planted : {link, fifo}) {
    err = Stderr([&] { EXPECT_FALSE(File::write_file(planted, "x", 1)) << planted; });
    EXPECT_TRUE(Has(err, "File::write_file - open " + planted + " failed\n")) << err;
    err = Stderr([&] { EXPECT_FALSE(presets.Slurp(planted)) << planted; });
    EXPECT_TRUE(Has(err, "PresetsParamVector::Slurp - open " + planted + " failed"));
  }
  std::string kept;
  std::ifstream(target) >> kept;
  EXPECT_EQ("keep", kept);
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
// A preset too large to allocate still reports success, with no image held.
TEST(PresetsDeathTest, SlurpFailedAllocationReportsSuccess) {
  TempFolder folder;
  std::string path = folder.path + "/huge";
  { std::ofstream create(path); }
  ASSERT_EQ(0, truncate(path.c_str(), 0xF0000000LL));  // sparse
  auto slurpUnderLimit = [&path] {
    rlimit limit;
    limit.rlim_cur = limit.rlim_max = 512u << 20;
    setrlimit(RLIMIT_AS, &limit);
    PresetsParamVector presets;
    bool ok = presets.Slurp(path);
    unsigned int size = 0;
    bool empty = presets.GetData(size) == nullptr;
    _exit(ok && empty && size == 0 ? 0 : 1);
  };
  EXPECT_EXIT(slurpUnderLimit(), testing::ExitedWithCode(0),
              "PresetsParamVector::Slurp - new failed\n");
  unlink(path.c_str());
}
#endif
