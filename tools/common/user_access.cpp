#include "common/user_access.h"

#include "config/access/mapping_config.h"
#include "config/descriptors/param_descriptors.h"
#include "config/descriptors/param_ids.h"

namespace common {

namespace {

// Values the hardware publishes that the catalogue does not mark "readonly":
// the front panel's LEDs (not the identify LED, which a user switches), the
// alarm states (not their Suppress* settings), the unit's fallback-boot flag,
// the VCP link state and the MADI outputs' actual channel modes and
// presence.
constexpr eParam_t kHardwarePublished[] = {
    eParamID_LED_Vid1,
    eParamID_LED_Vid2,
    eParamID_LED_UFC1,
    eParamID_LED_UFC2,
    eParamID_LED_FRCMode,
    eParamID_LED_FRCStatus,
    eParamID_LED_Power1,
    eParamID_LED_Power2,
    eParamID_LED_Remote,
    eParamID_LED_Alarm,
    eParamID_LED_EXT,
    eParamID_LED_LAN,
    eParamID_LED_Keyer,
    eParamID_LED_Reference,
    eParamID_LED_FormatError1,
    eParamID_LED_FormatError2,
    eParamID_LED_ProcAmp1,
    eParamID_LED_ProcAmp2,
    eParamID_PS1_Alarm,
    eParamID_PS2_Alarm,
    eParamID_TemperatureAlarm,
    eParamID_ReferenceAlarm,
    eParamID_Vid1ReferenceAlarm,
    eParamID_Vid2ReferenceAlarm,
    eParamID_Format1_Alarm,
    eParamID_Format2_Alarm,
    eParamID_Vid1BackgroundAlarm,
    eParamID_Vid2BackgroundAlarm,
    eParamID_Audio1DolbyFramerAlarm,
    eParamID_Audio2DolbyFramerAlarm,
    eParamID_SafebootMode,
    eParamID_VCPStatus,
    eParamID_AudioMADIBNC_select_out_56ch,
    eParamID_AudioMADIFIB_select_out_56ch,
    eParamID_AudioMADIBNC_kill_rdy,
    eParamID_AudioMADIFIB_kill_rdy,
};

}  // namespace

bool IsUserReadOnly(const ParamDescriptor* descriptor) {
  if (descriptor == nullptr || descriptor->HasClassName("readonly")) return true;
  for (eParam_t id : kHardwarePublished)
    if (descriptor->GetParamID() == id) return true;
  return false;
}

const ParamDescriptor* EffectiveDescriptor(const ParamDescriptor* descriptor, Config* config) {
  auto* mapping = dynamic_cast<zyn::boxline::config::access::MappingConfig*>(config);
  if (mapping == nullptr) return descriptor;
  unsigned int mapped = mapping->MapID(descriptor->GetParamID());
  return mapped == descriptor->GetParamID() ? descriptor : GetDescriptor(mapped);
}

std::string ReadOnlyReason(const ParamDescriptor* descriptor, const ParamDescriptor* target) {
  if (!IsUserReadOnly(target)) return std::string();
  const std::string& name = descriptor->GetParamIDName();
  if (target == nullptr || target == descriptor) return name + " is read-only";
  return target->GetParamIDName() + " is read-only (" + name + " stands for it now)";
}

}  // namespace common
