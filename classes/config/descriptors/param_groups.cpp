#include "config/descriptors/param_groups.h"

#include <boost/tokenizer.hpp>
#include <cstdlib>
#include <string>

#include "config/descriptors/param_descriptors.h"

namespace {

// Menu group numbers.
constexpr int kSystemGroup = 2;
constexpr int kConfigGroup = 3;
constexpr int kPresetGroup = 4;
constexpr int kOutputGroup = 6;
constexpr int kVideoProcGroup = 7;
constexpr int kVideoOutputGroup = 8;
constexpr int kAudioProcGroup = 9;
constexpr int kAudioOutputGroup = 10;
constexpr int kDebugGroup = 11;

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

std::vector<int> GetSystemParamGroups() { return {kSystemGroup}; }
std::vector<int> GetConfigParamGroups() { return {kConfigGroup, kDebugGroup}; }
std::vector<int> GetPresetParamGroups() { return {kPresetGroup}; }
std::vector<int> GetOutputParamGroups() { return {kOutputGroup}; }
std::vector<int> GetVideoProcParamGroups() { return {kVideoProcGroup}; }
std::vector<int> GetVideoOutputParamGroups() { return {kVideoOutputGroup}; }
std::vector<int> GetAudioProcParamGroups() { return {kAudioProcGroup}; }
std::vector<int> GetAudioOutputParamGroups() { return {kAudioOutputGroup}; }
std::vector<int> GetDebugParamGroups() { return {kDebugGroup}; }
