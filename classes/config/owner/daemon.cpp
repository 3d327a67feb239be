#include "config/owner/daemon.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "config/access/network_server.h"
#include "config/access/network_tcp_connection.h"
#include "config/access/socket_connection.h"
#include "config/access/socket_server.h"
#include "config/config_factory_impl.h"
#include "config/descriptors/owner_params.h"
#include "config/descriptors/param_descriptors.h"
#include "config/owner/file_system.h"
#include "config/owner/persistence_worker.h"
#include "config/owner/preset_image.h"
#include "config/owner/preset_store.h"
#include "config/owner/register_handler.h"
#include "config/owner/sector_codec.h"
#include "config/owner/sector_file.h"
#include "config/owner/string_length_precondition.h"
#include "support/logger.h"

using zyn::boxline::config::access::NetworkServer;
using zyn::boxline::config::access::NetworkTCPConnection;
using zyn::config::access::SocketConnection;
using zyn::config::access::SocketServer;

namespace {

// Stops a server whose thread runs and waits for the thread, which deletes
// the server; deletes a server whose thread never started.
template <typename Server>
void EndServer(Server*& server, pthread_t thread, bool& started) {
  if (server == nullptr) return;
  if (started) {
    server->Stop();
    pthread_join(thread, nullptr);
  } else {
    delete server;
  }
  server = nullptr;
  started = false;
}

}  // namespace

ConfigDaemon::ConfigDaemon() = default;

ConfigDaemon::~ConfigDaemon() { Stop(); }

bool ConfigDaemon::Start(const DaemonOptions& options) {
  // The catalogue, the logger's watch list and the product identity are
  // read before any thread starts: all are read without locks afterwards.
  CreateDescriptors();
  AddOwnerDescriptors();
  zyn::logging::Logger::GetLogger();
  PresetImage::UnitProduct();
  ConfigFactoryImpl::GetInstance()->SetMaxStores(options.maxStores);
  // Listen first: a second configd that cannot have the port must not touch
  // the state of the one that has it. Connections wait in the backlog until
  // the server thread starts, after the state is restored.
  _server = new SocketServer(options.port);
  _server->SetListenAddress(options.socketAddress);
  _server->SetMaxConnections(options.maxConnections);
  _server->SetReadTimeoutMs(options.readTimeoutMs);
  if (!_server->Init()) {
    fprintf(stderr, "configd: cannot listen on port %d\n", options.port);
    Stop();
    return false;
  }
  _port = _server->GetPort();
  if (!InitNetwork(options) || !OpenState(options) || !StartServers()) {
    Stop();
    return false;
  }
  return true;
}

bool ConfigDaemon::InitNetwork(const DaemonOptions& options) {
  _tcp_server = new NetworkServer(AF_INET, SOCK_STREAM, options.tcpPort);
  _tcp_server->SetListenAddress(options.tcpAddress);
  _tcp_server->SetMaxConnections(options.maxConnections);
  _tcp_server->SetReadTimeoutMs(options.readTimeoutMs);
  if (!_tcp_server->Init()) {
    fprintf(stderr, "configd: cannot listen on tcp port %d\n", options.tcpPort);
    return false;
  }
  _tcp_port = _tcp_server->GetPort();
  _udp_server = new NetworkServer(AF_INET, SOCK_DGRAM, options.udpPort);
  _udp_server->SetListenAddress(options.udpAddress);
  _udp_server->SetMulticastPort(options.multicastPort);
  _udp_server->SetEventInterface(options.multicastInterface);
  _udp_server->SetUdpStoreIdleMs(options.udpStoreIdleS * 1000);
  if (!_udp_server->Init()) {
    fprintf(stderr, "configd: cannot listen on udp port %d\n", options.udpPort);
    return false;
  }
  _udp_port = _udp_server->GetPort();
  return true;
}

bool ConfigDaemon::StartServers() {
  // Each Start hands its server to the server's thread; a server whose
  // thread did not start is still ours to delete (by Stop).
  _server_started = _server->Start();
  if (_server_started) _server_thread = _server->GetThread();
  _tcp_started = _server_started && _tcp_server->Start();
  if (_tcp_started) _tcp_thread = _tcp_server->GetThread();
  _udp_started = _tcp_started && _udp_server->Start();
  if (_udp_started) _udp_thread = _udp_server->GetThread();
  if (!_udp_started) fprintf(stderr, "configd: cannot start a server thread\n");
  return _udp_started;
}

