// A Config of integer values only, held in a map (a parameter never set
// reads 0), with the registry's descriptors; the optional slots keep Config's
// answers. For tests of what reads or receives a Config.
#ifndef TESTS_TEST_CONFIG_H
#define TESTS_TEST_CONFIG_H

#include <map>
#include <string>
#include <vector>

#include "config/config.h"
#include "config/descriptors/param_descriptors.h"

struct IntegerConfig : Config {
  bool Set(eParam_t id, unsigned int value) override { return values[id] = value, true; }
  unsigned int Get(eParam_t id) override { return values[id]; }
  eConfigID_t GetConfigID() override { return eConfigID_Default; }
  timeval GetLastConfigUpdate() override { return timeval{}; }
  ParamDescriptor* GetParamDescriptor(eParam_t id) override { return GetDescriptor(id); }
  ParamDescriptor* GetParamDescriptor(std::string name) override { return GetDescriptor(name); }
  std::vector<unsigned int> GetParamIDs() override { return ::GetParamIDs(); }
  bool Get(eParam_t id, unsigned int& value) override { return value = Get(id), true; }
  bool Set(eParam_t, std::string) override { return false; }
  bool Get(eParam_t, std::string&) override { return false; }
  std::map<unsigned int, unsigned int> values;
};

#endif  // TESTS_TEST_CONFIG_H
