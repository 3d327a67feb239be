// The system catalogue (its IDs and names are pinned by the generated
// header's test): its consistency, the rows the mapper and the unit's
// identity rely on, the menus it makes, and a store built from it.
#include <gtest/gtest.h>

#include <algorithm>
#include <list>
#include <string>
#include <vector>

#include "config/descriptors/enum_descriptor.h"
#include "config/descriptors/param_descriptors.h"
#include "config/descriptors/param_descriptors_system.h"
#include "config/descriptors/param_groups.h"
#include "config/descriptors/string_descriptor.h"
#include "config/values/presets_param_vector.h"
#include "support/product_id.h"
#include "support/serial_number.h"
#include "test_stderr.h"
#include "unit_catalogue.h"

namespace {

using unit_catalogue::CatalogueIDs;
using unit_catalogue::Find;
using unit_catalogue::IntAttributeOf;

std::string DefaultTextOf(ParamDescriptor* d) {
  StringDescriptor* s = dynamic_cast<StringDescriptor*>(d);
  return s != nullptr ? s->GetFactoryDefault() : "";
}

class SystemCatalogueTest : public testing::Test {
 protected:
  static void SetUpTestSuite() { CatalogueIDs(); }
};

// A unit whose MAC address is the eleventh of the manufacturing range.
SerialNumber_KR9::eMacRead_t FakeUnit(const std::string&, unsigned char mac[6]) {
  const unsigned char bytes[6] = {0x0A, 0x5E, 0x9C, 0x36, 0x00, 0x0A};
  std::copy(bytes, bytes + 6, mac);
  return SerialNumber_KR9::eMacRead_OK;
}

// The system parameters of the given menu groups, as GetParamGroup lists them.
std::vector<unsigned int> MenuOf(const std::vector<int>& groups) {
  std::vector<unsigned int> ids;
  for (int group : groups)
    for (unsigned int id : GetParamGroup(group))
      if (CatalogueIDs().count(id) != 0) ids.push_back(id);
  return ids;
}

TEST_F(SystemCatalogueTest, MenusListVisibleParametersInMenuOrderAndIdentityComesFromTheUnit) {
  // The presets' names sort by number (1.9 before 1.10), before the commands.
  std::vector<unsigned int> presets;
  for (int n = 0; n < kPresetNameCount; ++n)
    presets.push_back(Find("eParamID_PresetName_" + std::to_string(n))->GetParamID());
  presets.push_back(0x05CDE9A4);
  presets.push_back(0xAAB50096);
  EXPECT_EQ(MenuOf(GetPresetParamGroups()), presets);
  EXPECT_EQ(MenuOf(GetSystemParamGroups()).size(), 16u);
  EXPECT_EQ(MenuOf(GetConfigParamGroups()).size(), 25u);
  EXPECT_EQ(MenuOf(GetOutputParamGroups()).size(), 3u);
  EXPECT_EQ(MenuOf({1}).size(), 10u) << "remote control, login and the GPI settings";
  EXPECT_EQ(MenuOf({5}).size(), 19u) << "alarms, unit identity and MADI presence";

  // The panel-hidden parameters carry a group but are never listed.
  for (const char* name : {"eParamID_FrontPanelLock", "eParamID_FactorySettings"}) {
    EXPECT_EQ(IntAttributeOf(Find(name), "ParamGroup"), 3u) << name;
    const std::list<unsigned int> config = GetParamGroup(3);
    EXPECT_EQ(std::count(config.begin(), config.end(), Find(name)->GetParamID()), 0) << name;
  }

  SerialNumber_KR9::SetMacReader(&FakeUnit);
  createParamDescriptors_Config();
  SerialNumber_KR9::SetMacReader(nullptr);
  EXPECT_EQ(DefaultTextOf(Find("eParamID_MACAddress")), "0A:5E:9C:36:00:0A");
  EXPECT_EQ(DefaultTextOf(Find("eParamID_FormattedSerialNumber")), "21F000510  ");
  EXPECT_EQ(DefaultTextOf(Find("eParamID_SoftwareVersion")), kSoftwareVersion);
  const char* product = CProductID().getProductID();
  EXPECT_EQ(DefaultTextOf(Find("eParamID_ProductID")), product != nullptr ? product : "");
}

// The preset exchange's states are values of its result parameters, and its
// presets run 0 to 40, under the IDs it uses. (That a store takes exactly an
// enumeration's values and clamps at a range's ends is checked for the whole
// catalogue.)
TEST_F(SystemCatalogueTest, WholeCatalogueIsConsistentWithThePresetExchangesIDsAndStates) {
  namespace values = zyn::config::values;
  for (unsigned int result :
       {values::kRegisterLoadResultParamID, values::kRegisterStoreResultParamID}) {
    auto* states = dynamic_cast<EnumDescriptor*>(GetDescriptor(result));
    ASSERT_NE(states, nullptr) << std::hex << result;
    EXPECT_EQ(states->GetEnumValueDescriptors().size(), 4u);
    for (unsigned int state : {values::kRegisterInProgress, values::kRegisterDone,
                               values::kRegisterFailed, values::kRegisterEmpty})
      EXPECT_NE(states->GetEnumValueDescriptor(state), nullptr)
          << std::hex << result << " " << state;
  }
  for (unsigned int preset : {values::kRegisterLoadParamID, values::kRegisterStoreParamID})
    EXPECT_EQ(dynamic_cast<IntegerDescriptor*>(GetDescriptor(preset))->GetMaxValue(), 40u)
        << std::hex << preset;

  // Every parameter found under its name (names and IDs are pinned by the
  // generated header's test), and every default one that the store accepts.
  for (unsigned int id : CatalogueIDs()) {
    ParamDescriptor* d = GetDescriptor(id);
    const std::string id_name = d->GetParamIDName();
    // The one deliberate exception: eParamID_AudioDetectedInput_SDI2 reports
    // the ID of eParamID_AudioDetectedInput_SDI1, so its name leads there.
    const bool reports_sdi1 = id == 0x66FD2962;
    EXPECT_EQ(d->GetParamID(), reports_sdi1 ? 0x65B79CBFu : id) << id_name;
    EXPECT_EQ(GetDescriptor(id_name), reports_sdi1 ? GetDescriptor(0x65B79CBFu) : d) << id_name;
    if (EnumDescriptor* e = dynamic_cast<EnumDescriptor*>(d)) {
      EXPECT_NE(e->GetEnumValueDescriptor(e->GetFactoryDefault()), nullptr) << id_name;
      for (const auto& v : e->GetEnumValueDescriptors()) {
        EXPECT_LE(e->GetMinValue(), v.first) << id_name;
        EXPECT_GE(e->GetMaxValue(), v.first) << id_name;
      }
    } else if (IntegerDescriptor* i = dynamic_cast<IntegerDescriptor*>(d)) {
      EXPECT_LE(i->GetMinValue(), i->GetFactoryDefault()) << id_name;
      EXPECT_GE(i->GetMaxValue(), i->GetFactoryDefault()) << id_name;
    } else if (StringDescriptor* s = dynamic_cast<StringDescriptor*>(d)) {
      EXPECT_EQ(s->GetParamType(), eCParam_StringValue) << id_name;
      EXPECT_LE(s->GetMinLength(), s->GetFactoryDefault().size()) << id_name;
      EXPECT_GE(s->GetMaxLength(), s->GetFactoryDefault().size()) << id_name;
      EXPECT_EQ(s->GetMaxIndex() + 1, s->GetMaxLength()) << id_name;
    }
  }
}

}  // namespace
