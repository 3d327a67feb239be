#include "configd/daemon.h"

#include <cstdio>

#include "config/access/socket_connection.h"
#include "config/access/socket_server.h"
#include "config/config_factory_impl.h"
#include "config/descriptors/param_descriptors.h"
#include "support/logger.h"

using zyn::config::access::SocketConnection;
using zyn::config::access::SocketServer;

ConfigDaemon::~ConfigDaemon() { Stop(); }

bool ConfigDaemon::Start(int port) {
  // The catalogue and the logger's watch list are built before any thread
  // starts: both are read without locks afterwards.
  CreateDescriptors();
  zyn::logging::Logger::GetLogger();
  _store = ConfigFactoryImpl::GetInstance()->Connect("local:configid=0");
  if (_store == nullptr) {
    fprintf(stderr, "configd: cannot open the settings store\n");
    return false;
  }
  auto* server = new SocketServer(port);
  if (!server->Init()) {
    fprintf(stderr, "configd: cannot listen on port %d\n", port);
    delete server;
    Stop();
    return false;
  }
  _port = server->GetPort();
  if (!server->Start()) {
    fprintf(stderr, "configd: cannot start the server thread\n");
    delete server;
    Stop();
    return false;
  }
  _server_thread = server->GetThread();
  _server = server;
  return true;
}

size_t ConfigDaemon::GetParamCount() const { return GetParamIDs().size(); }

bool ConfigDaemon::Stop() {
  bool clean = true;
  if (_server != nullptr) {
    _server->Stop();
    pthread_join(_server_thread, nullptr);  // the server deletes itself
    _server = nullptr;
  }
  SocketConnection::StopAll();
  if (!SocketConnection::WaitForAll(kConnectionsTimeoutMs)) {
    fprintf(stderr, "configd: %d client connections did not end\n", SocketConnection::LiveCount());
    clean = false;
  }
  if (_store != nullptr) {
    ConfigFactoryImpl::GetInstance()->Disconnect(_store);
    _store = nullptr;
  }
  return clean;
}
