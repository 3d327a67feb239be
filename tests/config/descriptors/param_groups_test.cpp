#include "config/descriptors/param_groups.h"

#include <gtest/gtest.h>

#include <list>

#include "config/descriptors/audio_descriptor_helpers.h"
#include "config/descriptors/integer_descriptor.h"
#include "config/descriptors/param_descriptors.h"

// Descriptors here use IDs 0xFEED01xx and a menu group of their own, so that
// other tests sharing the registry do not disturb them.
namespace {

constexpr int kTestGroup = 0xFEED;

unsigned int AddMenuEntry(unsigned int id, const char* menu_number, int group = kTestGroup) {
  IntegerDescriptor* d = new IntegerDescriptor;
  d->SetParamID(id);
  d->AddAttribute("ParamGroup", static_cast<unsigned int>(group));
  if (menu_number != nullptr) d->AddAttribute("menu_number", menu_number);
  AddDescriptor(d);
  return id;
}

TEST(MenuNumberCompareTest, ComparesDottedNumbersFieldByField) {
  const unsigned int m13_9 = AddMenuEntry(0xFEED0101, "13.9", 0);
  const unsigned int m13_12 = AddMenuEntry(0xFEED0102, "13.12", 0);
  const unsigned int m14 = AddMenuEntry(0xFEED0103, "14", 0);
  const unsigned int m14_0 = AddMenuEntry(0xFEED0104, "14.0", 0);
  const unsigned int m14_0b = AddMenuEntry(0xFEED0105, "14..0", 0);
  const unsigned int no_number = AddMenuEntry(0xFEED0106, nullptr, 0);
  const unsigned int text = AddMenuEntry(0xFEED0107, "x.5", 0);
  const unsigned int m0_4 = AddMenuEntry(0xFEED0108, "0.4", 0);
  const unsigned int unknown = 0xFEED01FF;

  EXPECT_TRUE(MenuNumberCompare(m13_9, m13_12)) << "numeric, not textual";
  EXPECT_FALSE(MenuNumberCompare(m13_12, m13_9));
  EXPECT_TRUE(MenuNumberCompare(m14, m14_0)) << "the shorter number comes first";
  EXPECT_FALSE(MenuNumberCompare(m14_0, m14));
  EXPECT_TRUE(MenuNumberCompare(m14_0, m14_0b)) << "equal numbers answer true";
  EXPECT_TRUE(MenuNumberCompare(m14_0b, m14_0)) << "empty fields are dropped";
  EXPECT_TRUE(MenuNumberCompare(no_number, m13_9)) << "a missing menu number reads as empty";
  EXPECT_FALSE(MenuNumberCompare(m13_9, unknown)) << "a missing descriptor reads as empty";
  EXPECT_TRUE(MenuNumberCompare(unknown, no_number));
  EXPECT_FALSE(MenuNumberCompare(text, m0_4)) << "non-numeric text reads as 0, then 5 > 4";
  EXPECT_TRUE(MenuNumberCompare(m0_4, text));
}

TEST(ParamGroupTest, ListsVisibleMembersInMenuOrder) {
  const unsigned int second = AddMenuEntry(0xFEED0111, "2.10");
  const unsigned int first = AddMenuEntry(0xFEED0112, "2.9");
  const unsigned int hidden = AddMenuEntry(0xFEED0113, "1");
  GetDescriptor(hidden)->AddClassName("panel_hidden");
  const unsigned int zeroth = AddMenuEntry(0xFEED0114, "1.5");
  AddMenuEntry(0xFEED0115, "1.0", kTestGroup + 1);

  EXPECT_EQ(GetParamGroup(kTestGroup), (std::list<unsigned int>{zeroth, first, second}));
  EXPECT_TRUE(GetParamGroup(-7).empty());
}

TEST(DolbyFramerTest, DisablesChannelPairsOfEitherFramer) {
  const unsigned int framer_ids[] = {0xF107D3C5, 0x955ED016};
  for (int framer = 0; framer < 2; ++framer) {
    for (int pair = 0; pair < 4; ++pair) {
      IntegerDescriptor d;
      HideChannelsControlledByDolbyFramer(&d, framer, pair);
      const unsigned int state = 3 + pair;
      const std::vector<ParamDescriptor::Relation> expected = {{framer_ids[framer], state},
                                                               {framer_ids[framer], state + 8}};
      EXPECT_EQ(d.GetRelation("disabled_by"), expected) << "framer " << framer << " pair " << pair;
      EXPECT_EQ(d.GetRelations().size(), 1u);
    }
  }
  const int ignored[][2] = {{0, 4}, {0, -1}, {2, 0}, {-1, 0}};
  for (const auto& args : ignored) {
    IntegerDescriptor d;
    HideChannelsControlledByDolbyFramer(&d, args[0], args[1]);
    EXPECT_TRUE(d.GetRelations().empty()) << "framer " << args[0] << " pair " << args[1];
  }
}

TEST(FactoryDefaultParamIDTest, UnknownIdReadsAsZeroAndIsRemembered) {
  FactoryDefaultParamID[0xFEED0121] = 0xFEED0122;
  FactoryDefaultParamID.erase(0xFEED0123);  // from an earlier repetition
  EXPECT_EQ(GetAudioProcOutputParamIDThatHasFactoryDefault(0xFEED0121), 0xFEED0122u);
  EXPECT_EQ(FactoryDefaultParamID.count(0xFEED0123), 0u);
  EXPECT_EQ(GetAudioProcOutputParamIDThatHasFactoryDefault(0xFEED0123), 0u);
  EXPECT_EQ(FactoryDefaultParamID.count(0xFEED0123), 1u);
}

}  // namespace
