// ConfigDaemon is the settings owner of the unit: it builds the parameter
// catalogue, opens the authoritative store (store 0, in-process), puts the
// persisted settings back, keeps them saved as they change, answers the
// preset and factory-reset commands, and serves the store to the other
// processes through the local socket server.
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
#ifndef TOOLS_CONFIGD_DAEMON_H
#define TOOLS_CONFIGD_DAEMON_H

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
}  // namespace zyn

// What configd is started with.
struct DaemonOptions {
  int port = 43110;
  std::string stateDir;  // created if missing
  long flushMs = 100;    // the longest a changed setting waits to be written
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
  // The port the server listens on; valid after a successful Start.
  int GetPort() const { return _port; }
  // The number of parameters in the catalogue.
  size_t GetParamCount() const;
  // Ends the server and every client connection, finishes the owner's work,
  // writes pending changes, then gives the store back. False when
  // connections were still alive after kConnectionsTimeoutMs.
  bool Stop();

 private:
  // Locks the state folder, opens the store, restores the kept state and
  // starts the owner's threads. False after a message on standard error.
  bool OpenState(const DaemonOptions& options);

  int _state_lock = -1;  // descriptor holding the state folder's lock
  Config* _store = nullptr;
  std::unique_ptr<SectorFile> _settings_file;
  std::unique_ptr<PersistenceWorker> _persistence;
  std::unique_ptr<PresetStore> _presets;
  std::unique_ptr<RegisterHandler> _registers;
  // Owned by the server thread once started; only Stop is called on it.
  zyn::config::access::SocketServer* _server = nullptr;
  pthread_t _server_thread{};
  int _port = 0;
};

#endif  // TOOLS_CONFIGD_DAEMON_H
