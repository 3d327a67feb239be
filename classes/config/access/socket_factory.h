// SocketFactory opens clients of the local configuration protocol: for a
// "socket://host:port" URI (with an optional "configid=N") it connects,
// confirms the connection with a Connect Request and returns a SocketClient.
// With "caching=true" in the URI it returns a ConfigCache instead, over two
// confirmed clients: one for requests and one that carries the change
// events which keep the cache current.
// The factory owns the request counter and the semaphore that it and all of
// its clients share: one exchange at a time per factory, so a program that
// wants parallel requests uses one factory per thread.
//
// Clients must be released with Disconnect before the factory is destroyed.
#ifndef CLASSES_CONFIG_ACCESS_SOCKET_FACTORY_H
#define CLASSES_CONFIG_ACCESS_SOCKET_FACTORY_H

#include <semaphore.h>

#include <string>

#include "config/config_types.h"

class Config;
class Socket;

namespace zyn {
namespace config {
namespace access {

class SocketClient;

class SocketFactory {
 public:
  SocketFactory();
  virtual ~SocketFactory();
  SocketFactory(const SocketFactory&) = delete;
  SocketFactory& operator=(const SocketFactory&) = delete;

  // A connected, confirmed client (or cache over two clients) owned by the
  // caller, or null with a message.
  Config* Connect(std::string uri);
  // Sends Connect Request and checks the 28-byte answer.
  bool ConfirmConnection(Socket* socket, unsigned int connectionID, eConfigID_t configID);
  // Sends Disconnect Request and checks the answer.
  bool ConfirmDisconnect(Socket* socket, unsigned int connectionID, eConfigID_t configID);
  // Says goodbye on each connection of what Connect returned, stops the
  // events threads and destroys it. Anything else is refused with a message.
  void Disconnect(Config* config);
  // How long the factory's exchanges wait for the owner's answer, in
  // milliseconds (SocketClient::kResponseTimeoutMs unless set; 0 or less:
  // without limit); clients opened afterwards take it as their own.
  void SetResponseTimeout(long ms) { _response_timeout_ms = ms; }

 private:
  // Steps of Connect for one connection: a confirmed client, or null.
  SocketClient* Open(const std::string& host, int port, eConfigID_t configID);
  bool ConnectionExchange(Socket* socket, uint32_t msgtype, uint32_t expected,
                          unsigned int connectionID, eConfigID_t configID);

  int _request_counter;  // guarded by _semaphore
  sem_t _semaphore;
  long _response_timeout_ms;
};

}  // namespace access
}  // namespace config
}  // namespace zyn

#endif  // CLASSES_CONFIG_ACCESS_SOCKET_FACTORY_H
