// The URIs of the configuration store. A URI is free text searched by
// substrings, not parsed by position: the transport is the first of "tcp:",
// "udp:", "multicast:" found anywhere, else "local:"; "configid=" followed
// by a decimal number anywhere selects the store (0 when absent or
// unreadable); "caching=true" anywhere asks for a client-side cache.
#ifndef CLASSES_CONFIG_CONFIG_URI_H
#define CLASSES_CONFIG_CONFIG_URI_H

#include <string>

constexpr int kConfigPort = 43110;          // requests, on every transport
constexpr int kMulticastEventPort = 63110;  // UDP multicast events

// The URI a client of `transport` ("socket", "udp" or "tcp", compared
// exactly) connects to for requests, or "INVALID_URI".
std::string GetConfigURI(const std::string& transport);
// The URI that carries the events of `transport`, or "INVALID_URI".
std::string GetEventsURI(const std::string& transport);

// True when the URI names a network transport ("tcp:", "udp:" or
// "multicast:" anywhere in it).
bool IsNetworkURI(const std::string& uri);
// True when "caching=true" occurs in the URI.
bool WantsCaching(const std::string& uri);
// The URI of the multicast events that belong to a "udp:" URI: the group's
// port (63110, or "eventport=" followed by a decimal number anywhere in the
// URI) on 127.0.0.1, with the URI's "configid=" when it has one.
std::string MulticastEventsURI(const std::string& uri);

#endif  // CLASSES_CONFIG_CONFIG_URI_H
