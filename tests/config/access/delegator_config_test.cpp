// The delegator must be indistinguishable from its delegate: the same
// script run on a fake directly and through a delegator must make the same
// calls and give the same answers.
#include "config/access/delegator_config.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "config/manager/update_precondition_values.h"
#include "recording_config.h"

using zyn::boxline::config::access::DelegatorConfig;

namespace {

class NullListener : public ConfigEventListener {
 public:
  bool ParamChanged(eParam_t, unsigned int, timeval) override { return true; }
  bool ParamChanged(eParam_t, std::string, timeval) override { return true; }
};

// Every operation of Config once or twice, each rendering what it returned
// (result and out-arguments).
std::vector<std::string> RunScript(Config& c) {
  NullListener listener;
  zyn::config::UpdatePreconditionValues values;
  zyn::config::UpdatePrecondition* precondition = &values;
  std::vector<std::function<std::string()>> steps = {
      [&] { return std::to_string(c.Set(11, 5u)); },
      [&] { return std::to_string(c.Get(12)); },
      [&] { return std::to_string(c.GetConfigID()); },
      [&] { return std::to_string(c.GetLastConfigUpdate().tv_sec); },
      [&] { return std::to_string(c.GetParamDescriptor(13) != nullptr); },
      [&] { return std::to_string(c.GetParamDescriptor(std::string("eParamID_X")) != nullptr); },
      [&] { return std::to_string(c.GetParamIDs().at(0)); },
      [&] {
        unsigned int v = 0;
        return std::to_string(c.Get(14, v)) + ":" + std::to_string(v);
      },
      [&] { return std::to_string(c.Set(15, std::string("text"))); },
      [&] {
        std::string v = "in";
        return std::to_string(c.Get(16, v)) + ":" + v;
      },
      [&] { return std::to_string(c.GetSerializable(17) != nullptr); },
      [&] { return std::to_string(c.SetSerializable(18, RecordingConfig::Value())); },
      [&] {
        std::string d = "raw";
        return std::to_string(c.GetData(19, d)) + ":" + d;
      },
      [&] {
        std::string d = "blob";
        return std::to_string(c.SetData(20, d));
      },
      [&] { return std::to_string(c.AddConfigEventListener(&listener)); },
      [&] { return std::to_string(c.AddConfigEventListener(21, &listener)); },
      [&] {
        return std::to_string(c.AddConfigEventListener(std::list<eParam_t>{22, 23}, &listener));
      },
      [&] { return std::to_string(c.RemoveConfigEventListener(&listener)); },
      [&] {
        ConfigEvent e;
        return std::to_string(c.WaitForConfigEvent(e, 300, 7)) + ":" + std::to_string(e.paramID);
      },
      [&] { return std::to_string(c.Lock(24, Config::eParamLock_Write)); },
      [&] { return std::to_string(c.Unlock(25)); },
      [&] {
        unsigned int t = 0;
        return std::to_string(c.StartTransaction({26, 27}, t)) + ":" + std::to_string(t);
      },
      [&] { return std::to_string(c.Commit(28)); },
      [&] { return std::to_string(c.Rollback(29)); },
      [&] { return std::to_string(c.AddUpdatePrecondition(precondition)); },
      [&] { return std::to_string(c.RemoveUpdatePrecondition(precondition)); },
  };
  std::vector<std::string> results;
  for (auto& step : steps) results.push_back(step());
  return results;
}

}  // namespace

TEST(DelegatorConfigTest, ForwardsEveryOperationUnchanged) {
  RecordingConfig direct;
  std::vector<std::string> expected = RunScript(direct);

  RecordingConfig behind;
  DelegatorConfig delegator(&behind);
  std::vector<std::string> got = RunScript(delegator);
  ASSERT_EQ(direct.calls.size(), behind.calls.size()) << "an operation was not forwarded once";
  for (size_t i = 0; i < direct.calls.size(); ++i) {
    EXPECT_EQ(direct.calls[i], behind.calls[i]) << "call " << i;
    EXPECT_EQ(expected[i], got[i]) << "result of " << direct.calls[i];
  }
  EXPECT_EQ(&behind, delegator.GetDelegate());
}
