// The generic catalogue builder. A catalogue source describes each parameter
// as one constant row (kind, ID and names, storage policy, range or values or
// text limits, class names, attributes, relations and dependencies) and keeps
// its parameters as a constexpr table, one line per parameter, written with
// the chained setters of CatalogueRow:
//
//   Enum(0x4D575A8E, "eParamID_FrontPanelLock", "Front Panel Lock", "FP Lock")
//       .Values(kLockValues).Store(kUnitKept).Classes(kPanelHidden)
//
// AddCatalogueRows turns each row into a descriptor through the descriptors'
// virtual setters and registers it. A family is one pattern row whose ID
// name, names, menu number and default text hold "%d", instantiated once per
// entry of the family's ID table.
//
// Ownership: rows, and the value, class-name and attribute tables they point
// into, are static constants that outlive the build. Built descriptors are
// owned by the registry (param_descriptors.h), or by the caller of
// BuildDescriptor.
//
// Thread-safety: the registering functions write the registry and run only
// while the catalogue is built (one thread, at start).
#ifndef CLASSES_CONFIG_DESCRIPTORS_CATALOGUE_BUILDER_H
#define CLASSES_CONFIG_DESCRIPTORS_CATALOGUE_BUILDER_H

#include <cstddef>
#include <string>

#include "config/descriptors/param_types.h"

class ParamDescriptor;

namespace zyn {
namespace config {
namespace catalogue {

// A view of a constant array, so that rows can point at tables of any size.
// It converts implicitly from the array, so a row names the table itself.
template <typename T>
class Span {
 public:
  constexpr Span() = default;
  template <std::size_t N>
  constexpr Span(const T (&items)[N]) : data_(items), size_(N) {}

  constexpr const T* begin() const { return data_; }
  constexpr const T* end() const { return data_ + size_; }
  constexpr std::size_t size() const { return size_; }
  constexpr bool empty() const { return size_ == 0; }

 private:
  const T* data_ = nullptr;
  std::size_t size_ = 0;
};

// Which descriptor class a row makes.
enum class RowKind { kInteger, kEnum, kDecimal, kString };

// One value of an enumeration. A null short name means the name; a null
// text means the empty third text.
struct EnumValue {
  constexpr EnumValue(unsigned int v, const char* n, const char* s = nullptr,
                      const char* t = nullptr)
      : value(v), name(n), shortName(s), text(t) {}
  unsigned int value;
  const char* name;
  const char* shortName;
  const char* text;
};

struct IntAttribute {
  constexpr IntAttribute(const char* n, unsigned int v) : name(n), value(v) {}
  const char* name;
  unsigned int value;
};

struct TextAttribute {
  constexpr TextAttribute(const char* n, const char* v) : name(n), value(v) {}
  const char* name;
  const char* value;
};

// A relation entry: (parameter ID, value of that parameter) under a name.
struct RelationEntry {
  constexpr RelationEntry(const char* n, unsigned int id, unsigned int v)
      : name(n), paramID(id), value(v) {}
  const char* name;
  unsigned int paramID;
  unsigned int value;
};

// Persistence, user-register membership and factory-reset policy together.
struct Storage {
  ePersist_t persistence;
  eUserRegisterData_t registerType;
  eFactoryReset_t factoryReset;
};

// A processing setting: kept, saved in presets, reset by a factory reset.
// What a new descriptor starts with.
constexpr Storage kPresetSetting = {ePersist, eRegister_Include, eFactoryReset_Include};
// A setting of the unit itself: kept and reset, but not part of presets.
constexpr Storage kUnitSetting = {ePersist, eRegister_Exclude, eFactoryReset_Include};
// A setting that survives a factory reset (network identity, the panel lock).
constexpr Storage kUnitKept = {ePersist, eRegister_Exclude, eFactoryReset_Exclude};
// A value of the running unit that is not kept: commands, results, values
// mirrored from elsewhere, and the generic parameters that the mapper
// redirects to a specific one.
constexpr Storage kVolatile = {ePersist_Volatile, eRegister_Exclude, eFactoryReset_Exclude};
// State that the hardware reports: not kept, never set by a user.
constexpr Storage kStatus = {ePersist_Status, eRegister_Exclude, eFactoryReset_Exclude};

// One parameter. Fields not given keep the defaults below, which are those
// of a new descriptor except the regular expression ("*", any value).
struct CatalogueRow {
  constexpr CatalogueRow(RowKind k, unsigned int param_id, const char* id_name,
                         const char* display_name, const char* short_name)
      : kind(k), id(param_id), idName(id_name), name(display_name), shortName(short_name) {}

