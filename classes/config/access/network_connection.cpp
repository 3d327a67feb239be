#include "config/access/network_connection.h"

#include <cerrno>
#include <cstdio>
#include <string>

#include "config/config.h"
#include "config/values/integer_value.h"
#include "config/values/string_value.h"
#include "support/rate_limited_log.h"

namespace zyn {
namespace boxline {
namespace config {
namespace access {

bool NetworkConnection::DoSetRequest(Config* config, ConfigValue* value) {
  switch (value->GetClassID()) {
    case eClassID_IntegerValue: {
      IntegerValue* integer = dynamic_cast<IntegerValue*>(value);
      if (integer == nullptr) {
        RateLimitedLog::Report(
            "NetworkConnection::DoSetRequest - type error, configValue is not an IntegerValue");
        return false;
      }
      unsigned int v;
      integer->Get(v);
      return config->Set(integer->GetParamID(), v);
    }
    case eClassID_StringValue: {
      StringValue* text = dynamic_cast<StringValue*>(value);
      if (text == nullptr) {
        RateLimitedLog::Report(
            "NetworkConnection::DoSetRequest - type error, configValue is not a StringValue");
        return false;
      }
      std::string v;
      text->Get(v);
      return config->Set(text->GetParamID(), v);
    }
    default:
      RateLimitedLog::Report(
          "NetworkConnection::DoSetRequest - returning error (unsupported classID)");
      return false;
  }
}

}  // namespace access
}  // namespace config
}  // namespace boxline
}  // namespace zyn
