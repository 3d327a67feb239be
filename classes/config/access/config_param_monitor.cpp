#include "config/access/config_param_monitor.h"

#include "support/semaphore_helper.h"

namespace zyn {
namespace config {
namespace access {

namespace {
// The first prime not below the 50 IDs a typical screen watches.
constexpr size_t kInitialBuckets = 53;
}  // namespace

ConfigParamMonitor::ConfigParamMonitor(Config* config)
    : _monitored(kInitialBuckets), _changed(false), _config(nullptr) {
  _monitored.max_load_factor(1.0f);
  SemaphoreHelper::InitSemaphore(&_set_lock);
  SemaphoreHelper::InitSemaphore(&_flag_lock);
  SetConfig(config);
}

ConfigParamMonitor::~ConfigParamMonitor() {
  SetConfig(nullptr);
  SemaphoreHelper::DestroySemaphore(&_flag_lock);
  SemaphoreHelper::DestroySemaphore(&_set_lock);
}

bool ConfigParamMonitor::ParamChanged(eParam_t id, unsigned int, timeval) {
  ParamChanged(id);
  return true;
}

bool ConfigParamMonitor::ParamChanged(eParam_t id, std::string, timeval) {
  ParamChanged(id);
  return true;
}

void ConfigParamMonitor::SetConfig(Config* config) {
  if (_config != nullptr) _config->RemoveConfigEventListener(this);
  _config = config;
  if (_config != nullptr) _config->AddConfigEventListener(this);
}

void ConfigParamMonitor::AddParamToMonitor(const unsigned int& id) {
  SemaphoreHelper hold(&_set_lock);
  _monitored.insert(id);
}

void ConfigParamMonitor::AddParamsToMonitor(const unsigned int* ids, int count) {
  for (int i = 0; i < count; ++i) AddParamToMonitor(ids[i]);
}

void ConfigParamMonitor::AddParamsToMonitor(std::vector<unsigned int>& ids) {
  for (const unsigned int& id : ids) AddParamToMonitor(id);
}

void ConfigParamMonitor::RemoveParamFromMonitorList(const unsigned int& id) {
  SemaphoreHelper hold(&_set_lock);
  _monitored.erase(id);
}

bool ConfigParamMonitor::IsParamMonitored(const unsigned int& id) {
  SemaphoreHelper hold(&_set_lock);
  return _monitored.find(id) != _monitored.end();
}

void ConfigParamMonitor::ParamChanged(const unsigned int& id) {
  if (!IsParamMonitored(id)) return;
  SemaphoreHelper hold(&_flag_lock);
  _changed = true;
}

bool ConfigParamMonitor::DidSomethingChange(bool reset) {
  SemaphoreHelper hold(&_flag_lock);
  bool changed = _changed;
  if (reset) _changed = false;
  return changed;
}

}  // namespace access
}  // namespace config
}  // namespace zyn
