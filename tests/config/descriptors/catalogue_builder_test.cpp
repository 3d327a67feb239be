// The generic catalogue builder: the row features that the system catalogue
// does not exercise, and family instantiation.
#include "config/descriptors/catalogue_builder.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "config/descriptors/decimal_descriptor.h"
#include "config/descriptors/enum_descriptor.h"
#include "config/descriptors/string_descriptor.h"
#include "unit_catalogue.h"

namespace {

using namespace zyn::config::catalogue;
using unit_catalogue::IntAttributeOf;
using unit_catalogue::MenuPlaceOf;

std::string Source() { return "from the unit"; }

constexpr EnumValue kUnordered[] = {{5, "Five"}, {2, "Two", "2"}, {9, "Nine", nullptr, "ix"}};
constexpr IntAttribute kProc[] = {{"proc_no", 2}};
constexpr TextAttribute kTag[] = {{"unit_label", "dB"}};
constexpr unsigned int kDependents[] = {0xFEED0302, 0xFEED0303};
constexpr const char* kTwoClasses[] = {"b", "a"};
// clang-format off
constexpr CatalogueRow kDecimal = Decimal(0xFEED0301, "eParamID_BuilderGain", "Gain", "Gn").Type(eCParam_DecimalValue).Access(static_cast<eAccess_t>(1)).Range(0xFFFFFFF6, 10, 0).Step(5).Display(10, 3, 1).Units("dB", "x").Precision(2).Store(kStatus).RegEx(nullptr).IntAttributes(kProc).TextAttributes(kTag).Dependents(kDependents).Classes(kTwoClasses);
constexpr CatalogueRow kChoice = Enum(0xFEED0304, "eParamID_BuilderChoice", "Choice", nullptr).Values(kUnordered).Default(2);
constexpr CatalogueRow kFamily = String(0, "eParamID_Builder%dName%d", "Name %d", "N%d").Text(2, 8, "n%d").Menu(7, "9.%d").NumberedBy("member");
// clang-format on

TEST(CatalogueBuilderTest, BuildsEveryFieldOfARowAndAnEnumerationsRangeFromItsValues) {
  std::unique_ptr<ParamDescriptor> built(BuildDescriptor(kDecimal));
  DecimalDescriptor* d = dynamic_cast<DecimalDescriptor*>(built.get());
  ASSERT_NE(d, nullptr);
  EXPECT_EQ(
      std::vector<long>({d->GetParamType(), d->GetAccessType(), d->GetPersistenceType(),
                         d->GetMinValue(), d->GetAdjustBy(), d->GetScaleBy(), d->GetOffsetBy(),
                         d->GetDisplayPrecision(), d->GetPrecision()}),
      std::vector<long>({eCParam_DecimalValue, 1, ePersist_Status, 0xFFFFFFF6, 5, 10, 3, 1, 2}))
      << "type, access, persistence, min (a wrapped range is kept as given), step, scale, offset, "
         "display precision, precision";
  EXPECT_EQ(d->GetRegEx(), "");
  EXPECT_EQ(d->GetUnits() + d->GetUnits2(), "dBx");
  EXPECT_EQ(IntAttributeOf(d, "proc_no"), 2u);
  std::string label;
  EXPECT_TRUE(d->GetAttribute("unit_label", label));
  EXPECT_EQ(label, "dB");
  EXPECT_EQ(d->GetDependentParamIDs(), (std::vector<unsigned int>{0xFEED0302, 0xFEED0303}));
  EXPECT_EQ(d->GetClassNames(), (std::vector<std::string>{"b", "a"}));
  EXPECT_EQ(MenuPlaceOf(d), "") << "no menu unless given";

  // An enumeration's range comes from its values.
  std::unique_ptr<ParamDescriptor> choice(BuildDescriptor(kChoice));
  EnumDescriptor* e = dynamic_cast<EnumDescriptor*>(choice.get());
  ASSERT_NE(e, nullptr);
  EXPECT_EQ(e->GetParamType(), eCParam_IntegerValue);
  EXPECT_EQ(e->GetMinValue(), 2u);
  EXPECT_EQ(e->GetMaxValue(), 9u);
  EXPECT_EQ(e->GetFactoryDefault(), 2u);
  EXPECT_EQ(e->GetRegEx(), "*");
  EXPECT_EQ(e->GetShortName(), "");
  std::string order;
  for (const EnumValueDescriptor& v : e->GetOrderedEnumValueDescriptors())
    order += v.GetName() + "/" + v.GetShortName() + "/" + v.GetText() + " ";
  EXPECT_EQ(order, "Five/Five/ Two/2/ Nine/Nine/ix ");
}

TEST(CatalogueBuilderTest, FamilyMembersReplaceEveryNumberPlaceholder) {
  std::unique_ptr<ParamDescriptor> built(BuildFamilyMember(kFamily, {0xFEED0305, 12}));
  StringDescriptor* d = dynamic_cast<StringDescriptor*>(built.get());
  ASSERT_NE(d, nullptr);
  EXPECT_EQ(d->GetParamID(), 0xFEED0305u);
  EXPECT_EQ(d->GetParamIDName(), "eParamID_Builder12Name12");
  EXPECT_EQ(d->GetName() + "|" + d->GetShortName() + "|" + d->GetFactoryDefault(),
            "Name 12|N12|n12");
  EXPECT_EQ(MenuPlaceOf(d), "7:9.12");
  EXPECT_EQ(IntAttributeOf(d, "member"), 12u);
  EXPECT_EQ(d->GetMinLength(), 2u);
  EXPECT_EQ(d->GetMaxLength(), 8u);
  EXPECT_EQ(d->GetMaxIndex(), 7u) << "character positions 0 to max length - 1";

  std::unique_ptr<ParamDescriptor> sourced(BuildDescriptor(kFamily.TextFrom(&Source)));
  EXPECT_EQ(static_cast<StringDescriptor*>(sourced.get())->GetFactoryDefault(), "from the unit");
}

}  // namespace
