// The system catalogue's identity and status parameters, the analogue, 3G,
// genlock and MADI standards of the System menu, the LEDs, alarms, VCP, and
// the front panel's menu bookkeeping. Tables only: one line per parameter,
// built by the generic catalogue builder.
#include "config/descriptors/param_descriptors_system.h"

#include <string>

#include "config/descriptors/catalogue_builder.h"
#include "support/product_id.h"

namespace zyn {
namespace config {
namespace catalogue {
namespace {

std::string ProductIDText() {
  const char* id = CProductID().getProductID();
  return id != nullptr ? id : "";
}

// clang-format off
constexpr const char* kVolatileClass[] = {"volatile"};
constexpr const char* kHiddenParam[] = {"hidden_param"};

constexpr EnumValue kOffOn[] = {{0, "Off"}, {1, "On"}};
constexpr EnumValue kDisableEnable[] = {{0, "Disable"}, {1, "Enable"}};
constexpr EnumValue kAnalogInputs[] = {{0, "Composite", "Cmpst"}, {1, "Component", "Cmpnt"}};
// In the order of the frame-rate family suffixes "5923", "5025", "6024".
constexpr EnumValue kFrameRateFamilies[] = {{0, "59.94/23.98", "5994"}, {1, "50/25", "50"}, {2, "60/24", "60"}};
constexpr EnumValue kGenlockSources[] = {{0, "Reference", "Ref"}, {1, "Vid 1 Input", "Vid1 In"}, {2, "Vid 2 Input", "Vid2 In"}, {3, "Free Run", "FreeRun"}};
constexpr EnumValue kComponentLevels[] = {{0, "SMPTE/EBU N10", "SMPTE"}, {1, "Betacam 525", "Beta"}, {2, "Betacam 525J", "Beta J"}, {3, "RGB"}};
constexpr EnumValue kSRCModes[] = {{0, "Auto"}, {1, "Always On", "On"}, {2, "Off"}};
constexpr EnumValue kHDMIRanges[] = {{0, "SMPTE (16-235)", "SMPTE"}, {1, "Full (0-255)", "Full"}};
constexpr EnumValue kDownconvModes[] = {{0, "Anamorphic", "Anamrphc"}, {1, "Letterbox", "Ltrbox"}, {2, "Crop"}};
constexpr EnumValue kAnalogAudioLevels[] = {{0, "+24 dBu"}, {1, "+18 dBu"}, {2, "+15 dBu"}, {3, "+12 dBu"}};
constexpr EnumValue k3GLevelDetect[] = {{0, "Auto Detect", "Auto"}, {1, "Level A", "LevelA"}, {2, "Level B", "LevelB"}};
constexpr EnumValue kNTSCStandards[] = {{0, "NTSC (7.5 IRE)", "7.5 IRE"}, {1, "NTSC-J (0 IRE)", "0 IRE"}};
constexpr EnumValue kLEDStates[] = {{0, "Off"}, {1, "Green"}, {2, "Amber"}, {3, "Red"}};
constexpr EnumValue kAlarmStates[] = {{0, "Normal"}, {1, "Alarm"}};
constexpr EnumValue kVCPStates[] = {{0, "Idle"}, {1, "Active"}, {2, "Error"}};
constexpr EnumValue kPresence[] = {{0, "Not Present", "Absent"}, {1, "Present"}};
constexpr EnumValue kMADIChannels[] = {{0, "64 Channel", "64 Ch"}, {1, "56 Channel", "56 Ch"}};
constexpr EnumValue kRunPause[] = {{0, "Run"}, {1, "Pause"}};
// The front panel's menu buttons, numbered as their menu groups.
constexpr EnumValue kMenuButtons[] = {{1, "Remote"}, {2, "System"}, {3, "Config"}, {4, "Preset"}, {5, "Status"}, {6, "Output"}, {7, "Video Proc"}, {8, "Video Output"}, {9, "Audio Proc"}, {10, "Audio Output"}};

constexpr CatalogueRow kTestID = Integer(0x01234567, "eParamID_TestID", nullptr, nullptr).Range(0, 0xFFFFFFFF, 0).Store(kVolatile);
constexpr CatalogueRow kStatusMode = Enum(0x3C627C28, "eParamID_Status", "Status Mode", "Status").Values(kOffOn).Store(kVolatile);
constexpr CatalogueRow kPersistStatus = Enum(0xDA94DCB9, "eParamID_PersistStatus", "Persist Status Mode", "PersStat").Values(kOffOn).Store(kUnitSetting).Menu(kConfigMenuGroup, "3.4");
constexpr CatalogueRow kProductID = String(0x6A7FCEB2, "eParamID_ProductID", "Product ID", "ProdID").TextFrom(&ProductIDText).Store(kVolatile).Classes(kVolatileClass).Describe("An identifier used for product specific features and behaviors");

constexpr CatalogueRow kSystemRows[] = {
    Enum(0x3DE4C4BE, "eParamID_AnalogVideoInputSelect", "Analog Video Input", "Anlg In").Values(kAnalogInputs).Menu(kSystemMenuGroup, "1.1"),
    Enum(0xBAE42C96, "eParamID_ComponentInputLevel", "Analog In Format", "AnaInFmt").Values(kComponentLevels).Menu(kSystemMenuGroup, "1.2"),
    Enum(0xDF66BC8C, "eParamID_NTSCLevels", "NTSC Standard", "NTSC Std").Values(kNTSCStandards).Menu(kSystemMenuGroup, "1.3"),
    Enum(0x66F60E82, "eParamID_SDI1_3G_B_Detect", "SDI1 3G Detect", "S1-3GDet").Values(k3GLevelDetect).Menu(kSystemMenuGroup, "1.4"),
    Enum(0xF4DEA58B, "eParamID_Fiber1_3G_B_Detect", "Fiber1 3G Detect", "F1-3GDet").Values(k3GLevelDetect).Menu(kSystemMenuGroup, "1.5"),
    Enum(0x87551011, "eParamID_SDI2InputOverride", "SDI2 Input Protect", "SDI2Prot").Values(kOffOn).Menu(kSystemMenuGroup, "1.6"),
    Enum(0xA440E890, "eParamID_Fiber2InputOverride", "Fiber2 Input Protect", "Fib2InOv").Values(kOffOn).Menu(kSystemMenuGroup, "1.7"),
    Enum(0x615889C5, "eParamID_GenlockSource", "Genlock source", "GenLkSrc").Values(kGenlockSources).Menu(kSystemMenuGroup, "2.1"),
    Enum(0x23130FDA, "eParamID_FrameRateMode", "Output Frame Rates", "Fm Rates").Values(kFrameRateFamilies).Menu(kSystemMenuGroup, "2.2"),
    Enum(0x98A628CA, "eParamID_FRCEnable", "FRC Enable", "FRC En").Values(kDisableEnable).Default(1).Menu(kSystemMenuGroup, "2.3"),
    Enum(0x3C3CD765, "eParamID_AESEBUAudioSRCMode", "AES/EBU SRC Mode", "AESSRCMd").Values(kSRCModes).Menu(kSystemMenuGroup, "3.1"),
    Enum(0xA7A9708D, "eParamID_AnalogAudioStandard", "Analog Audio Std", "AnaAuStd").Values(kAnalogAudioLevels).Menu(kSystemMenuGroup, "3.2"),
    Enum(0x4F2B0AE1, "eParamID_ComponentOutputLevel", "Cmponent Out Format", "CmpOtFmt").Values(kComponentLevels).Menu(kOutputMenuGroup, "5.1"),
    Enum(0x213D4C8C, "eParamID_CompositeDownconvMode", "Composite Downconv", "CmpstOut").Values(kDownconvModes).Menu(kOutputMenuGroup, "5.2"),
    Enum(0xA2EDE6E1, "eParamID_HDMIRGBRange", "HDMI RGB Range", "HDMI RGB").Values(kHDMIRanges).Menu(kOutputMenuGroup, "5.3"),
};

constexpr CatalogueRow kLEDRows[] = {
    Enum(0x1E6513C9, "eParamID_LED_Vid1", "Video In 1", "Vid 1").Values(kLEDStates).Store(kStatus).Feature(eFeature_System),
    Enum(0x0846E0FE, "eParamID_LED_Vid2", "Video In 2", "Vid 2").Values(kLEDStates).Store(kStatus).Feature(eFeature_System),
    Enum(0x35CCA5D1, "eParamID_LED_UFC1", "UFC 1", "UFC1").Values(kLEDStates).Store(kStatus).Feature(eFeature_System),
    Enum(0xEEF48360, "eParamID_LED_UFC2", "UFC 2", "UFC2").Values(kLEDStates).Store(kStatus).Feature(eFeature_System),
    Enum(0xE38642F7, "eParamID_LED_FRCMode", "FRC Mode", "FRCMode").Values(kLEDStates).Store(kStatus).Feature(eFeature_System),
    Enum(0xFB27A1CB, "eParamID_LED_FRCStatus", "FRC Status", "FRCStats").Values(kLEDStates).Store(kStatus).Feature(eFeature_System),
    Enum(0x395E6076, "eParamID_LED_Power1", "Power Supply 1", "Power1").Values(kLEDStates).Store(kStatus).Feature(eFeature_System),
    Enum(0xE4BFC577, "eParamID_LED_Power2", "Power Supply 2", "Power2").Values(kLEDStates).Store(kStatus).Feature(eFeature_System),
    Enum(0x8435130D, "eParamID_LED_Remote", "Remote", "Remote").Values(kLEDStates).Store(kStatus).Feature(eFeature_System),
    Enum(0xDA0D059A, "eParamID_LED_Alarm", "Alarm LED", "AlarmLED").Values(kLEDStates).Store(kStatus).Feature(eFeature_System),
    Enum(0xB0F152CE, "eParamID_LED_EXT", "EXT", "EXT").Values(kLEDStates).Store(kStatus).Feature(eFeature_System),
    Enum(0x635ABFAB, "eParamID_LED_LAN", "LAN", "LAN").Values(kLEDStates).Store(kStatus).Feature(eFeature_System),
    Enum(0xD49160D0, "eParamID_LED_Keyer", "Keyer", "Keyer").Values(kLEDStates).Store(kStatus).Feature(eFeature_System),
    Enum(0x877A38F1, "eParamID_LED_Reference", "Reference", "Ref").Values(kLEDStates).Store(kStatus).Feature(eFeature_System),
    Enum(0x5016A3F6, "eParamID_LED_FormatError1", "Format Error 1", "FmtErr 1").Values(kLEDStates).Store(kStatus).Feature(eFeature_System),
    Enum(0xECAF9714, "eParamID_LED_FormatError2", "Format Error 2", "FmtErr 2").Values(kLEDStates).Store(kStatus).Feature(eFeature_System),
    Enum(0x68863832, "eParamID_LED_ProcAmp1", "ProcAmp 1", "PA 1").Values(kLEDStates).Store(kStatus).Feature(eFeature_System),
    Enum(0xB4F7FAF1, "eParamID_LED_ProcAmp2", "ProcAmp 2", "PA 2").Values(kLEDStates).Store(kStatus).Feature(eFeature_System),
    // Flashes the front panel so that the unit can be found in a rack.
    Enum(0x926EE46F, "eParamID_LED_Identify", "Identify LED", "ID LED").Values(kOffOn).Store(kVolatile).Feature(eFeature_System),
};

constexpr CatalogueRow kAlarmRows[] = {
    Enum(0x53895054, "eParamID_PS1_Alarm", "PS1 Alarm", "PS1Alarm").Values(kAlarmStates).Store(kStatus).Feature(eFeature_System).Menu(kStatusMenuGroup, "1.1"),
    Enum(0xCDF44D79, "eParamID_PS2_Alarm", "PS2 Alarm", "PS2Alarm").Values(kAlarmStates).Store(kStatus).Feature(eFeature_System).Menu(kStatusMenuGroup, "1.2"),
    Enum(0xAA38E232, "eParamID_TemperatureAlarm", "Temp Alarm Status", "TmpAlarm").Values(kAlarmStates).Store(kStatus).Feature(eFeature_System).Menu(kStatusMenuGroup, "1.3"),
    Enum(0xC424A6B0, "eParamID_ReferenceAlarm", "Ref1 Alarm Status", "Ref1Alrm").Values(kAlarmStates).Store(kStatus).Feature(eFeature_System).Menu(kStatusMenuGroup, "2.1"),
    Enum(0x54091D16, "eParamID_Vid1ReferenceAlarm", "Ref1 Alarm Status", "Ref1Alrm").Values(kAlarmStates).Store(kStatus).Feature(eFeature_System).Menu(kStatusMenuGroup, "2.2"),
    Enum(0x3F4AC021, "eParamID_Vid2ReferenceAlarm", "Ref2 Alarm Status", "Ref2Alrm").Values(kAlarmStates).Store(kStatus).Feature(eFeature_System).Menu(kStatusMenuGroup, "2.3"),
    Enum(0xB4E69A67, "eParamID_Format1_Alarm", "Format Alarm1", "FmtAlarm1").Values(kAlarmStates).Store(kStatus).Feature(eFeature_System).Menu(kStatusMenuGroup, "3.1"),
    Enum(0x95C3C31F, "eParamID_Format2_Alarm", "Format Alarm2", "FmtAlarm2").Values(kAlarmStates).Store(kStatus).Feature(eFeature_System).Menu(kStatusMenuGroup, "3.2"),
    Enum(0xC8ADFB2F, "eParamID_Vid1BackgroundAlarm", "Background Alarm Status", "BkgAlarm").Values(kAlarmStates).Store(kStatus).Feature(eFeature_System).Menu(kStatusMenuGroup, "4.1"),
    Enum(0x599F26B5, "eParamID_Vid2BackgroundAlarm", "Background Alarm Status", "BkgAlarm").Values(kAlarmStates).Store(kStatus).Feature(eFeature_System).Menu(kStatusMenuGroup, "4.2"),
    Enum(0x21E55F31, "eParamID_Audio1DolbyFramerAlarm", "Dolby Framer Alarm Status", "DlbySync").Values(kAlarmStates).Store(kStatus).Feature(eFeature_System).Menu(kStatusMenuGroup, "5.1"),
    Enum(0x71B993D9, "eParamID_Audio2DolbyFramerAlarm", "Dolby Framer Alarm Status", "DlbySync").Values(kAlarmStates).Store(kStatus).Feature(eFeature_System).Menu(kStatusMenuGroup, "5.2"),
    // Set by the unit when it started from its fallback software image.
    Enum(0xB429CC49, "eParamID_SafebootMode", nullptr, nullptr).Values(kOffOn).Store(kStatus).Feature(eFeature_System),
};

constexpr CatalogueRow kVCPRows[] = {
    Enum(0xEC29F65F, "eParamID_VCPMode", "VCP Mode", "VCP Mode").Values(kOffOn).Store(kUnitSetting).Menu(kDebugMenuGroup, "1.2"),
    Enum(0x07E7392F, "eParamID_VCPStatus", "VCP Status", "VCP Stat").Values(kVCPStates).Store(kStatus).Menu(kDebugMenuGroup, "1.3"),
};

constexpr CatalogueRow kMADIRows[] = {
    Enum(0x8CE1DB86, "eParamID_AudioMADIBNC_in_56ch", "MADI BNC In", "BNC In").Values(kMADIChannels).Menu(kSystemMenuGroup, "4.1"),
    Enum(0x3D3FAB16, "eParamID_AudioMADIBNC_out_56ch", "MADI BNC Out", "BNC Out").Values(kMADIChannels).Menu(kSystemMenuGroup, "4.2"),
    Enum(0xC395642B, "eParamID_AudioMADIFIB_in_56ch", "MADI FIB In", "FIB In").Values(kMADIChannels).Menu(kSystemMenuGroup, "4.3"),
    Enum(0x91AE2777, "eParamID_AudioMADIFIB_out_56ch", "MADI FIB Out", "FIB Out").Values(kMADIChannels).Menu(kSystemMenuGroup, "4.4"),
    // The channel mode each output actually uses.
    Enum(0x72FDEE01, "eParamID_AudioMADIBNC_select_out_56ch", "MADI BNC Out", "BNC Sel").Values(kMADIChannels).Store(kStatus),
    Enum(0x69303BD9, "eParamID_AudioMADIFIB_select_out_56ch", "MADI FIB Out", "FIB Sel").Values(kMADIChannels).Store(kStatus),
    Enum(0x232AB169, "eParamID_AudioMADIBNC_kill_rdy", "BNC Presence", "BNC Pres").Values(kPresence).Store(kStatus).Menu(kStatusMenuGroup, "7.1"),
    Enum(0xC4DB7FA6, "eParamID_AudioMADIFIB_kill_rdy", "FIB Presence", "FIB Pres").Values(kPresence).Store(kStatus).Menu(kStatusMenuGroup, "7.2"),
};

// The ID of the parameter last selected in a menu; 0 when none was.
constexpr CatalogueRow LastSelected(unsigned int id, const char* id_name, const char* name) {
  return Integer(id, id_name, name, "LastSel").Range(0, 0xFFFFFFFF, 0).Store(kUnitSetting).Classes(kHiddenParam);
}

constexpr CatalogueRow kCurrentlySelectedButton = Enum(0x83944A98, "eParamID_CurrentlySelectedButton", nullptr, nullptr).Values(kMenuButtons).Default(1).Store(kUnitSetting).Classes(kHiddenParam);
constexpr CatalogueRow kPauseFeatures = Enum(0x425EA639, "eParamID_PauseFeatures", "Pause Features", "PauseFtr").Values(kRunPause).Store(kVolatile).Menu(kDebugMenuGroup, "1.1");
// clang-format on

}  // namespace
}  // namespace catalogue
}  // namespace config
}  // namespace zyn

