#include "web_fixture.h"

#include <poll.h>
#include <sys/socket.h>

#include <boost/property_tree/json_parser.hpp>
#include <chrono>
#include <sstream>

#include "config/descriptors/owner_params.h"
#include "config/mapper/tundra_param_mapper.h"

namespace web_test {

namespace {

constexpr int kRequestMs = 20000;
constexpr long kCheckMs = 50;  // quick reconnection for the tests

// Connects `socket` to 127.0.0.1:`port` and sends `bytes` whole.
bool ConnectAndSend(Socket& socket, int port, const std::string& bytes) {
  int length = static_cast<int>(bytes.size());
  return socket.create() && socket.connect("127.0.0.1", port) &&
         socket.sendall(bytes.data(), &length);
}

// Appends what arrives within `timeoutMs`; false on time-out or end.
bool ReadSome(int fd, std::string& buffer, int timeoutMs) {
  pollfd wait{fd, POLLIN, 0};
  if (poll(&wait, 1, timeoutMs) <= 0) return false;
  char chunk[4096];
  ssize_t n = recv(fd, chunk, sizeof chunk, 0);
  if (n <= 0) return false;
  buffer.append(chunk, static_cast<size_t>(n));
  return true;
}

}  // namespace

HttpReply Request(int port, const std::string& method, const std::string& target,
                  const std::string& body, const std::string& raw) {
  HttpReply reply;
  std::string request = raw;
  if (request.empty()) {
    request = method + " " + target + " HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: close\r\n";
    if (!body.empty()) request += "Content-Length: " + std::to_string(body.size()) + "\r\n";
    request += "\r\n" + body;
  }
  std::string in;
  Socket socket(Socket::kInternetDomain, Socket::kStream);
  if (ConnectAndSend(socket, port, request)) {
    while (ReadSome(socket.get_fd(), in, kRequestMs)) {
    }
  }
  if (in.compare(0, 9, "HTTP/1.1 ") != 0) return reply;
  reply.status = std::stoi(in.substr(9, 3));
  size_t head = in.find("\r\n\r\n");
  reply.body = head == std::string::npos ? "" : in.substr(head + 4);
  try {
    std::istringstream json(reply.body);
    boost::property_tree::read_json(json, reply.json);
  } catch (const boost::property_tree::json_parser_error&) {
    reply.json.clear();
  }
  return reply;
}

bool EventStream::Open(int port) {
  return ConnectAndSend(_socket, port, "GET /api/events HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n");
}

bool EventStream::WaitFor(const std::string& text, int timeoutMs, std::string* data) {
  auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
  for (;;) {
    size_t end;
    while ((end = _buffer.find("\n\n")) != std::string::npos) {
      std::string frame = _buffer.substr(0, end);
      _buffer.erase(0, end + 2);
      size_t line = frame.find("data: ");
      if (frame.find("\"connected\":false") != std::string::npos) ++lostFrames;
      if (line == std::string::npos || frame.find(text, line) == std::string::npos) continue;
      if (data != nullptr) *data = frame.substr(line + 6);
      return true;
    }
    auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        deadline - std::chrono::steady_clock::now());
    if (left.count() <= 0 || !ReadSome(_socket.get_fd(), _buffer, static_cast<int>(left.count())))
      return false;
  }
}

void WebTest::SetUp() {
  ConfigctlDaemonTest::SetUp();
  if (HasFatalFailure()) return;
  AddOwnerDescriptors();
  tundra::mapper::TundraParamMapper::Initialize();
  session = std::make_unique<configweb::DaemonSession>(daemon.Uri(), hub, kCheckMs);
  api = std::make_unique<configweb::WebApi>(*session);
  server =
      std::make_unique<configweb::HttpServer>(*api, hub, [this] { return session->StatusFrame(); });
  ASSERT_TRUE(session->Start());
  ASSERT_TRUE(server->Start("127.0.0.1", 0));
}

void WebTest::TearDown() {
  if (server) server->Stop();
  if (session) session->Stop();
}

}  // namespace web_test
