// The generated header of named parameter IDs against the catalogue.
#include "config/descriptors/param_ids.h"

#include <gtest/gtest.h>

#include <set>

#include "config/descriptors/param_descriptors.h"

static_assert(eParamID_SystemName == 0x663F2B65, "a program names a parameter by its constant");

TEST(ParamIDsTest, HeaderAgreesWithTheCatalogue) {
  CreateDescriptors();
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
    ParamDescriptor* d = GetDescriptor(row.id);
    ASSERT_NE(nullptr, d) << row.name << " is not in the catalogue: run scripts/param_ids";
    EXPECT_EQ(row.name, d->GetParamIDName()) << "run scripts/param_ids";
  }
  // Other tests of this binary may add their own parameters (0xFEEDC0xx).
  for (eParam_t id : GetParamIDs())
    EXPECT_TRUE(named.count(id) == 1 || (id & 0xFFFFFF00) == 0xFEEDC000)
        << GetDescriptor(id)->GetParamIDName() << " has no constant: run scripts/param_ids";
  EXPECT_EQ(1460u, kParamIDCount);
}
