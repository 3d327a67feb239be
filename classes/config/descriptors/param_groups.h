// Menu views of the descriptor registry. A descriptor's integer attribute
// "ParamGroup" names its menu group and its string attribute "menu_number"
// (a dotted number such as "13.12") its place in the menus. Each menu shows
// one or more groups, listed by the Get...ParamGroups functions.
//
// Thread-safety: these only read the registry, so they may be called from any
// thread once the catalogue is built. They walk the whole catalogue and are
// meant for building menus, not for per-value work.
#ifndef CLASSES_CONFIG_DESCRIPTORS_PARAM_GROUPS_H
#define CLASSES_CONFIG_DESCRIPTORS_PARAM_GROUPS_H

#include <list>
#include <vector>

// The IDs of the descriptors of one menu group, leaving out those with the
// class name "panel_hidden", in menu-number order.
// Menu groups of the front panel's menu buttons (the values of
// eParamID_CurrentlySelectedButton), as the "ParamGroup" attribute holds them.
constexpr unsigned int kRemoteMenuGroup = 1;
constexpr unsigned int kSystemMenuGroup = 2;
constexpr unsigned int kConfigMenuGroup = 3;
constexpr unsigned int kPresetMenuGroup = 4;
constexpr unsigned int kStatusMenuGroup = 5;
constexpr unsigned int kOutputMenuGroup = 6;
constexpr unsigned int kVideoProcMenuGroup = 7;
constexpr unsigned int kVideoOutputMenuGroup = 8;
constexpr unsigned int kAudioProcMenuGroup = 9;
constexpr unsigned int kAudioOutputMenuGroup = 10;
constexpr unsigned int kDebugMenuGroup = 11;

std::list<unsigned int> GetParamGroup(int group);

// The menu-order predicate over two parameter IDs: compares the dotted menu
// numbers field by field as decimal numbers, and a number that runs out
// first comes first (14 before 14.0). A missing descriptor or menu number
// reads as the empty number. Equal numbers answer true both ways, so this is
// not a strict ordering; sorts must be the list merge sort.
bool MenuNumberCompare(unsigned int a, unsigned int b);

// The groups shown by each menu, in order. The debug group is also part of
// the configuration menu.
std::vector<int> GetSystemParamGroups();
std::vector<int> GetConfigParamGroups();
std::vector<int> GetPresetParamGroups();
std::vector<int> GetOutputParamGroups();
std::vector<int> GetVideoProcParamGroups();
std::vector<int> GetVideoOutputParamGroups();
std::vector<int> GetAudioProcParamGroups();
std::vector<int> GetAudioOutputParamGroups();
std::vector<int> GetDebugParamGroups();

#endif  // CLASSES_CONFIG_DESCRIPTORS_PARAM_GROUPS_H
