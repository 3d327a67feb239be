#include "support/rate_limited_log.h"

#include <cerrno>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <map>

#include "support/semaphore_helper.h"

namespace {

std::atomic<uint64_t> s_generation{0};

int64_t NowMs() {
  return std::chrono::duration_cast<std::chrono::milliseconds>(
             std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

}  // namespace

void RateLimitedLog::ResetAll() { ++s_generation; }

bool RateLimitedLog::Print(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  bool printed = PrintV(format, arguments);
  va_end(arguments);
  return printed;
}

bool RateLimitedLog::Report(const char* format, ...) {
  static sem_t* lock = [] {
    auto* made = new sem_t;
    SemaphoreHelper::InitSemaphore(made);
    return made;
  }();
  static auto* kinds = new std::map<const char*, RateLimitedLog*>();
  RateLimitedLog* kind;
  {
    SemaphoreHelper hold(lock);
    RateLimitedLog*& found = (*kinds)[format];
    if (found == nullptr) found = new RateLimitedLog();
    kind = found;
  }
  va_list arguments;
  va_start(arguments, format);
  bool printed = kind->PrintV(format, arguments);
  va_end(arguments);
  return printed;
}

bool RateLimitedLog::PrintV(const char* format, va_list arguments) {
  int saved = errno;
  uint64_t generation = s_generation;
  if (_generation.exchange(generation) != generation) {
    _last_ms = 0;
    _suppressed = 0;
  }
  // 0 means never printed: the clock is shifted by one so that it is never 0.
  int64_t now = NowMs() + 1;
  int64_t last = _last_ms;
  if ((last != 0 && now - last < _interval_ms) || !_last_ms.compare_exchange_strong(last, now)) {
    ++_suppressed;
    errno = saved;
    return false;
  }
  char line[512];
  vsnprintf(line, sizeof line, format, arguments);
  unsigned long held = _suppressed.exchange(0);
  if (held > 0) {
    fprintf(stderr, "%s (%lu more since the last report)\n", line, held);
  } else {
    fprintf(stderr, "%s\n", line);
  }
  errno = saved;
  return true;
}
