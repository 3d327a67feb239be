// The sector codec and the two-slot sector file, driven through injected
// write and fsync faults.
#include <fstream>

#include "config/owner/file_system.h"
#include "config/owner/sector_codec.h"
#include "config/owner/sector_file.h"
#include "owner_fixture.h"

using owner_test::FaultyFiles;

namespace {

constexpr unsigned int kVersion = SectorCodec::kSettingsVersion;

std::string Load(const std::string& folder, SectorFile::LoadResult expect,
                 std::string* err = nullptr) {
  SectorFile file(FileSystem::Default(), folder, "settings", kVersion);
  std::string data;
  std::string printed = Stderr([&] { EXPECT_EQ(expect, file.Load(data)); });
  if (err != nullptr) *err = printed;
  return data;
}

}  // namespace

TEST(SectorCodecTest, RoundTripLayoutAndDamageRefused) {
  EXPECT_EQ(0xCBF43926u, SectorCodec::Crc32("123456789", 9));
  std::string sector = SectorCodec::Encode(7, kVersion, "abc");
  ASSERT_EQ(19u, sector.size());
  EXPECT_EQ(std::string("\0\0\0\7\x53\x45\0\1\0\0\0\3abc", 15), sector.substr(0, 15));
  unsigned int odometer = 0;
  std::string data, problem;
  ASSERT_TRUE(SectorCodec::Decode(sector, kVersion, odometer, data, problem)) << problem;
  EXPECT_TRUE(odometer == 7 && data == "abc");
  EXPECT_FALSE(SectorCodec::Decode(sector, SectorCodec::kPresetVersion, odometer, data, problem));
  EXPECT_EQ("foreign config version 0x53450001", problem);

  // Every truncation and every flipped bit is refused.
  sector = SectorCodec::Encode(3, kVersion, std::string("settings\0data", 13));
  for (size_t size = 0; size < sector.size(); ++size)
    EXPECT_FALSE(SectorCodec::Decode(sector.substr(0, size), kVersion, odometer, data, problem))
        << "truncated to " << size;
  for (size_t bit = 0; bit < sector.size() * 8; ++bit) {
    std::string flipped = sector;
    flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ (1 << (bit % 8)));
    EXPECT_FALSE(SectorCodec::Decode(flipped, kVersion, odometer, data, problem)) << "bit " << bit;
  }
}

TEST(SectorCodecTest, OdometerWraps) {
  EXPECT_TRUE(SectorCodec::IsNewer(1, 0));
  EXPECT_TRUE(SectorCodec::IsNewer(0, 0xFFFFFFFF));
  EXPECT_TRUE(SectorCodec::IsNewer(5, 0xFFFFFFF0));
  EXPECT_FALSE(SectorCodec::IsNewer(0xFFFFFFFF, 0));
  EXPECT_FALSE(SectorCodec::IsNewer(4, 4));

  // Across the wrap the slot with odometer 0 holds the newest data.
  TempFolder folder;
  std::ofstream(folder.path + "/settings.a") << SectorCodec::Encode(0xFFFFFFFF, kVersion, "old");
  std::ofstream(folder.path + "/settings.b") << SectorCodec::Encode(0, kVersion, "new");
  EXPECT_EQ("new", Load(folder.path, SectorFile::LoadResult::kLoaded));
}

TEST(SectorFileTest, WritesAlternateAndTheNewestWins) {
  TempFolder folder;
  EXPECT_EQ("", Load(folder.path, SectorFile::LoadResult::kMissing));
  SectorFile file(FileSystem::Default(), folder.path, "settings", kVersion);
  for (const char* data : {"one", "two", "three"}) ASSERT_TRUE(file.Write(data));
  EXPECT_EQ(3u, file.GetOdometer());
  EXPECT_EQ("three", Load(folder.path, SectorFile::LoadResult::kLoaded));
  // Reopened, the next write goes over the older copy (slot b).
  SectorFile reopened(FileSystem::Default(), folder.path, "settings", kVersion);
  std::string data;
  ASSERT_EQ(SectorFile::LoadResult::kLoaded, reopened.Load(data));
  ASSERT_TRUE(reopened.Write("four"));

  // Damage the newest (slot b, odometer 4): the other slot's data is taken.
  std::ofstream(folder.path + "/settings.b", std::ios::app) << "x";
  std::string err;
  EXPECT_EQ("three", Load(folder.path, SectorFile::LoadResult::kLoaded, &err));
  EXPECT_EQ("SectorFile::Load - " + folder.path +
                "/settings.b damaged (length 4 does not match its 21 bytes), ignored\n",
            err);
  std::ofstream(folder.path + "/settings.a") << "garbage";
  Load(folder.path, SectorFile::LoadResult::kNoneValid, &err);
  EXPECT_TRUE(Has(err, "settings.a damaged (truncated at 7 bytes)")) << err;
}

TEST(SectorFileTest, FailedWritesLeaveThePreviousSectorWhole) {
  TempFolder folder;
  FaultyFiles files;
  SectorFile file(&files, folder.path, "settings", kVersion);
  ASSERT_TRUE(file.Write("first"));
  ASSERT_TRUE(file.Write("second"));
  std::string big(1000, 'z');
  for (long budget : {0L, 1L, 12L, 500L, 1015L}) {
    files.writeBudget = budget;
    std::string err = Stderr([&] { EXPECT_FALSE(file.Write(big)) << budget; });
    EXPECT_EQ(budget == 0 ? 1u : 0u,
              Count(err, "SectorFile::Write - write of " + folder.path +
                             "/settings.a failed: No space left on device\n"))
        << "the same failure again is not repeated: " << err;
    EXPECT_EQ("second", Load(folder.path, SectorFile::LoadResult::kLoaded));
  }
  files.writeBudget = -1;
  files.failFsync = true;
  std::string err = Stderr([&] { EXPECT_FALSE(file.Write(big)); });
  EXPECT_TRUE(Has(err, "fsync of " + folder.path + "/settings.a failed"));
  EXPECT_EQ(2u, file.GetOdometer()) << "a failed write is not counted";
  // Once the faults are gone the next write goes to the same slot.
  files.failFsync = false;
  ASSERT_TRUE(file.Write("third"));
  EXPECT_EQ("third", Load(folder.path, SectorFile::LoadResult::kLoaded));
  ASSERT_TRUE(file.Write("fourth"));
  EXPECT_EQ("fourth", Load(folder.path, SectorFile::LoadResult::kLoaded));
}
