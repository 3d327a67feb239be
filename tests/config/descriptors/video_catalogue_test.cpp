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

// Members are copies of their template under their own ID and name: the
// generic differs from them only in being neither kept nor in presets nor
// reset, and the processor's members carry its number.
TEST(VideoCatalogueTest, FamiliesAreCopiesOfTheirTemplatesAndFitTheMapper) {
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

  // The mapper's per-input and per-format video generics: the specifics carry
  // their processor's number (that every specific exists, under every
  // selector value, is checked by the mapper's own tests).
  CatalogueIDs();
  InitializeSuffixes();
  EXPECT_EQ(InputName[10], "Universal") << "the one input name no family uses";
  for (const char* selector : {"eParamID_Vid1VideoInput", "eParamID_IPConfig"})
    EXPECT_EQ(IntAttributeOf(Find(selector), "useAsReverseMapID"), 1u) << selector;
  EXPECT_EQ(IntAttributeOf(Find("eParamID_Vid1AFDOutMode"), "proc_no"), 1u);
  ParamDescriptor* clip = Find("eParamID_Vid1LegalizerBlackClip");
  ASSERT_NE(dynamic_cast<DecimalDescriptor*>(clip), nullptr);
  EXPECT_EQ(clip->GetRelation("enabled_by"),
            (std::vector<ParamDescriptor::Relation>{
                {Find("eParamID_Vid1VideoLegalizer")->GetParamID(), 1}}));
  const struct {
    const char* generic;
    const std::string* suffixes;
    int count;
    unsigned int proc;
  } schemes[] = {
      {"eParamID_Vid1YUVProcAmpGain", InputName, 10, 1},
      {"eParamID_Vid1RGBProcAmpGammaBlue", InputName, 10, 1},
      {"eParamID_Vid1OutputTimingH", OutputFormatSuffix, 57, 1},
      {"eParamID_Vid2OutputTimingV", OutputFormatSuffix, 57, 2},
  };
  for (const auto& scheme : schemes) {
    for (int i = 0; i < scheme.count; ++i) {
      const std::string name = std::string(scheme.generic) + "_" + scheme.suffixes[i];
      ParamDescriptor* specific = GetDescriptor(name);
      ASSERT_NE(specific, nullptr) << name;
      EXPECT_EQ(IntAttributeOf(specific, "proc_no"), scheme.proc) << name;
    }
  }

  // The output formats' value names are the suffixes the mapper uses with them.
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
