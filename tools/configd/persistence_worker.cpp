#include "configd/persistence_worker.h"

#include <chrono>
#include <cstdio>

#include "config/config.h"
#include "config/descriptors/param_descriptors.h"
#include "config/values/config_value.h"
#include "configd/sector_file.h"
#include "configd/value_image.h"

namespace {

// How long a failed write waits before the next attempt, at least.
constexpr long kRetryMs = 1000;

}  // namespace

PersistenceWorker::PersistenceWorker(Config* store, SectorFile* file, long flushMs)
    : StoreWorker(store), _file(file), _flush_ms(flushMs) {}

PersistenceWorker::~PersistenceWorker() { Stop(); }

void PersistenceWorker::Stopped() {
  if (_dirty.exchange(false)) Flush();
}

bool PersistenceWorker::IsPersisted(const ParamDescriptor* descriptor) {
  return descriptor->GetPersistenceType() == ePersist;
}

bool PersistenceWorker::Restore() {
  _counts = RestoreCounts();
  std::string data;
  SectorFile::LoadResult loaded = _file->Load(data);
  if (loaded != SectorFile::LoadResult::kLoaded) {
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
  if (_counts.clamped + _counts.dropped + _counts.unknown > 0) _dirty = true;
  return true;
}

bool PersistenceWorker::Flush() {
  std::string data = ValueImage::Capture(_store, &PersistenceWorker::IsPersisted);
  if (data == _last_written) return true;
  if (!_file->Write(data)) return false;
  _last_written.swap(data);
  return true;
}

void PersistenceWorker::Run() {
  std::unique_lock<std::mutex> lock(_mutex);
  while (!_stopping) {
    _wake.wait(lock, [this] { return _stopping || _dirty.load(); });
    if (_stopping) break;
    // Coalesce: everything changed within the interval goes in one write.
    _wake.wait_for(lock, std::chrono::milliseconds(_flush_ms), [this] { return _stopping; });
    if (_stopping) break;
    _dirty = false;
    lock.unlock();
    bool written = Flush();
    lock.lock();
    if (!written) {
      _dirty = true;
      long pause = _flush_ms > kRetryMs ? _flush_ms : kRetryMs;
      _wake.wait_for(lock, std::chrono::milliseconds(pause), [this] { return _stopping; });
    }
  }
}

void PersistenceWorker::MarkDirty(eParam_t id) {
  if (_dirty.load(std::memory_order_relaxed)) return;
  ParamDescriptor* descriptor = GetDescriptor(id);
  if (descriptor == nullptr || !IsPersisted(descriptor)) return;
  if (_dirty.exchange(true)) return;
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
