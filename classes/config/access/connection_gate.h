// ConnectionGate decides, on a stream server's accept loop, which clients
// get served. A client past the connection limit is refused; and when the
// process has run out of descriptors, the client waiting in the backlog is
// taken with a reserve descriptor and closed at once, so that it is not
// left unanswered and the accept loop does not spin on it. Refusals are
// reported at most once a second per kind, each line naming the server.
//
// An accept that fails for another reason (the system short of memory or
// buffers) is retried after a pause that doubles with each failure in a
// row, up to kMaxAcceptDelayMs, and drops back once a client is accepted:
// the loop neither spins nor stays slow after the trouble has passed.
//
// While the process is out of descriptors the gate refuses clients itself,
// without the failing accept (and its message) per client; it lets the
// server accept again as soon as a descriptor is free.
//
// Ownership and threads: owned by one server and used by its thread only
// (SetMaxConnections before the thread starts); no locks. The gate owns its
// reserve descriptor.
#ifndef CLASSES_CONFIG_ACCESS_CONNECTION_GATE_H
#define CLASSES_CONFIG_ACCESS_CONNECTION_GATE_H

#include <time.h>

namespace zyn {
namespace config {
namespace access {

class ConnectionGate {
 public:
  // `where` heads every report ("SocketServer::WaitForConnection"); a
  // string literal.
  explicit ConnectionGate(const char* where);
  ~ConnectionGate();
  ConnectionGate(const ConnectionGate&) = delete;
  ConnectionGate& operator=(const ConnectionGate&) = delete;

  // The longest pause between two failed accepts.
  static constexpr long kMaxAcceptDelayMs = 1000;

  // At most `count` live connections (0: no limit).
  void SetMaxConnections(int count) { _max_connections = count; }

  // Before accepting: true when the process is still out of descriptors;
  // the waiting client on `listenFd` has then been taken and closed.
  bool RefuseWhileExhausted(int listenFd);
  // After an accept that failed: true when it failed for lack of
  // descriptors; the waiting client has then been taken and closed. Any
  // other failure lengthens the pause before the next accept.
  bool RefuseOnFailedAccept(int listenFd);
  // After a successful accept: no pause before the next one.
  void Accepted() { _accept_delay_ms = 0; }
  // How long the server waits before accepting again (0: at once).
  [[nodiscard]] long AcceptDelayMs() const { return _accept_delay_ms; }
  // After an accept: true when a client accepted with `live` connections
  // already alive is past the limit; the caller closes it.
  bool RefuseOverLimit(int live);

 private:
  // Whether the process is out of descriptors now (reopening a lost
  // reserve first).
  bool Exhausted();
  // Takes the waiting client with the reserve descriptor and closes it.
  void TakeAndClose(int listenFd);
  // True when a refusal of the kind last reported at `reported` may be
  // reported now (once a second at most); stamps it.
  static bool Due(time_t& reported);

  const char* _where;
  int _reserve;  // a descriptor kept for refusing clients; -1 when lost
  bool _exhausted = false;
  int _max_connections = 0;
  unsigned long _over_limit = 0;  // clients refused by the limit
  time_t _over_limit_reported = 0;
  unsigned long _no_descriptor = 0;  // clients refused for lack of descriptors
  time_t _no_descriptor_reported = 0;
  long _accept_delay_ms = 0;  // doubles per failed accept in a row
};

}  // namespace access
}  // namespace config
}  // namespace zyn

#endif  // CLASSES_CONFIG_ACCESS_CONNECTION_GATE_H
