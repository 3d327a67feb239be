#include "config/manager/config_manager.h"

#include <cstdio>
#include <deque>
#include <memory>
#include <typeinfo>
#include <utility>

#include "config/descriptors/enum_descriptor.h"
#include "config/descriptors/integer_descriptor.h"
#include "config/descriptors/param_descriptors.h"
#include "config/descriptors/string_descriptor.h"
#include "config/manager/update_precondition_values.h"
#include "config/values/integer_value.h"
#include "config/values/string_value.h"
#include "support/logger.h"
#include "support/semaphore_helper.h"

namespace {

// The source name printed with a missing descriptor, and the line of each
// writer that reports it; log readers match these.
constexpr const char* kSourceName = "classes/config/manager/config_manager";
constexpr int kIntegerSetLine = 103;
constexpr int kStringSetLine = 188;
constexpr int kSetDataLine = 248;

constexpr const char* kIntegerFailure =
    "ConfigManager::Set(uint32_t) - update precondition failed, returning false\n";
constexpr const char* kStringFailure =
    "ConfigManager::Set(std::string) - update precondition failed, returning false\n";

// A queue of pending updates lent to one Set on this thread. Queues are kept
// per thread and per nesting depth (a precondition or listener may write to
// another store), and emptied, not freed, on return, so a Set allocates
// only the first time a thread reaches that depth.
template <typename Queue>
class QueueLease {
 public:
  QueueLease() : _stack(Stack()) {
    if (_stack.depth == _stack.queues.size()) _stack.queues.push_back(std::make_unique<Queue>());
    _queue = _stack.queues[_stack.depth++].get();
  }
  ~QueueLease() {
    _queue->clear();
    --_stack.depth;
  }
  QueueLease(const QueueLease&) = delete;
  QueueLease& operator=(const QueueLease&) = delete;
  Queue& operator*() { return *_queue; }

 private:
  struct Queues {
    std::vector<std::unique_ptr<Queue>> queues;
    size_t depth = 0;
  };
  static Queues& Stack() {
    thread_local Queues queues;
    return queues;
  }
  Queues& _stack;
  Queue* _queue;
};

}  // namespace

ConfigManager::ConfigManager(eConfigID_t id) : configID(id), _use_count(0) {
  SemaphoreHelper::InitSemaphore(&_values_lock);
  SemaphoreHelper::InitSemaphore(&_listeners_lock);
  SemaphoreHelper::InitSemaphore(&_use_count_lock);
}

ConfigManager::~ConfigManager() {
  DeleteAllUpdatePreconditions();
  _slots.store(nullptr, std::memory_order_relaxed);
  _tables.clear();
  for (auto& entry : _values) delete entry.second;
  _values.clear();
  SemaphoreHelper::DestroySemaphore(&_values_lock);
  SemaphoreHelper::DestroySemaphore(&_listeners_lock);
  SemaphoreHelper::DestroySemaphore(&_use_count_lock);
}

bool ConfigManager::Init() {
  if (zyn::logging::IsVerbose())
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
  {
    SemaphoreHelper lock(&_values_lock);
    PublishSlots();
  }
  if (zyn::logging::IsVerbose()) fprintf(stderr, "ConfigManager::InitDefaultConfig() - end\n");
  return true;
}

void ConfigManager::DeleteAllUpdatePreconditions() {
  for (zyn::config::UpdatePrecondition* precondition : _preconditions) delete precondition;
  _preconditions.clear();
  UpdateDefaultOnly();
}

