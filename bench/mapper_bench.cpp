// MapParamID over the unit's catalogue with an in-process store behind it,
// one benchmark per scheme. BM_StoreGet, the one selector read that every
// mapping makes, and BM_MapUnmapped, an ID that is not mapped, are the
// baselines the schemes are read against.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

#include "config/descriptors/param_descriptors.h"
#include "config/manager/config_manager.h"
#include "config/mapper/tundra_param_mapper.h"

namespace {

using tundra::mapper::TundraParamMapper;

constexpr unsigned int kFrontPanelLock = 0x4D575A8E;
constexpr unsigned int kVid1VideoInput = 0xD22FD6CA;
constexpr unsigned int kFrameRateMode = 0x23130FDA;
constexpr unsigned int kVid2ActualOutputFormat = 0xC5934F62;
constexpr unsigned int kIPConfig = 0xAFA99192;

// One generic per scheme.
constexpr unsigned int kVid1YUVProcAmpGain = 0x883AD0D9;
constexpr unsigned int kVid2OutputFormat = 0xD955E40D;
constexpr unsigned int kVid2OutputTimingH = 0xC97C9E85;
constexpr unsigned int kSubnetMask = 0xF39DDE8A;

// The catalogue, a store of it with selectors off their defaults, and a
// mapper reading them; built once, with the build's messages silenced.
struct Fixture {
  Fixture() {
    fflush(stdout);
    fflush(stderr);
    int out = dup(1);
    int err = dup(2);
    int null = open("/dev/null", O_WRONLY);
    dup2(null, 1);
    dup2(null, 2);
    CreateDescriptors();
    store = new ConfigManager(eConfigID_Default);
    store->Init();
    mapper = new TundraParamMapper();
    fflush(stdout);
    fflush(stderr);
    dup2(out, 1);
    dup2(err, 2);
    close(null);
    close(out);
    close(err);
    store->Set(kVid1VideoInput, 6);
    store->Set(kFrameRateMode, 2);
    store->Set(kVid2ActualOutputFormat, 44);
    store->Set(kIPConfig, 1);
    mapper->SetConfig(store);
  }
  ConfigManager* store;
  TundraParamMapper* mapper;
};

Fixture& Get() {
  static Fixture* fixture = new Fixture();
  return *fixture;
}

void BM_StoreGet(benchmark::State& state) {
  ConfigManager* store = Get().store;
  for (auto _ : state) benchmark::DoNotOptimize(store->Get(kVid1VideoInput));
}
BENCHMARK(BM_StoreGet);

void MapOne(benchmark::State& state, unsigned int id) {
  TundraParamMapper* mapper = Get().mapper;
  unsigned int mapped = 0;
  for (auto _ : state) {
    mapped = mapper->MapParamID(id);
    benchmark::DoNotOptimize(mapped);
  }
  if (id != kFrontPanelLock && mapped == id) state.SkipWithError("not mapped");
}

void BM_MapUnmapped(benchmark::State& state) { MapOne(state, kFrontPanelLock); }
BENCHMARK(BM_MapUnmapped);
void BM_MapByInput(benchmark::State& state) { MapOne(state, kVid1YUVProcAmpGain); }
BENCHMARK(BM_MapByInput);
void BM_MapByFrameRateFamily(benchmark::State& state) { MapOne(state, kVid2OutputFormat); }
BENCHMARK(BM_MapByFrameRateFamily);
void BM_MapByOutputFormat(benchmark::State& state) { MapOne(state, kVid2OutputTimingH); }
BENCHMARK(BM_MapByOutputFormat);
void BM_MapByIPConfig(benchmark::State& state) { MapOne(state, kSubnetMask); }
BENCHMARK(BM_MapByIPConfig);

}  // namespace

BENCHMARK_MAIN();
