// The settings owner's cost on the store's hot path: integer Sets of a kept
// parameter with the owner's write-behind persistence off and on (the ratio
// of the two is the figure to watch, target >= 0.95), and the bytes written
// to the state files per 1000 Sets of one parameter (write coalescing).
#include <benchmark/benchmark.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <string>

#include "config/descriptors/enum_descriptor.h"
#include "config/descriptors/integer_descriptor.h"
#include "config/descriptors/param_descriptors.h"
#include "config/manager/config_manager.h"
#include "configd/file_system.h"
#include "configd/persistence_worker.h"
#include "configd/sector_codec.h"
#include "configd/sector_file.h"

namespace {

// A kept, plain integer parameter of the catalogue with a range of 16.
unsigned int KeptInteger() {
  for (unsigned int id : GetParamIDs()) {
    auto* range = dynamic_cast<IntegerDescriptor*>(GetDescriptor(id));
    if (range != nullptr && dynamic_cast<EnumDescriptor*>(range) == nullptr &&
        range->GetPersistenceType() == ePersist && range->GetMinValue() + 16 < range->GetMaxValue())
      return id;
  }
  return 0;
}

// The store of configd, with persistence to a fresh folder when `kept`.
struct Owner {
  explicit Owner(bool kept) {
    CreateDescriptors();
    fflush(stderr);
    store.Init();
    if (!kept) return;
    char pattern[] = "/tmp/owner_bench_XXXXXX";
    folder = mkdtemp(pattern);
    file = std::make_unique<SectorFile>(FileSystem::Default(), folder, "settings",
                                        SectorCodec::kSettingsVersion);
    worker = std::make_unique<PersistenceWorker>(&store, file.get(), 100);
    worker->Start();
  }
  ~Owner() {
    if (worker) worker->Stop();
    if (file) file->Remove();
    if (!folder.empty()) rmdir(folder.c_str());
  }
  ConfigManager store{eConfigID_Default};
  std::string folder;
  std::unique_ptr<SectorFile> file;
  std::unique_ptr<PersistenceWorker> worker;
};

void BM_KeptIntegerSet(benchmark::State& state) {
  Owner owner(state.range(0) != 0);
  unsigned int id = KeptInteger();
  unsigned int low = dynamic_cast<IntegerDescriptor*>(GetDescriptor(id))->GetMinValue();
  unsigned int i = 0;
  for (auto _ : state) benchmark::DoNotOptimize(owner.store.Set(id, low + (++i & 15)));
  state.SetItemsProcessed(state.iterations());
  state.SetLabel(state.range(0) != 0 ? "persistence on" : "persistence off");
}
BENCHMARK(BM_KeptIntegerSet)->Arg(0)->Arg(1)->MinTime(2.0);

// 1000 Sets of one parameter spread over about 100 ms, as a knob turned by
// hand: the bytes the owner writes for them.
void BM_BytesPer1000Sets(benchmark::State& state) {
  Owner owner(true);
  unsigned int id = KeptInteger();
  unsigned int low = dynamic_cast<IntegerDescriptor*>(GetDescriptor(id))->GetMinValue();
  unsigned int i = 0;
  for (auto _ : state) {
    for (int n = 0; n < 1000; ++n) {
      owner.store.Set(id, low + (++i & 15));
      usleep(100);
    }
  }
  owner.worker->Stop();
  state.counters["bytes_per_1000_sets"] =
      static_cast<double>(owner.file->GetBytesWritten()) / state.iterations();
  state.counters["sectors_per_1000_sets"] =
      static_cast<double>(owner.file->GetOdometer()) / state.iterations();
}
BENCHMARK(BM_BytesPer1000Sets)->Iterations(10)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
