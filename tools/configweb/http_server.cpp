#include "configweb/http_server.h"

#include <sys/socket.h>

#include <boost/asio/ip/address.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http.hpp>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>

#include "common/parameters.h"
#include "configweb/event_hub.h"
#include "configweb/web_api.h"

namespace configweb {

namespace http = boost::beast::http;
using boost::asio::ip::tcp;

namespace {

constexpr long kWatchMs = 200;
constexpr int kBacklog = 64;

long long NowMs() {
  return std::chrono::duration_cast<std::chrono::milliseconds>(
             std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

// The reply to a request that could not be read, and a connection refused
// for want of room; both close the connection.
std::string PlainReply(int status, const char* reason, const std::string& message) {
  std::string body = "{\"error\":\"" + message + "\"}";
  return "HTTP/1.1 " + std::to_string(status) + " " + reason +
         "\r\nContent-Type: application/json\r\nConnection: close\r\nContent-Length: " +
         std::to_string(body.size()) + "\r\n\r\n" + body;
}

}  // namespace

bool ParseListenAddress(const std::string& text, std::string& address, int& port) {
  size_t colon = text.rfind(':');
  if (colon == std::string::npos || colon == 0) return false;
  address = text.substr(0, colon);
  if (address.size() >= 2 && address.front() == '[' && address.back() == ']')
    address = address.substr(1, address.size() - 2);
  unsigned int number = 0;
  if (!common::ParseNumber(text.substr(colon + 1), number) || number > 65535) return false;
  port = static_cast<int>(number);
  return !address.empty();
}

HttpServer::HttpServer(WebApi& api, EventHub& hub, std::function<std::string()> greeting,
                       size_t maxStreams)
    : _api(api),
      _hub(hub),
      _greeting(std::move(greeting)),
      _maxStreams(maxStreams),
      _acceptor(_context) {}

HttpServer::~HttpServer() { Stop(); }

bool HttpServer::Start(const std::string& address, int port) {
  boost::system::error_code ec;
  boost::asio::ip::address ip = boost::asio::ip::make_address(address, ec);
  if (ec) {
    fprintf(stderr, "configweb: '%s' is not an IP address\n", address.c_str());
    return false;
  }
  tcp::endpoint endpoint(ip, static_cast<unsigned short>(port));
  _acceptor.open(endpoint.protocol(), ec);
  if (!ec) _acceptor.set_option(tcp::acceptor::reuse_address(true), ec);
  if (!ec) _acceptor.bind(endpoint, ec);
  if (!ec) _acceptor.listen(kBacklog, ec);
  if (!ec) _port = _acceptor.local_endpoint(ec).port();
  if (ec) {
    fprintf(stderr, "configweb: cannot listen on %s port %d: %s\n", address.c_str(), port,
            ec.message().c_str());
    _acceptor.close(ec);
    return false;
  }
  _listenFd = _acceptor.native_handle();
  _stopping = false;
  _acceptThread = std::thread(&HttpServer::AcceptLoop, this);
  _watchThread = std::thread(&HttpServer::WatchLoop, this);
  return true;
}

void HttpServer::Stop() {
  if (!_acceptThread.joinable()) return;
  {
    std::lock_guard<std::mutex> hold(_lock);
    _stopping = true;
  }
  _wake.notify_all();
  _hub.Close();
  // Wakes the blocked accept; the acceptor itself stays the accept thread's.
  ::shutdown(_listenFd, SHUT_RDWR);
  _acceptThread.join();
  _watchThread.join();
  std::unique_lock<std::mutex> hold(_lock);
  for (const std::unique_ptr<Connection>& connection : _connections)
    if (!connection->finished) ::shutdown(connection->fd, SHUT_RDWR);
  while (!_connections.empty()) {
    Connection* connection = _connections.front().get();
    hold.unlock();
    pthread_join(connection->thread, nullptr);
    hold.lock();
    _connections.pop_front();
  }
  hold.unlock();
  boost::system::error_code ignored;
  _acceptor.close(ignored);
}

void HttpServer::ReapLocked() {
  for (auto it = _connections.begin(); it != _connections.end();) {
    if ((*it)->finished) {
      pthread_join((*it)->thread, nullptr);
      it = _connections.erase(it);
    } else {
      ++it;
    }
  }
}

void HttpServer::AcceptLoop() {
  for (;;) {
    auto connection = std::make_unique<Connection>(_context);
    boost::system::error_code ec;
    _acceptor.accept(connection->socket, ec);
    std::unique_lock<std::mutex> hold(_lock);
    if (_stopping) return;
    if (ec) {
      // Out of descriptors or memory: wait a little rather than spin.
      fprintf(stderr, "configweb: accept failed: %s\n", ec.message().c_str());
      _wake.wait_for(hold, std::chrono::milliseconds(kWatchMs), [this] { return _stopping; });
      continue;
    }
    ReapLocked();
    connection->fd = connection->socket.native_handle();
    connection->server = this;
    if (_connections.size() - _streams >= kMaxConnections) {
      hold.unlock();
      boost::asio::write(
          connection->socket,
          boost::asio::buffer(PlainReply(503, "Service Unavailable", "too many connections")), ec);
      continue;
    }
    connection->socket.set_option(tcp::no_delay(true), ec);
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, kThreadStackSize);
    int rc = pthread_create(&connection->thread, &attributes, ConnectionEntry, connection.get());
    pthread_attr_destroy(&attributes);
    if (rc != 0) {
      fprintf(stderr, "configweb: cannot start a connection thread: %s\n", strerror(rc));
      continue;
    }
    _connections.push_back(std::move(connection));
  }
}

void HttpServer::WatchLoop() {
  std::unique_lock<std::mutex> hold(_lock);
  while (!_wake.wait_for(hold, std::chrono::milliseconds(kWatchMs), [this] { return _stopping; })) {
    long long now = NowMs();
    for (const std::unique_ptr<Connection>& connection : _connections) {
      long long deadline = connection->deadlineMs;
      if (!connection->finished && deadline != 0 && now > deadline)
        ::shutdown(connection->fd, SHUT_RDWR);
    }
    ReapLocked();
  }
}

void* HttpServer::ConnectionEntry(void* arg) {
  Connection* connection = static_cast<Connection*>(arg);
  HttpServer* server = connection->server;
  server->Serve(*connection);
  // Closed under the lock, so that the watchdog never shuts down a
  // descriptor number that has been reused.
  std::lock_guard<std::mutex> hold(server->_lock);
  boost::system::error_code ignored;
  connection->socket.close(ignored);
  connection->finished = true;
  return nullptr;
}

bool HttpServer::WriteAll(Connection& connection, const std::string& bytes) {
  connection.deadlineMs = NowMs() + kWriteTimeoutMs;
  boost::system::error_code ec;
  boost::asio::write(connection.socket, boost::asio::buffer(bytes), ec);
  connection.deadlineMs = 0;
  return !ec;
}

void HttpServer::Serve(Connection& connection) {
  boost::beast::flat_buffer buffer;
  for (;;) {
    http::request_parser<http::string_body> parser;
    parser.header_limit(kHeaderLimit);
    // A preset file is the one body allowed to be large: the header is read
    // under the larger limit, which then narrows for every other request.
    parser.body_limit(WebApi::kPresetFileLimit);
    boost::system::error_code ec;
    connection.deadlineMs = NowMs() + kReadTimeoutMs;
    http::read_header(connection.socket, buffer, parser, ec);
    if (!ec && !TakesPresetFile(std::string(parser.get().method_string()),
                                std::string(parser.get().target()))) {
      if (parser.content_length().value_or(0) > kBodyLimit) ec = http::error::body_limit;
      parser.body_limit(kBodyLimit);
    }
    if (!ec) http::read(connection.socket, buffer, parser, ec);
    connection.deadlineMs = 0;
    if (ec == http::error::end_of_stream) return;
    if (ec == http::error::header_limit) {
      WriteAll(connection, PlainReply(431, "Request Header Fields Too Large", "headers too large"));
      return;
    }
    if (ec == http::error::body_limit) {
      WriteAll(connection, PlainReply(413, "Payload Too Large", "request body too large"));
      return;
    }
    if (ec.category() == http::make_error_code(http::error::bad_target).category()) {
      WriteAll(connection, PlainReply(400, "Bad Request", "malformed request"));
      return;
    }
    if (ec) return;  // reset, shut down by the watchdog or by Stop
    http::request<http::string_body>& request = parser.get();
    std::string target(request.target());
    if (request.method() == http::verb::get &&
        target.substr(0, target.find('?')) == "/api/events") {
      bool room;
      {
        std::lock_guard<std::mutex> hold(_lock);
        room = _streams < _maxStreams;
        if (room) ++_streams;
      }
      if (!room) {
        WriteAll(connection, PlainReply(503, "Service Unavailable", "too many event streams"));
        return;
      }
      Stream(connection);
      std::lock_guard<std::mutex> hold(_lock);
      --_streams;
      return;
    }
    WebReply reply = _api.Handle(std::string(request.method_string()), target, request.body());
    http::response<http::string_body> response{static_cast<http::status>(reply.status),
                                               request.version()};
    response.set(http::field::server, "configweb");
    response.set(http::field::content_type, reply.contentType);
    response.keep_alive(request.keep_alive());
    if (reply.etag.empty()) {
      response.set(http::field::cache_control, "no-store");
    } else {
      // Kept by the browser, and asked again each time with its validator.
      response.set(http::field::cache_control, "no-cache");
      response.set(http::field::etag, reply.etag);
      if (request[http::field::if_none_match] == reply.etag) {
        response.result(http::status::not_modified);
        reply.body.clear();
      }
    }
    response.body() = std::move(reply.body);
    response.prepare_payload();
    connection.deadlineMs = NowMs() + kWriteTimeoutMs;
    http::write(connection.socket, response, ec);
    connection.deadlineMs = 0;
    if (ec || !response.keep_alive()) return;
  }
}

void HttpServer::Stream(Connection& connection) {
  std::shared_ptr<Subscriber> subscriber = _hub.Subscribe();
  if (subscriber == nullptr) {
    WriteAll(connection, PlainReply(503, "Service Unavailable", "stopping"));
    return;
  }
  // "retry" makes a page's event source come back within a second.
  std::string head =
      "HTTP/1.1 200 OK\r\nServer: configweb\r\nContent-Type: text/event-stream\r\n"
      "Cache-Control: no-store\r\nConnection: close\r\n\r\nretry: 1000\n\n" +
      _greeting();
  bool open = WriteAll(connection, head);
  // Until Unsubscribe returns, the socket is open: the connection closes it
  // only after this.
  int fd = connection.fd;
  subscriber->SetDirectWriter([fd](const char* bytes, size_t length) {
    return static_cast<long>(::send(fd, bytes, length, MSG_DONTWAIT | MSG_NOSIGNAL));
  });
  // Next gives an idle comment when nothing came for a while, which also
  // finds clients that have gone away.
  std::string frames;
  while (open && subscriber->Next(frames, kStreamIdleMs)) {
    open = WriteAll(connection, frames);
    subscriber->Written();
  }
  _hub.Unsubscribe(subscriber);
}

}  // namespace configweb
