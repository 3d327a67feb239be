// The delegator must be indistinguishable from its delegate: one script run
// on a fake directly and through a delegator makes the same calls and gets
// the same answers.
#include "config/access/delegator_config.h"

#include <gtest/gtest.h>

#include "config/manager/update_precondition_values.h"
#include "recording_config.h"

namespace {

class NullListener : public ConfigEventListener {
 public:
  bool ParamChanged(eParam_t, unsigned int, timeval) override { return true; }
  bool ParamChanged(eParam_t, std::string, timeval) override { return true; }
};

// Every operation once; the answers, out-arguments included, as one line
// per call.
std::vector<std::string> Script(Config& c) {
  static NullListener l;  // the same addresses in both runs
  static zyn::config::UpdatePreconditionValues p;
  unsigned int u = 0;
  std::string s = "in", d = "raw", blob = "blob";
  ConfigEvent e;
  std::vector<std::string> r;
  auto add = [&r](long answer, const std::string& out = "") {
    r.push_back(std::to_string(answer) + out);
  };
  add(c.Set(11, 5u)), add(c.Get(12)), add(c.GetConfigID()), add(c.GetLastConfigUpdate().tv_sec);
  add(c.GetParamDescriptor(13) != nullptr), add(c.GetParamDescriptor("eParamID_X") != nullptr);
  add(c.GetParamIDs().at(0)), add(c.Get(14, u), std::to_string(u));
  add(c.Set(15, std::string("text"))), add(c.Get(16, s), s), add(c.GetSerializable(17) != nullptr);
  add(c.SetSerializable(18, RecordingConfig::Value())), add(c.GetData(19, d), d);
  add(c.SetData(20, blob)), add(c.AddConfigEventListener(&l)),
      add(c.AddConfigEventListener(21, &l));
  add(c.AddConfigEventListener(std::list<eParam_t>{22, 23}, &l));
  add(c.RemoveConfigEventListener(&l)),
      add(c.WaitForConfigEvent(e, 300, 7), std::to_string(e.paramID));
  add(c.Lock(24, Config::eParamLock_Write)), add(c.Unlock(25));
  add(c.StartTransaction({26, 27}, u), std::to_string(u)), add(c.Commit(28)), add(c.Rollback(29));
  add(c.AddUpdatePrecondition(&p)), add(c.RemoveUpdatePrecondition(&p));
  return r;
}

}  // namespace

TEST(DelegatorConfigTest, ForwardsEveryOperationUnchanged) {
  RecordingConfig direct, behind;
  std::vector<std::string> expected = Script(direct);
  zyn::boxline::config::access::DelegatorConfig delegator(&behind);
  std::vector<std::string> got = Script(delegator);
  ASSERT_EQ(direct.calls.size(), behind.calls.size()) << "an operation was not forwarded once";
  for (size_t i = 0; i < direct.calls.size(); ++i) {
    EXPECT_EQ(direct.calls[i], behind.calls[i]) << "call " << i;
    EXPECT_EQ(expected[i], got[i]) << "answer to " << direct.calls[i];
  }
}
