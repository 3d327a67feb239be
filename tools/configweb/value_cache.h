// ValueCache lets configweb answer a parameter read without a round trip to
// configd: it holds values read once through the request connection and
// keeps them current from the event connection, which hears every change.
//
// A value is only as trustworthy as the event registration behind it, so:
// nothing is kept until an event has arrived on the current link (proof
// that configd has taken the registration), events always win over reads
// (a read is kept only when no event of its parameter came after its
// Ticket), and Reset forgets everything when the link is dropped. A read
// answered here trails configd by at most the event connection's delay; a
// set made through configweb forgets its parameter, so the next read of it
// goes to configd.
//
// Locks: _lock guards everything. Changed runs on the event client's
// receive thread and only assigns; the rest is called from HTTP threads
// and the session's supervisor.
#ifndef TOOLS_CONFIGWEB_VALUE_CACHE_H
#define TOOLS_CONFIGWEB_VALUE_CACHE_H

#include <cstdint>
#include <mutex>
#include <unordered_map>

#include "common/parameters.h"

namespace configweb {

class ValueCache {
 public:
  ValueCache() = default;
  ValueCache(const ValueCache&) = delete;
  ValueCache& operator=(const ValueCache&) = delete;

  // A change heard on the event connection.
  void Changed(unsigned int id, const common::ParamValue& value);
  // True with `value` when the cache holds the parameter's current value.
  [[nodiscard]] bool Find(unsigned int id, common::ParamValue& value);
  // Taken before reading a value from configd; 0 while nothing may be kept.
  [[nodiscard]] uint64_t Ticket();
  // Keeps `value`, read after `ticket`, unless an event of `id` came since.
  void Fill(unsigned int id, const common::ParamValue& value, uint64_t ticket);
  void Forget(unsigned int id);
  // The link was dropped: nothing is kept until an event proves the new one.
  void Reset();

 private:
  struct Entry {
    bool valid = false;
    uint64_t lastEvent = 0;  // _events when the parameter last changed
    common::ParamValue value;
  };

  std::mutex _lock;
  std::unordered_map<unsigned int, Entry> _entries;  // guarded by _lock
  uint64_t _events = 0;                              // guarded by _lock
  bool _live = false;  // an event arrived on this link; guarded by _lock
};

}  // namespace configweb

#endif  // TOOLS_CONFIGWEB_VALUE_CACHE_H
