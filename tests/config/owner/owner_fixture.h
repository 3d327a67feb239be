// Shared by the owner's tests: a store of the unit's whole catalogue, a
// private folder, and two parameters picked by what they are (kept preset
// settings without dependants: a plain range and an enumeration), so the
// tests follow the catalogue instead of naming rows.
#ifndef TESTS_CONFIGD_OWNER_FIXTURE_H
#define TESTS_CONFIGD_OWNER_FIXTURE_H

#include <gtest/gtest.h>

#include <cerrno>
#include <functional>
#include <utility>

#include "config/descriptors/enum_descriptor.h"
#include "config/descriptors/owner_params.h"
#include "config/descriptors/param_descriptors.h"
#include "config/manager/config_manager.h"
#include "config/owner/file_system.h"
#include "test_stderr.h"
#include "test_temp_folder.h"

namespace owner_test {

constexpr unsigned int kFrontPanelLock = 0x4D575A8E;
constexpr unsigned int kSystemName = 0x663F2B65;

// Forwards to the system until told to fail: writes stop after `writeBudget`
// bytes (a torn write), or every fsync fails; `duringWrite`, when set, runs
// once inside the next write (a change arriving while a write is under way).
class FaultyFiles : public FileSystem {
 public:
  ssize_t Write(int fd, const char* data, size_t size) override {
    if (duringWrite) std::exchange(duringWrite, nullptr)();
    if (writeBudget < 0) return FileSystem::Write(fd, data, size);
    size_t n = std::min(size, static_cast<size_t>(writeBudget));
    writeBudget -= static_cast<long>(n);
    errno = ENOSPC;
    return n == 0 ? -1 : FileSystem::Write(fd, data, n);
  }
  int Fsync(int fd) override {
    errno = EIO;
    return failFsync ? -1 : FileSystem::Fsync(fd);
  }
  long writeBudget = -1;
  bool failFsync = false;
  std::function<void()> duringWrite;
};

class OwnerTest : public testing::Test {
 protected:
  void SetUp() override {
    AddOwnerDescriptors();
    Stderr([this] { store.Init(); });
    for (unsigned int id : GetParamIDs()) {
      ParamDescriptor* d = GetDescriptor(id);
      auto* number = dynamic_cast<IntegerDescriptor*>(d);
      auto* list = dynamic_cast<EnumDescriptor*>(d);
      if (d->GetPersistenceType() != ePersist || d->GetRegisterType() != eRegister_Include ||
          !d->GetDependentParamIDs().empty() || !d->GetClassNames().empty() || !number)
        continue;
      if (list && choice == 0 && list->GetEnumValueDescriptors().size() >= 2) choice = id;
      if (!list && range == 0 && number->GetMinValue() + 10 < number->GetMaxValue()) range = id;
    }
    ASSERT_TRUE(range != 0 && choice != 0);
  }
  IntegerDescriptor* Range() { return dynamic_cast<IntegerDescriptor*>(GetDescriptor(range)); }

  ConfigManager store{eConfigID_Default};
  unsigned int range = 0;
  unsigned int choice = 0;
  TempFolder folder;
};

}  // namespace owner_test

#endif  // TESTS_CONFIGD_OWNER_FIXTURE_H
