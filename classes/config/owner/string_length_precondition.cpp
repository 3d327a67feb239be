#include "config/owner/string_length_precondition.h"

#include <cstdio>

#include "config/config.h"
#include "config/descriptors/string_descriptor.h"

bool StringLengthPrecondition::IsUpdateValid(Config*, zyn::config::IntegerUpdates&) { return true; }

bool StringLengthPrecondition::IsUpdateValid(Config* config, zyn::config::StringUpdates& updates) {
  if (updates.empty()) return true;
  const auto& [id, text] = updates.front();
  auto* limits = dynamic_cast<StringDescriptor*>(config->GetParamDescriptor(id));
  if (limits == nullptr) return true;
  if (text.size() >= limits->GetMinLength() && text.size() <= limits->GetMaxLength()) return true;
  fprintf(stderr,
          "StringLengthPrecondition::IsUpdateValid - %s refuses %zu characters (%u to %u)\n",
          limits->GetParamIDName().c_str(), text.size(), limits->GetMinLength(),
          limits->GetMaxLength());
  return false;
}

bool StringLengthPrecondition::IsUpdateValid(Config*, unsigned int, Serializable&) { return true; }
