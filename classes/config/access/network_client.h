// NetworkClient is a Config in a process that reaches the settings owner
// over TCP or UDP: every Get and Set is one request/response exchange on the
// client's socket, and registered listeners are fed from an events thread.
// NetworkTCPClient and NetworkUDPClient supply the transport: how a record is
// read from the socket, how events are registered and how they arrive.
//
// Ownership: the client owns its socket and its threads, and joins them when
// it is destroyed. Listeners stay their registrants'.
//
// Locks: `_socket_lock` serialises every exchange on the socket and the
// start and stop of the events thread; `_listener_lock` guards `_listeners`
// and is held while listeners are called (taken after `_socket_lock` when
// both are held). Once the events thread runs it is the only reader of the
// socket: a requester registers under `_handover_lock` before it sends, and
// the events thread hands it the response record (with its payload).
//
// Time-outs: a requester that waits longer than ResponseTimeoutMs() for an
// integer response ends the whole process with exit(errno) (exit(-1) when
// errno is 0): a silent settings server is fatal to its clients. The wait is
// 60000 ms; SetResponseTimeoutMs exists so tests can shorten it.
//
// Lost events: a client whose events can be dropped in transit (UDP) counts
// the gaps in the server's event sequence; LostEvents may be read from any
// thread.
#ifndef CLASSES_CONFIG_ACCESS_NETWORK_CLIENT_H
#define CLASSES_CONFIG_ACCESS_NETWORK_CLIENT_H

#include <pthread.h>
#include <semaphore.h>

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include "config/access/xconfigmgr_records.h"
#include "config/config.h"
#include "config/event_loss_counter.h"

class Socket;

namespace zyn {
namespace boxline {
namespace config {
namespace access {

// The largest message of the UDP transport: one record and its payload.
constexpr size_t kXConfigDatagramSize = 24 * 1024;
// Where UDP events are multicast, and the interface clients join it on.
constexpr const char* kXConfigEventGroup = "239.18.27.18";
constexpr int kXConfigEventPort = 63110;
constexpr const char* kXConfigEventInterface = "127.0.0.1";
// The system-state parameter and its shut-down value.
constexpr uint32_t kSystemStateParamID = 0x7D02010A;
constexpr uint32_t kSystemStateShutdown = 9;

class NetworkClient : public Config, public EventLossCounter {
 public:
  static constexpr int kDefaultResponseTimeoutMs = 60000;
  // Socket buffer sizes of both transports.
  static constexpr int kSocketBufferSize = 108544;

  // Takes ownership of the socket, already connected (or bound, for a client
  // that only receives events).
  NetworkClient(unsigned int connectionID, Socket* socket, eConfigID_t configID);
  ~NetworkClient() override;

  // The parameter's value, or 0 on failure (also when the parameter has no
  // descriptor in this process).
  unsigned int Get(eParam_t id) override;
  // Sends the value; true once it is on its way (TCP) or accepted (UDP).
  bool Set(eParam_t id, unsigned int value) override;
  eConfigID_t GetConfigID() override;
  timeval GetLastConfigUpdate() override;
  // Answered from this process's descriptor catalogue.
  ParamDescriptor* GetParamDescriptor(eParam_t id) override;
  ParamDescriptor* GetParamDescriptor(std::string name) override;
  std::vector<unsigned int> GetParamIDs() override;
  bool Get(eParam_t id, unsigned int& value) override;
  // Sends the value without waiting for an answer.
  bool Set(eParam_t id, std::string value) override;
  bool Get(eParam_t id, std::string& value) override;
  // The first listener registers with the server (once) and starts the
  // events thread; a listener already present is kept once. Returns true.
  bool AddConfigEventListener(ConfigEventListener* listener) override;
  // Removes the listener; the last one unregisters and stops the events
  // thread. True when the listener was registered.
  bool RemoveConfigEventListener(ConfigEventListener* listener) override;

  // Connect Request and its answer: true when the server opened the store.
  virtual bool ConfirmConnection();
  // Disconnect Request and its answer.
  virtual bool ConfirmDisconnect();
  virtual void RegisterForEvents(unsigned int paramID);
  virtual void RegisterForEvents();
  virtual bool UnregisterForEvents();
  // The events thread's body; returns when the thread is stopped, the
  // connection ends or the server shuts down.
  virtual void ProcessEvents() = 0;
  // The client keeps no copies: never dirty.
  virtual bool IsDirty(unsigned int paramID, eConfigID_t configID);

  [[nodiscard]] uint64_t LostEvents() const override;

  unsigned int GetConnectionID() const { return _connection_id; }
  // The wait for a response before the process is ended, for clients made
  // afterwards; the default is kDefaultResponseTimeoutMs. Values below 1
  // restore the default.
  static void SetResponseTimeoutMs(int milliseconds);
  static int ResponseTimeoutMs();

 protected:
  // How a read of one message from the socket ended.
  enum eReadResult { eReadMessage, eReadClosed, eReadError, eReadUnknown, eReadInvalid };

