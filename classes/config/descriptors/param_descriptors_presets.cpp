// The presets ("registers") of the system catalogue: the commands that
// recall, save, export (load) and import (store) a preset, each with its
// result parameter, and the names of presets 0 to 40. Preset 0 is the
// factory preset, whose name is fixed.
//
// Result parameters take the hand-over states of the preset exchange
// (presets_param_vector.h): the requester sets "in progress", the owner of
// the settings answers with done or a failure. So their values are numbered
// by state, not from 0, and a result at rest reads as done. The save and
// store commands take 0 too, so that a request to overwrite the factory
// preset reaches the owner, which refuses it, instead of being clamped into
// preset 1.
#include "config/descriptors/catalogue_builder.h"
#include "config/descriptors/param_descriptors.h"
#include "config/descriptors/param_descriptors_system.h"
#include "config/values/presets_param_vector.h"

namespace zyn {
namespace config {
namespace catalogue {
namespace {

constexpr unsigned int kInProgress = values::kRegisterInProgress;
constexpr unsigned int kDone = values::kRegisterDone;
constexpr unsigned int kFailed = values::kRegisterFailed;
constexpr unsigned int kEmpty = values::kRegisterEmpty;
constexpr unsigned int kLastPreset = kPresetNameCount - 1;

// clang-format off
constexpr const char* kVolatileClass[] = {"volatile"};
constexpr const char* kReadonlyVolatile[] = {"readonly", "volatile"};
constexpr const char* kReadonlyRestHidden[] = {"readonly", "rest_hidden"};

constexpr EnumValue kRecallResults[] = {{kInProgress, "Recalling...", "Loading"}, {kDone, "Recall Complete", "Complete"}, {kEmpty, "Preset Empty", "Empty"}, {kFailed, "Recall Failed", "Failed"}};
constexpr EnumValue kSaveResults[] = {{kInProgress, "Storing...", "Storing"}, {kDone, "Store Complete", "Complete"}, {kFailed, "Store Failed", "Failed"}};
constexpr EnumValue kExportResults[] = {{kInProgress, "Exporting...", "Exportng"}, {kDone, "Export Complete", "Complete"}, {kFailed, "Export Failed", "Failed"}};
constexpr EnumValue kImportResults[] = {{kInProgress, "Importing...", "Importng"}, {kDone, "Import Complete", "Complete"}, {kFailed, "Import Failed", "Failed"}};
// A load hands a preset out to a file: it shows the export texts.
constexpr EnumValue kLoadResults[] = {{kInProgress, "Exporting...", "Exportng"}, {kDone, "Export Complete", "Complete"}, {kEmpty, "Preset Empty", "Empty"}, {kFailed, "Export Failed", "Failed"}};
// A store takes a file in as a preset; the owner rejects an image it cannot use.
constexpr EnumValue kStoreResults[] = {{kInProgress, "Storing...", "Storing"}, {kDone, "Store Complete", "Complete"}, {kEmpty, "Store Rejected", "Rejected"}, {kFailed, "Store Failed", "Failed"}};

constexpr CatalogueRow kPresetRows[] = {
    Integer(0x05CDE9A4, "eParamID_RegisterRecall", "Recall Preset", "RecllPre").Range(0, kLastPreset, 1).Store(kVolatile).Classes(kVolatileClass).Menu(kPresetMenuGroup, "2.1"),
    Enum(0x4000E4C8, "eParamID_RegisterRecallResult", "Recall Result", "RecallR").Values(kRecallResults).Default(kDone).Store(kVolatile).Classes(kReadonlyVolatile),
    Integer(0xAAB50096, "eParamID_RegisterSave", "Store Preset", "Pre Stor").Range(0, kLastPreset, 1).Store(kVolatile).Classes(kVolatileClass).Menu(kPresetMenuGroup, "2.2"),
    Enum(0x7A9D2C71, "eParamID_RegisterSaveResult", "Store Result", "Store R").Values(kSaveResults).Default(kDone).Store(kVolatile).Classes(kReadonlyVolatile),
    Enum(0x8D7C3560, "eParamID_RegisterExportResult", "Export Result", "ExptR").Values(kExportResults).Default(kDone).Store(kVolatile).Classes(kReadonlyVolatile),
    Enum(0x380BDFA0, "eParamID_RegisterImportResult", "Import Result", "ImptR").Values(kImportResults).Default(kDone).Store(kVolatile).Classes(kReadonlyVolatile),
    Integer(0xCF27576A, "eParamID_RegisterLoad", "Load Preset", "LoadP").Range(0, kLastPreset, 1).Store(kVolatile).Classes(kVolatileClass),
    Enum(0xC2FB5816, "eParamID_RegisterLoadResult", "Load Result", "LoadR").Values(kLoadResults).Default(kDone).Store(kVolatile).Classes(kReadonlyVolatile),
    Integer(0x8266D0C6, "eParamID_RegisterStore", "Store Preset", "StoreP").Range(0, kLastPreset, 1).Store(kVolatile).Classes(kVolatileClass),
    Enum(0xE2755FEE, "eParamID_RegisterStoreResult", "Store Result", "StoreR").Values(kStoreResults).Default(kDone).Store(kVolatile).Classes(kReadonlyVolatile),
};

constexpr CatalogueRow kPresetName = String(0, "eParamID_PresetName_%d", "Preset %d", "Name Pre").Text(1, 20, "Preset %d").Store(kUnitSetting).Menu(kPresetMenuGroup, "1.%d").NumberedBy("presetNumber");
constexpr CatalogueRow kFactoryPresetName = String(kFactoryPresetNameParamID, "eParamID_PresetName_%d", "Factory Preset", "Factory").Text(1, 20, "Factory values").Store(kUnitKept).Classes(kReadonlyRestHidden).Menu(kPresetMenuGroup, "1.%d").NumberedBy("presetNumber");
constexpr FamilyMember kPresetNameIDs[kPresetNameCount] = {
    {0x383AA021, 0},  {0x18C68409, 1},  {0x15C67F50, 2},  {0x16C680E3, 3},  {0x1BC688C2, 4},  {0x1CC68A55, 5},
    {0x19C6859C, 6},  {0x1AC6872F, 7},  {0x1FC68F0E, 8},  {0x20C690A1, 9},  {0x398225BB, 10}, {0x38822428, 11},
    {0x3B8228E1, 12}, {0x3A82274E, 13}, {0x3D822C07, 14}, {0x3C822A74, 15}, {0x3F822F2D, 16}, {0x3E822D9A, 17},
    {0x31821923, 18}, {0x30821790, 19}, {0xA77A8420, 20}, {0xA87A85B3, 21}, {0xA97A8746, 22}, {0xAA7A88D9, 23},
    {0xAB7A8A6C, 24}, {0xAC7A8BFF, 25}, {0xAD7A8D92, 26}, {0xAE7A8F25, 27}, {0xAF7A90B8, 28}, {0xB07A924B, 29},
    {0xAD7CCC29, 30}, {0xAC7CCA96, 31}, {0xAB7CC903, 32}, {0xAA7CC770, 33}, {0xB17CD275, 34}, {0xB07CD0E2, 35},
    {0xAF7CCF4F, 36}, {0xAE7CCDBC, 37}, {0xB57CD8C1, 38}, {0xB47CD72E, 39}, {0xAB8994F6, 40},
};
// clang-format on

}  // namespace
}  // namespace catalogue
}  // namespace config
}  // namespace zyn

namespace catalogue = zyn::config::catalogue;

void createParamDescriptors_Presets() {
  catalogue::AddCatalogueRows(catalogue::kPresetRows);
  createParamDescriptor_PresetNames();
}

void createParamDescriptor_PresetNames() {
  for (const catalogue::FamilyMember& member : catalogue::kPresetNameIDs) {
    const catalogue::CatalogueRow& pattern = member.id == kFactoryPresetNameParamID
                                                 ? catalogue::kFactoryPresetName
                                                 : catalogue::kPresetName;
    AddDescriptor(catalogue::BuildFamilyMember(pattern, member));
  }
}
