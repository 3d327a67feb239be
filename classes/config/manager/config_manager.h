// ConfigManager is the authoritative, in-process store of one configuration
// (one eConfigID_t). It holds one value per parameter of the descriptor
// registry, created at its factory default, runs every integer and string
// update through a queue of pending updates and the registered update
// preconditions, and tells its listeners of every accepted change and of the
// changes of the parameters that depend on the one written.
//
// Ownership: the manager owns its values and its preconditions; listeners
// stay their registrants'. Managers are shared per store ID by
// LocalConfigFactory, which counts their users.
//
// Slots: once the values exist (Init), every parameter has a slot in an
// open-addressing table (its value, typed, its descriptor and what the
// default precondition checks), so Get and Set resolve an ID with one probe
// and no lock. The catalogue is read-only after start; a value created
// later (a parameter registered after Init) publishes a new table that
// holds it, and retired tables live as long as the manager, so a reader
// never sees a table freed. Without a slot the map is searched instead.
//
// Locks: _values_lock guards the value map and the table list, and orders
// the publications of _slots (release store; readers load with acquire
// order, so they see every slot the table was built with). Each value
// guards its own writes; integer reads take no lock (see IntegerValue).
// _listeners_lock guards the listener list, and each accepted write holds
// it from storing the value through its notification pass: listeners hear
// the writes of one store in the order they were stored, so the last event
// of a parameter carries the value it holds. Listeners run on the writer's
// thread with the lock held and must not add or remove listeners of this
// manager, nor write to it. _use_count_lock guards the use count.
// Preconditions run before that lock is taken, and are added and removed
// before writers start.
#ifndef CLASSES_CONFIG_MANAGER_CONFIG_MANAGER_H
#define CLASSES_CONFIG_MANAGER_CONFIG_MANAGER_H

#include <semaphore.h>
#include <sys/time.h>

#include <atomic>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "config/config.h"

class ConfigValue;
class EnumDescriptor;
class IntegerDescriptor;
class IntegerValue;
class StringValue;

namespace zyn {
namespace config {
class UpdatePreconditionValues;
}  // namespace config
}  // namespace zyn

class ConfigManager : public Config {
 public:
  explicit ConfigManager(eConfigID_t id);
  ~ConfigManager() override;

  bool Set(eParam_t id, unsigned int value) override;
  // The value, or 0 when the parameter is unknown or not an integer.
  unsigned int Get(eParam_t id) override;
  eConfigID_t GetConfigID() override;
  // Always {0, 0}: every notification of the store carries a zero time, and
  // the store keeps no time of its last write.
  timeval GetLastConfigUpdate() override;
  ParamDescriptor* GetParamDescriptor(eParam_t id) override;
  ParamDescriptor* GetParamDescriptor(std::string name) override;
  std::vector<unsigned int> GetParamIDs() override;
  bool Get(eParam_t id, unsigned int& value) override;
  bool Set(eParam_t id, std::string value) override;
  bool Get(eParam_t id, std::string& value) override;
  // The value held for `id` (owned by the manager), or null; never creates.
  Serializable* GetSerializable(eParam_t id) override;
  // Not supported by the store: false, nothing stored.
  bool SetSerializable(eParam_t id, Serializable* value) override;
  bool GetData(eParam_t id, std::string& data) override;
  // Stores `data` as the parameter's string without preconditions.
  bool SetData(eParam_t id, std::string& data) override;
  bool AddConfigEventListener(ConfigEventListener* listener) override;
  // The ID is ignored: the listener receives the changes of all parameters.
  bool AddConfigEventListener(eParam_t id, ConfigEventListener* listener) override;
  using Config::AddConfigEventListener;
  // Removes the first registration of `listener`; false when there is none.
  bool RemoveConfigEventListener(ConfigEventListener* listener) override;
  // Appends `precondition` and takes ownership of it.
  bool AddUpdatePrecondition(zyn::config::UpdatePrecondition* precondition) override;
  // Removes the first entry equal to `precondition` without destroying it.
  bool RemoveUpdatePrecondition(zyn::config::UpdatePrecondition* precondition) override;

  // Installs the default precondition and creates every value at its factory
  // default. Returns true.
  virtual bool Init();
  virtual void AddDefaultPreconditions();
  virtual bool InitDefaultConfig();
  void DeleteAllUpdatePreconditions();

  // The new use count.
  int IncrementUseCount();
  int DecrementUseCount();
  int GetUseCount();

