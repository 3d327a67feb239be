#include "config/access/mapping_config.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "config/config_factory_impl.h"
#include "config/descriptors/param_descriptor.h"
#include "config/event_loss_counter.h"
#include "config/manager/config_cache.h"
#include "support/logger.h"
#include "support/semaphore_helper.h"

namespace zyn {
namespace boxline {
namespace config {
namespace access {

namespace {

// A view of an events connection that still tells the events it lost, for
// the cache to drop stale copies when the transport drops events.
class EventsView : public DelegatorConfig, public EventLossCounter {
 public:
  explicit EventsView(::Config* events)
      : DelegatorConfig(events), _counter(dynamic_cast<EventLossCounter*>(events)) {}
  uint64_t LostEvents() const override { return _counter != nullptr ? _counter->LostEvents() : 0; }

 private:
  EventLossCounter* _counter;
};

}  // namespace

MappingConfig* MappingConfig::Create(std::string configURI, std::string eventsURI,
                                     ParamMapper* mapper, bool ownsMapper, bool cached) {
  ConfigFactoryImpl* factory = ConfigFactoryImpl::GetInstance();
  ::Config* config = factory->Connect(configURI);
  ::Config* events = nullptr;
  if (config == nullptr) {
    fprintf(stderr, "MappingConfig::Create: pConfig failed\n");
  } else if ((events = factory->Connect(eventsURI)) == nullptr) {
    fprintf(stderr, "MappingConfig::Create: pEvConfig failed\n");
    factory->Disconnect(config);
  }
  if (events == nullptr) {
    if (ownsMapper) delete mapper;
    return nullptr;
  }
  ::Config* requests = config;
  ::Config* cache = nullptr;
  // The cache destroys what it wraps, so it wraps views of the connections;
  // it joins the events connection's listeners before the mapping does, so
  // that it is current when the mapping reads values for its listeners.
  if (cached)
    requests = cache = new ConfigCache(new DelegatorConfig(config), new EventsView(events));
  MappingConfig* mapping = new MappingConfig(requests, mapper, events);
  mapping->_owns_mapper = ownsMapper;
  mapping->_opened_config = config;
  mapping->_opened_events = events;
  mapping->_cache = cache;
  if (mapper != nullptr) mapper->SetConfig(mapping);
  return mapping;
}

MappingConfig* MappingConfig::Create(std::string uri, ParamMapper* mapper, bool ownsMapper,
                                     bool cached) {
  return Create(uri, uri, mapper, ownsMapper, cached);
}

MappingConfig::MappingConfig(::Config* config, ParamMapper* mapper, ::Config* events)
    : DelegatorConfig(config),
      _mapper(mapper),
      _events(events),
      _logger(zyn::logging::Logger::GetLogger()) {
  SemaphoreHelper::InitSemaphore(&_listeners_lock);
  if (_events != nullptr)
    _events->AddConfigEventListener(static_cast<::ConfigEventListener*>(this));
}

MappingConfig::~MappingConfig() {
  if (_events != nullptr)
    _events->RemoveConfigEventListener(static_cast<::ConfigEventListener*>(this));
  // The cache leaves the events connection's listeners before the
  // connections close.
  delete _cache;
  ConfigFactoryImpl* factory = ConfigFactoryImpl::GetInstance();
  if (_opened_events != nullptr) factory->Disconnect(_opened_events);
  if (_opened_config != nullptr) factory->Disconnect(_opened_config);
  if (_owns_mapper) delete _mapper;
  SemaphoreHelper::DestroySemaphore(&_listeners_lock);
}

unsigned int MappingConfig::MapID(eParam_t id) {
  return _mapper != nullptr ? _mapper->MapParamID(id) : id;
}

bool MappingConfig::Set(eParam_t id, unsigned int value) {
  return _delegate->Set(MapID(id), value);
}

unsigned int MappingConfig::Get(eParam_t id) { return _delegate->Get(MapID(id)); }

bool MappingConfig::Get(eParam_t id, unsigned int& value) {
  return _delegate->Get(MapID(id), value);
}

bool MappingConfig::Set(eParam_t id, std::string value) {
  return _delegate->Set(MapID(id), std::move(value));
}

bool MappingConfig::Get(eParam_t id, std::string& value) {
  return _delegate->Get(MapID(id), value);
}

Serializable* MappingConfig::GetSerializable(eParam_t id) {
  return _delegate->GetSerializable(MapID(id));
}

bool MappingConfig::SetSerializable(eParam_t id, Serializable* value) {
  return _delegate->SetSerializable(MapID(id), value);
}

bool MappingConfig::GetData(eParam_t id, std::string& data) {
  return _delegate->GetData(MapID(id), data);
}

bool MappingConfig::SetData(eParam_t id, std::string& data) {
  return _delegate->SetData(MapID(id), data);
}

bool MappingConfig::Register(::ConfigEventListener* listener, bool everything,
                             const std::vector<unsigned int>& ids) {
  if (listener == nullptr) return false;
  SemaphoreHelper hold(&_listeners_lock);
  for (Registration& r : _listeners) {
    if (r.listener != listener) continue;
    r.everything = r.everything || everything;
    for (unsigned int id : ids)
      if (std::find(r.ids.begin(), r.ids.end(), id) == r.ids.end()) r.ids.push_back(id);
    return true;
  }
  _listeners.push_back({listener, everything, ids});
  return true;
}

bool MappingConfig::AddConfigEventListener(::ConfigEventListener* listener) {
  return Register(listener, true, {});
}

bool MappingConfig::AddConfigEventListener(eParam_t id, ::ConfigEventListener* listener) {
  return Register(listener, false, {id});
}

bool MappingConfig::AddConfigEventListener(std::list<eParam_t> ids,
                                           ::ConfigEventListener* listener) {
  return Register(listener, false, std::vector<unsigned int>(ids.begin(), ids.end()));
}

bool MappingConfig::RemoveConfigEventListener(::ConfigEventListener* listener) {
  SemaphoreHelper hold(&_listeners_lock);
  size_t before = _listeners.size();
  _listeners.erase(
      std::remove_if(_listeners.begin(), _listeners.end(),
                     [listener](const Registration& r) { return r.listener == listener; }),
      _listeners.end());
  return _listeners.size() != before;
}

bool MappingConfig::IsVolatile(eParam_t id) {
  ParamDescriptor* descriptor = _delegate->GetParamDescriptor(id);
  if (descriptor == nullptr) return false;
  // The catalogue marks volatility with a class name; an attribute of that
  // name means the same.
  unsigned int flag = 0;
  std::string text;
  return descriptor->HasClassName("volatile") || descriptor->GetAttribute("volatile", flag) ||
         descriptor->GetAttribute("volatile", text);
}

std::vector<unsigned int> MappingConfig::AffectedBy(eParam_t id) {
  std::vector<unsigned int> affected;
  // The parameter itself, unless the caller's view of that ID is another
  // parameter (it is a generic mapped elsewhere).
  if (_mapper->MapParamID(id) == id) affected.push_back(id);
  // A volatile parameter skips the mapper's fan-out: it is reported as
  // itself at most.
  if (IsVolatile(id)) return affected;
  boost::unordered_set<unsigned int> generics = _mapper->ParamsChangedBy(id);
  size_t first = affected.size();
  for (unsigned int generic : generics)
    if (generic != id) affected.push_back(generic);
  std::sort(affected.begin() + first, affected.end());
  return affected;
}

struct MappingConfig::Traces {
  const char* enter;
  const char* noMapper;
  const char* fired;
  const char* exit;
};

const MappingConfig::Traces MappingConfig::kParamTraces = {
    "MappingConfig::ParamChanged enter\n",
    "MappingConfig::ParamChanged - no mapper, returning\n",
    "MappingConfig::ParamChanged fired event for (%p)\n",
    "MappingConfig::ParamChanged - exit\n",
};

const MappingConfig::Traces MappingConfig::kDataTraces = {
    "MappingConfig::DataChanged enter\n",
    "MappingConfig::DataChanged - no mapper, returning\n",
    "MappingConfig::DataChanged fired event for (%p)\n",
    "MappingConfig::DataChanged - exit\n",
};

template <typename Value, typename Read, typename Call>
bool MappingConfig::Forward(eParam_t id, Value& value, const Traces& traces, Read read, Call call) {
  const bool traced = _logger->IsWatched(id);
  if (traced) _logger->Log(id, value, "%s", traces.enter);
  if (_mapper == nullptr) {
    if (traced) _logger->Log(id, value, "%s", traces.noMapper);
    return false;
  }
  for (unsigned int affected : AffectedBy(id)) {
    // The changed parameter carries its new value; a generic carries the
    // value of the parameter it stands for now.
    Value current = value;
    if (affected != id) read(affected, current);
    SemaphoreHelper hold(&_listeners_lock);
    for (const Registration& r : _listeners) {
      if (!r.everything && std::find(r.ids.begin(), r.ids.end(), affected) == r.ids.end()) continue;
      call(r.listener, affected, current);
      if (_logger->IsWatched(affected))
        _logger->Log(affected, traces.fired, static_cast<void*>(r.listener));
    }
  }
  if (traced) _logger->Log(id, value, "%s", traces.exit);
  return true;
}

bool MappingConfig::ParamChanged(eParam_t id, unsigned int value, timeval when) {
  return Forward(
      id, value, kParamTraces, [this](eParam_t g, unsigned int& v) { v = Get(g); },
      [when](::ConfigEventListener* l, eParam_t g, unsigned int& v) {
        l->ParamChanged(g, v, when);
      });
}

bool MappingConfig::ParamChanged(eParam_t id, std::string value, timeval when) {
  return Forward(
      id, value, kParamTraces, [this](eParam_t g, std::string& v) { Get(g, v); },
      [when](::ConfigEventListener* l, eParam_t g, std::string& v) {
        l->ParamChanged(g, v, when);
      });
}

bool MappingConfig::DataChanged(eParam_t id, std::string& data, timeval when) {
  return Forward(
      id, data, kDataTraces, [this](eParam_t g, std::string& v) { GetData(g, v); },
      [when](::ConfigEventListener* l, eParam_t g, std::string& v) { l->DataChanged(g, v, when); });
}

}  // namespace access
}  // namespace config
}  // namespace boxline
}  // namespace zyn
