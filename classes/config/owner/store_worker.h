// StoreWorker is the base of the owner's workers (persistence, registers):
// a listener of the store with a thread of its own. The store calls the
// listener on the writer's thread with its listener lock held, so a worker's
// callbacks only note work under `_mutex` and wake the thread (`_wake`);
// the thread, running the subclass's Run, does the work and is the only one
// that writes to the store or to files.
//
// Start registers the listener and starts the thread; Stop unregisters,
// sets `_stopping` (under `_mutex`), wakes the thread, joins it and then
// calls Stopped. Both belong to the controlling thread; a subclass's
// destructor calls Stop, since its Run uses the subclass's members.
#ifndef CLASSES_CONFIG_OWNER_STORE_WORKER_H
#define CLASSES_CONFIG_OWNER_STORE_WORKER_H

#include <condition_variable>
#include <mutex>
#include <thread>

#include "config/config_event_listener.h"

class Config;

class StoreWorker : public ConfigEventListener {
 public:
  // The store is borrowed and must outlive the worker.
  explicit StoreWorker(Config* store) : _store(store) {}

  // Registers with the store and starts the thread. Idempotent.
  bool Start();
  // Unregisters, ends the thread, then Stopped. Idempotent.
  void Stop();

 protected:
  // The thread's body: returns once `_stopping` is set.
  virtual void Run() = 0;
  // After the thread has ended (controlling thread).
  virtual void Stopped() {}

  Config* _store;
  std::mutex _mutex;
  std::condition_variable _wake;
  bool _stopping = false;  // guarded by _mutex

 private:
  bool _started = false;  // controlling thread only
  std::thread _thread;
};

#endif  // CLASSES_CONFIG_OWNER_STORE_WORKER_H
