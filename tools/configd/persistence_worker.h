// PersistenceWorker keeps the store's persisted parameters (persistence type
// ePersist) in a SectorFile. Restore puts the saved values back into the
// store at start; afterwards the worker listens to the store and writes the
// persisted values behind the store's hot path: the first change after a
// write starts a flush interval, changes within it are coalesced, and the
// values are written at its end only when they differ from the last
// sector written. Stop writes what is pending before it returns.
//
// DESIGN: ParamChanged runs on every writer's thread with the store's
// listener lock held, so it only raises the atomic `_dirty` flag (and wakes
// the flush thread on the first change); it never touches the store or a
// file. The flush thread reads the store through its ordinary Get and holds
// `_mutex` only to wait, never while it reads the store or writes a file.
//
// Ownership: the store and the SectorFile are borrowed; they must outlive
// the worker. Restore, Start and Stop belong to the controlling thread.
#ifndef TOOLS_CONFIGD_PERSISTENCE_WORKER_H
#define TOOLS_CONFIGD_PERSISTENCE_WORKER_H

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>

#include "configd/store_worker.h"

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

  // Writes the persisted values now if they differ from the last sector;
  // false when a write failed. Called by the flush thread (and tests).
  bool Flush();

  bool ParamChanged(eParam_t id, unsigned int value, timeval when) override;
  bool ParamChanged(eParam_t id, std::string value, timeval when) override;

 private:
  void MarkDirty(eParam_t id);
  void Run() override;
  // Writes what is still pending once the thread has ended.
  void Stopped() override;

  SectorFile* _file;
  const long _flush_ms;
  RestoreCounts _counts;
  std::string _last_written;  // flush thread (or before Start) only
  std::atomic<bool> _dirty{false};
};

#endif  // TOOLS_CONFIGD_PERSISTENCE_WORKER_H
