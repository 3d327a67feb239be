// Reads through a MappingConfig over the in-process store of the unit's
// catalogue, against plain reads of the store: a generic parameter (one
// selector read, then the specific), and a parameter the mapper leaves
// alone. Quote the mapped figures as ratios of BM_PlainGet.
#include <benchmark/benchmark.h>

#include <cstdio>

#include "config/access/mapping_config.h"
#include "config/config_factory_impl.h"
#include "config/descriptors/param_descriptor.h"
#include "config/descriptors/param_descriptors.h"
#include "config/mapper/tundra_param_mapper.h"

using zyn::boxline::config::access::MappingConfig;

namespace {

unsigned int ID(const char* name) { return GetDescriptor(std::string(name))->GetParamID(); }

// The store and a mapping over it, made once; mapper build lines go to
// standard output before the first figure.
MappingConfig* Mapping() {
  static MappingConfig* mapping = [] {
    CreateDescriptors();
    return MappingConfig::Create("local:configid=0", new tundra::mapper::TundraParamMapper(), true,
                                 false);
  }();
  return mapping;
}

void BM_PlainGet(benchmark::State& state) {
  Config* store = Mapping()->GetDelegate();
  unsigned int specific = ID("eParamID_Vid1YUVProcAmpGain_SDI1");
  for (auto _ : state) benchmark::DoNotOptimize(store->Get(specific));
}
BENCHMARK(BM_PlainGet);

void BM_MappedGetGeneric(benchmark::State& state) {
  MappingConfig* mapping = Mapping();
  unsigned int generic = ID("eParamID_Vid1YUVProcAmpGain");
  for (auto _ : state) benchmark::DoNotOptimize(mapping->Get(generic));
}
BENCHMARK(BM_MappedGetGeneric);

void BM_MappedGetUnmapped(benchmark::State& state) {
  MappingConfig* mapping = Mapping();
  unsigned int specific = ID("eParamID_Vid1YUVProcAmpGain_SDI1");
  for (auto _ : state) benchmark::DoNotOptimize(mapping->Get(specific));
}
BENCHMARK(BM_MappedGetUnmapped);

}  // namespace

BENCHMARK_MAIN();
