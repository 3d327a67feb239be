// The video outputs: which processor feeds each SDI, fiber, HDMI and analog
// output, and how the SDI and fiber outputs carry 1080p 50/60 (3G level A,
// level B, or a dual link).
#include "config/descriptors/catalogue_builder.h"
#include "config/descriptors/param_descriptors_video.h"

namespace zyn {
namespace config {
namespace catalogue {
namespace {

// clang-format off
constexpr EnumValue kProcessors[] = {{0, "Vid 1", "Vid1"}, {1, "Vid 2", "Vid2"}};
constexpr EnumValue k1080p5060Configs[] = {{0, "3G Level A", "3G-A"}, {1, "3G Level B", "3G-B"}, {2, "Dual Link", "DualLink"}};

constexpr CatalogueRow Out(CatalogueRow row) { return row.Feature(eFeature_Video); }

constexpr CatalogueRow kOutputRows[] = {
    Out(Enum(0x32556F95, "eParamID_SDI1VideoOut", "SDI 1 Output", "SDI1 Out").Values(kProcessors).Menu(kVideoOutputMenuGroup, "1.1")),
    Out(Enum(0x024D82BE, "eParamID_SDI11080p5060Config", "SDI 1 1080p 50/60", "SDI1 3G").Values(k1080p5060Configs).Menu(kVideoOutputMenuGroup, "1.2")),
    Out(Enum(0xE4A64AD5, "eParamID_SDI2VideoOut", "SDI 2 Output", "SDI2 Out").Values(kProcessors).Default(1).Menu(kVideoOutputMenuGroup, "2.1")),
    Out(Enum(0xB24D1C3E, "eParamID_SDI21080p5060Config", "SDI 2 1080p 50/60", "SDI2 3G").Values(k1080p5060Configs).Menu(kVideoOutputMenuGroup, "2.2")),
    Out(Enum(0x93A2E7D0, "eParamID_Fiber1VideoOut", "Fiber 1 Output", "Fib1 Out").Values(kProcessors).Menu(kVideoOutputMenuGroup, "3.1")),
    Out(Enum(0xD9B72718, "eParamID_Fiber11080p5060Config", "Fiber 1 1080p 50/60", "Fib1 3G").Values(k1080p5060Configs).Menu(kVideoOutputMenuGroup, "3.2")),
    Out(Enum(0xCC65CEA1, "eParamID_Fiber2VideoOut", "Fiber 2 Output", "Fib2 Out").Values(kProcessors).Default(1).Menu(kVideoOutputMenuGroup, "4.1")),
    Out(Enum(0xC8232AF4, "eParamID_Fiber21080p5060Config", "Fiber 2 1080p 50/60", "Fib2 3G").Values(k1080p5060Configs).Menu(kVideoOutputMenuGroup, "4.2")),
    Out(Enum(0xE4D46A22, "eParamID_HDMIVideoOut", "HDMI Output", "HDMI Out").Values(kProcessors).Menu(kVideoOutputMenuGroup, "5.1")),
    Out(Enum(0xB56BA67D, "eParamID_AnalogOut", "Analog Output", "Anlg Out").Values(kProcessors).Menu(kVideoOutputMenuGroup, "6.1")),
};
// clang-format on

}  // namespace
}  // namespace catalogue
}  // namespace config
}  // namespace zyn

void createParamDescriptors_Output() {
  zyn::config::catalogue::AddCatalogueRows(zyn::config::catalogue::kOutputRows);
}
