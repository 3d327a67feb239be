#include "configctl/daemon_link.h"

#include "config/access/socket_client.h"
#include "config/descriptors/param_descriptor.h"
#include "configctl/console.h"

namespace configctl {

DaemonLink::DaemonLink(std::string uri) : _uri(std::move(uri)) {}

DaemonLink::~DaemonLink() {
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

bool ReadValue(Config* config, const ParamDescriptor* descriptor, ParamValue& value) {
  value = ParamValue();
  value.isString = IsStringParam(descriptor);
  unsigned int id = descriptor->GetParamID();
  return value.isString ? config->Get(id, value.text) : config->Get(id, value.number);
}

}  // namespace configctl
