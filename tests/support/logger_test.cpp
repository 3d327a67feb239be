#include "support/logger.h"

#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cctype>
#include <fstream>
#include <sstream>
#include <thread>

#include "test_catalogue.h"
#include "test_stderr.h"
#include "test_temp_folder.h"

using zyn::logging::Logger;

namespace {

const unsigned int kWatchedID = 0xFEEDB001;

// The lines of text without their "HH:MM:SS.mmm " clock; a line lacking it
// is marked so that comparisons fail.
std::vector<std::string> WithoutClock(const std::string& text) {
  std::istringstream in(text);
  std::vector<std::string> lines;
  const std::string shape = "00:00:00.000 ";
  for (std::string line; std::getline(in, line);) {
    bool ok = line.size() > shape.size();
    for (size_t i = 0; ok && i < shape.size(); ++i)
      ok = shape[i] == '0' ? isdigit(static_cast<unsigned char>(line[i])) : line[i] == shape[i];
    lines.push_back(ok ? line.substr(shape.size()) : "NO CLOCK: " + line);
  }
  return lines;
}

// A logger configured from a switch file with text (none if text is null)
// in a directory of its own; err receives what the configuration printed.
std::unique_ptr<Logger> CreateWith(const char* text, std::string* err) {
  TempFolder folder;
  if (text != nullptr)
    std::ofstream(folder.path + "/" + program_invocation_short_name + ".log") << text;
  std::unique_ptr<Logger> logger;
  *err = Stderr([&] { logger = Logger::Create(folder.path); });
  return logger;
}

}  // namespace

TEST(LoggerTest, SwitchFileSelectsWatchedParametersAndLinesCarryTimeNameAndThreadID) {
  test_catalogue::Integer(kWatchedID, "eParamID_LoggerTestWatched", 0, 0, 0);
  IndexDescriptorNames();
  std::string err, tag = std::string("[") + program_invocation_short_name + "] ";

  std::unique_ptr<Logger> logger = CreateWith(nullptr, &err);
  ASSERT_NE(nullptr, logger);
  EXPECT_FALSE(logger->IsWatched(kWatchedID)) << "no switch file, no tracing";
  EXPECT_EQ("", err) << "a missing switch file is reported only when verbose";
  {
    VerboseDiagnostics verbose;
    logger = CreateWith(nullptr, &err);
  }
  EXPECT_TRUE(Has(err, "ReadLoggingConfig - unable to open " + logger->GetConfigPath() + "\n"))
      << err;

  logger = CreateWith(
      "watch eParamID_LoggerTestMissing\nnot an entry\nwatch eParamID_LoggerTestWatched\n", &err);
  ASSERT_TRUE(logger->IsEnabled()) << err;
  EXPECT_EQ(std::vector<unsigned int>{kWatchedID}, logger->GetWatchedParams());
  EXPECT_TRUE(logger->IsWatched(kWatchedID));
  EXPECT_FALSE(logger->IsWatched(kWatchedID + 1));
  std::vector<std::string> expected = {
      tag + "Reading " + logger->GetConfigPath(),
      tag + "Logger::ReadLoggingConfig - descriptor for eParamID_LoggerTestMissing not found",
      tag + "Watching eParamID_LoggerTestWatched"};
  EXPECT_EQ(expected, WithoutClock(err));

  logger = CreateWith("watch *\n", &err);
  EXPECT_TRUE(logger->IsWatched(kWatchedID + 1)) << "'*' watches every parameter";
  EXPECT_EQ(tag + "Watching *", WithoutClock(err).back());

  if (access(("/usr/local/bin/" + logger->GetProcessName() + ".log").c_str(), F_OK) != 0) {
    EXPECT_FALSE(Logger::GetLogger()->IsEnabled()) << "the default directory has no switch file";
  }

  // Lines carry the time, the name and the thread ID.
  std::string name = program_invocation_short_name, text = "x";
  EXPECT_EQ(name, Logger::GetLogger()->GetNameFromPID(getpid()));
  logger = CreateWith("", &err);
  ASSERT_NE(nullptr, logger);
  long tid = 0;
  testing::internal::CaptureStderr();
  logger->Log("a %d%%\n", 1);
  logger->Log(kWatchedID, "b %s\n", "s");
  logger->Log(kWatchedID, 7u, "c %u\n", 3u);
  std::thread([&] {
    tid = syscall(SYS_gettid);
    logger->Log(kWatchedID, text, "d %c\n", 'z');
  }).join();
  std::string head = "[" + name + ":" + std::to_string(getpid()) + "] ";
  expected = {head + "a 1%", head + "b s", head + "c 3",
              "[" + name + ":" + std::to_string(tid) + "] d z"};
  EXPECT_EQ(expected, WithoutClock(testing::internal::GetCapturedStderr()))
      << "the bracket carries the calling thread's ID";
}
