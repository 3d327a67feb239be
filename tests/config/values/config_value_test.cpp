// Dirty, equality, copy, clone, reset and text rules of the two value
// classes.
#include <gtest/gtest.h>

#include "config/values/integer_value.h"
#include "config/values/string_value.h"
#include "test_catalogue.h"

TEST(ConfigValueTest, SetMarksDirtyOnlyOnChangeAndEqualityIncludesIt) {
  IntegerValue number(eConfigID_Default, 1, eCParam_IntegerValue, 5);
  number.Set(5);
  EXPECT_FALSE(number.IsDirty());
  number.Set(6);
  EXPECT_TRUE(number.IsDirty());

  StringValue text(eConfigID_Default, 2, eCParam_StringValue, "abc");
  text.Set("abc");
  EXPECT_FALSE(text.IsDirty());
  text.Set(std::string("abc\0", 4));  // same bytes, different length
  EXPECT_TRUE(text.IsDirty());

  IntegerValue identity(eConfigID_Default, 1, eCParam_IntegerValue, 0);
  identity.SetParamID(1);
  identity.SetConfigID(eConfigID_Default);
  identity.SetParamType(eCParam_IntegerValue);
  EXPECT_FALSE(identity.IsDirty());
  identity.SetParamType(eCParam_EventValue);
  EXPECT_TRUE(identity.IsDirty());

  // Equality includes the dirty flag and the identity.
  IntegerValue a(eConfigID_Default, 9, eCParam_IntegerValue, 1);
  IntegerValue b(eConfigID_Default, 9, eCParam_IntegerValue, 1);
  EXPECT_TRUE(a.IsEqual(&b));
  EXPECT_TRUE(a.IsEqual(&a));
  b.SetDirty(true);
  EXPECT_FALSE(a.IsEqual(&b)) << "a changed-but-unsaved value is not its saved twin";
  b.SetDirty(false);
  b.Set(2);
  b.SetDirty(false);
  EXPECT_FALSE(a.IsEqual(&b));

  IntegerValue otherParam(eConfigID_Default, 10, eCParam_IntegerValue, 1);
  EXPECT_FALSE(a.IsEqual(&otherParam));
  StringValue otherClass(eConfigID_Default, 9, eCParam_IntegerValue, "");
  EXPECT_FALSE(a.IsEqual(&otherClass));
  Serializable plain(eClassID_IntegerValue);
  EXPECT_FALSE(a.IsEqual(&plain)) << "same class ID but not a ConfigValue";
  EXPECT_FALSE(a.IsEqual(nullptr));
}

TEST(ConfigValueTest, CopyTakesStoreAndValueOnlyAndACloneIsClean) {
  IntegerValue target(eConfigID_Default, 1, eCParam_IntegerValue, 10);
  IntegerValue source(static_cast<eConfigID_t>(4), 2, eCParam_EventValue, 20);
  target.Copy(source);
  EXPECT_EQ("configID = 4, paramID = 0x1, paramType = 3, value = 20 = 0X14", target.ToString())
      << "the store and the value are copied, the parameter and type kept";
  IntegerValue negative(eConfigID_Default, 0xABCDEF01, eCParam_EventValue, 0xFFFFFFFF);
  EXPECT_EQ("configID = 0, paramID = 0xABCDEF01, paramType = 4, value = -1 = 0Xffffffff",
            negative.ToString());
  StringValue rack(static_cast<eConfigID_t>(1), 0x100, eCParam_StringValue, "Rack 1");
  EXPECT_EQ("configID = 1, paramID = 0x100, paramType = 12, value = Rack 1", rack.ToString());
  EXPECT_TRUE(target.IsDirty());

  // A value of the other class leaves the value alone.
  StringValue text(eConfigID_Default, 3, eCParam_StringValue, "x");
  target.CopyValue(text);
  unsigned int v;
  target.Get(v);
  EXPECT_EQ(20u, v);

  // A clone is clean and independent.
  StringValue original(static_cast<eConfigID_t>(2), 0x55, eCParam_StringValue, "abc");
  original.SetDirty(true);
  ConfigValue* clone = original.Clone();
  StringValue* copy = dynamic_cast<StringValue*>(clone);
  ASSERT_NE(nullptr, copy);
  EXPECT_FALSE(copy->IsDirty());
  EXPECT_EQ(eClassID_StringValue, copy->GetClassID());
  EXPECT_EQ(2, copy->GetConfigID());
  copy->Set("changed");
  std::string kept;
  original.Get(kept);
  EXPECT_EQ("abc", kept);
  delete clone;

  IntegerValue unset;  // class 17 until someone sets it; the clone is class 0
  ConfigValue* integer = unset.Clone();
  EXPECT_EQ(eClassID_IntegerValue, integer->GetClassID());
  delete integer;
}

TEST(ConfigValueTest, ResetToFactoryUsesDescriptor) {
  using namespace test_catalogue;
  Register();
  IntegerValue a(eConfigID_Default, kPercent, eCParam_IntegerValue, 1);
  a.ResetToFactory();
  unsigned int v;
  a.Get(v);
  EXPECT_EQ(50u, v);
  EXPECT_TRUE(a.IsDirty());

  StringValue b(eConfigID_Default, kName, eCParam_StringValue, "user");
  b.ResetToFactory();
  std::string s;
  b.Get(s);
  EXPECT_EQ("unit", s);

  // No descriptor, or one of the other class: nothing changes.
  IntegerValue orphan(eConfigID_Default, kUnknown, eCParam_IntegerValue, 3);
  orphan.ResetToFactory();
  orphan.Get(v);
  EXPECT_EQ(3u, v);
  IntegerValue mismatched(eConfigID_Default, kName, eCParam_IntegerValue, 4);
  mismatched.ResetToFactory();
  mismatched.Get(v);
  EXPECT_EQ(4u, v);
}
