#include "support/logger.h"

#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "config/descriptors/param_descriptors.h"
#include "support/semaphore_helper.h"

namespace zyn {
namespace logging {

namespace {

const char kDefaultConfigDirectory[] = "/usr/local/bin/";

// The time part of every line: local time "%X", a dot and the milliseconds
// of the current second as three digits.
void FormatClock(char* out, size_t size) {
  timeval now;
  gettimeofday(&now, nullptr);
  tm local;
  time_t seconds = now.tv_sec;
  localtime_r(&seconds, &local);
  char clock[64];
  if (strftime(clock, sizeof clock, "%X", &local) == 0) clock[0] = '\0';
  snprintf(out, size, "%s.%03ld", clock, static_cast<long>(now.tv_usec / 1000));
}

// Appends text to format so that vfprintf prints it literally.
void AppendEscaped(std::string* format, const char* text) {
  for (; *text != '\0'; ++text) {
    if (*text == '%') format->push_back('%');
    format->push_back(*text);
  }
}

// -1 until the environment is read; then 0 or 1.
std::atomic<int> g_verbose{-1};

}  // namespace

void SetVerbose(bool on) { g_verbose.store(on ? 1 : 0, std::memory_order_relaxed); }

bool IsVerbose() {
  int state = g_verbose.load(std::memory_order_relaxed);
  if (state < 0) {
    const char* value = getenv("LIBCONFIG_VERBOSE");
    state = value != nullptr && value[0] != '\0' && strcmp(value, "0") != 0 ? 1 : 0;
    int unread = -1;
    // A SetVerbose that came first wins.
    if (!g_verbose.compare_exchange_strong(unread, state, std::memory_order_relaxed))
      state = unread;
  }
  return state == 1;
}

std::atomic<Logger*> Logger::s_installed{nullptr};

Logger* Logger::GetLogger() {
  if (Logger* installed = s_installed.load(std::memory_order_acquire)) return installed;
  // Deliberately never destroyed; the initialisation runs exactly once.
  static Logger* const instance = Create(kDefaultConfigDirectory).release();
  return instance;
}

void Logger::Install(Logger* logger) { s_installed.store(logger, std::memory_order_release); }

std::unique_ptr<Logger> Logger::Create(const std::string& configDirectory) {
  std::unique_ptr<Logger> logger(new Logger(configDirectory));
  logger->Init();
  logger->_enabled = logger->ReadConfig(logger->_configPath);
  return logger;
}

Logger::Logger(const std::string& configDirectory) : _configDirectory(configDirectory) {
  if (_configDirectory.empty() || _configDirectory.back() != '/') _configDirectory.push_back('/');
  SemaphoreHelper::InitSemaphore(&_namesLock);
}

Logger::~Logger() { SemaphoreHelper::DestroySemaphore(&_namesLock); }

bool Logger::Init() {
  if (_initialised) return true;
  _initialised = true;
  _processName = GetNameFromPID(static_cast<int>(getpid()));
  _configPath = _configDirectory + _processName + ".log";
  return !_processName.empty();
}

std::string Logger::GetNameFromPID(int pid) {
  SemaphoreHelper hold(&_namesLock);
  auto cached = _namesByPID.find(pid);
  if (cached != _namesByPID.end()) return cached->second;

  char path[64];
  snprintf(path, sizeof path, "/proc/%d/cmdline", pid);
  FILE* file = fopen(path, "r");
  if (file == nullptr) return std::string();
  // The arguments are separated by NUL bytes; only the first word is kept,
  // so a bounded read is enough.
  char buffer[4096];
  size_t length = fread(buffer, 1, sizeof buffer, file);
  fclose(file);

  size_t begin = 0;
  while (begin < length && isspace(static_cast<unsigned char>(buffer[begin]))) ++begin;
  size_t end = begin;
  while (end < length && buffer[end] != '\0' && !isspace(static_cast<unsigned char>(buffer[end])))
    ++end;
  std::string name(buffer + begin, end - begin);
  size_t slash = name.rfind('/');
  if (slash != std::string::npos) name.erase(0, slash + 1);
  if (!name.empty()) _namesByPID[pid] = name;
  return name;
}

bool Logger::ReadConfig(const std::string& path) {
  FILE* file = fopen(path.c_str(), "r");
  if (file == nullptr) {
    // Without the switch file tracing is simply off.
    if (errno == ENOENT && !IsVerbose()) return false;
    perror("Logger::ReadLoggingConfig");
    fprintf(stderr, "Logger::ReadLoggingConfig - unable to open %s\n", path.c_str());
    return false;
  }
  const char* name = _processName.c_str();
  char clock[96];
  FormatClock(clock, sizeof clock);
  fprintf(stderr, "%s [%s] Reading %s\n", clock, name, path.c_str());

  char* line = nullptr;
  size_t capacity = 0;
  while (getline(&line, &capacity, file) != -1) {
    // A word can be no longer than its line.
    std::vector<char> word(capacity + 1);
    if (sscanf(line, " watch %s", word.data()) != 1) continue;
    FormatClock(clock, sizeof clock);
    if (std::string(word.data()) == "*") {
      fprintf(stderr, "%s [%s] Watching *\n", clock, name);
      continue;
    }
    ParamDescriptor* descriptor = GetDescriptor(std::string(word.data()));
    if (descriptor == nullptr) {
      fprintf(stderr, "%s [%s] Logger::ReadLoggingConfig - descriptor for %s not found\n", clock,
              name, word.data());
      continue;
    }
    _watched.push_back(descriptor->GetParamID());
    fprintf(stderr, "%s [%s] Watching %s\n", clock, name, word.data());
  }
  free(line);
  fclose(file);
  return true;
}

bool Logger::IsWatched(unsigned int paramID) const {
  if (!_enabled) return false;
  return _watched.empty() || std::find(_watched.begin(), _watched.end(), paramID) != _watched.end();
}

void Logger::VLog(const char* format, va_list args) {
  char clock[96];
  FormatClock(clock, sizeof clock);
  char prefix[160];
  snprintf(prefix, sizeof prefix, "%s [", clock);
  // Prefix and message go out in one vfprintf call, so that lines of
  // different threads never interleave.
  std::string line;
  AppendEscaped(&line, prefix);
  AppendEscaped(&line, _processName.c_str());
  snprintf(prefix, sizeof prefix, ":%ld] ", static_cast<long>(syscall(SYS_gettid)));
  line.append(prefix);
  line.append(format);
  vfprintf(stderr, line.c_str(), args);
}

void Logger::Log(const char* format, ...) {
  va_list args;
  va_start(args, format);
  VLog(format, args);
  va_end(args);
}

void Logger::Log(unsigned int, const char* format, ...) {
  va_list args;
  va_start(args, format);
  VLog(format, args);
  va_end(args);
}

void Logger::Log(unsigned int, unsigned int, const char* format, ...) {
  va_list args;
  va_start(args, format);
  VLog(format, args);
  va_end(args);
}

void Logger::Log(unsigned int, std::string&, const char* format, ...) {
  va_list args;
  va_start(args, format);
  VLog(format, args);
  va_end(args);
}

}  // namespace logging
}  // namespace zyn
