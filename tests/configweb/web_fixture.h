// configweb's API and server run in this process against a configd child on
// a free port; requests go over real HTTP on loopback. The helpers read
// JSON replies into property trees and follow an event stream line by line.
#ifndef TESTS_CONFIGWEB_WEB_FIXTURE_H
#define TESTS_CONFIGWEB_WEB_FIXTURE_H

#include <gtest/gtest.h>

#include <boost/property_tree/ptree.hpp>
#include <memory>
#include <string>

#include "config/access/socket.h"
#include "configweb/daemon_session.h"
#include "configweb/event_hub.h"
#include "configweb/http_server.h"
#include "configweb/web_api.h"
#include "tools_fixture.h"

namespace web_test {

constexpr int kEventMs = 10000;  // the longest wait for an event frame

struct HttpReply {
  int status = 0;  // 0: no reply
  std::string body;
  boost::property_tree::ptree json;  // empty when the body is not JSON
  // The status and one member of the JSON body: "200 Store Complete".
  std::string With(const std::string& member) const {
    return std::to_string(status) + " " + json.get<std::string>(member, "(none)");
  }
};

// One request on a new connection to 127.0.0.1:`port`; `raw`, when given,
// is sent as it is instead of a request built from the other arguments.
HttpReply Request(int port, const std::string& method, const std::string& target,
                  const std::string& body = "", const std::string& raw = "");

// A Server-Sent Events stream of configweb, read with deadlines.
class EventStream {
 public:
  bool Open(int port);
  // Reads frames until one whose data contains `text` arrives (true) or
  // `timeoutMs` pass; the frame's data line goes to `data`.
  bool WaitFor(const std::string& text, int timeoutMs, std::string* data = nullptr);
  // Frames read so far that said configd was lost.
  int lostFrames = 0;

 private:
  Socket _socket{Socket::kInternetDomain, Socket::kStream};
  std::string _buffer;
};

// configweb over ConfigctlDaemonTest's running configd.
class WebTest : public tools_test::ConfigctlDaemonTest {
 protected:
  void SetUp() override;
  void TearDown() override;
  HttpReply Get(const std::string& target) { return Request(server->GetPort(), "GET", target); }
  HttpReply Put(const std::string& target, const std::string& body) {
    return Request(server->GetPort(), "PUT", target, body);
  }
  HttpReply Post(const std::string& target, const std::string& body = "") {
    return Request(server->GetPort(), "POST", target, body);
  }
  // Opens `stream` on this server (or on `port`) and reads up to its
  // "connected" frame.
  bool OpenStream(EventStream& stream, int port = 0) {
    return stream.Open(port != 0 ? port : server->GetPort()) &&
           stream.WaitFor("\"connected\":true", kEventMs);
  }
  // Runs configctl `set` with a number appended to its last word, a new one
  // each time, until a frame holding `text` arrives on `stream` (true) or
  // fifty have gone unheard: configd takes an event registration
  // asynchronously, so the first changes may come before it.
  bool SetUntilHeard(EventStream& stream, std::vector<std::string> set, const std::string& text,
                     std::string* data = nullptr) {
    set.insert(set.begin(), "set");
    const std::string last = set.back();
    for (int value = 900; value > 850; --value) {
      set.back() = last + std::to_string(value);
      Ctl(set);
      if (stream.WaitFor(text, 200, data)) return true;
    }
    return false;
  }

  configweb::EventHub hub;
  std::unique_ptr<configweb::DaemonSession> session;
  std::unique_ptr<configweb::WebApi> api;
  std::unique_ptr<configweb::HttpServer> server;
};

}  // namespace web_test

#endif  // TESTS_CONFIGWEB_WEB_FIXTURE_H
