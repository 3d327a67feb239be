#include "config/descriptors/catalogue_builder.h"

#include <algorithm>

#include "config/descriptors/decimal_descriptor.h"
#include "config/descriptors/enum_descriptor.h"
#include "config/descriptors/param_descriptors.h"
#include "config/descriptors/string_descriptor.h"

namespace zyn {
namespace config {
namespace catalogue {

namespace {

std::string TextOf(const char* text) { return text != nullptr ? text : ""; }

// pattern with every "%d" replaced by number.
std::string Numbered(const char* pattern, int number) {
  std::string text = TextOf(pattern);
  const std::string digits = std::to_string(number);
  for (std::size_t at = text.find("%d"); at != std::string::npos;
       at = text.find("%d", at + digits.size())) {
    text.replace(at, 2, digits);
  }
  return text;
}

eParamType_t TypeOf(const CatalogueRow& row) {
  if (row.type != eCParam_None) return row.type;
  return row.kind == RowKind::kString ? eCParam_StringValue : eCParam_IntegerValue;
}

void SetCommonFields(const CatalogueRow& row, ParamDescriptor* d) {
  d->SetParamID(row.id);
  d->SetParamIDName(TextOf(row.idName));
  d->SetName(TextOf(row.name));
  d->SetShortName(TextOf(row.shortName));
  d->SetParamType(TypeOf(row));
  d->SetFeatureType(row.feature);
  d->SetPersistenceType(row.storage.persistence);
  d->SetRegisterType(row.storage.registerType);
  d->SetFactoryResetType(row.storage.factoryReset);
  if (row.access != eAccess_ReadWrite) d->SetAccessType(row.access);
  d->SetRegEx(TextOf(row.regEx));
}

void SetIntegerFields(const CatalogueRow& row, IntegerDescriptor* d) {
  unsigned int min = row.minValue;
  unsigned int max = row.maxValue;
  if (!row.rangeGiven && !row.values.empty()) {
    auto by_value = [](const EnumValue& a, const EnumValue& b) { return a.value < b.value; };
    min = std::min_element(row.values.begin(), row.values.end(), by_value)->value;
    max = std::max_element(row.values.begin(), row.values.end(), by_value)->value;
  }
  d->SetMinValue(min);
  d->SetMaxValue(max);
  d->SetFactoryDefault(row.factoryDefault);
  d->SetAdjustBy(row.adjustBy);
  d->SetScaleBy(row.scaleBy);
  d->SetOffsetBy(row.offsetBy);
  d->SetDisplayPrecision(row.displayPrecision);
  d->SetUnits(TextOf(row.units));
  d->SetUnits2(TextOf(row.units2));
}

void AddValues(const CatalogueRow& row, EnumDescriptor* d) {
  for (const EnumValue& v : row.values) {
    d->AddNameValuePair(v.value, v.name, v.shortName != nullptr ? v.shortName : v.name, nullptr,
                        TextOf(v.text));
  }
}

void SetTextFields(const CatalogueRow& row, StringDescriptor* d) {
  d->SetMinLength(row.minLength);
  d->SetMaxLength(row.maxLength);
  d->SetMinIndex(0);
  d->SetMaxIndex(row.maxLength > 0 ? row.maxLength - 1 : 0);
  d->SetFactoryDefault(row.textSource != nullptr ? row.textSource() : TextOf(row.text));
}

void SetTagsAndLinks(const CatalogueRow& row, ParamDescriptor* d) {
  for (const char* class_name : row.classNames) d->AddClassName(class_name);
  if (row.group != 0) d->AddAttribute("ParamGroup", row.group);
  if (row.menuNumber != nullptr) d->AddAttribute("menu_number", std::string(row.menuNumber));
  if (row.description != nullptr) d->AddAttribute("description", std::string(row.description));
  for (const IntAttribute& a : row.intAttributes) d->AddAttribute(a.name, a.value);
  for (const TextAttribute& a : row.textAttributes) d->AddAttribute(a.name, std::string(a.value));
  for (const RelationEntry& r : row.relations) d->AddRelation(r.name, r.paramID, r.value);
  for (unsigned int id : row.dependents) d->AddDependentParamID(id);
  for (unsigned int id : row.dependsOn) d->AddDependsOnParamID(id);
}

}  // namespace

ParamDescriptor* BuildDescriptor(const CatalogueRow& row) {
  ParamDescriptor* d = nullptr;
  switch (row.kind) {
    case RowKind::kString: {
      StringDescriptor* text = new StringDescriptor;
      SetCommonFields(row, text);
      SetTextFields(row, text);
      d = text;
      break;
    }
    case RowKind::kEnum: {
      EnumDescriptor* enumeration = new EnumDescriptor;
      SetCommonFields(row, enumeration);
      SetIntegerFields(row, enumeration);
      AddValues(row, enumeration);
      d = enumeration;
      break;
    }
    case RowKind::kDecimal: {
      DecimalDescriptor* decimal = new DecimalDescriptor;
      SetCommonFields(row, decimal);
      SetIntegerFields(row, decimal);
      decimal->SetPrecision(row.precision);
      d = decimal;
      break;
    }
    case RowKind::kInteger: {
      IntegerDescriptor* integer = new IntegerDescriptor;
      SetCommonFields(row, integer);
      SetIntegerFields(row, integer);
      d = integer;
      break;
    }
  }
  SetTagsAndLinks(row, d);
  return d;
}

ParamDescriptor* BuildFamilyMember(const CatalogueRow& pattern, const FamilyMember& member) {
  ParamDescriptor* d = BuildDescriptor(pattern);
  d->SetParamID(member.id);
  d->SetParamIDName(Numbered(pattern.idName, member.number));
  d->SetName(Numbered(pattern.name, member.number));
  d->SetShortName(Numbered(pattern.shortName, member.number));
  if (pattern.menuNumber != nullptr)
    d->AddAttribute("menu_number", Numbered(pattern.menuNumber, member.number));
  if (pattern.numberAttribute != nullptr)
    d->AddAttribute(pattern.numberAttribute, static_cast<unsigned int>(member.number));
  if (pattern.kind == RowKind::kString && pattern.textSource == nullptr)
    static_cast<StringDescriptor*>(d)->SetFactoryDefault(Numbered(pattern.text, member.number));
  return d;
}

void AddCatalogueRow(const CatalogueRow& row) { AddDescriptor(BuildDescriptor(row)); }

void AddCatalogueRows(Span<CatalogueRow> rows) {
  for (const CatalogueRow& row : rows) AddCatalogueRow(row);
}

void AddCatalogueFamily(const CatalogueRow& pattern, Span<FamilyMember> members) {
  for (const FamilyMember& member : members) AddDescriptor(BuildFamilyMember(pattern, member));
}

}  // namespace catalogue
}  // namespace config
}  // namespace zyn
