// Descriptor lookups and value encode/decode round trips: the per-Get and
// per-Set costs that the store and the protocols pay on every request.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <vector>

#include "config/descriptors/integer_descriptor.h"
#include "config/descriptors/param_descriptors.h"
#include "config/values/class_factory.h"
#include "config/values/integer_value.h"
#include "config/values/memory_deserializer.h"
#include "config/values/memory_serializer.h"
#include "config/values/string_value.h"

namespace {

constexpr int kDescriptors = 5000;

// A registry of the size of the unit's catalogue, with IDs spread over the
// 32-bit range as the catalogue's are.
std::vector<unsigned int> FillRegistry() {
  static std::vector<unsigned int> ids;
  if (!ids.empty()) return ids;
  unsigned int id = 0x9E3779B9;
  char name[40];
  for (int i = 0; i < kDescriptors; ++i) {
    id = id * 1664525u + 1013904223u;
    IntegerDescriptor* d = new IntegerDescriptor();
    d->SetParamID(id);
    snprintf(name, sizeof name, "eParamID_BenchParameter%d", i);
    d->SetParamIDName(name);
    AddDescriptor(d);
    ids.push_back(id);
  }
  IndexDescriptorNames();
  return ids;
}

void BM_GetDescriptorById(benchmark::State& state) {
  std::vector<unsigned int> ids = FillRegistry();
  size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(GetDescriptor(ids[i]));
    i = (i + 1) % ids.size();
  }
}
BENCHMARK(BM_GetDescriptorById);

void BM_GetDescriptorByName(benchmark::State& state) {
  FillRegistry();
  std::vector<std::string> names;
  for (int i = 0; i < kDescriptors; i += 7)
    names.push_back("eParamID_BenchParameter" + std::to_string(i));
  size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(GetDescriptor(names[i]));
    i = (i + 1) % names.size();
  }
}
BENCHMARK(BM_GetDescriptorByName);

// Encode a value framed as a Serializable, then decode it through the class
// registry, as a protocol payload is.
template <typename Value>
void RoundTrip(benchmark::State& state, Value& value) {
  ClassFactory::InitFactories();
  char buffer[256];
  for (auto _ : state) {
    unsigned int size = MemorySerializerSizer::GetSize(&value);
    MemorySerializer out(eSerializationFormat_Binary, buffer, buffer + size, false);
    out.Write("Serializable", &value);
    MemoryDeSerializer in(eSerializationFormat_Binary, buffer, buffer + size, false);
    Serializable* read = nullptr;
    in.Read(read);
    benchmark::DoNotOptimize(read);
  }
}

void BM_IntegerValueRoundTrip(benchmark::State& state) {
  IntegerValue value(eConfigID_Default, 0x4D575A8E, eCParam_IntegerValue, 12345);
  RoundTrip(state, value);
}
BENCHMARK(BM_IntegerValueRoundTrip);

void BM_StringValueRoundTrip(benchmark::State& state) {
  StringValue value(eConfigID_Default, 0x4D575A8E, eCParam_StringValue, "Studio B rack 3");
  RoundTrip(state, value);
}
BENCHMARK(BM_StringValueRoundTrip);

}  // namespace

BENCHMARK_MAIN();
