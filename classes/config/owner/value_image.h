// ValueImage is the owner's form of a set of parameter values: a Vector of
// IntegerValue and StringValue objects in the value encoding. It captures
// the values of chosen parameters from a store (or their factory defaults),
// reads an image back whole, and checks a value against its parameter's
// current descriptor the way the store would.
//
// Stateless; safe from any thread (the store does its own locking).
#ifndef CLASSES_CONFIG_OWNER_VALUE_IMAGE_H
#define CLASSES_CONFIG_OWNER_VALUE_IMAGE_H

#include <functional>
#include <string>

#include "config/values/vector.h"

class Config;
class ConfigValue;
class ParamDescriptor;

class ValueImage {
 public:
  using Filter = std::function<bool(const ParamDescriptor*)>;

  // The encoded Vector of the current values of every parameter `keep`
  // accepts, in the registry's ID order.
  static std::string Capture(Config* store, const Filter& keep);
  // The same with each parameter's factory default.
  static std::string Defaults(const Filter& keep);
  // The encoded form of `values`.
  static std::string Encode(zyn::config::values::Vector& values);
  // Reads an encoded Vector whose every element is an integer or string
  // value and which fills `bytes` exactly. False (with `values` cleared)
  // otherwise.
  static bool Parse(const std::string& bytes, zyn::config::values::Vector& values);

  enum class Fit {
    kFits,     // the store takes it unchanged
    kClamped,  // out of range: `value` now holds what the store would keep
    kInvalid,  // wrong type, not in the list, text of the wrong length
    kUnknown,  // no such parameter
  };
  // Checks `value` against its parameter's descriptor; `why` says what is
  // wrong for kClamped and kInvalid.
  static Fit Check(ConfigValue* value, std::string& why);
  // Sets the store's parameter to `value`; false when the store refused.
  static bool Apply(Config* store, ConfigValue* value);
  // Whether the store holds `value` already.
  static bool Holds(Config* store, ConfigValue* value);
};

#endif  // CLASSES_CONFIG_OWNER_VALUE_IMAGE_H
