// SocketClient is a Config in a client process: every operation is one
// request/response exchange with the owner of the settings over the
// connection its SocketFactory opened and confirmed. Registered listeners
// are fed by an events thread that reads the same connection, so a client
// with listeners is an event connection and requests go through another
// client.
//
// Locks: every exchange holds the factory's semaphore, shared by all the
// factory's clients, for its whole duration. The listener list is guarded by
// the client's own listener semaphore, which is also held while events are
// delivered. Once the events thread runs it is the only reader of the
// socket: the responses to the requests that end an event connection
// (Remove Listener, Disconnect) are handed to the waiting requester.
//
// Time-outs: every exchange waits for its response at most the response
// time-out (kResponseTimeoutMs unless SetResponseTimeout says otherwise),
// so a request the owner leaves unanswered (a string Get of an unknown
// parameter) fails instead of holding the factory's semaphore for ever;
// request sends are bounded by the same time. The ID of a request given up
// on before any of its answer arrived is remembered, and its answer, should
// it come after all, is dropped by the reader that meets it (the next
// exchange, or the events thread): it is never taken as the answer to a
// later request. A time-out in the middle of a record leaves the stream out
// of step for good, so the connection is shut and later exchanges fail.
//
// Ownership: the client owns its socket and joins its events thread when it
// is destroyed. Listeners stay their registrants'.
#ifndef CLASSES_CONFIG_ACCESS_SOCKET_CLIENT_H
#define CLASSES_CONFIG_ACCESS_SOCKET_CLIENT_H

#include <pthread.h>
#include <semaphore.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <list>
#include <mutex>
#include <string>
#include <vector>

#include "config/access/xconfigmgr_records.h"
#include "config/config.h"
#include "config/event_loss_counter.h"
#include "support/runnable.h"

class Socket;

namespace zyn {
namespace config {
namespace access {

// The entry of a client's events thread: runs ProcessEvents on the client.
void* thread_start(void* arg);

class SocketClient : public Config, public Runnable, public EventLossCounter {
 public:
  // The default response time-out: far beyond any answer of a loaded unit.
  static constexpr long kResponseTimeoutMs = 5000;
  // How many given-up requests are remembered for dropping late answers.
  static constexpr size_t kAbandonedMax = 64;

  SocketClient(unsigned int connectionID, Socket* socket, sem_t* semaphore, int& requestCounter,
               eConfigID_t configID);
  ~SocketClient() override;

  bool Set(eParam_t id, unsigned int value) override;
  // The value, or 0 on any failure.
  unsigned int Get(eParam_t id) override;
  eConfigID_t GetConfigID() override;
  timeval GetLastConfigUpdate() override;
  // Answered from this process's own descriptor registry, which is empty
  // unless the process built the catalogue.
  ParamDescriptor* GetParamDescriptor(eParam_t id) override;
  ParamDescriptor* GetParamDescriptor(std::string name) override;
  std::vector<unsigned int> GetParamIDs() override;
  bool Get(eParam_t id, unsigned int& value) override;
  // Sends the value without waiting: the owner answers only a refusal,
  // which a later exchange of this client skips.
  bool Set(eParam_t id, std::string value) override;
  bool Get(eParam_t id, std::string& value) override;
  bool AddConfigEventListener(ConfigEventListener* listener) override;
  bool AddConfigEventListener(eParam_t id, ConfigEventListener* listener) override;
  bool AddConfigEventListener(std::list<eParam_t> ids, ConfigEventListener* listener) override;
  // Removes the listener; the last one ends the event registration and
  // closes the connection. Returns false.
  bool RemoveConfigEventListener(ConfigEventListener* listener) override;
  // Registers for every parameter if needed, then blocks until one event
  // arrives (the time-outs are accepted and not applied).
  bool WaitForConfigEvent(ConfigEvent& event, long timeout, long interval) override;

  // 1 once the event connection has broken (the owner closed it or it
  // failed): every change after that is lost to this client's listeners.
  uint64_t LostEvents() const override { return _events_broken ? 1 : 0; }

  // The events thread's body.
  void Run() override;
  void ProcessEvents();

