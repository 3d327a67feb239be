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
// writers call ParamChanged on their own threads, which only queues the
// event; the connection's EventSender, made when the client first registers,
// sends the events on its own thread. `lock` guards the sending side of the
// socket, so events and responses never interleave; _state_lock guards
// `registered`, `paramIDs`, the connection ID and the store's ID. A client
// that stops reading is cut off (its queue not drained in time, or a send
// timed out: socket shut, its thread ends) and never makes a writer wait.
// A client stalled mid-record is closed after the read time-out.
#ifndef CLASSES_CONFIG_ACCESS_NETWORK_TCP_CONNECTION_H
#define CLASSES_CONFIG_ACCESS_NETWORK_TCP_CONNECTION_H

#include <pthread.h>
#include <semaphore.h>

#include <atomic>
#include <list>
#include <memory>
#include <string>
#include <vector>

#include "config/access/event_sender.h"
#include "config/access/network_connection.h"
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
  // How long one event or response may take to send before the client is
  // considered gone.
  static constexpr int kSendTimeoutMs = 1000;
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
  // Packs, traces and sends one record, taking `lock` or with it held.
  template <typename Record>
  bool SendRecord(const Record& record);
  template <typename Record>
  bool SendRecordLocked(const Record& record);
  bool Send(const char* bytes, size_t length);
  // A failed send cuts the client off: no more sends, the read ends.
  bool SendLocked(const char* bytes, size_t length);
  // Queues the change for the sender thread (the writer's thread).
  bool PostEvent(bool text, unsigned int paramID, unsigned int value);
  // Sends a batch of queued events in one send (the sender thread).
  bool SendEvents(const std::vector<::zyn::config::access::QueuedEvent>& events);
  // Ends a client whose event queue was not drained in time, without
  // waiting on it; `why` says which limit it passed.
  void CutOff(const char* why);
  void ReleaseConfig();

  std::list<unsigned int> paramIDs;  // guarded by _state_lock
  Config* config;                    // set and released by the connection's thread
  Socket* socket;
  int _fd;  // the socket's descriptor, fixed for the connection's life
  ::zyn::config::access::StreamReader _reader;
  long _read_timeout_ms = 0;  // set before Start
  unsigned int connectionID;  // guarded by _state_lock
  uint32_t _config_id;        // the open store's ID, for events; guarded by _state_lock
  bool registered;            // guarded by _state_lock
  bool _listening;            // added to the store's listeners (connection's thread)
  std::atomic<bool> stopped;
  std::atomic<bool> _broken;  // cut off: no more sends
  // Made on the first registration, before joining the store's listeners;
  // stopped after leaving them (connection's thread).
  std::unique_ptr<::zyn::config::access::EventSender> _events;
  sem_t lock;
  sem_t _state_lock;
};

}  // namespace access
}  // namespace config
}  // namespace boxline
}  // namespace zyn

#endif  // CLASSES_CONFIG_ACCESS_NETWORK_TCP_CONNECTION_H
