// NetworkTCPClient is the NetworkClient of the TCP transport: records travel
// on one stream that carries requests, responses and, once the client has
// registered, change events. Its events thread is then the only reader of
// the stream: it calls the listeners for events and hands every response to
// the requester that waits for it under the socket lock, so requests keep
// working while listeners are registered. Listeners are called on the events
// thread and must not make requests on the same client from the callback.
//
// Ownership and locks as in NetworkClient; the destructor stops the events
// thread.
#ifndef CLASSES_CONFIG_ACCESS_NETWORK_TCP_CLIENT_H
#define CLASSES_CONFIG_ACCESS_NETWORK_TCP_CLIENT_H

#include "config/access/network_client.h"
#include "config/access/stream_io.h"

namespace zyn {
namespace boxline {
namespace config {
namespace access {

class NetworkTCPClient : public NetworkClient {
 public:
  // Takes ownership of a connected stream socket and sets its buffer sizes.
  NetworkTCPClient(unsigned int connectionID, Socket* socket, eConfigID_t configID);
  ~NetworkTCPClient() override;

  // Add Listener Request for `paramID` (0: every parameter); not answered.
  // The caller holds the socket lock.
  void RegisterForEvents(unsigned int paramID) override;
  void RegisterForEvents() override;
  // Remove Listener Request and its answer. The caller holds the socket lock.
  bool UnregisterForEvents() override;
  void ProcessEvents() override;

 protected:
  bool HasBufferedInput() const override { return _reader.Buffered(); }
  eReadResult ReadMessage(char* buffer, size_t capacity, size_t& length,
                          uint32_t& msgtype) override;

 private:
  // Reads the stream a record at a time in one system call; used by the
  // events thread while it runs, else by the requester under the socket
  // lock.
  ::zyn::config::access::StreamReader _reader;
};

}  // namespace access
}  // namespace config
}  // namespace boxline
}  // namespace zyn

#endif  // CLASSES_CONFIG_ACCESS_NETWORK_TCP_CLIENT_H
