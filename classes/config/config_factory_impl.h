// ConfigFactoryImpl is the process's default factory: it routes a URI to the
// in-process factory ("local:") or to a network transport ("tcp:", "udp:",
// "multicast:", which take precedence). "socket:" URIs belong to the socket
// client's own factory and are not routed here.
//
// This build carries no network transport, so network URIs are refused with
// the network-connect failure message; the routing is complete and only
// ConnectNetwork and DisconnectNetwork gain a body when one is linked in.
//
// One instance per process (GetInstance), never destroyed by the library.
// GetInstance is not guarded against concurrent first calls: call it once
// before starting threads. Connect and Disconnect hold no lock of their own;
// the local factory serialises itself.
#ifndef CLASSES_CONFIG_CONFIG_FACTORY_IMPL_H
#define CLASSES_CONFIG_CONFIG_FACTORY_IMPL_H

#include <string>

#include "config/config_factory.h"
#include "config/local_config_factory.h"

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

 private:
  // The network transport's Connect; null while none is linked in.
  Config* ConnectNetwork(const std::string& uri);
  // Whether `config` is a network client, and its release.
  bool IsNetworkClient(Config* config);
  bool DisconnectNetwork(Config* config);

  zyn::config::access::LocalConfigFactory* _local_factory;
  static ConfigFactoryImpl* s_theSingleton;
};

#endif  // CLASSES_CONFIG_CONFIG_FACTORY_IMPL_H
