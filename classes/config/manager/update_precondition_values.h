// UpdatePreconditionValues is the precondition every store installs: an
// enumerated value must be one of its descriptor's values (else the update
// is refused), and an integer value is forced into its descriptor's range
// (never refused). A descriptor whose minimum exceeds its maximum describes a
// range that starts at the minimum and spans the maximum. The attribute
// "dependent_minimum" names a parameter whose current value further limits
// the update. String updates always pass.
//
// Stateless; safe to call from any thread.
#ifndef CLASSES_CONFIG_MANAGER_UPDATE_PRECONDITION_VALUES_H
#define CLASSES_CONFIG_MANAGER_UPDATE_PRECONDITION_VALUES_H

#include "config/manager/update_precondition.h"

class EnumDescriptor;
class IntegerDescriptor;

namespace zyn {
namespace config {

class UpdatePreconditionValues : public UpdatePrecondition {
 public:
  bool IsUpdateValid(Config* config, IntegerUpdates& updates) override;
  bool IsUpdateValid(Config* config, StringUpdates& updates) override;
  bool IsUpdateValid(Config* config, unsigned int paramID, Serializable& value) override;

  // True when `value` is one of the descriptor's enumerated values.
  virtual bool IsValidEnum(EnumDescriptor* descriptor, unsigned int& value);
  virtual bool IsValidRange(IntegerDescriptor* descriptor, unsigned int& value);
  // Moves `value` to the nearer end of the descriptor's range.
  virtual void ForceValidRange(IntegerDescriptor* descriptor, unsigned int& value);
  // Sets `value` to limit - span + 1 when limit - value (wrapping) >= span.
  virtual void ForceValidRange(unsigned int& value, unsigned int span, unsigned int limit);
};

}  // namespace config
}  // namespace zyn

#endif  // CLASSES_CONFIG_MANAGER_UPDATE_PRECONDITION_VALUES_H
