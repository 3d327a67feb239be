// NetworkConnection is the common base of the network server's connections:
// the TCP connection that serves one client and the UDP connection that
// serves every datagram. It holds no data; it offers the one step both
// share, applying a value received from a client to a store.
//
// Thread-safety: DoSetRequest uses only its arguments; the store serialises
// itself.
#ifndef CLASSES_CONFIG_ACCESS_NETWORK_CONNECTION_H
#define CLASSES_CONFIG_ACCESS_NETWORK_CONNECTION_H

class Config;
class ConfigValue;

namespace zyn {
namespace boxline {
namespace config {
namespace access {

class NetworkConnection {
 public:
  NetworkConnection() = default;
  virtual ~NetworkConnection() = default;
  NetworkConnection(const NetworkConnection&) = delete;
  NetworkConnection& operator=(const NetworkConnection&) = delete;

  // Applies `value` to `config` under the parameter ID the value carries:
  // an IntegerValue as an integer Set, a StringValue as a string Set. False
  // (with a message) for a value of any other class, a value whose object
  // does not match its class ID, or a refusal by the store.
  bool DoSetRequest(Config* config, ConfigValue* value);
};

}  // namespace access
}  // namespace config
}  // namespace boxline
}  // namespace zyn

#endif  // CLASSES_CONFIG_ACCESS_NETWORK_CONNECTION_H
