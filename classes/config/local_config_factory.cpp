#include "config/local_config_factory.h"

#include <cstdio>

#include "config/manager/config_manager.h"
#include "support/semaphore_helper.h"

namespace zyn {
namespace config {
namespace access {

LocalConfigFactory::LocalConfigFactory() { SemaphoreHelper::InitSemaphore(&_lock); }

LocalConfigFactory::~LocalConfigFactory() { SemaphoreHelper::DestroySemaphore(&_lock); }

eConfigID_t LocalConfigFactory::GetConfigID(std::string uri) {
  size_t at = uri.find("configid=");
  int id = 0;
  if (at == std::string::npos || sscanf(uri.c_str() + at, "configid=%d", &id) != 1)
    return eConfigID_Default;
  return static_cast<eConfigID_t>(id);
}

void LocalConfigFactory::SetMaxStores(int count) {
  SemaphoreHelper lock(&_lock);
  _max_stores = count > 0 ? static_cast<size_t>(count) : 0;
}

Config* LocalConfigFactory::Connect(std::string uri, bool* refused) {
  SemaphoreHelper lock(&_lock);
  if (refused != nullptr) *refused = false;
  eConfigID_t id = GetConfigID(uri);
  ConfigManager* manager = nullptr;
  auto it = _configs.find(id);
  if (it != _configs.end()) {
    manager = static_cast<ConfigManager*>(it->second);
  } else if (_max_stores > 0 && _configs.size() >= _max_stores) {
    // Refused before anything is built: a flood of new store IDs costs no
    // memory and one line a second.
    ++_refused;
    time_t now = time(nullptr);
    if (now != _refusal_reported) {
      _refusal_reported = now;
      fprintf(stderr,
              "LocalConfigFactory::Connect - store limit of %zu reached, configid %d refused "
              "(%lu refused so far)\n",
              _max_stores, static_cast<int>(id), _refused);
    }
    if (refused != nullptr) *refused = true;
    return nullptr;
  } else {
    manager = new ConfigManager(id);
    if (!manager->Init()) {
      fprintf(stderr, "LocalConfigFactory::Connect - Init() failed\n");
      delete manager;
      return nullptr;
    }
    _configs[id] = manager;
  }
  manager->IncrementUseCount();
  return manager;
}

bool LocalConfigFactory::Disconnect(Config* config) {
  SemaphoreHelper lock(&_lock);
  ConfigManager* manager = dynamic_cast<ConfigManager*>(config);
  if (manager == nullptr) return false;
  eConfigID_t id = manager->GetConfigID();
  auto it = _configs.find(id);
  // A manager of the same store made elsewhere is not this factory's.
  if (it == _configs.end() || it->second != config) {
    fprintf(stderr, "LocalConfigFactory::Disconnect - This instance not tracking configID %d\n",
            static_cast<int>(id));
    return false;
  }
  if (manager->DecrementUseCount() == 0) {
    _configs.erase(it);
    delete manager;
  }
  return true;
}

size_t LocalConfigFactory::OpenCount() {
  SemaphoreHelper lock(&_lock);
  return _configs.size();
}

bool LocalConfigFactory::DisconnectIfUnshared(Config* config) {
  SemaphoreHelper lock(&_lock);
  ConfigManager* manager = dynamic_cast<ConfigManager*>(config);
  if (manager == nullptr) return false;
  auto it = _configs.find(manager->GetConfigID());
  if (it == _configs.end() || it->second != config || manager->GetUseCount() != 1) return false;
  manager->DecrementUseCount();
  _configs.erase(it);
  delete manager;
  return true;
}

}  // namespace access
}  // namespace config
}  // namespace zyn
