// LocalConfigFactory hands out the in-process store: one shared
// ConfigManager per store ID, created and initialised by the first Connect
// and destroyed by the Disconnect that brings its use count back to 0.
//
// A store costs a whole catalogue of values, so the owner may bound how
// many are open at once (SetMaxStores): a Connect that would open one more
// is refused, while stores already open keep being handed out.
//
// Connect and Disconnect are serialised by the factory's semaphore, so the
// map, the use counts and the refusal count stay consistent when several
// connection threads open and close the same store.
#ifndef CLASSES_CONFIG_LOCAL_CONFIG_FACTORY_H
#define CLASSES_CONFIG_LOCAL_CONFIG_FACTORY_H

#include <semaphore.h>

#include <ctime>
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

  // At most `count` stores open at once (0, the default: no limit). Stores
  // already open stay open.
  void SetMaxStores(int count);
  // The shared ConfigManager of the URI's store with its use count raised,
  // or null when its Init fails or when opening it would pass the store
  // limit. A refusal by the limit sets *refused (when given) and is
  // reported on standard error at most once a second.
  Config* Connect(std::string uri, bool* refused = nullptr);
  // Lowers the use count of a manager this factory handed out, destroying it
  // at 0. False for null, for anything but a ConfigManager, and for a store
  // this factory does not track.
  bool Disconnect(Config* config);
  // As Disconnect, but only when the caller holds the store's last use:
  // true when it was released (and destroyed), false, with the store left
  // as it was, while another user still holds it or when it is not this
  // factory's.
  bool DisconnectIfUnshared(Config* config);
  // The number of stores open now.
  [[nodiscard]] size_t OpenCount();
  // The number after "configid=" in the URI, or 0.
  static eConfigID_t GetConfigID(std::string uri);

 private:
  std::map<eConfigID_t, Config*> _configs;  // guarded by _lock
  size_t _max_stores = 0;                   // guarded by _lock; 0: no limit
  unsigned long _refused = 0;               // guarded by _lock
  time_t _refusal_reported = 0;             // guarded by _lock
  sem_t _lock;
};

}  // namespace access
}  // namespace config
}  // namespace zyn

#endif  // CLASSES_CONFIG_LOCAL_CONFIG_FACTORY_H
