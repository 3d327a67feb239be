// Custom size, position, aspect and crop of the processors' scalers, and
// processor 2's region of interest. The custom parameters are per-processor
// families: a pattern row whose "%d" is the processor number (also kept as
// "proc_no") and a table of the members the unit has. Processor 1 has the
// full set; processor 2 has no size or left crop of its own, its picture
// being placed by its region of interest instead.
//
// Sizes, aspects, crops and region edges are tenths of a percent of the
// picture (1000 is the full picture); positions are pixels or lines held
// 2048 above the shown offset. The custom parameters sit in section 4 of
// processor 1's menu and section 24 of processor 2's.
#include "config/descriptors/catalogue_family.h"
#include "config/descriptors/param_descriptors.h"
#include "config/descriptors/param_descriptors_video.h"

namespace zyn {
namespace config {
namespace catalogue {
namespace {

// clang-format off
constexpr IntAttribute kProc2[] = {{"proc_no", 2}};

constexpr CatalogueRow Custom(const char* id_name, const char* name, const char* short_name) { return Integer(0, id_name, name, short_name).Feature(eFeature_Video).NumberedBy("proc_no"); }
constexpr CatalogueRow Tenths(CatalogueRow row, unsigned int min, unsigned int max, unsigned int def) { return row.Range(min, max, def).Display(10, 0, 1).Units("%"); }
constexpr CatalogueRow Offset(CatalogueRow row, const char* units) { return row.Range(0, 4095, 2048).Display(1, 2048, 0).Units(units); }

constexpr CatalogueRow kSize = Tenths(Custom("eParamID_Vid%dCustomSize", "Vid %d Custom Size", "CustSize"), 100, 2000, 1000);
constexpr CatalogueRow kHPosition = Offset(Custom("eParamID_Vid%dCustomHPosition", "Vid %d Custom H Position", "Cust HPos"), "pixels");
constexpr CatalogueRow kVPosition = Offset(Custom("eParamID_Vid%dCustomVPosition", "Vid %d Custom V Position", "Cust VPos"), "lines");
constexpr CatalogueRow kAspect = Tenths(Custom("eParamID_Vid%dCustomAspect", "Vid %d Custom Aspect", "CustAspt"), 500, 2000, 1000);
constexpr CatalogueRow kLeftCrop = Tenths(Custom("eParamID_Vid%dCustomLeftCrop", "Vid %d Left Crop", "LeftCrop"), 0, 500, 0);
constexpr CatalogueRow kTopCrop = Tenths(Custom("eParamID_Vid%dCustomTopCrop", "Vid %d Top Crop", "Top Crop"), 0, 500, 0);
constexpr CatalogueRow kRightCrop = Tenths(Custom("eParamID_Vid%dCustomRightCrop", "Vid %d Right Crop", "RghtCrop"), 0, 500, 0);
constexpr CatalogueRow kBotCrop = Tenths(Custom("eParamID_Vid%dCustomBotCrop", "Vid %d Bottom Crop", "Bot Crop"), 0, 500, 0);

// Members: {ID, processor}.
constexpr FamilyMember kSizeIDs[] = {{0xF4AC5891, 1}};
constexpr FamilyMember kHPositionIDs[] = {{0x68CBC22B, 1}, {0x6A676AAC, 2}};
constexpr FamilyMember kVPositionIDs[] = {{0x4FD9C15D, 1}, {0xCF8BF176, 2}};
constexpr FamilyMember kAspectIDs[] = {{0x880194F0, 1}, {0x75E859A9, 2}};
constexpr FamilyMember kLeftCropIDs[] = {{0x5781F7FB, 1}};
constexpr FamilyMember kTopCropIDs[] = {{0xD6F5FE19, 1}, {0x2C36EC6A, 2}};
constexpr FamilyMember kRightCropIDs[] = {{0xAAEAAAEC, 1}, {0x1023BCCF, 2}};
constexpr FamilyMember kBotCropIDs[] = {{0xE5D9B08F, 1}, {0x6843F998, 2}};

constexpr CatalogueRow Edge(unsigned int id, const char* id_name, const char* name, const char* short_name, unsigned int min, unsigned int max, unsigned int def, const char* menu) {
  return Integer(id, id_name, name, short_name).Range(min, max, def).Display(10, 0, 1).Units("%").Feature(eFeature_Video).IntAttributes(kProc2).Menu(kVideoProcMenuGroup, menu);
}

constexpr CatalogueRow kRegionOfInterestRows[] = {
    Edge(0xAD1724DB, "eParamID_Vid2ROILeft", "Vid 2 ROI Left", "ROI Left", 0, 999, 0, "25.1"),
    Edge(0xF98D06A4, "eParamID_Vid2ROITop", "Vid 2 ROI Top", "ROI Top", 0, 999, 0, "25.2"),
    Edge(0x59147879, "eParamID_Vid2ROIRight", "Vid 2 ROI Right", "ROI Rght", 1, 1000, 1000, "25.3"),
    Edge(0xB906DFD9, "eParamID_Vid2ROIBottom", "Vid 2 ROI Bottom", "ROI Bot", 1, 1000, 1000, "25.4"),
};
// clang-format on

// Registers the members of one custom family at item `item` of their
// processor's custom section.
void AddCustomFamily(const CatalogueRow& pattern, Span<FamilyMember> members, int item) {
  for (const FamilyMember& member : members) {
    ParamDescriptor* d = BuildFamilyMember(pattern, member);
    d->AddAttribute("ParamGroup", kVideoProcMenuGroup);
    d->AddAttribute("menu_number", Format("%d.%d", member.number == 1 ? 4 : 24, item));
    AddDescriptor(d);
  }
}

}  // namespace
}  // namespace catalogue
}  // namespace config
}  // namespace zyn

namespace catalogue = zyn::config::catalogue;

void createParamDescriptors_CustomConversion() {
  createParamDescriptors_VidXCustomSize();
  createParamDescriptors_VidXROILeft();
  createParamDescriptors_VidXROITop();
  createParamDescriptors_VidXROIRight();
  createParamDescriptors_VidXROIBottom();
}

void createParamDescriptors_VidXCustomSize() {
  catalogue::AddCustomFamily(catalogue::kSize, catalogue::kSizeIDs, 2);
  catalogue::AddCustomFamily(catalogue::kHPosition, catalogue::kHPositionIDs, 3);
  catalogue::AddCustomFamily(catalogue::kVPosition, catalogue::kVPositionIDs, 4);
  catalogue::AddCustomFamily(catalogue::kAspect, catalogue::kAspectIDs, 5);
}

void createParamDescriptors_VidXROILeft() {
  catalogue::AddCustomFamily(catalogue::kLeftCrop, catalogue::kLeftCropIDs, 6);
}
void createParamDescriptors_VidXROITop() {
  catalogue::AddCustomFamily(catalogue::kTopCrop, catalogue::kTopCropIDs, 7);
}
void createParamDescriptors_VidXROIRight() {
  catalogue::AddCustomFamily(catalogue::kRightCrop, catalogue::kRightCropIDs, 8);
}
void createParamDescriptors_VidXROIBottom() {
  catalogue::AddCustomFamily(catalogue::kBotCrop, catalogue::kBotCropIDs, 9);
}

void createParamDescriptors_RegionOfInterest() {
  catalogue::AddCatalogueRows(catalogue::kRegionOfInterestRows);
}
