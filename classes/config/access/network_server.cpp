#include "config/access/network_server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <vector>

#include "config/access/network_tcp_connection.h"
#include "config/access/network_udp_connection.h"
#include "config/access/socket.h"
#include "support/logger.h"
#include "support/rate_limited_log.h"
#include "support/semaphore_helper.h"

namespace zyn {
namespace boxline {
namespace config {
namespace access {

NetworkServer::NetworkServer(int f, int t, int p)
    : stop(0),
      thread(),
      socket(nullptr),
      family(f),
      type(t),
      port(p),
      udpConnection(nullptr),
      _fd(-1),
      _multicast_port(NetworkUDPConnection::kDefaultEventPort),
      _event_interface(NetworkUDPConnection::kDefaultEventInterface),
      _udp_store_idle_ms(NetworkUDPConnection::kDefaultStoreIdleMs) {
  SemaphoreHelper::InitSemaphore(&_stop_lock);
}

NetworkServer::~NetworkServer() {
  delete socket;
  SemaphoreHelper::DestroySemaphore(&_stop_lock);
}

bool NetworkServer::Init() {
  delete socket;
  _fd = -1;
  socket = new Socket(family, type);
  if (socket == nullptr) {
    fprintf(stderr, "NetworkServer::Init - failed to new Socket\n");
    return false;
  }
  if (!socket->create()) {
    fprintf(stderr, "NetworkServer::Init - failed to create Socket\n");
    return false;
  }
  if (!socket->bind(_listen_address, port)) {
    fprintf(stderr, "NetworkServer::Init - failed to bind Socket\n");
    return false;
  }
  if (type == SOCK_STREAM && !socket->listen()) {
    fprintf(stderr, "NetworkServer::Init - listen failed\n");
    return false;
  }
  _fd = socket->get_fd();
  // Port 0 asks the system for a free port; remember which one it gave.
  sockaddr_in bound{};
  socklen_t length = sizeof bound;
  if (getsockname(_fd, reinterpret_cast<sockaddr*>(&bound), &length) == 0)
    port = ntohs(bound.sin_port);
  return true;
}

bool NetworkServer::Start() {
  // Cleared before the thread exists, so a Stop that comes before the
  // thread runs is not lost.
  stop = 0;
  int rc = pthread_create(&thread, nullptr, pthread_start, this);
  if (rc != 0) {
    errno = rc;
    perror("configd::main");
    fprintf(stderr, "NetworkServer::Start - pthread_create failed\n");
    return false;
  }
  return true;
}

void* NetworkServer::pthread_start(void* arg) {
  NetworkServer* server = static_cast<NetworkServer*>(arg);
  server->Run();
  // A Stop in progress finishes before the server goes.
  { SemaphoreHelper hold(&server->_stop_lock); }
  delete server;
  return nullptr;
}

void NetworkServer::Stop() {
  SemaphoreHelper hold(&_stop_lock);
  stop = 1;
  // Shutting the socket down ends a blocked accept or receive; the server
  // thread closes it when it deletes the server.
  if (_fd >= 0) ::shutdown(_fd, SHUT_RDWR);
}

void NetworkServer::Run() {
  if (type == SOCK_STREAM) {
    RunStream();
  } else {
    RunDatagram();
  }
  if (zyn::logging::IsVerbose()) fprintf(stderr, "NetworkServer::Run - exiting\n");
}

void NetworkServer::RunStream() {
  while (!stop) {
    // A failed accept is retried after a growing pause, not in a spin.
    if (!WaitForConnection() && !stop && _gate.AcceptDelayMs() > 0)
      usleep(_gate.AcceptDelayMs() * 1000);
  }
}

void NetworkServer::RunDatagram() {
  if (!socket->set_buffer_size(SO_SNDBUF, NetworkUDPConnection::kSocketBufferSize) ||
      !socket->set_buffer_size(SO_RCVBUF, NetworkUDPConnection::kSocketBufferSize))
    return;
  udpConnection = new NetworkUDPConnection(socket);
  if (udpConnection == nullptr) {
    fprintf(stderr, "NetworkServer::Run - unable to create socket connection\n");
    return;
  }
  udpConnection->SetMulticastPort(_multicast_port);
  udpConnection->SetEventInterface(_event_interface);
  udpConnection->SetStoreIdleMs(_udp_store_idle_ms);
  // Idle stores are looked for a few times per expiry, at least once a
  // second; the receive wakes up for it even when no datagram comes.
  long sweepMs = 1000;
  if (_udp_store_idle_ms > 0) sweepMs = std::max(10L, std::min(sweepMs, _udp_store_idle_ms / 4));
  timeval wake{sweepMs / 1000, (sweepMs % 1000) * 1000};
  if (setsockopt(_fd, SOL_SOCKET, SO_RCVTIMEO, &wake, sizeof wake) != 0)
    perror("NetworkServer::Run - unable to set the receive time-out");
  auto nextSweep = std::chrono::steady_clock::now() + std::chrono::milliseconds(sweepMs);
  // Touched only as far as each datagram reaches.
  std::vector<char> buffer(kDatagramBufferSize);
  while (!stop) {
    WaitForDatagram(buffer.data());
    auto now = std::chrono::steady_clock::now();
    if (now < nextSweep) continue;
    udpConnection->ExpireIdleStores();
    nextSweep = now + std::chrono::milliseconds(sweepMs);
  }
  delete udpConnection;
  udpConnection = nullptr;
}

bool NetworkServer::WaitForConnection() {
  // Waits for a client (or the shutdown of Stop) before accepting, so that a
  // clean stop does not report the accept it would interrupt as a failure.
  pollfd ready{_fd, POLLIN, 0};
  while (poll(&ready, 1, -1) < 0 && errno == EINTR) {
  }
  if (stop) return false;
  if (_gate.RefuseWhileExhausted(_fd)) return true;
  Socket* accepted = new Socket(Socket::kInternetDomain, Socket::kStream);
  if (!socket->accept(accepted)) {
    int error = errno;
    delete accepted;
    if (_gate.RefuseOnFailedAccept(_fd)) return true;
    RateLimitedLog::Report("NetworkServer::WaitForConnection - accept failed: %s", strerror(error));
    return false;
  }
  _gate.Accepted();
  if (_gate.RefuseOverLimit(NetworkTCPConnection::LiveCount())) {
    // Closed before a connection thread exists: the clients already served
    // keep all they had.
    delete accepted;
    return true;
  }
  NetworkTCPConnection* connection = new NetworkTCPConnection(accepted);
  connection->SetReadTimeoutMs(_read_timeout_ms);
  if (!connection->Start()) {
    fprintf(stderr, "NetworkServer::Run - unable to start connection\n");
    delete connection;
  }
  return true;
}

bool NetworkServer::WaitForDatagram(char* buffer) {
  sockaddr_in from{};
  socklen_t length = sizeof from;
  ssize_t n =
      ::recvfrom(_fd, buffer, kDatagramBufferSize, 0, reinterpret_cast<sockaddr*>(&from), &length);
  if (n < 0 && (errno == EINTR || errno == EAGAIN || errno == EWOULDBLOCK)) return true;
  if (n == 0 && stop) {
    if (zyn::logging::IsVerbose())
      fprintf(stderr, "NetworkServer::WaitForDatagram - recvfrom shutting down normally\n");
    return false;
  }
  if (n < 0) {
    RateLimitedLog::Report("NetworkServer::WaitForDatagram - recvfrom error condition: %s",
                           strerror(errno));
    return false;
  }
  udpConnection->ProcessMessages(buffer, static_cast<int>(n), from);
  return true;
}

}  // namespace access
}  // namespace config
}  // namespace boxline
}  // namespace zyn