bool ConfigDaemon::OpenState(const DaemonOptions& options) {
  FileSystem* files = FileSystem::Default();
  const char* folder = options.stateDir.c_str();
  // configd is root: a state folder that others could write to, or that
  // points elsewhere, would let them choose which files it overwrites.
  std::string why;
  if (!files->MakeFolders(options.stateDir) && errno != ENOTDIR && errno != EEXIST) {
    fprintf(stderr, "configd: the state folder %s is not usable: %s\n", folder, strerror(errno));
    return false;
  }
  if (!FileSystem::CheckFolder(options.stateDir, why)) {
    fprintf(stderr, "configd: the state folder %s is not usable: %s\n", folder, why.c_str());
    return false;
  }
  // One owner per state folder: two writers would break the alternation of
  // the sector files. The lock goes with the process, also on SIGKILL.
  std::string lockPath = options.stateDir + "/lock";
  _state_lock = files->OpenRegular(lockPath, O_RDWR | O_CREAT, 0644);
  if (_state_lock < 0) {
    fprintf(stderr, "configd: the state folder %s is not usable: %s: %s\n", folder,
            lockPath.c_str(), strerror(errno));
    return false;
  }
  if (flock(_state_lock, LOCK_EX | LOCK_NB) != 0) {
    if (errno == EWOULDBLOCK)
      fprintf(stderr, "configd: the state folder %s is in use by another configd\n", folder);
    else
      fprintf(stderr, "configd: the state folder %s is not usable: cannot lock %s: %s\n", folder,
              lockPath.c_str(), strerror(errno));
    return false;
  }
  _store = ConfigFactoryImpl::GetInstance()->Connect("local:configid=0");
  if (_store == nullptr) {
    fprintf(stderr, "configd: cannot open the settings store\n");
    return false;
  }
  _store->AddUpdatePrecondition(new StringLengthPrecondition());
  _settings_file = std::make_unique<SectorFile>(files, options.stateDir, "settings",
                                                SectorCodec::kSettingsVersion);
  _persistence = std::make_unique<PersistenceWorker>(_store, _settings_file.get(), options.flushMs);
  _persistence->Restore();
  _presets = std::make_unique<PresetStore>(files, options.stateDir);
  _presets->Load();
  _registers = std::make_unique<RegisterHandler>(_store, _presets.get(), options.presetFolder);
  _persistence->Start();
  _registers->Start();
  return true;
}

size_t ConfigDaemon::GetParamCount() const { return GetParamIDs().size(); }

bool ConfigDaemon::Stop() {
  bool clean = true;
  EndServer(_server, _server_thread, _server_started);
  EndServer(_tcp_server, _tcp_thread, _tcp_started);
  EndServer(_udp_server, _udp_thread, _udp_started);
  SocketConnection::StopAll();
  NetworkTCPConnection::StopAll();
  if (!SocketConnection::WaitForAll(kConnectionsTimeoutMs) ||
      !NetworkTCPConnection::WaitForAll(kConnectionsTimeoutMs)) {
    fprintf(stderr, "configd: %d client connections did not end\n",
            SocketConnection::LiveCount() + NetworkTCPConnection::LiveCount());
    clean = false;
  }
  // Commands already queued are finished and their changes written.
  if (_registers) _registers->Stop();
  if (_persistence) {
    _persistence->Stop();
    if (!_persistence->AllWritten()) {
      fprintf(stderr, "configd: settings were not written to %s; the last changes are lost\n",
              _settings_file->GetFolder().c_str());
      clean = false;
    }
  }
  _registers.reset();
  _persistence.reset();
  _presets.reset();
  _settings_file.reset();
  if (_store != nullptr) {
    ConfigFactoryImpl::GetInstance()->Disconnect(_store);
    _store = nullptr;
  }
  if (_state_lock >= 0) {
    close(_state_lock);
    _state_lock = -1;
  }
  ConfigFactoryImpl::GetInstance()->SetMaxStores(0);
  return clean;
}
