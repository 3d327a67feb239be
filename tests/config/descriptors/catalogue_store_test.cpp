// A store of the unit's whole catalogue: every parameter starts at its
// factory default; every integer parameter takes its largest and smallest
// value and clamps one beyond; every enumeration takes its values and refuses
// one outside its list.
#include <gtest/gtest.h>

#include <limits>
#include <set>
#include <string>

#include "config/descriptors/string_descriptor.h"
#include "config/manager/config_manager.h"
#include "unit_catalogue.h"

namespace {

TEST(CatalogueStoreTest, StartsAtTheDefaultsAndClampsAndRefuses) {
  const std::set<unsigned int>& catalogue = unit_catalogue::CatalogueIDs();
  ConfigManager store(eConfigID_Default);
  Stderr([&] { store.Init(); });
  int integers = 0, enumerations = 0;
  Stderr([&] {
    for (unsigned int id : catalogue) {
      ParamDescriptor* d = GetDescriptor(id);
      const std::string name = d->GetParamIDName();
      std::string text = "unset";
      if (StringDescriptor* s = dynamic_cast<StringDescriptor*>(d)) {
        EXPECT_TRUE(store.Get(id, text) && text == s->GetFactoryDefault()) << name << ": " << text;
        continue;
      }
      unsigned int number = 0xDEADBEEF;
      EXPECT_TRUE(store.Get(id, number) &&
                  number == static_cast<IntegerDescriptor*>(d)->GetFactoryDefault())
          << name << " starts at " << number;
      if (EnumDescriptor* e = dynamic_cast<EnumDescriptor*>(d)) {
        ++enumerations;
        for (const auto& v : e->GetEnumValueDescriptors()) {
          EXPECT_TRUE(store.Set(id, v.first)) << name << " " << v.first;
          EXPECT_EQ(store.Get(id), v.first) << name;
        }
        unsigned int outside = e->GetMaxValue() + 1;
        while (e->GetEnumValueDescriptor(outside) != nullptr) ++outside;
        const unsigned int before = store.Get(id);
        EXPECT_FALSE(store.Set(id, outside)) << name << " took " << outside;
        EXPECT_EQ(store.Get(id), before) << name;
      } else if (IntegerDescriptor* i = dynamic_cast<IntegerDescriptor*>(d)) {
        ++integers;
        const unsigned int min = i->GetMinValue(), max = i->GetMaxValue();
        ASSERT_LE(min, max) << name << ": no wrapped ranges in the catalogue";
        EXPECT_TRUE(store.Set(id, max));
        EXPECT_EQ(store.Get(id), max) << name;
        EXPECT_TRUE(store.Set(id, min));
        EXPECT_EQ(store.Get(id), min) << name;
        if (max < std::numeric_limits<unsigned int>::max()) {
          EXPECT_TRUE(store.Set(id, max + 1));
          EXPECT_EQ(store.Get(id), max) << name << " clamps to its maximum";
        }
        if (min > 0) {
          EXPECT_TRUE(store.Set(id, min - 1));
          EXPECT_EQ(store.Get(id), min) << name << " clamps to its minimum";
        }
      }
    }
  });
  EXPECT_GT(integers, 900);
  EXPECT_GT(enumerations, 400);
}

}  // namespace
