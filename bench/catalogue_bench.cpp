// Start-up cost of the catalogue: building it with CreateDescriptors, and a
// store of it (ConfigManager::Init, one value per parameter). The heap each
// takes is reported as counters: catalogue_bytes for the descriptors,
// store_bytes for one store's values, both from mallinfo2 around a build.
// BM_UnitIdentity, the MAC address and serial number lookups that the build
// makes, is the baseline the catalogue's time is read against.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>

#include <cstdio>

#include "config/descriptors/param_descriptors.h"
#include "config/manager/config_manager.h"
#include "support/serial_number.h"

namespace {

void ClearRegistry() {
  for (auto& entry : g_paramDescriptors) delete entry.second;
  g_paramDescriptors.clear();
}

size_t HeapInUse() { return mallinfo2().uordblks; }

// Sends standard error to /dev/null for its lifetime: the store reports
// every Init there.
class QuietStderr {
 public:
  QuietStderr() : saved_(dup(2)) {
    fflush(stderr);
    int null = open("/dev/null", O_WRONLY);
    dup2(null, 2);
    close(null);
  }
  ~QuietStderr() {
    fflush(stderr);
    dup2(saved_, 2);
    close(saved_);
  }
  QuietStderr(const QuietStderr&) = delete;
  QuietStderr& operator=(const QuietStderr&) = delete;

 private:
  int saved_;
};

void BM_UnitIdentity(benchmark::State& state) {
  QuietStderr quiet;
  for (auto _ : state) {
    benchmark::DoNotOptimize(SerialNumber_KR9::GetMacAddress());
    benchmark::DoNotOptimize(SerialNumber_KR9::GetFormattedSerialNumber());
  }
}
BENCHMARK(BM_UnitIdentity)->Unit(benchmark::kMicrosecond);

void BM_CreateDescriptors(benchmark::State& state) {
  QuietStderr quiet;
  ClearRegistry();
  const size_t before = HeapInUse();
  CreateDescriptors();
  state.counters["catalogue_bytes"] = static_cast<double>(HeapInUse() - before);
  state.counters["descriptors"] = static_cast<double>(g_paramDescriptors.size());
  for (auto _ : state) {
    state.PauseTiming();
    ClearRegistry();
    state.ResumeTiming();
    CreateDescriptors();
  }
}
BENCHMARK(BM_CreateDescriptors)->Unit(benchmark::kMicrosecond);

void BM_ConfigManagerInit(benchmark::State& state) {
  QuietStderr quiet;
  CreateDescriptors();
  {
    const size_t before = HeapInUse();
    ConfigManager store(eConfigID_Default);
    store.Init();
    state.counters["store_bytes"] = static_cast<double>(HeapInUse() - before);
  }
  for (auto _ : state) {
    ConfigManager store(eConfigID_Default);
    store.Init();
    benchmark::DoNotOptimize(store.Get(0x663F2B65));
  }
}
BENCHMARK(BM_ConfigManagerInit)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
