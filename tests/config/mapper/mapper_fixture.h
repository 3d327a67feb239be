// Shared by the mapper tests: the unit's catalogue with the process's first
// mapper built over it (its output kept for the tests that check it), a
// Config that answers selector reads from a map, and ID lookups by name.
#ifndef TESTS_CONFIG_MAPPER_MAPPER_FIXTURE_H
#define TESTS_CONFIG_MAPPER_MAPPER_FIXTURE_H

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "config/config.h"
#include "config/descriptors/param_descriptors.h"
#include "config/mapper/tundra_param_mapper.h"
#include "test_stderr.h"

namespace mapper_test {

using tundra::mapper::TundraParamMapper;
typedef boost::unordered_set<unsigned int> IdSet;

// What the first mapper of the process printed while building its tables.
struct BuildOutput {
  std::string out;
  std::string err;
};

// Builds the unit's catalogue, then the first mapper, once per process.
inline const BuildOutput& FirstBuild() {
  static const BuildOutput output = [] {
    Stderr([] { CreateDescriptors(); });
    BuildOutput built;
    testing::internal::CaptureStdout();
    built.err = Stderr([] { TundraParamMapper first; });
    built.out = testing::internal::GetCapturedStdout();
    return built;
  }();
  return output;
}

// The ID of a catalogue parameter by ID name (without "eParamID_").
inline unsigned int Id(const std::string& name) {
  FirstBuild();
  const ParamDescriptor* d = GetDescriptor("eParamID_" + name);
  EXPECT_NE(d, nullptr) << name;
  return d != nullptr ? d->GetParamID() : 0;
}

inline std::string NameOf(unsigned int id) {
  const ParamDescriptor* d = GetDescriptor(id);
  return d != nullptr ? d->GetParamIDName().substr(9) : "?";
}

// The set without the test-only IDs (0xFEEDxxxx) that some tests enter.
inline IdSet UnitOnly(const IdSet& ids) {
  IdSet unit;
  for (unsigned int id : ids)
    if (id >> 16 != 0xFEED) unit.insert(id);
  return unit;
}

// A Config holding integer values only; unset parameters read 0. Counts
// reads so tests can see which selectors a mapping consulted.
class SelectorConfig : public Config {
 public:
  bool Set(eParam_t id, unsigned int value) override {
    values[id] = value;
    return true;
  }
  unsigned int Get(eParam_t id) override {
    ++reads[id];
    return values.count(id) ? values[id] : 0;
  }
  eConfigID_t GetConfigID() override { return eConfigID_Default; }
  timeval GetLastConfigUpdate() override { return timeval{}; }
  ParamDescriptor* GetParamDescriptor(eParam_t id) override { return GetDescriptor(id); }
  ParamDescriptor* GetParamDescriptor(std::string name) override { return GetDescriptor(name); }
  std::vector<unsigned int> GetParamIDs() override { return ::GetParamIDs(); }
  bool Get(eParam_t id, unsigned int& value) override {
    value = Get(id);
    return true;
  }
  bool Set(eParam_t, std::string) override { return false; }
  bool Get(eParam_t, std::string&) override { return false; }

  std::map<unsigned int, unsigned int> values;
  std::map<unsigned int, int> reads;
};

// A mapper over the unit's catalogue reading its selectors from `selectors`.
// The catalogue and the first mapper are built before `mapper` is.
class MapperTest : public testing::Test {
 protected:
  void SetUp() override { mapper.SetConfig(&selectors); }

  // The ID name (without "eParamID_") that `generic` maps to.
  std::string Mapped(const std::string& generic) { return NameOf(mapper.MapParamID(Id(generic))); }

  struct BuiltFirst {
    BuiltFirst() { FirstBuild(); }
  } built;
  SelectorConfig selectors;
  TundraParamMapper mapper;
};

}  // namespace mapper_test

#endif  // TESTS_CONFIG_MAPPER_MAPPER_FIXTURE_H
