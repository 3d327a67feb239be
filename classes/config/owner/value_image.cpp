#include "config/owner/value_image.h"

#include "config/config.h"
#include "config/descriptors/enum_descriptor.h"
#include "config/descriptors/param_descriptors.h"
#include "config/descriptors/string_descriptor.h"
#include "config/manager/update_precondition_values.h"
#include "config/values/integer_value.h"
#include "config/values/memory_deserializer.h"
#include "config/values/memory_serializer.h"
#include "config/values/string_value.h"

using zyn::config::values::Vector;

namespace {

constexpr eSerializationFormat kFormat = eSerializationFormat_Binary;

// Appends the value of `descriptor`'s parameter: the store's when `store`
// is given, the factory default otherwise.
void AddValue(Vector& values, Config* store, ParamDescriptor* descriptor) {
  unsigned int id = descriptor->GetParamID();
  eParamType_t type = descriptor->GetParamType();
  if (auto* text = dynamic_cast<StringDescriptor*>(descriptor)) {
    std::string value = text->GetFactoryDefault();
    if (store != nullptr && !store->Get(id, value)) return;
    values.Add(new StringValue(eConfigID_Default, id, type, value));
  } else if (auto* number = dynamic_cast<IntegerDescriptor*>(descriptor)) {
    unsigned int value = number->GetFactoryDefault();
    if (store != nullptr && !store->Get(id, value)) return;
    values.Add(new IntegerValue(eConfigID_Default, id, type, value));
  }
}

std::string Collect(Config* store, const ValueImage::Filter& keep) {
  Vector values;
  for (unsigned int id : GetParamIDs()) {
    ParamDescriptor* descriptor = GetDescriptor(id);
    if (descriptor != nullptr && keep(descriptor)) AddValue(values, store, descriptor);
  }
  return ValueImage::Encode(values);
}

}  // namespace

std::string ValueImage::Capture(Config* store, const Filter& keep) { return Collect(store, keep); }

std::string ValueImage::Defaults(const Filter& keep) { return Collect(nullptr, keep); }

std::string ValueImage::Encode(Vector& values) {
  std::string bytes(MemorySerializerSizer::GetSize(&values), '\0');
  MemorySerializer writer(kFormat, &bytes[0], &bytes[0] + bytes.size(), false);
  writer.Write("Serializable", &values);
  return bytes;
}

bool ValueImage::Parse(const std::string& bytes, Vector& values) {
  values.Clear();
  std::string copy = bytes;  // the reader takes a writable range
  char* start = &copy[0];
  char* end = start + copy.size();
  MemoryDeSerializer reader(kFormat, start, end, false);
  ClassFactoryHeader header;
  unsigned int count = 0;
  if (copy.size() < 8 || !reader.Read(header) || header.classID != eClassID_Vector) return false;
  char* counted = reader.GetPos();
  if (!reader.Read("Size", count)) return false;
  reader.SetPos(counted);
  values.Deserialize(&reader);
  bool whole = !reader.Failed() && values.Size() == count && reader.GetPos() == end;
  for (size_t i = 0; whole && i < values.Size(); ++i) {
    whole = dynamic_cast<IntegerValue*>(values.Get(i)) != nullptr ||
            dynamic_cast<StringValue*>(values.Get(i)) != nullptr;
  }
  if (!whole) values.Clear();
  return whole;
}

ValueImage::Fit ValueImage::Check(ConfigValue* value, std::string& why) {
  ParamDescriptor* descriptor = GetDescriptor(value->GetParamID());
  if (descriptor == nullptr) return Fit::kUnknown;
  if (auto* text = dynamic_cast<StringValue*>(value)) {
    auto* limits = dynamic_cast<StringDescriptor*>(descriptor);
    if (limits == nullptr) {
      why = "a text for a number";
      return Fit::kInvalid;
    }
    std::string held;
    text->Get(held);
    if (held.size() < limits->GetMinLength() || held.size() > limits->GetMaxLength()) {
      why = std::to_string(held.size()) + " characters, outside " +
            std::to_string(limits->GetMinLength()) + " to " +
            std::to_string(limits->GetMaxLength());
      return Fit::kInvalid;
    }
    return Fit::kFits;
  }
  auto* number = dynamic_cast<IntegerValue*>(value);
  auto* range = dynamic_cast<IntegerDescriptor*>(descriptor);
  if (number == nullptr || range == nullptr) {
    why = "a number for a text";
    return Fit::kInvalid;
  }
  unsigned int held = 0;
  number->Get(held);
  zyn::config::UpdatePreconditionValues rules;
  if (auto* list = dynamic_cast<EnumDescriptor*>(range)) {
    if (rules.IsValidEnum(list, held)) return Fit::kFits;
    why = std::to_string(held) + " is not in its list";
    return Fit::kInvalid;
  }
  if (rules.IsValidRange(range, held)) return Fit::kFits;
  unsigned int kept = held;
  rules.ForceValidRange(range, kept);
  why = std::to_string(held) + " clamped to " + std::to_string(kept);
  number->Set(kept);
  return Fit::kClamped;
}

bool ValueImage::Apply(Config* store, ConfigValue* value) {
  unsigned int id = value->GetParamID();
  if (auto* text = dynamic_cast<StringValue*>(value)) {
    std::string held;
    text->Get(held);
    return store->Set(id, held);
  }
  auto* number = dynamic_cast<IntegerValue*>(value);
  if (number == nullptr) return false;
  unsigned int held = 0;
  number->Get(held);
  return store->Set(id, held);
}

bool ValueImage::Holds(Config* store, ConfigValue* value) {
  unsigned int id = value->GetParamID();
  if (auto* text = dynamic_cast<StringValue*>(value)) {
    std::string held, current;
    text->Get(held);
    return store->Get(id, current) && current == held;
  }
  auto* number = dynamic_cast<IntegerValue*>(value);
  unsigned int held = 0, current = 0;
  if (number == nullptr) return false;
  number->Get(held);
  return store->Get(id, current) && current == held;
}
