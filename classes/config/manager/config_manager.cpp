#include "config/manager/config_manager.h"

#include <cstdio>
#include <deque>
#include <utility>

#include "config/descriptors/integer_descriptor.h"
#include "config/descriptors/param_descriptors.h"
#include "config/descriptors/string_descriptor.h"
#include "config/manager/update_precondition_values.h"
#include "config/values/integer_value.h"
#include "config/values/string_value.h"
#include "support/semaphore_helper.h"

namespace {

// The source name printed with a missing descriptor, and the line of each
// writer that reports it; log readers match these.
constexpr const char* kSourceName = "classes/config/manager/config_manager";
constexpr int kIntegerSetLine = 103;
constexpr int kStringSetLine = 188;
constexpr int kSetDataLine = 248;

}  // namespace

ConfigManager::ConfigManager(eConfigID_t id) : configID(id), _last_update{0, 0}, _use_count(0) {
  SemaphoreHelper::InitSemaphore(&_values_lock);
  SemaphoreHelper::InitSemaphore(&_listeners_lock);
  SemaphoreHelper::InitSemaphore(&_use_count_lock);
}

ConfigManager::~ConfigManager() {
  DeleteAllUpdatePreconditions();
  for (auto& entry : _values) delete entry.second;
  _values.clear();
  SemaphoreHelper::DestroySemaphore(&_values_lock);
  SemaphoreHelper::DestroySemaphore(&_listeners_lock);
  SemaphoreHelper::DestroySemaphore(&_use_count_lock);
}

bool ConfigManager::Init() {
  {
    SemaphoreHelper lock(&_values_lock);
    _last_update = {0, 0};
  }
  fprintf(stderr, "ConfigManager::Init - calling AddDefaultPreconditions!\n");
  AddDefaultPreconditions();
  InitDefaultConfig();
  return true;
}

void ConfigManager::AddDefaultPreconditions() {
  AddUpdatePrecondition(new zyn::config::UpdatePreconditionValues());
}

bool ConfigManager::InitDefaultConfig() {
  for (unsigned int id : GetParamIDs()) {
    Serializable* value = nullptr;
    if (!GetConfigValue(id, value))
      fprintf(stderr,
              "ConfigManager::InitDefaultConfig - GetConfigValue failed for paramid %d!!!!\n",
              static_cast<int>(id));
  }
  fprintf(stderr, "ConfigManager::InitDefaultConfig() - end\n");
  return true;
}

void ConfigManager::DeleteAllUpdatePreconditions() {
  for (zyn::config::UpdatePrecondition* precondition : _preconditions) delete precondition;
  _preconditions.clear();
}

int ConfigManager::IncrementUseCount() {
  SemaphoreHelper lock(&_use_count_lock);
  return ++_use_count;
}

int ConfigManager::DecrementUseCount() {
  SemaphoreHelper lock(&_use_count_lock);
  return --_use_count;
}

int ConfigManager::GetUseCount() {
  SemaphoreHelper lock(&_use_count_lock);
  return _use_count;
}

eConfigID_t ConfigManager::GetConfigID() { return configID; }

timeval ConfigManager::GetLastConfigUpdate() { return timeval{0, 0}; }

ParamDescriptor* ConfigManager::GetParamDescriptor(eParam_t id) { return GetDescriptor(id); }

ParamDescriptor* ConfigManager::GetParamDescriptor(std::string name) { return GetDescriptor(name); }

std::vector<unsigned int> ConfigManager::GetParamIDs() { return ::GetParamIDs(); }

bool ConfigManager::GetConfigValue(eParam_t id, Serializable*& value) {
  if (!IsValidParamID(id)) return false;
  SemaphoreHelper lock(&_values_lock);
  auto it = _values.find(id);
  if (it != _values.end()) {
    value = it->second;
    return true;
  }
  ParamDescriptor* descriptor = GetDescriptor(id);
  ConfigValue* created = nullptr;
  if (IntegerDescriptor* integer = dynamic_cast<IntegerDescriptor*>(descriptor)) {
    created = new IntegerValue(eConfigID_Default, id, integer->GetParamType(),
                               integer->GetFactoryDefault());
  } else if (StringDescriptor* text = dynamic_cast<StringDescriptor*>(descriptor)) {
    created =
        new StringValue(eConfigID_Default, id, text->GetParamType(), text->GetFactoryDefault());
  } else {
    fprintf(stderr,
            "ConfigManager::GetConfigValue - Clone() returned defaultValue == NULL, paramID = "
            "0x%0X\n",
            id);
    return false;
  }
  // Marks the value dirty when the store is not the default one.
  created->SetConfigID(GetConfigID());
  _values[id] = created;
  value = created;
  return true;
}

