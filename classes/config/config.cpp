#include "config/config.h"

// The C library's report of a failed assertion; declared here because the
// assertion must fire in builds with NDEBUG too.
extern "C" void __assert_fail(const char* assertion, const char* file, unsigned int line,
                              const char* function) noexcept __attribute__((__noreturn__));

Serializable* Config::GetSerializable(eParam_t) { return nullptr; }

bool Config::SetSerializable(eParam_t, Serializable*) { return false; }

// Not optional: an implementation that reaches these bodies is a programming
// error, reported the way a failed assert() in this file always has been.
bool Config::GetData(eParam_t, std::string&) {
  __assert_fail("false", "classes/config/config", 65,
                "virtual bool Config::GetData(eParam_t, std::string&)");
}

bool Config::SetData(eParam_t, std::string&) {
  __assert_fail("false", "classes/config/config", 66,
                "virtual bool Config::SetData(eParam_t, std::string&)");
}

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
