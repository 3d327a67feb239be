// configctl's output channels. The library reports its own diagnostics on
// standard error; unless configctl runs verbose, Console points descriptor 2
// at /dev/null for the whole run and keeps a duplicate of the real standard
// error for configctl's own messages, so a failure is one clear line.
// Standard output carries only the results of the command.
//
// Init runs once in main before any other thread starts; Error may be called
// from any thread afterwards (each message is one write).
#ifndef TOOLS_CONFIGCTL_CONSOLE_H
#define TOOLS_CONFIGCTL_CONSOLE_H

namespace configctl {

class Console {
 public:
  Console() = delete;

  // Silences the library's standard error unless `verbose`.
  static void Init(bool verbose);
  // Writes "configctl: " and the formatted message as one line to the real
  // standard error.
  static void Error(const char* format, ...) __attribute__((format(printf, 1, 2)));

 private:
  static int s_errorFd;
};

}  // namespace configctl

#endif  // TOOLS_CONFIGCTL_CONSOLE_H
