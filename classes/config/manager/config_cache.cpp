#include "config/manager/config_cache.h"

#include <cstdio>

#include "config/descriptors/param_descriptor.h"
#include "config/event_loss_counter.h"
#include "support/logger.h"
#include "support/semaphore_helper.h"

ConfigCache::ConfigCache(Config* config) : ConfigCache(config, config) {}

ConfigCache::ConfigCache(Config* config, Config* events)
    : _config(config),
      _events(events),
      _last_update(config != nullptr ? config->GetLastConfigUpdate() : timeval{0, 0}),
      _logger(zyn::logging::Logger::GetLogger()),
      _loss_counter(dynamic_cast<EventLossCounter*>(events)) {
  SemaphoreHelper::InitSemaphore(&_lock);
  if (_loss_counter != nullptr) _lost_seen = _loss_counter->LostEvents();
  if (_events != nullptr) _events->AddConfigEventListener(this);
}

ConfigCache::~ConfigCache() {
  if (_events != nullptr) _events->RemoveConfigEventListener(this);
  if (_events != _config) delete _events;
  delete _config;
  SemaphoreHelper::DestroySemaphore(&_lock);
}

bool ConfigCache::HasConfig(const char* method) const {
  if (_config != nullptr) return true;
  fprintf(stderr, "ConfigCache::%s - NULL config\n", method);
  return false;
}

bool ConfigCache::IsVolatile(eParam_t id) {
  {
    SemaphoreHelper lock(&_lock);
    auto it = _volatile.find(id);
    if (it != _volatile.end()) return it->second == 1;
  }
  ParamDescriptor* descriptor = _config->GetParamDescriptor(id);
  int memo = 0;
  if (descriptor == nullptr)
    fprintf(stderr, "%s: paramID: %08X has a NULL descriptor, please fix.\n", "IsVolatile", id);
  else if (descriptor->HasClassName("volatile"))
    memo = 1;
  SemaphoreHelper lock(&_lock);
  _volatile[id] = memo;
  return memo == 1;
}

void ConfigCache::DropIfEventsLost() {
  if (_loss_counter == nullptr) return;
  uint64_t lost = _loss_counter->LostEvents();
  if (lost == _lost_seen) return;
  _lost_seen = lost;
  _int_cache.clear();
  _string_cache.clear();
  _data_cache.clear();
  ++_generation;
}

uint64_t ConfigCache::Generation() {
  SemaphoreHelper lock(&_lock);
  return _generation;
}

bool ConfigCache::Unchanged(uint64_t generation) {
  DropIfEventsLost();
  return _generation == generation;
}

template <typename T>
bool ConfigCache::Lookup(std::map<eParam_t, T>& cache, eParam_t id, T& value,
                         uint64_t& generation) {
  for (bool asked = false;; asked = true) {
    {
      SemaphoreHelper lock(&_lock);
      DropIfEventsLost();
      auto memo = _volatile.find(id);
      auto it = cache.find(id);
      if (memo != _volatile.end() && memo->second != 1 && it != cache.end()) {
        value = it->second;
        return true;
      }
      // Only a value held (from an event) for a parameter whose volatility
      // is not yet known is worth a second look.
      if (asked || memo != _volatile.end() || it == cache.end()) {
        generation = _generation;
        return false;
      }
    }
    IsVolatile(id);  // outside the lock: it may ask the wrapped config
  }
}

template <typename T>
void ConfigCache::Keep(std::map<eParam_t, T>& cache, eParam_t id, const T& value,
                       uint64_t generation) {
  if (Unchanged(generation))
    cache[id] = value;
  else
    cache.erase(id);
}

unsigned int ConfigCache::Get(eParam_t id) {
  if (!HasConfig("Get")) return 0;
  unsigned int value = 0;
  uint64_t generation;
  if (Lookup(_int_cache, id, value, generation)) return value;
  if (IsVolatile(id)) return _config->Get(id);
  // A failed fetch is not kept, so the next read asks again.
  if (!_config->Get(id, value)) return 0;
  SemaphoreHelper lock(&_lock);
  if (Unchanged(generation)) _int_cache[id] = value;
  return value;
}

bool ConfigCache::Get(eParam_t id, unsigned int& value) {
  value = Get(id);
  return value;
}

bool ConfigCache::Set(eParam_t id, unsigned int value) {
  if (!HasConfig("Set")) return false;
  if (IsVolatile(id)) return _config->Set(id, value);
  if (Get(id) == value) return true;
  uint64_t generation = Generation();
  if (!_config->Set(id, value)) return false;
  SemaphoreHelper lock(&_lock);
  Keep(_int_cache, id, value, generation);
  return true;
}

