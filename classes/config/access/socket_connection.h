// SocketConnection serves one client of the local configuration protocol on
// a detached thread of its own: it reads the client's records one after the
// other, answers them against the store the client's Connect Request opened
// in-process, and, as a listener of that store, forwards the changes the
// client registered for as events.
//
// Lifetime: created by the server on accept, started with Start(); the
// thread deletes the connection (and its socket) when the client goes away,
// a record cannot be read, an unknown record arrives, or Stop()/StopAll()
// ends it. Before that it leaves the store's listeners and gives the store
// back, so a store never calls a deleted connection.
//
// Threads and locks: the connection's thread reads and answers; the store's
// writers call ParamChanged on their own threads, which encodes the event
// with the store's value at that moment and hands it to the connection's
// Outbox; the process's send loop sends it. Responses go through the same
// outbox, so records never interleave and keep their order. _state_lock
// guards the registration flag and the filter; a writer holds it while it
// hands an event over, so no event follows a Remove Listener Response. A
// client that stops reading is cut off (its queue not drained in time) and
// never makes a writer wait. A client stalled mid-record is closed after the
// read time-out.
#ifndef CLASSES_CONFIG_ACCESS_SOCKET_CONNECTION_H
#define CLASSES_CONFIG_ACCESS_SOCKET_CONNECTION_H

#include <pthread.h>
#include <semaphore.h>

#include <atomic>
#include <list>
#include <memory>
#include <string>
#include <vector>

#include "config/access/outbox.h"
#include "config/access/stream_io.h"
#include "config/access/xconfigmgr_records.h"
#include "config/config.h"
#include "support/runnable.h"

class ConfigValue;
class Socket;

namespace zyn {
namespace config {
namespace access {

class SocketConnection : public ConfigEventListener, public Runnable {
 public:
  // Stack of a connection thread: small, so thousands of connections fit.
  static constexpr size_t kThreadStackSize = 256 * 1024;

  // Takes ownership of the accepted socket.
  explicit SocketConnection(Socket* socket);
  ~SocketConnection() override;

  bool ParamChanged(unsigned int paramID, unsigned int value, timeval when) override;
  bool ParamChanged(unsigned int paramID, std::string value, timeval when) override;
  void Run() override;

  // Before Start: the longest a record may take to arrive once its first
  // byte has (0: no limit). A client stalled mid-record is closed.
  void SetReadTimeoutMs(long ms) {
    _read_timeout_ms = ms;
    _reader.SetReadTimeoutMs(ms);
  }
  // Starts the detached thread that runs and then deletes the connection.
  bool Start();
  // Ends the reading loop and wakes a blocked read.
  void Stop();
  void ProcessMessages();

  // The number of connections alive in the process, and a way to end them
  // all and wait until their threads have finished (a clean shutdown).
  static int LiveCount();
  static void StopAll();
  // False if connections are still alive after `timeoutMs`.
  static bool WaitForAll(long timeoutMs);

 private:
  // Each handler answers one request; false ends the connection.
  bool ProcessConnectRequest(const XCONFIGMGR_CONNECTION_REQUEST_T& request);
  bool ProcessDisconnectRequest(const XCONFIGMGR_CONNECTION_REQUEST_T& request);
  bool ProcessGetRequest(const XCONFIGMGR_REQUEST_T& request);
  bool ProcessSetRequest(const XCONFIGMGR_REQUEST_T& request);
  bool ProcessGetStreamRequest(const XCONFIGMGR_REQUEST_T& request);
  bool ProcessSetStreamRequest(const XCONFIGMGR_REQUEST_T& request);
  bool ProcessAddConfigEventListenerRequest(const XCONFIGMGR_EVENT_HANDLER_REQUEST_T& request);
  bool ProcessRemoveConfigEventListenerRequest(const XCONFIGMGR_EVENT_HANDLER_REQUEST_T& request);
  bool Dispatch(uint32_t msgtype, const char* record);
  // The line (rate-limited) for a record that did not arrive whole: the
  // peer stalled past the read time-out, closed or failed mid-record.
  void ReportBrokenRecord(const char* what);

  // Applies a received value to the store; the store's result, or 0.
  int DoSetRequest(ConfigValue* value);
  // A response or event carrying the store's current value of the
  // request's parameter.
  bool SendStreamResponse(const XCONFIGMGR_REQUEST_T& request);
  // The response (or event) record and its payload, ready to send.
  bool BuildStreamResponse(const XCONFIGMGR_REQUEST_T& request, std::vector<char>& bytes);
  bool SendErrorResponse(XCONFIGMGR_RESPONSE_T& response);
  bool SendErrorResponse(XCONFIGMGR_CONNECTION_RESPONSE_T& response);
  template <typename Response>
  bool SendError(const Response& response);
  // Packs, traces and sends one record.
  template <typename Record>
  bool SendRecord(const Record& record);
  // Hands bytes to the outbox; false once the client is cut off.
  bool Send(const char* bytes, size_t length);
  // True when an event for `paramID` goes to this client (under _state_lock).
  bool WantsEvent(unsigned int paramID);
  // Encodes the change and hands it to the outbox (the writer's thread).
  bool PostEvent(bool text, unsigned int paramID, unsigned int value);
  // Ends a client the outbox gave up on, without waiting on it (any
  // thread); `why` says which limit it passed or how a send failed.
  void CutOff(const char* why);
  void ReleaseStore();

  Config* _store;
  Socket* _socket;
  int _fd;                               // the socket's descriptor, fixed for the connection's life
  StreamReader _reader;                  // the connection thread's reads
  long _read_timeout_ms = 0;             // set before Start
  std::atomic<uint32_t> _connection_id;  // set by the connection's thread
  bool _registered;                      // guarded by _state_lock
  bool _listening;                       // added to the store's listeners
  std::list<unsigned int> _filter;       // guarded by _state_lock; empty: all
  std::atomic<bool> _stop;
  std::atomic<bool> _broken;                                      // cut off: no more sends
  const ::zyn::config::access::Outbox::FailureFunction _cut_off;  // calls CutOff
  // Every byte to the client once one was needed (registration, or a send
  // that would block); set by the connection's thread before it registers,
  // closed before the socket is.
  std::shared_ptr<Outbox> _outbox;
  sem_t _state_lock;
};

}  // namespace access
}  // namespace config
}  // namespace zyn

#endif  // CLASSES_CONFIG_ACCESS_SOCKET_CONNECTION_H
