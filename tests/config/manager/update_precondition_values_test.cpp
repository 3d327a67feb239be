// The default precondition on its own: the front of the queue. Ranges,
// wrapped ones included, and the formula are checked through the store.
#include "config/manager/update_precondition_values.h"

#include <gtest/gtest.h>

#include "config/manager/config_manager.h"
#include "test_catalogue.h"

using namespace test_catalogue;
using zyn::config::IntegerUpdates;
using zyn::config::StringUpdates;
using zyn::config::UpdatePreconditionValues;

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