  unsigned int GetConnectionID() const { return _connection_id; }
  // The response time-out of this client's exchanges and the send time-out
  // of its requests, in milliseconds; 0 or less waits without limit.
  // Set before the client is shared between threads.
  void SetResponseTimeout(long ms);
  // Sends Disconnect Request and waits for its response; used by the factory.
  bool ConfirmDisconnect();

 private:
  // The next request ID of the factory's counter (under the semaphore).
  uint32_t NextRequestID();
  // Sends `length` bytes; false on a failed send.
  bool SendBytes(const char* bytes, size_t length);
  using Deadline = std::chrono::steady_clock::time_point;
  // Sends a request about `id` and reads its response by `deadline`, which
  // must be of type `expected` and carry no error. The caller holds the
  // semaphore. Refused on a connection the events thread reads.
  bool Exchange(uint32_t msgtype, eParam_t id, uint32_t expected, XCONFIGMGR_RESPONSE_T& response,
                Deadline deadline);
  // Reads the response to `request` by `deadline`, skipping refusals of
  // earlier string sets and late answers to abandoned requests. False with
  // the Get messages on a short read, a mismatch or a time-out.
  bool ReceiveResponse(const XCONFIGMGR_HEADER_T& request, XCONFIGMGR_RESPONSE_T& response,
                       Deadline deadline);
  // Reports a request whose response did not come in time. `inStep`: none
  // of it was read, so its answer is remembered for dropping; otherwise the
  // connection is shut. Returns false.
  bool GiveUp(uint32_t msgtype, uint32_t requestID, bool inStep);
  // True when `header` answers a request this client gave up on (which it
  // then forgets).
  bool IsAbandoned(const XCONFIGMGR_HEADER_T& header);
  // Reads a payload of `length` bytes by `deadline`; false when it cannot.
  bool ReadPayload(std::vector<char>& payload, uint32_t length, Deadline deadline);
  // Sends a 24- or 28-byte connection-level request and waits for its
  // 28-byte answer, directly or through the events thread.
  bool ConnectionExchange(const char* request, size_t length, const XCONFIGMGR_HEADER_T& header,
                          XCONFIGMGR_CONNECTION_RESPONSE_T& response);
  void RegisterForEvents(unsigned int paramID);
  bool UnregisterForEvents();
  bool StartEventsThread();
  void StopEventsThread();
  void ProcessConfigParamEvent(const XCONFIGMGR_RESPONSE_T& event);
  void ProcessConfigStreamParamEvent(const XCONFIGMGR_RESPONSE_T& event, const std::string& text);
  // Reads one event record (and its payload) from the socket. On false,
  // `unknown` tells an unknown record type from a failed read.
  bool ReadEvent(XCONFIGMGR_RESPONSE_T& event, std::string& text, bool& unknown);
  // Passes a connection-level response to the requester waiting for it, or
  // drops the late answer to a request given up on.
  enum class HandOverResult { kHandedOver, kDropped, kUnexpected };
  HandOverResult HandOver(const char* record);

  unsigned int _connection_id;
  Socket* _socket;
  int _fd;
  sem_t* _semaphore;
  int& _request_counter;  // guarded by *_semaphore
  eConfigID_t _config_id;
  std::list<ConfigEventListener*> _listeners;  // guarded by _listener_lock
  bool _registered;                            // guarded by *_semaphore
  bool _disconnected = false;                  // guarded by *_semaphore
  pthread_t _events_thread;
  bool _events_started;                     // a thread to join
  std::atomic<bool> _events_reading;        // the events thread reads the socket
  std::atomic<bool> _events_broken{false};  // it stopped on a failed read
  sem_t _listener_lock;

  std::atomic<long> _response_timeout_ms{kResponseTimeoutMs};

  // Hand-over of a connection-level response from the events thread, and
  // the requests given up on; all guarded by _handover_lock.
  std::mutex _handover_lock;
  std::condition_variable _handover_ready;
  std::deque<uint32_t> _abandoned;
  bool _handover_waiting = false;
  uint32_t _handover_request = 0;
  bool _handover_full = false;
  XCONFIGMGR_CONNECTION_RESPONSE_T _handover{};
};

}  // namespace access
}  // namespace config
}  // namespace zyn

#endif  // CLASSES_CONFIG_ACCESS_SOCKET_CLIENT_H
