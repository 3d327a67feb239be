// The audio catalogue (which IDs and names exist is pinned by the generated
// header's test, the kept SDI2 ID mismatch by the system catalogue's): the
// names the family generators form, the mixdown's missing-ID report, the
// Dolby E framer's relations and the output map's factory-default members.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "config/descriptors/audio_descriptor_helpers.h"
#include "config/descriptors/param_descriptors_audio.h"
#include "unit_catalogue.h"

namespace {

using namespace unit_catalogue;

struct Sample {
  const char* idName;
  const char* name;
  const char* shortName;
  const char* menu;
  const char* units;
};

TEST(AudioCatalogueTest, GeneratedFamiliesNamesDolbyRelationsMixDownReportsAndOutputDefaults) {
  // clang-format off
  const Sample samples[] = {
      {"eParamID_AudioLevelCh3_SDI1", "SDI1 Level Ch 3", "Lvl ch3", "9:15.3", "dB"},
      {"eParamID_AudioLevelCh64_MADIFIB", "MADIFIB Level Ch 64", "Lvl ch64", "9:21.64", "dB"},
      {"eParamID_AudioLevelCh1_AudioSG", "AudioSG Level 1kHz", "Lvl1kHz", "9:24.1", "dB"},
      {"eParamID_AudioLevelCh1_MixDown2", "Mix Down 2 Output Lft", "MxDnOut L", "9:29.1", "dB"},
      {"eParamID_AudioPhaseCh5_HDMI", "HDMI Phase Ch 5", "Phs ch5", "9:37.5", ""},
      {"eParamID_AudioPhaseCh2_AudioSG", "AudioSG Phase 400Hz", "Phs400Hz", "9:39.2", ""},
      {"eParamID_AudioDelayCh3and4_AES", "AES Delay Ch 3/4", "Dly3&4", "9:44.2", "samples"},
      {"eParamID_AudioDelayCh63and64_MADIBNC", "MADIBNC Delay Ch 63/64", "Dly63&64", "9:45.32", "samples"},
      {"eParamID_AudioDelayGlobal_Analog", "Analog Delay Global", "AnalogDly", "9:10.9", "samples"},
      {"eParamID_AudioOutputCh7_GlobalAudio", "GlobalAudio Output Ch 7", "Out ch7", "10:2.7", ""},
      {"eParamID_AudioMixDown2Input_LFE", "Mix Down 2 Input LFE", "MxDn2LFE", "9:3.4", ""},
      {"eParamID_AudioLevelMixer1_C", "Mix Down 1 C Level", "Mx1LvlC", "9:4.3", "dB"},
      {"eParamID_AESEBUAudioSRCCh7and8", "AES/EBU 7/8 SRC", "SRC 7/8", "9:14.4", ""},
  };
  // clang-format on
  for (const Sample& s : samples) {
    IntegerDescriptor* d = dynamic_cast<IntegerDescriptor*>(Find(s.idName));
    if (d == nullptr) continue;
    EXPECT_EQ(d->GetName() + "|" + d->GetShortName() + "|" + MenuPlaceOf(d) + "|" + d->GetUnits(),
              std::string(s.name) + "|" + s.shortName + "|" + s.menu + "|" + s.units);
  }

  typedef std::vector<ParamDescriptor::Relation> Relations;
  const struct {
    const char* idName;
    Relations disabledBy;
  } cases[] = {
      {"eParamID_AudioLevelCh3_SDI2", {{0xF107D3C5, 4}, {0xF107D3C5, 12}}},
      {"eParamID_AudioPhaseCh8_Fiber1", {{0xF107D3C5, 6}, {0xF107D3C5, 14}}},
      {"eParamID_AudioDelayCh1and2_AES", {{0xF107D3C5, 3}, {0xF107D3C5, 11}}},
      {"eParamID_AudioLevelCh9_SDI1", {}},
      {"eParamID_AudioLevelCh1_MADIBNC", {}},
      {"eParamID_AudioOutputCh1_SDI1", {}},
  };
  for (const auto& c : cases) {
    ParamDescriptor* d = Find(c.idName);
    if (d == nullptr) continue;
    const auto& relations = d->GetRelations();
    auto it = relations.find("disabled_by");
    EXPECT_EQ(it == relations.end() ? Relations() : it->second, c.disabledBy) << c.idName;
  }
  EXPECT_EQ(Find("eParamID_AudioLevelCh3_SDI2")->GetRelation("enabled_by"),
            (Relations{{Find("eParamID_AudioLevelAdjustEnable_SDI2")->GetParamID(), 1}}));
  // The framer states those relations name.
  const std::string states = ValuesOf(Find("eParamID_Audio1DolbyFramerActive"));
  for (const char* state :
       {"3 Framing Ch 1/2", "6 Framing Ch 7/8", "11 Locking Ch 1/2", "14 Locking Ch 7/8"})
    EXPECT_TRUE(Has(states, state)) << states;

  std::map<unsigned int, std::string> made;
  const std::string report = Stderr([&] {
    made = BuildAlone([] {
      const unsigned int ids[kMixDownCount][kMixDownInputCount] = {
          {0xFEED0A01, 0xFEED0A02, 0xFEED0A03, 0xFEED0A04, 0xFEED0A05, 0xFEED0A06},
          {0xFEED0A11, 0xFEED0A12, 0xFEED0A13, 0xFEED0A14, 0, 0xFEED0A16}};
      CreateAudioMixDownDescriptors(ids);
    });
  });
  EXPECT_EQ(made.size(), 11u);
  EXPECT_EQ(made[0xFEED0A16], "eParamID_AudioMixDown2Input_Rs");
  EXPECT_EQ(report.rfind(
                "Param ID ERROR - ID eParamID_AudioMixDown2Input_Ls is missing \n\t Look in ", 0),
            0u)
      << report;
  EXPECT_TRUE(Has(report, "param_descriptors_audioproc_mixdown.cpp at ")) << report;

  // The output map's members take their default from the global map.
  CatalogueIDs();
  const unsigned int global5 = Find("eParamID_AudioOutputCh5_GlobalAudio")->GetParamID();
  EXPECT_EQ(GetAudioProcOutputParamIDThatHasFactoryDefault(
                Find("eParamID_AudioOutputCh5_SDI2")->GetParamID()),
            global5);
  EXPECT_EQ(GetAudioProcOutputParamIDThatHasFactoryDefault(global5), global5);
  const unsigned int madi40 = Find("eParamID_AudioOutputCh40_MADIBNC")->GetParamID();
  EXPECT_EQ(GetAudioProcOutputParamIDThatHasFactoryDefault(madi40), madi40)
      << "beyond the global map's 16 channels a member holds its own default";
  EXPECT_EQ(GetAudioProcOutputParamIDThatHasFactoryDefault(0xFEED0A99), 0u);
  EXPECT_EQ(
      static_cast<IntegerDescriptor*>(Find("eParamID_AudioOutputCh5_SDI2"))->GetFactoryDefault(),
      5u);
}

}  // namespace
