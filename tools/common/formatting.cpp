#include "common/formatting.h"

#include <time.h>

#include <cstdio>
#include <map>

#include "common/display_scale.h"
#include "common/json.h"
#include "config/descriptors/decimal_descriptor.h"
#include "config/descriptors/enum_descriptor.h"
#include "config/descriptors/string_descriptor.h"

namespace common {

namespace {

std::string Hex(unsigned int number) {
  char text[16];
  snprintf(text, sizeof text, "0x%08X", number);
  return text;
}

const EnumDescriptor* AsEnum(const ParamDescriptor* descriptor) {
  return dynamic_cast<const EnumDescriptor*>(descriptor);
}

// The name of `value` in the enumeration, or "" when it is not one of its
// values (or the parameter is not an enumeration).
std::string ValueName(const ParamDescriptor* descriptor, const ParamValue& value) {
  const EnumDescriptor* enumeration = AsEnum(descriptor);
  if (enumeration == nullptr || value.isString) return "";
  const EnumValueDescriptor* entry = enumeration->GetEnumValueDescriptor(value.number);
  return entry != nullptr ? entry->GetName() : "";
}

// The value as a user gives it: the shown number of a scaled parameter, the
// store's number or text otherwise.
Json ValueOf(const ParamDescriptor* descriptor, const ParamValue& value) {
  if (value.isString) return value.text;
  DisplayScale scale = DisplayScale::Of(descriptor);
  return scale.IsScaled() ? Json(scale.Value(value.number)) : Json(value.number);
}

// The "param", "id", "value", "value_name" and, for numbers, "display"
// (the value as text shows it) members, and for a
// scaled parameter the store's "raw" number with the scale that maps it.
Json& AddValueMembers(Json& object, unsigned int id, const ParamDescriptor* descriptor,
                      const ParamValue& value) {
  object["param"] = ParamName(id, descriptor);
  object["id"] = id;
  object["value"] = ValueOf(descriptor, value);
  if (!value.isString) object["display"] = ValueText(descriptor, value);
  std::string name = ValueName(descriptor, value);
  if (!name.empty()) object["value_name"] = name;
  DisplayScale scale = DisplayScale::Of(descriptor);
  if (!value.isString && scale.IsScaled()) {
    object["raw"] = value.number;
    object["scale_by"] = scale.scaleBy;
    object["offset_by"] = scale.offsetBy;
    object["display_precision"] = scale.decimals;
  }
  if (!value.isString && !scale.units.empty()) object["units"] = scale.units;
  return object;
}

std::string TimeText(const timeval& when) {
  time_t seconds = when.tv_sec;
  tm local{};
  localtime_r(&seconds, &local);
  char text[40];
  size_t n = strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &local);
  snprintf(text + n, sizeof text - n, ".%03ld", static_cast<long>(when.tv_usec / 1000));
  return text;
}

const char* KindName(const ParamDescriptor* descriptor) {
  if (dynamic_cast<const StringDescriptor*>(descriptor) != nullptr) return "string";
  if (AsEnum(descriptor) != nullptr) return "enumeration";
  if (dynamic_cast<const DecimalDescriptor*>(descriptor) != nullptr) return "decimal";
  if (dynamic_cast<const IntegerDescriptor*>(descriptor) != nullptr) return "integer";
  return "none";
}

const char* PersistenceName(ePersist_t persistence) {
  switch (persistence) {
    case ePersist:
      return "persist";
    case ePersist_Volatile:
      return "volatile";
    case ePersist_Status:
      return "status";
  }
  return "other";
}

const char* RegisterName(eUserRegisterData_t type) {
  switch (type) {
    case eRegister_Include:
      return "include";
    case eRegister_Exclude:
      return "exclude";
  }
  return "other";
}

const char* FactoryResetName(eFactoryReset_t type) {
  switch (type) {
    case eFactoryReset_Exclude:
      return "exclude";
    case eFactoryReset_Include:
      return "include";
    case eFactoryReset_Always:
      return "always";
  }
  return "other";
}

bool SameValue(const ParamValue& a, const ParamValue& b) {
  return a.isString ? a.text == b.text : a.number == b.number;
}

// Whether the store's range check lets `value` through unchanged. A range
// whose minimum exceeds its maximum starts at the minimum and spans the
// maximum.
bool InRange(const IntegerDescriptor* integer, unsigned int value) {
  unsigned int min = integer->GetMinValue();
  unsigned int max = integer->GetMaxValue();
  if (min <= max) return min <= value && value <= max;
  return value - min <= max;
}

// A named value followed by its number in parentheses: "persist (0)".
template <typename T>
std::string Coded(const char* name, T code) {
  return std::string(name) + " (" + std::to_string(static_cast<long long>(code)) + ")";
}

// Appends "  label  value\n" with the labels in one column.
void Field(std::string& out, const char* label, const std::string& value) {
  char head[24];
  snprintf(head, sizeof head, "  %-16s", label);
  out += head;
  out += value;
  out += '\n';
}

std::string Pad(const std::string& text, size_t width) {
  return text.size() >= width ? text : text + std::string(width - text.size(), ' ');
}

}  // namespace