  // The value of `id`, created at its factory default on first use. False
  // when the ID is not in the registry or its descriptor makes no value.
  bool GetConfigValue(eParam_t id, Serializable*& value);
  // The value of `id` if it exists; never creates.
  ConfigValue* GetConfigValue(eParam_t id);
  bool GetConfigParam(eParam_t id, unsigned int& value);
  bool GetConfigParam(eParam_t id, std::string& value);
  bool SetConfigParam(eParam_t id, unsigned int value);
  bool SetConfigParam(eParam_t id, std::string value);

  bool FireParamChangedEvent(eParam_t id, unsigned int value);
  bool FireParamChangedEvent(eParam_t id, std::string value);
  bool FireDataChangedEvent(eParam_t id, std::string& data);
  // Fires the current value of each ID, as a string or an integer event by
  // its descriptor's type.
  void FireParamsChangedEvents(const std::vector<unsigned int>& ids);
  void FireDataChangedEvents(const std::vector<unsigned int>& ids);

 private:
  // What the default precondition does with an integer update of a slot.
  enum class Check : unsigned char { kNone, kRange, kEnum };

  // One parameter's value, resolved once. An empty place has no value.
  struct Slot {
    unsigned int id = 0;
    Check check = Check::kNone;
    bool validate = true;  // false for "do_not_validate"
    ConfigValue* value = nullptr;
    IntegerValue* integer = nullptr;  // exactly one of these two is set
    StringValue* text = nullptr;
    ParamDescriptor* descriptor = nullptr;
    IntegerDescriptor* range = nullptr;     // Check::kRange
    EnumDescriptor* enumeration = nullptr;  // Check::kEnum
    unsigned int dependentMinimum = 0;      // its "dependent_minimum", or 0
    std::vector<unsigned int> dependents;   // its GetDependentParamIDs()
  };
  // Open addressing with linear probing; capacity a power of two at least
  // twice the number of values, so a probe ends on an empty place.
  struct SlotTable {
    std::vector<Slot> slots;
    unsigned int shift = 0;  // 32 - log2(capacity)
    size_t mask = 0;
  };

  // Reports a missing descriptor with the source location of the caller.
  static void ReportMissingDescriptor(int line);
  // The slot of `id`, or null when there is no table or no value yet.
  const Slot* FindSlot(eParam_t id) const;
  // Builds a table of every value and publishes it. The caller holds
  // _values_lock.
  void PublishSlots();
  // The default precondition's decision on an integer update of `slot`,
  // made from the slot: false refuses it; `value` may be forced into range.
  bool DefaultCheck(const Slot& slot, unsigned int& value);
  void UpdateDefaultOnly();
  // The general path: a queue of updates offered to every precondition.
  template <typename T>
  bool SetQueued(eParam_t id, T value, int line, const char* failure);
  // A write through the slot: stores `value` in `held` (the slot's value)
  // and notifies, under _listeners_lock.
  template <typename Value, typename T>
  void StoreAndNotify(const Slot& slot, Value& held, const T& value);
  // Notification passes; the caller holds _listeners_lock.
  void Notify(eParam_t id, unsigned int value);
  void Notify(eParam_t id, const std::string& value);
  void NotifyData(eParam_t id, std::string& data);
  void NotifyDependents(const std::vector<unsigned int>& ids);
  void NotifyDataDependents(const std::vector<unsigned int>& ids);

  eConfigID_t configID;
  // Keyed by parameter ID; the owner of the values and the fallback for IDs
  // without a slot.
  std::unordered_map<unsigned int, ConfigValue*> _values;  // guarded by _values_lock
  sem_t _values_lock;
  std::atomic<const SlotTable*> _slots{nullptr};    // published under _values_lock
  std::vector<std::unique_ptr<SlotTable>> _tables;  // guarded by _values_lock
  std::vector<ConfigEventListener*> _listeners;     // guarded by _listeners_lock
  sem_t _listeners_lock;
  std::vector<zyn::config::UpdatePrecondition*> _preconditions;
  // The sole precondition when it is exactly UpdatePreconditionValues (a
  // subclass may override its checks), which Set then applies from the
  // slot without a queue; else null. Changes with _preconditions.
  zyn::config::UpdatePreconditionValues* _default_only = nullptr;
  int _use_count;  // guarded by _use_count_lock
  sem_t _use_count_lock;
};

#endif  // CLASSES_CONFIG_MANAGER_CONFIG_MANAGER_H
