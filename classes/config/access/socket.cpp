#include "config/access/socket.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/select.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <vector>

#include "config/access/dump_context.h"
#include "support/rate_limited_log.h"

static_assert(Socket::kInternetDomain == AF_INET && Socket::kLocalDomain == AF_UNIX,
              "address families");
static_assert(Socket::kStream == SOCK_STREAM && Socket::kDatagram == SOCK_DGRAM, "socket types");
static_assert(sizeof(sockaddr_un) >= Socket::kLocalAddressLength, "local address length");

namespace {

// A length for the system calls; a negative one asks for nothing.
size_t Bytes(int length) { return length > 0 ? static_cast<size_t>(length) : 0; }

}  // namespace

Socket::Socket(int domain, int type) : _domain(domain), _type(type) {
  memset(&_inet_address, 0, sizeof _inet_address);
  memset(&_local_address, 0, sizeof _local_address);
}

Socket::~Socket() { close(); }

bool Socket::create() {
  close();  // a second create replaces the descriptor
  _socket = ::socket(_domain, _type, 0);
  if (_socket == -1) {
    perror("Socket::create - socket() failed");
    return false;
  }
  int on = 1;
  if (_type == kStream && setsockopt(_socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on) == -1) {
    perror("Socket::create setsockopt(TCP_NODELAY) failed");
    return false;
  }
  if (setsockopt(_socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) == -1)
    perror("Socket::create - setsockopt(SO_REUSEADDR) call failed");
  return true;
}

bool Socket::bind(int port) {
  if (_socket < 0) {
    // The missing line break is part of the message.
    fprintf(stderr, "Socket::bind: invalid socketn");
    return false;
  }
  return _domain == kLocalDomain ? bind_local(port) : bind_inet(port);
}

bool Socket::bind(const std::string& host, int port) {
  return bind_inet_address(host.empty() ? htonl(INADDR_ANY) : inet_addr(host.c_str()), port);
}

bool Socket::bind_inet(int port) { return bind_inet_address(htonl(INADDR_ANY), port); }

bool Socket::bind_inet_address(in_addr_t address, int port) {
  _inet_address.sin_family = static_cast<sa_family_t>(_domain);
  _inet_address.sin_port = htons(static_cast<uint16_t>(port));
  _inet_address.sin_addr.s_addr = address;
  if (::bind(_socket, reinterpret_cast<sockaddr*>(&_inet_address), sizeof _inet_address) == -1) {
    perror("Socket::bind_inet");
    return false;
  }
  _port = port;
  return true;
}

std::string Socket::build_local_path(const std::string& /*host*/, int port) {
  char path[64];
  snprintf(path, sizeof path, "/tmp/zyn_%d", port);
  fprintf(stderr, "Local path = %s\n", path);
  return path;
}

bool Socket::bind_local(int port) {
  std::string path = build_local_path(_host, port);
  _local_address.sun_family = static_cast<sa_family_t>(_domain);
  snprintf(_local_address.sun_path, sizeof _local_address.sun_path, "%s", path.c_str());
  unlink(path.c_str());
  if (::bind(_socket, reinterpret_cast<sockaddr*>(&_local_address), kLocalAddressLength) == -1)
    return false;
  _port = port;
  return true;
}

bool Socket::listen() {
  if (_socket < 0) return false;
  if (::listen(_socket, kListenBacklog) == -1) {
    perror("Socket::listen - listen returned -1");
    return false;
  }
  return true;
}

int Socket::accept_inet() {
  socklen_t length = sizeof _inet_address;
  return ::accept(_socket, reinterpret_cast<sockaddr*>(&_inet_address), &length);
}

int Socket::accept_local() {
  socklen_t length = kLocalAddressLength;
  return ::accept(_socket, reinterpret_cast<sockaddr*>(&_local_address), &length);
}

bool Socket::accept(Socket* into) {
  int accepted = _domain == kLocalDomain ? accept_local() : accept_inet();
  int error = errno;
  if (into != nullptr) {
    into->close();
    into->_socket = accepted;
  } else if (accepted >= 0) {
    ::close(accepted);  // nobody to own it
    accepted = -1;
  }
  if (accepted <= 0) {
    // A descriptor shortage or a failing system repeats per waiting client.
    RateLimitedLog::Report("Socket::accept - socket <= 0: %s", strerror(error));
    errno = error;
    return false;
  }
  return true;
}

bool Socket::connect(const std::string& host, int port) {
  if (_socket < 0) return false;
  return _domain == kLocalDomain ? connect_local(host, port) : connect_inet(host, port);
}

