// The settings owner's cost on the store's hot path: integer Sets of a kept
// parameter with the owner's write-behind persistence off and on (the ratio
// of the two is the figure to watch, target >= 0.95), and the bytes written
// to the state files per 1000 Sets of one parameter (write coalescing), and
// how long an accepted kept value takes to reach disk (set-to-disk p50, p99
// and max in microseconds) while a writer sets it at full speed.
#include <benchmark/benchmark.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "config/descriptors/enum_descriptor.h"
#include "config/descriptors/integer_descriptor.h"
#include "config/descriptors/param_descriptors.h"
#include "config/manager/config_manager.h"
#include "config/owner/file_system.h"
#include "config/owner/persistence_worker.h"
#include "config/owner/sector_codec.h"
#include "config/owner/sector_file.h"

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

using Clock = std::chrono::steady_clock;

constexpr unsigned int kSystemName = 0x663F2B65;  // a kept text, 1 to 20 characters

// Forwards to the system and notes, when a written file is closed (after its
// fsync), the newest "#<sequence>" mark the file holds, with the time.
class MarkedFiles : public FileSystem {
 public:
  ssize_t Write(int fd, const char* data, size_t size) override {
    std::lock_guard<std::mutex> lock(mutex);
    pending[fd].append(data, size);
    return FileSystem::Write(fd, data, size);
  }
  int Close(int fd) override {
    int closed = FileSystem::Close(fd);
    std::lock_guard<std::mutex> lock(mutex);
    auto found = pending.find(fd);
    if (found == pending.end()) return closed;
    size_t at = found->second.find("#1");
    if (at != std::string::npos)
      written.emplace_back(Clock::now(), std::stoul(found->second.substr(at + 1, 9)));
    pending.erase(found);
    return closed;
  }
  std::mutex mutex;
  std::map<int, std::string> pending;
  std::vector<std::pair<Clock::time_point, unsigned long>> written;
};

// The store of configd, with persistence to a fresh folder when `kept`.
struct Owner {
  explicit Owner(bool kept, FileSystem* files = FileSystem::Default()) {
    CreateDescriptors();
    fflush(stderr);
    store.Init();
    if (!kept) return;
    char pattern[] = "/tmp/owner_bench_XXXXXX";
    folder = mkdtemp(pattern);
    file = std::make_unique<SectorFile>(files, folder, "settings", SectorCodec::kSettingsVersion);
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

// A writer sets a kept text to "#<sequence>" at full speed for two seconds
// (flush interval 100 ms); each Set's set-to-disk latency is the time from
// the Set until a write holding it (or a later value) was fsynced and closed.
void BM_SetToDiskLatency(benchmark::State& state) {
  MarkedFiles files;
  std::vector<Clock::time_point> sets;
  for (auto _ : state) {
    Owner owner(true, &files);
    sets.clear();
    sets.reserve(1 << 22);
    Clock::time_point end = Clock::now() + std::chrono::seconds(2);
    for (unsigned long n = 100000000; Clock::now() < end && sets.size() < (1u << 22); ++n) {
      owner.store.Set(kSystemName, "#" + std::to_string(n));
      sets.push_back(Clock::now());
    }
    owner.worker->Stop();
  }
  std::vector<double> latencies;
  size_t w = 0;
  for (size_t i = 0; i < sets.size(); ++i) {
    while (w < files.written.size() && files.written[w].second < 100000000 + i) ++w;
    if (w == files.written.size()) break;
    latencies.push_back(
        std::chrono::duration<double, std::micro>(files.written[w].first - sets[i]).count());
  }
  std::sort(latencies.begin(), latencies.end());
  if (latencies.empty()) return;
  state.counters["p50_us"] = latencies[latencies.size() / 2];
  state.counters["p99_us"] = latencies[latencies.size() * 99 / 100];
  state.counters["max_us"] = latencies.back();
  state.counters["sets"] = static_cast<double>(sets.size());
}
BENCHMARK(BM_SetToDiskLatency)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
