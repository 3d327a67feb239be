// Socket is the thin wrapper over BSD sockets under every transport of the
// library: stream or datagram, internet (IPv4) or local (Unix-domain). A local
// socket lives at the path "/tmp/zyn_<port>"; the host is ignored there.
//
// Ownership: a Socket owns its descriptor and closes it when destroyed; an
// accepted connection's descriptor belongs to the Socket it was accepted
// into. Copying is deleted.
//
// Thread-safety: no lock of its own. Callers serialise the use of one socket
// (the owners hold a SemaphoreHelper on their own semaphore); distinct
// sockets may be used from distinct threads freely.
//
// Errors: every failure is written to standard error (perror for the texts
// without a line break) and leaves the object usable; nothing throws.
#ifndef CLASSES_CONFIG_ACCESS_SOCKET_H
#define CLASSES_CONFIG_ACCESS_SOCKET_H

#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <string>

class Socket {
 public:
  // Address families and socket types, as passed to socket().
  static constexpr int kInternetDomain = 2;  // AF_INET
  static constexpr int kLocalDomain = 1;     // AF_UNIX
  static constexpr int kStream = 1;          // SOCK_STREAM
  static constexpr int kDatagram = 2;        // SOCK_DGRAM
  static constexpr int kListenBacklog = 100;
  // The address length given to bind, connect and accept of local sockets.
  static constexpr socklen_t kLocalAddressLength = 110;

  // Makes no descriptor yet: call create() (or accept() into it).
  Socket(int domain, int type);
  virtual ~Socket();
  Socket(const Socket&) = delete;
  Socket& operator=(const Socket&) = delete;

  // Opens the descriptor, sets TCP_NODELAY on stream sockets and SO_REUSEADDR
  // on all. False when socket() fails, and also when TCP_NODELAY is refused,
  // which the kernel does for local stream sockets: the descriptor is kept
  // open and usable in that case.
  bool create();

  // Binds to the wildcard address (internet) or to the port's path (local).
  // False without a descriptor.
  bool bind(int port);
  // Binds in the internet domain to `host` (dotted text; empty: wildcard).
  bool bind(const std::string& host, int port);
  bool bind_inet(int port);
  // Removes any file at the port's path first; fails silently.
  bool bind_local(int port);
  // "/tmp/zyn_<port>"; the host is ignored. Announces the path on stderr.
  std::string build_local_path(const std::string& host, int port);

  bool listen();
  // Accepts one connection and hands its descriptor to `into` (which closes
  // any descriptor it had). Descriptor 0 counts as failure but still goes to
  // `into`. An internet accept stores the peer address in this socket's own
  // internet address (get_inet_address()).
  bool accept(Socket* into);
  // Takes ownership of an open descriptor of this socket's domain and type
  // (one end of a socketpair, say), closing any it had. False for a negative
  // descriptor, which is not taken.
  bool adopt(int fd);

  // Connects to host:port (local: to the port's path). On success the host
  // and port are remembered.
  bool connect(const std::string& host, int port);
  // An unparsable host is not detected (only EAFNOSUPPORT is): it connects to
  // the zero address.
  bool connect_inet(const std::string& host, int port);
  bool connect_local(const std::string& host, int port);

  // One send; a partial send counts as success.
  bool send(const void* buffer, int length);
  // Sends all *length bytes; *length receives the bytes actually sent. False
  // on the first failed send (including a send time-out).
  bool sendall(const void* buffer, int* length);
  // Datagram: one receive; the count, or 0 on failure.
  // Stream: loops until `length` bytes have arrived; returns `length`, the
  // bytes received so far when the peer closes (0 if none), or -1 on a
  // failure. Every call of the loop asks for the full `length`, so a peer
  // that sends beyond the record while it arrives in pieces loses the excess
  // (it is dropped, never written past the buffer); protocol endpoints use
  // stream_io.h instead.
  int recv(void* buffer, int length);
  // Waits for `length` bytes and returns them without consuming them; the
  // count, or 0 on failure.
  int peek(void* buffer, int length);
  bool sendto(const void* buffer, int length, const sockaddr_in& address);
  // One datagram; fills `address` with the sender. The count, 0 on failure.
  int recvfrom(void* buffer, int length, sockaddr_in& address);

  // `option` is SO_SNDBUF or SO_RCVBUF; anything else is refused.
  bool set_buffer_size(int option, int size);
  // The kernel's size for `option`, 0 on failure.
  int get_buffer_size(int option);
  // Inverted sense, kept on purpose: true makes the socket BLOCKING (clears
  // O_NONBLOCK), false makes it non-blocking. Returns the last fcntl result.
  int set_non_blocking(bool block);
  // Bounds each send: a send that makes no progress for `milliseconds` fails.
  // False without a descriptor or when the option is refused.
  bool set_send_timeout(int milliseconds);

  // True when the socket becomes readable within `milliseconds`. On a time-out
  // or an error prints the time-out line, dumps the context (backtrace and
  // vmstat) and returns false.
  bool read_select(int milliseconds);

  // Joins or leaves the IPv4 multicast group on the interface, both dotted
  // text. False without a descriptor, for empty texts or when refused.
  bool add_membership(const std::string& group, const std::string& interface);
  bool drop_membership(const std::string& group, const std::string& interface);
  // Sends this socket's multicast datagrams out on the interface with the
  // given dotted address (IP_MULTICAST_IF). False without a descriptor, for
  // an unparsable address or when refused.
  bool set_multicast_interface(const std::string& interface);

  // Shuts down and closes the descriptor. The result of close(), or -1 when
  // there was no descriptor.
  int close();

  // The descriptor, -1 when there is none.
  [[nodiscard]] int get_fd() const { return _socket; }
  // The port of the last successful bind or connect (0 before; the port
  // given, so 0 after binding to port 0).
  [[nodiscard]] int get_port() const { return _port; }
  // "127.0.0.1" until a connect succeeds, then the host connected to.
  [[nodiscard]] const std::string& get_host() const { return _host; }
  [[nodiscard]] const sockaddr_in& get_inet_address() const { return _inet_address; }

 private:
  bool bind_inet_address(in_addr_t address, int port);
  bool change_membership(int option, const std::string& group, const std::string& interface);
  int accept_inet();
  int accept_local();

  int _domain;
  int _type;
  int _socket = -1;
  sockaddr_in _inet_address;
  sockaddr_un _local_address;
  std::string _host = "127.0.0.1";
  int _port = 0;
};

#endif  // CLASSES_CONFIG_ACCESS_SOCKET_H
