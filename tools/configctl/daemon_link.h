// DaemonLink is configctl's connection to configd by any URI the library
// takes: "socket://" through its own SocketFactory, "tcp://", "udp://" and
// "multicast://" (with or without "caching=true") through the process's
// ConfigFactoryImpl. It owns every client opened and releases them, newest
// first, when it is destroyed. A client answers Get and Set; a client that
// gets listeners becomes an event connection, so a watch opens two (over
// UDP the events come from a multicast client on the event port).
//
// Used by configctl's main thread only; a client's events thread is the
// library's and ends when its client is disconnected.
#ifndef TOOLS_CONFIGCTL_DAEMON_LINK_H
#define TOOLS_CONFIGCTL_DAEMON_LINK_H

#include <memory>
#include <string>
#include <vector>

#include "common/parameters.h"
#include "config/access/socket_factory.h"
#include "config/mapper/param_mapper.h"

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
  // configd cannot be reached at the URI, or, when `command` names a command
  // that asks configd for something, that a "multicast://" URI cannot.
  Config* Open(const char* command = nullptr);
  // A new client to register listeners on: another connection like Open's,
  // or over UDP a client on the multicast event port.
  Config* OpenEvents();
  // True when a refused Set answers false (UDP); other transports send a
  // Set without an answer.
  bool SetsAreAnswered() const;
  // False for a "multicast://" URI, whose client only hears events.
  bool TakesRequests() const;
  // `requests` seen through the unit's parameter mapper, hearing changes on
  // `events` (null: none). Owned by the link, destroyed before its clients.
  Config* Map(Config* requests, Config* events);

  const std::string& GetUri() const { return _uri; }

 private:
  std::string _uri;
  zyn::config::access::SocketFactory _factory;  // outlives the clients
  Config* Connect(const std::string& uri);
  void Release(Config* client);

  bool _network;  // the URI names a network transport
  std::vector<Config*> _clients;
  std::vector<std::unique_ptr<Config>> _mapped;  // MappingConfigs, over the clients
  std::vector<std::unique_ptr<zyn::boxline::config::access::ParamMapper>> _mappers;
};

}  // namespace configctl

#endif  // TOOLS_CONFIGCTL_DAEMON_LINK_H