  // Reads one whole message (record and payload) into `buffer`, which holds
  // `capacity` bytes (at least kXConfigDatagramSize); `length` receives its
  // size and `msgtype` its type.
  virtual eReadResult ReadMessage(char* buffer, size_t capacity, size_t& length,
                                  uint32_t& msgtype) = 0;

  // The texts a value exchange reports its failures with; `timeout` null
  // means the exchange waits for ever.
  struct StreamMessages {
    const char* timeout;
    const char* error;
    const char* invalidLength;
    const char* shortRead;
  };

  // Bounds every receive on the socket by the response wait, so that a
  // requester reads without a select of its own first.
  void TimeReceives();
  // Sends a whole message; false on failure.
  bool SendMessage(const char* bytes, size_t length);
  // Registers as the waiter for the events thread's hand-over. Call under
  // `_socket_lock` before the request is sent; CancelResponse undoes it when
  // the send fails.
  void ExpectResponse();
  void CancelResponse();
  // Waits for the answer to the request just sent and copies it to
  // `message`. With `timeoutMs` >= 0 (a select, or the socket's own receive
  // time-out after TimeReceives, bounds a read) and a `timeoutFormat` (printed with the socket's
  // port and the process ID), a silent server ends the process; without a format the wait just
  // fails; with -1 it waits for ever. Events met on the way are skipped. The caller holds
  // `_socket_lock`.
  eReadResult AwaitResponse(std::vector<char>& message, int timeoutMs, const char* timeoutFormat);
  // Sends a 40-byte request and waits for its 44-byte response of type
  // `expected`; `recvFailed` reports a missing or short response.
  bool IntegerExchange(uint32_t msgtype, eParam_t id, uint32_t value, uint32_t expected,
                       const char* timeoutFormat, const char* recvFailed,
                       XCONFIGMGR_RESPONSE_T& response);
  // Sends a 40-byte request followed by the encoded value `text` of `id`.
  bool SendValue(uint32_t msgtype, eParam_t id, const std::string& text, const char* caller);
  // Asks for a value that comes back as a payload and decodes its text.
  bool StreamExchange(uint32_t msgtype, eParam_t id, uint32_t expected,
                      const StreamMessages& messages, std::string& value);
  // A connection-level exchange (Connect, Disconnect) reported under
  // `prefix`.
  bool ConnectionExchange(uint32_t msgtype, uint32_t expected, const char* prefix);
  // True when the parameter has a descriptor here; otherwise prints `format`.
  bool KnownParam(eParam_t id, const char* format);

  // Offers a response read by the events thread to the waiting requester;
  // false (and dropped) when nobody waits for it.
  bool HandOver(const char* message, size_t length);
  // Blocks until the socket is readable or the thread is asked to stop;
  // false on a stop.
  bool WaitForSocketOrStop();
  // True when a transport that reads through a buffer holds bytes already
  // received, which no poll of the socket would announce.
  virtual bool HasBufferedInput() const { return false; }

  bool StartEventsThread();
  void StopEventsThread();
  // The events thread ended: a waiting requester reads for itself.
  void EventsReaderEnded();

  void ProcessConfigParamEvent(const XCONFIGMGR_RESPONSE_T& event);
  void ProcessConfigStreamParamEvent(uint32_t paramID, const char* payload, size_t length);
  void ProcessConfigDataEvent(uint32_t paramID, const char* payload, size_t length);

  std::vector<ConfigEventListener*> _listeners;  // guarded by _listener_lock
  sem_t _listener_lock;
  eConfigID_t _config_id;
  unsigned int _connection_id;
  Socket* _socket;
  bool _registered;  // guarded by _socket_lock
  uint32_t _reserved[2] = {0, 0};
  pthread_t _events_thread;
  std::atomic<bool> _stop_events;
  sem_t _socket_lock;

  int _fd;
  bool _events_started = false;              // a thread to join; guarded by _socket_lock
  std::atomic<bool> _events_reading{false};  // the events thread owns the socket's reads
  int _wake[2] = {-1, -1};                   // a pipe that wakes the events thread to stop
  std::atomic<uint64_t> _lost_events{0};
  std::vector<char> _request_buffer;  // guarded by _socket_lock
  std::vector<char> _response;        // the last answer; guarded by _socket_lock
  bool _timed_receives = false;       // set once, before any request

 private:
  static void* EventsThreadEntry(void* arg);
  eReadResult ReadOwnResponse(std::vector<char>& message, int timeoutMs, const char* timeoutFormat);
  // Reports a missed response and ends the process.
  [[noreturn]] void TimedOut(const char* timeoutFormat);

  std::mutex _handover_lock;
  std::condition_variable _handover_ready;
  bool _handover_waiting = false;  // guarded by _handover_lock
  bool _handover_full = false;     // guarded by _handover_lock
  std::vector<char> _handover;     // guarded by _handover_lock

  static std::atomic<int> s_response_timeout_ms;
};

}  // namespace access
}  // namespace config
}  // namespace boxline
}  // namespace zyn

#endif  // CLASSES_CONFIG_ACCESS_NETWORK_CLIENT_H
