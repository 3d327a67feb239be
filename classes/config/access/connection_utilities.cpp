#include "config/access/connection_utilities.h"

#include <semaphore.h>
#include <unistd.h>

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <map>

#include "support/logger.h"
#include "support/semaphore_helper.h"

namespace zyn {
namespace config {
namespace access {

namespace {

using zyn::logging::Logger;

std::atomic<uint32_t> g_connection_counter{1};

// name_from_pid's cache. Never destroyed, so traces stay possible while
// statics are torn down.
struct NameCache {
  NameCache() { SemaphoreHelper::InitSemaphore(&lock); }
  sem_t lock;                        // guards names
  std::map<int, std::string> names;  // pid -> short program name
};

NameCache& Names() {
  static NameCache* const cache = new NameCache;
  return *cache;
}

std::string ReadProcessName(int pid) {
  char path[64];
  snprintf(path, sizeof path, "/proc/%d/cmdline", pid);
  FILE* file = fopen(path, "r");
  if (file == nullptr) return std::string();
  // The arguments are NUL-separated, so the word read ends at the first one
  // at the latest as a C string.
  char word[2048];
  int matches = fscanf(file, "%2047s", word);
  fclose(file);
  if (matches != 1) return std::string();
  const char* slash = strrchr(word, '/');
  return slash != nullptr ? slash + 1 : word;
}

// What the third word of a line names: the process of the connection, or
// "event" for the IDs that events carry.
std::string Who(uint32_t connectionID) {
  if (connectionID == 0 || connectionID == 0x0000FFFF) return "event";
  return ConnectionUtilities::name_from_pid(static_cast<int>(connectionID & 0xFFFF));
}

std::string Printf(const char* format, ...) __attribute__((format(printf, 1, 2)));
std::string Printf(const char* format, ...) {
  va_list args;
  va_start(args, format);
  va_list again;
  va_copy(again, args);
  int size = vsnprintf(nullptr, 0, format, args);
  va_end(args);
  std::string text(size > 0 ? static_cast<size_t>(size) : 0, '\0');
  if (size > 0) vsnprintf(&text[0], text.size() + 1, format, again);
  va_end(again);
  return text;
}

// "(arrow) name who [requestID]" without the line break.
std::string Head(const XCONFIGMGR_HEADER_T& header) {
  return Printf("(%s) %s %s [%d]", DirectionArrow(header.msgtype), MessageName(header.msgtype),
                Who(header.connectionID).c_str(), static_cast<int>(header.requestID));
}

// "(arrow) connectionID name who [requestID]" without the line break.
std::string ConnectionHead(const XCONFIGMGR_HEADER_T& header) {
  return Printf("(%s) %d %s %s [%d]", DirectionArrow(header.msgtype),
                static_cast<int>(header.connectionID), MessageName(header.msgtype),
                Who(header.connectionID).c_str(), static_cast<int>(header.requestID));
}

// Appends " {0x<length>:0x<bytes>}" for a payload, then the line break.
std::string Finish(std::string line, const char* payload, size_t length) {
  if (payload != nullptr && length > 0) {
    static const char kDigits[] = "0123456789abcdef";
    line += Printf(" {0x%zx:0x", length);
    line.reserve(line.size() + 2 * length + 2);
    for (size_t i = 0; i < length; ++i) {
      unsigned char byte = static_cast<unsigned char>(payload[i]);
      line.push_back(kDigits[byte >> 4]);
      line.push_back(kDigits[byte & 0x0F]);
    }
    line.push_back('}');
  }
  line.push_back('\n');
  return line;
}

void Write(const std::string& line) { Logger::GetLogger()->Log("%s", line.c_str()); }

}  // namespace

uint32_t ConnectionUtilities::GetConnectionID() {
  uint32_t n = g_connection_counter.fetch_add(1, std::memory_order_relaxed);
  return (n << 16) | (static_cast<uint32_t>(getpid()) & 0xFFFF);
}

const char* ConnectionUtilities::GetMessageName(uint32_t code) { return MessageName(code); }

std::string ConnectionUtilities::name_from_pid(int pid) {
  NameCache& cache = Names();
  {
    SemaphoreHelper hold(&cache.lock);
    auto found = cache.names.find(pid);
    if (found != cache.names.end()) return found->second;
  }
  // Read outside the lock; two threads that miss together read the same
  // name and the first one stored wins.
  std::string name = ReadProcessName(pid);
  SemaphoreHelper hold(&cache.lock);
  return cache.names.emplace(pid, name).first->second;
}

std::string ConnectionUtilities::FormatLine(const XCONFIGMGR_REQUEST_T& request,
                                            const char* payload, size_t length) {
  return Finish(Head(request.header), payload, length);
}

std::string ConnectionUtilities::FormatLine(const XCONFIGMGR_RESPONSE_T& response,
                                            const char* payload, size_t length) {
  std::string line = Head(response.header);
  if (response.error != 0) line += Printf(" (error %d)", static_cast<int>(response.error));
  return Finish(line, payload, length);
}

std::string ConnectionUtilities::FormatLine(const XCONFIGMGR_CONNECTION_REQUEST_T& request) {
  return Finish(ConnectionHead(request.header), nullptr, 0);
}

std::string ConnectionUtilities::FormatLine(const XCONFIGMGR_CONNECTION_RESPONSE_T& response) {
  std::string line = ConnectionHead(response.header);
  if (response.error != 0) line += Printf(" error %d", static_cast<int>(response.error));
  return Finish(line, nullptr, 0);
}

std::string ConnectionUtilities::FormatLine(const XCONFIGMGR_EVENT_HANDLER_REQUEST_T& request) {
  return Finish(Head(request.header), nullptr, 0);
}

void ConnectionUtilities::Dump(const XCONFIGMGR_REQUEST_T& request, const char* payload,
                               size_t length) {
  if (Logger::GetLogger()->IsWatched(request.paramID)) Write(FormatLine(request, payload, length));
}

void ConnectionUtilities::Dump(const XCONFIGMGR_RESPONSE_T& response, const char* payload,
                               size_t length) {
  if (Logger::GetLogger()->IsWatched(response.paramID))
    Write(FormatLine(response, payload, length));
}

void ConnectionUtilities::PackChangedEvent(uint32_t connectionID, uint32_t configID,
                                           uint32_t paramID, uint32_t value, char* out) {
  XCONFIGMGR_RESPONSE_T changed = ParamChangedEvent(connectionID, configID, paramID, value);
  Pack(changed, out);
  Dump(changed);
}

void ConnectionUtilities::Dump(const XCONFIGMGR_CONNECTION_REQUEST_T& request) {
  if (Logger::GetLogger()->IsEnabled()) Write(FormatLine(request));
}

void ConnectionUtilities::Dump(const XCONFIGMGR_CONNECTION_RESPONSE_T& response) {
  if (Logger::GetLogger()->IsEnabled()) Write(FormatLine(response));
}

void ConnectionUtilities::Dump(const XCONFIGMGR_EVENT_HANDLER_REQUEST_T& request) {
  // A registration for one parameter follows the watch list; one for every
  // parameter (paramID 0) concerns them all.
  Logger* logger = Logger::GetLogger();
  if (request.paramID == 0 ? logger->IsEnabled() : logger->IsWatched(request.paramID))
    Write(FormatLine(request));
}

}  // namespace access
}  // namespace config
}  // namespace zyn