  // The type, when not the kind's own (3 for numbers, 12 for strings).
  constexpr CatalogueRow Type(eParamType_t t) const {
    CatalogueRow r = *this;
    r.type = t;
    return r;
  }
  constexpr CatalogueRow Feature(eFeature_t f) const {
    CatalogueRow r = *this;
    r.feature = f;
    return r;
  }
  constexpr CatalogueRow Store(Storage s) const {
    CatalogueRow r = *this;
    r.storage = s;
    return r;
  }
  constexpr CatalogueRow Access(eAccess_t a) const {
    CatalogueRow r = *this;
    r.access = a;
    return r;
  }
  constexpr CatalogueRow RegEx(const char* pattern) const {
    CatalogueRow r = *this;
    r.regEx = pattern;
    return r;
  }
  // Numbers: the valid range and the factory default. An enumeration
  // without a range takes its smallest and largest value.
  constexpr CatalogueRow Range(unsigned int min, unsigned int max, unsigned int def) const {
    CatalogueRow r = *this;
    r.minValue = min;
    r.maxValue = max;
    r.factoryDefault = def;
    r.rangeGiven = true;
    return r;
  }
  constexpr CatalogueRow Default(unsigned int def) const {
    CatalogueRow r = *this;
    r.factoryDefault = def;
    return r;
  }
  constexpr CatalogueRow Step(unsigned int step) const {
    CatalogueRow r = *this;
    r.adjustBy = step;
    return r;
  }
  // How a number is shown: divisor, offset and decimals shown.
  constexpr CatalogueRow Display(unsigned int scale, unsigned int offset,
                                 unsigned int decimals) const {
    CatalogueRow r = *this;
    r.scaleBy = scale;
    r.offsetBy = offset;
    r.displayPrecision = decimals;
    return r;
  }
  constexpr CatalogueRow Units(const char* first, const char* second = nullptr) const {
    CatalogueRow r = *this;
    r.units = first;
    r.units2 = second;
    return r;
  }
  // Decimal places of a decimal parameter's fixed-point value.
  constexpr CatalogueRow Precision(unsigned int places) const {
    CatalogueRow r = *this;
    r.precision = places;
    return r;
  }
  // An enumeration's values, in display order.
  constexpr CatalogueRow Values(Span<EnumValue> list) const {
    CatalogueRow r = *this;
    r.values = list;
    return r;
  }
  // Strings: length limits (character positions run 0 to max - 1) and the
  // default text.
  constexpr CatalogueRow Text(unsigned int min_length, unsigned int max_length,
                              const char* def) const {
    CatalogueRow r = *this;
    r.minLength = min_length;
    r.maxLength = max_length;
    r.text = def;
    return r;
  }
  // A default text that the unit supplies when the catalogue is built.
  constexpr CatalogueRow TextFrom(std::string (*source)()) const {
    CatalogueRow r = *this;
    r.textSource = source;
    return r;
  }
  constexpr CatalogueRow Classes(Span<const char*> list) const {
    CatalogueRow r = *this;
    r.classNames = list;
    return r;
  }
  // The "ParamGroup" and, when given, the "menu_number" attributes.
  constexpr CatalogueRow Menu(unsigned int menu_group, const char* number = nullptr) const {
    CatalogueRow r = *this;
    r.group = menu_group;
    r.menuNumber = number;
    return r;
  }
  // The "description" attribute.
  constexpr CatalogueRow Describe(const char* help) const {
    CatalogueRow r = *this;
    r.description = help;
    return r;
  }
  // For a family member: an integer attribute of this name holds its number.
  constexpr CatalogueRow NumberedBy(const char* attribute) const {
    CatalogueRow r = *this;
    r.numberAttribute = attribute;
    return r;
  }
  constexpr CatalogueRow IntAttributes(Span<IntAttribute> list) const {
    CatalogueRow r = *this;
    r.intAttributes = list;
    return r;
  }
  constexpr CatalogueRow TextAttributes(Span<TextAttribute> list) const {
    CatalogueRow r = *this;
    r.textAttributes = list;
    return r;
  }
  constexpr CatalogueRow Relations(Span<RelationEntry> list) const {
    CatalogueRow r = *this;
    r.relations = list;
    return r;
  }
  constexpr CatalogueRow Dependents(Span<unsigned int> ids) const {
    CatalogueRow r = *this;
    r.dependents = ids;
    return r;
  }
  constexpr CatalogueRow DependsOn(Span<unsigned int> ids) const {
    CatalogueRow r = *this;
    r.dependsOn = ids;
    return r;
  }

