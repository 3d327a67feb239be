// CTimeVal is a small stop-watch over POSIX timevals (seconds and
// microseconds), with static operations for timeval arithmetic that the
// preset state wait and the logger use to measure durations.
//
// Ownership: a CTimeVal is a plain value; it owns nothing and is copied
// freely (the comparison operators take their operand by value).
//
// Thread-safety: there is no lock. A CTimeVal belongs to one thread at a
// time; the static operations touch only the timevals they are given.
#ifndef CLASSES_SUPPORT_CTIMEVAL_H
#define CLASSES_SUPPORT_CTIMEVAL_H

#include <sys/time.h>

class CTimeVal {
 public:
  CTimeVal();
  virtual ~CTimeVal();
  CTimeVal(const CTimeVal&) = default;
  CTimeVal& operator=(const CTimeVal&) = default;

  // *result = *x - *y. Returns 1 when the difference is negative (x earlier
  // than y), else 0. *y is normalised in place against *x: its value is kept
  // but its microseconds may leave the range 0..999999.
  static int timeval_subtract(timeval* result, timeval* x, timeval* y);
  // (*x - *y) in milliseconds: seconds * 1000 + microseconds / 1000 (integer
  // division). *y is normalised in place as by the form above.
  static long timeval_subtract(timeval* x, timeval* y);
  // Adds usec microseconds to *t and carries whole seconds while the
  // microseconds exceed 1000000. Exactly 1000000 microseconds is left as is.
  static void timeval_add_usec(timeval* t, unsigned long usec);
  // *t += *d: seconds added, microseconds through timeval_add_usec.
  static void timeval_addto(timeval* t, timeval* d);
  // *result = *a + *b the same way; result may alias a.
  static void timeval_add(timeval* result, timeval* a, timeval* b);
  // True when *a is later than *b or equal to it (deliberately not strict).
  static bool timeval_compare(timeval* a, timeval* b);
  // timeval_compare of the start times: true for equal start times too.
  static bool isGT(CTimeVal a, CTimeVal b);

  // timeval_compare of the start times: true for equal start times too.
  bool operator>(CTimeVal other);
  // The negation of operator>: true only when this watch started strictly
  // earlier than other.
  bool operator<=(CTimeVal other);
  // Adds other's start time to this start time.
  CTimeVal& operator+=(CTimeVal other);

  // Sets startTime to now and clears stopTime to 0/0 (not stopped).
  void start();
  // Sets stopTime to now.
  void stop();
  // Milliseconds from startTime to now.
  int get_elapsed_ms();
  // Milliseconds from startTime to stopTime; stops the watch first if it has
  // not been stopped since start().
  int get_total_ms();

  timeval startTime;
  timeval stopTime;  // 0/0 while the watch has not been stopped
};

#endif  // CLASSES_SUPPORT_CTIMEVAL_H
