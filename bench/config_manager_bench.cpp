// The in-process store on a catalogue of the unit's size: integer and
// string reads, integer writes with 0, 1 and 10 listeners, and a write that
// the default precondition has to clamp.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <vector>

#include "config/descriptors/integer_descriptor.h"
#include "config/descriptors/param_descriptors.h"
#include "config/descriptors/string_descriptor.h"
#include "config/manager/config_manager.h"
#include "counting_listener.h"

namespace {

constexpr int kParameters = 5000;

struct Catalogue {
  std::vector<unsigned int> integers;
  std::vector<unsigned int> strings;
};

// 5000 parameters, one in ten a string, IDs spread over the 32-bit range.
const Catalogue& Build() {
  static Catalogue catalogue;
  if (!catalogue.integers.empty()) return catalogue;
  unsigned int id = 0x2545F491;
  char name[48];
  for (int i = 0; i < kParameters; ++i) {
    id = id * 1664525u + 1013904223u;
    snprintf(name, sizeof name, "eParamID_BenchStore%d", i);
    ParamDescriptor* d;
    if (i % 10 == 9) {
      StringDescriptor* s = new StringDescriptor();
      s->SetParamType(eCParam_StringValue);
      s->SetFactoryDefault("SDI 1 embedded");
      d = s;
      catalogue.strings.push_back(id);
    } else {
      IntegerDescriptor* n = new IntegerDescriptor();
      n->SetParamType(eCParam_IntegerValue);
      n->SetMinValue(0);
      n->SetMaxValue(1000);
      n->SetFactoryDefault(500);
      d = n;
      catalogue.integers.push_back(id);
    }
    d->SetParamID(id);
    d->SetParamIDName(name);
    AddDescriptor(d);
  }
  IndexDescriptorNames();
  return catalogue;
}

ConfigManager* Store() {
  static ConfigManager* store = [] {
    Build();
    ConfigManager* m = new ConfigManager(eConfigID_Default);
    m->Init();
    return m;
  }();
  return store;
}

void BM_GetInteger(benchmark::State& state) {
  ConfigManager* store = Store();
  const std::vector<unsigned int>& ids = Build().integers;
  size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(store->Get(ids[i]));
    if (++i == ids.size()) i = 0;
  }
}
BENCHMARK(BM_GetInteger);

void BM_GetString(benchmark::State& state) {
  ConfigManager* store = Store();
  const std::vector<unsigned int>& ids = Build().strings;
  size_t i = 0;
  std::string value;
  for (auto _ : state) {
    store->Get(ids[i], value);
    benchmark::DoNotOptimize(value);
    if (++i == ids.size()) i = 0;
  }
}
BENCHMARK(BM_GetString);

// Writes in range, with state.range(0) listeners registered.
void BM_SetInteger(benchmark::State& state) {
  ConfigManager* store = Store();
  const std::vector<unsigned int>& ids = Build().integers;
  std::vector<CountingListener> listeners(state.range(0));
  for (CountingListener& l : listeners) store->AddConfigEventListener(&l);
  size_t i = 0;
  unsigned int value = 0;
  for (auto _ : state) {
    store->Set(ids[i], value);
    if (++i == ids.size()) i = 0;
    value = (value + 7) % 1000;
  }
  for (CountingListener& l : listeners) store->RemoveConfigEventListener(&l);
}
BENCHMARK(BM_SetInteger)->Arg(0)->Arg(1)->Arg(10);

// Writes out of range, which the default precondition clamps.
void BM_SetClamped(benchmark::State& state) {
  ConfigManager* store = Store();
  const std::vector<unsigned int>& ids = Build().integers;
  CountingListener listener;
  store->AddConfigEventListener(&listener);
  size_t i = 0;
  for (auto _ : state) {
    store->Set(ids[i], 5000);
    if (++i == ids.size()) i = 0;
  }
  store->RemoveConfigEventListener(&listener);
}
BENCHMARK(BM_SetClamped);

}  // namespace

BENCHMARK_MAIN();
