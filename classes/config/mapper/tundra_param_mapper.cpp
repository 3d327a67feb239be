#include "config/mapper/tundra_param_mapper.h"

#include <cstdio>
#include <string>

#include "config/config.h"
#include "config/descriptors/param_descriptors.h"
#include "config/mapper/mapper_rules.h"

namespace tundra {
namespace mapper {

namespace {

constexpr std::size_t kInitialBuckets = 10;

// A generic whose specific is itself generic is mapped again; names grow at
// each step, so a real catalogue never nests deeply. The bound stops a
// catalogue whose descriptors report each other's IDs from recursing
// without end.
constexpr int kMaxMappingDepth = 16;
thread_local int t_mappingDepth = 0;

class DepthGuard {
 public:
  DepthGuard() { ++t_mappingDepth; }
  ~DepthGuard() { --t_mappingDepth; }
  DepthGuard(const DepthGuard&) = delete;
  DepthGuard& operator=(const DepthGuard&) = delete;
};

// The ID name for a message, or the ID in hex when it has no descriptor.
std::string NameOf(unsigned int id) {
  const ParamDescriptor* d = GetDescriptor(id);
  if (d != nullptr) return d->GetParamIDName();
  char hex[16];
  snprintf(hex, sizeof hex, "0x%08X", id);
  return hex;
}

}  // namespace

TundraParamMapper::SchemeTable TundraParamMapper::MappingScheme(kInitialBuckets);
TundraParamMapper::SpecificTable TundraParamMapper::InputBasedMaps(kInitialBuckets);
TundraParamMapper::SpecificTable TundraParamMapper::FrameRateFamilyBasedMaps(kInitialBuckets);
TundraParamMapper::SpecificTable TundraParamMapper::OutputFormatBasedMaps(kInitialBuckets);
TundraParamMapper::SpecificTable TundraParamMapper::IPConfigBasedMaps(kInitialBuckets);
TundraParamMapper::ReverseTable TundraParamMapper::ReverseMap(kInitialBuckets);

TundraParamMapper::TundraParamMapper() : config(nullptr) { Initialize(); }

TundraParamMapper::~TundraParamMapper() = default;

void TundraParamMapper::SetConfig(::Config* selectors) { config = selectors; }

unsigned int TundraParamMapper::MapParamID(unsigned int const& id) {
  auto scheme = MappingScheme.find(id);
  if (scheme == MappingScheme.end()) return id;
  const MappingRule* rule = FindRule(scheme->second);
  if (rule == nullptr) return id;
  auto entry = rule->table->find(id);
  if (entry == rule->table->end()) return id;
  const std::vector<unsigned int>& specifics = entry->second;
  if (config == nullptr) {
    fprintf(stderr, "TundraParamMapper::MapParamID - no Config to read selectors, %s not mapped\n",
            NameOf(id).c_str());
    return id;
  }

  unsigned int selector = rule->selector;
  if (rule->byProcessor) {
    auto entered = _selectors.find(id);
    selector = entered != _selectors.end() ? entered->second
                                           : SelectorOf(*rule, ProcNoOf(GetDescriptor(id)));
  }
  unsigned int index = config->Get(selector);
  if (rule->scheme == eMapByIPConfig && index > 1) {
    fprintf(stderr, "Invalid IP Config mode.  TundraParamMapper treating as if DHCP\n");
    index = 0;
  }
  // The selectors' own ranges keep their values inside the tables; a value
  // beyond them (a store that holds no such parameter, say) leaves the
  // generic unmapped rather than reading past its table.
  if (index >= specifics.size()) {
    fprintf(stderr, "TundraParamMapper::MapParamID - %s = %u has no entry for %s\n",
            NameOf(selector).c_str(), index, NameOf(id).c_str());
    return id;
  }
  unsigned int result = specifics[index];
  if (result == id) return id;
  if (t_mappingDepth >= kMaxMappingDepth) {
    fprintf(stderr, "TundraParamMapper::MapParamID - mapping of %s nests too deep, stopped\n",
            NameOf(id).c_str());
    return result;
  }
  DepthGuard nested;
  return MapParamID(result);
}

boost::unordered_set<unsigned int> TundraParamMapper::ParamsChangedBy(unsigned int const& id) {
  auto entry = ReverseMap.find(id);
  if (entry == ReverseMap.end()) return boost::unordered_set<unsigned int>();
  return entry->second;
}

bool TundraParamMapper::isBaseParam(unsigned int const& id) { return ReverseMap.count(id) == 0; }

}  // namespace mapper
}  // namespace tundra
