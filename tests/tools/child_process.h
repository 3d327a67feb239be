// Runs configd and configctl as real processes for the tests: fork/exec with
// standard output on a pipe and standard error in an unlinked temporary file
// (so a chatty child never blocks on a full pipe), every wait bounded by a
// time-out, and the child killed when the test lets go of it.
#ifndef TESTS_TOOLS_CHILD_PROCESS_H
#define TESTS_TOOLS_CHILD_PROCESS_H

#include <sys/types.h>

#include <string>
#include <vector>

namespace tools_test {

// How a finished child ended. `exitCode` is -1 when it did not exit by
// itself in time (it was killed) or died of a signal.
struct Outcome {
  int exitCode = -1;
  bool timedOut = false;
  std::string out;
  std::string err;
};

class ChildProcess {
 public:
  ChildProcess() = default;
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  // Starts argv[0] with the given arguments. False when it could not start.
  bool Start(const std::vector<std::string>& argv);
  // The next line of standard output without its newline; false when none
  // came within `timeoutMs` or the output ended.
  bool ReadLine(std::string& line, int timeoutMs);
  void Signal(int signal);
  // Waits up to `timeoutMs` for the child to end, killing it after that,
  // and returns its status and all its output.
  Outcome Wait(int timeoutMs);

 private:
  // Appends what standard output delivers within `timeoutMs`; false when
  // nothing came (time-out or end of output).
  bool Pump(int timeoutMs);
  std::string ReadErr() const;

  pid_t _pid = -1;
  int _out = -1;
  int _err = -1;
  bool _outEnded = false;
  std::string _buffer;  // standard output not yet returned as lines
};

// "status|standard output|standard error", to compare a whole outcome at once.
inline std::string Summary(const Outcome& outcome) {
  return std::to_string(outcome.exitCode) + "|" + outcome.out + "|" + outcome.err;
}

// Runs a command to its end (at most `timeoutMs`).
Outcome RunToEnd(const std::vector<std::string>& argv, int timeoutMs = 20000);

// A TCP port that was free a moment ago: bound as port 0, read, closed.
int FreePort();

}  // namespace tools_test

#endif  // TESTS_TOOLS_CHILD_PROCESS_H
