// The Config menu's part of the system catalogue: the unit's network identity
// and addresses, SNMP traps, front-panel behaviour, alarm suppression, fan,
// reboot and factory reset, the panel lock, the system password and network
// discovery. Tables only: one line per parameter, built by the generic
// catalogue builder.
//
// Each network address exists four times: the plain parameter that menus and
// clients use (mapped by IP configuration onto the _Static or _DHCP one, so
// it is itself neither kept nor in presets), the _Static address the user
// sets, the _DHCP one the DHCP server gave, and for address and mask the
// _Actual one in use.
#include <string>

#include "config/descriptors/catalogue_builder.h"
#include "config/descriptors/param_descriptors_system.h"
#include "support/product_id.h"
#include "support/serial_number.h"

namespace zyn {
namespace config {
namespace catalogue {
namespace {

std::string SoftwareVersionText() { return kSoftwareVersion; }

// The front-panel lock's fixed feature number.
constexpr eFeature_t kFrontPanelLockFeature = static_cast<eFeature_t>(2);

constexpr unsigned int kSNMPEnableID = 0x2A959211;
constexpr unsigned int kIPAddressID = 0x33A97ED1;
constexpr unsigned int kSubnetMaskID = 0xF39DDE8A;
constexpr unsigned int kDefaultGatewayID = 0x57A428C9;

// clang-format off
constexpr const char kDottedQuad[] = "^([0-9]{1,3}\\.){3}[0-9]{1,3}$";
constexpr const char kHostName[] = "^[A-Za-z0-9][A-Za-z0-9-]*$";

constexpr const char* kNetwork[] = {"network_config"};
constexpr const char* kVolatileNetwork[] = {"volatile", "network_config"};
constexpr const char* kReadonlyNetwork[] = {"readonly", "network_config"};
constexpr const char* kReadonlyVolatileNetwork[] = {"readonly", "volatile", "network_config"};
constexpr const char* kAlarmSuppress[] = {"alarm_suppress"};
constexpr const char* kPanelHidden[] = {"panel_hidden"};
constexpr const char* kVolatileClass[] = {"volatile"};
constexpr const char* kPasswordClasses[] = {"volatile", "password", "rest_hidden"};

constexpr EnumValue kIPConfigModes[] = {{0, "DHCP"}, {1, "Static Addr", "Static"}};
constexpr EnumValue kNormalSuppress[] = {{0, "Normal"}, {1, "Suppress"}};
constexpr EnumValue kScreenSaver[] = {{0, "Off"}, {1, "On (ZYN Logo)", "On"}};
constexpr EnumValue kHiddenMenus[] = {{0, "Show All", "ShowAll"}, {1, "Hide Inactive", "Hide"}};
constexpr EnumValue kSNMPEnable[] = {{0, "Disabled"}, {1, "Enable 1"}, {2, "Enable Both"}, {3, "Enable 2"}};
constexpr EnumValue kFanSpeeds[] = {{0, "Auto"}, {1, "Low"}, {2, "Medium"}, {3, "High"}};
// Panel prompts: the idle value shows how to start; the third text of the
// others is the prompt shown while that value is up.
constexpr EnumValue kFactoryChoices[] = {{0, "Adj=Set"}, {1, "FACTORY", "wFACTORY", "AdjPB=Recall"}, {2, "HARD FACTORY", "hFACTORY", "AdjPB=Recall"}};
constexpr EnumValue kRebootSteps[] = {{0, "Reboot?", "Reboot", "Both=Reboot"}, {1, "Confirm?", "Confirm?", "Up to Confirm"}, {2, "Rebooting", "Rebootng"}};
constexpr EnumValue kLock[] = {{0, "Unlocked"}, {1, "Locked"}};
constexpr EnumValue kDisableEnable[] = {{0, "Disable"}, {1, "Enable"}};

constexpr IntAttribute kReverseMapSelector[] = {{"useAsReverseMapID", 1}};
constexpr unsigned int kMappedAddresses[] = {kIPAddressID, kSubnetMaskID, kDefaultGatewayID};
constexpr unsigned int kSNMPTrapSettings[] = {0x842038D2, 0xC599BE36, 0x1DADD0EE, 0x6769974C};
constexpr unsigned int kSNMPSwitch[] = {kSNMPEnableID};
constexpr RelationEntry kEnabledByTrap1[] = {{"enabled_by", kSNMPEnableID, 1}, {"enabled_by", kSNMPEnableID, 2}};
constexpr RelationEntry kEnabledByTrap2[] = {{"enabled_by", kSNMPEnableID, 2}, {"enabled_by", kSNMPEnableID, 3}};

constexpr CatalogueRow kConfigRows[] = {
    String(0x663F2B65, "eParamID_SystemName", "System Name", "Sys Name").Text(1, 20, "zyn-kr-9").RegEx(kHostName).Store(kUnitKept).Feature(eFeature_Network).Classes(kNetwork).Menu(kConfigMenuGroup, "1.1"),
    Enum(0xAFA99192, "eParamID_IPConfig", "IP Config", "IP Cfg").Values(kIPConfigModes).Store(kUnitKept).Feature(eFeature_Network).Classes(kVolatileNetwork).IntAttributes(kReverseMapSelector).Dependents(kMappedAddresses).Menu(kConfigMenuGroup, "2.1"),
    String(0x33A97ED1, "eParamID_IPAddress", "IP Address", "IP Addr").Text(7, 15, "0.0.0.0").RegEx(kDottedQuad).Store(kVolatile).Feature(eFeature_Network).Classes(kNetwork).Menu(kConfigMenuGroup, "2.2"),
    String(0x758A24AD, "eParamID_IPAddress_Static", "IP Address", "IP Addr Static").Text(7, 15, "192.168.0.2").RegEx(kDottedQuad).Store(kUnitKept).Feature(eFeature_Network).Classes(kNetwork),
    String(0xAFF7019F, "eParamID_IPAddress_DHCP", "IP Address", "IP Addr DHCP").Text(0, 15, "0.0.0.0").Store(kStatus).Feature(eFeature_Network).Classes(kReadonlyNetwork),
    String(0xCE5949B0, "eParamID_IPAddress_Actual", "IP Address", "IP Addr").Text(0, 15, "NOT CONFIGURED").Store(kStatus).Feature(eFeature_Network).Classes(kReadonlyNetwork).Menu(kStatusMenuGroup, "6.4"),
    String(0xF39DDE8A, "eParamID_SubnetMask", "Subnet Mask", "SbnetMsk").Text(7, 15, "0.0.0.0").RegEx(kDottedQuad).Store(kVolatile).Feature(eFeature_Network).Classes(kNetwork).Menu(kConfigMenuGroup, "2.3"),
    String(0x427B29E2, "eParamID_SubnetMask_Static", "Subnet Mask", "SbnetMsk").Text(7, 15, "255.255.255.0").RegEx(kDottedQuad).Store(kUnitKept).Feature(eFeature_Network).Classes(kNetwork),
    String(0x2BB63195, "eParamID_SubnetMask_DHCP", "Subnet Mask", "SbnetMsk").Text(0, 15, "0.0.0.0").Store(kStatus).Feature(eFeature_Network).Classes(kReadonlyNetwork),
    String(0xCAD9A5FE, "eParamID_SubnetMask_Actual", "Subnet Mask", "SbnetMsk").Text(0, 15, "NOT CONFIGURED").Store(kStatus).Feature(eFeature_Network).Classes(kReadonlyNetwork).Menu(kStatusMenuGroup, "6.5"),
    String(0x57A428C9, "eParamID_DefaultGateway", "Default Gateway", "DfltGtwy").Text(7, 15, "0.0.0.0").RegEx(kDottedQuad).Store(kVolatile).Feature(eFeature_Network).Classes(kVolatileNetwork).Menu(kConfigMenuGroup, "2.4"),
    String(0x32E4B9C8, "eParamID_DefaultGateway_Static", "Default Gateway", "DfltGtwy").Text(7, 15, "192.168.0.1").RegEx(kDottedQuad).Store(kUnitKept).Feature(eFeature_Network).Classes(kVolatileNetwork),
    String(0x5BB39090, "eParamID_DefaultGateway_DHCP", "Default Gateway", "DfltGtwy").Text(0, 15, "0.0.0.0").Store(kStatus).Feature(eFeature_Network).Classes(kReadonlyVolatileNetwork),
    String(0x01B52974, "eParamID_SoftwareVersion", "Software Version", "SW Ver").TextFrom(&SoftwareVersionText).Store(kStatus).Feature(eFeature_Network).Classes(kReadonlyNetwork).Menu(kStatusMenuGroup, "6.1"),
    String(0x55832823, "eParamID_FormattedSerialNumber", "Serial Number", "Ser Num").TextFrom(&SerialNumber_KR9::GetFormattedSerialNumber).Store(kStatus).Feature(eFeature_Network).Classes(kReadonlyNetwork).Menu(kStatusMenuGroup, "6.2"),
    String(0x0FA846F6, "eParamID_MACAddress", "MAC Address", "MAC Addr").TextFrom(&SerialNumber_KR9::GetMacAddress).Store(kStatus).Feature(eFeature_Network).Classes(kReadonlyNetwork).Menu(kStatusMenuGroup, "6.3"),
    Integer(0x317F9771, "eParamID_DisplayIntensity", "Display Intensity", "DpyInten").Range(25, 100, 100).Step(25).Units("%").Store(kUnitSetting).Menu(kConfigMenuGroup, "3.1"),
    Enum(0x78E781AF, "eParamID_ScreenSaverEnable", "Screen Saver", "ScreenSaver").Values(kScreenSaver).Default(1).Store(kUnitSetting).Menu(kConfigMenuGroup, "3.2").Describe("When on, the rolling ZYN logo screen saver shows on the alphanumeric display after 3 minutes without a front-panel button press"),
    Enum(0x82DB76E8, "eParamID_HiddenMenus", "Hidden Menus", "HidMenus").Values(kHiddenMenus).Store(kUnitSetting).Menu(kConfigMenuGroup, "3.3"),
    Enum(0x2A959211, "eParamID_SNMPEnable", "SNMP Enable", "SNMP En").Values(kSNMPEnable).Store(kUnitSetting).Feature(eFeature_Network).Dependents(kSNMPTrapSettings).Menu(kConfigMenuGroup, "4.0"),
    String(0x842038D2, "eParamID_SNMPTrapIP1", "SNMP Trap Dest 1", "TrapIP1").Text(7, 15, "0.0.0.0").RegEx(kDottedQuad).Store(kUnitSetting).Feature(eFeature_Network).Relations(kEnabledByTrap1).DependsOn(kSNMPSwitch).Menu(kConfigMenuGroup, "4.1"),
    Integer(0xC599BE36, "eParamID_SNMPPort1", "SNMP Trap Port 1", "TrapPrt1").Range(1, 65535, 162).Store(kUnitSetting).Feature(eFeature_Network).Relations(kEnabledByTrap1).DependsOn(kSNMPSwitch).Menu(kConfigMenuGroup, "4.2"),
    String(0x1DADD0EE, "eParamID_SNMPTrapIP2", "SNMP Trap Dest 2", "TrapIP2").Text(7, 15, "0.0.0.0").RegEx(kDottedQuad).Store(kUnitSetting).Feature(eFeature_Network).Relations(kEnabledByTrap2).DependsOn(kSNMPSwitch).Menu(kConfigMenuGroup, "4.3"),
    Integer(0x6769974C, "eParamID_SNMPPort2", "SNMP Trap Port 2", "TrapPrt2").Range(1, 65535, 162).Store(kUnitSetting).Feature(eFeature_Network).Relations(kEnabledByTrap2).DependsOn(kSNMPSwitch).Menu(kConfigMenuGroup, "4.4"),
    Enum(0x02206D00, "eParamID_Vid1SuppressFormatAlarm", "Vid 1 Format Alarm", "V1FmtAlm").Values(kNormalSuppress).Store(kUnitSetting).Classes(kAlarmSuppress).Menu(kConfigMenuGroup, "6.1"),
    Enum(0xCF864E5C, "eParamID_Vid2SuppressFormatAlarm", "Vid 2 Format Alarm", "V2FmtAlm").Values(kNormalSuppress).Store(kUnitSetting).Classes(kAlarmSuppress).Menu(kConfigMenuGroup, "6.2"),
    Enum(0x65591C3D, "eParamID_SuppressPSAlarm", "Power Supply Alarm", "PS Alarm").Values(kNormalSuppress).Store(kUnitSetting).Classes(kAlarmSuppress).Menu(kConfigMenuGroup, "6.3"),
    Enum(0x844F0346, "eParamID_SuppressReferenceAlarm", "Reference Alarm", "RefAlarm").Values(kNormalSuppress).Store(kUnitSetting).Classes(kAlarmSuppress).Menu(kConfigMenuGroup, "6.4"),
    Enum(0x100BD151, "eParamID_FanSpeed", "Fan Speed", "FanSpeed").Values(kFanSpeeds).Store(kUnitSetting).Menu(kConfigMenuGroup, "7.1"),
    Enum(0xBD3F509A, "eParamID_SoftwareReset", nullptr, nullptr).Values(kRebootSteps).Store(kVolatile).Menu(kConfigMenuGroup, "7.2"),
    Enum(0xEA4F2E24, "eParamID_FactorySettings", "Factory Preset", "Factory").Values(kFactoryChoices).Store(kVolatile).Classes(kPanelHidden).Menu(kConfigMenuGroup, "7.3"),
};

constexpr CatalogueRow kFrontPanelLock = Enum(0x4D575A8E, "eParamID_FrontPanelLock", "Front Panel Lock", "FP Lock").Values(kLock).Range(0, 1, 0).Feature(kFrontPanelLockFeature).Store(kUnitKept).Classes(kPanelHidden).Menu(kConfigMenuGroup, "3.5");
constexpr CatalogueRow kSystemPassword = String(0x8280B344, "eParamID_SystemPassword", "System Password", "Password").Text(0, 20, "").Store(kUnitSetting).Feature(eFeature_Network).Classes(kPasswordClasses);

constexpr CatalogueRow kDiscoveryRows[] = {
    Enum(0xCF05CD00, "eParamID_SSDP_Enable_Host", "UPnP Host", "UPnP").Values(kDisableEnable).Default(1).Store(kUnitSetting).Feature(eFeature_Network).Classes(kVolatileClass).Menu(kConfigMenuGroup, "5.1"),
    Enum(0x6B6137DA, "eParamID_SSDP_Enable_Proxy", "UPnP Proxy", "UPnProxy").Values(kDisableEnable).Store(kUnitSetting).Feature(eFeature_Network).Classes(kVolatileClass).Menu(kConfigMenuGroup, "5.2"),
    String(0x3BFF8D54, "eParamID_NetworkServices", "Network Services", "NetSrv").Text(0, 2048, "[]").Store(kVolatile).Feature(eFeature_Network).Describe("The value is a JSON array of Network Services discovered by the unit"),
};
// clang-format on

}  // namespace
}  // namespace catalogue
}  // namespace config
}  // namespace zyn

namespace catalogue = zyn::config::catalogue;

void createParamDescriptors_Config() { catalogue::AddCatalogueRows(catalogue::kConfigRows); }
void createParamDescriptor_FrontPanelLock() {
  catalogue::AddCatalogueRow(catalogue::kFrontPanelLock);
}
void createParamDescriptor_SystemPassword() {
  catalogue::AddCatalogueRow(catalogue::kSystemPassword);
}
void createDiscoveryDescriptors() { catalogue::AddCatalogueRows(catalogue::kDiscoveryRows); }
