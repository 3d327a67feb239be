// A Config that answers every operation from a hash of the call and records
// the call as one line, so that a wrapper's forwarding can be compared call
// by call with the same calls made on the fake directly.
#ifndef TESTS_CONFIG_ACCESS_RECORDING_CONFIG_H
#define TESTS_CONFIG_ACCESS_RECORDING_CONFIG_H

#include <cstdio>
#include <functional>
#include <list>
#include <string>
#include <vector>

#include "config/config.h"
#include "config/descriptors/integer_descriptor.h"
#include "config/values/integer_value.h"

class RecordingConfig : public Config {
 public:
  std::vector<std::string> calls;

  bool Set(eParam_t id, unsigned int value) override { return Odd(Call("Set", id, value)); }
  unsigned int Get(eParam_t id) override { return Call("Get", id); }
  eConfigID_t GetConfigID() override { return static_cast<eConfigID_t>(Call("GetConfigID") % 99); }
  timeval GetLastConfigUpdate() override {
    return timeval{static_cast<time_t>(Call("GetLastConfigUpdate")), 0};
  }
  ParamDescriptor* GetParamDescriptor(eParam_t id) override {
    return Odd(Call("GetParamDescriptor", id)) ? Descriptor() : nullptr;
  }
  ParamDescriptor* GetParamDescriptor(std::string name) override {
    return Odd(Call("GetParamDescriptor'" + name + "'")) ? Descriptor() : nullptr;
  }
  std::vector<unsigned int> GetParamIDs() override { return {Call("GetParamIDs")}; }
  bool Get(eParam_t id, unsigned int& value) override {
    value = Call("Get&", id);
    return Odd(value);
  }
  bool Set(eParam_t id, std::string value) override { return Odd(Call("Set'" + value + "'", id)); }
  bool Get(eParam_t id, std::string& value) override {
    value = std::to_string(Call("Get'" + value + "'&", id));
    return Odd(value.size());
  }
  Serializable* GetSerializable(eParam_t id) override {
    return Odd(Call("GetSerializable", id)) ? Value() : nullptr;
  }
  bool SetSerializable(eParam_t id, Serializable* value) override {
    return Odd(Call(value == Value() ? "SetSerializable=" : "SetSerializable", id));
  }
  bool GetData(eParam_t id, std::string& data) override {
    data = "d" + std::to_string(Call("GetData'" + data + "'", id));
    return Odd(data.size());
  }
  bool SetData(eParam_t id, std::string& data) override {
    return Odd(Call("SetData'" + data + "'", id));
  }
  bool AddConfigEventListener(ConfigEventListener* listener) override {
    return Odd(Call("AddListener" + Pointer(listener)));
  }
  bool AddConfigEventListener(eParam_t id, ConfigEventListener* listener) override {
    return Odd(Call("AddListener" + Pointer(listener), id));
  }
  bool AddConfigEventListener(std::list<eParam_t> ids, ConfigEventListener* listener) override {
    std::string name = "AddListener" + Pointer(listener);
    for (eParam_t id : ids) name += "," + std::to_string(id);
    return Odd(Call(name));
  }
  bool RemoveConfigEventListener(ConfigEventListener* listener) override {
    return Odd(Call("RemoveListener" + Pointer(listener)));
  }
  bool WaitForConfigEvent(ConfigEvent& event, long timeout, long interval) override {
    event.paramID = Call("WaitForConfigEvent", timeout, interval);
    return Odd(event.paramID);
  }
  bool Lock(eParam_t id, eParamLock_t mode) override { return Odd(Call("Lock", id, mode)); }
  bool Unlock(eParam_t id) override { return Odd(Call("Unlock", id)); }
  bool StartTransaction(std::vector<eParam_t> ids, unsigned int& transactionID) override {
    transactionID = Call("StartTransaction" + std::to_string(ids.size()), ids.at(0));
    return Odd(transactionID);
  }
  bool Commit(unsigned int transactionID) override { return Odd(Call("Commit", transactionID)); }
  bool Rollback(unsigned int transactionID) override {
    return Odd(Call("Rollback", transactionID));
  }
  bool AddUpdatePrecondition(zyn::config::UpdatePrecondition* p) override {
    return Odd(Call("AddPrecondition" + Pointer(p)));
  }
  bool RemoveUpdatePrecondition(zyn::config::UpdatePrecondition* p) override {
    return Odd(Call("RemovePrecondition" + Pointer(p)));
  }

  // The shared objects the fake hands out.
  static ParamDescriptor* Descriptor() {
    static IntegerDescriptor descriptor;
    return &descriptor;
  }
  static Serializable* Value() {
    static IntegerValue value;
    return &value;
  }

 private:
  static bool Odd(size_t n) { return (n & 1) != 0; }
  static std::string Pointer(const void* p) {
    char text[32];
    snprintf(text, sizeof text, "(%p)", p);
    return text;
  }
  // Records "name(a,b)" and answers a number derived from that line.
  unsigned int Call(const std::string& name, long a = -1, long b = -1) {
    std::string line = name + "(";
    if (a != -1) line += std::to_string(a);
    if (b != -1) line += "," + std::to_string(b);
    line += ")";
    calls.push_back(line);
    return static_cast<unsigned int>(std::hash<std::string>()(line));
  }
};

#endif  // TESTS_CONFIG_ACCESS_RECORDING_CONFIG_H
