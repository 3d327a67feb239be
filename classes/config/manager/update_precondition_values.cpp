#include "config/manager/update_precondition_values.h"

#include <cstdint>

#include "config/config.h"
#include "config/descriptors/enum_descriptor.h"
#include "config/descriptors/integer_descriptor.h"

namespace zyn {
namespace config {

namespace {

// For a range whose minimum exceeds its maximum: true when `value` lies
// below the minimum, read as a signed distance.
bool BelowWrappedMinimum(unsigned int value, unsigned int min) {
  return static_cast<int32_t>(value - min) < 0;
}

}  // namespace

bool UpdatePreconditionValues::IsUpdateValid(Config* config, IntegerUpdates& updates) {
  if (updates.empty()) return false;
  unsigned int id = updates.front().first;
  unsigned int& value = updates.front().second;
  ParamDescriptor* descriptor = config->GetParamDescriptor(id);
  if (descriptor == nullptr) return false;
  // Enumerations first: an enumerated parameter is never clamped.
  if (EnumDescriptor* enumeration = dynamic_cast<EnumDescriptor*>(descriptor))
    return IsValidEnum(enumeration, value);
  IntegerDescriptor* integer = dynamic_cast<IntegerDescriptor*>(descriptor);
  if (integer == nullptr) return true;
  if (!IsValidRange(integer, value)) ForceValidRange(integer, value);
  unsigned int minimumID = 0;
  integer->GetAttribute("dependent_minimum", minimumID);
  if (minimumID != 0) ForceValidRange(value, config->Get(minimumID), integer->GetMaxValue());
  return true;
}

bool UpdatePreconditionValues::IsUpdateValid(Config*, StringUpdates&) { return true; }

bool UpdatePreconditionValues::IsUpdateValid(Config*, unsigned int, Serializable&) { return true; }

bool UpdatePreconditionValues::IsValidEnum(EnumDescriptor* descriptor, unsigned int& value) {
  return descriptor->GetEnumValueDescriptors().count(value) != 0;
}

bool UpdatePreconditionValues::IsValidRange(IntegerDescriptor* descriptor, unsigned int& value) {
  unsigned int min = descriptor->GetMinValue();
  unsigned int max = descriptor->GetMaxValue();
  if (min <= value && value <= max) return true;
  if (min <= max) return false;
  if (BelowWrappedMinimum(value, min)) return false;
  return value - min <= max;
}

void UpdatePreconditionValues::ForceValidRange(IntegerDescriptor* descriptor, unsigned int& value) {
  unsigned int min = descriptor->GetMinValue();
  unsigned int max = descriptor->GetMaxValue();
  bool below = min > max ? BelowWrappedMinimum(value, min) : value < min;
  if (below) {
    value = min;
  } else if (value > max) {
    value = max;
  }
}

void UpdatePreconditionValues::ForceValidRange(unsigned int& value, unsigned int span,
                                               unsigned int limit) {
  if (limit - value >= span) value = limit - span + 1;
}

}  // namespace config
}  // namespace zyn
