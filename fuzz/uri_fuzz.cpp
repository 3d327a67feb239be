// URI parsing: the input as a configuration URI, split by url::parse and
// searched by the URI helpers and the local factory's store lookup, as the
// factories do before they connect anywhere. Nothing connects.
#include <string>

#include "config/access/url.h"
#include "config/config_uri.h"
#include "config/local_config_factory.h"
#include "fuzz_common.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz::Initialize(false);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string uri(reinterpret_cast<const char*>(data), size);
  zyn::config::access::url parts;
  if (parts.parse(uri)) {
    if (parts.scheme.empty() || parts.host.empty() || parts.port.empty() ||
        parts.scheme.size() > zyn::config::access::url::kMaxWord ||
        parts.host.size() > zyn::config::access::url::kMaxWord ||
        parts.port.size() > zyn::config::access::url::kMaxWord)
      abort();  // a successful split gives three words of bounded length
  }
  IsNetworkURI(uri);
  WantsCaching(uri);
  MulticastEventsURI(uri);
  GetConfigURI(uri);
  GetEventsURI(uri);
  zyn::config::access::LocalConfigFactory::GetConfigID(uri);
  return 0;
}
