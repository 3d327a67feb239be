#include "config/access/socket_factory.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "config/access/connection_utilities.h"
#include "config/access/socket.h"
#include "config/access/socket_client.h"
#include "config/access/stream_io.h"
#include "config/access/url.h"
#include "config/access/xconfigmgr_records.h"
#include "config/manager/config_cache.h"
#include "support/logger.h"
#include "support/semaphore_helper.h"

namespace zyn {
namespace config {
namespace access {

SocketFactory::SocketFactory()
    : _request_counter(0), _response_timeout_ms(SocketClient::kResponseTimeoutMs) {
  SemaphoreHelper::InitSemaphore(&_semaphore);
}

SocketFactory::~SocketFactory() { SemaphoreHelper::DestroySemaphore(&_semaphore); }

Config* SocketFactory::Connect(std::string uri) {
  url parts;
  parts.parse(uri);
  int port = kXConfigPort;
  if (!parts.port.empty()) port = atoi(parts.port.c_str());
  std::string host = parts.host;

  int configID = 0;
  size_t at = uri.find("configid=");
  int matches = at == std::string::npos ? 0 : sscanf(uri.c_str() + at, "configid=%d", &configID);
  // A URI without a config ID means store 0: said only when verbose. A
  // config ID that cannot be read is always reported.
  bool verbose = zyn::logging::IsVerbose();
  if (matches != 1) {
    if (verbose || at != std::string::npos)
      fprintf(stderr, "SocketFactory::Connect - unable to read configid, matches = %d, uri = %s\n",
              matches, uri.c_str());
    configID = 0;
  } else if (verbose) {
    fprintf(stderr, "SocketFactory::Connect - connecting to configid %d\n", configID);
  }

  eConfigID_t id = static_cast<eConfigID_t>(configID);
  SocketClient* client = Open(host, port, id);
  if (client == nullptr || uri.find("caching=true") == std::string::npos) return client;
  // The cache's events need a connection of their own: a client with
  // listeners reads every record on its connection.
  SocketClient* events = Open(host, port, id);
  if (events == nullptr) {
    Disconnect(client);
    return nullptr;
  }
  return new ConfigCache(client, events);
}

SocketClient* SocketFactory::Open(const std::string& host, int port, eConfigID_t configID) {
  unsigned int connectionID = ConnectionUtilities::GetConnectionID();
  Socket* socket = new Socket(Socket::kInternetDomain, Socket::kStream);
  if (!socket->create()) {
    fprintf(stderr, "SocketFactory::Connect - failed to create socket\n");
    delete socket;
    return nullptr;
  }
  if (!socket->connect(host, port)) {
    fprintf(stderr, "SocketFactory::Connect - failed to connect to host %s, port %d\n",
            host.c_str(), port);
    delete socket;
    return nullptr;
  }
  if (!ConfirmConnection(socket, connectionID, configID)) {
    fprintf(stderr, "SocketFactory::Connect - failed to confirm connection with host %s\n",
            host.c_str());
    delete socket;
    return nullptr;
  }
  auto* client = new SocketClient(connectionID, socket, &_semaphore, _request_counter, configID);
  client->SetResponseTimeout(_response_timeout_ms);
  return client;
}

bool SocketFactory::ConfirmConnection(Socket* socket, unsigned int connectionID,
                                      eConfigID_t configID) {
  return ConnectionExchange(socket, XCFG_CONNECT_REQUEST, XCFG_CONNECT_RESPONSE, connectionID,
                            configID);
}

bool SocketFactory::ConfirmDisconnect(Socket* socket, unsigned int connectionID,
                                      eConfigID_t configID) {
  return ConnectionExchange(socket, XCFG_DISCONNECT_REQUEST, XCFG_DISCONNECT_RESPONSE, connectionID,
                            configID);
}

bool SocketFactory::ConnectionExchange(Socket* socket, uint32_t msgtype, uint32_t expected,
                                       unsigned int connectionID, eConfigID_t configID) {
  SemaphoreHelper lock(&_semaphore);
  XCONFIGMGR_CONNECTION_REQUEST_T request{MakeHeader(msgtype, connectionID,
                                                     static_cast<uint32_t>(_request_counter++),
                                                     static_cast<uint32_t>(configID))};
  char bytes[sizeof request];
  Pack(request, bytes);
  ConnectionUtilities::Dump(request);
  if (!SendAll(socket->get_fd(), bytes, sizeof bytes)) {
    fprintf(stderr, "SocketFactory::ConfirmConnection: send failed\n");
    return false;
  }
  char answer[sizeof(XCONFIGMGR_CONNECTION_RESPONSE_T)];
  bool timedOut = false;
  if (RecvExactBy(socket->get_fd(), answer, sizeof answer, DeadlineAfter(_response_timeout_ms),
                  &timedOut) != static_cast<long>(sizeof answer)) {
    if (timedOut) errno = ETIMEDOUT;
    perror("SocketFactory::ConfirmConnection - receive failed\n");
    fprintf(stderr, "SocketFactory::ConfirmConnection - receive for connectionID %X failed\n",
            connectionID);
    return false;
  }
  XCONFIGMGR_CONNECTION_RESPONSE_T response;
  Unpack(answer, response);
  ConnectionUtilities::Dump(response);
  if (response.header.msgtype != expected) {
    fprintf(stderr, "SocketFactory::ConfirmConnection: unexpected msgtype == %d\n",
            static_cast<int>(response.header.msgtype));
    return false;
  }
  if (!IsValidResponse(request.header, response.header)) {
    fprintf(stderr, "SocketFactory::ConfirmConnection: mismatched msgInfo\n");
    return false;
  }
  if (response.error != 0) {
    fprintf(stderr, "SocketFactory::ConfirmConnection: server responded with error %d\n",
            static_cast<int>(response.error));
    return false;
  }
  return true;
}

void SocketFactory::Disconnect(Config* config) {
  if (config == nullptr) return;
  if (ConfigCache* cache = dynamic_cast<ConfigCache*>(config)) {
    // Goodbye on both connections first: removing the cache's listener, as
    // its destructor does, closes the events connection.
    auto goodbye = [](Config* part) {
      if (SocketClient* client = dynamic_cast<SocketClient*>(part)) client->ConfirmDisconnect();
    };
    goodbye(cache->GetConfig());
    if (cache->GetEvents() != cache->GetConfig()) goodbye(cache->GetEvents());
    delete cache;
    return;
  }
  SocketClient* client = dynamic_cast<SocketClient*>(config);
  if (client == nullptr) {
    fprintf(stderr, "SocketFactory::Disconnect - not a client of this factory\n");
    return;
  }
  client->ConfirmDisconnect();
  delete client;
}

}  // namespace access
}  // namespace config
}  // namespace zyn
