#include "configctl/daemon_link.h"

#include "common/parameters.h"
#include "config/access/mapping_config.h"
#include "config/access/network_client.h"
#include "config/access/socket_client.h"
#include "config/config_factory_impl.h"
#include "config/config_uri.h"
#include "config/descriptors/param_descriptor.h"
#include "config/manager/config_cache.h"
#include "config/mapper/tundra_param_mapper.h"
#include "configctl/console.h"
#include "configctl/mapping_commands.h"

namespace configctl {

DaemonLink::DaemonLink(std::string uri) : _uri(std::move(uri)), _network(IsNetworkURI(_uri)) {}

DaemonLink::~DaemonLink() {
  _mapped.clear();
  _mappers.clear();
  for (auto it = _clients.rbegin(); it != _clients.rend(); ++it) Release(*it);
}

Config* DaemonLink::Connect(const std::string& uri) {
  if (!_network) return _factory.Connect(uri);
  Config* client = ConfigFactoryImpl::GetInstance()->Connect(uri);
  // A cache over a failed connection is no connection.
  auto* cache = dynamic_cast<ConfigCache*>(client);
  if (cache != nullptr && cache->GetConfig() == nullptr) {
    delete cache;
    return nullptr;
  }
  return client;
}

void DaemonLink::Release(Config* client) {
  if (!_network) {
    _factory.Disconnect(client);
  } else if (dynamic_cast<zyn::boxline::config::access::NetworkClient*>(client) != nullptr) {
    // Deletes the client whether or not a configd that went away could
    // confirm the goodbye.
    ConfigFactoryImpl::GetInstance()->Disconnect(client);
  } else {
    delete client;  // a cache is its holder's to delete; it releases its clients
  }
}

Config* DaemonLink::Open(const char* command) {
  if (command != nullptr && !TakesRequests()) {
    Console::Error(
        "%s: multicast URIs carry configd's events only (watch); use socket://, tcp:// or "
        "udp://",
        command);
    return nullptr;
  }
  Config* client = Connect(_uri);
  if (client == nullptr) {
    Console::Error("cannot reach configd at %s", _uri.c_str());
    return nullptr;
  }
  _clients.push_back(client);
  return client;
}

Config* DaemonLink::OpenEvents() {
  if (_uri.find("udp:") == std::string::npos) return Open();
  std::string events = MulticastEventsURI(_uri);
  Config* client = Connect(events);
  if (client == nullptr) {
    Console::Error("cannot listen for configd's events at %s", events.c_str());
    return nullptr;
  }
  _clients.push_back(client);
  return client;
}

bool DaemonLink::SetsAreAnswered() const { return _uri.find("udp:") != std::string::npos; }

bool DaemonLink::TakesRequests() const { return _uri.find("multicast:") == std::string::npos; }

Config* DaemonLink::Map(Config* requests, Config* events) {
  common::BuildMapperTables();
  auto* mapper = new tundra::mapper::TundraParamMapper();
  auto* mapping = new zyn::boxline::config::access::MappingConfig(requests, mapper, events);
  mapper->SetConfig(mapping);
  _mapped.emplace_back(mapping);
  _mappers.emplace_back(mapper);
  return mapping;
}

}  // namespace configctl
