// A program that uses the library as the README shows (SocketFactory on a
// documented URI, a Get, a Set, Disconnect) prints nothing on standard error
// when all is well; LIBCONFIG_VERBOSE=1 brings the library's diagnostics
// back. The program is this test binary run again with ClientRun alone, so
// that every process-wide state starts fresh.
#include <unistd.h>

#include <cstdlib>

#include "config/access/socket_factory.h"
#include "config/config.h"
#include "tools_fixture.h"

using namespace tools_test;

namespace {

constexpr const char kUriVariable[] = "LIBCONFIG_TEST_CLIENT_URI";

std::string SelfPath() {
  char path[4096];
  ssize_t length = readlink("/proc/self/exe", path, sizeof path - 1);
  return length > 0 ? std::string(path, static_cast<size_t>(length)) : std::string();
}

// Runs ClientRun in a new process against `uri`; LIBCONFIG_VERBOSE is set
// to `verbose` when not null.
Outcome RunClient(const std::string& uri, const char* verbose) {
  setenv(kUriVariable, uri.c_str(), 1);
  if (verbose != nullptr) setenv("LIBCONFIG_VERBOSE", verbose, 1);
  Outcome outcome = RunToEnd({SelfPath(), "--gtest_filter=LibraryClientTest.ClientRun"});
  unsetenv(kUriVariable);
  unsetenv("LIBCONFIG_VERBOSE");
  return outcome;
}

}  // namespace

// The client program; does nothing unless started by RunClient.
TEST(LibraryClientTest, ClientRun) {
  const char* uri = getenv(kUriVariable);
  if (uri == nullptr) GTEST_SKIP() << "run by QuietUnlessVerbose";
  zyn::config::access::SocketFactory factory;
  Config* unit = factory.Connect(uri);
  ASSERT_NE(nullptr, unit);
  std::string name;
  EXPECT_TRUE(unit->Get(kSystemName, name));
  EXPECT_EQ("zyn-kr-9", name);
  unit->Set(kFrontPanelLock, 1);
  EXPECT_EQ(1u, unit->Get(kFrontPanelLock));
  factory.Disconnect(unit);
}

TEST_F(ConfigctlDaemonTest, LibraryClientIsQuietUnlessVerbose) {
  for (const std::string& uri : {daemon.Uri() + "/configid=0", daemon.Uri()}) {
    SCOPED_TRACE(uri);
    Outcome quiet = RunClient(uri, nullptr);
    EXPECT_EQ(0, quiet.exitCode) << quiet.out;
    EXPECT_TRUE(Has(quiet.out, "[  PASSED  ] 1 test")) << quiet.out;
    EXPECT_EQ("", quiet.err) << "nothing was wrong";
  }
  Outcome verbose = RunClient(daemon.Uri(), "1");
  EXPECT_EQ(0, verbose.exitCode) << verbose.out;
  EXPECT_TRUE(
      Has(verbose.err, "SocketFactory::Connect - unable to read configid, matches = 0, uri = " +
                           daemon.Uri() + "\n"))
      << verbose.err;
  Outcome off = RunClient(daemon.Uri() + "/configid=0", "0");
  EXPECT_EQ("", off.err) << "LIBCONFIG_VERBOSE=0 is off";
}
