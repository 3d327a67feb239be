// The integer parameter the transport load tools set and get: an ID of the
// tools' own, outside the unit's catalogue, ranged 0..1000000. Header-only,
// shared by the load programs under bench/.
#ifndef BENCH_LOAD_PARAMETER_H
#define BENCH_LOAD_PARAMETER_H

#include <cstdint>

#include "config/descriptors/integer_descriptor.h"
#include "config/descriptors/param_descriptors.h"

constexpr unsigned int kLoadInteger = 0xFEEDD001;

// Adds the load integer to the registry; the caller indexes the names once
// every descriptor it needs is added.
inline void AddLoadIntegerDescriptor() {
  IntegerDescriptor* integer = new IntegerDescriptor();
  integer->SetParamID(kLoadInteger);
  integer->SetParamIDName("eParamID_LoadInteger");
  integer->SetParamType(eCParam_IntegerValue);
  integer->SetMaxValue(1000000);
  AddDescriptor(integer);
}

// The range a Set of `id` may take: the integer descriptor's bounds, or the
// whole 32-bit range for an ID without one.
struct LoadRange {
  unsigned int min = 0;
  unsigned int max = 0xFFFFFFFF;
};

inline LoadRange RangeOf(unsigned int id) {
  LoadRange range;
  auto* integer = dynamic_cast<IntegerDescriptor*>(GetDescriptor(id));
  if (integer != nullptr) range = {integer->GetMinValue(), integer->GetMaxValue()};
  return range;
}

// The value of the n-th Set of a run: it walks the range and wraps, so two
// consecutive numbers never give the same value (for a range of two values
// or more) and every Set changes what is stored. Load tools draw n from one
// counter shared by their writers, so a Set also differs from the one that
// another writer made just before it.
inline unsigned int LoadValue(uint64_t n, const LoadRange& range) {
  uint64_t span = static_cast<uint64_t>(range.max) - range.min + 1;
  return range.min + static_cast<unsigned int>(n % span);
}

#endif  // BENCH_LOAD_PARAMETER_H
