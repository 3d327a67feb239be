// The delegator must be indistinguishable from its delegate: one script run
// on a recording fake directly and through a delegator makes the same calls
// and gets the same answers.
#include "config/access/delegator_config.h"

#include <gtest/gtest.h>

#include "config/manager/recording_listener.h"
#include "config/manager/update_precondition_values.h"
#include "config/values/integer_value.h"

namespace {

// Records each call as one line and answers from a hash of that line.
class RecordingConfig : public Config {
 public:
  std::vector<std::string> calls;
  static Serializable* Value() {  // the one value object handed out
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
  static long Id(const void* p) { return reinterpret_cast<long>(p); }
  unsigned int Call(const std::string& name, long a = -1, long b = -1) {
    calls.push_back(name + "(" + std::to_string(a) + "," + std::to_string(b) + ")");
    return static_cast<unsigned int>(std::hash<std::string>()(calls.back()));
  }
  std::string Text(const std::string& name, long a) { return std::to_string(Call(name, a)); }
};

// Every operation once, each answer (out-arguments included) appended to the
// line the fake recorded for the call.
void Script(Config& c, RecordingConfig& fake) {
  static RecordingListener l;  // the same addresses in both runs
  static zyn::config::UpdatePreconditionValues p;
  unsigned int u = 0;
  std::string s = "in", d = "raw", blob = "blob";
  ConfigEvent e;
  auto add = [&fake](long answer, const std::string& out = "") {
    fake.calls.back() += " = " + std::to_string(answer) + out;
  };
  add(c.Set(11, 5u)), add(c.Get(12)), add(c.GetConfigID()), add(c.GetLastConfigUpdate().tv_sec);
  add(c.GetParamDescriptor(13) != nullptr), add(c.GetParamDescriptor("eParamID_X") != nullptr);
  add(c.GetParamIDs().at(0)), add(c.Get(14, u), std::to_string(u));
  add(c.Set(15, std::string("text"))), add(c.Get(16, s), s), add(c.GetSerializable(17) != nullptr);
  add(c.SetSerializable(18, RecordingConfig::Value())), add(c.GetData(19, d), d);
  add(c.SetData(20, blob)), add(c.AddConfigEventListener(&l));
  add(c.AddConfigEventListener(21, &l)), add(c.AddConfigEventListener({22, 23}, &l));
  add(c.RemoveConfigEventListener(&l)),
      add(c.WaitForConfigEvent(e, 300, 7), std::to_string(e.paramID));
  add(c.Lock(24, Config::eParamLock_Write)), add(c.Unlock(25));
  add(c.StartTransaction({26, 27}, u), std::to_string(u)), add(c.Commit(28)), add(c.Rollback(29));
  add(c.AddUpdatePrecondition(&p)), add(c.RemoveUpdatePrecondition(&p));
}

}  // namespace

TEST(DelegatorConfigTest, ForwardsEveryOperationUnchanged) {
  RecordingConfig direct, behind;
  Script(direct, direct);
  zyn::boxline::config::access::DelegatorConfig delegator(&behind);
  Script(delegator, behind);
  EXPECT_EQ(direct.calls, behind.calls) << "each call forwarded once, unchanged, answer and all";
}
