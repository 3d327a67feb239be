#include "configweb/value_cache.h"

namespace configweb {

void ValueCache::Changed(unsigned int id, const common::ParamValue& value) {
  std::lock_guard<std::mutex> hold(_lock);
  _live = true;
  Entry& entry = _entries[id];
  entry.lastEvent = ++_events;
  if (entry.valid) entry.value = value;
}

bool ValueCache::Find(unsigned int id, common::ParamValue& value) {
  std::lock_guard<std::mutex> hold(_lock);
  auto it = _entries.find(id);
  if (it == _entries.end() || !it->second.valid) return false;
  value = it->second.value;
  return true;
}

uint64_t ValueCache::Ticket() {
  std::lock_guard<std::mutex> hold(_lock);
  return _live ? _events + 1 : 0;
}

void ValueCache::Fill(unsigned int id, const common::ParamValue& value, uint64_t ticket) {
  std::lock_guard<std::mutex> hold(_lock);
  if (ticket == 0 || !_live) return;
  Entry& entry = _entries[id];
  if (entry.valid || entry.lastEvent >= ticket) return;
  entry.valid = true;
  entry.value = value;
}

void ValueCache::Forget(unsigned int id) {
  std::lock_guard<std::mutex> hold(_lock);
  auto it = _entries.find(id);
  if (it != _entries.end()) it->second.valid = false;
}

void ValueCache::Reset() {
  std::lock_guard<std::mutex> hold(_lock);
  _entries.clear();
  _live = false;
}

}  // namespace configweb