SetOutcome ClassifySet(const ParamDescriptor* descriptor, const ParamValue& requested,
                       const ParamValue& before, const ParamValue& after) {
  if (SameValue(requested, after)) return SetOutcome::kAccepted;
  const IntegerDescriptor* integer = dynamic_cast<const IntegerDescriptor*>(descriptor);
  if (requested.isString || integer == nullptr || AsEnum(integer) != nullptr)
    return SetOutcome::kRefused;
  if (!InRange(integer, requested.number)) return SetOutcome::kClamped;
  return SameValue(before, after) ? SetOutcome::kRefused : SetOutcome::kAdjusted;
}

const char* OutcomeName(SetOutcome outcome) {
  switch (outcome) {
    case SetOutcome::kAccepted:
      return "accepted";
    case SetOutcome::kClamped:
      return "clamped";
    case SetOutcome::kAdjusted:
      return "adjusted";
    case SetOutcome::kRefused:
      return "refused";
  }
  return "";
}

std::string ParamName(unsigned int id, const ParamDescriptor* descriptor) {
  return descriptor != nullptr ? descriptor->GetParamIDName() : Hex(id);
}

std::string ValueText(const ParamDescriptor* descriptor, const ParamValue& value) {
  if (value.isString) return value.text;
  DisplayScale scale = DisplayScale::Of(descriptor);
  if (scale.number) return scale.TextWithUnits(value.number);
  std::string text = std::to_string(value.number);
  std::string name = ValueName(descriptor, value);
  if (!name.empty()) text += " (" + name + ")";
  return text;
}

std::string ValueLine(unsigned int id, const ParamDescriptor* descriptor, const ParamValue& value) {
  return ParamName(id, descriptor) + " = " + ValueText(descriptor, value);
}

std::string ValueJson(unsigned int id, const ParamDescriptor* descriptor, const ParamValue& value) {
  Json object;
  return JsonText(AddValueMembers(object, id, descriptor, value));
}

std::string EventLine(const timeval& when, unsigned int id, const ParamDescriptor* descriptor,
                      const ParamValue& value) {
  return TimeText(when) + " " + ValueLine(id, descriptor, value);
}

std::string EventJson(const timeval& when, unsigned int id, const ParamDescriptor* descriptor,
                      const ParamValue& value) {
  Json object;
  object["time"] = TimeText(when);
  return JsonText(AddValueMembers(object, id, descriptor, value));
}

std::string SetLine(ParamDescriptor* descriptor, const ParamValue& requested,
                    const ParamValue& stored, SetOutcome outcome) {
  unsigned int id = descriptor->GetParamID();
  std::string line = ValueLine(id, descriptor, stored);
  switch (outcome) {
    case SetOutcome::kAccepted:
      return line;
    case SetOutcome::kClamped:
      return line + " (clamped from " + ValueText(descriptor, requested) + ")";
    case SetOutcome::kAdjusted:
      return line + " (adjusted by configd from " + ValueText(descriptor, requested) + ")";
    case SetOutcome::kRefused:
      break;
  }
  // A refused text is quoted: it may be empty or end in blanks.
  std::string refused = ValueText(descriptor, requested);
  if (requested.isString) refused = "\"" + refused + "\"";
  return "configd refused " + refused + " for " + ParamName(id, descriptor) + ", which stays " +
         ValueText(descriptor, stored);
}