bool Socket::connect_inet(const std::string& host, int port) {
  _inet_address.sin_family = static_cast<sa_family_t>(_domain);
  _inet_address.sin_port = htons(static_cast<uint16_t>(port));
  _inet_address.sin_addr.s_addr = 0;
  errno = 0;
  inet_pton(_domain, host.c_str(), &_inet_address.sin_addr);
  if (errno == EAFNOSUPPORT) {
    perror("Socket::connect_inet - inet_pton() failed");
    return false;
  }
  if (::connect(_socket, reinterpret_cast<sockaddr*>(&_inet_address), sizeof _inet_address) == -1) {
    perror("Socket::connect_inet - connect() failed");
    return false;
  }
  _host = host;
  _port = port;
  return true;
}

bool Socket::connect_local(const std::string& host, int port) {
  std::string path = build_local_path(host, port);
  _local_address.sun_family = static_cast<sa_family_t>(_domain);
  snprintf(_local_address.sun_path, sizeof _local_address.sun_path, "%s", path.c_str());
  if (::connect(_socket, reinterpret_cast<sockaddr*>(&_local_address), kLocalAddressLength) == -1) {
    perror("Socket::connect_local");
    return false;
  }
  _host = host;
  _port = port;
  return true;
}

bool Socket::send(const void* buffer, int length) {
  if (::send(_socket, buffer, Bytes(length), MSG_NOSIGNAL) == -1) {
    perror("Socket::send - failed");
    return false;
  }
  return true;
}

bool Socket::sendall(const void* buffer, int* length) {
  const char* bytes = static_cast<const char*>(buffer);
  size_t total = Bytes(*length);
  size_t sent = 0;
  while (sent < total) {
    ssize_t count = ::send(_socket, bytes + sent, total - sent, MSG_NOSIGNAL);
    if (count == -1) {
      perror("Socket::sendall - send failed");
      *length = static_cast<int>(sent);
      return false;
    }
    sent += static_cast<size_t>(count);
  }
  *length = static_cast<int>(sent);
  return true;
}

int Socket::recv(void* buffer, int length) {
  char* bytes = static_cast<char*>(buffer);
  if (_type == kDatagram) {
    ssize_t count = ::recv(_socket, bytes, Bytes(length), MSG_NOSIGNAL);
    if (count == -1) {
      perror("Socket::recv - failed");
      fprintf(stderr, "Socket::recv - UDP version (this:%p)\n", static_cast<void*>(this));
      return 0;
    }
    return static_cast<int>(count);
  }

  if (length <= 0) return 0;
  // Every call asks for the whole length, as the protocol's peers expect;
  // bytes beyond the caller's buffer are taken off the stream and dropped
  // rather than written past its end.
  std::vector<char> spill;
  int received = 0;
  int missing = length;
  for (;;) {
    char* into = bytes + received;
    if (received > 0) {
      spill.resize(Bytes(length));
      into = spill.data();
    }
    ssize_t count = ::recv(_socket, into, Bytes(length), MSG_NOSIGNAL);
    if (count == -1) {
      perror("Socket::recv - failed");
      fprintf(stderr, "Socket::recv - TCP version (this:%p)\n", static_cast<void*>(this));
      return -1;
    }
    if (received > 0 && count > 0)
      memcpy(bytes + received, spill.data(), std::min<size_t>(count, Bytes(length - received)));
    missing -= static_cast<int>(count);
    if (count == 0) return received;
    received = std::min(length, received + static_cast<int>(count));
    if (missing == 0) return received;
  }
}

int Socket::peek(void* buffer, int length) {
  ssize_t count = ::recv(_socket, buffer, Bytes(length), MSG_PEEK | MSG_WAITALL | MSG_NOSIGNAL);
  if (count == -1) {
    perror("Socket::recv - failed");
    return 0;
  }
  return static_cast<int>(count);
}

bool Socket::sendto(const void* buffer, int length, const sockaddr_in& address) {
  if (::sendto(_socket, buffer, Bytes(length), 0, reinterpret_cast<const sockaddr*>(&address),
               sizeof address) == -1) {
    RateLimitedLog::Report("Socket::sendto - failed: %s", strerror(errno));
    return false;
  }
  return true;
}

int Socket::recvfrom(void* buffer, int length, sockaddr_in& address) {
  socklen_t size = sizeof address;
  ssize_t count =
      ::recvfrom(_socket, buffer, Bytes(length), 0, reinterpret_cast<sockaddr*>(&address), &size);
  if (count == -1) {
    perror("Socket::recvfrom - failed");
    return 0;
  }
  return static_cast<int>(count);
}