ConfigValue* ConfigManager::GetConfigValue(eParam_t id) {
  if (!IsValidParamID(id)) return nullptr;
  SemaphoreHelper lock(&_values_lock);
  auto it = _values.find(id);
  return it == _values.end() ? nullptr : it->second;
}

bool ConfigManager::GetConfigParam(eParam_t id, unsigned int& value) {
  IntegerValue* integer = dynamic_cast<IntegerValue*>(GetConfigValue(id));
  if (integer == nullptr) return false;
  integer->Get(value);
  return true;
}

bool ConfigManager::GetConfigParam(eParam_t id, std::string& value) {
  ConfigValue* found = GetConfigValue(id);
  if (found == nullptr) {
    fprintf(stderr, "ConfigManager::GetConfigParam() - configValue == NULL for paramID = %X\n", id);
    return false;
  }
  StringValue* text = dynamic_cast<StringValue*>(found);
  if (text == nullptr) {
    fprintf(stderr, "ConfigManager::GetConfigParam - error - not a StringValue\n");
    return false;
  }
  text->Get(value);
  return true;
}

bool ConfigManager::SetConfigParam(eParam_t id, unsigned int value) {
  IntegerValue* integer = dynamic_cast<IntegerValue*>(GetConfigValue(id));
  if (integer == nullptr) {
    fprintf(stderr, "ConfigManager::SetConfigParam() - configValue == NULL for paramID = %X\n", id);
    return false;
  }
  integer->Set(value);
  StampLastUpdate();
  return true;
}

bool ConfigManager::SetConfigParam(eParam_t id, std::string value) {
  Serializable* found = nullptr;
  if (!GetConfigValue(id, found)) {
    fprintf(stderr, "ConfigManager::SetConfigParam() - configValue == NULL for paramID = %08X\n",
            id);
    return false;
  }
  StringValue* text = dynamic_cast<StringValue*>(found);
  if (text == nullptr) return false;
  text->Set(value);
  StampLastUpdate();
  return true;
}

unsigned int ConfigManager::Get(eParam_t id) {
  unsigned int value = 0;
  return GetConfigParam(id, value) ? value : 0;
}

bool ConfigManager::Get(eParam_t id, unsigned int& value) { return GetConfigParam(id, value); }

bool ConfigManager::Get(eParam_t id, std::string& value) { return GetConfigParam(id, value); }

bool ConfigManager::GetData(eParam_t id, std::string& data) { return GetConfigParam(id, data); }

Serializable* ConfigManager::GetSerializable(eParam_t id) { return GetConfigValue(id); }

bool ConfigManager::SetSerializable(eParam_t, Serializable*) { return false; }

void ConfigManager::ReportMissingDescriptor(int line) {
  fprintf(stderr, "GetParamDescriptor Error in %s at line %d\n", kSourceName, line);
}

void ConfigManager::StampLastUpdate() {
  timeval now;
  gettimeofday(&now, nullptr);
  SemaphoreHelper lock(&_values_lock);
  _last_update = now;
}

// One Set, integer or string: the update and whatever the preconditions add
// are processed front to back. Updates applied before a precondition refuses
// a later one stay applied and notified.
template <typename T>
bool ConfigManager::SetQueued(eParam_t id, T value, int line, const char* failure) {
  std::deque<std::pair<unsigned int, T>> updates;
  updates.emplace_front(id, std::move(value));
  while (!updates.empty()) {
    ParamDescriptor* descriptor = GetParamDescriptor(updates.front().first);
    if (descriptor == nullptr) {
      ReportMissingDescriptor(line);
      return false;
    }
    if (!descriptor->HasClassName("do_not_validate")) {
      for (zyn::config::UpdatePrecondition* precondition : _preconditions) {
        if (!precondition->IsUpdateValid(this, updates)) {
          fprintf(stderr, "%s", failure);
          return false;
        }
      }
    }
    if (updates.empty()) return false;
    // The front pair again: a precondition may have repaired or replaced it.
    const eParam_t current = updates.front().first;
    const T currentValue = updates.front().second;
    if (!SetConfigParam(current, currentValue)) return false;
    StampLastUpdate();
    FireParamChangedEvent(current, currentValue);
    if (ParamDescriptor* written = GetParamDescriptor(current))
      FireParamsChangedEvents(written->GetDependentParamIDs());
    updates.pop_front();
  }
  return true;
}