std::string SetJson(ParamDescriptor* descriptor, const ParamValue& requested,
                    const ParamValue& stored, SetOutcome outcome) {
  Json object;
  AddValueMembers(object, descriptor->GetParamID(), descriptor, stored);
  object["requested"] = ValueOf(descriptor, requested);
  object["result"] = OutcomeName(outcome);
  return JsonText(object);
}

std::string MenuNumber(const ParamDescriptor* descriptor) {
  std::string number;
  descriptor->GetAttribute("menu_number", number);
  return number;
}

std::string DescribeText(ParamDescriptor* descriptor) {
  std::string out = descriptor->GetParamIDName() + " (" + Hex(descriptor->GetParamID()) + ")\n";
  Field(out, "display name", descriptor->GetName());
  Field(out, "short name", descriptor->GetShortName());
  Field(out, "type", Coded(KindName(descriptor), descriptor->GetParamType()));
  if (auto* integer = dynamic_cast<IntegerDescriptor*>(descriptor)) {
    DisplayScale scale = DisplayScale::Of(descriptor);
    std::string range =
        std::to_string(integer->GetMinValue()) + " to " + std::to_string(integer->GetMaxValue());
    if (scale.IsScaled()) {
      Field(out, "range",
            scale.Text(integer->GetMinValue()) + " to " +
                scale.TextWithUnits(integer->GetMaxValue()) + " (raw " + range + ")");
      Field(out, "display",
            "(raw - " + std::to_string(scale.offsetBy) + ") / " + std::to_string(scale.scaleBy) +
                ", " + std::to_string(scale.decimals) +
                (scale.decimals == 1 ? " decimal" : " decimals"));
    } else {
      Field(out, "range", range);
    }
    ParamValue def;
    def.number = integer->GetFactoryDefault();
    Field(out, "default", ValueText(descriptor, def));
    std::string units = integer->GetUnits();
    if (!integer->GetUnits2().empty()) units += " / " + integer->GetUnits2();
    if (!units.empty()) Field(out, "units", units);
    if (auto* decimal = dynamic_cast<DecimalDescriptor*>(descriptor))
      Field(out, "precision", std::to_string(decimal->GetPrecision()));
  }
  if (auto* enumeration = dynamic_cast<EnumDescriptor*>(descriptor)) {
    const char* label = "values";
    for (const EnumValueDescriptor& entry : enumeration->GetOrderedEnumValueDescriptors()) {
      std::string text = std::to_string(entry.GetValue()) + " " + entry.GetName();
      if (entry.GetShortName() != entry.GetName()) text += " (" + entry.GetShortName() + ")";
      Field(out, label, text);
      label = "";
    }
  }
  if (auto* text = dynamic_cast<StringDescriptor*>(descriptor)) {
    Field(out, "length",
          std::to_string(text->GetMinLength()) + " to " + std::to_string(text->GetMaxLength()));
    Field(out, "default", text->GetFactoryDefault());
  }
  Field(out, "persistence",
        Coded(PersistenceName(descriptor->GetPersistenceType()), descriptor->GetPersistenceType()));
  Field(out, "register",
        Coded(RegisterName(descriptor->GetRegisterType()), descriptor->GetRegisterType()));
  Field(out, "factory reset",
        Coded(FactoryResetName(descriptor->GetFactoryResetType()),
              descriptor->GetFactoryResetType()));
  std::string classes;
  for (const std::string& name : descriptor->GetClassNames())
    classes += (classes.empty() ? "" : " ") + name;
  Field(out, "class names", classes.empty() ? "-" : classes);
  std::map<std::string, unsigned int> numbers;
  std::map<std::string, std::string> texts;
  descriptor->GetAttributes(numbers);
  descriptor->GetAttributes(texts);
  const char* label = "attributes";
  for (const auto& attribute : numbers) {
    Field(out, label, attribute.first + " = " + std::to_string(attribute.second));
    label = "";
  }
  for (const auto& attribute : texts) {
    Field(out, label, attribute.first + " = \"" + attribute.second + "\"");
    label = "";
  }
  if (numbers.empty() && texts.empty()) Field(out, label, "-");
  std::string menu = MenuNumber(descriptor);
  Field(out, "menu number", menu.empty() ? "-" : menu);
  return out;
}

