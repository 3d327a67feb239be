// NetworkFactory turns a network URI into a connected client of the settings
// owner: "tcp://host:port" gives a NetworkTCPClient, "udp://host:port" a
// NetworkUDPClient, both confirmed with a Connect exchange, and
// "multicast://host:port" a NetworkUDPClient bound to that port that only
// receives the multicast change events. An optional "configid=N" picks the
// store (0 otherwise).
//
// The factory holds no state of its own and no lock; clients are owned by
// the caller and released with Disconnect (or deleted).
#ifndef CLASSES_CONFIG_ACCESS_NETWORK_FACTORY_H
#define CLASSES_CONFIG_ACCESS_NETWORK_FACTORY_H

#include <string>

namespace zyn {
namespace boxline {
namespace config {
namespace access {

class NetworkClient;

class NetworkFactory {
 public:
  NetworkFactory() = default;
  virtual ~NetworkFactory() = default;
  NetworkFactory(const NetworkFactory&) = delete;
  NetworkFactory& operator=(const NetworkFactory&) = delete;

  // A connected client owned by the caller, or null with a message.
  NetworkClient* Connect(std::string uri);
  // Says goodbye for the client and destroys it; the goodbye's result.
  bool Disconnect(NetworkClient* client);
};

}  // namespace access
}  // namespace config
}  // namespace boxline
}  // namespace zyn

#endif  // CLASSES_CONFIG_ACCESS_NETWORK_FACTORY_H
