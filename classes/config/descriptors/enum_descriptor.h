// EnumDescriptor: an integer parameter whose valid values are a named list.
// Each value is an EnumValueDescriptor, a plain value type holding the
// number, its display and short names, a free third text and optional
// per-value extras. The list keeps the display order in which values were
// added, which need not be numeric order.
//
// Ownership and thread-safety are those of ParamDescriptor: written only
// while the catalogue is built, read-only afterwards. GetOrderedEnumValue-
// Descriptors inserts a default entry for an ordered value missing from the
// map, so it is a writer too. Copying is public for family builders.
#ifndef CLASSES_CONFIG_DESCRIPTORS_ENUM_DESCRIPTOR_H
#define CLASSES_CONFIG_DESCRIPTORS_ENUM_DESCRIPTOR_H

#include <map>
#include <string>
#include <vector>

#include "config/descriptors/integer_descriptor.h"

class EnumValueDescriptor {
 public:
  // Per-value extras, copied into the value when given.
  struct EnumValueData {
    std::map<std::string, unsigned int> intData;
    std::map<std::string, std::string> stringData;
    std::vector<std::string> stringList;
  };

  EnumValueDescriptor() = default;
  // A null data pointer leaves the extras empty.
  EnumValueDescriptor(unsigned int enum_value, std::string display_name, std::string short_name,
                      const EnumValueData* extras, std::string extra_text);

  unsigned int GetValue() const { return value; }
  std::string GetName() const { return name; }
  std::string GetShortName() const { return shortName; }
  std::string GetText() const { return text; }
  const EnumValueData& GetData() const { return data; }

 private:
  unsigned int value = 0;
  std::string name;
  std::string shortName;
  std::string text;
  EnumValueData data;
};

class EnumDescriptor : public IntegerDescriptor {
 public:
  typedef std::map<unsigned int, EnumValueDescriptor> EnumValueMap;

  EnumDescriptor() = default;
  EnumDescriptor(const EnumDescriptor&) = default;
  EnumDescriptor& operator=(const EnumDescriptor&) = default;
  ~EnumDescriptor() override;

  // The values keyed by number; a reference into the descriptor.
  virtual const EnumValueMap& GetEnumValueDescriptors() const;
  // Copies of the values in display order. A value listed twice appears twice.
  virtual std::vector<EnumValueDescriptor> GetOrderedEnumValueDescriptors();
  // The value's entry, or null if the list does not hold it. Valid as long
  // as the descriptor is not changed.
  virtual const EnumValueDescriptor* GetEnumValueDescriptor(unsigned int enum_value) const;
  // Replaces the whole list; the display order becomes numeric order.
  virtual void SetEnumValueDescriptors(EnumValueMap value_map);
  // Adds a value (replacing an entry with the same number) and appends it to
  // the display order. The first form uses the name as the short name.
  virtual void AddNameValuePair(unsigned int enum_value, std::string display_name,
                                const EnumValueDescriptor::EnumValueData* extras = nullptr,
                                std::string extra_text = "");
  virtual void AddNameValuePair(unsigned int enum_value, std::string display_name,
                                std::string short_name,
                                const EnumValueDescriptor::EnumValueData* extras = nullptr,
                                std::string extra_text = "");
  // The value's name, or "0x" and its lower-case hexadecimal digits when the
  // list does not hold it.
  virtual std::string GetEnumValue(unsigned int enum_value) const;

 private:
  EnumValueMap values;
  std::vector<unsigned int> valueOrder;
};

#endif  // CLASSES_CONFIG_DESCRIPTORS_ENUM_DESCRIPTOR_H
