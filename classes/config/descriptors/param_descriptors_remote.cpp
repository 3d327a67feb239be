// The Remote menu's part of the system catalogue: who may control the unit,
// login, and the four GPI inputs and outputs. The GPI parameters are three
// families of four, each a pattern row instantiated from its ID table.
#include "config/descriptors/catalogue_builder.h"
#include "config/descriptors/param_descriptors_system.h"

namespace zyn {
namespace config {
namespace catalogue {
namespace {

// clang-format off
constexpr const char* kVolatileClass[] = {"volatile"};
constexpr const char* kGpio[] = {"gpio"};

constexpr EnumValue kRemoteControl[] = {{0, "Local+Remote", "Loc+Rem"}, {1, "Local Only", "Local"}, {2, "Remote Only", "Remote"}};
constexpr EnumValue kAuthentication[] = {{0, "Disabled"}, {1, "Login"}};
// What a GPI output signals.
constexpr EnumValue kGPIOutSources[] = {{0, "No Action", "NoAction"}, {1, "Alarm"}, {2, "No Video1", "NoVideo1"}, {3, "No Video2", "NoVideo2"}, {4, "No Ref"}, {5, "PS Alarm", "PSAlarm"}, {6, "Temp Alarm", "TmpAlarm"}};
// What the unit does when a GPI input is asserted.
constexpr EnumValue kGPIInResponses[] = {{0, "No Action", "NoAction"}, {1, "Recall Preset 1", "Preset 1"}, {2, "Recall Preset 2", "Preset 2"}, {3, "Recall Preset 3", "Preset 3"}, {4, "Recall Preset 4", "Preset 4"}};
// The state of an output line.
constexpr EnumValue kGPILine[] = {{0, "Inactive"}, {1, "Active"}};

constexpr CatalogueRow kRemoteRows[] = {
    Enum(0x1B379BEA, "eParamID_RemoteControl", "Remote Control", "Rmt Cont").Values(kRemoteControl).Store(kUnitSetting).Menu(kRemoteMenuGroup, "1.0"),
    Enum(0xB4682D20, "eParamID_Authentication", "Authentication", "Auth").Values(kAuthentication).Store(kUnitSetting).Feature(eFeature_Network).Classes(kVolatileClass).Menu(kRemoteMenuGroup, "1.1"),
};

constexpr CatalogueRow kGPIInResponse = Enum(0, "eParamID_GPIIN%dResponse", "GPI IN%d Response", "GPI%dResp").Values(kGPIInResponses).Store(kUnitSetting).Menu(kRemoteMenuGroup, "2.%d");
constexpr FamilyMember kGPIInResponseIDs[] = {{0x6DB9E0CF, 1}, {0xC4139BC5, 2}, {0xC287A08D, 3}, {0xE2A5E4B5, 4}};
constexpr CatalogueRow kGPIOut = Enum(0, "eParamID_GPI%dOut", "GPI %d Out", "GPI%dOut").Values(kGPIOutSources).Store(kUnitSetting).Menu(kRemoteMenuGroup, "3.%d");
constexpr FamilyMember kGPIOutIDs[] = {{0x100219A2, 1}, {0x174A13FF, 2}, {0x3E0B4D0F, 3}, {0x1285A7D0, 4}};
constexpr CatalogueRow kGPIOutLine = Enum(0, "eParamID_GPI_OUT_%d", "GPI_OUT %d", "GPI_OUT%d").Values(kGPILine).Store(kVolatile).Classes(kGpio);
constexpr FamilyMember kGPIOutLineIDs[] = {{0xB8F229A7, 1}, {0xDBB1AFF6, 2}, {0x0E5201F6, 3}, {0x40001052, 4}};
// clang-format on

}  // namespace
}  // namespace catalogue
}  // namespace config
}  // namespace zyn

void createParamDescriptors_Remote() {
  namespace catalogue = zyn::config::catalogue;
  catalogue::AddCatalogueRows(catalogue::kRemoteRows);
  catalogue::AddCatalogueFamily(catalogue::kGPIInResponse, catalogue::kGPIInResponseIDs);
  catalogue::AddCatalogueFamily(catalogue::kGPIOut, catalogue::kGPIOutIDs);
  catalogue::AddCatalogueFamily(catalogue::kGPIOutLine, catalogue::kGPIOutLineIDs);
}