  RowKind kind;
  unsigned int id;
  const char* idName;
  const char* name;
  const char* shortName;
  eParamType_t type = eCParam_None;
  eFeature_t feature = eFeature_General;
  Storage storage = kPresetSetting;
  eAccess_t access = eAccess_ReadWrite;
  const char* regEx = "*";
  unsigned int minValue = 0;
  unsigned int maxValue = 0;
  unsigned int factoryDefault = 0;
  bool rangeGiven = false;
  unsigned int adjustBy = 1;
  unsigned int scaleBy = 1;
  unsigned int offsetBy = 0;
  unsigned int displayPrecision = 0;
  const char* units = nullptr;
  const char* units2 = nullptr;
  unsigned int precision = 0;
  Span<EnumValue> values;
  unsigned int minLength = 0;
  unsigned int maxLength = 20;
  const char* text = nullptr;
  std::string (*textSource)() = nullptr;
  Span<const char*> classNames;
  unsigned int group = 0;  // 0: in no menu
  const char* menuNumber = nullptr;
  const char* description = nullptr;
  const char* numberAttribute = nullptr;
  Span<IntAttribute> intAttributes;
  Span<TextAttribute> textAttributes;
  Span<RelationEntry> relations;
  Span<unsigned int> dependents;
  Span<unsigned int> dependsOn;
};

constexpr CatalogueRow Integer(unsigned int id, const char* id_name, const char* name,
                               const char* short_name) {
  return CatalogueRow(RowKind::kInteger, id, id_name, name, short_name);
}
constexpr CatalogueRow Enum(unsigned int id, const char* id_name, const char* name,
                            const char* short_name) {
  return CatalogueRow(RowKind::kEnum, id, id_name, name, short_name);
}
constexpr CatalogueRow Decimal(unsigned int id, const char* id_name, const char* name,
                               const char* short_name) {
  return CatalogueRow(RowKind::kDecimal, id, id_name, name, short_name);
}
constexpr CatalogueRow String(unsigned int id, const char* id_name, const char* name,
                              const char* short_name) {
  return CatalogueRow(RowKind::kString, id, id_name, name, short_name);
}

// One member of a family: its fixed ID and the number put in place of "%d".
struct FamilyMember {
  unsigned int id;
  int number;
};

// A new descriptor made from row; the caller owns it.
ParamDescriptor* BuildDescriptor(const CatalogueRow& row);

// A new descriptor made from pattern for one family member: the member's ID,
// and every "%d" of the ID name, names, menu number and default text
// replaced by its number. The caller owns it.
ParamDescriptor* BuildFamilyMember(const CatalogueRow& pattern, const FamilyMember& member);

// Build and register (AddDescriptor) one row, every row of a table, or every
// member of a family.
void AddCatalogueRow(const CatalogueRow& row);
void AddCatalogueRows(Span<CatalogueRow> rows);
void AddCatalogueFamily(const CatalogueRow& pattern, Span<FamilyMember> members);

}  // namespace catalogue
}  // namespace config
}  // namespace zyn

#endif  // CLASSES_CONFIG_DESCRIPTORS_CATALOGUE_BUILDER_H
