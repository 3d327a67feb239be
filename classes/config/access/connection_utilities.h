// ConnectionUtilities gathers what both ends of the configuration protocol
// need besides the records themselves: connection IDs, message display names,
// the short name of a process, and the protocol trace lines.
//
// All static; nothing to own. Thread-safety: everything may be called from
// any thread. The connection counter is atomic; the process-name cache is
// guarded by a semaphore, so concurrent trace calls do not race.
//
// Trace lines go through the process's Logger only when it is enabled and,
// for records that carry a parameter ID, only when that ID is watched:
//   "(->) Get Request configctl [5]"
//   "(<-) Get Response configctl [5] (error 3)"
//   "(->) 65601 Connect Request configctl [0]"       connection records
//   "(<-) 65601 Connect Response configctl [0] error 1"
// The third word names the process of the connection ID's low 16 bits, or is
// "event" for connection ID 0 and 0x0000FFFF. A payload, when given, follows
// after a blank as "{0x<length>:0x<bytes>}": the length in lower-case hex
// without padding, each byte as two lower-case hex digits, e.g. "{0x3:0x0a00ff}".
#ifndef CLASSES_CONFIG_ACCESS_CONNECTION_UTILITIES_H
#define CLASSES_CONFIG_ACCESS_CONNECTION_UTILITIES_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "config/access/xconfigmgr_records.h"

namespace zyn {
namespace config {
namespace access {

class ConnectionUtilities {
 public:
  ConnectionUtilities() = delete;

  // (n << 16) | (pid & 0xFFFF), n a process-wide counter starting at 1 and
  // advanced by every call (wrapping after 0xFFFF).
  static uint32_t GetConnectionID();
  // The display name of a message code, "N/A" for an unknown code.
  static const char* GetMessageName(uint32_t code);
  // The program name of process pid without its directory; "" when its
  // command line cannot be read. Cached per pid for the life of the process,
  // failures included, and never evicted.
  static std::string name_from_pid(int pid);

  // Writes the record's trace line through Logger::GetLogger() when tracing
  // is on for it. Requests, responses and listener requests naming a
  // parameter are filtered by paramID; connection records and listener
  // requests for every parameter are traced whenever the logger is enabled.
  static void Dump(const XCONFIGMGR_REQUEST_T& request, const char* payload = nullptr,
                   size_t length = 0);
  static void Dump(const XCONFIGMGR_RESPONSE_T& response, const char* payload = nullptr,
                   size_t length = 0);
  static void Dump(const XCONFIGMGR_CONNECTION_REQUEST_T& request);
  // Packs the "Param Changed Event" of an integer change into `out` (44
  // bytes) and traces it.
  static void PackChangedEvent(uint32_t connectionID, uint32_t configID, uint32_t paramID,
                               uint32_t value, char* out);
  static void Dump(const XCONFIGMGR_CONNECTION_RESPONSE_T& response);
  static void Dump(const XCONFIGMGR_EVENT_HANDLER_REQUEST_T& request);

  // The line that Dump writes (after the logger's own prefix), ending in "\n".
  static std::string FormatLine(const XCONFIGMGR_REQUEST_T& request, const char* payload = nullptr,
                                size_t length = 0);
  static std::string FormatLine(const XCONFIGMGR_RESPONSE_T& response,
                                const char* payload = nullptr, size_t length = 0);
  static std::string FormatLine(const XCONFIGMGR_CONNECTION_REQUEST_T& request);
  static std::string FormatLine(const XCONFIGMGR_CONNECTION_RESPONSE_T& response);
  static std::string FormatLine(const XCONFIGMGR_EVENT_HANDLER_REQUEST_T& request);
};

}  // namespace access
}  // namespace config
}  // namespace zyn

#endif  // CLASSES_CONFIG_ACCESS_CONNECTION_UTILITIES_H
