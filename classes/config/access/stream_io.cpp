#include "config/access/stream_io.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>

namespace zyn {
namespace config {
namespace access {

long RecvExact(int fd, char* buffer, size_t length) {
  size_t got = 0;
  while (got < length) {
    ssize_t n = ::recv(fd, buffer + got, length - got, MSG_NOSIGNAL);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return -1;
    if (n == 0) break;
    got += static_cast<size_t>(n);
  }
  return static_cast<long>(got);
}

long RecvExactBy(int fd, char* buffer, size_t length,
                 std::chrono::steady_clock::time_point deadline, bool* timedOut) {
  *timedOut = false;
  size_t got = 0;
  while (got < length) {
    long long left = std::chrono::duration_cast<std::chrono::milliseconds>(
                         deadline - std::chrono::steady_clock::now())
                         .count();
    pollfd ready{fd, POLLIN, 0};
    // Bytes already there are taken even when the deadline has passed.
    int polled = ::poll(&ready, 1, static_cast<int>(std::clamp<long long>(left, 0, INT_MAX)));
    if (polled < 0 && errno == EINTR) continue;
    if (polled < 0) return -1;
    if (polled == 0) {
      *timedOut = true;
      break;
    }
    ssize_t r = ::recv(fd, buffer + got, length - got, MSG_NOSIGNAL);
    if (r < 0 && errno == EINTR) continue;
    if (r < 0) return -1;
    if (r == 0) break;
    got += static_cast<size_t>(r);
  }
  return static_cast<long>(got);
}

long StreamReader::Read(char* buffer, size_t length) {
  size_t got = 0;
  while (got < length) {
    if (_start == _end) {
      if (_buffer.empty()) _buffer.resize(kCapacity);
      if (_started && _deadline != std::chrono::steady_clock::time_point::max()) {
        long long left = std::chrono::duration_cast<std::chrono::milliseconds>(
                             _deadline - std::chrono::steady_clock::now())
                             .count();
        pollfd ready{_fd, POLLIN, 0};
        int polled =
            ::poll(&ready, 1, static_cast<int>(std::clamp<long long>(left + 1, 0, INT_MAX)));
        if (polled < 0 && errno == EINTR) continue;
        if (polled < 0) return -1;
        if (polled == 0) {
          _timed_out = true;
          break;
        }
      }
      ssize_t n = ::recv(_fd, _buffer.data(), _buffer.size(), MSG_NOSIGNAL);
      if (n < 0 && errno == EINTR) continue;
      if (n < 0) return -1;
      if (n == 0) break;
      _start = 0;
      _end = static_cast<size_t>(n);
    }
    if (!_started) {
      _started = true;
      _deadline = DeadlineAfter(_timeout_ms);
    }
    size_t take = std::min(length - got, _end - _start);
    memcpy(buffer + got, _buffer.data() + _start, take);
    _start += take;
    got += take;
  }
  return static_cast<long>(got);
}

bool SendAll(int fd, const char* buffer, size_t length) {
  size_t sent = 0;
  while (sent < length) {
    ssize_t n = ::send(fd, buffer + sent, length - sent, MSG_NOSIGNAL);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    sent += static_cast<size_t>(n);
  }
  return true;
}

}  // namespace access
}  // namespace config
}  // namespace zyn
