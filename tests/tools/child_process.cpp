#include "child_process.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <thread>

namespace tools_test {

namespace {

using Clock = std::chrono::steady_clock;

int RemainingMs(Clock::time_point deadline) {
  auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
  return left.count() > 0 ? static_cast<int>(left.count()) : 0;
}

}  // namespace

ChildProcess::~ChildProcess() {
  if (_pid > 0) {
    kill(_pid, SIGKILL);
    waitpid(_pid, nullptr, 0);
  }
  if (_out >= 0) close(_out);
  if (_err >= 0) close(_err);
}

bool ChildProcess::Start(const std::vector<std::string>& argv) {
  char errName[] = "/tmp/test_tools_stderr_XXXXXX";
  _err = mkstemp(errName);
  if (_err < 0) return false;
  unlink(errName);
  int pipeFds[2];
  if (pipe2(pipeFds, O_CLOEXEC) != 0) return false;
  std::vector<char*> args;
  for (const std::string& arg : argv) args.push_back(const_cast<char*>(arg.c_str()));
  args.push_back(nullptr);
  _pid = fork();
  if (_pid == 0) {
    dup2(pipeFds[1], STDOUT_FILENO);
    dup2(_err, STDERR_FILENO);
    int null = open("/dev/null", O_RDONLY);
    dup2(null, STDIN_FILENO);
    // The test runner may block signals; the child starts with none blocked.
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    execv(args[0], args.data());
    _exit(127);
  }
  close(pipeFds[1]);
  _out = pipeFds[0];
  return _pid > 0;
}

bool ChildProcess::Pump(int timeoutMs) {
  if (_outEnded) return false;
  pollfd p{_out, POLLIN, 0};
  if (poll(&p, 1, timeoutMs) <= 0) return false;
  char chunk[4096];
  ssize_t n = read(_out, chunk, sizeof chunk);
  if (n <= 0) {
    _outEnded = true;
    return false;
  }
  _buffer.append(chunk, static_cast<size_t>(n));
  return true;
}

bool ChildProcess::ReadLine(std::string& line, int timeoutMs) {
  auto deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
  for (;;) {
    size_t end = _buffer.find('\n');
    if (end != std::string::npos) {
      line = _buffer.substr(0, end);
      _buffer.erase(0, end + 1);
      return true;
    }
    int left = RemainingMs(deadline);
    if (left == 0 || _outEnded) return false;
    Pump(left);
  }
}

void ChildProcess::Signal(int signal) {
  if (_pid > 0) kill(_pid, signal);
}

std::string ChildProcess::ReadErr() const {
  std::string text;
  char chunk[4096];
  off_t offset = 0;
  ssize_t n;
  while ((n = pread(_err, chunk, sizeof chunk, offset)) > 0) {
    text.append(chunk, static_cast<size_t>(n));
    offset += n;
  }
  return text;
}

Outcome ChildProcess::Wait(int timeoutMs) {
  Outcome outcome;
  auto deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
  while (_pid > 0) {
    int status = 0;
    pid_t done = waitpid(_pid, &status, WNOHANG);
    if (done == _pid) {
      _pid = -1;
      if (WIFEXITED(status)) outcome.exitCode = WEXITSTATUS(status);
      break;
    }
    if (RemainingMs(deadline) == 0) {
      outcome.timedOut = true;
      kill(_pid, SIGKILL);
      waitpid(_pid, nullptr, 0);
      _pid = -1;
      break;
    }
    // Keep the pipe drained so the child never blocks writing its output.
    if (!Pump(10)) std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  while (Pump(0)) {
  }
  outcome.out = _buffer;
  _buffer.clear();
  outcome.err = ReadErr();
  return outcome;
}

Outcome RunToEnd(const std::vector<std::string>& argv, int timeoutMs) {
  ChildProcess child;
  if (!child.Start(argv)) return Outcome();
  return child.Wait(timeoutMs);
}

int FreePort() {
  int fd = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = 0;
  address.sin_addr.s_addr = htonl(INADDR_ANY);
  int port = 0;
  socklen_t length = sizeof address;
  if (bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
      getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length) == 0)
    port = ntohs(address.sin_port);
  close(fd);
  return port;
}

}  // namespace tools_test
