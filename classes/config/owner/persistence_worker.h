// PersistenceWorker keeps the store's persisted parameters (persistence type
// ePersist) in a SectorFile. Restore puts the saved values back into the
// store at start; afterwards the worker listens to the store and writes the
// persisted values behind the store's hot path: the first change after the
// last write began starts a flush interval of `flushMs`, changes within it
// are coalesced, and the values are written at its end only when they
// differ from the last sector written. Stop writes what is pending before it
// returns.
//
// The bound: a value accepted at time t is on disk by
//   max(t + flushMs, the end of the write in progress at t) + one write,
// so with writes shorter than the interval, by t + flushMs + one write. A
// change that arrives during a write starts its interval at once; the next
// write follows at that interval's end, not an interval after the write.
//
// Failures: a failed write keeps the changes pending (nothing accepted is
// dropped) and is retried one interval later, then, while it keeps failing,
// every max(flushMs, 1 s); a later success writes the then-current values.
// One line says when persistence starts failing (naming the state folder
// and the error) and one when it recovers, and the store's
// kOwnerHealthParamID text says "ok" or the failing line's text.
//
// DESIGN: ParamChanged runs on every writer's thread with the store's
// listener lock held, so it only notes the time of the first change in the
// atomic `_dirty_since` (0 when nothing is pending) and then wakes the flush
// thread; it never touches the store or a file. The flush thread reads the
// store through its ordinary Get and holds `_mutex` only to wait, never
// while it reads the store or writes a file. The failure state (`_failures`,
// `_retry_at`, `_failing`) belongs to the flush thread, or to the
// controlling thread before Start and after Stop.
//
// Ownership: the store and the SectorFile are borrowed; they must outlive
// the worker. Restore, Start, Stop and AllWritten belong to the controlling
// thread.
#ifndef CLASSES_CONFIG_OWNER_PERSISTENCE_WORKER_H
#define CLASSES_CONFIG_OWNER_PERSISTENCE_WORKER_H

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>

#include "config/owner/store_worker.h"

class Config;
class ParamDescriptor;
class SectorFile;

class PersistenceWorker : public StoreWorker {
 public:
  // What Restore did with the saved values.
  struct RestoreCounts {
    unsigned int restored = 0;
    unsigned int clamped = 0;  // restored after clamping into range
    unsigned int dropped = 0;  // invalid, or refused by the store
    unsigned int unknown = 0;  // no such parameter, or one no longer kept
  };

  PersistenceWorker(Config* store, SectorFile* file, long flushMs);
  ~PersistenceWorker() override;

  // Whether a parameter's value is kept across power cycles.
  static bool IsPersisted(const ParamDescriptor* descriptor);

  // Loads the newest valid sector into the store, each value through the
  // store's own checks. False when no valid state was found (the store
  // keeps its factory values); says which on standard error.
  bool Restore();
  [[nodiscard]] const RestoreCounts& GetRestoreCounts() const { return _counts; }

  // Takes the pending changes and writes the persisted values now if they
  // differ from the last sector. False when the write failed: the changes
  // stay pending and DueMs says when they are tried again. Called by the
  // flush thread (and tests, with the thread not started).
  bool Flush();
  // When the pending changes are due to be written, on the worker's clock
  // in milliseconds; 0 when nothing is pending. Flush thread (or tests).
  [[nodiscard]] int64_t DueMs() const;
  // Whether everything accepted was on disk when Stop returned (the last
  // write, at Stop, succeeded or was not needed).
  [[nodiscard]] bool AllWritten() const { return _all_written; }

  // The clock the flush interval is measured on (milliseconds, never 0):
  // the steady clock unless a test sets its own before Start.
  using Clock = int64_t (*)();
  void SetClock(Clock nowMs) { _now = nowMs; }

  bool ParamChanged(eParam_t id, unsigned int value, timeval when) override;
  bool ParamChanged(eParam_t id, std::string value, timeval when) override;

 private:
  void MarkDirty(eParam_t id);
  void Run() override;
  // Writes what is still pending once the thread has ended.
  void Stopped() override;

  // Records a failed or successful write: the retry time, the lines and
  // the published health.
  void NoteResult(bool written);

  SectorFile* _file;
  const long _flush_ms;
  Clock _now;
  RestoreCounts _counts;
  std::string _last_written;  // flush thread (or before Start) only
  std::atomic<int64_t> _dirty_since{0};
  unsigned int _failures = 0;  // failed writes in a row
  int64_t _retry_at = 0;       // not before, after a failure
  bool _failing = false;       // the failing line was written
  bool _all_written = true;
};

#endif  // CLASSES_CONFIG_OWNER_PERSISTENCE_WORKER_H
