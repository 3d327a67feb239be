// DaemonLink is configctl's connection to configd: it owns the SocketFactory
// and every client opened through it, and disconnects the clients, newest
// first, when it is destroyed. A client answers Get and Set; a client that
// gets listeners becomes an event connection, so a watch opens two.
//
// Used by configctl's main thread only; a client's events thread is the
// library's and ends when its client is disconnected.
#ifndef TOOLS_CONFIGCTL_DAEMON_LINK_H
#define TOOLS_CONFIGCTL_DAEMON_LINK_H

#include <memory>
#include <string>
#include <vector>

#include "config/access/socket_factory.h"
#include "config/mapper/param_mapper.h"
#include "configctl/parameters.h"

class Config;
class ParamDescriptor;

namespace configctl {

class DaemonLink {
 public:
  explicit DaemonLink(std::string uri);
  ~DaemonLink();
  DaemonLink(const DaemonLink&) = delete;
  DaemonLink& operator=(const DaemonLink&) = delete;

  // A new connected client, owned by the link; null after reporting that
  // configd cannot be reached at the URI.
  Config* Open();
  // `requests` seen through the unit's parameter mapper, hearing changes on
  // `events` (null: none). Owned by the link, destroyed before its clients.
  Config* Map(Config* requests, Config* events);

  const std::string& GetUri() const { return _uri; }

 private:
  std::string _uri;
  zyn::config::access::SocketFactory _factory;  // outlives the clients
  std::vector<Config*> _clients;
  std::vector<std::unique_ptr<Config>> _mapped;  // MappingConfigs, over the clients
  std::vector<std::unique_ptr<zyn::boxline::config::access::ParamMapper>> _mappers;
};

}  // namespace configctl

#endif  // TOOLS_CONFIGCTL_DAEMON_LINK_H
