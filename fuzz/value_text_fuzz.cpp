// How the tools read a user's values: the input is "NAME\nVALUE", NAME an ID
// name without its prefix (otherwise, or without a newline, the parameter is
// picked by the first byte and the whole input is the value), the value parsed for
// that parameter as shown and, with the input's last byte odd, as the
// store's raw number. What parses must print, as text and as valid JSON, and
// a scaled number must read back as the raw number it was parsed to.
#include <cstdlib>
#include <string>
#include <vector>

#include "common/display_scale.h"
#include "common/formatting.h"
#include "common/json.h"
#include "config/descriptors/param_descriptors.h"

namespace {

std::vector<ParamDescriptor*>& Descriptors() {
  static std::vector<ParamDescriptor*> all;
  return all;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  CreateDescriptors();
  for (const std::string& name : GetParamIDNames()) Descriptors().push_back(GetDescriptor(name));
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  std::string input(reinterpret_cast<const char*>(data), size);
  bool raw = (data[size - 1] & 1) != 0;
  ParamDescriptor* descriptor = nullptr;
  std::string text = input;
  size_t newline = input.find('\n');
  if (newline != std::string::npos) {
    // The exact name only: the lookup that also ignores case walks the whole
    // catalogue, which would cost more than the parsing under test.
    descriptor = GetDescriptor("eParamID_" + input.substr(0, newline));
    text = input.substr(newline + 1);
  }
  if (descriptor == nullptr) descriptor = Descriptors()[data[0] % Descriptors().size()];

  common::ParamValue value;
  std::string error;
  if (!common::ParseValue(descriptor, text, value, error, raw)) {
    if (error.empty()) abort();  // a refusal always says why
    return 0;
  }
  unsigned int id = descriptor->GetParamID();
  std::string line = common::ValueLine(id, descriptor, value);
  if (line.rfind(descriptor->GetParamIDName() + " = ", 0) != 0) abort();
  common::Json json = common::Json::parse(common::ValueJson(id, descriptor, value), nullptr, false);
  if (json.is_discarded()) abort();
  common::SetLine(descriptor, value, value, common::SetOutcome::kAccepted);

  common::DisplayScale scale = common::DisplayScale::Of(descriptor);
  if (!value.isString && scale.IsScaled()) {
    unsigned int again = 0;
    if (!scale.Parse(scale.TextWithUnits(value.number), "p", again, error)) abort();
    // The shown text rounds to its decimals, so it reads back exactly only
    // when one raw step is no finer than one shown decimal.
    unsigned long long unit = 1;
    for (unsigned int i = 0; i < scale.decimals; ++i) unit *= 10;
    if (unit % scale.scaleBy == 0 && again != value.number) abort();
  }
  return 0;
}
