// The generated header of named parameter IDs against the catalogue.
#include "config/descriptors/param_ids.h"

#include <gtest/gtest.h>

#include <set>

#include "config/descriptors/param_descriptors.h"
#include "unit_catalogue.h"

static_assert(eParamID_SystemName == 0x663F2B65, "a program names a parameter by its constant");

TEST(ParamIDsTest, HeaderAgreesWithTheCatalogue) {
  const std::set<unsigned int>& catalogue = unit_catalogue::CatalogueIDs();
  struct Named {
    const char* name;
    eParam_t id;
  };
#define CONFIG_PARAM_ID_ROW(name, id) {#name, id},
  const Named header[] = {CONFIG_PARAM_IDS(CONFIG_PARAM_ID_ROW)};
#undef CONFIG_PARAM_ID_ROW

  std::set<eParam_t> named;
  for (const Named& row : header) {
    EXPECT_TRUE(named.insert(row.id).second) << row.name << " repeats an ID";
    ParamDescriptor* d = catalogue.count(row.id) == 1 ? GetDescriptor(row.id) : nullptr;
    ASSERT_NE(nullptr, d) << row.name << " is not in the catalogue: run scripts/param_ids";
    EXPECT_EQ(row.name, d->GetParamIDName()) << "run scripts/param_ids";
  }
  for (eParam_t id : catalogue)
    EXPECT_EQ(1u, named.count(id))
        << GetDescriptor(id)->GetParamIDName() << " has no constant: run scripts/param_ids";
  EXPECT_EQ(1460u, kParamIDCount);
}
