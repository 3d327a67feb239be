// NetworkUDPClient is the NetworkClient of the UDP transport: each request
// and its answer is one datagram, and change events are multicast by the
// server to a group that the client joins when its first listener arrives.
// A client made for a "multicast" URI is bound to the event port instead of
// connected to a server: it only receives events.
//
// Threads: the events thread receives datagrams; string and data events go
// to the listeners at once, while integer events are queued for the
// response thread, which calls the listeners in arrival order. Both end
// after the system-state shut-down event. Responses that the events thread
// receives are handed to the waiting requester.
//
// Lost events: integer events carry the server's event sequence counter. A
// jump forward counts the skipped numbers as lost; a jump back means the
// server started again, whose events before the one received were lost. A
// repeated number is ignored.
//
// Locks: `_queue_lock` (a mutex, with `_queue_ready`) guards `_event_queue`
// and the response thread's state; the rest as in NetworkClient. The
// destructor stops both threads.
#ifndef CLASSES_CONFIG_ACCESS_NETWORK_UDP_CLIENT_H
#define CLASSES_CONFIG_ACCESS_NETWORK_UDP_CLIENT_H

#include <pthread.h>

#include <condition_variable>
#include <deque>
#include <mutex>

#include "config/access/network_client.h"

namespace zyn {
namespace boxline {
namespace config {
namespace access {

class NetworkUDPClient : public NetworkClient {
 public:
  // Takes ownership of a datagram socket, connected to the server or, with
  // `eventsOnly`, bound to the event port. Sets its buffer sizes and starts
  // the response thread.
  NetworkUDPClient(unsigned int connectionID, Socket* socket, eConfigID_t configID,
                   bool eventsOnly = false);
  ~NetworkUDPClient() override;

  using NetworkClient::Get;
  using NetworkClient::Set;
  // Waits for the server's Set Response: true when the store took the value.
  bool Set(eParam_t id, unsigned int value) override;
  bool Get(eParam_t id, std::string& value) override;
  bool GetData(eParam_t id, std::string& data) override;
  bool SetData(eParam_t id, std::string& data) override;
  // Nothing to say for an events-only client.
  bool ConfirmDisconnect() override;
  // Joins (leaves) the event group on the loopback interface.
  void RegisterForEvents() override;
  bool UnregisterForEvents() override;
  void ProcessEvents() override;

 protected:
  eReadResult ReadMessage(char* buffer, size_t capacity, size_t& length,
                          uint32_t& msgtype) override;

 private:
  static void* ResponseThreadEntry(void* arg);
  void ProcessResponses();
  // Starts the response thread unless it runs; joins one that ended.
  void StartResponseThread();
  // Counts the events lost before the one numbered `sequence`.
  void CheckSequence(uint32_t sequence);
  static bool IsShutdown(const XCONFIGMGR_RESPONSE_T& event);

  pthread_t _response_thread;
  std::mutex _queue_lock;
  std::condition_variable _queue_ready;
  std::deque<XCONFIGMGR_RESPONSE_T> _event_queue;  // guarded by _queue_lock
  bool _stop_responses = false;                    // guarded by _queue_lock
  bool _responses_running = false;                 // guarded by _queue_lock
  bool _response_started = false;                  // a thread to join; events thread and destructor

  bool _events_only;
  bool _have_sequence = false;  // events thread only
  uint32_t _last_sequence = 0;  // events thread only
};

}  // namespace access
}  // namespace config
}  // namespace boxline
}  // namespace zyn

#endif  // CLASSES_CONFIG_ACCESS_NETWORK_UDP_CLIENT_H
