// The default precondition on its own: enumerations, plain and wrapped
// ranges, and the dependent-minimum formula.
#include "config/manager/update_precondition_values.h"

#include <gtest/gtest.h>

#include "config/manager/config_manager.h"
#include "test_catalogue.h"

using namespace test_catalogue;
using zyn::config::IntegerUpdates;
using zyn::config::StringUpdates;
using zyn::config::UpdatePreconditionValues;

namespace {

IntegerDescriptor* Range(unsigned int min, unsigned int max) {
  IntegerDescriptor* d = new IntegerDescriptor();
  d->SetMinValue(min);
  d->SetMaxValue(max);
  return d;
}

}  // namespace

TEST(UpdatePreconditionValuesTest, WrappedRangeReading) {
  UpdatePreconditionValues values;
  std::unique_ptr<IntegerDescriptor> wrapped(Range(0xFFFFFFF6, 10));
  struct Case {
    unsigned int value;
    bool valid;
    unsigned int forced;
  } cases[] = {
      // Accepted, so never forced.
      {0xFFFFFFF6, true, 0xFFFFFFF6},
      {0xFFFFFFFF, true, 0xFFFFFFFF},
      {0, true, 0},
      // Refused, then forced: a signed distance below the minimum goes to the
      // minimum, anything above the maximum to the maximum, and 1..10 (above
      // the span but not above the maximum) is left as it is.
      {1, false, 1},
      {0xFFFFFFF5, false, 0xFFFFFFF6},
      {0x7FFFFFFF, false, 0xFFFFFFF6},
      {50, false, 10},
  };
  for (const Case& c : cases) {
    unsigned int v = c.value;
    EXPECT_EQ(c.valid, values.IsValidRange(wrapped.get(), v)) << std::hex << c.value;
    if (!c.valid) values.ForceValidRange(wrapped.get(), v);
    EXPECT_EQ(c.forced, v) << std::hex << c.value;
  }
  std::unique_ptr<IntegerDescriptor> plain(Range(10, 100));
  unsigned int v = 5;
  EXPECT_FALSE(values.IsValidRange(plain.get(), v));
  values.ForceValidRange(plain.get(), v);
  EXPECT_EQ(10u, v);
  v = 0xFFFFFFFF;
  values.ForceValidRange(plain.get(), v);
  EXPECT_EQ(100u, v);
}

TEST(UpdatePreconditionValuesTest, SpanFormula) {
  UpdatePreconditionValues values;
  unsigned int v = 950;
  values.ForceValidRange(v, 100, 1000);
  EXPECT_EQ(950u, v) << "within span of the limit: left alone";
  v = 899;
  values.ForceValidRange(v, 100, 1000);
  EXPECT_EQ(901u, v) << "limit - value = 101 >= span: moved to limit - span + 1";
  v = 0;
  values.ForceValidRange(v, 0, 0xFFFFFFFF);
  EXPECT_EQ(0u, v) << "a zero span always applies and wraps to limit + 1";
}

TEST(UpdatePreconditionValuesTest, QueueFrontIsCheckedAndRepaired) {
  Register();
  ConfigManager config(eConfigID_Default);  // no Init: only a source of descriptors
  UpdatePreconditionValues values;
  IntegerUpdates updates = {{kPercent, 150}, {kMode, 3}};
  EXPECT_TRUE(values.IsUpdateValid(&config, updates));
  EXPECT_EQ(100u, updates.front().second);
  EXPECT_EQ(3u, updates.back().second) << "only the front pair is looked at";
  updates.pop_front();
  EXPECT_FALSE(values.IsUpdateValid(&config, updates)) << "3 is not a value of the enumeration";
  IntegerUpdates unknown = {{kUnknown, 1}};
  EXPECT_FALSE(values.IsUpdateValid(&config, unknown));
  StringUpdates strings = {{kUnknown, "anything"}};
  EXPECT_TRUE(values.IsUpdateValid(&config, strings));
}
