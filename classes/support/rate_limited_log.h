// RateLimitedLog prints one kind of error line at most once per interval,
// so that a flood of bad packets or misbehaving connections costs a line a
// second rather than a line per event. A line printed after others were
// held back ends with how many were, so the count of events is never lost:
// "NetworkUDPConnection::... - insufficient message length (41 more since
// the last report)".
//
// Each kind of line has its own limit, so different messages never hide one
// another: a call site keeps its own instance (a function-local static), or
// calls Report, which keeps one instance per format string.
//
// Threads: Print may be called from any thread at once; the state is a few
// atomics, no lock, and each line is one fprintf call. Report finds its
// instance under a semaphore of its own (instances are never freed).
// ResetAll lets every instance print its next line at once (tests that look
// for a line start from there).
#ifndef CLASSES_SUPPORT_RATE_LIMITED_LOG_H
#define CLASSES_SUPPORT_RATE_LIMITED_LOG_H

#include <atomic>
#include <cstdarg>
#include <cstdint>

class RateLimitedLog {
 public:
  static constexpr long kDefaultIntervalMs = 1000;

  explicit RateLimitedLog(long intervalMs = kDefaultIntervalMs) : _interval_ms(intervalMs) {}
  RateLimitedLog(const RateLimitedLog&) = delete;
  RateLimitedLog& operator=(const RateLimitedLog&) = delete;

  // Prints the printf-style line (the format without its final newline) on
  // standard error when none was printed in the last interval, else counts
  // it. True when it was printed; errno is kept either way.
  bool Print(const char* format, ...) __attribute__((format(printf, 2, 3)));
  // Print through the instance kept for `format` (a string literal: its
  // address names the kind of line).
  static bool Report(const char* format, ...) __attribute__((format(printf, 1, 2)));
  // Lines held back since the last printed one.
  [[nodiscard]] unsigned long Suppressed() const { return _suppressed; }
  // Every instance prints its next line whatever the interval.
  static void ResetAll();

 private:
  bool PrintV(const char* format, va_list arguments);

  const long _interval_ms;
  std::atomic<int64_t> _last_ms{0};  // when the last line was printed; 0: never
  std::atomic<unsigned long> _suppressed{0};
  std::atomic<uint64_t> _generation{0};  // ResetAll calls seen
};

#endif  // CLASSES_SUPPORT_RATE_LIMITED_LOG_H
