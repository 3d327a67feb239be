#include "configctl/conformance/probe.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>

namespace configctl {
namespace conformance {

namespace {

constexpr size_t kLargestDatagram = 65536;

using Clock = std::chrono::steady_clock;

int RemainingMs(Clock::time_point deadline) {
  auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
  return left.count() > 0 ? static_cast<int>(left.count()) : 0;
}

bool Address(const std::string& host, int port, sockaddr_in& address) {
  memset(&address, 0, sizeof address);
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<uint16_t>(port));
  return inet_pton(AF_INET, host.c_str(), &address.sin_addr) == 1;
}

}  // namespace

Probe::~Probe() { Close(); }

void Probe::Close() {
  if (_fd >= 0) close(_fd);
  _fd = -1;
}

bool Probe::Open(const std::string& host, int port, bool datagram, int timeoutMs,
                 std::string& error) {
  Close();
  _datagram = datagram;
  sockaddr_in address;
  if (!Address(host, port, address)) {
    error = "not an IPv4 address: " + host;
    return false;
  }
  _fd = socket(AF_INET, (datagram ? SOCK_DGRAM : SOCK_STREAM) | SOCK_CLOEXEC, 0);
  if (_fd < 0) {
    error = std::string("socket: ") + strerror(errno);
    return false;
  }
  // The connect itself is bounded: non-blocking, then a wait for the result.
  int flags = fcntl(_fd, F_GETFL);
  fcntl(_fd, F_SETFL, flags | O_NONBLOCK);
  int result = connect(_fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
  if (result != 0 && errno == EINPROGRESS) {
    pollfd waiting{_fd, POLLOUT, 0};
    int soError = ETIMEDOUT;
    socklen_t length = sizeof soError;
    if (poll(&waiting, 1, timeoutMs) == 1) getsockopt(_fd, SOL_SOCKET, SO_ERROR, &soError, &length);
    errno = soError;
    result = soError == 0 ? 0 : -1;
  }
  if (result != 0) {
    error = "cannot connect to " + host + ":" + std::to_string(port) + ": " + strerror(errno);
    Close();
    return false;
  }
  fcntl(_fd, F_SETFL, flags);
  // Small records go out at once, and a server that stops reading cannot
  // hold a send for longer than an answer may take.
  int on = 1;
  if (!datagram) setsockopt(_fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  timeval limit{timeoutMs / 1000, (timeoutMs % 1000) * 1000};
  setsockopt(_fd, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
  return true;
}

bool Probe::Listen(const std::string& group, int port, std::string& error) {
  Close();
  _datagram = true;
  _fd = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  int on = 1;
  setsockopt(_fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  sockaddr_in address;
  Address("0.0.0.0", port, address);
  ip_mreq membership{};
  inet_pton(AF_INET, group.c_str(), &membership.imr_multiaddr);
  inet_pton(AF_INET, "127.0.0.1", &membership.imr_interface);
  if (_fd < 0 || bind(_fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
      setsockopt(_fd, IPPROTO_IP, IP_ADD_MEMBERSHIP, &membership, sizeof membership) != 0) {
    error = "cannot join " + group + " on port " + std::to_string(port) + ": " + strerror(errno);
    Close();
    return false;
  }
  return true;
}

bool Probe::Send(const std::vector<char>& bytes) {
  size_t sent = 0;
  while (_fd >= 0 && sent < bytes.size()) {
    ssize_t n = send(_fd, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0 || (_datagram && static_cast<size_t>(n) != bytes.size())) return false;
    sent += static_cast<size_t>(n);
  }
  return _fd >= 0;
}

bool Probe::Readable(int timeoutMs) {
  pollfd waiting{_fd, POLLIN, 0};
  int ready;
  do {
    ready = poll(&waiting, 1, timeoutMs);
  } while (ready < 0 && errno == EINTR);
  return ready == 1;
}

bool Probe::Receive(size_t size, int timeoutMs, std::vector<char>& out) {
  out.clear();
  if (_fd < 0) return false;
  auto deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
  if (_datagram) {
    if (!Readable(timeoutMs)) return false;
    out.resize(kLargestDatagram);
    ssize_t n = recv(_fd, out.data(), out.size(), 0);
    out.resize(n > 0 ? static_cast<size_t>(n) : 0);
    return n >= 0;
  }
  out.resize(size);
  size_t got = 0;
  while (got < size) {
    if (!Readable(RemainingMs(deadline))) break;
    ssize_t n = recv(_fd, out.data() + got, size - got, 0);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) break;
    got += static_cast<size_t>(n);
  }
  out.resize(got);
  return got == size;
}

bool Probe::Quiet(int timeoutMs) { return _fd >= 0 && !Readable(timeoutMs); }

bool Probe::Ended(int timeoutMs) {
  auto deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
  char discard[4096];
  for (;;) {
    if (!Readable(RemainingMs(deadline))) return false;
    ssize_t n = recv(_fd, discard, sizeof discard, 0);
    if (n == 0 || (n < 0 && errno != EINTR && errno != EAGAIN)) return true;
  }
}

}  // namespace conformance
}  // namespace configctl
