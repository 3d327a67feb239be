#include "config/owner/store_worker.h"

#include "config/config.h"

bool StoreWorker::Start() {
  if (_started) return true;
  _stopping = false;
  _started = true;
  _store->AddConfigEventListener(this);
  _thread = std::thread([this] { Run(); });
  return true;
}

void StoreWorker::Stop() {
  if (!_started) return;
  _store->RemoveConfigEventListener(this);
  {
    std::lock_guard<std::mutex> lock(_mutex);
    _stopping = true;
  }
  _wake.notify_one();
  _thread.join();
  _started = false;
  Stopped();
}
