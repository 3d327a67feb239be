// NetworkServer serves the network configuration protocol on one port, over
// TCP or over UDP. Over TCP it accepts clients and runs one
// NetworkTCPConnection per client on a detached thread of its own; over UDP
// it runs one NetworkUDPConnection on the server thread that answers every
// datagram and multicasts the changes.
//
// Lifecycle: NetworkServer(family, type, port) -> the optional setters ->
// Init (bound; listening for TCP) -> Start (the server thread runs Run) ->
// Stop (stop flag set, socket shut, which ends a blocked accept or receive)
// -> the server thread leaves Run and deletes the server. After Start the
// server object belongs to its thread: keep only the thread handle
// (GetThread) and join it after Stop. Stop may be called from any thread,
// once; TCP connections already accepted are not affected
// (NetworkTCPConnection::StopAll ends them).
//
// The UDP server's receive wakes up at least once a second without a
// datagram, so that stores its clients left idle are given back in time.
//
// Locks: `_stop_lock` makes Stop and the thread's deletion of the server
// exclusive, so Stop never touches a deleted server.
#ifndef CLASSES_CONFIG_ACCESS_NETWORK_SERVER_H
#define CLASSES_CONFIG_ACCESS_NETWORK_SERVER_H

#include <pthread.h>
#include <semaphore.h>

#include <atomic>
#include <string>

#include "config/access/connection_gate.h"

class Socket;

namespace zyn {
namespace boxline {
namespace config {
namespace access {

class NetworkTCPConnection;
class NetworkUDPConnection;

class NetworkServer {
 public:
  // Receive buffer of the UDP server: the largest datagram it takes.
  static constexpr int kDatagramBufferSize = 24 * 1024;
  static constexpr long kDefaultReadTimeoutMs = 5000;

  // family AF_INET; type SOCK_STREAM (TCP) or SOCK_DGRAM (UDP); port 0 lets
  // the system choose (GetPort tells which after Init).
  NetworkServer(int family, int type, int port);
  virtual ~NetworkServer();
  NetworkServer(const NetworkServer&) = delete;
  NetworkServer& operator=(const NetworkServer&) = delete;

  // Setters, called before Start. The UDP server's events go to the group
  // 239.18.27.18 on `port` (default 63110), leaving on the interface with
  // the dotted address `address` (default "127.0.0.1"). The listening
  // address defaults to every interface.
  void SetMulticastPort(int multicastPort) { _multicast_port = multicastPort; }
  void SetEventInterface(const std::string& address) { _event_interface = address; }
  void SetListenAddress(const std::string& address) { _listen_address = address; }
  // TCP: at most `count` live connections in the process (0, the default:
  // no limit). A client beyond it, or one that comes while the process is
  // out of descriptors, is closed at once, and the refusals are reported at
  // most once a second.
  void SetMaxConnections(int count) { _gate.SetMaxConnections(count); }
  // TCP: the longest a client's record may take to arrive once its first
  // byte has (default kDefaultReadTimeoutMs, 0: no limit); a client stalled
  // mid-record is closed, one idle between records never is.
  void SetReadTimeoutMs(long ms) { _read_timeout_ms = ms; }
  // UDP: how long a store opened by a Connect Request may go without a
  // request before it is given back (default
  // NetworkUDPConnection::kDefaultStoreIdleMs, 0: never). Store 0 and
  // stores other clients hold are kept.
  void SetUdpStoreIdleMs(long ms) { _udp_store_idle_ms = ms; }

  // Creates and binds the socket (and listens for TCP), replacing a
  // previous one. False with a message.
  bool Init();
  // Starts the server thread; from then on the thread owns the server.
  bool Start();
  // Ends Run: sets the stop flag and shuts the socket.
  void Stop();
  // The accept loop (TCP) or the receive loop (UDP); ends with
  // "NetworkServer::Run - exiting".
  void Run();
  // The next accepted client, started; false when none was accepted.
  bool WaitForConnection();
  // Receives one datagram and hands it to the UDP connection; false when
  // the receive failed or the socket was shut. Also true when none came
  // within the receive time-out, which lets Run look for idle stores.
  bool WaitForDatagram(char* buffer);

  // The port actually bound after Init.
  [[nodiscard]] int GetPort() const { return port; }
  [[nodiscard]] pthread_t GetThread() const { return thread; }

 private:
  static void* pthread_start(void* arg);
  void RunStream();
  void RunDatagram();

  std::atomic<uint32_t> stop;
  pthread_t thread;
  Socket* socket;
  int family;
  int type;
  int port;
  NetworkUDPConnection* udpConnection;
  int _fd;  // the socket's descriptor, for Stop
  int _multicast_port;
  std::string _event_interface;
  std::string _listen_address;
  long _read_timeout_ms = kDefaultReadTimeoutMs;
  long _udp_store_idle_ms;
  sem_t _stop_lock;
  ::zyn::config::access::ConnectionGate _gate{"NetworkServer::WaitForConnection"};  // TCP thread
};

}  // namespace access
}  // namespace config
}  // namespace boxline
}  // namespace zyn

#endif  // CLASSES_CONFIG_ACCESS_NETWORK_SERVER_H
