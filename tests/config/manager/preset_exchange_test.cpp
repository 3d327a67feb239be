// Loading and storing a preset through a real store, with a second thread
// playing the owner of the settings.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cstring>
#include <fstream>
#include <thread>

#include "config/manager/config_manager.h"
#include "config/values/file.h"
#include "config/values/presets_param_vector.h"
#include "test_catalogue.h"
#include "test_stderr.h"

using namespace zyn::config::values;

namespace {

void RegisterPresetParameters() {
  static bool done = false;
  if (done) return;
  done = true;
  test_catalogue::Integer(kRegisterLoadParamID, "eParamID_RegisterLoad", 0, 0xFFFF, 0);
  test_catalogue::Integer(kRegisterLoadResultParamID, "eParamID_RegisterLoadResult", 0, 4, 0);
  test_catalogue::Integer(kRegisterStoreParamID, "eParamID_RegisterStore", 0, 0xFFFF, 0);
  test_catalogue::Integer(kRegisterStoreResultParamID, "eParamID_RegisterStoreResult", 0, 4, 0);
  IndexDescriptorNames();
}

bool Exists(const std::string& path) { return access(path.c_str(), F_OK) == 0; }

// The owner's side: waits for the requester's "in progress", acts on the
// preset file, and answers with `result`.
class Owner {
 public:
  enum Action { kWriteFile, kReadFile, kNothing };

  Owner(ConfigManager& store, unsigned int resultParam, unsigned int registerParam, Action action,
        unsigned int result)
      : thread([=, &store] {
          // The requester marks the result "in progress" before it names the
          // preset, so both must be seen before the preset number is read.
          while (!stop &&
                 (store.Get(resultParam) != kRegisterInProgress || store.Get(registerParam) == 0))
            usleep(1000);
          if (stop) return;
          std::string path = PresetsParamVector::PresetFileName(store.Get(registerParam));
          if (action == kWriteFile) File::write_file(path, "image!", 6);
          if (action == kReadFile) {
            std::ifstream in(path);
            std::getline(in, seen);
          }
          if (result != kRegisterInProgress) store.Set(resultParam, result);
        }) {}
  ~Owner() {
    stop = true;
    Join();
  }
  // Waits for the owner to finish; its findings are readable afterwards.
  void Join() {
    if (thread.joinable()) thread.join();
  }

  std::atomic<bool> stop{false};
  std::string seen;
  std::thread thread;
};

class PresetExchangeTest : public testing::Test {
 protected:
  void SetUp() override {
    test_catalogue::Register();
    RegisterPresetParameters();
    Stderr([this] { store.Init(); });
    mkdir("/tmp/zyn", 0777);
    preset = static_cast<eConfigID_t>(50000 + getpid() % 10000);
    path = PresetsParamVector::PresetFileName(preset);
    presets.SetWaitTimeout(5000);
  }
  void TearDown() override { unlink(path.c_str()); }

  ConfigManager store{eConfigID_Default};
  PresetsParamVector presets;
  eConfigID_t preset;
  std::string path;
};

}  // namespace

TEST_F(PresetExchangeTest, LoadTakesTheOwnersFileAndFailsForAnEmptyOrUnansweredPreset) {
  bool loaded;
  std::string err;
  {
    Owner owner(store, kRegisterLoadResultParamID, kRegisterLoadParamID, Owner::kWriteFile,
                kRegisterDone);
    err = Stderr([&] { loaded = presets.Load(preset, &store); });
  }
  EXPECT_TRUE(loaded) << err;
  unsigned int size = 0;
  char* data = presets.GetData(size);
  ASSERT_EQ(6u, size);
  EXPECT_EQ(0, memcmp("image!", data, 6));
  EXPECT_FALSE(Exists(path)) << "the file is removed after a load";
  EXPECT_EQ(static_cast<unsigned int>(preset), store.Get(kRegisterLoadParamID));
  EXPECT_TRUE(Has(err, "normal return state = 2\n")) << err;
  EXPECT_TRUE(Has(err, "PresetsParamVector::Load - slurping " + path)) << err;

  presets.SetData("old", 3);
  {
    Owner owner(store, kRegisterLoadResultParamID, kRegisterLoadParamID, Owner::kNothing,
                kRegisterEmpty);
    err = Stderr([&] { EXPECT_FALSE(presets.Load(preset, &store)); });
  }
  // The store's ID (0) is printed, not the preset number.
  EXPECT_TRUE(Has(err,
                  "detected an error state while waiting for preset 0\n"
                  "PresetsParamVector::Load - error/empty/timeout waiting for load\n"))
      << err;
  EXPECT_FALSE(presets.Load(preset, nullptr));

  presets.SetWaitTimeout(300);  // an owner that never answers
  {
    Owner owner(store, kRegisterLoadResultParamID, kRegisterLoadParamID, Owner::kNothing,
                kRegisterInProgress);
    err = Stderr([&] { EXPECT_FALSE(presets.Load(preset, &store)); });
  }
  EXPECT_TRUE(Has(err,
                  "PresetsParamVector::WaitForStates - detected an error while waiting for "
                  "preset 0\n"))
      << err;
}

TEST_F(PresetExchangeTest, StoreHandsTheImageOver) {
  std::string err = Stderr([&] { EXPECT_FALSE(presets.Store(preset, &store)); });
  EXPECT_EQ("", err) << "no image: nothing happens";
  EXPECT_FALSE(Exists(path));
  EXPECT_EQ(0u, store.Get(kRegisterStoreResultParamID));

  presets.SetData("stored image", 12);
  bool stored;
  {
    Owner owner(store, kRegisterStoreResultParamID, kRegisterStoreParamID, Owner::kReadFile,
                kRegisterDone);
    Stderr([&] { stored = presets.Store(preset, &store); });
    owner.Join();
    EXPECT_EQ("stored image", owner.seen);
  }
  EXPECT_TRUE(stored);
  EXPECT_FALSE(Exists(path)) << "the file is removed after a store";

  {
    Owner owner(store, kRegisterStoreResultParamID, kRegisterStoreParamID, Owner::kNothing,
                kRegisterFailed);
    err = Stderr([&] { EXPECT_FALSE(presets.Store(preset, &store)); });
  }
  EXPECT_TRUE(Has(err, "PresetsParamVector::Store - WaitForState failed\n")) << err;
  EXPECT_FALSE(Exists(path)) << "removed after a failed store too";

  err = Stderr([&] { EXPECT_FALSE(presets.Store(eConfigID_Default, &store)); });
  EXPECT_EQ("PresetsParamVector::Store - preset 0 is the factory preset, not stored\n", err);
  EXPECT_EQ(static_cast<unsigned int>(preset), store.Get(kRegisterStoreParamID))
      << "no preset was named to the owner";
}
