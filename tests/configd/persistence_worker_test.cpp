// Restoring saved settings through the store's checks, and the flush thread's
// coalesced, change-only writes.
#include "configd/persistence_worker.h"

#include <chrono>
#include <fstream>
#include <thread>

#include "config/values/integer_value.h"
#include "config/values/string_value.h"
#include "configd/file_system.h"
#include "configd/sector_codec.h"
#include "configd/sector_file.h"
#include "configd/string_length_precondition.h"
#include "configd/value_image.h"
#include "owner_fixture.h"

using namespace owner_test;
using zyn::config::values::Vector;

namespace {

constexpr unsigned int kRegisterRecall = 0x05CDE9A4;

class PersistenceWorkerTest : public OwnerTest {
 protected:
  std::string OnDisk() {
    SectorFile reader(FileSystem::Default(), folder.path, "settings",
                      SectorCodec::kSettingsVersion);
    std::string data;
    Stderr([&] { reader.Load(data); });
    return data;
  }
  SectorFile file{FileSystem::Default(), folder.path, "settings", SectorCodec::kSettingsVersion};
};

}  // namespace

TEST_F(PersistenceWorkerTest, RestoreClampsDropsAndSkips) {
  Vector saved;
  saved.Add(new IntegerValue(eConfigID_Default, kFrontPanelLock, eCParam_IntegerValue, 1));
  saved.Add(
      new IntegerValue(eConfigID_Default, range, eCParam_IntegerValue, Range()->GetMaxValue() + 1));
  saved.Add(new IntegerValue(eConfigID_Default, choice, eCParam_IntegerValue, 0xBAD));
  saved.Add(
      new StringValue(eConfigID_Default, kSystemName, eCParam_StringValue, std::string(3000, 'n')));
  saved.Add(new IntegerValue(eConfigID_Default, 0x0BADF00D, eCParam_IntegerValue, 1));
  saved.Add(new IntegerValue(eConfigID_Default, kRegisterRecall, eCParam_IntegerValue, 3));
  ASSERT_TRUE(file.Write(ValueImage::Encode(saved)));

  store.AddUpdatePrecondition(new StringLengthPrecondition());
  unsigned int choiceBefore = store.Get(choice);
  unsigned int recallBefore = store.Get(kRegisterRecall);
  PersistenceWorker worker(&store, &file, 100);
  std::string err = Stderr([&] { EXPECT_TRUE(worker.Restore()); });
  EXPECT_EQ(1u, store.Get(kFrontPanelLock));
  EXPECT_EQ(Range()->GetMaxValue(), store.Get(range));
  EXPECT_EQ(choiceBefore, store.Get(choice));
  std::string name;
  store.Get(kSystemName, name);
  EXPECT_EQ("zyn-kr-9", name);
  EXPECT_EQ(recallBefore, store.Get(kRegisterRecall)) << "a value not kept is not restored";
  const auto& counts = worker.GetRestoreCounts();
  EXPECT_EQ(2u, counts.restored);
  EXPECT_EQ(1u, counts.clamped);
  EXPECT_EQ(2u, counts.dropped);
  EXPECT_EQ(2u, counts.unknown);
  const std::string rangeName = GetDescriptor(range)->GetParamIDName();
  for (const std::string& line :
       {rangeName + " " + std::to_string(Range()->GetMaxValue() + 1) + " clamped to ",
        GetDescriptor(choice)->GetParamIDName() + " dropped: 2989 is not in its list",
        std::string("eParamID_SystemName dropped: 3000 characters, outside 1 to 20"),
        std::string("2 settings restored (odometer 1), 1 clamped, 2 dropped, 2 unknown skipped")})
    EXPECT_NE(std::string::npos, err.find(line)) << line << "\nin:\n" << err;

  worker.Start();
  worker.Stop();
  EXPECT_EQ(2u, file.GetOdometer()) << "the cleaned state is written at once";
}

TEST_F(PersistenceWorkerTest, MissingOrUnusableStateStartsAtFactoryValues) {
  PersistenceWorker worker(&store, &file, 100);
  std::ofstream(folder.path + "/settings.a") << SectorCodec::Encode(1, 0x1234, "x");
  std::ofstream(folder.path + "/settings.b") << "half a sect";
  std::string err = Stderr([&] { EXPECT_FALSE(worker.Restore()); });
  EXPECT_NE(std::string::npos, err.find("foreign config version 0x00001234")) << err;
  EXPECT_NE(std::string::npos, err.find("no valid saved settings, starting at factory values"));
}

TEST_F(PersistenceWorkerTest, WritesBehindCoalescedAndOnlyOnChange) {
  PersistenceWorker worker(&store, &file, 20);
  Stderr([&] { worker.Restore(); });
  worker.Start();
  unsigned int low = Range()->GetMinValue();
  store.Set(range, low + 1);
  // Written within the flush interval, without a stop.
  auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (OnDisk().empty() && std::chrono::steady_clock::now() < deadline)
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  ASSERT_FALSE(OnDisk().empty());
  for (unsigned int i = 0; i < 1000; ++i) store.Set(range, low + i % 7);
  store.Set(range, low + 5);
  worker.Stop();
  unsigned int writes = file.GetOdometer();
  EXPECT_LE(writes, 30u) << "1000 changes coalesced";

  // Unchanged or volatile values write nothing.
  worker.Start();
  store.Set(range, low + 5);
  store.Set(kRegisterRecall, 2);
  worker.Stop();
  EXPECT_EQ(writes, file.GetOdometer());
  PersistenceWorker restarted(&store, &file, 20);
  store.Set(range, low);
  Stderr([&] { restarted.Restore(); });
  EXPECT_EQ(low + 5, store.Get(range));
}
