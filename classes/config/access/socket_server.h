// SocketServer accepts clients of the local configuration protocol on a TCP
// port (43110 for the local transport) and hands each to a SocketConnection
// running on a thread of its own.
//
// Lifecycle: SocketServer(port) -> Init (bound, listening) -> Start (the
// server thread runs the accept loop) -> Stop (stop flag set, listening
// socket shut) -> the server thread leaves Run and deletes the server.
// After Start the server object belongs to its thread: keep only the thread
// handle (GetThread) to join it after Stop. Stop may be called from any
// thread; connections already accepted are not affected
// (SocketConnection::StopAll ends them).
#ifndef CLASSES_CONFIG_ACCESS_SOCKET_SERVER_H
#define CLASSES_CONFIG_ACCESS_SOCKET_SERVER_H

#include <pthread.h>

#include <atomic>
#include <string>

#include "config/access/connection_gate.h"
#include "support/runnable.h"

class Socket;

namespace zyn {
namespace config {
namespace access {

class SocketConnection;

class SocketServer : public Runnable {
 public:
  // The read time-out of a new server's connections.
  static constexpr long kDefaultReadTimeoutMs = 5000;

  explicit SocketServer(int port);
  ~SocketServer() override;

  // The accept loop; ends with "SocketServer::Run - exiting".
  void Run() override;
  // Creates, binds (every interface, or the listening address) and
  // listens. False with a message.
  virtual bool Init();
  // Before Init: the IPv4 address to listen on, dotted ("127.0.0.1"); empty
  // (the default) listens on every interface.
  void SetListenAddress(const std::string& address) { _listen_address = address; }
  // Before Start: at most `count` live connections in the process (0, the
  // default: no limit). A client beyond it, or one that comes while the
  // process is out of descriptors, is closed at once, and the refusals are
  // reported at most once a second.
  void SetMaxConnections(int count) { _gate.SetMaxConnections(count); }
  // Before Start: the longest a client's record may take to arrive once its
  // first byte has; a client stalled mid-record is closed, so stalled peers
  // cannot hold every connection slot. 0: no limit. An idle client (between
  // records) is never closed.
  void SetReadTimeoutMs(long ms) { _read_timeout_ms = ms; }
  // Starts the server thread; from then on the thread owns the server.
  virtual bool Start();
  virtual void Stop();

  // The next accepted client, or null (also for a client refused by the
  // connection limit or for lack of descriptors).
  SocketConnection* WaitForConnection();
  // The port actually bound (useful when constructed with port 0).
  int GetPort() const { return _port; }
  pthread_t GetThread() const { return _thread; }

 private:
  static void* pthread_start(void* arg);

  Socket* _socket;
  std::atomic<bool> _stop;
  std::atomic<bool> _closing{false};  // Stop has begun: a failed accept is expected
  int _port;
  int _listen_fd;
  pthread_t _thread;
  std::string _listen_address;
  long _read_timeout_ms = kDefaultReadTimeoutMs;
  ConnectionGate _gate{"SocketServer::WaitForConnection"};  // server thread
};

}  // namespace access
}  // namespace config
}  // namespace zyn

#endif  // CLASSES_CONFIG_ACCESS_SOCKET_SERVER_H
