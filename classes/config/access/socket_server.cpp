#include "config/access/socket_server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "config/access/socket.h"
#include "config/access/socket_connection.h"
#include "support/logger.h"

namespace zyn {
namespace config {
namespace access {

SocketServer::SocketServer(int port)
    : _socket(nullptr), _stop(false), _port(port), _listen_fd(-1), _thread() {}

SocketServer::~SocketServer() { delete _socket; }

bool SocketServer::Init() {
  delete _socket;
  _socket = new Socket(Socket::kInternetDomain, Socket::kStream);
  if (_socket == nullptr) {
    fprintf(stderr, "SocketServer::Init - failed to new Socket\n");
    return false;
  }
  if (!_socket->create()) {
    fprintf(stderr, "SocketServer::Init - failed to create Socket\n");
    return false;
  }
  in_addr parsed{};
  if (!_listen_address.empty() && inet_pton(AF_INET, _listen_address.c_str(), &parsed) != 1) {
    fprintf(stderr, "SocketServer::Init - invalid listening address %s\n", _listen_address.c_str());
    return false;
  }
  if (!_socket->bind(_listen_address, _port)) {
    fprintf(stderr, "SocketServer::Init - failed to bind Socket\n");
    return false;
  }
  if (!_socket->listen()) {
    fprintf(stderr, "SocketServer::Init - listen failed\n");
    return false;
  }
  _listen_fd = _socket->get_fd();
  // Port 0 asks the system for a free port; remember which one it gave.
  sockaddr_in bound{};
  socklen_t length = sizeof bound;
  if (getsockname(_listen_fd, reinterpret_cast<sockaddr*>(&bound), &length) == 0)
    _port = ntohs(bound.sin_port);
  return true;
}

bool SocketServer::Start() {
  int rc = pthread_create(&_thread, nullptr, pthread_start, this);
  if (rc != 0) {
    errno = rc;
    perror("configd::main");
    fprintf(stderr, "SocketServer::Start - pthread_create failed\n");
    return false;
  }
  return true;
}

void* SocketServer::pthread_start(void* arg) {
  SocketServer* server = static_cast<SocketServer*>(arg);
  server->Run();
  delete server;
  return nullptr;
}

void SocketServer::Run() {
  while (!_stop) {
    SocketConnection* connection = WaitForConnection();
    if (connection == nullptr) {
      // A failed accept is retried after a growing pause, not in a spin.
      if (!_stop && _gate.AcceptDelayMs() > 0) usleep(_gate.AcceptDelayMs() * 1000);
      continue;
    }
    if (!connection->Start()) {
      fprintf(stderr, "SocketServer::Run - unable to start connection\n");
      delete connection;
      if (_stop) break;
    }
  }
  if (zyn::logging::IsVerbose()) fprintf(stderr, "SocketServer::Run - exiting\n");
}

void SocketServer::Stop() {
  if (zyn::logging::IsVerbose()) fprintf(stderr, "SocketServer::Stop - called\n");
  // Shutting the listening socket down makes the waiting accept fail; the
  // server thread closes it when it leaves. The flag is set last: once it
  // is, the thread may delete the server at any moment.
  _closing = true;
  if (_listen_fd >= 0) ::shutdown(_listen_fd, SHUT_RDWR);
  _stop = true;
}

SocketConnection* SocketServer::WaitForConnection() {
  // Waits for a connection (or the shutdown of Stop) first, so that a clean
  // stop does not report the accept it interrupts as a failure.
  pollfd ready{_listen_fd, POLLIN, 0};
  while (poll(&ready, 1, -1) < 0 && errno == EINTR) {
  }
  if (_closing || _gate.RefuseWhileExhausted(_listen_fd)) return nullptr;
  Socket* accepted = new Socket(Socket::kInternetDomain, Socket::kStream);
  if (!_socket->accept(accepted)) {
    delete accepted;
    _gate.RefuseOnFailedAccept(_listen_fd);
    return nullptr;
  }
  _gate.Accepted();
  if (_gate.RefuseOverLimit(SocketConnection::LiveCount())) {
    // Closed before a connection thread or buffer exists: the clients
    // already served keep all they had.
    delete accepted;
    return nullptr;
  }
  auto* connection = new SocketConnection(accepted);
  connection->SetReadTimeoutMs(_read_timeout_ms);
  return connection;
}

}  // namespace access
}  // namespace config
}  // namespace zyn
