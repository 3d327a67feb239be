#include "config/access/delegator_config.h"

#include <utility>

namespace zyn {
namespace boxline {
namespace config {
namespace access {

bool DelegatorConfig::Set(eParam_t id, unsigned int value) { return _delegate->Set(id, value); }

unsigned int DelegatorConfig::Get(eParam_t id) { return _delegate->Get(id); }

eConfigID_t DelegatorConfig::GetConfigID() { return _delegate->GetConfigID(); }

timeval DelegatorConfig::GetLastConfigUpdate() { return _delegate->GetLastConfigUpdate(); }

ParamDescriptor* DelegatorConfig::GetParamDescriptor(eParam_t id) {
  return _delegate->GetParamDescriptor(id);
}

ParamDescriptor* DelegatorConfig::GetParamDescriptor(std::string name) {
  return _delegate->GetParamDescriptor(std::move(name));
}

std::vector<unsigned int> DelegatorConfig::GetParamIDs() { return _delegate->GetParamIDs(); }

bool DelegatorConfig::Get(eParam_t id, unsigned int& value) { return _delegate->Get(id, value); }

bool DelegatorConfig::Set(eParam_t id, std::string value) {
  return _delegate->Set(id, std::move(value));
}

bool DelegatorConfig::Get(eParam_t id, std::string& value) { return _delegate->Get(id, value); }

Serializable* DelegatorConfig::GetSerializable(eParam_t id) {
  return _delegate->GetSerializable(id);
}

bool DelegatorConfig::SetSerializable(eParam_t id, Serializable* value) {
  return _delegate->SetSerializable(id, value);
}

bool DelegatorConfig::GetData(eParam_t id, std::string& data) {
  return _delegate->GetData(id, data);
}

bool DelegatorConfig::SetData(eParam_t id, std::string& data) {
  return _delegate->SetData(id, data);
}

bool DelegatorConfig::AddConfigEventListener(ConfigEventListener* listener) {
  return _delegate->AddConfigEventListener(listener);
}

bool DelegatorConfig::AddConfigEventListener(eParam_t id, ConfigEventListener* listener) {
  return _delegate->AddConfigEventListener(id, listener);
}

bool DelegatorConfig::AddConfigEventListener(std::list<eParam_t> ids,
                                             ConfigEventListener* listener) {
  return _delegate->AddConfigEventListener(std::move(ids), listener);
}

bool DelegatorConfig::RemoveConfigEventListener(ConfigEventListener* listener) {
  return _delegate->RemoveConfigEventListener(listener);
}

bool DelegatorConfig::WaitForConfigEvent(ConfigEvent& event, long timeout, long interval) {
  return _delegate->WaitForConfigEvent(event, timeout, interval);
}

bool DelegatorConfig::Lock(eParam_t id, eParamLock_t mode) { return _delegate->Lock(id, mode); }

bool DelegatorConfig::Unlock(eParam_t id) { return _delegate->Unlock(id); }

bool DelegatorConfig::StartTransaction(std::vector<eParam_t> ids, unsigned int& transactionID) {
  return _delegate->StartTransaction(std::move(ids), transactionID);
}

bool DelegatorConfig::Commit(unsigned int transactionID) {
  return _delegate->Commit(transactionID);
}

bool DelegatorConfig::Rollback(unsigned int transactionID) {
  return _delegate->Rollback(transactionID);
}

bool DelegatorConfig::AddUpdatePrecondition(zyn::config::UpdatePrecondition* precondition) {
  return _delegate->AddUpdatePrecondition(precondition);
}

bool DelegatorConfig::RemoveUpdatePrecondition(zyn::config::UpdatePrecondition* precondition) {
  return _delegate->RemoveUpdatePrecondition(precondition);
}

}  // namespace access
}  // namespace config
}  // namespace boxline
}  // namespace zyn
