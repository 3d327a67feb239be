// ConfigParamMonitor remembers whether any parameter of a chosen set has
// changed since it was last asked, for code that polls for "something to
// redraw" rather than handling each change.
//
// Ownership: the monitor registers itself with its Config (SetConfig) and
// removes itself again when given another one or when destroyed, so it must
// be destroyed before its Config. The Config stays the caller's.
//
// Locks: _set_lock guards _monitored; _flag_lock guards _changed; no
// operation holds both. ParamChanged runs on the thread the Config notifies
// from; the other operations on any thread.
#ifndef CLASSES_CONFIG_ACCESS_CONFIG_PARAM_MONITOR_H
#define CLASSES_CONFIG_ACCESS_CONFIG_PARAM_MONITOR_H

#include <semaphore.h>

#include <boost/unordered_set.hpp>
#include <string>
#include <vector>

#include "config/config.h"

namespace zyn {
namespace config {
namespace access {

class ConfigParamMonitor : public ConfigEventListener {
 public:
  explicit ConfigParamMonitor(Config* config);
  ~ConfigParamMonitor() override;

  // Both forms mark a change of a monitored parameter; value and time are
  // ignored.
  bool ParamChanged(eParam_t id, unsigned int value, timeval when) override;
  bool ParamChanged(eParam_t id, std::string value, timeval when) override;

  // Leaves the previous Config's listeners (if any) and joins `config`'s
  // (unless null).
  void SetConfig(Config* config);
  void AddParamToMonitor(const unsigned int& id);
  // Adds `count` IDs in order; a count of 0 or less adds nothing.
  void AddParamsToMonitor(const unsigned int* ids, int count);
  void AddParamsToMonitor(std::vector<unsigned int>& ids);
  void RemoveParamFromMonitorList(const unsigned int& id);
  [[nodiscard]] bool IsParamMonitored(const unsigned int& id);
  // Marks a change when `id` is monitored.
  void ParamChanged(const unsigned int& id);
  // Whether a monitored parameter changed since the last reset; with `reset`
  // the flag is cleared, and the value before clearing is returned.
  bool DidSomethingChange(bool reset);

 private:
  boost::unordered_set<unsigned int> _monitored;  // guarded by _set_lock
  sem_t _set_lock;
  bool _changed;  // guarded by _flag_lock
  sem_t _flag_lock;
  Config* _config;
};

}  // namespace access
}  // namespace config
}  // namespace zyn

#endif  // CLASSES_CONFIG_ACCESS_CONFIG_PARAM_MONITOR_H