bool Socket::set_buffer_size(int option, int size) {
  if (option != SO_SNDBUF && option != SO_RCVBUF) {
    fprintf(stderr, "Socket::set_buffer_size: The option must be one of SO_RCVBUF or SO_SNDBUF\n");
    return false;
  }
  if (setsockopt(_socket, SOL_SOCKET, option, &size, sizeof size) == -1) {
    perror("Socket::set_buffer_size:  Unable to set the buffer size");
    return false;
  }
  return true;
}

int Socket::get_buffer_size(int option) {
  if (option != SO_SNDBUF && option != SO_RCVBUF) {
    fprintf(stderr, "Socket::get_buffer_size: The option must be one of SO_RCVBUF or SO_SNDBUF\n");
    return 0;
  }
  int size = 0;
  socklen_t length = sizeof size;
  if (getsockopt(_socket, SOL_SOCKET, option, &size, &length) == -1) {
    perror("Socket::get_buffer_size:  Unable to get the buffer size");
    return 0;
  }
  return size;
}

int Socket::set_non_blocking(bool block) {
  int flags = fcntl(_socket, F_GETFL, 0);
  if (flags == -1) return flags;
  flags = block ? (flags & ~O_NONBLOCK) : (flags | O_NONBLOCK);
  return fcntl(_socket, F_SETFL, flags);
}

bool Socket::set_send_timeout(int milliseconds) {
  if (_socket < 0) return false;
  timeval timeout;
  timeout.tv_sec = milliseconds / 1000;
  timeout.tv_usec = (milliseconds % 1000) * 1000;
  if (setsockopt(_socket, SOL_SOCKET, SO_SNDTIMEO, &timeout, sizeof timeout) == -1) {
    perror("Socket::set_send_timeout");
    return false;
  }
  return true;
}

bool Socket::read_select(int milliseconds) {
  if (_socket < 0) {
    fprintf(stderr, "Socket::read_select - invalid socket\n");
    return false;
  }
  timeval timeout;
  timeout.tv_sec = milliseconds / 1000;
  timeout.tv_usec = (milliseconds % 1000) * 1000;
  const timeval requested = timeout;

  int ready;
  bool readable;
  if (_socket < FD_SETSIZE) {
    fd_set readfds;
    FD_ZERO(&readfds);
    FD_SET(_socket, &readfds);
    ready = select(_socket + 1, &readfds, nullptr, nullptr, &timeout);
    readable = ready > 0 && FD_ISSET(_socket, &readfds);
  } else {
    // An fd_set cannot hold a descriptor this high; poll waits the same way.
    pollfd watched = {_socket, POLLIN, 0};
    if (milliseconds < 0) {
      errno = EINVAL;
      ready = -1;
    } else {
      ready = poll(&watched, 1, milliseconds);
    }
    readable = ready > 0;
  }
  if (ready == -1) perror("Socket::read_select");
  if (readable) return true;

  fprintf(stderr, "Socket::read_select - readfds is not set (timeout secs:%ld usecs:%ld)\n",
          static_cast<long>(requested.tv_sec), static_cast<long>(requested.tv_usec));
  zyn::config::access::dump_context();
  return false;
}

bool Socket::change_membership(int option, const std::string& group, const std::string& interface) {
  if (_socket < 0 || group.empty() || interface.empty()) return false;
  ip_mreq request;
  memset(&request, 0, sizeof request);
  request.imr_multiaddr.s_addr = inet_addr(group.c_str());
  request.imr_interface.s_addr = inet_addr(interface.c_str());
  return setsockopt(_socket, IPPROTO_IP, option, &request, sizeof request) == 0;
}

bool Socket::add_membership(const std::string& group, const std::string& interface) {
  return change_membership(IP_ADD_MEMBERSHIP, group, interface);
}

bool Socket::drop_membership(const std::string& group, const std::string& interface) {
  return change_membership(IP_DROP_MEMBERSHIP, group, interface);
}

bool Socket::set_multicast_interface(const std::string& interface) {
  if (_socket < 0) return false;
  in_addr address;
  if (inet_pton(AF_INET, interface.c_str(), &address) != 1) return false;
  return setsockopt(_socket, IPPROTO_IP, IP_MULTICAST_IF, &address, sizeof address) == 0;
}

bool Socket::adopt(int fd) {
  if (fd < 0) return false;
  close();
  _socket = fd;
  return true;
}

int Socket::close() {
  if (_socket < 0) return -1;
  shutdown(_socket, SHUT_RDWR);
  int result = ::close(_socket);
  _socket = -1;
  return result;
}
