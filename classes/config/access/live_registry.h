// LiveRegistry keeps the live objects of one kind (the connections of one
// transport's server) so that a process can count them, stop them all and
// wait until their threads have deleted them: a clean shutdown. Each object
// enters itself when made and leaves when deleted.
//
// StartDetachedThread starts the detached thread such an object runs on,
// with a small explicit stack, so that thousands of connections fit;
// RunThenDelete<T> is the entry of a connection's thread.
//
// Thread-safety: every operation may be called from any thread; one mutex
// guards the set. StopAll calls Stop on each object under it, so Stop must
// not block.
#ifndef CLASSES_CONFIG_ACCESS_LIVE_REGISTRY_H
#define CLASSES_CONFIG_ACCESS_LIVE_REGISTRY_H

#include <pthread.h>

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <set>

namespace zyn {
namespace config {
namespace access {

template <typename T>
class LiveRegistry {
 public:
  void Add(T* item) {
    std::lock_guard<std::mutex> hold(_lock);
    _all.insert(item);
  }
  void Remove(T* item) {
    std::lock_guard<std::mutex> hold(_lock);
    _all.erase(item);
    _gone.notify_all();
  }
  int Count() {
    std::lock_guard<std::mutex> hold(_lock);
    return static_cast<int>(_all.size());
  }
  void StopAll() {
    std::lock_guard<std::mutex> hold(_lock);
    for (T* item : _all) item->Stop();
  }
  // False if objects are still alive after `timeoutMs`.
  bool WaitForAll(long timeoutMs) {
    std::unique_lock<std::mutex> hold(_lock);
    return _gone.wait_for(hold, std::chrono::milliseconds(timeoutMs),
                          [this] { return _all.empty(); });
  }

 private:
  std::mutex _lock;
  std::condition_variable _gone;
  std::set<T*> _all;  // guarded by _lock
};

// Starts `entry(arg)` on a detached thread with a stack of `stackSize`
// bytes. The pthread_create result: 0 on success.
inline int StartDetachedThread(void* (*entry)(void*), void* arg, size_t stackSize) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
  pthread_attr_setstacksize(&attributes, stackSize);
  pthread_t thread;
  int rc = pthread_create(&thread, &attributes, entry, arg);
  pthread_attr_destroy(&attributes);
  return rc;
}

// A connection thread's entry: runs the connection, then deletes it.
template <typename T>
void* RunThenDelete(void* arg) {
  T* connection = static_cast<T*>(arg);
  connection->Run();
  delete connection;
  return nullptr;
}

}  // namespace access
}  // namespace config
}  // namespace zyn

#endif  // CLASSES_CONFIG_ACCESS_LIVE_REGISTRY_H
