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
// Ownership: the client owns its socket and joins its events thread when it
// is destroyed. Listeners stay their registrants'.
#ifndef CLASSES_CONFIG_ACCESS_SOCKET_CLIENT_H
#define CLASSES_CONFIG_ACCESS_SOCKET_CLIENT_H

#include <pthread.h>
#include <semaphore.h>

#include <atomic>
#include <condition_variable>
#include <list>
#include <mutex>
#include <string>

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
  // How long a requester waits for a response the events thread hands over.
  static constexpr long kHandOverTimeoutMs = 5000;

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
  // Sends Disconnect Request and waits for its response; used by the factory.
  bool ConfirmDisconnect();

 private:
  // The next request ID of the factory's counter (under the semaphore).
  uint32_t NextRequestID();
  // Sends `length` bytes; false on a failed send.
  bool SendBytes(const char* bytes, size_t length);
  // Sends a request about `id` and reads its response, which must be of type
  // `expected` and carry no error. The caller holds the semaphore.
  bool Exchange(uint32_t msgtype, eParam_t id, uint32_t expected, XCONFIGMGR_RESPONSE_T& response);
  // Reads the response to `request`, skipping refusals of earlier string
  // sets. False with the Get messages on a short read or a mismatch.
  bool ReceiveResponse(const XCONFIGMGR_HEADER_T& request, XCONFIGMGR_RESPONSE_T& response);
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
  // Passes a connection-level response to a waiting requester; false when
  // none is waiting.
  bool HandOver(const char* record);

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

  // Hand-over of a connection-level response from the events thread.
  std::mutex _handover_lock;
  std::condition_variable _handover_ready;
  bool _handover_waiting = false;
  bool _handover_full = false;
  XCONFIGMGR_CONNECTION_RESPONSE_T _handover{};
};

}  // namespace access
}  // namespace config
}  // namespace zyn

#endif  // CLASSES_CONFIG_ACCESS_SOCKET_CLIENT_H