bool ConfigCache::GetText(eParam_t id, std::string& value, bool data) {
  if (!HasConfig(data ? "GetData" : "Get")) return false;
  std::map<eParam_t, std::string>& cache = data ? _data_cache : _string_cache;
  uint64_t generation;
  if (Lookup(cache, id, value, generation)) return true;
  if (IsVolatile(id)) return data ? _config->GetData(id, value) : _config->Get(id, value);
  std::string fetched;
  if (!(data ? _config->GetData(id, fetched) : _config->Get(id, fetched))) return false;
  SemaphoreHelper lock(&_lock);
  if (Unchanged(generation)) cache[id] = fetched;
  value = std::move(fetched);
  return true;
}

bool ConfigCache::SetText(eParam_t id, std::string& value, bool data) {
  if (!HasConfig(data ? "SetData" : "Set")) return false;
  if (IsVolatile(id)) return data ? _config->SetData(id, value) : _config->Set(id, value);
  uint64_t generation = Generation();
  if (!(data ? _config->SetData(id, value) : _config->Set(id, value))) return false;
  SemaphoreHelper lock(&_lock);
  std::map<eParam_t, std::string>& cache = data ? _data_cache : _string_cache;
  // The string and data forms can be two views of one value: a write of one
  // makes the other's copy stale.
  (data ? _string_cache : _data_cache).erase(id);
  Keep(cache, id, value, generation);
  return true;
}

bool ConfigCache::Get(eParam_t id, std::string& value) { return GetText(id, value, false); }

bool ConfigCache::Set(eParam_t id, std::string value) { return SetText(id, value, false); }

bool ConfigCache::GetData(eParam_t id, std::string& data) { return GetText(id, data, true); }

bool ConfigCache::SetData(eParam_t id, std::string& data) { return SetText(id, data, true); }

eConfigID_t ConfigCache::GetConfigID() {
  return HasConfig("GetConfigID") ? _config->GetConfigID() : eConfigID_Invalid;
}

timeval ConfigCache::GetLastConfigUpdate() {
  SemaphoreHelper lock(&_lock);
  return _last_update;
}

ParamDescriptor* ConfigCache::GetParamDescriptor(eParam_t id) {
  return HasConfig("GetParamDescriptor") ? _config->GetParamDescriptor(id) : nullptr;
}

ParamDescriptor* ConfigCache::GetParamDescriptor(std::string name) {
  return HasConfig("GetParamDescriptor") ? _config->GetParamDescriptor(std::move(name)) : nullptr;
}

std::vector<unsigned int> ConfigCache::GetParamIDs() {
  return HasConfig("GetParamIDs") ? _config->GetParamIDs() : std::vector<unsigned int>();
}

bool ConfigCache::AddConfigEventListener(ConfigEventListener* listener) {
  return _events != nullptr && _events->AddConfigEventListener(listener);
}

bool ConfigCache::AddConfigEventListener(eParam_t id, ConfigEventListener* listener) {
  return _events != nullptr && _events->AddConfigEventListener(id, listener);
}

bool ConfigCache::AddConfigEventListener(std::list<eParam_t> ids, ConfigEventListener* listener) {
  return _events != nullptr && _events->AddConfigEventListener(std::move(ids), listener);
}

bool ConfigCache::RemoveConfigEventListener(ConfigEventListener* listener) {
  return _events != nullptr && _events->RemoveConfigEventListener(listener);
}

bool ConfigCache::WaitForConfigEvent(ConfigEvent& event, long timeout, long interval) {
  return _events != nullptr && _events->WaitForConfigEvent(event, timeout, interval);
}

bool ConfigCache::ParamChanged(eParam_t id, unsigned int value, timeval when) {
  {
    SemaphoreHelper lock(&_lock);
    _int_cache[id] = value;
    _last_update = when;
    ++_generation;
  }
  if (_logger->IsWatched(id))
    _logger->Log(id, value, "ConfigCache::ParamChanged - updated cache (%p)\n",
                 static_cast<void*>(this));
  return true;
}

void ConfigCache::TextChanged(eParam_t id, const std::string& value, timeval when, bool data) {
  SemaphoreHelper lock(&_lock);
  (data ? _data_cache : _string_cache)[id] = value;
  (data ? _string_cache : _data_cache).erase(id);
  _last_update = when;
  ++_generation;
}

bool ConfigCache::ParamChanged(eParam_t id, std::string value, timeval when) {
  TextChanged(id, value, when, false);
  if (_logger->IsWatched(id))
    _logger->Log(id, value, "ConfigCache::ParamChanged - updated cache (%p)\n",
                 static_cast<void*>(this));
  return true;
}

bool ConfigCache::DataChanged(eParam_t id, std::string& data, timeval when) {
  TextChanged(id, data, when, true);
  if (_logger->IsWatched(id))
    _logger->Log(id, data, "ConfigCache::DataChanged - updated cache (%p)\n",
                 static_cast<void*>(this));
  return true;
}
