// MappingConfig presents the settings through a ParamMapper: the IDs a
// caller reads and writes (generic parameters such as one proc amp gain) are
// translated to the IDs of the store (the specific parameter of the current
// input, format or mode), and a change of one store parameter reaches the
// caller's listeners as a change of every caller-side parameter it affects,
// each with the value the caller would now read. Without a mapper IDs pass
// unchanged and no events are delivered.
//
// Ownership: the constructor's configs and mapper stay the caller's. Create
// opens its own connections (and, when cached, a ConfigCache in front of the
// request connection, fed by the events connection) and releases them when
// the MappingConfig is destroyed; with `ownsMapper` it also destroys the
// mapper. Listeners stay their registrants'. A mapper attached by Create
// reads through the MappingConfig and must not be used after it is gone.
//
// Threads and locks: Config operations run on the caller's threads and
// forward to the request config, whose locks apply. The listener callbacks
// run on the events config's thread (its events thread, or the writer's
// thread for an in-process store) and deliver to the caller's listeners with
// _listeners_lock held, which also guards _listeners: a caller's listener
// must not add or remove listeners of the same MappingConfig. The mapper is
// fixed at construction and read without a lock.
#ifndef CLASSES_CONFIG_ACCESS_MAPPING_CONFIG_H
#define CLASSES_CONFIG_ACCESS_MAPPING_CONFIG_H

#include <semaphore.h>

#include <list>
#include <string>
#include <vector>

#include "config/access/delegator_config.h"
#include "config/config_event_listener.h"
#include "config/mapper/param_mapper.h"

namespace zyn {
namespace logging {
class Logger;
}  // namespace logging

namespace boxline {
namespace config {
namespace access {

class MappingConfig : public DelegatorConfig, public ::ConfigEventListener {
 public:
  // Opens `configURI` for requests and `eventsURI` for change events through
  // the process's ConfigFactoryImpl, with a ConfigCache in front of the
  // request connection when `cached`, and attaches `mapper` (which may be
  // null) to the result. With `ownsMapper` the result destroys the mapper.
  // Null, with one line on standard error, when a connection fails; nothing
  // opened stays open then.
  static MappingConfig* Create(std::string configURI, std::string eventsURI, ParamMapper* mapper,
                               bool ownsMapper, bool cached);
  // The same with one URI for both connections.
  static MappingConfig* Create(std::string uri, ParamMapper* mapper, bool ownsMapper, bool cached);

  // Requests go to `config`; changes are heard on `events` (may be null:
  // no events), which may be the same Config. Does not attach the mapper.
  MappingConfig(::Config* config, ParamMapper* mapper, ::Config* events);
  ~MappingConfig() override;

  // The value forms translate the ID with the mapper and forward.
  bool Set(eParam_t id, unsigned int value) override;
  unsigned int Get(eParam_t id) override;
  bool Get(eParam_t id, unsigned int& value) override;
  bool Set(eParam_t id, std::string value) override;
  bool Get(eParam_t id, std::string& value) override;
  Serializable* GetSerializable(eParam_t id) override;
  bool SetSerializable(eParam_t id, Serializable* value) override;
  bool GetData(eParam_t id, std::string& data) override;
  bool SetData(eParam_t id, std::string& data) override;

  // The caller's listeners: for every caller-side parameter, for one, or for
  // a list. Registering a listener again widens what it hears. True.
  bool AddConfigEventListener(::ConfigEventListener* listener) override;
  bool AddConfigEventListener(eParam_t id, ::ConfigEventListener* listener) override;
  bool AddConfigEventListener(std::list<eParam_t> ids, ::ConfigEventListener* listener) override;
  // Removes every registration of `listener`; false when it had none.
  bool RemoveConfigEventListener(::ConfigEventListener* listener) override;

  // Changes heard on the events config, forwarded to the caller's listeners.
  bool ParamChanged(eParam_t id, unsigned int value, timeval when) override;
  bool ParamChanged(eParam_t id, std::string value, timeval when) override;
  bool DataChanged(eParam_t id, std::string& data, timeval when) override;

  // True when the parameter's descriptor marks it volatile.
  bool IsVolatile(eParam_t id);
  // The store-side ID for a caller-side ID.
  [[nodiscard]] unsigned int MapID(eParam_t id);

 private:
  // One caller's listener and what it asked for.
  struct Registration {
    ::ConfigEventListener* listener;
    bool everything;
    std::vector<unsigned int> ids;
  };
  // The caller-side IDs whose value a change of store parameter `id` may
  // have changed.
  std::vector<unsigned int> AffectedBy(eParam_t id);
  bool Register(::ConfigEventListener* listener, bool everything,
                const std::vector<unsigned int>& ids);
  // The trace lines of one listener form.
  struct Traces;
  static const Traces kParamTraces;
  static const Traces kDataTraces;
  // Delivers a change of store parameter `id` to the listeners of every
  // caller-side parameter it affects, reading the others' values with
  // `read` and calling each listener with `call`, with the form's traces.
  template <typename Value, typename Read, typename Call>
  bool Forward(eParam_t id, Value& value, const Traces& traces, Read read, Call call);

  ParamMapper* _mapper;
  ::Config* _events;
  std::vector<Registration> _listeners;  // guarded by _listeners_lock
  sem_t _listeners_lock;
  zyn::logging::Logger* _logger;

  // What Create opened, released by the destructor.
  bool _owns_mapper = false;
  ::Config* _opened_config = nullptr;
  ::Config* _opened_events = nullptr;
  ::Config* _cache = nullptr;
};

}  // namespace access
}  // namespace config
}  // namespace boxline
}  // namespace zyn

#endif  // CLASSES_CONFIG_ACCESS_MAPPING_CONFIG_H
