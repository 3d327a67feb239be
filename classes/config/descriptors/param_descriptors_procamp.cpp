// Processor 1's proc amp: the YUV gain, black, hue and saturation, the RGB
// gain, black and gamma per colour component, and the two enables. Each is a
// generic parameter that the menus show and the parameter mapper redirects
// to its per-input specific (the stem, "_" and an InputName entry), one for
// each of the first nine inputs (InputName 0 to 8). The specifics are copies
// of the "*Clone" templates under the IDs of the table below; the generic is
// a copy too, under its own ID, neither kept nor in presets nor reset.
//
// Values: gain and saturation in tenths of a percent (1000 is unity), black
// in tenths of a percent held 200 above the shown value, hue in tenths of a
// degree held 1800 above it, gamma in hundredths (100 is linear).
#include <iterator>
#include <string>

#include "config/descriptors/catalogue_family.h"
#include "config/descriptors/enum_descriptor.h"
#include "config/descriptors/param_descriptors.h"
#include "config/descriptors/param_descriptors_video.h"
#include "config/descriptors/param_suffixes.h"

namespace zyn {
namespace config {
namespace catalogue {
namespace {

// The inputs with proc amp settings of their own: InputName 0 to 8.
constexpr int kProcAmpInputCount = 9;

// The templates of the families; the RGB ones by colour component (red,
// green, blue).
IntegerDescriptor ProcAmpGainClone[1];
IntegerDescriptor ProcAmpBlackClone[1];
IntegerDescriptor ProcAmpHueClone[1];
IntegerDescriptor ProcAmpSatClone[1];
EnumDescriptor ProcAmpEnableClone[1];
IntegerDescriptor RGBProcAmpGainClone[3];
IntegerDescriptor RGBProcAmpBlackClone[3];
IntegerDescriptor RGBProcAmpGammaClone[3];
EnumDescriptor RGBProcAmpEnableClone[1];

// clang-format off
constexpr IntAttribute kProc1[] = {{"proc_no", 1}};
constexpr EnumValue kDisableEnable[] = {{0, "Disable"}, {1, "Enable"}};

constexpr CatalogueRow Template(CatalogueRow row) { return row.Feature(eFeature_Video).IntAttributes(kProc1); }
constexpr CatalogueRow Gain(const char* name, const char* short_name) { return Template(Integer(0, nullptr, name, short_name).Range(0, 2000, 1000).Display(10, 0, 1).Units("%")); }
constexpr CatalogueRow Black(const char* name, const char* short_name) { return Template(Integer(0, nullptr, name, short_name).Range(0, 400, 200).Display(10, 200, 1).Units("%")); }
constexpr CatalogueRow Gamma(const char* name, const char* short_name) { return Template(Integer(0, nullptr, name, short_name).Range(40, 250, 100).Display(100, 0, 2)); }
constexpr CatalogueRow Enable(const char* name, const char* short_name) { return Template(Enum(0, nullptr, name, short_name).Values(kDisableEnable)); }

constexpr CatalogueRow kGain = Gain("Vid 1 Gain", "V1 Gain");
constexpr CatalogueRow kBlack = Black("Vid 1 Black", "V1 Black");
constexpr CatalogueRow kHue = Template(Integer(0, nullptr, "Vid 1 Hue", "V1 Hue").Range(0, 3600, 1800).Display(10, 1800, 1).Units("deg"));
constexpr CatalogueRow kSat = Gain("Vid 1 Saturation", "V1 Sat");
constexpr CatalogueRow kEnable = Enable("Vid 1 Proc Amp", "V1 PrcAmp");
constexpr CatalogueRow kRGBGain[3] = {Gain("Vid 1 Red Gain", "V1 R Gn"), Gain("Vid 1 Green Gain", "V1 G Gn"), Gain("Vid 1 Blue Gain", "V1 B Gn")};
constexpr CatalogueRow kRGBBlack[3] = {Black("Vid 1 Red Black", "V1 R Blk"), Black("Vid 1 Green Black", "V1 G Blk"), Black("Vid 1 Blue Black", "V1 B Blk")};
constexpr CatalogueRow kRGBGamma[3] = {Gamma("Vid 1 Red Gamma", "V1 R Gam"), Gamma("Vid 1 Green Gamma", "V1 G Gam"), Gamma("Vid 1 Blue Gamma", "V1 B Gam")};
constexpr CatalogueRow kRGBEnable = Enable("Vid 1 RGB Proc Amp", "V1 RGBPA");

// One family: its generic's ID name and ID, its template, and the IDs of its
// specifics by InputName index (SDI1, SDI2, SDIDualLink, Fiber1, Fiber2,
// FiberDualLink, HDMI, Composite, Component).
struct ProcAmpFamily {
  const char* generic;
  const IntegerDescriptor* clone;
  unsigned int genericID;
  unsigned int memberIDs[kProcAmpInputCount];
};

constexpr ProcAmpFamily kProcAmpFamilies[] = {
    {"eParamID_Vid1YUVProcAmpEnable", &ProcAmpEnableClone[0], 0x1E61B56A, {0xBB07FBFC, 0xACD34CBB, 0x6E79E319, 0x6AA0F24A, 0xE238E1FE, 0xEE1915B6, 0x6F3EB669, 0xB5E4E569, 0x067FCA24}},
    {"eParamID_Vid1YUVProcAmpGain", &ProcAmpGainClone[0], 0x883AD0D9, {0xB87ACB03, 0x77100E16, 0xBB363416, 0x5B32DEC1, 0xE87262C2, 0xB183F259, 0x13DDCCAB, 0xE001D622, 0xD3F8839E}},
    {"eParamID_Vid1YUVProcAmpBlack", &ProcAmpBlackClone[0], 0xAD76FD13, {0x6D3EAF5B, 0x51D765FC, 0x6D4CA820, 0xF833509C, 0x0EF9A265, 0xD29CF46C, 0x856BDD88, 0x002922E4, 0x65AA5AC7}},
    {"eParamID_Vid1YUVProcAmpHue", &ProcAmpHueClone[0], 0x9CB12DBA, {0xDCA6E4AB, 0x69013F3F, 0xD3FD982F, 0x8CCE81AD, 0x4F394825, 0xEB85B6C9, 0x20EE85B6, 0x07894C9D, 0x8966E2CE}},
    {"eParamID_Vid1YUVProcAmpSat", &ProcAmpSatClone[0], 0x1916717A, {0x475C549B, 0x3B47DA31, 0xEA5FA26A, 0xDE8CD1C4, 0x8F20E05D, 0x8D2B4FDF, 0x0F9FD491, 0x8D8FB5FB, 0x0153B2AC}},
    {"eParamID_Vid1RGBProcAmpEnable", &RGBProcAmpEnableClone[0], 0x8066D834, {0x66AA1C9B, 0xE9A2F7A6, 0xB1ECA243, 0xF33E7991, 0xE6F60410, 0x7EC19E94, 0x44B2B49B, 0x03A70870, 0xCC1D2D4C}},
    {"eParamID_Vid1RGBProcAmpGainRed", &RGBProcAmpGainClone[0], 0x026EEB26, {0x55226413, 0xC6CAFB54, 0x8C5CDF8B, 0x81AD6B85, 0xC2E1DCA9, 0x02970948, 0x5DFADFC8, 0xC31F7FD4, 0xE710A8FF}},
    {"eParamID_Vid1RGBProcAmpGainGreen", &RGBProcAmpGainClone[1], 0x2ED8D548, {0x21EB9C4C, 0xFF5CA80F, 0x51DBE510, 0x05D2E7E7, 0xC8FB37EF, 0xA2868C68, 0xB7222DAC, 0x419CF2F7, 0xCB087F44}},
    {"eParamID_Vid1RGBProcAmpGainBlue", &RGBProcAmpGainClone[2], 0xA21E8942, {0x3935291D, 0x81820CE9, 0x8629321D, 0x1DF873E1, 0xCDF1F4D1, 0x79AB35C5, 0x150C4E21, 0xAF9D7BEB, 0x5FCC8A2F}},
    {"eParamID_Vid1RGBProcAmpBlackRed", &RGBProcAmpBlackClone[0], 0xB81BFC46, {0xBAB30BB1, 0x85A1F505, 0x5E980183, 0xDEC550D7, 0x25100783, 0x1187A4FF, 0x7C4945B6, 0xB931081D, 0x329BF2F4}},
    {"eParamID_Vid1RGBProcAmpBlackGreen", &RGBProcAmpBlackClone[1], 0x9CAF5F1E, {0x05510351, 0x8205FC44, 0x0CEDDBFC, 0x06D00CF2, 0xA1DFF81B, 0x3050BB9A, 0xC6356946, 0x56A498E3, 0x8B67437E}},
    {"eParamID_Vid1RGBProcAmpBlackBlue", &RGBProcAmpBlackClone[2], 0x614E8437, {0xECC355C7, 0xEFDEAC31, 0x04DCADA3, 0x3E697FBC, 0x68106555, 0x20227D7F, 0x4F103DAD, 0x5BDDEFAB, 0x4997D190}},
    {"eParamID_Vid1RGBProcAmpGammaRed", &RGBProcAmpGammaClone[0], 0x63DD6FE9, {0xB9E267E7, 0x55936910, 0x2A117A6C, 0xE76AC32F, 0x5C1636F8, 0x7A73741E, 0x35BBEB78, 0x2D2BC4B8, 0xC42155A0}},
    {"eParamID_Vid1RGBProcAmpGammaGreen", &RGBProcAmpGammaClone[1], 0xA67D0984, {0xA84E089B, 0xD292BE87, 0x470252A5, 0xA011802E, 0x6957AC68, 0xB21BFDD9, 0x1E898581, 0x411D88F3, 0xDBE52BFF}},
    {"eParamID_Vid1RGBProcAmpGammaBlue", &RGBProcAmpGammaClone[2], 0xD4795959, {0x822CEC47, 0xA255EAA6, 0x69742FCB, 0x0EBDAF7E, 0xA44251D5, 0x4014421C, 0x2DFA6B39, 0xD60D3FBF, 0x87B9C78B}},
};
// clang-format on

// The menu places of the generics, in the order of kProcAmpFamilies.
constexpr const char* kProcAmpMenu[] = {"6.1", "6.2", "6.3", "6.4", "6.5", "7.1", "7.2", "7.3",
                                        "7.4", "7.5", "7.6", "7.7", "7.8", "7.9", "7.10"};
static_assert(std::size(kProcAmpMenu) == std::size(kProcAmpFamilies), "one place per family");

void FillProcAmpClones() {
  FillClone(ProcAmpGainClone[0], kGain);
  FillClone(ProcAmpBlackClone[0], kBlack);
  FillClone(ProcAmpHueClone[0], kHue);
  FillClone(ProcAmpSatClone[0], kSat);
  FillClone(ProcAmpEnableClone[0], kEnable);
  for (int component = 0; component < 3; ++component) {
    FillClone(RGBProcAmpGainClone[component], kRGBGain[component]);
    FillClone(RGBProcAmpBlackClone[component], kRGBBlack[component]);
    FillClone(RGBProcAmpGammaClone[component], kRGBGamma[component]);
  }
  FillClone(RGBProcAmpEnableClone[0], kRGBEnable);
}

}  // namespace
}  // namespace catalogue
}  // namespace config
}  // namespace zyn

void createParamDescriptors_VidProcAmp() {
  namespace catalogue = zyn::config::catalogue;
  InitializeSuffixes();
  catalogue::FillProcAmpClones();
  for (std::size_t f = 0; f < std::size(catalogue::kProcAmpFamilies); ++f) {
    const catalogue::ProcAmpFamily& family = catalogue::kProcAmpFamilies[f];
    IntegerDescriptor* generic =
        catalogue::CopyClone(*family.clone, family.genericID, family.generic);
    generic->SetPersistenceType(catalogue::kVolatile.persistence);
    generic->SetRegisterType(catalogue::kVolatile.registerType);
    generic->SetFactoryResetType(catalogue::kVolatile.factoryReset);
    generic->AddAttribute("ParamGroup", kVideoProcMenuGroup);
    generic->AddAttribute("menu_number", std::string(catalogue::kProcAmpMenu[f]));
    AddDescriptor(generic);
    for (int input = 0; input < catalogue::kProcAmpInputCount; ++input) {
      AddDescriptor(catalogue::CopyClone(*family.clone, family.memberIDs[input],
                                         std::string(family.generic) + "_" + InputName[input]));
    }
  }
}
