#include "config/config_factory_impl.h"

#include <cstdio>

#include "config/access/network_client.h"
#include "config/access/network_factory.h"
#include "config/config_uri.h"
#include "config/manager/config_cache.h"

using zyn::boxline::config::access::NetworkClient;
using zyn::boxline::config::access::NetworkFactory;

ConfigFactoryImpl* ConfigFactoryImpl::s_theSingleton = nullptr;

ConfigFactoryImpl::ConfigFactoryImpl()
    : _network_factory(new NetworkFactory()),
      _local_factory(new zyn::config::access::LocalConfigFactory()) {}

ConfigFactoryImpl::~ConfigFactoryImpl() {
  delete _network_factory;
  delete _local_factory;
}

ConfigFactoryImpl* ConfigFactoryImpl::GetInstance() {
  if (s_theSingleton == nullptr) s_theSingleton = new ConfigFactoryImpl();
  return s_theSingleton;
}

void ConfigFactoryImpl::Run() {}

Config* ConfigFactoryImpl::Connect(std::string uri) {
  if (!IsNetworkURI(uri)) {
    if (uri.find("local:") == std::string::npos) return nullptr;
    return ConnectLocal(uri, nullptr);
  }
  // A cache is made whatever the network factory returned, so a failed
  // connect still yields a cache (over nothing).
  Config* config = WantsCaching(uri) ? MakeCache(uri, ConnectNetwork(uri)) : ConnectNetwork(uri);
  if (config == nullptr)
    fprintf(stderr, "ConfigFactoryImpl::Connect - _network_factory->Connect() failed\n");
  return config;
}

Config* ConfigFactoryImpl::ConnectStore(uint32_t configID, bool* refused) {
  return ConnectLocal("local:configid=" + std::to_string(static_cast<int>(configID)), refused);
}

Config* ConfigFactoryImpl::ConnectLocal(const std::string& uri, bool* refused) {
  bool limited = false;
  Config* config = _local_factory->Connect(uri, &limited);
  if (refused != nullptr) *refused = limited;
  if (config == nullptr && !limited)
    fprintf(stderr, "ConfigFactoryImpl::Connect - local factory return NULL Config* for uri = %s\n",
            uri.c_str());
  return config;
}

bool ConfigFactoryImpl::Disconnect(Config* config) {
  if (config != nullptr && IsNetworkClient(config)) return DisconnectNetwork(config);
  return _local_factory->Disconnect(config);
}

Config* ConfigFactoryImpl::ConnectNetwork(const std::string& uri) {
  return _network_factory->Connect(uri);
}

bool ConfigFactoryImpl::IsNetworkClient(Config* config) {
  return dynamic_cast<NetworkClient*>(config) != nullptr;
}

bool ConfigFactoryImpl::DisconnectNetwork(Config* config) {
  return _network_factory->Disconnect(dynamic_cast<NetworkClient*>(config));
}

Config* ConfigFactoryImpl::MakeCache(const std::string& uri, Config* client) {
  // A UDP request client hears no events: they are multicast, and arrive on
  // a client bound to the event port. A TCP client carries its own events.
  if (client == nullptr || uri.find("udp:") == std::string::npos) return new ConfigCache(client);
  Config* events = ConnectNetwork(MulticastEventsURI(uri));
  if (events == nullptr)
    fprintf(stderr,
            "ConfigFactoryImpl::Connect - no event connection for %s, the cache will not hear "
            "other clients' changes\n",
            uri.c_str());
  return new ConfigCache(client, events);
}