namespace catalogue = zyn::config::catalogue;

void createParamDescriptor_TestID() { catalogue::AddCatalogueRow(catalogue::kTestID); }
void createParamDescriptor_Status() { catalogue::AddCatalogueRow(catalogue::kStatusMode); }
void createParamDescriptor_PersistStatus() {
  catalogue::AddCatalogueRow(catalogue::kPersistStatus);
}
void createParamDescriptor_ProductID() { catalogue::AddCatalogueRow(catalogue::kProductID); }
void createParamDescriptors_System() { catalogue::AddCatalogueRows(catalogue::kSystemRows); }
void createParamDescriptors_LED() { catalogue::AddCatalogueRows(catalogue::kLEDRows); }
void createParamDescriptors_Alarm() { catalogue::AddCatalogueRows(catalogue::kAlarmRows); }
void createParamDescriptors_VCP() { catalogue::AddCatalogueRows(catalogue::kVCPRows); }
void createParamDescriptors_MADI() { catalogue::AddCatalogueRows(catalogue::kMADIRows); }

// clang-format off
void createParamDescriptor_LastSelectedParam() { catalogue::AddCatalogueRow(catalogue::LastSelected(0xA61BEBA5, "eParamID_LastSelectedParam", "Last Selected Param")); }
void createParamDescriptor_LastSelectedParamConfig() { catalogue::AddCatalogueRow(catalogue::LastSelected(0xA22CAC87, "eParamID_LastSelectedParamConfig", "Last Selected Config")); }
void createParamDescriptor_LastSelectedParamSystem() { catalogue::AddCatalogueRow(catalogue::LastSelected(0x3950425C, "eParamID_LastSelectedParamSystem", "Last Selected System")); }
void createParamDescriptor_LastSelectedParamVideoProc() { catalogue::AddCatalogueRow(catalogue::LastSelected(0xC61D0A4C, "eParamID_LastSelectedParamVideoProc", "Last Selected Video Proc")); }
void createParamDescriptor_LastSelectedParamAudioProc() { catalogue::AddCatalogueRow(catalogue::LastSelected(0xE1B43D6D, "eParamID_LastSelectedParamAudioProc", "Last Selected Audio Proc")); }
void createParamDescriptor_LastSelectedParamRemote() { catalogue::AddCatalogueRow(catalogue::LastSelected(0xE1845913, "eParamID_LastSelectedParamRemote", "Last Selected Remote")); }
void createParamDescriptor_LastSelectedParamPreset() { catalogue::AddCatalogueRow(catalogue::LastSelected(0x70C498DE, "eParamID_LastSelectedParamPreset", "Last Selected Preset")); }
void createParamDescriptor_LastSelectedParamOutput() { catalogue::AddCatalogueRow(catalogue::LastSelected(0x7CCDE2C4, "eParamID_LastSelectedParamOutput", "Last Selected Output")); }
void createParamDescriptor_LastSelectedParamVideoOutput() { catalogue::AddCatalogueRow(catalogue::LastSelected(0x78C8A161, "eParamID_LastSelectedParamVideoOutput", "Last Selected Video Output")); }
void createParamDescriptor_LastSelectedParamAudioOutput() { catalogue::AddCatalogueRow(catalogue::LastSelected(0x3F003E90, "eParamID_LastSelectedParamAudioOutput", "Last Selected Audio Output")); }
// clang-format on

void createParamDescriptor_CurrentlySelectedButton() {
  catalogue::AddCatalogueRow(catalogue::kCurrentlySelectedButton);
}
void createParamDescriptor_PauseFeatures() {
  catalogue::AddCatalogueRow(catalogue::kPauseFeatures);
}
