// Logger is the library's protocol trace facility: one instance per process,
// switched on by the presence of the program's switch file
// ("/usr/local/bin/" + program name + ".log"), optionally restricted to a list
// of watched parameters, writing time-stamped lines to standard error.
// Ordinary error reports of the library do not go through it.
//
// Every trace line starts with the local time of day and milliseconds, then
// the process name and the calling thread's kernel thread ID in brackets:
//   "14:03:22.047 [configd:1234] " followed by the formatted message.
//
// Ownership: GetLogger's instance is created on first use and never destroyed
// (traces stay possible during static destruction). Create hands its caller
// an instance of its own.
//
// Thread-safety: the first GetLogger runs the configuration exactly once even
// if threads race to it. It looks the switch file's names up in the
// descriptor registry, so the owner calls it after the catalogue is built and
// before starting worker threads. After creation the enabled flag, the names and the watched list
// are only read, and Log, IsEnabled and IsWatched may be called from any
// thread without a lock; each line is written with one call, so lines from
// different threads never interleave. GetNameFromPID's cache is guarded by
// _namesLock. Init and ReadConfig belong to the creating thread.
//
// Callers apply the convention in one call: if (logger->IsWatched(id)) Log().
#ifndef CLASSES_SUPPORT_LOGGER_H
#define CLASSES_SUPPORT_LOGGER_H

#include <semaphore.h>

#include <atomic>
#include <cstdarg>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace zyn {
namespace logging {

// The library's diagnostics switch, named LIBCONFIG_VERBOSE. Default: off.
// Off, the library keeps quiet about conditions that are no fault: no trace
// switch file, a URI without a config ID, a MAC address outside the unit's
// ranges, a peer closing its connection in order, start-up progress. Real
// failures are reported either way. The environment variable
// LIBCONFIG_VERBOSE=1 (read once, at the first query) turns it on;
// SetVerbose overrides both. configd, configctl and configweb turn it on with
// --verbose. Any thread may query it.
void SetVerbose(bool on);
[[nodiscard]] bool IsVerbose();

class Logger {
 public:
  // The process-wide instance: made on first use by Create with the
  // directory "/usr/local/bin/". Never null.
  static Logger* GetLogger();

  // A new, configured instance: runs Init() with configDirectory as the
  // directory of the switch file, then enables it if ReadConfig of the
  // switch file succeeds. GetLogger uses this; tests use it with a directory
  // of their own. The caller owns the result.
  static std::unique_ptr<Logger> Create(const std::string& configDirectory);

  // For tests: makes `logger` the instance GetLogger returns, until the next
  // call; null brings back the process-wide one. The caller keeps ownership
  // and keeps the logger alive until no thread can still be tracing with it.
  static void Install(Logger* logger);

  virtual ~Logger();
  Logger(const Logger&) = delete;
  Logger& operator=(const Logger&) = delete;

  // Sets the process name (GetNameFromPID(getpid())) and the switch file path
  // (directory + name + ".log"). Runs once; later calls return true at once.
  // False when the process name could not be read.
  bool Init();

  // The program name of process pid without its directory, cached per pid;
  // "" if the process's command line cannot be read (not cached).
  std::string GetNameFromPID(int pid);

  // Reads the switch file at path: lines "watch <name>" add the parameter
  // with that ID name to the watched list, "watch *" watches every parameter
  // (adds nothing); other lines are skipped. Unknown names are reported and
  // skipped. Progress goes to standard error. True when the file could be
  // opened. Does not change the enabled flag.
  bool ReadConfig(const std::string& path);

  // Each Log form writes the line prefix and the printf-style message as one
  // line; the format supplies the final "\n". The lines are written whether
  // or not tracing is on: callers check IsWatched/IsEnabled first. The
  // leading parameter ID, value and text identify what the line is about for
  // that check; they do not appear in the line (callers format what they
  // want shown into the message). The text form takes a non-const string so
  // that a literal never binds to it: Log(id, "fmt", ...) stays unambiguous.
  void Log(const char* format, ...) __attribute__((format(printf, 2, 3)));
  void Log(unsigned int paramID, const char* format, ...) __attribute__((format(printf, 3, 4)));
  void Log(unsigned int paramID, unsigned int value, const char* format, ...)
      __attribute__((format(printf, 4, 5)));
  void Log(unsigned int paramID, std::string& text, const char* format, ...)
      __attribute__((format(printf, 4, 5)));

  // True when the switch file was read at creation.
  [[nodiscard]] bool IsEnabled() const { return _enabled; }
  // True when tracing is on and paramID is watched (an empty watched list
  // watches every parameter).
  [[nodiscard]] bool IsWatched(unsigned int paramID) const;

  [[nodiscard]] const std::string& GetProcessName() const { return _processName; }
  [[nodiscard]] const std::string& GetConfigPath() const { return _configPath; }
  // The watched parameter IDs in the order of the switch file.
  [[nodiscard]] const std::vector<unsigned int>& GetWatchedParams() const { return _watched; }

 private:
  explicit Logger(const std::string& configDirectory);
  static std::atomic<Logger*> s_installed;  // Install's logger, or null
  void VLog(const char* format, va_list args);

  std::string _configDirectory;  // ends in '/'
  bool _initialised = false;
  bool _enabled = false;
  std::string _processName;
  std::string _configPath;
  std::vector<unsigned int> _watched;  // empty: every parameter

  sem_t _namesLock;                        // guards _namesByPID
  std::map<int, std::string> _namesByPID;  // GetNameFromPID's cache
};

}  // namespace logging
}  // namespace zyn

#endif  // CLASSES_SUPPORT_LOGGER_H
