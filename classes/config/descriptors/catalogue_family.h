// Helpers for the catalogue's generated families, beside the generic builder
// (catalogue_builder.h): filling a "*Clone" template from a catalogue row,
// copying a template into a new member, and building a member from a pattern
// row with names formed by the family's own printf patterns.
//
// Ownership: the returned descriptors are new and owned by the caller (the
// registry, once AddDescriptor takes them). Templates are static objects of
// the family's source.
//
// Thread-safety: used only while the catalogue is built (one thread).
#ifndef CLASSES_CONFIG_DESCRIPTORS_CATALOGUE_FAMILY_H
#define CLASSES_CONFIG_DESCRIPTORS_CATALOGUE_FAMILY_H

#include <memory>
#include <string>

#include "config/descriptors/catalogue_builder.h"
#include "config/descriptors/integer_descriptor.h"
#include "config/descriptors/param_descriptor.h"

namespace zyn {
namespace config {
namespace catalogue {

// Sets every field of the template clone to those of row. The row's kind
// must make a D (kInteger an IntegerDescriptor, kEnum an EnumDescriptor).
template <typename D>
void FillClone(D& clone, const CatalogueRow& row) {
  std::unique_ptr<ParamDescriptor> built(BuildDescriptor(row));
  clone = static_cast<const D&>(*built);
}

// A new descriptor of the template's own class (integer, enumeration or
// decimal) with all its fields, under its own ID and ID name. The caller
// owns it.
IntegerDescriptor* CopyClone(const IntegerDescriptor& clone, unsigned int id,
                             const std::string& id_name);

// text formatted as by printf.
std::string Format(const char* pattern, ...) __attribute__((format(printf, 1, 2)));

// A new descriptor made from pattern under its own ID, ID name, names and,
// when menu is not empty, menu number. The caller owns it.
ParamDescriptor* BuildMember(const CatalogueRow& pattern, unsigned int id,
                             const std::string& id_name, const std::string& name,
                             const std::string& short_name, const std::string& menu);

}  // namespace catalogue
}  // namespace config
}  // namespace zyn

#endif  // CLASSES_CONFIG_DESCRIPTORS_CATALOGUE_FAMILY_H
