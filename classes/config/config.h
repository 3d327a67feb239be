// Config is the one interface through which every user reaches the settings:
// read or write a parameter by its ID, read its descriptor, register for
// change notifications. Behind it stand the in-process store (ConfigManager),
// the clients of a store in another process or on another machine, and the
// client-side cache; a factory picks one by URI.
//
// The optional operations have default bodies that answer false (or null)
// and do nothing: listeners, locks, transactions and preconditions. GetData
// and SetData are deliberately not optional: an implementation that does not
// override them aborts the process through an assertion when they are
// called. Descriptors returned are owned by the registry, not the caller.
#ifndef CLASSES_CONFIG_CONFIG_H
#define CLASSES_CONFIG_CONFIG_H

#include <sys/time.h>

#include <list>
#include <string>
#include <vector>

#include "config/config_event.h"
#include "config/config_event_listener.h"
#include "config/config_types.h"

class ParamDescriptor;
class Serializable;

namespace zyn {
namespace config {
class UpdatePrecondition;
}  // namespace config
}  // namespace zyn

// The oldest form of the interface: integer access only.
class ConfigLegacy {
 public:
  ConfigLegacy() = default;
  virtual ~ConfigLegacy() = default;
  ConfigLegacy(const ConfigLegacy&) = delete;
  ConfigLegacy& operator=(const ConfigLegacy&) = delete;

  // True when the value was accepted and stored.
  virtual bool Set(eParam_t id, unsigned int value) = 0;
  // The value, or 0 when it is not available.
  virtual unsigned int Get(eParam_t id) = 0;
};

class Config : public ConfigLegacy {
 public:
  // Lock modes of Lock(); reserved, no store acts on them.
  enum eParamLock_t : int32_t {
    eParamLock_Read = 0,
    eParamLock_Write = 1,
  };

  bool Set(eParam_t id, unsigned int value) override = 0;
  unsigned int Get(eParam_t id) override = 0;
  virtual eConfigID_t GetConfigID() = 0;
  // When the last accepted change happened.
  virtual timeval GetLastConfigUpdate() = 0;
  virtual ParamDescriptor* GetParamDescriptor(eParam_t id) = 0;
  virtual ParamDescriptor* GetParamDescriptor(std::string name) = 0;
  virtual std::vector<unsigned int> GetParamIDs() = 0;
  // True when the parameter exists and holds an integer, copied to `value`.
  virtual bool Get(eParam_t id, unsigned int& value) = 0;
  virtual bool Set(eParam_t id, std::string value) = 0;
  virtual bool Get(eParam_t id, std::string& value) = 0;
  // The held value object (not a copy), or null.
  virtual Serializable* GetSerializable(eParam_t id);
  virtual bool SetSerializable(eParam_t id, Serializable* value);
  virtual bool GetData(eParam_t id, std::string& data);
  virtual bool SetData(eParam_t id, std::string& data);
  // Registers for the changes of every parameter; the listener stays the
  // caller's.
  virtual bool AddConfigEventListener(ConfigEventListener* listener);
  virtual bool AddConfigEventListener(eParam_t id, ConfigEventListener* listener);
  virtual bool AddConfigEventListener(std::list<eParam_t> ids, ConfigEventListener* listener);
  virtual bool RemoveConfigEventListener(ConfigEventListener* listener);
  // Waits up to `timeout` ms, polling every `interval` ms, for one event.
  virtual bool WaitForConfigEvent(ConfigEvent& event, long timeout, long interval);
  virtual bool Lock(eParam_t id, eParamLock_t mode);
  virtual bool Unlock(eParam_t id);
  virtual bool StartTransaction(std::vector<eParam_t> ids, unsigned int& transactionID);
  virtual bool Commit(unsigned int transactionID);
  virtual bool Rollback(unsigned int transactionID);
  // Registers a precondition that every update is offered to; whether the
  // config takes ownership is the implementation's to say.
  virtual bool AddUpdatePrecondition(zyn::config::UpdatePrecondition* precondition);
  virtual bool RemoveUpdatePrecondition(zyn::config::UpdatePrecondition* precondition);
};

#endif  // CLASSES_CONFIG_CONFIG_H
