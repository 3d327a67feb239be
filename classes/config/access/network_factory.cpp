#include "config/access/network_factory.h"

#include <cstdio>
#include <cstdlib>

#include "config/access/connection_utilities.h"
#include "config/access/network_tcp_client.h"
#include "config/access/network_udp_client.h"
#include "config/access/socket.h"
#include "config/access/url.h"

namespace zyn {
namespace boxline {
namespace config {
namespace access {

NetworkClient* NetworkFactory::Connect(std::string uri) {
  ::zyn::config::access::url parts;
  parts.parse(uri);
  if (parts.port.empty()) {
    fprintf(stderr, "NetworkFactory::Connect - no port in uri %s\n", uri.c_str());
    return nullptr;
  }
  int port = atoi(parts.port.c_str());
  const std::string& host = parts.host;

  int configID = 0;
  size_t at = uri.find("configid=");
  if (at != std::string::npos) {
    int matches = sscanf(uri.c_str() + at, "configid=%d", &configID);
    if (matches != 1) {
      fprintf(stderr, "NetworkFactory::Connect - unable to read configid, matches = %d, uri = %s\n",
              matches, uri.c_str());
      configID = 0;
    }
  }

  bool multicast = uri.find("multicast") != std::string::npos;
  int type;
  if (uri.find("tcp") != std::string::npos) {
    type = Socket::kStream;
  } else if (uri.find("udp") != std::string::npos || multicast) {
    type = Socket::kDatagram;
  } else {
    fprintf(stderr, "NetworkFactory::Connect - The transport for %s is not supported\n",
            uri.c_str());
    return nullptr;
  }

  Socket* socket = new Socket(Socket::kInternetDomain, type);
  if (!socket->create()) {
    fprintf(stderr, "NetworkFactory::Connect - failed to create socket\n");
    delete socket;
    return nullptr;
  }
  bool ready = multicast ? socket->bind(port) : socket->connect(host, port);
  if (!ready) {
    fprintf(stderr, "NetworkFactory::Connect - failed to connect to host %s, port %d\n",
            host.c_str(), port);
    delete socket;
    return nullptr;
  }

  unsigned int connectionID = ::zyn::config::access::ConnectionUtilities::GetConnectionID();
  eConfigID_t id = static_cast<eConfigID_t>(configID);
  NetworkClient* client;
  if (type == Socket::kDatagram)
    client = new NetworkUDPClient(connectionID, socket, id, multicast);
  else
    client = new NetworkTCPClient(connectionID, socket, id);
  if (!multicast && !client->ConfirmConnection()) {
    fprintf(stderr, "NetworkFactory::Connect - failed to confirm connection with host %s\n",
            host.c_str());
    delete client;
    return nullptr;
  }
  return client;
}

bool NetworkFactory::Disconnect(NetworkClient* client) {
  if (client == nullptr) return false;
  bool said = client->ConfirmDisconnect();
  delete client;
  return said;
}

}  // namespace access
}  // namespace config
}  // namespace boxline
}  // namespace zyn
