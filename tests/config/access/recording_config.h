// A Config that records each call as one line and answers from a hash of
// that line, so that a wrapper's forwarding can be compared call by call
// with the same calls made on the fake directly.
#ifndef TESTS_CONFIG_ACCESS_RECORDING_CONFIG_H
#define TESTS_CONFIG_ACCESS_RECORDING_CONFIG_H

#include <functional>
#include <list>
#include <string>
#include <vector>

#include "config/config.h"
#include "config/values/integer_value.h"

class RecordingConfig : public Config {
 public:
  std::vector<std::string> calls;
  // The one value object the fake hands out.
  static Serializable* Value() {
    static IntegerValue value;
    return &value;
  }
  // clang-format off
  bool Set(eParam_t id, unsigned int v) override { return Call("Set", id, v) & 1; }
  unsigned int Get(eParam_t id) override { return Call("Get", id); }
  eConfigID_t GetConfigID() override { return static_cast<eConfigID_t>(Call("ConfigID") % 99); }
  timeval GetLastConfigUpdate() override { return {static_cast<time_t>(Call("LastUpdate")), 0}; }
  ParamDescriptor* GetParamDescriptor(eParam_t id) override { Call("Descriptor", id); return nullptr; }
  ParamDescriptor* GetParamDescriptor(std::string n) override { Call("Descriptor" + n); return nullptr; }
  std::vector<unsigned int> GetParamIDs() override { return {Call("ParamIDs")}; }
  bool Get(eParam_t id, unsigned int& v) override { return (v = Call("Get&", id)) & 1; }
  bool Set(eParam_t id, std::string v) override { return Call("Set" + v, id) & 1; }
  bool Get(eParam_t id, std::string& v) override { return (v = Text("Get" + v, id)).size() & 1; }
  Serializable* GetSerializable(eParam_t id) override { return Call("GetS", id) & 1 ? Value() : nullptr; }
  bool SetSerializable(eParam_t id, Serializable* v) override { return Call(v == Value() ? "SetS" : "SetS?", id) & 1; }
  bool GetData(eParam_t id, std::string& d) override { return (d = Text("GetData" + d, id)).size() & 1; }
  bool SetData(eParam_t id, std::string& d) override { return Call("SetData" + d, id) & 1; }
  bool AddConfigEventListener(ConfigEventListener* l) override { return Call("Add", Id(l)) & 1; }
  bool AddConfigEventListener(eParam_t id, ConfigEventListener* l) override { return Call("Add", Id(l), id) & 1; }
  bool AddConfigEventListener(std::list<eParam_t> ids, ConfigEventListener* l) override { return Call("AddList", Id(l), ids.back()) & 1; }
  bool RemoveConfigEventListener(ConfigEventListener* l) override { return Call("Remove", Id(l)) & 1; }
  bool WaitForConfigEvent(ConfigEvent& e, long t, long i) override { return (e.paramID = Call("Wait", t, i)) & 1; }
  bool Lock(eParam_t id, eParamLock_t mode) override { return Call("Lock", id, mode) & 1; }
  bool Unlock(eParam_t id) override { return Call("Unlock", id) & 1; }
  bool StartTransaction(std::vector<eParam_t> ids, unsigned int& t) override { return (t = Call("Start", ids.back())) & 1; }
  bool Commit(unsigned int t) override { return Call("Commit", t) & 1; }
  bool Rollback(unsigned int t) override { return Call("Rollback", t) & 1; }
  bool AddUpdatePrecondition(zyn::config::UpdatePrecondition* p) override { return Call("AddPre", Id(p)) & 1; }
  bool RemoveUpdatePrecondition(zyn::config::UpdatePrecondition* p) override { return Call("RemovePre", Id(p)) & 1; }
  // clang-format on

 private:
  static long Id(const void* p) {
    return p == nullptr ? 0 : 1 + (reinterpret_cast<long>(p) & 0xFF);
  }
  unsigned int Call(const std::string& name, long a = -1, long b = -1) {
    calls.push_back(name + "(" + std::to_string(a) + "," + std::to_string(b) + ")");
    return static_cast<unsigned int>(std::hash<std::string>()(calls.back()));
  }
  std::string Text(const std::string& name, long a) { return std::to_string(Call(name, a)); }
};

#endif  // TESTS_CONFIG_ACCESS_RECORDING_CONFIG_H
