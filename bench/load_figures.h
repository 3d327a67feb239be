// The figures the transport load tools print for a run: operations per
// second and the median and 99th-percentile latency of the timed samples.
// Header-only, shared by the load programs under bench/.
#ifndef BENCH_LOAD_FIGURES_H
#define BENCH_LOAD_FIGURES_H

#include <algorithm>
#include <cstddef>
#include <vector>

struct Figures {
  double opsPerSecond;
  double p50;
  double p99;
};

// `samples` (in any unit) taken over `seconds`; all zero without samples.
inline Figures Summarise(std::vector<double> samples, double seconds) {
  if (samples.empty() || seconds <= 0) return {0, 0, 0};
  std::sort(samples.begin(), samples.end());
  auto at = [&](double p) {
    return samples[std::min(samples.size() - 1, static_cast<size_t>(p * samples.size()))];
  };
  return {samples.size() / seconds, at(0.50), at(0.99)};
}

#endif  // BENCH_LOAD_FIGURES_H
