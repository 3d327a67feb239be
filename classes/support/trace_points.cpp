#include "support/trace_points.h"

#include <cstdio>

#include "support/ctimeval.h"

namespace {

constexpr int kMaxTimevals = 102400;

// Only the entries below g_timevalCount are ever read, so emptying the store
// resets the count; the arrays keep their old contents until overwritten.
timeval g_timevals[kMaxTimevals];
char const* g_timevalMessages[kMaxTimevals];
int g_timevalCount = 0;

}  // namespace

void save_timeval(char const* msg) {
  if (g_timevalCount == 0) clear_timevals();
  if (g_timevalCount > kMaxTimevals - 1) return;
  gettimeofday(&g_timevals[g_timevalCount], nullptr);
  g_timevalMessages[g_timevalCount] = msg;
  ++g_timevalCount;
}

void clear_timevals() { g_timevalCount = 0; }

void print_timevals() {
  fprintf(stderr, "=========== Printing timevals ===============\n");
  for (int i = 0; i < g_timevalCount; ++i) {
    int previous = i == 0 ? 0 : i - 1;
    print_timeval(&g_timevals[0], &g_timevals[previous], &g_timevals[i], g_timevalMessages[i]);
  }
}

void print_timeval(timeval* first, timeval* previous, timeval* current, char const* msg) {
  // Copies, so that the subtraction's normalisation leaves the caller's
  // timevals untouched.
  timeval from_first = *first;
  timeval from_previous = *previous;
  long elapsed = CTimeVal::timeval_subtract(current, &from_first);
  long delta = CTimeVal::timeval_subtract(current, &from_previous);
  fprintf(stderr, "timeval: elapsed %ld, delta %ld - %s\n", elapsed, delta,
          msg != nullptr ? msg : "(null)");
}
