// configweb's request handling: the input is what a browser sends on one
// connection, read request by request with the parser and limits of
// configweb's server and answered by its API, which talks to an owner run
// in this process (configd's own classes on a private state folder) over a
// real link. Every answer must be a known status with a JSON body where it
// says JSON. The event stream is the server's, not the API's, and is left
// out.
#include <stdlib.h>

#include <boost/beast/http.hpp>
#include <string>

#include "common/json.h"
#include "common/parameters.h"
#include "config/owner/daemon.h"
#include "configweb/daemon_session.h"
#include "configweb/event_hub.h"
#include "configweb/http_server.h"
#include "configweb/web_api.h"

namespace http = boost::beast::http;

namespace {

// The owner, the link to it and the API, made once and kept for the run.
struct Web {
  ConfigDaemon daemon;
  configweb::EventHub hub;
  std::unique_ptr<configweb::DaemonSession> session;
  std::unique_ptr<configweb::WebApi> api;
};

Web* g_web = nullptr;

Web* Start() {
  static char folder[] = "/tmp/configweb-fuzz.XXXXXX";
  if (mkdtemp(folder) == nullptr) abort();
  auto* web = new Web();  // lives until the process ends
  DaemonOptions options;
  options.port = options.tcpPort = options.udpPort = 0;
  options.stateDir = std::string(folder) + "/state";
  options.flushMs = 1000;
  if (!web->daemon.Start(options)) abort();
  web->session = std::make_unique<configweb::DaemonSession>(
      "socket://127.0.0.1:" + std::to_string(web->daemon.GetPort()) + "/configid=0", web->hub);
  if (!web->session->Start()) abort();
  web->api = std::make_unique<configweb::WebApi>(*web->session);
  // The link's and the owner's threads end before the catalogue's and the
  // mapper's tables are destroyed at exit.
  atexit([] {
    g_web->session->Stop();
    g_web->daemon.Stop();
  });
  return web;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  common::BuildMapperTables();
  g_web = Start();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const char* next = reinterpret_cast<const char*>(data);
  size_t left = size;
  // At most a few requests per input, as one kept-alive connection sends.
  for (int n = 0; n < 4 && left > 0; ++n) {
    http::request_parser<http::string_body> parser;
    parser.header_limit(configweb::HttpServer::kHeaderLimit);
    parser.body_limit(configweb::WebApi::kPresetFileLimit);
    parser.eager(true);
    boost::system::error_code ec;
    while (!ec && !parser.is_done() && left > 0) {
      size_t used = parser.put(boost::asio::const_buffer(next, left), ec);
      if (ec == http::error::need_more) ec = {};
      if (used == 0 && !ec) break;
      next += used;
      left -= used;
    }
    if (ec || !parser.is_done()) return 0;
    http::request<http::string_body>& request = parser.get();
    std::string target(request.target());
    if (target.substr(0, target.find('?')) == "/api/events") continue;
    configweb::WebReply reply =
        g_web->api->Handle(std::string(request.method_string()), target, request.body());
    if (reply.status < 200 || reply.status > 599) abort();
    if (reply.contentType == "application/json" &&
        common::Json::parse(reply.body, nullptr, false).is_discarded())
      abort();
  }
  return 0;
}
