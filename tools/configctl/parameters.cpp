#include "configctl/parameters.h"

#include <strings.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "config/config.h"
#include "config/descriptors/enum_descriptor.h"
#include "config/descriptors/param_descriptors.h"
#include "config/descriptors/string_descriptor.h"
#include "config/mapper/tundra_param_mapper.h"

namespace configctl {

namespace {

constexpr const char* kPrefix = "eParamID_";

bool SameIgnoringCase(const std::string& a, const std::string& b) {
  return a.size() == b.size() && strcasecmp(a.c_str(), b.c_str()) == 0;
}

}  // namespace

bool ParseNumber(const std::string& text, unsigned int& value) {
  bool hex = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
  const char* digits = text.c_str() + (hex ? 2 : 0);
  // strtoull would accept blanks and a sign before the digits.
  bool first = hex ? isxdigit(static_cast<unsigned char>(*digits)) != 0
                   : isdigit(static_cast<unsigned char>(*digits)) != 0;
  if (!first) return false;
  errno = 0;
  char* end = nullptr;
  unsigned long long parsed = strtoull(digits, &end, hex ? 16 : 10);
  if (errno != 0 || *end != '\0' || parsed > 0xFFFFFFFFull) return false;
  value = static_cast<unsigned int>(parsed);
  return true;
}

ParamDescriptor* FindParameter(const std::string& text) {
  if (text.empty()) return nullptr;
  if (ParamDescriptor* exact = GetDescriptor(text)) return exact;
  if (ParamDescriptor* shortForm = GetDescriptor(kPrefix + text)) return shortForm;
  unsigned int id = 0;
  if (ParseNumber(text, id)) return GetDescriptor(id);
  ParamDescriptor* found = nullptr;
  for (const std::string& name : GetParamIDNames()) {
    if (SameIgnoringCase(name, text) || SameIgnoringCase(name, kPrefix + text)) {
      if (found != nullptr) return nullptr;  // ambiguous
      found = GetDescriptor(name);
    }
  }
  return found;
}

bool IsStringParam(const ParamDescriptor* descriptor) {
  return dynamic_cast<const StringDescriptor*>(descriptor) != nullptr ||
         descriptor->GetParamType() == eCParam_StringValue;
}

bool ParseValue(ParamDescriptor* descriptor, const std::string& text, ParamValue& value,
                std::string& error) {
  value = ParamValue();
  if (IsStringParam(descriptor)) {
    value.isString = true;
    value.text = text;
    return true;
  }
  if (ParseNumber(text, value.number)) return true;
  EnumDescriptor* enumeration = dynamic_cast<EnumDescriptor*>(descriptor);
  if (enumeration == nullptr) {
    error = "'" + text + "' is not a number (decimal or 0x hex)";
    return false;
  }
  std::vector<EnumValueDescriptor> values = enumeration->GetOrderedEnumValueDescriptors();
  for (const EnumValueDescriptor& candidate : values) {
    if (candidate.GetName() == text || candidate.GetShortName() == text) {
      value.number = candidate.GetValue();
      return true;
    }
  }
  const EnumValueDescriptor* found = nullptr;
  for (const EnumValueDescriptor& candidate : values) {
    if (SameIgnoringCase(candidate.GetName(), text) ||
        SameIgnoringCase(candidate.GetShortName(), text)) {
      if (found != nullptr && found->GetValue() != candidate.GetValue()) {
        found = nullptr;
        break;
      }
      found = &candidate;
    }
  }
  if (found != nullptr) {
    value.number = found->GetValue();
    return true;
  }
  error = "'" + text + "' is not a value of " + descriptor->GetParamIDName() + " (";
  for (size_t i = 0; i < values.size(); ++i) {
    if (i > 0) error += ", ";
    error += std::to_string(values[i].GetValue()) + " " + values[i].GetName();
  }
  error += ")";
  return false;
}

bool ReadValue(Config* config, const ParamDescriptor* descriptor, ParamValue& value) {
  value = ParamValue();
  value.isString = IsStringParam(descriptor);
  unsigned int id = descriptor->GetParamID();
  return value.isString ? config->Get(id, value.text) : config->Get(id, value.number);
}

void BuildMapperTables() {
  fflush(stdout);
  int saved = dup(STDOUT_FILENO);
  if (saved >= 0) dup2(STDERR_FILENO, STDOUT_FILENO);
  tundra::mapper::TundraParamMapper::Initialize();
  fflush(stdout);
  if (saved >= 0) {
    dup2(saved, STDOUT_FILENO);
    close(saved);
  }
}

}  // namespace configctl
