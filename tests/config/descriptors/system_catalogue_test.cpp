// The system catalogue: every listed parameter under its fixed ID and names,
// the rows whose contents clients rely on, the menus it makes, and a store
// built from it.
#include <gtest/gtest.h>

#include <algorithm>
#include <list>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "config/descriptors/enum_descriptor.h"
#include "config/descriptors/param_descriptors.h"
#include "config/descriptors/param_descriptors_system.h"
#include "config/descriptors/param_groups.h"
#include "config/descriptors/param_suffixes.h"
#include "config/descriptors/string_descriptor.h"
#include "config/manager/config_manager.h"
#include "config/values/presets_param_vector.h"
#include "support/product_id.h"
#include "support/serial_number.h"
#include "test_stderr.h"
#include "unit_catalogue.h"

namespace {

struct Listed {
  unsigned int id;
  const char* idName;
  const char* name;
  const char* shortName;
};

// clang-format off
const Listed kListed[] = {
    {0x01234567, "eParamID_TestID", "", ""},
    {0x3C627C28, "eParamID_Status", "Status Mode", "Status"},
    {0xDA94DCB9, "eParamID_PersistStatus", "Persist Status Mode", "PersStat"},
    {0x6A7FCEB2, "eParamID_ProductID", "Product ID", "ProdID"},
    {0xCAD9A5FE, "eParamID_SubnetMask_Actual", "Subnet Mask", "SbnetMsk"},
    {0x5BB39090, "eParamID_DefaultGateway_DHCP", "Default Gateway", "DfltGtwy"},
    {0x65591C3D, "eParamID_SuppressPSAlarm", "Power Supply Alarm", "PS Alarm"},
    {0x55832823, "eParamID_FormattedSerialNumber", "Serial Number", "Ser Num"},
    {0x0FA846F6, "eParamID_MACAddress", "MAC Address", "MAC Addr"},
    {0xCE5949B0, "eParamID_IPAddress_Actual", "IP Address", "IP Addr"},
    {0x663F2B65, "eParamID_SystemName", "System Name", "Sys Name"},
    {0xEA4F2E24, "eParamID_FactorySettings", "Factory Preset", "Factory"},
    {0xBD3F509A, "eParamID_SoftwareReset", "", ""},
    {0x78E781AF, "eParamID_ScreenSaverEnable", "Screen Saver", "ScreenSaver"},
    {0x844F0346, "eParamID_SuppressReferenceAlarm", "Reference Alarm", "RefAlarm"},
    {0xCF864E5C, "eParamID_Vid2SuppressFormatAlarm", "Vid 2 Format Alarm", "V2FmtAlm"},
    {0x02206D00, "eParamID_Vid1SuppressFormatAlarm", "Vid 1 Format Alarm", "V1FmtAlm"},
    {0x2A959211, "eParamID_SNMPEnable", "SNMP Enable", "SNMP En"},
    {0x82DB76E8, "eParamID_HiddenMenus", "Hidden Menus", "HidMenus"},
    {0x01B52974, "eParamID_SoftwareVersion", "Software Version", "SW Ver"},
    {0x100BD151, "eParamID_FanSpeed", "Fan Speed", "FanSpeed"},
    {0x317F9771, "eParamID_DisplayIntensity", "Display Intensity", "DpyInten"},
    {0xC599BE36, "eParamID_SNMPPort1", "SNMP Trap Port 1", "TrapPrt1"},
    {0x842038D2, "eParamID_SNMPTrapIP1", "SNMP Trap Dest 1", "TrapIP1"},
    {0x6769974C, "eParamID_SNMPPort2", "SNMP Trap Port 2", "TrapPrt2"},
    {0x1DADD0EE, "eParamID_SNMPTrapIP2", "SNMP Trap Dest 2", "TrapIP2"},
    {0x32E4B9C8, "eParamID_DefaultGateway_Static", "Default Gateway", "DfltGtwy"},
    {0x57A428C9, "eParamID_DefaultGateway", "Default Gateway", "DfltGtwy"},
    {0x427B29E2, "eParamID_SubnetMask_Static", "Subnet Mask", "SbnetMsk"},
    {0x2BB63195, "eParamID_SubnetMask_DHCP", "Subnet Mask", "SbnetMsk"},
    {0xF39DDE8A, "eParamID_SubnetMask", "Subnet Mask", "SbnetMsk"},
    {0x758A24AD, "eParamID_IPAddress_Static", "IP Address", "IP Addr Static"},
    {0xAFF7019F, "eParamID_IPAddress_DHCP", "IP Address", "IP Addr DHCP"},
    {0x33A97ED1, "eParamID_IPAddress", "IP Address", "IP Addr"},
    {0xAFA99192, "eParamID_IPConfig", "IP Config", "IP Cfg"},
    {0x4D575A8E, "eParamID_FrontPanelLock", "Front Panel Lock", "FP Lock"},
    {0x8280B344, "eParamID_SystemPassword", "System Password", "Password"},
    {0x3DE4C4BE, "eParamID_AnalogVideoInputSelect", "Analog Video Input", "Anlg In"},
    {0x98A628CA, "eParamID_FRCEnable", "FRC Enable", "FRC En"},
    {0x23130FDA, "eParamID_FrameRateMode", "Output Frame Rates", "Fm Rates"},
    {0x615889C5, "eParamID_GenlockSource", "Genlock source", "GenLkSrc"},
    {0x4F2B0AE1, "eParamID_ComponentOutputLevel", "Cmponent Out Format", "CmpOtFmt"},
    {0xBAE42C96, "eParamID_ComponentInputLevel", "Analog In Format", "AnaInFmt"},
    {0x3C3CD765, "eParamID_AESEBUAudioSRCMode", "AES/EBU SRC Mode", "AESSRCMd"},
    {0xA2EDE6E1, "eParamID_HDMIRGBRange", "HDMI RGB Range", "HDMI RGB"},
    {0x213D4C8C, "eParamID_CompositeDownconvMode", "Composite Downconv", "CmpstOut"},
    {0xA7A9708D, "eParamID_AnalogAudioStandard", "Analog Audio Std", "AnaAuStd"},
    {0xF4DEA58B, "eParamID_Fiber1_3G_B_Detect", "Fiber1 3G Detect", "F1-3GDet"},
    {0x66F60E82, "eParamID_SDI1_3G_B_Detect", "SDI1 3G Detect", "S1-3GDet"},
    {0xA440E890, "eParamID_Fiber2InputOverride", "Fiber2 Input Protect", "Fib2InOv"},
    {0x87551011, "eParamID_SDI2InputOverride", "SDI2 Input Protect", "SDI2Prot"},
    {0xDF66BC8C, "eParamID_NTSCLevels", "NTSC Standard", "NTSC Std"},
    {0xE38642F7, "eParamID_LED_FRCMode", "FRC Mode", "FRCMode"},
    {0xEEF48360, "eParamID_LED_UFC2", "UFC 2", "UFC2"},
    {0x35CCA5D1, "eParamID_LED_UFC1", "UFC 1", "UFC1"},
    {0x0846E0FE, "eParamID_LED_Vid2", "Video In 2", "Vid 2"},
    {0x8435130D, "eParamID_LED_Remote", "Remote", "Remote"},
    {0xE4BFC577, "eParamID_LED_Power2", "Power Supply 2", "Power2"},
    {0x926EE46F, "eParamID_LED_Identify", "Identify LED", "ID LED"},
    {0xFB27A1CB, "eParamID_LED_FRCStatus", "FRC Status", "FRCStats"},
    {0x1E6513C9, "eParamID_LED_Vid1", "Video In 1", "Vid 1"},
    {0xDA0D059A, "eParamID_LED_Alarm", "Alarm LED", "AlarmLED"},
    {0x395E6076, "eParamID_LED_Power1", "Power Supply 1", "Power1"},
    {0xB0F152CE, "eParamID_LED_EXT", "EXT", "EXT"},
    {0x635ABFAB, "eParamID_LED_LAN", "LAN", "LAN"},
    {0xD49160D0, "eParamID_LED_Keyer", "Keyer", "Keyer"},
    {0x877A38F1, "eParamID_LED_Reference", "Reference", "Ref"},
    {0xECAF9714, "eParamID_LED_FormatError2", "Format Error 2", "FmtErr 2"},
    {0x5016A3F6, "eParamID_LED_FormatError1", "Format Error 1", "FmtErr 1"},
    {0xB4F7FAF1, "eParamID_LED_ProcAmp2", "ProcAmp 2", "PA 2"},
    {0x68863832, "eParamID_LED_ProcAmp1", "ProcAmp 1", "PA 1"},
    {0x1B379BEA, "eParamID_RemoteControl", "Remote Control", "Rmt Cont"},
    {0xB4682D20, "eParamID_Authentication", "Authentication", "Auth"},
    {0x40001052, "eParamID_GPI_OUT_4", "GPI_OUT 4", "GPI_OUT4"},
    {0x0E5201F6, "eParamID_GPI_OUT_3", "GPI_OUT 3", "GPI_OUT3"},
    {0xDBB1AFF6, "eParamID_GPI_OUT_2", "GPI_OUT 2", "GPI_OUT2"},
    {0xB8F229A7, "eParamID_GPI_OUT_1", "GPI_OUT 1", "GPI_OUT1"},
    {0x1285A7D0, "eParamID_GPI4Out", "GPI 4 Out", "GPI4Out"},
    {0x3E0B4D0F, "eParamID_GPI3Out", "GPI 3 Out", "GPI3Out"},
    {0x174A13FF, "eParamID_GPI2Out", "GPI 2 Out", "GPI2Out"},
    {0x100219A2, "eParamID_GPI1Out", "GPI 1 Out", "GPI1Out"},
    {0xE2A5E4B5, "eParamID_GPIIN4Response", "GPI IN4 Response", "GPI4Resp"},
    {0xC287A08D, "eParamID_GPIIN3Response", "GPI IN3 Response", "GPI3Resp"},
    {0xC4139BC5, "eParamID_GPIIN2Response", "GPI IN2 Response", "GPI2Resp"},
    {0x6DB9E0CF, "eParamID_GPIIN1Response", "GPI IN1 Response", "GPI1Resp"},
    {0x05CDE9A4, "eParamID_RegisterRecall", "Recall Preset", "RecllPre"},
    {0x4000E4C8, "eParamID_RegisterRecallResult", "Recall Result", "RecallR"},
    {0xAAB50096, "eParamID_RegisterSave", "Store Preset", "Pre Stor"},
    {0x7A9D2C71, "eParamID_RegisterSaveResult", "Store Result", "Store R"},
    {0x8D7C3560, "eParamID_RegisterExportResult", "Export Result", "ExptR"},
    {0x380BDFA0, "eParamID_RegisterImportResult", "Import Result", "ImptR"},
    {0xCF27576A, "eParamID_RegisterLoad", "Load Preset", "LoadP"},
    {0xC2FB5816, "eParamID_RegisterLoadResult", "Load Result", "LoadR"},
    {0x8266D0C6, "eParamID_RegisterStore", "Store Preset", "StoreP"},
    {0xE2755FEE, "eParamID_RegisterStoreResult", "Store Result", "StoreR"},
    {0x71B993D9, "eParamID_Audio2DolbyFramerAlarm", "Dolby Framer Alarm Status", "DlbySync"},
    {0x21E55F31, "eParamID_Audio1DolbyFramerAlarm", "Dolby Framer Alarm Status", "DlbySync"},
    {0x599F26B5, "eParamID_Vid2BackgroundAlarm", "Background Alarm Status", "BkgAlarm"},
    {0xC8ADFB2F, "eParamID_Vid1BackgroundAlarm", "Background Alarm Status", "BkgAlarm"},
    {0xAA38E232, "eParamID_TemperatureAlarm", "Temp Alarm Status", "TmpAlarm"},
    {0x3F4AC021, "eParamID_Vid2ReferenceAlarm", "Ref2 Alarm Status", "Ref2Alrm"},
    {0x54091D16, "eParamID_Vid1ReferenceAlarm", "Ref1 Alarm Status", "Ref1Alrm"},
    {0xC424A6B0, "eParamID_ReferenceAlarm", "Ref1 Alarm Status", "Ref1Alrm"},
    {0x95C3C31F, "eParamID_Format2_Alarm", "Format Alarm2", "FmtAlarm2"},
    {0xB4E69A67, "eParamID_Format1_Alarm", "Format Alarm1", "FmtAlarm1"},
    {0xCDF44D79, "eParamID_PS2_Alarm", "PS2 Alarm", "PS2Alarm"},
    {0x53895054, "eParamID_PS1_Alarm", "PS1 Alarm", "PS1Alarm"},
    {0xB429CC49, "eParamID_SafebootMode", "", ""},
    {0x07E7392F, "eParamID_VCPStatus", "VCP Status", "VCP Stat"},
    {0xEC29F65F, "eParamID_VCPMode", "VCP Mode", "VCP Mode"},
    {0xC4DB7FA6, "eParamID_AudioMADIFIB_kill_rdy", "FIB Presence", "FIB Pres"},
    {0x232AB169, "eParamID_AudioMADIBNC_kill_rdy", "BNC Presence", "BNC Pres"},
    {0x91AE2777, "eParamID_AudioMADIFIB_out_56ch", "MADI FIB Out", "FIB Out"},
    {0xC395642B, "eParamID_AudioMADIFIB_in_56ch", "MADI FIB In", "FIB In"},
    {0x3D3FAB16, "eParamID_AudioMADIBNC_out_56ch", "MADI BNC Out", "BNC Out"},
    {0x8CE1DB86, "eParamID_AudioMADIBNC_in_56ch", "MADI BNC In", "BNC In"},
    {0x69303BD9, "eParamID_AudioMADIFIB_select_out_56ch", "MADI FIB Out", "FIB Sel"},
    {0x72FDEE01, "eParamID_AudioMADIBNC_select_out_56ch", "MADI BNC Out", "BNC Sel"},
    {0xCF05CD00, "eParamID_SSDP_Enable_Host", "UPnP Host", "UPnP"},
    {0x6B6137DA, "eParamID_SSDP_Enable_Proxy", "UPnP Proxy", "UPnProxy"},
    {0x3BFF8D54, "eParamID_NetworkServices", "Network Services", "NetSrv"},
    {0x425EA639, "eParamID_PauseFeatures", "Pause Features", "PauseFtr"},
    {0x83944A98, "eParamID_CurrentlySelectedButton", "", ""},
    {0xA61BEBA5, "eParamID_LastSelectedParam", "Last Selected Param", "LastSel"},
    {0xA22CAC87, "eParamID_LastSelectedParamConfig", "Last Selected Config", "LastSel"},
    {0x3950425C, "eParamID_LastSelectedParamSystem", "Last Selected System", "LastSel"},
    {0xC61D0A4C, "eParamID_LastSelectedParamVideoProc", "Last Selected Video Proc", "LastSel"},
    {0xE1B43D6D, "eParamID_LastSelectedParamAudioProc", "Last Selected Audio Proc", "LastSel"},
    {0xE1845913, "eParamID_LastSelectedParamRemote", "Last Selected Remote", "LastSel"},
    {0x70C498DE, "eParamID_LastSelectedParamPreset", "Last Selected Preset", "LastSel"},
    {0x7CCDE2C4, "eParamID_LastSelectedParamOutput", "Last Selected Output", "LastSel"},
    {0x78C8A161, "eParamID_LastSelectedParamVideoOutput", "Last Selected Video Output", "LastSel"},
    {0x3F003E90, "eParamID_LastSelectedParamAudioOutput", "Last Selected Audio Output", "LastSel"},
};

// Preset names by preset number.
const unsigned int kPresetNameIDs[kPresetNameCount] = {
    0x383AA021, 0x18C68409, 0x15C67F50, 0x16C680E3, 0x1BC688C2, 0x1CC68A55, 0x19C6859C, 0x1AC6872F, 0x1FC68F0E,
    0x20C690A1, 0x398225BB, 0x38822428, 0x3B8228E1, 0x3A82274E, 0x3D822C07, 0x3C822A74, 0x3F822F2D, 0x3E822D9A,
    0x31821923, 0x30821790, 0xA77A8420, 0xA87A85B3, 0xA97A8746, 0xAA7A88D9, 0xAB7A8A6C, 0xAC7A8BFF, 0xAD7A8D92,
    0xAE7A8F25, 0xAF7A90B8, 0xB07A924B, 0xAD7CCC29, 0xAC7CCA96, 0xAB7CC903, 0xAA7CC770, 0xB17CD275, 0xB07CD0E2,
    0xAF7CCF4F, 0xAE7CCDBC, 0xB57CD8C1, 0xB47CD72E, 0xAB8994F6,
};
// clang-format on

using unit_catalogue::CatalogueIDs;
using unit_catalogue::ClassesOf;
using unit_catalogue::Find;
using unit_catalogue::ValuesOf;

// "group:menu number", or "" for a parameter in no menu.
std::string MenuPlaceOf(ParamDescriptor* d) {
  unsigned int group = 0;
  std::string number;
  d->GetAttribute("menu_number", number);
  return d->GetAttribute("ParamGroup", group) ? std::to_string(group) + ":" + number : number;
}

std::string DefaultTextOf(ParamDescriptor* d) {
  StringDescriptor* s = dynamic_cast<StringDescriptor*>(d);
  return s != nullptr ? s->GetFactoryDefault() : "";
}

std::string TextAttribute(const std::string& id_name, const char* attribute) {
  std::string value = "(none)";
  if (ParamDescriptor* d = Find(id_name)) d->GetAttribute(attribute, value);
  return value;
}

unsigned int IntAttribute(const std::string& id_name, const char* attribute) {
  unsigned int value = 0xFFFFFFFF;
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

TEST_F(SystemCatalogueTest, ListedParametersHaveTheirIDsAndNames) {
  for (const Listed& p : kListed) {
    ParamDescriptor* d = GetDescriptor(p.id);
    ASSERT_NE(d, nullptr) << std::hex << p.id << " " << p.idName;
    EXPECT_EQ(d->GetParamIDName(), p.idName) << std::hex << p.id;
    EXPECT_EQ(d->GetName(), p.name) << p.idName;
    EXPECT_EQ(d->GetShortName(), p.shortName) << p.idName;
    EXPECT_EQ(GetDescriptor(std::string(p.idName)), d) << p.idName;
  }
}

TEST_F(SystemCatalogueTest, PresetNamesComeFromTheirIDTable) {
  for (int n = 0; n < kPresetNameCount; ++n) {
    const std::string id_name = "eParamID_PresetName_" + std::to_string(n);
    StringDescriptor* d = dynamic_cast<StringDescriptor*>(GetDescriptor(kPresetNameIDs[n]));
    ASSERT_NE(d, nullptr) << id_name;
    EXPECT_EQ(d->GetParamIDName(), id_name);
    EXPECT_EQ(d->GetMinLength(), 1u);
    EXPECT_EQ(d->GetMaxLength(), 20u);
    EXPECT_EQ(MenuPlaceOf(d), "4:1." + std::to_string(n));
    EXPECT_EQ(IntAttribute(id_name, "presetNumber"), static_cast<unsigned int>(n));
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

// Every parameter under a unique, prefixed name, and every default one that
// the store accepts.
TEST_F(SystemCatalogueTest, WholeCatalogueIsConsistent) {
  std::set<std::string> names;
  for (unsigned int id : CatalogueIDs()) {
    ParamDescriptor* d = GetDescriptor(id);
    const std::string id_name = d->GetParamIDName();
    EXPECT_EQ(id_name.rfind("eParamID_", 0), 0u) << std::hex << id << " " << id_name;
    EXPECT_TRUE(names.insert(id_name).second) << "two parameters named " << id_name;
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
  EXPECT_EQ(names.size(), CatalogueIDs().size());
  EXPECT_GE(CatalogueIDs().size(), sizeof kListed / sizeof kListed[0] + kPresetNameCount);
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
  EXPECT_EQ(d->GetParamID(), 0x4D575A8Eu);
  EXPECT_EQ(d->GetParamType(), eCParam_IntegerValue);
  EXPECT_EQ(d->GetFeatureType(), 2);
  EXPECT_EQ(d->GetPersistenceType(), ePersist);
  EXPECT_EQ(d->GetRegisterType(), eRegister_Exclude);
  EXPECT_EQ(d->GetFactoryResetType(), eFactoryReset_Exclude);
  EXPECT_EQ(d->GetRegEx(), "*");
  EXPECT_EQ(d->GetMinValue(), 0u);
  EXPECT_EQ(d->GetMaxValue(), 1u);
  EXPECT_EQ(d->GetFactoryDefault(), 0u);
  EXPECT_EQ(d->GetAdjustBy(), 1u);
}

// What the parameter mapper needs: the IP-configuration generics are neither
// kept nor in presets nor reset, and each has a specific per mode; the
// frame-rate mode has one value per frame-rate family.
TEST_F(SystemCatalogueTest, MappedParametersFitTheMapper) {
  EXPECT_EQ(IntAttribute("eParamID_IPConfig", "useAsReverseMapID"), 1u);
  InitializeSuffixes();
  for (const char* generic :
       {"eParamID_IPAddress", "eParamID_SubnetMask", "eParamID_DefaultGateway"}) {
    ParamDescriptor* d = Find(generic);
    ASSERT_NE(d, nullptr);
    EXPECT_NE(d->GetPersistenceType(), ePersist) << generic;
    EXPECT_EQ(d->GetRegisterType(), eRegister_Exclude) << generic;
    EXPECT_EQ(d->GetFactoryResetType(), eFactoryReset_Exclude) << generic;
    for (const std::string& suffix : IPConfigSuffix) Find(std::string(generic) + "_" + suffix);
  }
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

TEST_F(SystemCatalogueTest, RegisterParametersAreThoseOfThePresetExchange) {
  namespace values = zyn::config::values;
  EXPECT_EQ(Find("eParamID_RegisterLoad")->GetParamID(), values::kRegisterLoadParamID);
  EXPECT_EQ(Find("eParamID_RegisterLoadResult")->GetParamID(), values::kRegisterLoadResultParamID);
  EXPECT_EQ(Find("eParamID_RegisterStore")->GetParamID(), values::kRegisterStoreParamID);
  EXPECT_EQ(Find("eParamID_RegisterStoreResult")->GetParamID(),
            values::kRegisterStoreResultParamID);
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
  std::vector<unsigned int> presets(kPresetNameIDs, kPresetNameIDs + kPresetNameCount);
  presets.push_back(0x05CDE9A4);
  presets.push_back(0xAAB50096);
  EXPECT_EQ(MenuOf(GetPresetParamGroups()), presets) << "1.9 before 1.10, names before commands";
  EXPECT_EQ(MenuOf(GetOutputParamGroups()),
            (std::vector<unsigned int>{0x4F2B0AE1, 0x213D4C8C, 0xA2EDE6E1}));
  EXPECT_EQ(MenuOf({1}).size(), 10u) << "remote control, login and the GPI settings";
  EXPECT_EQ(MenuOf({5}).size(), 19u) << "alarms, unit identity and MADI presence";

  // The panel-hidden parameters carry a group but are never listed.
  for (const char* name : {"eParamID_FrontPanelLock", "eParamID_FactorySettings"}) {
    EXPECT_EQ(IntAttribute(name, "ParamGroup"), 3u) << name;
    const std::list<unsigned int> config = GetParamGroup(3);
    EXPECT_EQ(std::count(config.begin(), config.end(), Find(name)->GetParamID()), 0) << name;
  }
}

TEST_F(SystemCatalogueTest, StoreStartsEveryParameterAtItsFactoryDefault) {
  ConfigManager manager(eConfigID_Default);
  Stderr([&] { manager.Init(); });
  for (unsigned int id : CatalogueIDs()) {
    ParamDescriptor* d = GetDescriptor(id);
    if (StringDescriptor* s = dynamic_cast<StringDescriptor*>(d)) {
      std::string value = "unset";
      EXPECT_TRUE(manager.Get(id, value)) << d->GetParamIDName();
      EXPECT_EQ(value, s->GetFactoryDefault()) << d->GetParamIDName();
    } else {
      unsigned int value = 0xDEADBEEF;
      EXPECT_TRUE(manager.Get(id, value)) << d->GetParamIDName();
      EXPECT_EQ(value, static_cast<IntegerDescriptor*>(d)->GetFactoryDefault())
          << d->GetParamIDName();
    }
  }
  std::string name;
  EXPECT_TRUE(manager.Get(0x663F2B65, name));
  EXPECT_EQ(name, "zyn-kr-9");
}

// The store takes every state of the preset exchange, and only those.
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
  manager.Set(values::kRegisterLoadParamID, 41u);
  EXPECT_EQ(manager.Get(values::kRegisterLoadParamID), 40u) << "presets run 0 to 40";
}

}  // namespace
