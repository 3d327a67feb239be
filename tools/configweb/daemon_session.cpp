#include "configweb/daemon_session.h"

#include <sys/time.h>

#include <algorithm>
#include <chrono>
#include <cstdio>

#include "common/formatting.h"
#include "common/json.h"
#include "config/access/mapping_config.h"
#include "config/access/socket_client.h"
#include "config/descriptors/param_descriptors.h"
#include "config/descriptors/param_ids.h"
#include "config/event_loss_counter.h"
#include "config/mapper/tundra_param_mapper.h"
#include "configweb/event_hub.h"

namespace configweb {

using common::Json;
using common::ParamValue;
using zyn::config::access::SocketFactory;

bool OpenPageLink(SocketFactory& factory, const std::string& uri, PageLink& link) {
  link = PageLink();
  link.requestClient = factory.Connect(uri);
  if (link.requestClient != nullptr) link.eventClient = factory.Connect(uri);
  if (link.eventClient == nullptr) {
    ClosePageLink(factory, link);
    return false;
  }
  auto* mapper = new tundra::mapper::TundraParamMapper();
  auto* mapping =
      new zyn::boxline::config::access::MappingConfig(link.requestClient, mapper, link.eventClient);
  mapper->SetConfig(mapping);
  link.mapper = mapper;
  link.mapping = link.requests = link.events = mapping;
  link.loss = dynamic_cast<EventLossCounter*>(link.eventClient);
  return true;
}

void ClosePageLink(SocketFactory& factory, PageLink& link) {
  delete link.mapping;  // leaves the event client's listeners first
  delete link.mapper;
  if (link.eventClient != nullptr) factory.Disconnect(link.eventClient);
  if (link.requestClient != nullptr) factory.Disconnect(link.requestClient);
  link = PageLink();
}

bool DaemonSession::Forwarder::ParamChanged(eParam_t id, unsigned int value, timeval when) {
  ChangeBatcher::Change change;
  change.id = id;
  change.value.number = value;
  change.when = when;
  _cache.Changed(id, change.value);
  _batcher.Record(std::move(change));
  return true;
}

bool DaemonSession::Forwarder::ParamChanged(eParam_t id, std::string value, timeval when) {
  ChangeBatcher::Change change;
  change.id = id;
  change.value.isString = true;
  change.value.text = std::move(value);
  change.when = when;
  _cache.Changed(id, change.value);
  _batcher.Record(std::move(change));
  return true;
}

DaemonSession::DaemonSession(std::string uri, EventHub& hub, long checkMs)
    : _uri(std::move(uri)),
      _hub(hub),
      _checkMs(checkMs),
      _batcher(hub, [this] { return _linked.load(); }),
      _forwarder(_batcher, _cache) {}

DaemonSession::~DaemonSession() { Stop(); }

bool DaemonSession::Start() {
  bool connected;
  {
    std::lock_guard<std::mutex> hold(_lock);
    connected = ConnectLocked();
    _stopping = false;
  }
  if (!connected) fprintf(stderr, "configweb: configd is not reachable at %s yet\n", _uri.c_str());
  _batcher.Start();
  _supervisor = std::thread(&DaemonSession::Supervise, this);
  return connected;
}

void DaemonSession::Stop() {
  {
    std::lock_guard<std::mutex> hold(_lock);
    _stopping = true;
  }
  _wake.notify_all();
  if (_supervisor.joinable()) _supervisor.join();
  {
    std::lock_guard<std::mutex> hold(_lock);
    DropLocked();
  }
  _batcher.Stop();
}

bool DaemonSession::WithConfig(const std::function<void(Config*)>& work) {
  std::lock_guard<std::mutex> hold(_lock);
  if (!_connected) return false;
  work(_link.requests);
  return true;
}

bool DaemonSession::ReadValue(const ParamDescriptor* descriptor, ParamValue& value, bool& read) {
  unsigned int id = descriptor->GetParamID();
  if (_cache.Find(id, value)) {
    read = true;
    return true;
  }
  std::lock_guard<std::mutex> hold(_lock);
  if (!_connected) return false;
  uint64_t ticket = _cache.Ticket();
  read = common::ReadValue(_link.requests, descriptor, value);
  // A generic parameter's value follows its selector, which its events do
  // not cover: it is always read.
  auto* mapping = dynamic_cast<zyn::boxline::config::access::MappingConfig*>(_link.requests);
  if (read && mapping != nullptr && mapping->MapID(id) == id) _cache.Fill(id, value, ticket);
  return true;
}

bool DaemonSession::IsConnected() {
  std::lock_guard<std::mutex> hold(_lock);
  return _connected;
}

std::string DaemonSession::StatusFrame() {
  std::lock_guard<std::mutex> hold(_lock);
  return StatusFrameLocked();
}

std::string DaemonSession::StatusFrameLocked() const {
  return EventFrame("daemon", common::JsonText(Json{{"connected", _connected}, {"uri", _uri}}));
}

bool DaemonSession::ConnectLocked() {
  if (_connected) return true;
  if (!OpenPageLink(_factory, _uri, _link)) return false;
  if (!_link.events->AddConfigEventListener(&_forwarder)) {
    ClosePageLink(_factory, _link);
    return false;
  }
  _connected = true;
  _linked = true;
  return true;
}

void DaemonSession::DropLocked() {
  if (_link.events != nullptr) _link.events->RemoveConfigEventListener(&_forwarder);
  ClosePageLink(_factory, _link);
  _cache.Reset();
  _connected = false;
  _linked = false;
}

bool DaemonSession::HeartbeatLocked() {
  if (_link.loss != nullptr && _link.loss->LostEvents() != 0) return false;
  std::string name;
  return _link.requests->Get(eParamID_SystemName, name);
}

void DaemonSession::ResyncLocked() {
  std::vector<ChangeBatcher::Change> current;
  timeval now{};
  gettimeofday(&now, nullptr);
  for (unsigned int id : _batcher.KnownIds()) {
    ChangeBatcher::Change change;
    change.id = id;
    change.when = now;
    const ParamDescriptor* descriptor = GetDescriptor(id);
    if (descriptor != nullptr && common::ReadValue(_link.requests, descriptor, change.value))
      current.push_back(std::move(change));
  }
  _batcher.Resync(current);
}

void DaemonSession::ReconnectLocked() {
  DropLocked();
  if (ConnectLocked()) {
    fprintf(stderr, "configweb: the link to configd at %s broke; connected again\n", _uri.c_str());
    ResyncLocked();
    return;
  }
  fprintf(stderr, "configweb: lost the connection to configd at %s\n", _uri.c_str());
  _hub.Publish(StatusFrameLocked());
}

void DaemonSession::Supervise() {
  using Clock = std::chrono::steady_clock;
  std::unique_lock<std::mutex> hold(_lock);
  Clock::time_point nextCheck = Clock::now() + std::chrono::milliseconds(_checkMs);
  while (!_stopping) {
    _wake.wait_for(hold, std::chrono::milliseconds(std::min(kLossCheckMs, _checkMs)),
                   [this] { return _stopping; });
    if (_stopping) break;
    // configd closes an event connection that does not keep up with its
    // changes; the pages would miss everything after that.
    bool lost = _connected && _link.loss != nullptr && _link.loss->LostEvents() != 0;
    bool due = Clock::now() >= nextCheck;
    if (!lost && !due) continue;
    nextCheck = Clock::now() + std::chrono::milliseconds(_checkMs);
    if (_connected) {
      if (!lost && HeartbeatLocked()) continue;
      ReconnectLocked();
    } else if (ConnectLocked()) {
      fprintf(stderr, "configweb: connected to configd at %s\n", _uri.c_str());
      _hub.Publish(StatusFrameLocked());
      ResyncLocked();
    }
  }
}

}  // namespace configweb
