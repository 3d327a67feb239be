#include "config/descriptors/catalogue_family.h"

#include <cstdarg>
#include <cstdio>

#include "config/descriptors/decimal_descriptor.h"
#include "config/descriptors/enum_descriptor.h"

namespace zyn {
namespace config {
namespace catalogue {

IntegerDescriptor* CopyClone(const IntegerDescriptor& clone, unsigned int id,
                             const std::string& id_name) {
  IntegerDescriptor* member = nullptr;
  if (const EnumDescriptor* enumeration = dynamic_cast<const EnumDescriptor*>(&clone)) {
    member = new EnumDescriptor(*enumeration);
  } else if (const DecimalDescriptor* decimal = dynamic_cast<const DecimalDescriptor*>(&clone)) {
    member = new DecimalDescriptor(*decimal);
  } else {
    member = new IntegerDescriptor(clone);
  }
  member->SetParamID(id);
  member->SetParamIDName(id_name);
  return member;
}

std::string Format(const char* pattern, ...) {
  char text[256];
  va_list args;
  va_start(args, pattern);
  vsnprintf(text, sizeof text, pattern, args);
  va_end(args);
  return text;
}

ParamDescriptor* BuildMember(const CatalogueRow& pattern, unsigned int id,
                             const std::string& id_name, const std::string& name,
                             const std::string& short_name, const std::string& menu) {
  ParamDescriptor* d = BuildDescriptor(pattern);
  d->SetParamID(id);
  d->SetParamIDName(id_name);
  d->SetName(name);
  d->SetShortName(short_name);
  if (!menu.empty()) d->AddAttribute("menu_number", menu);
  return d;
}

}  // namespace catalogue
}  // namespace config
}  // namespace zyn
