// The output timing of both processors: a horizontal and a vertical timing
// per video format, copies of the OutputTimingHClone and OutputTimingVClone
// templates under the IDs of the table below, with the format's name as
// suffix. The generics (eParamID_Vid1OutputTimingH and the like) are the
// parameters the menus show; the parameter mapper redirects them to the
// member of the processor's actual output format (OutputFormatSuffix), so
// formats without a suffix of their own (the 30 and 60 Hz ones among them)
// use the 1080i 59.94 members. Each processor also has an extra frame delay.
//
// The timings are offsets from the reference: pixels held 2048 above the
// shown value horizontally, lines held 1024 above it vertically.
#include <string>

#include "config/descriptors/catalogue_family.h"
#include "config/descriptors/param_descriptors.h"
#include "config/descriptors/param_descriptors_video.h"

namespace zyn {
namespace config {
namespace catalogue {
namespace {

IntegerDescriptor OutputTimingHClone1;
IntegerDescriptor OutputTimingVClone1;
IntegerDescriptor OutputTimingHClone2;
IntegerDescriptor OutputTimingVClone2;

// clang-format off
constexpr IntAttribute kProc1[] = {{"proc_no", 1}};
constexpr IntAttribute kProc2[] = {{"proc_no", 2}};

constexpr CatalogueRow TimingH(const char* name, const char* short_name, Span<IntAttribute> proc) { return Integer(0, nullptr, name, short_name).Range(0, 4095, 2048).Display(1, 2048, 0).Units("pixels").Feature(eFeature_Video).IntAttributes(proc); }
constexpr CatalogueRow TimingV(const char* name, const char* short_name, Span<IntAttribute> proc) { return Integer(0, nullptr, name, short_name).Range(0, 2047, 1024).Display(1, 1024, 0).Units("lines").Feature(eFeature_Video).IntAttributes(proc); }

// One processor's timing: the templates, the generics and the extra delay.
struct ProcessorTiming {
  CatalogueRow h;
  CatalogueRow v;
  IntegerDescriptor* hClone;
  IntegerDescriptor* vClone;
  unsigned int genericHID;
  unsigned int genericVID;
  const char* stem;  // "eParamID_VidNOutputTiming"
  const char* menuH;
  const char* menuV;
  CatalogueRow extraFrameDelay;
};

constexpr ProcessorTiming kProcessorTimings[2] = {
    {TimingH("Vid 1 H Timing", "V1 H Tmg", kProc1), TimingV("Vid 1 V Timing", "V1 V Tmg", kProc1), &OutputTimingHClone1, &OutputTimingVClone1,
     0x872EB4D9, 0x580B37C5, "eParamID_Vid1OutputTiming", "8.1", "8.2",
     Integer(0x6A7486E8, "eParamID_Vid1ExtraFrameDelay", "Extra Frame Delay", "XtraDly").Range(0, 4, 0).Units("frames").Feature(eFeature_Video).IntAttributes(kProc1).Menu(kVideoProcMenuGroup, "8.3")},
    {TimingH("Vid 2 H Timing", "V2 H Tmg", kProc2), TimingV("Vid 2 V Timing", "V2 V Tmg", kProc2), &OutputTimingHClone2, &OutputTimingVClone2,
     0xC97C9E85, 0xD8DB72BD, "eParamID_Vid2OutputTiming", "28.1", "28.2",
     Integer(0x8A665529, "eParamID_Vid2ExtraFrameDelay", "Extra Frame Delay", "XtraDly").Range(0, 4, 0).Units("frames").Feature(eFeature_Video).IntAttributes(kProc2).Menu(kVideoProcMenuGroup, "28.3")},
};

// One row per video format: its suffix, then the IDs of Vid1's H and V and
// Vid2's H and V members.
struct FormatTiming {
  const char* suffix;
  unsigned int ids[2][2];
};

constexpr FormatTiming kFormatTimings[] = {
    {"525i5994", {{0x07E3B3DA, 0x35E1AA1D}, {0x372A6EC9, 0xB005F004}}},
    {"525psf2997", {{0x080CBC0B, 0xAF358A5F}, {0x2DF16E3F, 0x27CB703C}}},
    {"625i50", {{0xE52539CD, 0xB8479416}, {0x435DBD30, 0x9A164C11}}},
    {"625psf25", {{0xFD9D4EE1, 0xB5D58A7B}, {0x81B7A38D, 0x8025C6E3}}},
    {"720p2398", {{0x4CAC9D56, 0xBDB20B01}, {0xEF3DF8FD, 0x046CEF5B}}},
    {"720p24", {{0x936BAF82, 0x810A4701}, {0x61DE2B9C, 0x929A157F}}},
    {"720p25", {{0xA67ECDB2, 0xE790AD60}, {0x94B3BE22, 0xFDFBD075}}},
    {"720p2997", {{0xF7B02E6B, 0x20603A34}, {0x02544D8D, 0x67823176}}},
    {"720p30", {{0x62D72D84, 0xBFBA4CC5}, {0xE23E6798, 0x4C00F5F6}}},
    {"720p50", {{0x669233AF, 0xEF050387}, {0xED34E1A8, 0x3E125F75}}},
    {"720p5994", {{0x71A3BA7B, 0xC072476A}, {0xA658907A, 0x82DE52F7}}},
    {"720p60", {{0x300AF53F, 0x8B1FD4A2}, {0xBD953253, 0xF18CB648}}},
    {"1080i50", {{0x5C3781E9, 0x9A671887}, {0x9B2E9167, 0x0823B351}}},
    {"1080i5994", {{0xD2520889, 0xBA77E6B0}, {0xC3187A95, 0x61971C8F}}},
    {"1080i60", {{0xCF42EC7D, 0xBE9994F5}, {0x996365D2, 0xF3E83771}}},
    {"1080psf2398", {{0x11922B07, 0x28E2C260}, {0x64F1985F, 0x58033B90}}},
    {"1080psf24", {{0xBBF97840, 0x8902D344}, {0x69E80912, 0x73E20750}}},
    {"1080psf25", {{0x6EDFEB8C, 0xCDF8581E}, {0x3DD70900, 0x1C7BA21D}}},
    {"1080psf2997", {{0x3B50C33E, 0xFC42D4C7}, {0xA3EDF322, 0x0FCAFD09}}},
    {"1080psf30", {{0xBDAF3ED5, 0xCE7FC7A4}, {0x1690B035, 0x713C1B3D}}},
    {"1080p2398", {{0x6BBFE8C9, 0xF7281997}, {0x86B67242, 0xA97730F0}}},
    {"1080p24", {{0x6AC1FE13, 0xEE0EAA3B}, {0x72D9E608, 0x75CCB205}}},
    {"1080p25", {{0x7C36B203, 0x4E695A01}, {0xF87A78CB, 0xAEE10C1D}}},
    {"1080p2997", {{0x1BEFF855, 0x6B72EA29}, {0xCCECBD93, 0x84647713}}},
    {"1080p30", {{0x068D39CD, 0xC855E308}, {0x556564A6, 0x67876429}}},
    {"1080p50", {{0xA0C7774C, 0x17747D1D}, {0x5D197184, 0xFB139A5A}}},
    {"1080p5994", {{0x5D3CFD4E, 0x48952200}, {0x2C4387D1, 0x23947842}}},
    {"1080p60", {{0xC6580954, 0x324E1D51}, {0x296ECC90, 0x00A110EA}}},
    {"2Kx1080p2398", {{0x595D2B28, 0xBE8DD5D8}, {0x15D095ED, 0x78373CC1}}},
    {"2Kx1080p24", {{0x37E47C56, 0xAC4C169C}, {0xD8E0C657, 0x3B77B0D6}}},
    {"2Kx1080p25", {{0x856F6EAF, 0xF711AA41}, {0x84B4814D, 0x17E5A849}}},
    {"2Kx1080p2997", {{0x5B0C4C6A, 0xA5F89484}, {0x5C7DA9D3, 0xEDF9C2EF}}},
    {"2Kx1080p30", {{0x5F6338DA, 0x5919651C}, {0xDD68F4B2, 0xD67EE81A}}},
    {"2Kx1080p50", {{0x9EF31C68, 0x8EB53B79}, {0xE8A5E4AC, 0x4581A61F}}},
    {"2Kx1080p5994", {{0xB679CC78, 0x007EFFFD}, {0xF55C68E4, 0xAE3CC48F}}},
    {"2Kx1080p60", {{0x933E6B67, 0x76FD5A85}, {0x6F3EB13D, 0xDF5C3617}}},
};
// clang-format on

IntegerDescriptor* Generic(const IntegerDescriptor& clone, unsigned int id,
                           const std::string& id_name, const char* menu) {
  IntegerDescriptor* generic = CopyClone(clone, id, id_name);
  generic->SetPersistenceType(kVolatile.persistence);
  generic->SetRegisterType(kVolatile.registerType);
  generic->SetFactoryResetType(kVolatile.factoryReset);
  generic->AddAttribute("ParamGroup", kVideoProcMenuGroup);
  generic->AddAttribute("menu_number", std::string(menu));
  return generic;
}

// processor: 0 for Vid1, 1 for Vid2.
void CreateOutputTiming(int processor) {
  const ProcessorTiming& timing = kProcessorTimings[processor];
  FillClone(*timing.hClone, timing.h);
  FillClone(*timing.vClone, timing.v);
  const std::string stem = timing.stem;
  AddCatalogueRow(timing.extraFrameDelay);
  AddDescriptor(Generic(*timing.hClone, timing.genericHID, stem + "H", timing.menuH));
  AddDescriptor(Generic(*timing.vClone, timing.genericVID, stem + "V", timing.menuV));
  for (const FormatTiming& format : kFormatTimings) {
    AddDescriptor(CopyClone(*timing.hClone, format.ids[processor][0], stem + "H_" + format.suffix));
    AddDescriptor(CopyClone(*timing.vClone, format.ids[processor][1], stem + "V_" + format.suffix));
  }
}

}  // namespace
}  // namespace catalogue
}  // namespace config
}  // namespace zyn

void createParamDescriptors_Vid1OutputTiming() { zyn::config::catalogue::CreateOutputTiming(0); }
void createParamDescriptors_Vid2OutputTiming() { zyn::config::catalogue::CreateOutputTiming(1); }