bool ConfigManager::Set(eParam_t id, unsigned int value) {
  return SetQueued(id, value, kIntegerSetLine,
                   "ConfigManager::Set(uint32_t) - update precondition failed, returning false\n");
}

bool ConfigManager::Set(eParam_t id, std::string value) {
  return SetQueued(
      id, std::move(value), kStringSetLine,
      "ConfigManager::Set(std::string) - update precondition failed, returning false\n");
}

bool ConfigManager::SetData(eParam_t id, std::string& data) {
  if (!SetConfigParam(id, data)) return false;
  StampLastUpdate();
  FireDataChangedEvent(id, data);
  ParamDescriptor* descriptor = GetParamDescriptor(id);
  if (descriptor == nullptr) {
    ReportMissingDescriptor(kSetDataLine);
  } else {
    FireDataChangedEvents(descriptor->GetDependentParamIDs());
  }
  return true;
}

bool ConfigManager::AddConfigEventListener(ConfigEventListener* listener) {
  SemaphoreHelper lock(&_listeners_lock);
  _listeners.push_back(listener);
  return true;
}

bool ConfigManager::AddConfigEventListener(eParam_t, ConfigEventListener* listener) {
  return AddConfigEventListener(listener);
}

bool ConfigManager::RemoveConfigEventListener(ConfigEventListener* listener) {
  SemaphoreHelper lock(&_listeners_lock);
  for (auto it = _listeners.begin(); it != _listeners.end(); ++it) {
    if (*it == listener) {
      _listeners.erase(it);
      return true;
    }
  }
  return false;
}

bool ConfigManager::AddUpdatePrecondition(zyn::config::UpdatePrecondition* precondition) {
  _preconditions.push_back(precondition);
  return true;
}

bool ConfigManager::RemoveUpdatePrecondition(zyn::config::UpdatePrecondition* precondition) {
  for (auto it = _preconditions.begin(); it != _preconditions.end(); ++it) {
    if (*it == precondition) {
      _preconditions.erase(it);
      return true;
    }
  }
  return false;
}

bool ConfigManager::FireParamChangedEvent(eParam_t id, unsigned int value) {
  SemaphoreHelper lock(&_listeners_lock);
  for (ConfigEventListener* listener : _listeners)
    listener->ParamChanged(id, value, GetLastConfigUpdate());
  return true;
}

bool ConfigManager::FireParamChangedEvent(eParam_t id, std::string value) {
  SemaphoreHelper lock(&_listeners_lock);
  for (ConfigEventListener* listener : _listeners)
    listener->ParamChanged(id, value, GetLastConfigUpdate());
  return true;
}

bool ConfigManager::FireDataChangedEvent(eParam_t id, std::string& data) {
  SemaphoreHelper lock(&_listeners_lock);
  for (ConfigEventListener* listener : _listeners)
    listener->DataChanged(id, data, GetLastConfigUpdate());
  return true;
}

void ConfigManager::FireParamsChangedEvents(const std::vector<unsigned int>& ids) {
  for (unsigned int id : ids) {
    ParamDescriptor* descriptor = GetParamDescriptor(id);
    if (descriptor != nullptr && descriptor->GetParamType() == eCParam_StringValue) {
      std::string value;
      Get(id, value);
      FireParamChangedEvent(id, value);
    } else {
      FireParamChangedEvent(id, Get(id));
    }
  }
}

void ConfigManager::FireDataChangedEvents(const std::vector<unsigned int>& ids) {
  for (unsigned int id : ids) {
    std::string data;
    GetData(id, data);
    FireDataChangedEvent(id, data);
  }
}