std::string DescribeJson(ParamDescriptor* descriptor) {
  Json object;
  object["param"] = descriptor->GetParamIDName();
  object["id"] = descriptor->GetParamID();
  object["name"] = descriptor->GetName();
  object["short_name"] = descriptor->GetShortName();
  object["kind"] = KindName(descriptor);
  object["type"] = static_cast<unsigned int>(descriptor->GetParamType());
  if (auto* integer = dynamic_cast<IntegerDescriptor*>(descriptor)) {
    object["min"] = integer->GetMinValue();
    object["max"] = integer->GetMaxValue();
    object["default"] = integer->GetFactoryDefault();
    object["units"] = integer->GetUnits();
    object["scale_by"] = integer->GetScaleBy();
    object["offset_by"] = integer->GetOffsetBy();
    object["display_precision"] = integer->GetDisplayPrecision();
    if (auto* decimal = dynamic_cast<DecimalDescriptor*>(descriptor))
      object["precision"] = decimal->GetPrecision();
  }
  if (auto* enumeration = dynamic_cast<EnumDescriptor*>(descriptor)) {
    Json values = Json::array();
    for (const EnumValueDescriptor& entry : enumeration->GetOrderedEnumValueDescriptors()) {
      values.push_back(Json{{"value", entry.GetValue()},
                            {"name", entry.GetName()},
                            {"short_name", entry.GetShortName()}});
    }
    object["values"] = values;
  }
  if (auto* text = dynamic_cast<StringDescriptor*>(descriptor)) {
    object["min_length"] = text->GetMinLength();
    object["max_length"] = text->GetMaxLength();
    object["default"] = text->GetFactoryDefault();
  }
  object["persistence"] = PersistenceName(descriptor->GetPersistenceType());
  object["register"] = RegisterName(descriptor->GetRegisterType());
  object["factory_reset"] = FactoryResetName(descriptor->GetFactoryResetType());
  object["class_names"] = descriptor->GetClassNames();
  std::map<std::string, unsigned int> numbers;
  std::map<std::string, std::string> texts;
  descriptor->GetAttributes(numbers);
  descriptor->GetAttributes(texts);
  object["int_attributes"] = Json::object();
  for (const auto& attribute : numbers)
    object["int_attributes"][attribute.first] = attribute.second;
  object["string_attributes"] = Json::object();
  for (const auto& attribute : texts)
    object["string_attributes"][attribute.first] = attribute.second;
  object["menu_number"] = MenuNumber(descriptor);
  return JsonText(object);
}

std::string ListRow(const ParamDescriptor* descriptor, size_t nameWidth, bool withMenu) {
  std::string row;
  if (withMenu) row = Pad(MenuNumber(descriptor), 8) + "  ";
  row += Hex(descriptor->GetParamID()) + "  " + Pad(descriptor->GetParamIDName(), nameWidth) +
         "  " + descriptor->GetName();
  while (!row.empty() && row.back() == ' ') row.pop_back();
  return row;
}

std::string ListJson(const ParamDescriptor* descriptor, bool withMenu) {
  Json object;
  object["param"] = descriptor->GetParamIDName();
  object["id"] = descriptor->GetParamID();
  object["name"] = descriptor->GetName();
  if (withMenu) object["menu_number"] = MenuNumber(descriptor);
  return JsonText(object);
}

}  // namespace common
