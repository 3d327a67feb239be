#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <unordered_map>
#include <vector>

#include "config/descriptors/integer_descriptor.h"
#include "config/descriptors/param_descriptors.h"

// These tests share the process-wide registry with every other test of the
// binary, so each uses its own IDs from a range the catalogue leaves free.
namespace {

IntegerDescriptor* MakeDescriptor(unsigned int id, const std::string& id_name) {
  IntegerDescriptor* d = new IntegerDescriptor;
  d->SetParamID(id);
  d->SetParamIDName(id_name);
  return d;
}

template <typename T>
bool Contains(const std::vector<T>& items, const T& item) {
  return std::find(items.begin(), items.end(), item) != items.end();
}

class DestructionFlag : public IntegerDescriptor {
 public:
  explicit DestructionFlag(bool* destroyed) : destroyed_(destroyed) { SetParamID(0xFEED0002); }
  ~DestructionFlag() override { *destroyed_ = true; }

 private:
  bool* destroyed_;
};

TEST(DescriptorRegistryTest, AddDescriptorReplacesLooksUpByIdAndExactNameAndIsBuiltOnce) {
  bool first_destroyed = false;
  bool second_destroyed = false;
  ParamDescriptor* first = new DestructionFlag(&first_destroyed);
  ParamDescriptor* second = new DestructionFlag(&second_destroyed);
  AddDescriptor(first);
  AddDescriptor(first);
  EXPECT_FALSE(first_destroyed) << "re-adding the same descriptor must keep it";
  AddDescriptor(second);
  EXPECT_TRUE(first_destroyed);
  EXPECT_EQ(GetDescriptor(0xFEED0002u), second);
  AddDescriptor(nullptr);
  EXPECT_EQ(GetDescriptor(0xFEED0002u), second);

  // Leave a descriptor that outlives the flags on this test's stack.
  AddDescriptor(MakeDescriptor(0xFEED0002, "eParamID_RegistryReplaced"));
  EXPECT_TRUE(second_destroyed);

  ParamDescriptor* d = MakeDescriptor(0xFEED0001, "eParamID_RegistryLookup");
  AddDescriptor(d);
  EXPECT_EQ(GetDescriptor(0xFEED0001u), d);
  EXPECT_TRUE(IsValidParamID(0xFEED0001));
  EXPECT_EQ(GetDescriptor(0u), nullptr);
  EXPECT_FALSE(IsValidParamID(0xFEED00FF));
  EXPECT_TRUE(Contains(GetParamIDs(), 0xFEED0001u));

  IndexDescriptorNames();
  EXPECT_EQ(GetDescriptor("eParamID_RegistryLookup"), d);
  EXPECT_EQ(GetDescriptor("RegistryLookup"), nullptr) << "names match exactly";
  EXPECT_EQ(GetDescriptor("eparamid_registrylookup"), nullptr);
  EXPECT_TRUE(Contains(GetParamIDNames(), std::string("eParamID_RegistryLookup")));

  CreateDescriptors();
  const std::unordered_map<unsigned int, ParamDescriptor*> built = g_paramDescriptors;
  CreateDescriptors();
  EXPECT_EQ(g_paramDescriptors, built) << "a second build must neither add nor replace";
}

}  // namespace
