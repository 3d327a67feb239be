// The integer parameter the transport load tools set and get: an ID of the
// tools' own, outside the unit's catalogue, ranged 0..1000000. Header-only,
// shared by the load programs under bench/.
#ifndef BENCH_LOAD_PARAMETER_H
#define BENCH_LOAD_PARAMETER_H

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

#endif  // BENCH_LOAD_PARAMETER_H
