// Runs a piece of a test with standard error captured and returns what it
// printed, so tests can check the system's messages.
#ifndef TESTS_TEST_STDERR_H
#define TESTS_TEST_STDERR_H

#include <gtest/gtest.h>

#include <string>

template <typename F>
std::string Stderr(F body) {
  testing::internal::CaptureStderr();
  body();
  return testing::internal::GetCapturedStderr();
}

#endif  // TESTS_TEST_STDERR_H
