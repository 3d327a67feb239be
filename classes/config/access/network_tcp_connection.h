// NetworkTCPConnection serves one client of the network protocol over TCP on
// a detached thread of its own: it reads the client's records one after the
// other, answers them against the store the client's Connect Request opened
// in-process, and, once the client has sent an Add Listener Request, sends
// it every change of that store as an event on the same connection. The
// parameter IDs named in Add Listener Requests are kept but do not filter
// the events: a registered client hears every parameter.
//
// Lifetime: created by the server on accept, started with Start(); the
// thread deletes the connection (and its socket) when the client goes away,
// a record cannot be read, an unknown record arrives, or Stop()/StopAll()
// ends it. Before that it leaves the store's listeners and gives the store
// back, so a store never calls a deleted connection. WaitForAll lets an
// owner wait until every connection thread is gone.
//
// Threads and locks: the connection's thread reads and answers; the store's
// writers call ParamChanged on their own threads, which encodes the event
// with the store's value at that moment and hands it to the connection's
// Outbox; the process's send loop sends it. Responses go through the same
// outbox, so records never interleave and keep their order. _state_lock
// guards `registered`, `paramIDs` and the store's ID; a writer holds it
// while it hands an event over, so no event follows a Remove Listener
// Response. A client that stops reading is cut off (its queue not drained
// in time: socket shut, its thread ends) and never makes a writer wait. A
// client stalled mid-record is closed after the read time-out.
#ifndef CLASSES_CONFIG_ACCESS_NETWORK_TCP_CONNECTION_H
#define CLASSES_CONFIG_ACCESS_NETWORK_TCP_CONNECTION_H

#include <pthread.h>
#include <semaphore.h>

#include <atomic>
#include <list>
#include <memory>
#include <string>
#include <vector>

#include "config/access/network_connection.h"
#include "config/access/outbox.h"
#include "config/access/stream_io.h"
#include "config/access/xconfigmgr_records.h"
#include "config/config.h"

class Socket;

namespace zyn {
namespace boxline {
namespace config {
namespace access {

class NetworkTCPConnection : public NetworkConnection, public ConfigEventListener {
 public:
  // Stack of a connection thread: small, so thousands of connections fit.
  static constexpr size_t kThreadStackSize = 256 * 1024;

  // Takes ownership of the accepted socket.
  explicit NetworkTCPConnection(Socket* socket);
  ~NetworkTCPConnection() override;

  // Store callbacks: queue a "Param Changed Event", or a "Param String
  // Changed Event" carrying the store's value at the time of sending, when
  // the client is registered. False when the client has been cut off.
  bool ParamChanged(unsigned int paramID, unsigned int value, timeval when) override;
  bool ParamChanged(unsigned int paramID, std::string value, timeval when) override;

  // Before Start: the longest a record may take to arrive once its first
  // byte has (0: no limit). A client stalled mid-record is closed.
  void SetReadTimeoutMs(long ms) {
    _read_timeout_ms = ms;
    _reader.SetReadTimeoutMs(ms);
  }
  // Starts the detached thread that runs and then deletes the connection.
  // False (with a message) when the thread cannot be created; the caller
  // still owns the connection then.
  bool Start();
  // Ends the reading loop and wakes a blocked read.
  void Stop();
  // The reading loop, then the store released.
  void Run();
  void ProcessMessages();

  // The number of connections alive in the process, and a way to end them
  // all and wait until their threads have finished (a clean shutdown).
  static int LiveCount();
  static void StopAll();
  // False if connections are still alive after `timeoutMs`.
  static bool WaitForAll(long timeoutMs);

 private:
  // Each handler answers one request; false ends the connection.
  bool Dispatch(uint32_t msgtype, const char* record);
  // The line (rate-limited) for a record that did not arrive whole: the
  // peer stalled past the read time-out, closed or failed mid-record.
  void ReportBrokenRecord(const char* what);
  bool ProcessConnectRequest(const XCONFIGMGR_CONNECTION_REQUEST_T& request);
  bool ProcessDisconnectRequest(const XCONFIGMGR_CONNECTION_REQUEST_T& request);
  bool ProcessGetRequest(const XCONFIGMGR_REQUEST_T& request);
  bool ProcessSetRequest(const XCONFIGMGR_REQUEST_T& request);
  bool ProcessGetStreamRequest(const XCONFIGMGR_REQUEST_T& request);
  bool ProcessSetStreamRequest(const XCONFIGMGR_REQUEST_T& request);
  bool ProcessAddConfigEventListenerRequest(const XCONFIGMGR_EVENT_HANDLER_REQUEST_T& request);
  bool ProcessRemoveConfigEventListenerRequest(const XCONFIGMGR_EVENT_HANDLER_REQUEST_T& request);

  // A response (or event) with the store's current value of the request's
  // parameter as payload, ready to send; false with a message.
  bool BuildStreamResponse(const XCONFIGMGR_REQUEST_T& request, std::vector<char>& bytes);
  bool SendStreamResponse(const XCONFIGMGR_REQUEST_T& request);
  // Sends the 44-byte record with no payload; warns when `error` is 0.
  bool SendErrorResponse(XCONFIGMGR_RESPONSE_T& response);
  // Packs, traces and sends one record.
  template <typename Record>
  bool SendRecord(const Record& record);
  // Hands bytes to the outbox; false once the client is cut off.
  bool Send(const char* bytes, size_t length);
  // Encodes the change and hands it to the outbox (the writer's thread).
  bool PostEvent(bool text, unsigned int paramID, unsigned int value);
  // Ends a client the outbox gave up on, without waiting on it (any
  // thread); `why` says which limit it passed or how a send failed.
  void CutOff(const char* why);
  void ReleaseConfig();

  std::list<unsigned int> paramIDs;  // guarded by _state_lock
  Config* config;                    // set and released by the connection's thread
  Socket* socket;
  int _fd;  // the socket's descriptor, fixed for the connection's life
  ::zyn::config::access::StreamReader _reader;
  long _read_timeout_ms = 0;               // set before Start
  std::atomic<unsigned int> connectionID;  // set by the connection's thread
  uint32_t _config_id;  // the open store's ID, for events; guarded by _state_lock
  bool registered;      // guarded by _state_lock
  bool _listening;      // added to the store's listeners (connection's thread)
  std::atomic<bool> stopped;
  std::atomic<bool> _broken;                                      // cut off: no more sends
  const ::zyn::config::access::Outbox::FailureFunction _cut_off;  // calls CutOff
  // Every byte to the client once one was needed (registration, or a send
  // that would block); set by the connection's thread before it registers,
  // closed before the socket is.
  std::shared_ptr<::zyn::config::access::Outbox> _outbox;
  sem_t _state_lock;
};

}  // namespace access
}  // namespace config
}  // namespace boxline
}  // namespace zyn

#endif  // CLASSES_CONFIG_ACCESS_NETWORK_TCP_CONNECTION_H
