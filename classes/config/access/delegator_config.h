// DelegatorConfig forwards every operation of Config, unchanged, to another
// Config and returns its result. It is the base of wrappers that change a
// few operations and leave the rest alone.
//
// Ownership: the delegate stays the caller's and must outlive the
// delegator. Thread-safety is the delegate's: the delegator adds no state
// and no lock.
#ifndef CLASSES_CONFIG_ACCESS_DELEGATOR_CONFIG_H
#define CLASSES_CONFIG_ACCESS_DELEGATOR_CONFIG_H

#include <list>
#include <string>
#include <vector>

#include "config/config.h"

namespace zyn {
namespace boxline {
namespace config {
namespace access {

class DelegatorConfig : public ::Config {
 public:
  explicit DelegatorConfig(::Config* delegate) : _delegate(delegate) {}

  bool Set(eParam_t id, unsigned int value) override;
  unsigned int Get(eParam_t id) override;
  eConfigID_t GetConfigID() override;
  timeval GetLastConfigUpdate() override;
  ParamDescriptor* GetParamDescriptor(eParam_t id) override;
  ParamDescriptor* GetParamDescriptor(std::string name) override;
  std::vector<unsigned int> GetParamIDs() override;
  bool Get(eParam_t id, unsigned int& value) override;
  bool Set(eParam_t id, std::string value) override;
  bool Get(eParam_t id, std::string& value) override;
  Serializable* GetSerializable(eParam_t id) override;
  bool SetSerializable(eParam_t id, Serializable* value) override;
  bool GetData(eParam_t id, std::string& data) override;
  bool SetData(eParam_t id, std::string& data) override;
  bool AddConfigEventListener(ConfigEventListener* listener) override;
  bool AddConfigEventListener(eParam_t id, ConfigEventListener* listener) override;
  bool AddConfigEventListener(std::list<eParam_t> ids, ConfigEventListener* listener) override;
  bool RemoveConfigEventListener(ConfigEventListener* listener) override;
  bool WaitForConfigEvent(ConfigEvent& event, long timeout, long interval) override;
  bool Lock(eParam_t id, eParamLock_t mode) override;
  bool Unlock(eParam_t id) override;
  bool StartTransaction(std::vector<eParam_t> ids, unsigned int& transactionID) override;
  bool Commit(unsigned int transactionID) override;
  bool Rollback(unsigned int transactionID) override;
  bool AddUpdatePrecondition(zyn::config::UpdatePrecondition* precondition) override;
  bool RemoveUpdatePrecondition(zyn::config::UpdatePrecondition* precondition) override;

  [[nodiscard]] ::Config* GetDelegate() const { return _delegate; }

 protected:
  ::Config* _delegate;
};

}  // namespace access
}  // namespace config
}  // namespace boxline
}  // namespace zyn

#endif  // CLASSES_CONFIG_ACCESS_DELEGATOR_CONFIG_H
