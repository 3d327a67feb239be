#include "config/config_uri.h"

#include <cstdio>

namespace {

struct TransportURIs {
  const char* transport;
  const char* config;
  const char* events;
};

// Looked up in this order, by exact comparison.
constexpr TransportURIs kTransports[] = {
    {"socket", "socket://127.0.0.1:43110/caching=true", "socket://127.0.0.1:43110"},
    {"udp", "udp://127.0.0.1:43110", "multicast://127.0.0.1:63110"},
    {"tcp", "tcp://127.0.0.1:43110", "tcp://127.0.0.1:43110"},
};

constexpr const char* kInvalidURI = "INVALID_URI";

const TransportURIs* Find(const std::string& transport) {
  for (const TransportURIs& entry : kTransports)
    if (transport == entry.transport) return &entry;
  return nullptr;
}

bool Contains(const std::string& uri, const char* text) {
  return uri.find(text) != std::string::npos;
}

}  // namespace

std::string GetConfigURI(const std::string& transport) {
  const TransportURIs* entry = Find(transport);
  return entry != nullptr ? entry->config : kInvalidURI;
}

std::string GetEventsURI(const std::string& transport) {
  const TransportURIs* entry = Find(transport);
  return entry != nullptr ? entry->events : kInvalidURI;
}

bool IsNetworkURI(const std::string& uri) {
  return Contains(uri, "tcp:") || Contains(uri, "udp:") || Contains(uri, "multicast:");
}

bool WantsCaching(const std::string& uri) { return Contains(uri, "caching=true"); }

std::string MulticastEventsURI(const std::string& uri) {
  int port = kMulticastEventPort;
  size_t at = uri.find("eventport=");
  if (at != std::string::npos && sscanf(uri.c_str() + at, "eventport=%d", &port) != 1)
    port = kMulticastEventPort;
  std::string events = "multicast://127.0.0.1:" + std::to_string(port);
  int configID = 0;
  at = uri.find("configid=");
  if (at != std::string::npos && sscanf(uri.c_str() + at, "configid=%d", &configID) == 1)
    events += "/configid=" + std::to_string(configID);
  return events;
}
