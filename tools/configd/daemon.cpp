#include "configd/daemon.h"

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
  FileSystem* files = FileSystem::Default();
  if (!files->MakeFolders(options.stateDir)) {
    fprintf(stderr, "configd: cannot create the state folder %s\n", options.stateDir.c_str());
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
  int port = options.port;
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
  return clean;
}
