#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "config/descriptors/decimal_descriptor.h"
#include "config/descriptors/enum_descriptor.h"
#include "config/descriptors/integer_descriptor.h"
#include "config/descriptors/param_descriptor.h"
#include "config/descriptors/string_descriptor.h"

namespace {

typedef std::vector<std::string> Names;

TEST(ParamDescriptorTest, ClassNamesAndRelationsKeepInsertionOrderAndAttributeMapsAreSeparate) {
  ParamDescriptor d;
  d.AddClassName("a");
  d.AddClassName("b");
  d.AddClassName("a");
  EXPECT_EQ(d.GetClassNames(), (Names{"b", "a"})) << "a re-added name moves to the end";
  EXPECT_FALSE(d.HasClassName("A")) << "class names are case-sensitive";
  EXPECT_FALSE(d.RemoveClassName("c"));
  d.ToggleClassName("b");
  EXPECT_EQ(d.GetClassNames(), (Names{"a"}));
  d.ToggleClassName("b");
  EXPECT_EQ(d.GetClassNames(), (Names{"a", "b"}));

  d.AddRelation("disabled_by", 7, 3);
  d.AddRelation("disabled_by", 7, 11);
  d.AddRelation("enabled_by", 9, 1);
  EXPECT_EQ(d.GetRelation("disabled_by"),
            (std::vector<ParamDescriptor::Relation>{{7, 3}, {7, 11}}));
  EXPECT_TRUE(d.GetRelation("missing").empty());

  // The attribute maps, numbers and texts, are separate.
  d.AddAttribute("menu_number", "14.2");
  d.AddAttribute("menu_number", 5u);
  d.AddAttribute("ParamGroup", 3u);
  d.AddAttribute("ParamGroup", 4u);

  unsigned int number = 99;
  std::string text = "untouched";
  EXPECT_FALSE(d.GetAttribute("proc_no", number));
  EXPECT_EQ(number, 99u);
  EXPECT_FALSE(d.GetAttribute("ParamGroup", text));
  EXPECT_EQ(text, "untouched");

  ASSERT_TRUE(d.GetAttribute("ParamGroup", number));
  EXPECT_EQ(number, 4u) << "a second AddAttribute overwrites";
  ASSERT_TRUE(d.GetAttribute("menu_number", text));
  EXPECT_EQ(text, "14.2");
  ASSERT_TRUE(d.GetAttribute("menu_number", number));
  EXPECT_EQ(number, 5u);
}

TEST(EnumDescriptorTest, ValuesKeepDisplayOrder) {
  EnumValueDescriptor::EnumValueData data;
  data.intData["width"] = 1920;

  EnumDescriptor d;
  d.AddNameValuePair(2, "Locked");
  d.AddNameValuePair(0, "Unlocked", "Unlk", &data, "extra");
  d.AddNameValuePair(1, "Partial");

  std::vector<unsigned int> order;
  for (const EnumValueDescriptor& v : d.GetOrderedEnumValueDescriptors()) {
    order.push_back(v.GetValue());
  }
  EXPECT_EQ(order, (std::vector<unsigned int>{2, 0, 1})) << "display order, not numeric order";

  const EnumValueDescriptor* locked = d.GetEnumValueDescriptor(2);
  ASSERT_NE(locked, nullptr);
  EXPECT_EQ(locked->GetShortName(), "Locked") << "short name defaults to the name";
  const EnumValueDescriptor* unlocked = d.GetEnumValueDescriptor(0);
  ASSERT_NE(unlocked, nullptr);
  EXPECT_EQ(unlocked->GetShortName(), "Unlk");
  EXPECT_EQ(unlocked->GetText(), "extra");
  EXPECT_EQ(unlocked->GetData().intData.at("width"), 1920u);
  EXPECT_EQ(d.GetEnumValueDescriptor(3), nullptr);
  EXPECT_EQ(d.GetEnumValueDescriptors().size(), 3u) << "a missed lookup must not insert";

  EXPECT_EQ(d.GetEnumValue(0), "Unlocked");
  EXPECT_EQ(d.GetEnumValue(0x1f), "0x1f");

  d.AddNameValuePair(2, "Relocked");
  EXPECT_EQ(d.GetOrderedEnumValueDescriptors().size(), 4u) << "re-adding lists the value twice";
  EXPECT_EQ(d.GetEnumValue(2), "Relocked");

  EnumDescriptor::EnumValueMap replacement;
  replacement[5] = EnumValueDescriptor(5, "Five", "5", nullptr, "");
  replacement[4] = EnumValueDescriptor(4, "Four", "4", nullptr, "");
  d.SetEnumValueDescriptors(replacement);
  const std::vector<EnumValueDescriptor> ordered = d.GetOrderedEnumValueDescriptors();
  ASSERT_EQ(ordered.size(), 2u);
  EXPECT_EQ(ordered[0].GetName(), "Four");
  EXPECT_EQ(ordered[1].GetName(), "Five");
}

TEST(StringDescriptorDeathTest, NonStringTypeEndsTheProcess) {
  StringDescriptor d;
  EXPECT_EXIT(d.SetParamType(eCParam_IntegerValue), testing::ExitedWithCode(255),
              "^StringDescriptor::SetParamType - ERROR: Invalid paramType - must be "
              "eCParam_StringValue$");
}

}  // namespace
