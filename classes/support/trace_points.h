// Trace points for timing studies: a process-wide store of up to 102400
// time-stamped points, each with a message, and a printer that shows each
// point's time since the first point and since the point before it.
//
// Ownership: the store is static and lives for the whole process. Messages
// are not copied: callers pass string literals (or text that outlives the
// next clear_timevals).
//
// Thread-safety: none. The store is meant for single-threaded timing studies
// and is unguarded; call these functions from one thread at a time.
#ifndef CLASSES_SUPPORT_TRACE_POINTS_H
#define CLASSES_SUPPORT_TRACE_POINTS_H

#include <sys/time.h>

// Records the current time with msg. The first call after the store was
// emptied (count 0) clears the store first; once 102400 points are stored,
// further calls are ignored until clear_timevals.
void save_timeval(char const* msg);

// Empties the store.
void clear_timevals();

// Writes "=========== Printing timevals ===============\n" to standard error,
// then one print_timeval line per stored point, oldest first.
void print_timevals();

// Writes "timeval: elapsed %ld, delta %ld - %s\n" to standard error with
// (current - first) and (current - previous) in milliseconds and msg. The
// timevals are read, not changed.
void print_timeval(timeval* first, timeval* previous, timeval* current, char const* msg);

#endif  // CLASSES_SUPPORT_TRACE_POINTS_H
