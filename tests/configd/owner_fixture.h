// Shared by the owner's tests: a private temporary folder, a store of the
// unit's whole catalogue, and parameters picked from the catalogue by what
// they are (so the tests follow the catalogue instead of naming rows).
#ifndef TESTS_CONFIGD_OWNER_FIXTURE_H
#define TESTS_CONFIGD_OWNER_FIXTURE_H

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "config/descriptors/enum_descriptor.h"
#include "config/descriptors/param_descriptors.h"
#include "config/manager/config_manager.h"
#include "test_stderr.h"
#include "test_temp_folder.h"

namespace owner_test {

// The first parameter of the catalogue that `fits` accepts, or 0.
inline unsigned int FindParam(const std::function<bool(ParamDescriptor*)>& fits) {
  for (unsigned int id : GetParamIDs())
    if (fits(GetDescriptor(id))) return id;
  return 0;
}

// A kept setting that belongs in presets and has no dependants.
inline bool PresetSetting(ParamDescriptor* d) {
  return d->GetPersistenceType() == ePersist && d->GetRegisterType() == eRegister_Include &&
         d->GetDependentParamIDs().empty() && d->GetClassNames().empty();
}
inline bool PlainRange(ParamDescriptor* d) {
  auto* range = dynamic_cast<IntegerDescriptor*>(d);
  return PresetSetting(d) && range && !dynamic_cast<EnumDescriptor*>(d) &&
         range->GetMinValue() + 10 < range->GetMaxValue();
}
inline bool PlainEnum(ParamDescriptor* d) {
  auto* list = dynamic_cast<EnumDescriptor*>(d);
  return PresetSetting(d) && list && list->GetEnumValueDescriptors().size() >= 2;
}

// A store 0 of the whole catalogue, as configd opens it.
class OwnerTest : public testing::Test {
 protected:
  void SetUp() override {
    CreateDescriptors();
    Stderr([this] { store.Init(); });
    range = FindParam(PlainRange);
    choice = FindParam(PlainEnum);
    ASSERT_NE(0u, range);
    ASSERT_NE(0u, choice);
  }
  IntegerDescriptor* Range() { return dynamic_cast<IntegerDescriptor*>(GetDescriptor(range)); }

  ConfigManager store{eConfigID_Default};
  unsigned int range = 0;   // a plain integer preset setting
  unsigned int choice = 0;  // an enumerated preset setting
  TempFolder folder;
};

}  // namespace owner_test

#endif  // TESTS_CONFIGD_OWNER_FIXTURE_H
