// Runs a piece of a test with standard error captured and returns what it
// printed, so tests can check the system's messages.
#ifndef TESTS_TEST_STDERR_H
#define TESTS_TEST_STDERR_H

#include <gtest/gtest.h>

#include <string>

#include "support/logger.h"

template <typename F>
std::string Stderr(F body) {
  testing::internal::CaptureStderr();
  body();
  return testing::internal::GetCapturedStderr();
}

// True when `part` occurs in `text`.
inline bool Has(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

// How many times `what` occurs in `text`.
inline size_t Count(const std::string& text, const std::string& what) {
  size_t n = 0;
  for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++n;
  return n;
}

// Turns the library's diagnostics switch on for a test that checks them.
class VerboseDiagnostics {
 public:
  VerboseDiagnostics() { zyn::logging::SetVerbose(true); }
  ~VerboseDiagnostics() { zyn::logging::SetVerbose(false); }
  VerboseDiagnostics(const VerboseDiagnostics&) = delete;
  VerboseDiagnostics& operator=(const VerboseDiagnostics&) = delete;
};

#endif  // TESTS_TEST_STDERR_H
