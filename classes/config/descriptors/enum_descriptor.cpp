#include "config/descriptors/enum_descriptor.h"

#include <cstdio>
#include <utility>

EnumValueDescriptor::EnumValueDescriptor(unsigned int enum_value, std::string display_name,
                                         std::string short_name, const EnumValueData* extras,
                                         std::string extra_text)
    : value(enum_value),
      name(std::move(display_name)),
      shortName(std::move(short_name)),
      text(std::move(extra_text)) {
  if (extras != nullptr) data = *extras;
}

EnumDescriptor::~EnumDescriptor() = default;

const EnumDescriptor::EnumValueMap& EnumDescriptor::GetEnumValueDescriptors() const {
  return values;
}

std::vector<EnumValueDescriptor> EnumDescriptor::GetOrderedEnumValueDescriptors() {
  std::vector<EnumValueDescriptor> ordered;
  ordered.reserve(valueOrder.size());
  for (unsigned int v : valueOrder) ordered.push_back(values[v]);
  return ordered;
}

const EnumValueDescriptor* EnumDescriptor::GetEnumValueDescriptor(unsigned int enum_value) const {
  auto it = values.find(enum_value);
  return it == values.end() ? nullptr : &it->second;
}

void EnumDescriptor::SetEnumValueDescriptors(EnumValueMap value_map) {
  values = std::move(value_map);
  valueOrder.clear();
  for (const auto& entry : values) valueOrder.push_back(entry.first);
}

void EnumDescriptor::AddNameValuePair(unsigned int enum_value, std::string display_name,
                                      const EnumValueDescriptor::EnumValueData* extras,
                                      std::string extra_text) {
  std::string short_name = display_name;
  AddNameValuePair(enum_value, std::move(display_name), std::move(short_name), extras,
                   std::move(extra_text));
}

void EnumDescriptor::AddNameValuePair(unsigned int enum_value, std::string display_name,
                                      std::string short_name,
                                      const EnumValueDescriptor::EnumValueData* extras,
                                      std::string extra_text) {
  values[enum_value] = EnumValueDescriptor(enum_value, std::move(display_name),
                                           std::move(short_name), extras, std::move(extra_text));
  valueOrder.push_back(enum_value);
}

std::string EnumDescriptor::GetEnumValue(unsigned int enum_value) const {
  auto it = values.find(enum_value);
  if (it != values.end()) return it->second.GetName();
  char hex[16];
  snprintf(hex, sizeof(hex), "0x%x", enum_value);
  return hex;
}
