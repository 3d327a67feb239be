#include "configd/daemon.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cstdio>

#include "config/access/socket_connection.h"
#include "config/access/socket_server.h"
#include "config/config_factory_impl.h"
#include "config/descriptors/param_descriptors.h"
#include "configd/file_system.h"
#include "configd/persistence_worker.h"
#include "configd/preset_image.h"
#include "configd/preset_store.h"
#include "configd/register_handler.h"
#include "configd/sector_codec.h"
#include "configd/sector_file.h"
#include "configd/string_length_precondition.h"
#include "support/logger.h"

using zyn::config::access::SocketConnection;
using zyn::config::access::SocketServer;

ConfigDaemon::ConfigDaemon() = default;

ConfigDaemon::~ConfigDaemon() { Stop(); }

bool ConfigDaemon::Start(const DaemonOptions& options) {
  // The catalogue, the logger's watch list and the product identity are
  // read before any thread starts: all are read without locks afterwards.
  CreateDescriptors();
  zyn::logging::Logger::GetLogger();
  PresetImage::UnitProduct();
  // Listen first: a second configd that cannot have the port must not touch
  // the state of the one that has it. Connections wait in the backlog until
  // the server thread starts, after the state is restored.
  auto* server = new SocketServer(options.port);
  if (!server->Init()) {
    fprintf(stderr, "configd: cannot listen on port %d\n", options.port);
    delete server;
    return false;
  }
  if (!OpenState(options)) {
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

bool ConfigDaemon::OpenState(const DaemonOptions& options) {
  FileSystem* files = FileSystem::Default();
  if (!files->MakeFolders(options.stateDir)) {
    fprintf(stderr, "configd: cannot create the state folder %s\n", options.stateDir.c_str());
    return false;
  }
  // One owner per state folder: two writers would break the alternation of
  // the sector files. The lock goes with the process, also on SIGKILL.
  std::string lockPath = options.stateDir + "/lock";
  _state_lock = files->Open(lockPath, O_RDWR | O_CREAT, 0644);
  if (_state_lock < 0 || flock(_state_lock, LOCK_EX | LOCK_NB) != 0) {
    fprintf(stderr, "configd: the state folder %s is in use by another configd\n",
            options.stateDir.c_str());
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
  // Commands already queued are finished and their changes written.
  if (_registers) _registers->Stop();
  if (_persistence) _persistence->Stop();
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
  return clean;
}
