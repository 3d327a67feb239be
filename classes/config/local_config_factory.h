// LocalConfigFactory hands out the in-process store: one shared
// ConfigManager per store ID, created and initialised by the first Connect
// and destroyed by the Disconnect that brings its use count back to 0.
//
// Connect and Disconnect are serialised by the factory's semaphore, so the
// map and the use counts stay consistent when several connection threads
// open and close the same store.
#ifndef CLASSES_CONFIG_LOCAL_CONFIG_FACTORY_H
#define CLASSES_CONFIG_LOCAL_CONFIG_FACTORY_H

#include <semaphore.h>

#include <map>
#include <string>

#include "config/config.h"

namespace zyn {
namespace config {
namespace access {

class LocalConfigFactory {
 public:
  LocalConfigFactory();
  virtual ~LocalConfigFactory();
  LocalConfigFactory(const LocalConfigFactory&) = delete;
  LocalConfigFactory& operator=(const LocalConfigFactory&) = delete;

  // The shared ConfigManager of the URI's store with its use count raised,
  // or null when its Init fails.
  Config* Connect(std::string uri);
  // Lowers the use count of a manager this factory handed out, destroying it
  // at 0. False for null, for anything but a ConfigManager, and for a store
  // this factory does not track.
  bool Disconnect(Config* config);
  // The number after "configid=" in the URI, or 0.
  static eConfigID_t GetConfigID(std::string uri);

 private:
  std::map<eConfigID_t, Config*> _configs;  // guarded by _lock
  sem_t _lock;
};

}  // namespace access
}  // namespace config
}  // namespace zyn

#endif  // CLASSES_CONFIG_LOCAL_CONFIG_FACTORY_H
