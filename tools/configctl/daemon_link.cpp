#include "configctl/daemon_link.h"

#include "config/access/mapping_config.h"
#include "config/access/socket_client.h"
#include "config/mapper/tundra_param_mapper.h"
#include "configctl/console.h"
#include "configctl/mapping_commands.h"

namespace configctl {

DaemonLink::DaemonLink(std::string uri) : _uri(std::move(uri)) {}

DaemonLink::~DaemonLink() {
  _mapped.clear();
  _mappers.clear();
  for (auto it = _clients.rbegin(); it != _clients.rend(); ++it) _factory.Disconnect(*it);
}

Config* DaemonLink::Open() {
  Config* client = _factory.Connect(_uri);
  if (client == nullptr) {
    Console::Error("cannot reach configd at %s", _uri.c_str());
    return nullptr;
  }
  _clients.push_back(client);
  return client;
}

Config* DaemonLink::Map(Config* requests, Config* events) {
  BuildMapperTables();
  auto* mapper = new tundra::mapper::TundraParamMapper();
  auto* mapping = new zyn::boxline::config::access::MappingConfig(requests, mapper, events);
  mapper->SetConfig(mapping);
  _mapped.emplace_back(mapping);
  _mappers.emplace_back(mapper);
  return mapping;
}

}  // namespace configctl
