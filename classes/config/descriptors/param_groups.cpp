#include "config/descriptors/param_groups.h"

#include <boost/tokenizer.hpp>
#include <cstdlib>
#include <string>

#include "config/descriptors/param_descriptors.h"

namespace {

typedef boost::tokenizer<boost::char_separator<char>> MenuNumberTokens;

std::string MenuNumberOf(unsigned int id) {
  std::string menu_number;
  ParamDescriptor* d = GetDescriptor(id);
  if (d != nullptr) d->GetAttribute("menu_number", menu_number);
  return menu_number;
}

}  // namespace

std::list<unsigned int> GetParamGroup(int group) {
  std::list<unsigned int> ids;
  for (const auto& entry : g_paramDescriptors) {
    unsigned int g = 0;
    if (entry.second->GetAttribute("ParamGroup", g) && g == static_cast<unsigned int>(group) &&
        !entry.second->HasClassName("panel_hidden")) {
      ids.push_back(entry.first);
    }
  }
  ids.sort(MenuNumberCompare);
  return ids;
}

bool MenuNumberCompare(unsigned int a, unsigned int b) {
  const std::string menu_a = MenuNumberOf(a);
  const std::string menu_b = MenuNumberOf(b);
  const boost::char_separator<char> dot(".");
  MenuNumberTokens tokens_a(menu_a, dot);
  MenuNumberTokens tokens_b(menu_b, dot);
  auto it_a = tokens_a.begin();
  auto it_b = tokens_b.begin();
  for (; it_a != tokens_a.end() && it_b != tokens_b.end(); ++it_a, ++it_b) {
    const long number_a = strtol(it_a->c_str(), nullptr, 10);
    const long number_b = strtol(it_b->c_str(), nullptr, 10);
    if (number_a != number_b) return number_a < number_b;
  }
  return it_a == tokens_a.end();
}

// The groups each menu shows, in order; the debug group is also part of the
// configuration menu.
std::vector<int> GetSystemParamGroups() { return {kSystemMenuGroup}; }
std::vector<int> GetConfigParamGroups() { return {kConfigMenuGroup, kDebugMenuGroup}; }
std::vector<int> GetPresetParamGroups() { return {kPresetMenuGroup}; }
std::vector<int> GetOutputParamGroups() { return {kOutputMenuGroup}; }
std::vector<int> GetVideoProcParamGroups() { return {kVideoProcMenuGroup}; }
std::vector<int> GetVideoOutputParamGroups() { return {kVideoOutputMenuGroup}; }
std::vector<int> GetAudioProcParamGroups() { return {kAudioProcMenuGroup}; }
std::vector<int> GetAudioOutputParamGroups() { return {kAudioOutputMenuGroup}; }
std::vector<int> GetDebugParamGroups() { return {kDebugMenuGroup}; }
