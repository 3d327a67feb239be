// The in-process store against its floor, in one binary and one run: an
// integer Get against a std::mutex + std::unordered_map lookup among the
// same 1,500 keys, and an integer Set with one listener against a Set floor
// of lock, find, compare, store and one virtual listener call. Each figure
// is the median of repetitions of a plain steady-clock loop, taken from one
// thread and then from two threads at once (the figure per thread). Prints
// one line per figure and the ratios:
//   get   1 thread  store 9.8 ns  floor 10.9 ns  ratio 0.90x
// Usage: store_floor [--reps N] [--ops N]
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

#include "config/config_event_listener.h"
#include "config/descriptors/integer_descriptor.h"
#include "config/descriptors/param_descriptors.h"
#include "config/manager/config_manager.h"
#include "counting_listener.h"

namespace {

constexpr int kKeys = 1500;

// 1,500 integer parameters 0..1000, IDs spread over the 32-bit range.
std::vector<unsigned int> BuildCatalogue() {
  std::vector<unsigned int> ids;
  unsigned int id = 0x5A17C0DE;
  char name[48];
  for (int i = 0; i < kKeys; ++i) {
    id = id * 1664525u + 1013904223u;
    snprintf(name, sizeof name, "eParamID_FloorBench%d", i);
    IntegerDescriptor* d = new IntegerDescriptor();
    d->SetParamID(id);
    d->SetParamIDName(name);
    d->SetParamType(eCParam_IntegerValue);
    d->SetMinValue(0);
    d->SetMaxValue(1000);
    d->SetFactoryDefault(500);
    AddDescriptor(d);
    ids.push_back(id);
  }
  IndexDescriptorNames();
  return ids;
}

// The floor's listener: one virtual call per Set, as the store makes.
class FloorListener {
 public:
  virtual ~FloorListener() = default;
  virtual void Changed(unsigned int id, unsigned int value) = 0;
};

class FloorSink : public FloorListener {
 public:
  void Changed(unsigned int id, unsigned int value) override { sum += id ^ value; }
  unsigned long sum = 0;
};

// The bare locked map the store is measured against.
class Floor {
 public:
  explicit Floor(const std::vector<unsigned int>& ids) {
    for (unsigned int id : ids) values[id] = 500;
  }
  unsigned int Get(unsigned int id) {
    std::lock_guard<std::mutex> hold(lock);
    auto it = values.find(id);
    return it == values.end() ? 0 : it->second;
  }
  bool Set(unsigned int id, unsigned int value) {
    std::lock_guard<std::mutex> hold(lock);
    auto it = values.find(id);
    if (it == values.end()) return false;
    if (it->second != value) it->second = value;
    listener->Changed(id, value);
    return true;
  }
  FloorListener* listener = nullptr;

 private:
  std::mutex lock;
  std::unordered_map<unsigned int, unsigned int> values;
};

// ns per operation of `ops` calls of body(i), median of `reps` runs.
double Median(int reps, int ops, const std::function<void(int)>& body) {
  std::vector<double> runs;
  for (int r = 0; r < reps; ++r) {
    auto start = std::chrono::steady_clock::now();
    body(ops);
    std::chrono::duration<double, std::nano> took = std::chrono::steady_clock::now() - start;
    runs.push_back(took.count() / ops);
  }
  std::sort(runs.begin(), runs.end());
  return runs[runs.size() / 2];
}

// The per-thread figure of `body` run by two threads at once, started
// together; the mean of the two threads' medians.
double TwoThreads(int reps, int ops, const std::function<void(int, int)>& body) {
  std::atomic<int> ready{0};
  double figures[2] = {0, 0};
  auto run = [&](int t) {
    ready.fetch_add(1);
    while (ready.load() < 2) {
    }
    figures[t] = Median(reps, ops, [&](int n) { body(t, n); });
  };
  std::thread a(run, 0), b(run, 1);
  a.join();
  b.join();
  return (figures[0] + figures[1]) / 2;
}

volatile unsigned int g_sink;

void Report(const char* what, const char* threads, double store, double floor) {
  printf("%-4s %-9s store %6.1f ns  floor %6.1f ns  ratio %5.2fx\n", what, threads, store, floor,
         store / floor);
}

}  // namespace

int main(int argc, char** argv) {
  int reps = 21, ops = 300000;
  for (int i = 1; i + 1 < argc; i += 2) {
    if (!strcmp(argv[i], "--reps")) reps = atoi(argv[i + 1]);
    if (!strcmp(argv[i], "--ops")) ops = atoi(argv[i + 1]);
  }
  const std::vector<unsigned int> ids = BuildCatalogue();
  ConfigManager store(eConfigID_Default);
  fflush(stderr);
  store.Init();
  Floor floor(ids);
  FloorSink sink;
  floor.listener = &sink;
  CountingListener listener;
  store.AddConfigEventListener(&listener);

  // Each thread walks the keys from its own starting point.
  auto getStore = [&](int t, int n) {
    unsigned int sum = 0;
    size_t k = t * kKeys / 2;
    for (int i = 0; i < n; ++i) {
      sum += store.Get(ids[k]);
      if (++k == ids.size()) k = 0;
    }
    g_sink = sum;
  };
  auto getFloor = [&](int t, int n) {
    unsigned int sum = 0;
    size_t k = t * kKeys / 2;
    for (int i = 0; i < n; ++i) {
      sum += floor.Get(ids[k]);
      if (++k == ids.size()) k = 0;
    }
    g_sink = sum;
  };
  auto setStore = [&](int t, int n) {
    size_t k = t * kKeys / 2;
    unsigned int value = t;
    for (int i = 0; i < n; ++i) {
      store.Set(ids[k], value);
      if (++k == ids.size()) k = 0;
      value = (value + 7) % 1000;
    }
  };
  auto setFloor = [&](int t, int n) {
    size_t k = t * kKeys / 2;
    unsigned int value = t;
    for (int i = 0; i < n; ++i) {
      floor.Set(ids[k], value);
      if (++k == ids.size()) k = 0;
      value = (value + 7) % 1000;
    }
  };

  // Warm both, then alternate store and floor figures.
  getStore(0, ops);
  getFloor(0, ops);
  setStore(0, ops / 4);
  setFloor(0, ops / 4);
  double g1 = Median(reps, ops, [&](int n) { getStore(0, n); });
  double gf1 = Median(reps, ops, [&](int n) { getFloor(0, n); });
  double s1 = Median(reps, ops / 4, [&](int n) { setStore(0, n); });
  double sf1 = Median(reps, ops / 4, [&](int n) { setFloor(0, n); });
  double g2 = TwoThreads(reps, ops, getStore);
  double gf2 = TwoThreads(reps, ops, getFloor);
  double s2 = TwoThreads(reps, ops / 4, setStore);
  double sf2 = TwoThreads(reps, ops / 4, setFloor);
  Report("get", "1 thread", g1, gf1);
  Report("set", "1 thread", s1, sf1);
  Report("get", "2 threads", g2, gf2);
  Report("set", "2 threads", s2, sf2);
  printf("get 2 threads / 1 thread: store %.2fx floor %.2fx\n", g2 / g1, gf2 / gf1);
  store.RemoveConfigEventListener(&listener);
  return listener.sum.load() == 0 ? 1 : 0;
}
