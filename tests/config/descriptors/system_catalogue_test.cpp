// The system catalogue (its IDs and names are pinned by the generated
// header's test): the rows whose contents clients rely on, the menus it
// makes, and a store built from it.
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
#include "config/manager/config_manager.h"
#include "config/values/presets_param_vector.h"
#include "support/product_id.h"
#include "support/serial_number.h"
#include "test_stderr.h"
#include "unit_catalogue.h"

namespace {

using unit_catalogue::CatalogueIDs;
using unit_catalogue::ClassesOf;
using unit_catalogue::Find;
using unit_catalogue::IntAttributeOf;
using unit_catalogue::MenuPlaceOf;
using unit_catalogue::ValuesOf;

std::string DefaultTextOf(ParamDescriptor* d) {
  StringDescriptor* s = dynamic_cast<StringDescriptor*>(d);
  return s != nullptr ? s->GetFactoryDefault() : "";
}

std::string TextAttribute(const std::string& id_name, const char* attribute) {
  std::string value = "(none)";
  if (ParamDescriptor* d = Find(id_name)) d->GetAttribute(attribute, value);
  return value;
}

// The rows whose contents clients rely on, rendered: values, class names,
// menu place and default text (strings).
struct TellingRow {
  const char* idName;
  const char* values;
  const char* classes;
  const char* menu;
  const char* text;
};

// clang-format off
constexpr char kGPIOut[] = "0 No Action/NoAction, 1 Alarm, 2 No Video1/NoVideo1, 3 No Video2/NoVideo2, 4 No Ref, 5 PS Alarm/PSAlarm, 6 Temp Alarm/TmpAlarm";
constexpr char kSuppress[] = "0 Normal, 1 Suppress";
const TellingRow kTellingRows[] = {
    {"eParamID_FrontPanelLock", "0 Unlocked, 1 Locked", "panel_hidden", "3:3.5", ""},
    {"eParamID_IPConfig", "0 DHCP, 1 Static Addr/Static", "volatile network_config", "3:2.1", ""},
    {"eParamID_IPAddress", "", "network_config", "3:2.2", "0.0.0.0"},
    {"eParamID_IPAddress_DHCP", "", "readonly network_config", "", "0.0.0.0"},
    {"eParamID_IPAddress_Actual", "", "readonly network_config", "5:6.4", "NOT CONFIGURED"},
    {"eParamID_SubnetMask", "", "network_config", "3:2.3", "0.0.0.0"},
    {"eParamID_SubnetMask_Actual", "", "readonly network_config", "5:6.5", "NOT CONFIGURED"},
    {"eParamID_DefaultGateway", "", "volatile network_config", "3:2.4", "0.0.0.0"},
    {"eParamID_DefaultGateway_Static", "", "volatile network_config", "", "192.168.0.1"},
    {"eParamID_DefaultGateway_DHCP", "", "readonly volatile network_config", "", "0.0.0.0"},
    {"eParamID_SystemName", "", "network_config", "3:1.1", "zyn-kr-9"},
    {"eParamID_SNMPEnable", "0 Disabled, 1 Enable 1, 2 Enable Both, 3 Enable 2", "", "3:4.0", ""},
    {"eParamID_SNMPTrapIP1", "", "", "3:4.1", "0.0.0.0"},
    {"eParamID_SNMPPort1", "", "", "3:4.2", ""},
    {"eParamID_SNMPTrapIP2", "", "", "3:4.3", "0.0.0.0"},
    {"eParamID_SNMPPort2", "", "", "3:4.4", ""},
    {"eParamID_RemoteControl", "0 Local+Remote/Loc+Rem, 1 Local Only/Local, 2 Remote Only/Remote", "", "1:1.0", ""},
    {"eParamID_Authentication", "0 Disabled, 1 Login", "volatile", "1:1.1", ""},
    {"eParamID_HiddenMenus", "0 Show All/ShowAll, 1 Hide Inactive/Hide", "", "3:3.3", ""},
    {"eParamID_GPI1Out", kGPIOut, "", "1:3.1", ""},
    {"eParamID_GPI2Out", kGPIOut, "", "1:3.2", ""},
    {"eParamID_GPI3Out", kGPIOut, "", "1:3.3", ""},
    {"eParamID_GPI4Out", kGPIOut, "", "1:3.4", ""},
    {"eParamID_GPI_OUT_1", "0 Inactive, 1 Active", "gpio", "", ""},
    {"eParamID_GPI_OUT_4", "0 Inactive, 1 Active", "gpio", "", ""},
    {"eParamID_Vid1SuppressFormatAlarm", kSuppress, "alarm_suppress", "3:6.1", ""},
    {"eParamID_Vid2SuppressFormatAlarm", kSuppress, "alarm_suppress", "3:6.2", ""},
    {"eParamID_SuppressPSAlarm", kSuppress, "alarm_suppress", "3:6.3", ""},
    {"eParamID_SuppressReferenceAlarm", kSuppress, "alarm_suppress", "3:6.4", ""},
    {"eParamID_ScreenSaverEnable", "0 Off, 1 On (ZYN Logo)/On", "", "3:3.2", ""},
    {"eParamID_FactorySettings", "0 Adj=Set, 1 FACTORY/wFACTORY[AdjPB=Recall], 2 HARD FACTORY/hFACTORY[AdjPB=Recall]", "panel_hidden", "3:7.3", ""},
    {"eParamID_SoftwareReset", "0 Reboot?/Reboot[Both=Reboot], 1 Confirm?[Up to Confirm], 2 Rebooting/Rebootng", "", "3:7.2", ""},
    {"eParamID_PauseFeatures", "0 Run, 1 Pause", "", "11:1.1", ""},
    {"eParamID_CurrentlySelectedButton", "1 Remote, 2 System, 3 Config, 4 Preset, 5 Status, 6 Output, 7 Video Proc, 8 Video Output, 9 Audio Proc, 10 Audio Output", "hidden_param", "", ""},
    {"eParamID_LastSelectedParam", "", "hidden_param", "", ""},
    {"eParamID_LastSelectedParamAudioOutput", "", "hidden_param", "", ""},
    {"eParamID_ProductID", "", "volatile", "", ""},
    {"eParamID_NetworkServices", "", "", "", "[]"},
    {"eParamID_SSDP_Enable_Host", "0 Disable, 1 Enable", "volatile", "3:5.1", ""},
    {"eParamID_SSDP_Enable_Proxy", "0 Disable, 1 Enable", "volatile", "3:5.2", ""},
    {"eParamID_SystemPassword", "", "volatile password rest_hidden", "", ""},
    // Result values are the hand-over states of the preset exchange.
    {"eParamID_RegisterRecallResult", "1 Recalling.../Loading, 2 Recall Complete/Complete, 4 Preset Empty/Empty, 3 Recall Failed/Failed", "readonly volatile", "", ""},
    {"eParamID_RegisterExportResult", "1 Exporting.../Exportng, 2 Export Complete/Complete, 3 Export Failed/Failed", "readonly volatile", "", ""},
    {"eParamID_RegisterImportResult", "1 Importing.../Importng, 2 Import Complete/Complete, 3 Import Failed/Failed", "readonly volatile", "", ""},
    {"eParamID_RegisterLoadResult", "1 Exporting.../Exportng, 2 Export Complete/Complete, 4 Preset Empty/Empty, 3 Export Failed/Failed", "readonly volatile", "", ""},
    {"eParamID_RegisterStoreResult", "1 Storing.../Storing, 2 Store Complete/Complete, 4 Store Rejected/Rejected, 3 Store Failed/Failed", "readonly volatile", "", ""},
    {"eParamID_RegisterRecall", "", "volatile", "4:2.1", ""},
    {"eParamID_RegisterLoad", "", "volatile", "", ""},
};
// clang-format on

class SystemCatalogueTest : public testing::Test {
 protected:
  static void SetUpTestSuite() { CatalogueIDs(); }
};

TEST_F(SystemCatalogueTest, PresetNameRows) {
  for (int n = 0; n < kPresetNameCount; ++n) {
    const std::string id_name = "eParamID_PresetName_" + std::to_string(n);
    StringDescriptor* d = dynamic_cast<StringDescriptor*>(Find(id_name));
    ASSERT_NE(d, nullptr) << id_name;
    EXPECT_EQ(d->GetMinLength(), 1u);
    EXPECT_EQ(d->GetMaxLength(), 20u);
    EXPECT_EQ(MenuPlaceOf(d), "4:1." + std::to_string(n));
    EXPECT_EQ(IntAttributeOf(d, "presetNumber"), static_cast<unsigned int>(n));
    if (n == 0) continue;
    EXPECT_EQ(d->GetName() + "|" + d->GetShortName() + "|" + ClassesOf(d),
              "Preset " + std::to_string(n) + "|Name Pre|");
  }
  ParamDescriptor* factory = GetDescriptor(kFactoryPresetNameParamID);
  ASSERT_NE(factory, nullptr);
  EXPECT_EQ(factory->GetParamIDName(), "eParamID_PresetName_0");
  EXPECT_EQ(factory->GetName() + "|" + factory->GetShortName() + "|" + ClassesOf(factory) + "|" +
                DefaultTextOf(factory),
            "Factory Preset|Factory|readonly rest_hidden|Factory values");
}

// Every parameter found under its name (names and IDs are pinned by the
// generated header's test), and every default one that the store accepts.
TEST_F(SystemCatalogueTest, WholeCatalogueIsConsistent) {
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

TEST_F(SystemCatalogueTest, TellingRows) {
  for (const TellingRow& row : kTellingRows) {
    ParamDescriptor* d = Find(row.idName);
    if (d == nullptr) continue;
    EXPECT_EQ(ValuesOf(d), row.values) << row.idName;
    EXPECT_EQ(ClassesOf(d), row.classes) << row.idName;
    EXPECT_EQ(MenuPlaceOf(d), row.menu) << row.idName;
    EXPECT_EQ(DefaultTextOf(d), row.text) << row.idName;
  }
  EXPECT_NE(TextAttribute("eParamID_ScreenSaverEnable", "description").find("3 minutes"),
            std::string::npos);
  EXPECT_EQ(TextAttribute("eParamID_ProductID", "description"),
            "An identifier used for product specific features and behaviors");
  EXPECT_EQ(TextAttribute("eParamID_NetworkServices", "description"),
            "The value is a JSON array of Network Services discovered by the unit");
}

TEST_F(SystemCatalogueTest, FrontPanelLockRow) {
  IntegerDescriptor* d = dynamic_cast<IntegerDescriptor*>(Find("eParamID_FrontPanelLock"));
  ASSERT_NE(d, nullptr);
  EXPECT_EQ(std::vector<long>({d->GetParamType(), d->GetFeatureType(), d->GetPersistenceType(),
                               d->GetRegisterType(), d->GetFactoryResetType(), d->GetMinValue(),
                               d->GetMaxValue(), d->GetFactoryDefault(), d->GetAdjustBy()}),
            std::vector<long>({eCParam_IntegerValue, 2, ePersist, eRegister_Exclude,
                               eFactoryReset_Exclude, 0, 1, 0, 1}))
      << "type, feature, persistence, register, reset, min, max, default, step";
  EXPECT_EQ(d->GetRegEx(), "*");
}

// What the parameter mapper reads here (the generics' storage and their
// specifics are checked by its own clean build): the IP-configuration
// selector, and one frame-rate mode value per frame-rate family.
TEST_F(SystemCatalogueTest, MappedParametersFitTheMapper) {
  EXPECT_EQ(IntAttributeOf(Find("eParamID_IPConfig"), "useAsReverseMapID"), 1u);
  EXPECT_EQ(ValuesOf(Find("eParamID_FrameRateMode")), "0 59.94/23.98/5994, 1 50/25/50, 2 60/24/60");
}

TEST_F(SystemCatalogueTest, SNMPTrapsAreEnabledBySNMPEnable) {
  const struct {
    const char* name;
    unsigned int first, second;
  } traps[] = {{"eParamID_SNMPTrapIP1", 1, 2},
               {"eParamID_SNMPPort1", 1, 2},
               {"eParamID_SNMPTrapIP2", 2, 3},
               {"eParamID_SNMPPort2", 2, 3}};
  for (const auto& t : traps) {
    ParamDescriptor* d = Find(t.name);
    ASSERT_NE(d, nullptr);
    const std::vector<ParamDescriptor::Relation> expected = {{0x2A959211, t.first},
                                                             {0x2A959211, t.second}};
    EXPECT_EQ(d->GetRelation("enabled_by"), expected) << t.name;
  }
}

// A unit whose MAC address is the eleventh of the manufacturing range.
SerialNumber_KR9::eMacRead_t FakeUnit(const std::string&, unsigned char mac[6]) {
  const unsigned char bytes[6] = {0x0A, 0x5E, 0x9C, 0x36, 0x00, 0x0A};
  std::copy(bytes, bytes + 6, mac);
  return SerialNumber_KR9::eMacRead_OK;
}

TEST_F(SystemCatalogueTest, IdentityParametersComeFromTheUnit) {
  SerialNumber_KR9::SetMacReader(&FakeUnit);
  createParamDescriptors_Config();
  SerialNumber_KR9::SetMacReader(nullptr);
  EXPECT_EQ(DefaultTextOf(Find("eParamID_MACAddress")), "0A:5E:9C:36:00:0A");
  EXPECT_EQ(DefaultTextOf(Find("eParamID_FormattedSerialNumber")), "21F000510  ");
  EXPECT_EQ(DefaultTextOf(Find("eParamID_SoftwareVersion")), kSoftwareVersion);
  for (const char* name :
       {"eParamID_MACAddress", "eParamID_FormattedSerialNumber", "eParamID_SoftwareVersion"})
    EXPECT_EQ(ClassesOf(Find(name)), "readonly network_config") << name;
  const char* product = CProductID().getProductID();
  EXPECT_EQ(DefaultTextOf(Find("eParamID_ProductID")), product != nullptr ? product : "");
}

// The system parameters of the given menu groups, as GetParamGroup lists them.
std::vector<unsigned int> MenuOf(const std::vector<int>& groups) {
  std::vector<unsigned int> ids;
  for (int group : groups)
    for (unsigned int id : GetParamGroup(group))
      if (CatalogueIDs().count(id) != 0) ids.push_back(id);
  return ids;
}

TEST_F(SystemCatalogueTest, MenusListVisibleParametersInMenuOrder) {
  EXPECT_EQ(MenuOf(GetSystemParamGroups()),
            (std::vector<unsigned int>{0x3DE4C4BE, 0xBAE42C96, 0xDF66BC8C, 0x66F60E82, 0xF4DEA58B,
                                       0x87551011, 0xA440E890, 0x615889C5, 0x23130FDA, 0x98A628CA,
                                       0x3C3CD765, 0xA7A9708D, 0x8CE1DB86, 0x3D3FAB16, 0xC395642B,
                                       0x91AE2777}));
  EXPECT_EQ(MenuOf(GetConfigParamGroups()),
            (std::vector<unsigned int>{
                0x663F2B65, 0xAFA99192, 0x33A97ED1, 0xF39DDE8A, 0x57A428C9, 0x317F9771, 0x78E781AF,
                0x82DB76E8, 0xDA94DCB9, 0x2A959211, 0x842038D2, 0xC599BE36, 0x1DADD0EE, 0x6769974C,
                0xCF05CD00, 0x6B6137DA, 0x02206D00, 0xCF864E5C, 0x65591C3D, 0x844F0346, 0x100BD151,
                0xBD3F509A, 0x425EA639, 0xEC29F65F, 0x07E7392F}));
  std::vector<unsigned int> presets;
  for (int n = 0; n < kPresetNameCount; ++n)
    presets.push_back(Find("eParamID_PresetName_" + std::to_string(n))->GetParamID());
  presets.push_back(0x05CDE9A4);
  presets.push_back(0xAAB50096);
  EXPECT_EQ(MenuOf(GetPresetParamGroups()), presets) << "1.9 before 1.10, names before commands";
  EXPECT_EQ(MenuOf(GetOutputParamGroups()),
            (std::vector<unsigned int>{0x4F2B0AE1, 0x213D4C8C, 0xA2EDE6E1}));
  EXPECT_EQ(MenuOf({1}).size(), 10u) << "remote control, login and the GPI settings";
  EXPECT_EQ(MenuOf({5}).size(), 19u) << "alarms, unit identity and MADI presence";

  // The panel-hidden parameters carry a group but are never listed.
  for (const char* name : {"eParamID_FrontPanelLock", "eParamID_FactorySettings"}) {
    EXPECT_EQ(IntAttributeOf(Find(name), "ParamGroup"), 3u) << name;
    const std::list<unsigned int> config = GetParamGroup(3);
    EXPECT_EQ(std::count(config.begin(), config.end(), Find(name)->GetParamID()), 0) << name;
  }
}

// The store takes every state of the preset exchange, and only those, under
// the IDs the exchange uses.
TEST_F(SystemCatalogueTest, StoreAcceptsThePresetExchangeStates) {
  namespace values = zyn::config::values;
  ConfigManager manager(eConfigID_Default);
  Stderr([&] { manager.Init(); });
  for (unsigned int result :
       {values::kRegisterLoadResultParamID, values::kRegisterStoreResultParamID}) {
    for (unsigned int state : {values::kRegisterInProgress, values::kRegisterDone,
                               values::kRegisterFailed, values::kRegisterEmpty}) {
      EXPECT_TRUE(manager.Set(result, state)) << std::hex << result << " state " << state;
      EXPECT_EQ(manager.Get(result), state);
    }
    Stderr([&] { manager.Set(result, 5u); });
    EXPECT_EQ(manager.Get(result), values::kRegisterEmpty) << "5 is no state";
  }
  for (unsigned int preset : {values::kRegisterLoadParamID, values::kRegisterStoreParamID}) {
    manager.Set(preset, 41u);
    EXPECT_EQ(manager.Get(preset), 40u) << std::hex << preset << ": presets run 0 to 40";
  }
}

}  // namespace
