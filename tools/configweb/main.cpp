// configweb: the unit's web front end. Serves a page and a JSON API over
// HTTP that show the menus of the unit with their current values, change
// them through configd, and follow every change made anywhere else.
//
// DESIGN: the stop signals are blocked before any thread starts, so every
// thread inherits the mask and main takes them with sigwait; the shutdown
// runs on the main thread in plain code: HTTP server first (its streams and
// connections end), then the daemon session.
#include <signal.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "common/parameters.h"
#include "config/access/xconfigmgr_records.h"
#include "config/descriptors/owner_params.h"
#include "config/descriptors/param_descriptors.h"
#include "configweb/daemon_session.h"
#include "configweb/event_hub.h"
#include "configweb/http_server.h"
#include "configweb/web_api.h"
#include "support/logger.h"

// The build passes the project's version to configd and configctl; until it
// passes it here too, configweb states the same one.
#ifndef LIBCONFIG_VERSION
#define LIBCONFIG_VERSION "0.1"
#endif

namespace {

constexpr int kExitUsage = 2;
constexpr const char* kDefaultListen = "127.0.0.1:8080";

std::string DefaultUri() { return "socket://127.0.0.1:" + std::to_string(kXConfigPort); }

void PrintUsage(FILE* out) {
  fprintf(out,
          "Usage: configweb [--uri URI] [--listen ADDR:PORT] [--max-streams N] [--verbose]\n"
          "Serves the unit's settings as a web page and a JSON API, through configd.\n"
          "\n"
          "  --uri URI           configd's address (default %s)\n"
          "  --listen ADDR:PORT  where to serve HTTP (default %s; port 0 lets the\n"
          "                      system choose). configd's protocol has no\n"
          "                      authentication: listening beyond loopback gives\n"
          "                      everyone who can reach the port control of the unit.\n"
          "  --max-streams N     open event streams allowed at once (default %zu);\n"
          "                      API requests have a limit of their own\n"
          "  --verbose           also print the library's diagnostics on standard error\n"
          "  --version           print the version and exit\n"
          "  --help              this text\n",
          DefaultUri().c_str(), kDefaultListen, configweb::HttpServer::kDefaultMaxStreams);
}

int UsageError(const std::string& message) {
  fprintf(stderr, "configweb: %s\nTry 'configweb --help'.\n", message.c_str());
  return kExitUsage;
}

// The value of option `name` at argv[i], as "--name VALUE" or "--name=VALUE";
// advances i past it. False when argv[i] is not that option.
bool OptionValue(int argc, char** argv, int& i, const std::string& name, std::string& value,
                 std::string& error) {
  std::string arg = argv[i];
  if (arg == name) {
    if (i + 1 == argc) {
      error = name + " needs a value";
      return true;
    }
    value = argv[++i];
    return true;
  }
  if (arg.rfind(name + "=", 0) == 0) {
    value = arg.substr(name.size() + 1);
    return true;
  }
  return false;
}

}  // namespace

int main(int argc, char** argv) {
  std::string uri = DefaultUri();
  std::string listen = kDefaultListen;
  std::string maxStreamsText = std::to_string(configweb::HttpServer::kDefaultMaxStreams);
  for (int i = 1; i < argc; ++i) {
    std::string arg = argv[i];
    if (arg == "--help" || arg == "-h") {
      PrintUsage(stdout);
      return 0;
    }
    if (arg == "--version") {
      printf("configweb %s\n", LIBCONFIG_VERSION);
      return 0;
    }
    if (arg == "--verbose") {
      zyn::logging::SetVerbose(true);
      continue;
    }
    std::string error;
    if (!OptionValue(argc, argv, i, "--uri", uri, error) &&
        !OptionValue(argc, argv, i, "--listen", listen, error) &&
        !OptionValue(argc, argv, i, "--max-streams", maxStreamsText, error))
      return UsageError("unknown argument '" + arg + "'");
    if (!error.empty()) return UsageError(error);
  }
  std::string address;
  int port = 0;
  if (!configweb::ParseListenAddress(listen, address, port))
    return UsageError("invalid listen address '" + listen + "' (ADDR:PORT)");
  unsigned int maxStreams = 0;
  if (!common::ParseNumber(maxStreamsText, maxStreams) || maxStreams == 0)
    return UsageError("invalid --max-streams '" + maxStreamsText + "' (a number from 1)");

  sigset_t stopSignals;
  sigemptyset(&stopSignals);
  sigaddset(&stopSignals, SIGINT);
  sigaddset(&stopSignals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);
  signal(SIGPIPE, SIG_IGN);  // a vanished browser is reported by send, not by a signal

  // The catalogue and the mapper's tables are built before any thread
  // starts; every thread only reads them.
  CreateDescriptors();
  AddOwnerDescriptors();
  common::BuildMapperTables();
  configweb::EventHub hub;
  configweb::DaemonSession session(uri, hub);
  configweb::WebApi api(session);
  configweb::HttpServer server(
      api, hub, [&session] { return session.StatusFrame(); }, maxStreams);
  session.Start();
  if (!server.Start(address, port)) {
    session.Stop();
    return 1;
  }
  printf("configweb: serving http://%s:%d/\n",
         address.find(':') != std::string::npos ? ("[" + address + "]").c_str() : address.c_str(),
         server.GetPort());
  fflush(stdout);

  int received = 0;
  while (sigwait(&stopSignals, &received) != 0) {
  }
  if (zyn::logging::IsVerbose())
    fprintf(stderr, "configweb: %s received, stopping\n",
            received == SIGINT ? "SIGINT" : "SIGTERM");
  server.Stop();
  session.Stop();
  return 0;
}
