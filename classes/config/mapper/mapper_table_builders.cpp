// The build of the mapping tables: Initialize and the Init*Map builders of
// TundraParamMapper. The four schemes share one builder driven by their
// rules (mapper_rules.h).
#include <cstdio>
#include <string>

#include "config/descriptors/param_descriptor.h"
#include "config/descriptors/param_descriptors.h"
#include "config/descriptors/param_suffixes.h"
#include "config/mapper/mapper_rules.h"
#include "config/mapper/tundra_param_mapper.h"

namespace tundra {
namespace mapper {

namespace {

// The generic parameters, in the order they are entered.
struct GenericEntry {
  MappingScheme_t scheme;
  unsigned int id;
};

// clang-format off
constexpr GenericEntry kGenerics[] = {
    // Processor 1's proc amp, by input.
    {eMapByInput, 0x1E61B56A}, {eMapByInput, 0x883AD0D9}, {eMapByInput, 0xAD76FD13},
    {eMapByInput, 0x9CB12DBA}, {eMapByInput, 0x1916717A}, {eMapByInput, 0x8066D834},
    {eMapByInput, 0x026EEB26}, {eMapByInput, 0xB81BFC46}, {eMapByInput, 0x63DD6FE9},
    {eMapByInput, 0x2ED8D548}, {eMapByInput, 0x9CAF5F1E}, {eMapByInput, 0xA67D0984},
    {eMapByInput, 0xA21E8942}, {eMapByInput, 0x614E8437}, {eMapByInput, 0xD4795959},
    // Both processors' output formats, by frame-rate family.
    {eMapByFrameRateFamily, 0xAC589D79}, {eMapByFrameRateFamily, 0xD955E40D},
    // Both processors' output timing, by actual output format.
    {eMapByOutputFormat, 0x872EB4D9}, {eMapByOutputFormat, 0x580B37C5},
    {eMapByOutputFormat, 0xC97C9E85}, {eMapByOutputFormat, 0xD8DB72BD},
    // The network addresses, by IP configuration mode.
    {eMapByIPConfig, 0x33A97ED1}, {eMapByIPConfig, 0xF39DDE8A}, {eMapByIPConfig, 0x57A428C9},
};
// clang-format on

// A generic parameter only stands for its specifics: it is never kept,
// saved in presets or reset itself; its specifics are.
void CheckGenericFlags(const ParamDescriptor* generic, const std::string& name) {
  if (generic->GetPersistenceType() == ePersist) {
    printf("Warning: Generic parameter %s is set to ePersist!\n", name.c_str());
  }
  if (generic->GetRegisterType() != eRegister_Exclude) {
    printf("Warning: Generic parameter %s is NOT set to eRegister_Exclude!\n", name.c_str());
  }
  if (generic->GetFactoryResetType() != eFactoryReset_Exclude) {
    printf("Warning: Generic parameter %s is NOT set to eFactoryReset_Exclude!\n", name.c_str());
  }
}

// Records that specific belongs to the generic, after the rule's checks;
// returns its ID.
unsigned int EnterSpecific(const MappingRule& rule, const ParamDescriptor* specific,
                           unsigned int generic_id) {
  std::string name = specific->GetParamIDName();
  if (rule.persistWarningNumber != 0 && specific->GetPersistenceType() != ePersist) {
    printf("Warning: Mapped (specific) parameter %s is not set to ePersist! %d\n", name.c_str(),
           rule.persistWarningNumber);
  }
  unsigned int specific_id = specific->GetParamID();
  TundraParamMapper::ReverseMap[specific_id].insert(generic_id);
  unsigned int proc_no = 0;
  if (rule.byProcessor && !specific->GetAttribute("proc_no", proc_no)) {
    printf("WARNING: Attribute 'proc_no' not found for %s based param : %s\n",
           rule.procNoWarningName, name.c_str());
  }
  return specific_id;
}

const MappingRule& Rule(MappingScheme_t scheme) { return *FindRule(scheme); }

}  // namespace

void TundraParamMapper::BuildMap(const MappingRule& rule, ParamDescriptor* generic) {
  if (generic == nullptr) return;
  const std::string name = generic->GetParamIDName();
  const unsigned int generic_id = generic->GetParamID();
  CheckGenericFlags(generic, name);

  unsigned int proc_no = 0;
  if (rule.byProcessor && !generic->GetAttribute("proc_no", proc_no)) {
    printf("Not found - proc_no attribute for param : %s\n", name.c_str());
  }

  std::vector<unsigned int>& specifics = (*rule.table)[generic_id];
  specifics.resize(rule.count);
  for (std::size_t i = 0; i < rule.count; ++i) {
    char specific_name[1024] = {};
    snprintf(specific_name, sizeof specific_name, "%s_%s", name.c_str(), rule.suffixes[i].c_str());
    const ParamDescriptor* specific = GetDescriptor(std::string(specific_name));
    if (specific != nullptr) {
      specifics[i] = EnterSpecific(rule, specific, generic_id);
      continue;
    }
    specifics[i] = generic_id;
    if (rule.longNotFound) {
      printf("Not found : %s %s mapping [ %s ]\n", name.c_str(), rule.suffixes[i].c_str(),
             specific_name);
    } else {
      printf("Not found : %s %s mapping\n", name.c_str(), rule.suffixes[i].c_str());
    }
  }

  unsigned int selector = SelectorOf(rule, proc_no);
  ReverseMap[selector].insert(generic_id);
  if (rule.byProcessor) _selectors[generic_id] = selector;
  MappingScheme[generic_id] = rule.scheme;
}

void TundraParamMapper::BuildMap(const MappingRule& rule, unsigned int id) {
  ParamDescriptor* generic = GetDescriptor(id);
  if (generic == nullptr) fprintf(stderr, "Not found generic (int) PD : 0x%0x\n", id);
  BuildMap(rule, generic);
}

void TundraParamMapper::BuildMap(const MappingRule& rule, const char* id_name) {
  ParamDescriptor* generic = id_name != nullptr ? GetDescriptor(std::string(id_name)) : nullptr;
  if (generic == nullptr) {
    fprintf(stderr, "Not found generic (str) PD IN HERE : %s (%d)\n",
            id_name != nullptr ? id_name : "(null)", rule.missingGenericNumber);
  }
  BuildMap(rule, generic);
}

bool TundraParamMapper::_initialized = false;
std::unordered_map<unsigned int, unsigned int> TundraParamMapper::_selectors(10);

void TundraParamMapper::Initialize() {
  if (_initialized) return;
  _initialized = true;
  InitializeSuffixes();
  printf("Initializing mapper tables...\n");
  for (const GenericEntry& entry : kGenerics) BuildMap(Rule(entry.scheme), entry.id);
  printf("Mapper tables initialized with %d entries.\n", static_cast<int>(MappingScheme.size()));
}

// clang-format off
void TundraParamMapper::InitInputBasedMap(ParamDescriptor* generic) { BuildMap(Rule(eMapByInput), generic); }
void TundraParamMapper::InitInputBasedMap(unsigned int const& id) { BuildMap(Rule(eMapByInput), id); }
void TundraParamMapper::InitInputBasedMap(char const* name) { BuildMap(Rule(eMapByInput), name); }
void TundraParamMapper::InitFrameRateFamilyBasedMap(ParamDescriptor* generic) { BuildMap(Rule(eMapByFrameRateFamily), generic); }
void TundraParamMapper::InitFrameRateFamilyBasedMap(unsigned int const& id) { BuildMap(Rule(eMapByFrameRateFamily), id); }
void TundraParamMapper::InitFrameRateFamilyBasedMap(char const* name) { BuildMap(Rule(eMapByFrameRateFamily), name); }
void TundraParamMapper::InitOutputFormatBasedMap(ParamDescriptor* generic) { BuildMap(Rule(eMapByOutputFormat), generic); }
void TundraParamMapper::InitOutputFormatBasedMap(unsigned int const& id) { BuildMap(Rule(eMapByOutputFormat), id); }
void TundraParamMapper::InitOutputFormatBasedMap(char const* name) { BuildMap(Rule(eMapByOutputFormat), name); }
void TundraParamMapper::InitIPConfigBasedMap(ParamDescriptor* generic) { BuildMap(Rule(eMapByIPConfig), generic); }
void TundraParamMapper::InitIPConfigBasedMap(unsigned int const& id) { BuildMap(Rule(eMapByIPConfig), id); }
void TundraParamMapper::InitIPConfigBasedMap(char const* name) { BuildMap(Rule(eMapByIPConfig), name); }
// clang-format on

}  // namespace mapper
}  // namespace tundra
