#include "configctl/daemon_link.h"

#include "config/access/socket_client.h"
#include "configctl/console.h"

namespace configctl {

DaemonLink::DaemonLink(std::string uri) : _uri(std::move(uri)) {}

DaemonLink::~DaemonLink() {
  for (auto it = _clients.rbegin(); it != _clients.rend(); ++it) _factory.Disconnect(*it);
}

zyn::config::access::SocketClient* DaemonLink::Open() {
  zyn::config::access::SocketClient* client = _factory.Connect(_uri);
  if (client == nullptr) {
    Console::Error("cannot reach configd at %s", _uri.c_str());
    return nullptr;
  }
  _clients.push_back(client);
  return client;
}

}  // namespace configctl
