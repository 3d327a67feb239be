// ConfigDaemon is the settings owner of the unit: it builds the parameter
// catalogue, opens the authoritative store (store 0, in-process), puts the
// persisted settings back, keeps them saved as they change, answers the
// preset and factory-reset commands, and serves the store to the other
// processes through the local socket server and to other machines through
// the network TCP and UDP servers (events multicast on the loopback
// interface unless another is named).
//
// Every server opens the stores its clients name through the process's
// configuration factory, which the daemon bounds (DaemonOptions::maxStores)
// for as long as it runs.
//
// Lifecycle: Start (catalogue, store, restored state, flush and register
// threads, listening server thread) -> Stop (server stopped and joined,
// every client connection ended, queued commands finished, pending changes
// written, store given back). The destructor stops a daemon that is still
// running.
//
// Threads: Start and Stop belong to one controlling thread (configd's main
// thread). The server thread and the connection threads are the library's;
// the flush thread and the register thread are the owner's (see
// persistence_worker.h, register_handler.h). Stop waits for all of them.
#ifndef CLASSES_CONFIG_OWNER_DAEMON_H
#define CLASSES_CONFIG_OWNER_DAEMON_H

#include <pthread.h>

#include <cstddef>
#include <memory>
#include <string>

class Config;
class PersistenceWorker;
class PresetStore;
class RegisterHandler;
class SectorFile;

namespace zyn {
namespace config {
namespace access {
class SocketServer;
}  // namespace access
}  // namespace config
namespace boxline {
namespace config {
namespace access {
class NetworkServer;
}  // namespace access
}  // namespace config
}  // namespace boxline
}  // namespace zyn

// What configd is started with. An empty listening address means every
// interface.
struct DaemonOptions {
  int port = 43110;  // the local socket server
  std::string socketAddress;
  int tcpPort = 43111;  // the network TCP server (43110 is the local server's)
  std::string tcpAddress;
  int udpPort = 43110;  // the network UDP server
  std::string udpAddress;
  int multicastPort = 63110;  // where the UDP server's events go
  std::string multicastInterface = "127.0.0.1";
  int maxConnections = 1024;  // per stream server; 0: no limit
  int maxStores = 16;         // stores open at once, store 0 included; 0: no limit
  long readTimeoutMs = 5000;  // a stream client's record must arrive whole in it; 0: no limit
  long udpStoreIdleS = 600;   // a UDP-opened store unused this long is given back; 0: never
  std::string stateDir;       // created if missing
  long flushMs = 100;         // the longest a changed setting waits to be written
  std::string presetFolder = "/tmp/zyn";
};

class ConfigDaemon {
 public:
  // How long Stop waits for the client connections to end.
  static constexpr long kConnectionsTimeoutMs = 5000;

  ConfigDaemon();
  ~ConfigDaemon();
  ConfigDaemon(const ConfigDaemon&) = delete;
  ConfigDaemon& operator=(const ConfigDaemon&) = delete;

  // Restores the state kept in `options.stateDir` and serves store 0 on
  // `options.port` (0 lets the system choose). True once the server accepts
  // connections; false with a message on standard error, nothing left
  // running.
  bool Start(const DaemonOptions& options);
  // The ports the local, network TCP and network UDP servers listen on;
  // valid after a successful Start.
  int GetPort() const { return _port; }
  int GetTcpPort() const { return _tcp_port; }
  int GetUdpPort() const { return _udp_port; }
  // The number of parameters in the catalogue.
  size_t GetParamCount() const;
  // Ends the server and every client connection, finishes the owner's work,
  // writes pending changes, then gives the store back. False when
  // connections were still alive after kConnectionsTimeoutMs, or when the
  // last changes could not be written (said on standard error).
  bool Stop();

 private:
  // Checks and locks the state folder (a folder of configd's own, not a
  // symlink, not writable by others), opens the store, restores the kept state and
  // starts the owner's threads. False after a message on standard error.
  bool OpenState(const DaemonOptions& options);
  // Binds the network servers (not started yet). False after a message.
  bool InitNetwork(const DaemonOptions& options);
  // Starts the bound servers' threads; from then on each owns its server.
  bool StartServers();

  int _state_lock = -1;  // descriptor holding the state folder's lock
  Config* _store = nullptr;
  std::unique_ptr<SectorFile> _settings_file;
  std::unique_ptr<PersistenceWorker> _persistence;
  std::unique_ptr<PresetStore> _presets;
  std::unique_ptr<RegisterHandler> _registers;
  // Owned by the server thread once started; only Stop is called on it.
  zyn::config::access::SocketServer* _server = nullptr;
  pthread_t _server_thread{};
  bool _server_started = false;
  zyn::boxline::config::access::NetworkServer* _tcp_server = nullptr;
  pthread_t _tcp_thread{};
  bool _tcp_started = false;
  zyn::boxline::config::access::NetworkServer* _udp_server = nullptr;
  pthread_t _udp_thread{};
  bool _udp_started = false;
  int _port = 0;
  int _tcp_port = 0;
  int _udp_port = 0;
};

#endif  // CLASSES_CONFIG_OWNER_DAEMON_H
