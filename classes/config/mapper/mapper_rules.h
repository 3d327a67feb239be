// The rules of the four mapping schemes, as one table: how many specifics a
// generic has and which suffix table names them, which table holds them,
// which parameter selects among them (per processor for the input and
// output-format schemes), and which checks and messages the table build
// makes. The builders, MapParamID and the JSON export all read this table,
// so the schemes differ only here.
//
// Constant data; read from any thread. The suffix tables it points at are
// filled by InitializeSuffixes before the first build.
#ifndef CLASSES_CONFIG_MAPPER_MAPPER_RULES_H
#define CLASSES_CONFIG_MAPPER_MAPPER_RULES_H

#include <cstddef>
#include <string>

#include "config/mapper/tundra_param_mapper.h"

namespace tundra {
namespace mapper {

struct MappingRule {
  MappingScheme_t scheme;
  const char* schemeName;  // "eMapByInput"
  // The specifics per generic, named by suffixes[0] to suffixes[count - 1].
  std::size_t count;
  const std::string* suffixes;
  TundraParamMapper::SpecificTable* table;
  // Whether "proc_no" chooses the selector (and is checked on generic and
  // specifics): processor 1 reads selector, every other number
  // processor2Selector.
  bool byProcessor;
  unsigned int selector;
  unsigned int processor2Selector;
  // The number quoted by the warning for a specific that is not kept, or 0
  // when specifics are not checked.
  int persistWarningNumber;
  // The number quoted when a generic's ID name is not in the catalogue.
  int missingGenericNumber;
  // The scheme's word in "... not found for <word> based param".
  const char* procNoWarningName;
  // Whether a missing specific is reported with its full name.
  bool longNotFound;
};

// The rule of scheme, or null for eMapNone and unknown values.
const MappingRule* FindRule(MappingScheme_t scheme);

// The selector of a generic whose "proc_no" is proc_no.
inline unsigned int SelectorOf(const MappingRule& rule, unsigned int proc_no) {
  return rule.byProcessor && proc_no != 1 ? rule.processor2Selector : rule.selector;
}

// The generic's "proc_no", or 0 when the descriptor is null or has none.
unsigned int ProcNoOf(const ParamDescriptor* generic);

}  // namespace mapper
}  // namespace tundra

#endif  // CLASSES_CONFIG_MAPPER_MAPPER_RULES_H
