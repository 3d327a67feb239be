// The video catalogue (which IDs and names exist is pinned by the generated
// header's test): the rows clients rely on, the per-input, per-format and
// per-frame-rate families, and what the parameter mapper needs of them.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "config/descriptors/decimal_descriptor.h"
#include "config/descriptors/param_suffixes.h"
#include "unit_catalogue.h"

namespace {

using namespace unit_catalogue;

TEST(VideoCatalogueTest, AttributesTheMapperAndProcessorsRead) {
  EXPECT_EQ(IntAttributeOf(Find("eParamID_Vid1VideoInput"), "useAsReverseMapID"), 1u);
  EXPECT_EQ(IntAttributeOf(Find("eParamID_Vid1AFDOutMode"), "proc_no"), 1u);
  ParamDescriptor* clip = Find("eParamID_Vid1LegalizerBlackClip");
  ASSERT_NE(dynamic_cast<DecimalDescriptor*>(clip), nullptr);
  EXPECT_EQ(clip->GetRelation("enabled_by"),
            (std::vector<ParamDescriptor::Relation>{
                {Find("eParamID_Vid1VideoLegalizer")->GetParamID(), 1}}));
}

// Members are copies of their template under their own ID and name: the
// generic differs from them only in being neither kept nor in presets nor
// reset, and the processor's members carry its number.
TEST(VideoCatalogueTest, FamiliesAreCopiesOfTheirTemplates) {
  const struct {
    const char* generic;
    const char* member;
    unsigned int memberID;
    unsigned int proc;
  } samples[] = {
      {"eParamID_Vid1RGBProcAmpGainGreen", "eParamID_Vid1RGBProcAmpGainGreen_SDI2", 0xFF5CA80F, 1},
      {"eParamID_Vid1YUVProcAmpEnable", "eParamID_Vid1YUVProcAmpEnable_Component", 0x067FCA24, 1},
      {"eParamID_Vid1OutputTimingV", "eParamID_Vid1OutputTimingV_1080psf30", 0xCE7FC7A4, 1},
      {"eParamID_Vid2OutputTimingH", "eParamID_Vid2OutputTimingH_2Kx1080p2398", 0x15D095ED, 2},
  };
  for (const auto& s : samples) {
    IntegerDescriptor* generic = dynamic_cast<IntegerDescriptor*>(Find(s.generic));
    IntegerDescriptor* member = dynamic_cast<IntegerDescriptor*>(Find(s.member));
    ASSERT_TRUE(generic != nullptr && member != nullptr) << s.member;
    EXPECT_EQ(member->GetParamID(), s.memberID);
    EXPECT_EQ(IntAttributeOf(member, "proc_no"), s.proc) << s.member;
    EXPECT_EQ(ValuesOf(member), ValuesOf(generic)) << s.member;
    EXPECT_EQ(std::vector<unsigned int>({member->GetMinValue(), member->GetMaxValue(),
                                         member->GetFactoryDefault(), member->GetScaleBy(),
                                         member->GetOffsetBy()}),
              std::vector<unsigned int>({generic->GetMinValue(), generic->GetMaxValue(),
                                         generic->GetFactoryDefault(), generic->GetScaleBy(),
                                         generic->GetOffsetBy()}))
        << s.member;
    EXPECT_EQ(member->GetUnits(), generic->GetUnits());
    EXPECT_EQ(MenuPlaceOf(member), "") << "only the generic is in the menus";
  }
  EXPECT_EQ(IntAttributeOf(Find("eParamID_Vid2CustomAspect"), "proc_no"), 2u);
  EXPECT_EQ(MenuPlaceOf(Find("eParamID_Vid2CustomAspect")), "7:24.5");
  EXPECT_EQ(ValuesOf(Find("eParamID_Vid1OutputFormat_5025")),
            "7 625i 50/625i50, 6 625psf 25/625sf25, 13 720p 25/720p25, 16 720p 50/720p50, "
            "19 1080i 50/1080i50, 24 1080psf 25/1080sf25, 29 1080p 25/1080p25, "
            "32 1080p 50/1080p50, 45 2Kx1080p 25/2Kp25, 48 2Kx1080p 50/2Kp50");
}

// The mapper's per-input and per-format video generics: a specific for every
// selector value, with the processor's number (the generics' storage and
// processor, and the specifics' presence and storage, are checked by the
// mapper's own tests).
TEST(VideoCatalogueTest, MappedParametersFitTheMapper) {
  CatalogueIDs();
  InitializeSuffixes();
  EXPECT_EQ(InputName[10], "Universal") << "the one input name no family uses";
  const struct {
    const char* generic;
    const std::string* suffixes;
    int count;
    unsigned int proc;
  } schemes[] = {
      // clang-format off
      {"eParamID_Vid1YUVProcAmpEnable", InputName, 10, 1},     {"eParamID_Vid1YUVProcAmpGain", InputName, 10, 1},
      {"eParamID_Vid1YUVProcAmpBlack", InputName, 10, 1},      {"eParamID_Vid1YUVProcAmpHue", InputName, 10, 1},
      {"eParamID_Vid1YUVProcAmpSat", InputName, 10, 1},        {"eParamID_Vid1RGBProcAmpEnable", InputName, 10, 1},
      {"eParamID_Vid1RGBProcAmpGainRed", InputName, 10, 1},    {"eParamID_Vid1RGBProcAmpBlackRed", InputName, 10, 1},
      {"eParamID_Vid1RGBProcAmpGammaRed", InputName, 10, 1},   {"eParamID_Vid1RGBProcAmpGainGreen", InputName, 10, 1},
      {"eParamID_Vid1RGBProcAmpBlackGreen", InputName, 10, 1}, {"eParamID_Vid1RGBProcAmpGammaGreen", InputName, 10, 1},
      {"eParamID_Vid1RGBProcAmpGainBlue", InputName, 10, 1},   {"eParamID_Vid1RGBProcAmpBlackBlue", InputName, 10, 1},
      {"eParamID_Vid1RGBProcAmpGammaBlue", InputName, 10, 1},
      {"eParamID_Vid1OutputTimingH", OutputFormatSuffix, 57, 1}, {"eParamID_Vid1OutputTimingV", OutputFormatSuffix, 57, 1},
      {"eParamID_Vid2OutputTimingH", OutputFormatSuffix, 57, 2}, {"eParamID_Vid2OutputTimingV", OutputFormatSuffix, 57, 2},
      // clang-format on
  };
  for (const auto& scheme : schemes) {
    for (int i = 0; i < scheme.count; ++i) {
      const std::string name = std::string(scheme.generic) + "_" + scheme.suffixes[i];
      ParamDescriptor* specific = GetDescriptor(name);
      ASSERT_NE(specific, nullptr) << name;
      EXPECT_EQ(IntAttributeOf(specific, "proc_no"), scheme.proc) << name;
    }
  }

  // The selectors' values index the suffix tables the mapper uses with them.
  for (const char* input : {"eParamID_Vid1VideoInput", "eParamID_Vid2VideoInput"}) {
    for (const auto& v : static_cast<EnumDescriptor*>(Find(input))->GetEnumValueDescriptors()) {
      ASSERT_LT(v.first, 10u) << input;
      EXPECT_NE(GetDescriptor("eParamID_Vid1YUVProcAmpGain_" + InputName[v.first]), nullptr);
    }
  }
  for (const char* actual :
       {"eParamID_Vid1ActualOutputFormat", "eParamID_Vid2ActualOutputFormat"}) {
    EXPECT_EQ(IntAttributeOf(Find(actual), "useAsReverseMapID"), 1u);
    for (const auto& v : static_cast<EnumDescriptor*>(Find(actual))->GetEnumValueDescriptors()) {
      ASSERT_LT(v.first, 57u) << actual;
      std::string format = v.second.GetName();  // "1080i 59.94" is suffix "1080i5994"
      format.erase(
          std::remove_if(format.begin(), format.end(), [](char c) { return c == ' ' || c == '.'; }),
          format.end());
      EXPECT_NE(GetDescriptor("eParamID_Vid1OutputTimingH_" + format), nullptr) << format;
      EXPECT_TRUE(OutputFormatSuffix[v.first] == format ||
                  OutputFormatSuffix[v.first] == "1080i5994")
          << v.first << " " << format;
    }
  }
}

}  // namespace
