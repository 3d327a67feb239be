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
// Locks: _values_lock guards the value map and _last_update; each value
// guards itself. _listeners_lock guards the listener list and is held across
// a whole notification pass, so listeners run on the writer's thread with it
// held and must not add or remove listeners of this manager. _use_count_lock
// guards the use count. Preconditions run without a lock and are added
// before writers start.
#ifndef CLASSES_CONFIG_MANAGER_CONFIG_MANAGER_H
#define CLASSES_CONFIG_MANAGER_CONFIG_MANAGER_H

#include <semaphore.h>
#include <sys/time.h>

#include <string>
#include <unordered_map>
#include <vector>

#include "config/config.h"

class ConfigValue;

class ConfigManager : public Config {
 public:
  explicit ConfigManager(eConfigID_t id);
  ~ConfigManager() override;

  bool Set(eParam_t id, unsigned int value) override;
  // The value, or 0 when the parameter is unknown or not an integer.
  unsigned int Get(eParam_t id) override;
  eConfigID_t GetConfigID() override;
  // Always {0, 0}: every notification of the store carries a zero time.
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
  // Reports a missing descriptor with the source location of the caller.
  static void ReportMissingDescriptor(int line);
  void StampLastUpdate();
  template <typename T>
  bool SetQueued(eParam_t id, T value, int line, const char* failure);

  eConfigID_t configID;
  // Keyed by parameter ID; hashed because every Get and Set looks it up.
  std::unordered_map<unsigned int, ConfigValue*> _values;  // guarded by _values_lock
  sem_t _values_lock;
  timeval _last_update;                          // guarded by _values_lock
  std::vector<ConfigEventListener*> _listeners;  // guarded by _listeners_lock
  sem_t _listeners_lock;
  std::vector<zyn::config::UpdatePrecondition*> _preconditions;
  int _use_count;  // guarded by _use_count_lock
  sem_t _use_count_lock;
};

#endif  // CLASSES_CONFIG_MANAGER_CONFIG_MANAGER_H
