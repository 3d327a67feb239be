// Restoring saved settings through the store's checks, the flush thread's
// coalesced, change-only writes, its schedule on a test clock, and failed
// writes kept, reported once and recovered.
#include "config/owner/persistence_worker.h"

#include <atomic>
#include <chrono>
#include <fstream>
#include <thread>

#include "config/descriptors/owner_params.h"
#include "config/owner/file_system.h"
#include "config/owner/sector_codec.h"
#include "config/owner/sector_file.h"
#include "config/owner/string_length_precondition.h"
#include "config/owner/value_image.h"
#include "config/values/integer_value.h"
#include "config/values/string_value.h"
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
  Stderr(
      [&] { EXPECT_FALSE(store.Set(kSystemName, std::string())) << "shorter than its minimum"; });
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
    EXPECT_TRUE(Has(err, line)) << line << "\nin:\n" << err;

  worker.Start();
  worker.Stop();
  EXPECT_EQ(2u, file.GetOdometer()) << "the cleaned state is written at once";
  // So it is when the only thing to clean is an unknown entry.
  Vector unknown;
  unknown.Add(new IntegerValue(eConfigID_Default, 0x0BADF00D, eCParam_IntegerValue, 1));
  ASSERT_TRUE(file.Write(ValueImage::Encode(unknown)));
  PersistenceWorker again(&store, &file, 100);
  Stderr([&] { EXPECT_TRUE(again.Restore()); });
  again.Start();
  again.Stop();
  EXPECT_EQ(4u, file.GetOdometer()) << "an unknown entry is written away";
}

TEST_F(PersistenceWorkerTest, WritesBehindCoalescedAndOnlyOnChange) {
  PersistenceWorker worker(&store, &file, 20);
  Stderr([&] { worker.Restore(); });
  worker.Start();
  unsigned int low = Range()->GetMinValue();
  // Written within the flush interval, without a stop: true once the state
  // on disk differs from `before`.
  auto writtenOver = [&](const std::string& before) {
    auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (OnDisk() == before && std::chrono::steady_clock::now() < deadline)
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    return OnDisk() != before;
  };
  store.Set(range, low + 1);
  ASSERT_TRUE(writtenOver(""));
  // The worker now sleeps until a change wakes it.
  store.Set(range, low + 2);
  ASSERT_TRUE(writtenOver(OnDisk())) << "a change did not wake the idle worker";
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

TEST_F(PersistenceWorkerTest,
       FailingWritesAreReportedOnceKeptAndRecoveredAndUnusableStateIsFactory) {
  FaultyFiles files;
  SectorFile faulty(&files, folder.path, "settings", SectorCodec::kSettingsVersion);
  PersistenceWorker worker(&store, &faulty, 20);
  unsigned int low = Range()->GetMinValue();
  files.failFsync = true;
  std::string err = Stderr([&] {
    for (unsigned int i = 1; i <= 5; ++i) {
      store.Set(range, low + i);
      EXPECT_FALSE(worker.Flush());
    }
    worker.Start();
    worker.Stop();
  });
  const std::string failing = "persistence failing: " + folder.path + ": Input/output error";
  std::string health;
  store.Get(kOwnerHealthParamID, health);
  EXPECT_EQ(failing, health);
  EXPECT_EQ(1u, Count(err, "PersistenceWorker - " + failing + "\n")) << err;
  EXPECT_EQ(1u, Count(err, "SectorFile::Write - ")) << err;
  EXPECT_FALSE(worker.AllWritten()) << "the last write at Stop failed";
  EXPECT_NE(0, worker.DueMs()) << "the changes stay pending";

  files.failFsync = false;
  err = Stderr([&] { EXPECT_TRUE(worker.Flush()); });
  EXPECT_EQ("PersistenceWorker - persistence recovered: " + folder.path + " written\n", err);
  store.Get(kOwnerHealthParamID, health);
  EXPECT_EQ(kOwnerHealthOk, health);
  EXPECT_EQ(1u, faulty.GetOdometer()) << "written once, with the current values";
  store.Set(range, low);
  Stderr([&] { PersistenceWorker(&store, &file, 20).Restore(); });
  EXPECT_EQ(low + 5, store.Get(range));

  // Unusable state starts at the factory values.
  std::ofstream(folder.path + "/settings.a") << SectorCodec::Encode(1, 0x1234, "x");
  std::ofstream(folder.path + "/settings.b") << "half a sect";
  err = Stderr([&] { EXPECT_FALSE(PersistenceWorker(&store, &file, 100).Restore()); });
  EXPECT_TRUE(Has(err, "foreign config version 0x00001234")) << err;
  EXPECT_TRUE(Has(err, "no valid saved settings, starting at factory values"));
}

namespace {

std::atomic<int64_t> fakeNow{1000};

}  // namespace

TEST_F(PersistenceWorkerTest, TheIntervalStartsAtTheFirstChangeAndRetriesDoNotWaitLong) {
  FaultyFiles files;
  SectorFile faulty(&files, folder.path, "settings", SectorCodec::kSettingsVersion);
  PersistenceWorker worker(&store, &faulty, 100);
  worker.SetClock([] { return fakeNow.load(); });
  store.AddConfigEventListener(&worker);  // the flush thread is the test
  unsigned int low = Range()->GetMinValue();
  store.Set(range, low + 1);
  fakeNow = 1050;
  store.Set(range, low + 2);
  EXPECT_EQ(1100, worker.DueMs()) << "due one interval after the first change";

  // A change during the write is due one interval after it came, not after
  // the write ended.
  files.duringWrite = [&] {
    fakeNow = 1150;
    store.Set(range, low + 3);
    fakeNow = 1190;
  };
  fakeNow = 1100;
  EXPECT_TRUE(worker.Flush());
  EXPECT_EQ(1250, worker.DueMs());

  // A first failure is retried one interval later (a value accepted after
  // it waits no longer than its own interval); one that persists, a second.
  files.failFsync = true;
  fakeNow = 1250;
  Stderr([&] { EXPECT_FALSE(worker.Flush()); });
  EXPECT_EQ(1350, worker.DueMs());
  fakeNow = 1300;
  store.Set(range, low + 4);
  EXPECT_EQ(1350, worker.DueMs());
  fakeNow = 1350;
  Stderr([&] { EXPECT_FALSE(worker.Flush()); });
  EXPECT_EQ(2350, worker.DueMs());
  files.failFsync = false;
  fakeNow = 2350;
  Stderr([&] { EXPECT_TRUE(worker.Flush()); });
  EXPECT_EQ(0, worker.DueMs());
  EXPECT_EQ(low + 4, store.Get(range));
  EXPECT_EQ(2u, faulty.GetOdometer());
  store.RemoveConfigEventListener(&worker);
}
