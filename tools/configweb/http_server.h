// HttpServer is configweb's HTTP/1.1 server (Boost.Beast over blocking
// sockets): an accept thread, one thread per connection, and a watchdog
// thread that shuts down any connection whose read or write has outlived
// its deadline, so a stalled or silent client cannot hold a thread for
// ever. Requests go to WebApi; GET /api/events becomes a Server-Sent Events
// stream fed by the EventHub. Headers and bodies are bounded. Streams and
// requests have limits of their own: beyond kMaxConnections connections
// that are not streams a new connection gets 503 and is closed, and beyond
// `maxStreams` open streams a new stream request gets 503; open streams
// never keep a request out.
//
// Ownership: the server owns its connections and their threads; the API, the
// hub and the greeting callback are the caller's and must outlive Stop.
// Locks: _lock guards the connection list. Start and Stop belong to one
// controlling thread.
#ifndef TOOLS_CONFIGWEB_HTTP_SERVER_H
#define TOOLS_CONFIGWEB_HTTP_SERVER_H

#include <pthread.h>

#include <atomic>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <condition_variable>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace configweb {

class EventHub;
class WebApi;

class HttpServer {
 public:
  static constexpr size_t kMaxConnections = 64;
  static constexpr size_t kDefaultMaxStreams = 64;
  static constexpr size_t kHeaderLimit = 8 * 1024;
  static constexpr size_t kBodyLimit = 8 * 1024;
  static constexpr long kReadTimeoutMs = 30000;
  static constexpr long kWriteTimeoutMs = 10000;
  // A stream with nothing to say sends a comment this often, which also
  // finds clients that have gone away.
  static constexpr long kStreamIdleMs = 15000;
  static constexpr size_t kThreadStackSize = 256 * 1024;

  // `greeting` gives the frame every new stream starts with.
  HttpServer(WebApi& api, EventHub& hub, std::function<std::string()> greeting,
             size_t maxStreams = kDefaultMaxStreams);
  ~HttpServer();
  HttpServer(const HttpServer&) = delete;
  HttpServer& operator=(const HttpServer&) = delete;

  // Listens on `address` (an IPv4 or IPv6 literal) and `port` (0 lets the
  // system choose) and starts serving. False with a message on standard
  // error, nothing left running.
  bool Start(const std::string& address, int port);
  // The port listened on; valid after a successful Start.
  int GetPort() const { return _port; }
  // Ends the streams, every connection and the threads.
  void Stop();

 private:
  struct Connection {
    explicit Connection(boost::asio::io_context& context) : socket(context) {}
    boost::asio::ip::tcp::socket socket;
    int fd = -1;
    std::atomic<long long> deadlineMs{0};  // steady clock; 0: none
    std::atomic<bool> finished{false};
    pthread_t thread{};
    HttpServer* server = nullptr;
  };

  static void* ConnectionEntry(void* arg);
  void AcceptLoop();
  void WatchLoop();
  void Serve(Connection& connection);
  void Stream(Connection& connection);
  bool WriteAll(Connection& connection, const std::string& bytes);
  // Joins the threads of finished connections; call with _lock held.
  void ReapLocked();

  WebApi& _api;
  EventHub& _hub;
  std::function<std::string()> _greeting;
  const size_t _maxStreams;
  boost::asio::io_context _context;
  boost::asio::ip::tcp::acceptor _acceptor;
  int _port = 0;
  int _listenFd = -1;
  std::thread _acceptThread;
  std::thread _watchThread;

  std::mutex _lock;
  std::condition_variable _wake;
  std::list<std::unique_ptr<Connection>> _connections;  // guarded by _lock
  size_t _streams = 0;     // connections serving a stream; guarded by _lock
  bool _stopping = false;  // guarded by _lock
};

// Splits "ADDR:PORT" ("[::1]:8080" for IPv6). False when it is malformed.
bool ParseListenAddress(const std::string& text, std::string& address, int& port);

}  // namespace configweb

#endif  // TOOLS_CONFIGWEB_HTTP_SERVER_H
