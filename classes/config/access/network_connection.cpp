#include "config/access/network_connection.h"

#include <cstdio>
#include <string>

#include "config/config.h"
#include "config/values/integer_value.h"
#include "config/values/string_value.h"

namespace zyn {
namespace boxline {
namespace config {
namespace access {

bool NetworkConnection::DoSetRequest(Config* config, ConfigValue* value) {
  switch (value->GetClassID()) {
    case eClassID_IntegerValue: {
      IntegerValue* integer = dynamic_cast<IntegerValue*>(value);
      if (integer == nullptr) {
        fprintf(
            stderr,
            "NetworkConnection::DoSetRequest - type error, configValue is not an IntegerValue\n");
        return false;
      }
      unsigned int v;
      integer->Get(v);
      return config->Set(integer->GetParamID(), v);
    }
    case eClassID_StringValue: {
      StringValue* text = dynamic_cast<StringValue*>(value);
      if (text == nullptr) {
        fprintf(stderr,
                "NetworkConnection::DoSetRequest - type error, configValue is not a StringValue\n");
        return false;
      }
      std::string v;
      text->Get(v);
      return config->Set(text->GetParamID(), v);
    }
    default:
      fprintf(stderr, "NetworkConnection::DoSetRequest - returning error (unsupported classID)\n");
      return false;
  }
}

}  // namespace access
}  // namespace config
}  // namespace boxline
}  // namespace zyn
