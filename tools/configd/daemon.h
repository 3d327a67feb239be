// ConfigDaemon is the settings owner of the unit: it builds the parameter
// catalogue, opens the authoritative store (store 0, in-process) and serves
// it to the other processes through the local socket server.
//
// Lifecycle: Start (catalogue, store, listening server thread) -> Stop
// (server stopped and joined, every client connection ended, store given
// back). The destructor stops a daemon that is still running.
//
// Threads: Start and Stop belong to one controlling thread (configd's main
// thread). The server thread and the connection threads are the library's;
// Stop waits for all of them.
#ifndef TOOLS_CONFIGD_DAEMON_H
#define TOOLS_CONFIGD_DAEMON_H

#include <pthread.h>

#include <cstddef>

class Config;

namespace zyn {
namespace config {
namespace access {
class SocketServer;
}  // namespace access
}  // namespace config
}  // namespace zyn

class ConfigDaemon {
 public:
  // How long Stop waits for the client connections to end.
  static constexpr long kConnectionsTimeoutMs = 5000;

  ConfigDaemon() = default;
  ~ConfigDaemon();
  ConfigDaemon(const ConfigDaemon&) = delete;
  ConfigDaemon& operator=(const ConfigDaemon&) = delete;

  // Serves store 0 on `port` (0 lets the system choose). True once the
  // server accepts connections; false with a message on standard error,
  // nothing left running.
  bool Start(int port);
  // The port the server listens on; valid after a successful Start.
  int GetPort() const { return _port; }
  // The number of parameters in the catalogue.
  size_t GetParamCount() const;
  // Ends the server and every client connection, then gives the store back.
  // False when connections were still alive after kConnectionsTimeoutMs.
  bool Stop();

 private:
  Config* _store = nullptr;
  // Owned by the server thread once started; only Stop is called on it.
  zyn::config::access::SocketServer* _server = nullptr;
  pthread_t _server_thread{};
  int _port = 0;
};

#endif  // TOOLS_CONFIGD_DAEMON_H
