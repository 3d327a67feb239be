#include "common/parameters.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <strings.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "common/display_scale.h"
#include "config/config.h"
#include "config/descriptors/enum_descriptor.h"
#include "config/descriptors/param_descriptors.h"
#include "config/descriptors/string_descriptor.h"
#include "config/mapper/tundra_param_mapper.h"
#include "support/logger.h"

namespace common {

namespace {

constexpr const char* kPrefix = "eParamID_";

bool SameIgnoringCase(const std::string& a, const std::string& b) {
  return a.size() == b.size() && strcasecmp(a.c_str(), b.c_str()) == 0;
}

// The length of the UTF-8 sequence starting at text[i], or 0 when it is not
// a valid one (overlong forms, surrogates and values past U+10FFFF included).
size_t Utf8Length(const std::string& text, size_t i) {
  auto byte = [&](size_t k) { return static_cast<unsigned char>(text[k]); };
  unsigned char lead = byte(i);
  if (lead < 0x80) return 1;
  size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 0;
  if (length == 0 || lead > 0xF4 || lead == 0xC0 || lead == 0xC1 || i + length > text.size())
    return 0;
  for (size_t k = 1; k < length; ++k)
    if ((byte(i + k) & 0xC0) != 0x80) return 0;
  unsigned char second = byte(i + 1);
  if ((lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) ||
      (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F))
    return 0;
  return length;
}

// "'TEXT' is not a value of NAME (0 First, 1 Second...)".
std::string NotAValue(EnumDescriptor* enumeration, const std::string& text) {
  std::vector<EnumValueDescriptor> values = enumeration->GetOrderedEnumValueDescriptors();
  std::string error = "'" + text + "' is not a value of " + enumeration->GetParamIDName() + " (";
  for (size_t i = 0; i < values.size(); ++i) {
    if (i > 0) error += ", ";
    error += std::to_string(values[i].GetValue()) + " " + values[i].GetName();
  }
  return error + ")";
}

// The value an enumeration's name or short name means: exact first, then
// ignoring case when that matches one value only.
bool EnumValueNamed(EnumDescriptor* enumeration, const std::string& text, unsigned int& number) {
  std::vector<EnumValueDescriptor> values = enumeration->GetOrderedEnumValueDescriptors();
  for (const EnumValueDescriptor& candidate : values) {
    if (candidate.GetName() == text || candidate.GetShortName() == text) {
      number = candidate.GetValue();
      return true;
    }
  }
  const EnumValueDescriptor* found = nullptr;
  for (const EnumValueDescriptor& candidate : values) {
    if (SameIgnoringCase(candidate.GetName(), text) ||
        SameIgnoringCase(candidate.GetShortName(), text)) {
      if (found != nullptr && found->GetValue() != candidate.GetValue()) return false;
      found = &candidate;
    }
  }
  if (found == nullptr) return false;
  number = found->GetValue();
  return true;
}

// The network addresses a user sets: a string of the network feature whose
// ID name ends in "_Static". The others (given by DHCP) are the unit's.
bool IsStaticAddress(const ParamDescriptor* descriptor) {
  static const std::string kSuffix = "_Static";
  const std::string& name = descriptor->GetParamIDName();
  return descriptor->GetFeatureType() == eFeature_Network && name.size() > kSuffix.size() &&
         name.compare(name.size() - kSuffix.size(), kSuffix.size(), kSuffix) == 0;
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
                std::string& error, bool raw) {
  value = ParamValue();
  if (IsStringParam(descriptor)) {
    value.isString = true;
    value.text = text;
    return CheckValue(descriptor, value, error);
  }
  DisplayScale scale = DisplayScale::Of(descriptor);
  if (!raw && scale.IsScaled())
    return scale.Parse(text, descriptor->GetParamIDName(), value.number, error);
  EnumDescriptor* enumeration = dynamic_cast<EnumDescriptor*>(descriptor);
  if (ParseNumber(text, value.number)) {
    if (enumeration == nullptr || CheckValue(descriptor, value, error)) return true;
    error = NotAValue(enumeration, text);
    return false;
  }
  if (enumeration == nullptr) {
    error = "'" + text + "' is not a number (decimal or 0x hex)";
    return false;
  }
  if (EnumValueNamed(enumeration, text, value.number)) return true;
  error = NotAValue(enumeration, text);
  return false;
}

bool CheckValue(const ParamDescriptor* descriptor, const ParamValue& value, std::string& error) {
  const std::string& name = descriptor->GetParamIDName();
  if (value.isString) {
    const std::string& text = value.text;
    for (size_t i = 0; i < text.size();) {
      size_t length = Utf8Length(text, i);
      if (length == 0) {
        error = "the text for " + name + " is not valid UTF-8 (byte " + std::to_string(i) + ")";
        return false;
      }
      if (text[i] == '\0') {
        error = "the text for " + name + " holds U+0000 (byte " + std::to_string(i) + ")";
        return false;
      }
      i += length;
    }
    // The addresses a user gives the unit (the _Static ones) are IPv4 in
    // dotted-quad form; inet_pton takes exactly that, each part 0 to 255.
    in_addr address;
    if (IsStaticAddress(descriptor) && inet_pton(AF_INET, text.c_str(), &address) != 1) {
      error = "refused \"" + text + "\" for " + name +
              ": it takes an IPv4 address in dotted-quad form, such as 192.168.0.2";
      return false;
    }
    if (auto* limits = dynamic_cast<const StringDescriptor*>(descriptor)) {
      if (text.size() < limits->GetMinLength() || text.size() > limits->GetMaxLength()) {
        // Quoted: the refused text may be empty or end in blanks.
        error = "refused \"" + text + "\" for " + name + ": it takes " +
                std::to_string(limits->GetMinLength()) + " to " +
                std::to_string(limits->GetMaxLength()) + " bytes, not " +
                std::to_string(text.size());
        return false;
      }
    }
    return true;
  }
  auto* enumeration = dynamic_cast<const EnumDescriptor*>(descriptor);
  if (enumeration != nullptr && enumeration->GetEnumValueDescriptor(value.number) == nullptr) {
    error = std::to_string(value.number) + " is not a value of " + name;
    return false;
  }
  return true;
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
  int target = zyn::logging::IsVerbose() ? STDERR_FILENO : open("/dev/null", O_WRONLY | O_CLOEXEC);
  if (saved >= 0 && target >= 0) dup2(target, STDOUT_FILENO);
  if (target != STDERR_FILENO && target >= 0) close(target);
  tundra::mapper::TundraParamMapper::Initialize();
  fflush(stdout);
  if (saved >= 0) {
    dup2(saved, STDOUT_FILENO);
    close(saved);
  }
}

}  // namespace common