void ConfigManager::UpdateDefaultOnly() {
  _default_only = nullptr;
  if (_preconditions.size() != 1 || _preconditions.front() == nullptr) return;
  zyn::config::UpdatePrecondition& only = *_preconditions.front();
  if (typeid(only) == typeid(zyn::config::UpdatePreconditionValues))
    _default_only = static_cast<zyn::config::UpdatePreconditionValues*>(&only);
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

const ConfigManager::Slot* ConfigManager::FindSlot(eParam_t id) const {
  const SlotTable* table = _slots.load(std::memory_order_acquire);
  if (table == nullptr) return nullptr;
  size_t at = static_cast<uint32_t>(id * 0x9E3779B1u) >> table->shift;
  for (;;) {
    const Slot& slot = table->slots[at];
    if (slot.value == nullptr) return nullptr;
    if (slot.id == id) return &slot;
    at = (at + 1) & table->mask;
  }
}

void ConfigManager::PublishSlots() {
  auto table = std::make_unique<SlotTable>();
  unsigned int bits = 3;
  while ((size_t{1} << bits) < 2 * _values.size()) ++bits;
  table->slots.resize(size_t{1} << bits);
  table->shift = 32 - bits;
  table->mask = table->slots.size() - 1;
  for (const auto& [id, value] : _values) {
    size_t at = static_cast<uint32_t>(id * 0x9E3779B1u) >> table->shift;
    while (table->slots[at].value != nullptr) at = (at + 1) & table->mask;
    Slot& slot = table->slots[at];
    slot.id = id;
    slot.value = value;
    slot.integer = dynamic_cast<IntegerValue*>(value);
    slot.text = dynamic_cast<StringValue*>(value);
    slot.descriptor = GetDescriptor(id);
    if (slot.descriptor == nullptr) continue;
    slot.validate = !slot.descriptor->HasClassName("do_not_validate");
    slot.dependents = slot.descriptor->GetDependentParamIDs();
    // The same tests, in the same order, as UpdatePreconditionValues makes.
    if (EnumDescriptor* enumeration = dynamic_cast<EnumDescriptor*>(slot.descriptor)) {
      slot.check = Check::kEnum;
      slot.enumeration = enumeration;
    } else if (IntegerDescriptor* range = dynamic_cast<IntegerDescriptor*>(slot.descriptor)) {
      slot.check = Check::kRange;
      slot.range = range;
      range->GetAttribute("dependent_minimum", slot.dependentMinimum);
    }
  }
  _slots.store(table.get(), std::memory_order_release);
  _tables.push_back(std::move(table));
}

bool ConfigManager::GetConfigValue(eParam_t id, Serializable*& value) {
  if (const Slot* slot = FindSlot(id)) {
    value = slot->value;
    return true;
  }
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
  // A parameter registered after the table was built joins a new table.
  if (_slots.load(std::memory_order_relaxed) != nullptr) PublishSlots();
  value = created;
  return true;
}

ConfigValue* ConfigManager::GetConfigValue(eParam_t id) {
  if (const Slot* slot = FindSlot(id)) return slot->value;
  if (!IsValidParamID(id)) return nullptr;
  SemaphoreHelper lock(&_values_lock);
  auto it = _values.find(id);
  return it == _values.end() ? nullptr : it->second;
}

bool ConfigManager::GetConfigParam(eParam_t id, unsigned int& value) {
  const Slot* slot = FindSlot(id);
  IntegerValue* integer =
      slot != nullptr ? slot->integer : dynamic_cast<IntegerValue*>(GetConfigValue(id));
  if (integer == nullptr) return false;
  integer->Get(value);
  return true;
}

bool ConfigManager::GetConfigParam(eParam_t id, std::string& value) {
  const Slot* slot = FindSlot(id);
  ConfigValue* found = slot != nullptr ? slot->value : GetConfigValue(id);
  if (found == nullptr) {
    fprintf(stderr, "ConfigManager::GetConfigParam() - configValue == NULL for paramID = %X\n", id);
    return false;
  }
  StringValue* text = slot != nullptr ? slot->text : dynamic_cast<StringValue*>(found);
  if (text == nullptr) {
    fprintf(stderr, "ConfigManager::GetConfigParam - error - not a StringValue\n");
    return false;
  }
  text->Get(value);
  return true;
}

bool ConfigManager::SetConfigParam(eParam_t id, unsigned int value) {
  const Slot* slot = FindSlot(id);
  IntegerValue* integer =
      slot != nullptr ? slot->integer : dynamic_cast<IntegerValue*>(GetConfigValue(id));
  if (integer == nullptr) {
    fprintf(stderr, "ConfigManager::SetConfigParam() - configValue == NULL for paramID = %X\n", id);
    return false;
  }
  integer->Set(value);
  return true;
}

bool ConfigManager::SetConfigParam(eParam_t id, std::string value) {
  StringValue* text = nullptr;
  if (const Slot* slot = FindSlot(id)) {
    text = slot->text;
  } else {
    Serializable* found = nullptr;
    if (!GetConfigValue(id, found)) {
      fprintf(stderr, "ConfigManager::SetConfigParam() - configValue == NULL for paramID = %08X\n",
              id);
      return false;
    }
    text = dynamic_cast<StringValue*>(found);
  }
  if (text == nullptr) return false;
  text->Set(value);
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

bool ConfigManager::DefaultCheck(const Slot& slot, unsigned int& value) {
  // Qualified calls: _default_only is exactly UpdatePreconditionValues.
  zyn::config::UpdatePreconditionValues* checks = _default_only;
  switch (slot.check) {
    case Check::kEnum:
      return checks->UpdatePreconditionValues::IsValidEnum(slot.enumeration, value);
    case Check::kRange:
      if (!checks->UpdatePreconditionValues::IsValidRange(slot.range, value))
        checks->UpdatePreconditionValues::ForceValidRange(slot.range, value);
      if (slot.dependentMinimum != 0)
        checks->UpdatePreconditionValues::ForceValidRange(value, Get(slot.dependentMinimum),
                                                          slot.range->GetMaxValue());
      return true;
    case Check::kNone:
      break;
  }
  return true;
}

// One Set, integer or string: the update and whatever the preconditions add
// are processed front to back. Updates applied before a precondition refuses
// a later one stay applied and notified.
template <typename T>
bool ConfigManager::SetQueued(eParam_t id, T value, int line, const char* failure) {
  QueueLease<std::deque<std::pair<unsigned int, T>>> lease;
  std::deque<std::pair<unsigned int, T>>& updates = *lease;
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
    {
      SemaphoreHelper lock(&_listeners_lock);
      if (!SetConfigParam(current, updates.front().second)) return false;
      Notify(current, updates.front().second);
      if (ParamDescriptor* written = GetParamDescriptor(current))
        NotifyDependents(written->GetDependentParamIDs());
    }
    updates.pop_front();
  }
  return true;
}

bool ConfigManager::Set(eParam_t id, unsigned int value) {
  const Slot* slot = FindSlot(id);
  if (slot == nullptr || slot->integer == nullptr || _default_only == nullptr)
    return SetQueued(id, value, kIntegerSetLine, kIntegerFailure);
  if (slot->validate && !DefaultCheck(*slot, value)) {
    fprintf(stderr, "%s", kIntegerFailure);
    return false;
  }
  StoreAndNotify(*slot, *slot->integer, value);
  return true;
}

bool ConfigManager::Set(eParam_t id, std::string value) {
  // The default precondition passes every string update.
  const Slot* slot = FindSlot(id);
  if (slot == nullptr || slot->text == nullptr || _default_only == nullptr)
    return SetQueued(id, std::move(value), kStringSetLine, kStringFailure);
  StoreAndNotify(*slot, *slot->text, value);
  return true;
}

template <typename Value, typename T>
void ConfigManager::StoreAndNotify(const Slot& slot, Value& held, const T& value) {
  SemaphoreHelper lock(&_listeners_lock);
  held.Set(value);
  Notify(slot.id, value);
  if (!slot.dependents.empty()) NotifyDependents(slot.dependents);
}

bool ConfigManager::SetData(eParam_t id, std::string& data) {
  SemaphoreHelper lock(&_listeners_lock);
  if (!SetConfigParam(id, data)) return false;
  NotifyData(id, data);
  ParamDescriptor* descriptor = GetParamDescriptor(id);
  if (descriptor == nullptr) {
    ReportMissingDescriptor(kSetDataLine);
  } else {
    NotifyDataDependents(descriptor->GetDependentParamIDs());
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
  UpdateDefaultOnly();
  return true;
}

bool ConfigManager::RemoveUpdatePrecondition(zyn::config::UpdatePrecondition* precondition) {
  for (auto it = _preconditions.begin(); it != _preconditions.end(); ++it) {
    if (*it == precondition) {
      _preconditions.erase(it);
      UpdateDefaultOnly();
      return true;
    }
  }
  return false;
}

void ConfigManager::Notify(eParam_t id, unsigned int value) {
  for (ConfigEventListener* listener : _listeners)
    listener->ParamChanged(id, value, GetLastConfigUpdate());
}

void ConfigManager::Notify(eParam_t id, const std::string& value) {
  for (ConfigEventListener* listener : _listeners)
    listener->ParamChanged(id, value, GetLastConfigUpdate());
}

void ConfigManager::NotifyData(eParam_t id, std::string& data) {
  for (ConfigEventListener* listener : _listeners)
    listener->DataChanged(id, data, GetLastConfigUpdate());
}

void ConfigManager::NotifyDependents(const std::vector<unsigned int>& ids) {
  for (unsigned int id : ids) {
    ParamDescriptor* descriptor = GetParamDescriptor(id);
    if (descriptor != nullptr && descriptor->GetParamType() == eCParam_StringValue) {
      std::string value;
      Get(id, value);
      Notify(id, value);
    } else {
      Notify(id, Get(id));
    }
  }
}

void ConfigManager::NotifyDataDependents(const std::vector<unsigned int>& ids) {
  for (unsigned int id : ids) {
    std::string data;
    GetData(id, data);
    NotifyData(id, data);
  }
}

bool ConfigManager::FireParamChangedEvent(eParam_t id, unsigned int value) {
  SemaphoreHelper lock(&_listeners_lock);
  Notify(id, value);
  return true;
}

bool ConfigManager::FireParamChangedEvent(eParam_t id, std::string value) {
  SemaphoreHelper lock(&_listeners_lock);
  Notify(id, value);
  return true;
}

bool ConfigManager::FireDataChangedEvent(eParam_t id, std::string& data) {
  SemaphoreHelper lock(&_listeners_lock);
  NotifyData(id, data);
  return true;
}

void ConfigManager::FireParamsChangedEvents(const std::vector<unsigned int>& ids) {
  SemaphoreHelper lock(&_listeners_lock);
  NotifyDependents(ids);
}

void ConfigManager::FireDataChangedEvents(const std::vector<unsigned int>& ids) {
  SemaphoreHelper lock(&_listeners_lock);
  NotifyDataDependents(ids);
}
