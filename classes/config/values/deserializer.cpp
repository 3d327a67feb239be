#include "config/values/deserializer.h"

DeSerializer::DeSerializer(eSerializationFormat f) : format(f) {}

bool DeSerializer::Read(std::string& v, unsigned int maxLength) {
  std::string text;
  if (!Read("String", text) || text.size() > maxLength) return false;
  v = text;
  return true;
}
