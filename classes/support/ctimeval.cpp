#include "support/ctimeval.h"

namespace {

constexpr long kUsecPerSec = 1000000;

}  // namespace

CTimeVal::CTimeVal() : startTime{0, 0}, stopTime{0, 0} {}

CTimeVal::~CTimeVal() = default;

int CTimeVal::timeval_subtract(timeval* result, timeval* x, timeval* y) {
  // Carry into y so that x->tv_usec - y->tv_usec lands in 0..1000000.
  if (x->tv_usec < y->tv_usec) {
    long n = (y->tv_usec - x->tv_usec) / kUsecPerSec + 1;
    y->tv_usec -= kUsecPerSec * n;
    y->tv_sec += n;
  }
  if (x->tv_usec - y->tv_usec > kUsecPerSec) {
    long n = (x->tv_usec - y->tv_usec) / kUsecPerSec;
    y->tv_usec += kUsecPerSec * n;
    y->tv_sec -= n;
  }
  result->tv_sec = x->tv_sec - y->tv_sec;
  result->tv_usec = x->tv_usec - y->tv_usec;
  return x->tv_sec < y->tv_sec ? 1 : 0;
}

long CTimeVal::timeval_subtract(timeval* x, timeval* y) {
  timeval result;
  timeval_subtract(&result, x, y);
  return static_cast<long>(result.tv_sec) * 1000 + static_cast<long>(result.tv_usec) / 1000;
}

void CTimeVal::timeval_add_usec(timeval* t, unsigned long usec) {
  t->tv_usec += static_cast<suseconds_t>(usec);
  if (t->tv_usec > kUsecPerSec) {
    // As many whole seconds as bring the microseconds to at most 1000000.
    long n = (t->tv_usec - 1) / kUsecPerSec;
    t->tv_usec -= kUsecPerSec * n;
    t->tv_sec += n;
  }
}

void CTimeVal::timeval_addto(timeval* t, timeval* d) {
  t->tv_sec += d->tv_sec;
  timeval_add_usec(t, static_cast<unsigned long>(d->tv_usec));
}

void CTimeVal::timeval_add(timeval* result, timeval* a, timeval* b) {
  timeval sum = *a;
  timeval_addto(&sum, b);
  *result = sum;
}

bool CTimeVal::timeval_compare(timeval* a, timeval* b) {
  return a->tv_sec > b->tv_sec || (a->tv_sec == b->tv_sec && a->tv_usec >= b->tv_usec);
}

bool CTimeVal::isGT(CTimeVal a, CTimeVal b) { return timeval_compare(&a.startTime, &b.startTime); }

bool CTimeVal::operator>(CTimeVal other) { return timeval_compare(&startTime, &other.startTime); }

bool CTimeVal::operator<=(CTimeVal other) { return !timeval_compare(&startTime, &other.startTime); }

CTimeVal& CTimeVal::operator+=(CTimeVal other) {
  timeval_addto(&startTime, &other.startTime);
  return *this;
}

void CTimeVal::start() {
  gettimeofday(&startTime, nullptr);
  stopTime.tv_sec = 0;
  stopTime.tv_usec = 0;
}

void CTimeVal::stop() { gettimeofday(&stopTime, nullptr); }

int CTimeVal::get_elapsed_ms() {
  timeval now;
  gettimeofday(&now, nullptr);
  // Subtract from a copy: the normalisation must not leave startTime with
  // microseconds outside 0..999999, which would upset later comparisons.
  timeval began = startTime;
  return static_cast<int>(timeval_subtract(&now, &began));
}

int CTimeVal::get_total_ms() {
  if (stopTime.tv_sec == 0 && stopTime.tv_usec == 0) stop();
  timeval began = startTime;
  return static_cast<int>(timeval_subtract(&stopTime, &began));
}
