// What a user may change through configctl and configweb. Values the unit itself reports (its
// "readonly" class: network values given by DHCP, serial number, MAC
// address, software version, detected formats, the owner's answers) and the
// alarms, LEDs and status values that the hardware publishes are read-only
// to users; the owner and processes publishing through the library write
// them as before.
//
// Functions over the read-only registry; call them after the catalogue is
// built.
#ifndef TOOLS_COMMON_USER_ACCESS_H
#define TOOLS_COMMON_USER_ACCESS_H

#include <string>

class Config;
class ParamDescriptor;

namespace common {

// True when users may not set `descriptor`: its "readonly" class or the
// table of hardware-published values. Null counts as read-only.
[[nodiscard]] bool IsUserReadOnly(const ParamDescriptor* descriptor);

// The descriptor whose rule applies to a user's set of `descriptor` through
// `config`: for a generic parameter seen through a MappingConfig, the
// specific parameter it maps onto now; otherwise `descriptor` itself.
// Null when the mapped ID is not in the catalogue.
[[nodiscard]] const ParamDescriptor* EffectiveDescriptor(const ParamDescriptor* descriptor,
                                                         Config* config);

// Why a user may not set `descriptor` when the set reaches `target` (its
// EffectiveDescriptor): "NAME is read-only", or for a generic "SPECIFIC is
// read-only (NAME stands for it now)". Empty when the user may.
[[nodiscard]] std::string ReadOnlyReason(const ParamDescriptor* descriptor,
                                         const ParamDescriptor* target);

}  // namespace common

#endif  // TOOLS_COMMON_USER_ACCESS_H
