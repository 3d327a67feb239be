// The assertions below must fire in builds with NDEBUG too.
#undef NDEBUG
#include <cassert>

#include "config/config.h"

Serializable* Config::GetSerializable(eParam_t) { return nullptr; }

bool Config::SetSerializable(eParam_t, Serializable*) { return false; }

// Not optional: an implementation that reaches these bodies is a programming
// error, reported with the place a failed assert() here has always named.
bool Config::GetData(eParam_t, std::string&) {
#line 65 "classes/config/config"
  assert(false);
  return false;
}

bool Config::SetData(eParam_t, std::string&) {
#line 66 "classes/config/config"
  assert(false);
  return false;
}
#line 25 "classes/config/config.cpp"

bool Config::AddConfigEventListener(ConfigEventListener*) { return false; }

bool Config::AddConfigEventListener(eParam_t, ConfigEventListener*) { return false; }

bool Config::AddConfigEventListener(std::list<eParam_t>, ConfigEventListener*) { return false; }

bool Config::RemoveConfigEventListener(ConfigEventListener*) { return false; }

bool Config::WaitForConfigEvent(ConfigEvent&, long, long) { return false; }

bool Config::Lock(eParam_t, eParamLock_t) { return false; }

bool Config::Unlock(eParam_t) { return false; }

bool Config::StartTransaction(std::vector<eParam_t>, unsigned int&) { return false; }

bool Config::Commit(unsigned int) { return false; }

bool Config::Rollback(unsigned int) { return false; }

bool Config::AddUpdatePrecondition(zyn::config::UpdatePrecondition*) { return false; }

bool Config::RemoveUpdatePrecondition(zyn::config::UpdatePrecondition*) { return false; }
