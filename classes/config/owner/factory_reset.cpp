#include "config/owner/factory_reset.h"

#include <cstdio>

#include "config/descriptors/owner_params.h"
#include "config/descriptors/param_descriptor.h"
#include "config/owner/register_handler.h"
#include "config/owner/value_image.h"
#include "config/values/config_value.h"

bool FactoryReset::Resets(const ParamDescriptor* descriptor, bool hard) {
  unsigned int id = descriptor->GetParamID();
  if (RegisterHandler::IsCommand(id) || IsOwnerParam(id)) return false;
  if (hard) return true;
  // The saved presets stay, and so do their names.
  unsigned int presetNumber = 0;
  if (descriptor->GetAttribute("presetNumber", presetNumber)) return false;
  return descriptor->GetFactoryResetType() != eFactoryReset_Exclude;
}

unsigned int FactoryReset::Apply(Config* store, bool hard) {
  zyn::config::values::Vector defaults;
  ValueImage::Parse(
      ValueImage::Defaults([hard](const ParamDescriptor* d) { return Resets(d, hard); }), defaults);
  unsigned int changed = 0;
  for (size_t i = 0; i < defaults.Size(); ++i) {
    auto* value = static_cast<ConfigValue*>(defaults.Get(i));
    if (ValueImage::Holds(store, value)) continue;
    if (ValueImage::Apply(store, value)) {
      ++changed;
    } else {
      fprintf(stderr, "FactoryReset::Apply - the store refused the default of 0x%08X\n",
              value->GetParamID());
    }
  }
  return changed;
}
