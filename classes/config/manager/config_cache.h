// ConfigCache is a Config that sits in front of another one, normally a
// client of a store in another process or on another machine, and answers
// reads of non-volatile parameters from local maps, so that the store is
// asked for each value once. It listens for the store's change events and
// refreshes its maps from them; a parameter whose descriptor carries the
// class name "volatile" bypasses the maps and is always read and written
// through.
//
// Ownership: the cache owns the config it wraps and, when given one, the
// separate config that carries its events; the destructor removes the cache
// from the events config's listeners, then destroys both. Either may be
// null: every operation then fails cleanly.
//
// Freshness: a value fetched from the store, or written to it, is kept only
// when no change event arrived while the call was under way, so the cache
// never serves a value older than the last event it received. When the
// events config counts lost events (EventLossCounter), a read that finds the
// count grown drops every map first.
//
// Locks: _lock guards the maps, the volatility memo, _last_update, the
// event generation and the loss count seen. Calls to the wrapped configs are
// made without it. Application threads call the Config operations; the
// events config's thread (or the writer's thread, for an in-process store)
// calls the ConfigEventListener operations; both may run at once.
#ifndef CLASSES_CONFIG_MANAGER_CONFIG_CACHE_H
#define CLASSES_CONFIG_MANAGER_CONFIG_CACHE_H

#include <semaphore.h>
#include <sys/time.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "config/config.h"
#include "config/config_event_listener.h"

class EventLossCounter;

namespace zyn {
namespace logging {
class Logger;
}  // namespace logging
}  // namespace zyn

class ConfigCache : public Config, public ConfigEventListener {
 public:
  // Wraps `config`, which also carries the change events.
  explicit ConfigCache(Config* config);
  // Requests go to `config`; the change events come from `events`, for a
  // transport whose events need a connection of their own.
  ConfigCache(Config* config, Config* events);
  ~ConfigCache() override;

  // Skips the write when the cache already holds `value`. True when the
  // value was sent (or already held).
  bool Set(eParam_t id, unsigned int value) override;
  // The value, or 0 when the store gave none.
  unsigned int Get(eParam_t id) override;
  eConfigID_t GetConfigID() override;
  // The time carried by the last change event, else the wrapped config's
  // at construction.
  timeval GetLastConfigUpdate() override;
  ParamDescriptor* GetParamDescriptor(eParam_t id) override;
  ParamDescriptor* GetParamDescriptor(std::string name) override;
  std::vector<unsigned int> GetParamIDs() override;
  // Sets `value` to Get(id) and returns that number: a value of 0 reports
  // failure.
  bool Get(eParam_t id, unsigned int& value) override;
  bool Set(eParam_t id, std::string value) override;
  bool Get(eParam_t id, std::string& value) override;
  bool GetData(eParam_t id, std::string& data) override;
  bool SetData(eParam_t id, std::string& data) override;
  // Listener registrations and event waits go to the events config.
  bool AddConfigEventListener(ConfigEventListener* listener) override;
  bool AddConfigEventListener(eParam_t id, ConfigEventListener* listener) override;
  bool AddConfigEventListener(std::list<eParam_t> ids, ConfigEventListener* listener) override;
  bool RemoveConfigEventListener(ConfigEventListener* listener) override;
  bool WaitForConfigEvent(ConfigEvent& event, long timeout, long interval) override;

  // Change events of the store: each stores the new value and its time.
  bool ParamChanged(eParam_t id, unsigned int value, timeval when) override;
  bool ParamChanged(eParam_t id, std::string value, timeval when) override;
  bool DataChanged(eParam_t id, std::string& data, timeval when) override;

  // The wrapped configs, still owned by the cache; GetEvents is GetConfig
  // when there is no separate events config.
  [[nodiscard]] Config* GetConfig() const { return _config; }
  [[nodiscard]] Config* GetEvents() const { return _events; }

 private:
  // Whether `id` is volatile, memoised; reports a missing descriptor.
  bool IsVolatile(eParam_t id);
  // False after reporting when there is no config to ask. Takes no lock.
  bool HasConfig(const char* method) const;
  // Drops every map when the events config lost events since the last look.
  // The caller holds _lock.
  void DropIfEventsLost();
  // The event generation, read at the start of a call to the store.
  uint64_t Generation();
  // True when no event arrived (or was lost) since `generation`. The caller
  // holds _lock.
  bool Unchanged(uint64_t generation);
  // True with the held value of a parameter known not to be volatile (a
  // value held from an event counts once the parameter's volatility has been
  // learnt); otherwise the generation to fetch against, read in the same
  // hold of _lock as the miss.
  template <typename T>
  bool Lookup(std::map<eParam_t, T>& cache, eParam_t id, T& value, uint64_t& generation);
  // After a write: keeps `value` if no event arrived since `generation`,
  // else forgets the entry. The caller holds _lock.
  template <typename T>
  void Keep(std::map<eParam_t, T>& cache, eParam_t id, const T& value, uint64_t generation);
  // The read and write of the string and data maps share one shape.
  bool GetText(eParam_t id, std::string& value, bool data);
  bool SetText(eParam_t id, std::string& value, bool data);
  // Stores a text from an event in one map and forgets the other's copy.
  void TextChanged(eParam_t id, const std::string& value, timeval when, bool data);

  Config* _config;
  Config* _events;  // == _config when the events come on the same config
  std::map<eParam_t, unsigned int> _int_cache;
  std::map<eParam_t, int> _volatile;  // 1: volatile
  std::map<eParam_t, std::string> _string_cache;
  std::map<eParam_t, std::string> _data_cache;
  timeval _last_update;
  sem_t _lock;
  zyn::logging::Logger* _logger;
  uint64_t _generation = 0;  // bumped by every event and every drop
  EventLossCounter* _loss_counter;
  uint64_t _lost_seen = 0;
};

#endif  // CLASSES_CONFIG_MANAGER_CONFIG_CACHE_H
