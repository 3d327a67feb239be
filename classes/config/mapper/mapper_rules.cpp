#include "config/mapper/mapper_rules.h"

#include "config/descriptors/param_descriptor.h"
#include "config/descriptors/param_suffixes.h"

namespace tundra {
namespace mapper {

namespace {

// The selectors.
constexpr unsigned int kVid1VideoInput = 0xD22FD6CA;
constexpr unsigned int kVid2VideoInput = 0xC5E9E8E1;
constexpr unsigned int kFrameRateMode = 0x23130FDA;
constexpr unsigned int kVid1ActualOutputFormat = 0x2038AECE;
constexpr unsigned int kVid2ActualOutputFormat = 0xC5934F62;
constexpr unsigned int kIPConfig = 0xAFA99192;

// Input-selection values run 0 to 9: entry 9 of InputName names SDI1 again,
// so that value maps to the SDI1 specifics.
constexpr std::size_t kInputs = 10;

typedef TundraParamMapper M;

// clang-format off
constexpr MappingRule kRules[] = {
    {eMapByInput, "eMapByInput", kInputs, InputName, &M::InputBasedMaps, true, kVid1VideoInput, kVid2VideoInput, 154, 184, "input", false},
    {eMapByFrameRateFamily, "eMapByFrameRateFamily", kFrameRateModeNameCount, FrameRateModeName, &M::FrameRateFamilyBasedMaps, false, kFrameRateMode, kFrameRateMode, 224, 246, nullptr, false},
    {eMapByOutputFormat, "eMapByOutputFormat", kOutputFormatSuffixCount, OutputFormatSuffix, &M::OutputFormatBasedMaps, true, kVid1ActualOutputFormat, kVid2ActualOutputFormat, 290, 318, "output format", true},
    {eMapByIPConfig, "eMapByIPConfig", kIPConfigSuffixCount, IPConfigSuffix, &M::IPConfigBasedMaps, false, kIPConfig, kIPConfig, 0, 378, nullptr, true},
};
// clang-format on
static_assert(kRules[eMapByIPConfig - eMapByInput].scheme == eMapByIPConfig,
              "rules in the order of the schemes' numbers");

}  // namespace

const MappingRule* FindRule(MappingScheme_t scheme) {
  if (scheme < eMapByInput || scheme > eMapByIPConfig) return nullptr;
  return &kRules[scheme - eMapByInput];
}

unsigned int ProcNoOf(const ParamDescriptor* generic) {
  unsigned int proc_no = 0;
  if (generic != nullptr) generic->GetAttribute("proc_no", proc_no);
  return proc_no;
}

}  // namespace mapper
}  // namespace tundra
