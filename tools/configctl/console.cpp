#include "configctl/console.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <string>

namespace configctl {

int Console::s_errorFd = STDERR_FILENO;

void Console::Init(bool verbose) {
  if (verbose) return;
  int null = open("/dev/null", O_WRONLY | O_CLOEXEC);
  if (null < 0) return;
  int saved = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3);
  if (saved >= 0) {
    fflush(stderr);
    dup2(null, STDERR_FILENO);
    s_errorFd = saved;
  }
  close(null);
}

void Console::Error(const char* format, ...) {
  char message[1024];
  va_list args;
  va_start(args, format);
  vsnprintf(message, sizeof message, format, args);
  va_end(args);
  std::string line = std::string("configctl: ") + message + "\n";
  size_t written = 0;
  while (written < line.size()) {
    ssize_t n = write(s_errorFd, line.data() + written, line.size() - written);
    if (n <= 0) break;
    written += static_cast<size_t>(n);
  }
}

}  // namespace configctl
