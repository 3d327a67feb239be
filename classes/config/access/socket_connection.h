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
// writers call ParamChanged on their own threads, which only queues the
// event; the connection's EventSender, made when the client first registers,
// sends the events on its own thread. _state_lock guards the registration
// flag, the filter and the connection ID; _send_lock guards the sending side
// of the socket, so events and responses never interleave. A client that
// stops reading is cut off (its queue not drained in time, or a send timed
// out) and never makes a writer wait. A client stalled mid-record is closed
// after the read time-out.
#ifndef CLASSES_CONFIG_ACCESS_SOCKET_CONNECTION_H
#define CLASSES_CONFIG_ACCESS_SOCKET_CONNECTION_H

#include <pthread.h>
#include <semaphore.h>

#include <atomic>
#include <list>
#include <memory>
#include <string>
#include <vector>

#include "config/access/event_sender.h"
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
  // How long one event or response may take to send before the client is
  // considered gone.
  static constexpr int kSendTimeoutMs = 1000;
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
  // Packs, traces and sends one record, taking _send_lock or with it held.
  template <typename Record>
  bool SendRecord(const Record& record);
  template <typename Record>
  bool SendRecordLocked(const Record& record);
  // Sends bytes under _send_lock; a failure cuts the client off.
  bool Send(const char* bytes, size_t length);
  bool SendLocked(const char* bytes, size_t length);
  // True when an event for `paramID` goes to this client (under _state_lock).
  bool WantsEvent(unsigned int paramID);
  // Queues the change for the sender thread (the writer's thread).
  bool PostEvent(bool text, unsigned int paramID, unsigned int value);
  // Sends a batch of queued events in one send (the sender thread).
  bool SendEvents(const std::vector<::zyn::config::access::QueuedEvent>& events);
  // Ends a client whose event queue was not drained in time, without
  // waiting on it; `why` says which limit it passed.
  void CutOff(const char* why);
  void ReleaseStore();

  Config* _store;
  Socket* _socket;
  int _fd;                          // the socket's descriptor, fixed for the connection's life
  StreamReader _reader;             // the connection thread's reads
  long _read_timeout_ms = 0;        // set before Start
  uint32_t _connection_id;          // guarded by _state_lock
  bool _registered;                 // guarded by _state_lock
  bool _listening;                  // added to the store's listeners
  std::list<unsigned int> _filter;  // guarded by _state_lock; empty: all
  std::atomic<bool> _stop;
  std::atomic<bool> _broken;  // cut off: no more sends
  // Made on the first registration, before joining the store's listeners;
  // stopped after leaving them (connection's thread).
  std::unique_ptr<EventSender> _events;
  sem_t _send_lock;
  sem_t _state_lock;
};

}  // namespace access
}  // namespace config
}  // namespace zyn

#endif  // CLASSES_CONFIG_ACCESS_SOCKET_CONNECTION_H
