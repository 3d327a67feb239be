// ConfigFactoryImpl is the process's default factory: it routes a URI to the
// in-process factory ("local:") or to a network transport ("tcp:", "udp:",
// "multicast:", which take precedence). "socket:" URIs belong to the socket
// client's own factory and are not routed here.
//
// Network URIs go to the NetworkFactory, which the factory owns; a
// NetworkClient handed out that way is released through Disconnect. With
// "caching=true" the client comes wrapped in a ConfigCache kept current by
// the client's events (for UDP, by a second client on the multicast port).
//
// One instance per process (GetInstance), never destroyed by the library.
// GetInstance is not guarded against concurrent first calls: call it once
// before starting threads. Connect and Disconnect hold no lock of their own;
// the local factory serialises itself.
#ifndef CLASSES_CONFIG_CONFIG_FACTORY_IMPL_H
#define CLASSES_CONFIG_CONFIG_FACTORY_IMPL_H

#include <cstdint>
#include <string>

#include "config/config_factory.h"
#include "config/local_config_factory.h"

namespace zyn {
namespace boxline {
namespace config {
namespace access {
class NetworkFactory;
}  // namespace access
}  // namespace config
}  // namespace boxline
}  // namespace zyn

class ConfigFactoryImpl : public ConfigFactory {
 public:
  ConfigFactoryImpl();
  ~ConfigFactoryImpl() override;

  static ConfigFactoryImpl* GetInstance();

  // Nothing to run.
  void Run() override;
  // The Config for `uri`, or null (silently when the URI names no transport
  // this factory routes).
  Config* Connect(std::string uri) override;
  bool Disconnect(Config* config) override;

  // The in-process store `configID` for a server's client (the local URI
  // "local:configid=" and the decimal ID), or null. *refused tells a
  // refusal by the store limit, already reported (at most once a second),
  // from a store that could not be made.
  Config* ConnectStore(uint32_t configID, bool* refused);
  // Gives back a store from ConnectStore only when no one else holds it;
  // see LocalConfigFactory::DisconnectIfUnshared.
  bool DisconnectStoreIfUnshared(Config* config) {
    return _local_factory->DisconnectIfUnshared(config);
  }
  // The number of in-process stores open now.
  [[nodiscard]] size_t OpenStoreCount() { return _local_factory->OpenCount(); }
  // At most `count` in-process stores open at once (0, the default: no
  // limit); see LocalConfigFactory::SetMaxStores.
  void SetMaxStores(int count) { _local_factory->SetMaxStores(count); }

 private:
  // The local factory's store for `uri`; the failure line only when the
  // store limit did not refuse it.
  Config* ConnectLocal(const std::string& uri, bool* refused);
  // The network factory's client for `uri`, or null.
  Config* ConnectNetwork(const std::string& uri);
  // The cache handed out for "caching=true": over `client` (which may be
  // null), with a multicast event connection for a UDP client. The caller
  // owns it and deletes it; Disconnect does not release a cache.
  Config* MakeCache(const std::string& uri, Config* client);
  // Whether `config` is a network client (by run-time type), and its
  // release through the network factory.
  bool IsNetworkClient(Config* config);
  bool DisconnectNetwork(Config* config);

  zyn::boxline::config::access::NetworkFactory* _network_factory;
  zyn::config::access::LocalConfigFactory* _local_factory;
  static ConfigFactoryImpl* s_theSingleton;
};

#endif  // CLASSES_CONFIG_CONFIG_FACTORY_IMPL_H
