#include "config/owner/persistence_worker.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>

#include "config/config.h"
#include "config/descriptors/owner_params.h"
#include "config/descriptors/param_descriptors.h"
#include "config/owner/sector_file.h"
#include "config/owner/value_image.h"
#include "config/values/config_value.h"
#include "support/logger.h"

namespace {

// How long a write that keeps failing waits before the next attempt, at
// least.
constexpr long kRetryMs = 1000;

int64_t SteadyMs() {
  auto since = std::chrono::steady_clock::now().time_since_epoch();
  return 1 + std::chrono::duration_cast<std::chrono::milliseconds>(since).count();
}

}  // namespace

PersistenceWorker::PersistenceWorker(Config* store, SectorFile* file, long flushMs)
    : StoreWorker(store), _file(file), _flush_ms(flushMs), _now(&SteadyMs) {}

PersistenceWorker::~PersistenceWorker() { Stop(); }

void PersistenceWorker::Stopped() { _all_written = _dirty_since.load() == 0 || Flush(); }

bool PersistenceWorker::IsPersisted(const ParamDescriptor* descriptor) {
  return descriptor->GetPersistenceType() == ePersist;
}

bool PersistenceWorker::Restore() {
  _counts = RestoreCounts();
  std::string data;
  SectorFile::LoadResult loaded = _file->Load(data);
  if (loaded != SectorFile::LoadResult::kLoaded) {
    // A first start has nothing saved: that is said only when verbose.
    if (loaded != SectorFile::LoadResult::kMissing || zyn::logging::IsVerbose())
      fprintf(stderr, "PersistenceWorker::Restore - %s, starting at factory values\n",
              loaded == SectorFile::LoadResult::kMissing ? "no saved settings"
                                                         : "no valid saved settings");
    return false;
  }
  zyn::config::values::Vector values;
  if (!ValueImage::Parse(data, values)) {
    fprintf(stderr,
            "PersistenceWorker::Restore - saved settings do not read back, starting at factory "
            "values\n");
    return false;
  }
  _last_written = data;
  for (size_t i = 0; i < values.Size(); ++i) {
    auto* value = static_cast<ConfigValue*>(values.Get(i));
    unsigned int id = value->GetParamID();
    std::string why;
    ValueImage::Fit fit = ValueImage::Check(value, why);
    ParamDescriptor* descriptor = GetDescriptor(id);
    if (fit == ValueImage::Fit::kUnknown || !IsPersisted(descriptor)) {
      ++_counts.unknown;
      continue;
    }
    const std::string idName = descriptor->GetParamIDName();
    const char* name = idName.c_str();
    if (fit == ValueImage::Fit::kInvalid) {
      fprintf(stderr, "PersistenceWorker::Restore - %s dropped: %s\n", name, why.c_str());
      ++_counts.dropped;
      continue;
    }
    if (!ValueImage::Apply(_store, value)) {
      fprintf(stderr, "PersistenceWorker::Restore - %s dropped: refused by the store\n", name);
      ++_counts.dropped;
      continue;
    }
    if (fit == ValueImage::Fit::kClamped) {
      fprintf(stderr, "PersistenceWorker::Restore - %s %s\n", name, why.c_str());
      ++_counts.clamped;
    }
    ++_counts.restored;
  }
  fprintf(stderr,
          "PersistenceWorker::Restore - %u settings restored (odometer %u), %u clamped, "
          "%u dropped, %u unknown skipped\n",
          _counts.restored, _file->GetOdometer(), _counts.clamped, _counts.dropped,
          _counts.unknown);
  // What the store holds now differs from the sector: write the cleaned state.
  if (_counts.clamped + _counts.dropped + _counts.unknown > 0) _dirty_since = _now();
  return true;
}

int64_t PersistenceWorker::DueMs() const {
  int64_t since = _dirty_since.load();
  return since == 0 ? 0 : std::max(since + _flush_ms, _retry_at);
}

bool PersistenceWorker::Flush() {
  // Changes from here on start an interval of their own.
  int64_t since = _dirty_since.exchange(0);
  std::string data = ValueImage::Capture(_store, &PersistenceWorker::IsPersisted);
  bool written = data == _last_written || _file->Write(data);
  if (written) {
    if (data != _last_written) _last_written.swap(data);
  } else {
    // Still pending since the older of the two changes.
    int64_t newer = 0;
    if (since == 0) since = _now();
    if (!_dirty_since.compare_exchange_strong(newer, since)) _dirty_since = since;
  }
  NoteResult(written);
  return written;
}

void PersistenceWorker::NoteResult(bool written) {
  if (written) {
    _failures = 0;
    _retry_at = 0;
    if (!_failing) return;
    _failing = false;
    fprintf(stderr, "PersistenceWorker - persistence recovered: %s written\n",
            _file->GetFolder().c_str());
    _store->Set(kOwnerHealthParamID, std::string(kOwnerHealthOk));
    return;
  }
  // Once more after one interval, then at most once a second.
  ++_failures;
  _retry_at = _now() + (_failures == 1 ? _flush_ms : std::max(_flush_ms, kRetryMs));
  if (_failing) return;
  _failing = true;
  std::string health = "persistence failing: " + _file->GetFolder() + ": " +
                       strerror(_file->GetLastError() != 0 ? _file->GetLastError() : EIO);
  fprintf(stderr, "PersistenceWorker - %s\n", health.c_str());
  _store->Set(kOwnerHealthParamID, health);
}

void PersistenceWorker::Run() {
  std::unique_lock<std::mutex> lock(_mutex);
  while (!_stopping) {
    int64_t due = DueMs();
    if (due == 0) {
      _wake.wait(lock, [this] { return _stopping || _dirty_since.load() != 0; });
      continue;
    }
    // Coalesce: everything changed until the interval ends goes in one write.
    int64_t now = _now();
    if (now < due) {
      _wake.wait_for(lock, std::chrono::milliseconds(due - now), [this] { return _stopping; });
      continue;
    }
    lock.unlock();
    Flush();
    lock.lock();
  }
}

void PersistenceWorker::MarkDirty(eParam_t id) {
  if (_dirty_since.load(std::memory_order_relaxed) != 0) return;
  ParamDescriptor* descriptor = GetDescriptor(id);
  if (descriptor == nullptr || !IsPersisted(descriptor)) return;
  int64_t clean = 0;
  if (!_dirty_since.compare_exchange_strong(clean, _now())) return;
  std::lock_guard<std::mutex> lock(_mutex);
  _wake.notify_one();
}

bool PersistenceWorker::ParamChanged(eParam_t id, unsigned int, timeval) {
  MarkDirty(id);
  return true;
}

bool PersistenceWorker::ParamChanged(eParam_t id, std::string, timeval) {
  MarkDirty(id);
  return true;
}
