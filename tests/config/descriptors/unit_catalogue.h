// Helpers of the video and audio catalogue tests: the unit's whole catalogue
// built once into the registry, one builder run on its own, and short
// renderings of a descriptor's contents for table-driven checks.
#ifndef TESTS_CONFIG_DESCRIPTORS_UNIT_CATALOGUE_H
#define TESTS_CONFIG_DESCRIPTORS_UNIT_CATALOGUE_H

#include <map>
#include <set>
#include <string>
#include <unordered_map>

#include "config/descriptors/enum_descriptor.h"
#include "config/descriptors/param_descriptors.h"
#include "test_stderr.h"

namespace unit_catalogue {

// The IDs CreateDescriptors built. Descriptors that other tests of the binary
// registered (IDs 0xFEEDxxxx) are set aside while it builds.
inline const std::set<unsigned int>& CatalogueIDs() {
  static const std::set<unsigned int> ids = [] {
    std::unordered_map<unsigned int, ParamDescriptor*> others;
    if (GetDescriptor(0x01234567u) == nullptr) others.swap(g_paramDescriptors);
    Stderr([] { CreateDescriptors(); });
    std::set<unsigned int> built;
    for (unsigned int id : GetParamIDs())
      if (id >> 16 != 0xFEED) built.insert(id);
    g_paramDescriptors.insert(others.begin(), others.end());
    IndexDescriptorNames();
    return built;
  }();
  return ids;
}

// What builder registers when run into an empty registry: ID name by the
// ID it is registered under. The registry is restored afterwards.
inline std::map<unsigned int, std::string> BuildAlone(void (*builder)()) {
  std::unordered_map<unsigned int, ParamDescriptor*> saved;
  saved.swap(g_paramDescriptors);
  builder();
  std::map<unsigned int, std::string> built;
  for (const auto& entry : g_paramDescriptors) {
    built[entry.first] = entry.second->GetParamIDName();
    delete entry.second;
  }
  g_paramDescriptors.swap(saved);
  return built;
}

inline ParamDescriptor* Find(const std::string& id_name) {
  CatalogueIDs();
  ParamDescriptor* d = GetDescriptor(id_name);
  EXPECT_NE(d, nullptr) << id_name;
  return d;
}

// "value name/short[text], ..." in display order; the short name only where
// it differs, the third text only where there is one.
inline std::string ValuesOf(ParamDescriptor* d) {
  EnumDescriptor* e = dynamic_cast<EnumDescriptor*>(d);
  if (e == nullptr) return "";
  std::string text;
  for (const EnumValueDescriptor& v : e->GetOrderedEnumValueDescriptors()) {
    if (!text.empty()) text += ", ";
    text += std::to_string(v.GetValue()) + " " + v.GetName();
    if (v.GetShortName() != v.GetName()) text += "/" + v.GetShortName();
    if (!v.GetText().empty()) text += "[" + v.GetText() + "]";
  }
  return text;
}

// "group:menu number", or "" outside the menus.
inline std::string MenuPlaceOf(ParamDescriptor* d) {
  unsigned int group = 0;
  std::string number;
  if (!d->GetAttribute("ParamGroup", group)) return "";
  d->GetAttribute("menu_number", number);
  return std::to_string(group) + ":" + number;
}

inline unsigned int IntAttributeOf(ParamDescriptor* d, const std::string& name) {
  unsigned int value = 0xDEADBEEF;
  d->GetAttribute(name, value);
  return value;
}

}  // namespace unit_catalogue

#endif  // TESTS_CONFIG_DESCRIPTORS_UNIT_CATALOGUE_H
