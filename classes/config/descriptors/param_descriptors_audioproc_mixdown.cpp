// The two mixdowns' inputs and levels. A mixdown folds a 5.1 programme of
// its source (eParamID_AudioInputSelect_MixDownN) down to two channels: each
// of its six inputs (L, R, C, LFE, Ls, Rs) takes one channel of the source,
// and has a level in the mix.
//
// An input's value is the channel of the source, 0 for none; by default the
// inputs take channels 1 to 6 in that order. Levels are as those of
// param_descriptors_audio_families.cpp: tenths of a dB held 600 above the
// shown value; the front channels mix at unity, centre and surrounds at
// -3 dB and the LFE at -60 dB, as a stereo fold-down has them.
#include <cstdio>

#include "config/descriptors/catalogue_family.h"
#include "config/descriptors/param_descriptors.h"
#include "config/descriptors/param_descriptors_audio.h"

namespace zyn {
namespace config {
namespace catalogue {
namespace {

constexpr const char* kMixDownInputs[kMixDownInputCount] = {"L", "R", "C", "LFE", "Ls", "Rs"};
constexpr unsigned int kMixLevelDefaults[kMixDownInputCount] = {600, 600, 570, 0, 570, 570};

// clang-format off
// By mixdown, then input in the order of kMixDownInputs.
constexpr unsigned int kMixDownInputIDs[kMixDownCount][kMixDownInputCount] = {
    {0xCF581497, 0xD5581E09, 0xC4580346, 0x77AE8D32, 0x4BA8E2EC, 0x53B7FA0E},
    {0xEF01F884, 0xF50201F6, 0xE601EA59, 0x72DF1219, 0x371AECD5, 0x3728645F},
};
constexpr unsigned int kMixDownLevelIDs[kMixDownCount][kMixDownInputCount] = {
    {0x2DA105DA, 0x0FA0D6A0, 0x20A0F163, 0xE3F00503, 0x7D7BE90B, 0x6D322E29},
    {0xC42B7A33, 0xE22BA96D, 0xD12B8EAA, 0xBC1B58DE, 0x107172C0, 0x28BB3A3A},
};

constexpr CatalogueRow kMixDownInput = Integer(0, nullptr, nullptr, nullptr).Range(0, kMaxAudioChannels, 0).Feature(eFeature_Audio).Menu(kAudioProcMenuGroup);
constexpr CatalogueRow kMixDownLevel = Integer(0, nullptr, nullptr, nullptr).Range(0, 720, 600).Step(5).Display(10, 600, 1).Units("dB").Feature(eFeature_Audio).Menu(kAudioProcMenuGroup);
// clang-format on

}  // namespace
}  // namespace catalogue
}  // namespace config
}  // namespace zyn

namespace catalogue = zyn::config::catalogue;
using catalogue::Format;

void CreateAudioMixDownDescriptors() { CreateAudioMixDownDescriptors(catalogue::kMixDownInputIDs); }

void CreateAudioMixDownDescriptors(const unsigned int (&ids)[kMixDownCount][kMixDownInputCount]) {
  for (int mix = 1; mix <= kMixDownCount; ++mix) {
    for (int input = 0; input < kMixDownInputCount; ++input) {
      const unsigned int id = ids[mix - 1][input];
      const char* name = catalogue::kMixDownInputs[input];
      if (id == 0) {
        fprintf(stderr,
                "Param ID ERROR - ID eParamID_AudioMixDown%dInput_%s is missing \n\t Look in %s at "
                "%d\n",
                mix, name, __FILE__, __LINE__);
        continue;
      }
      IntegerDescriptor* d = static_cast<IntegerDescriptor*>(catalogue::BuildMember(
          catalogue::kMixDownInput, id, Format("eParamID_AudioMixDown%dInput_%s", mix, name),
          Format("Mix Down %d Input %s", mix, name), Format("MxDn%d%s", mix, name),
          Format("%d.%d", 1 + mix, input + 1)));
      d->SetFactoryDefault(static_cast<unsigned int>(input + 1));
      AddDescriptor(d);
    }
  }
}

void CreateMixDownLevelDescriptors() {
  for (int mix = 1; mix <= kMixDownCount; ++mix) {
    for (int input = 0; input < kMixDownInputCount; ++input) {
      const unsigned int id = catalogue::kMixDownLevelIDs[mix - 1][input];
      if (id == 0) continue;
      const char* name = catalogue::kMixDownInputs[input];
      IntegerDescriptor* d = static_cast<IntegerDescriptor*>(catalogue::BuildMember(
          catalogue::kMixDownLevel, id, Format("eParamID_AudioLevelMixer%d_%s", mix, name),
          Format("Mix Down %d %s Level", mix, name), Format("Mx%dLvl%s", mix, name),
          Format("%d.%d", 3 + mix, input + 1)));
      d->SetFactoryDefault(catalogue::kMixLevelDefaults[input]);
      AddDescriptor(d);
    }
  }
}
