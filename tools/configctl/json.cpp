#include "configctl/json.h"

namespace configctl {

namespace {

// The length of the valid UTF-8 sequence that starts at text[i], or 0.
size_t Utf8SequenceLength(const std::string& text, size_t i) {
  unsigned char lead = static_cast<unsigned char>(text[i]);
  if (lead < 0x80) return 1;
  size_t length;
  unsigned int min;  // the smallest code point of that length (no overlong forms)
  unsigned int code;
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2, min = 0x80, code = lead & 0x1F;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3, min = 0x800, code = lead & 0x0F;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4, min = 0x10000, code = lead & 0x07;
  } else {
    return 0;
  }
  if (i + length > text.size()) return 0;
  for (size_t k = 1; k < length; ++k) {
    unsigned char next = static_cast<unsigned char>(text[i + k]);
    if ((next & 0xC0) != 0x80) return 0;
    code = (code << 6) | (next & 0x3F);
  }
  if (code < min || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) return 0;
  return length;
}

// `text` with each byte outside valid UTF-8 replaced by the UTF-8 form of
// the character of that number.
std::string ValidUtf8(const std::string& text) {
  std::string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size();) {
    size_t length = Utf8SequenceLength(text, i);
    if (length != 0) {
      out.append(text, i, length);
      i += length;
      continue;
    }
    unsigned char byte = static_cast<unsigned char>(text[i++]);
    out += static_cast<char>(0xC0 | (byte >> 6));
    out += static_cast<char>(0x80 | (byte & 0x3F));
  }
  return out;
}

Json WithValidUtf8(const Json& value) {
  if (value.is_string()) return ValidUtf8(value.get_ref<const std::string&>());
  if (value.is_array()) {
    Json out = Json::array();
    for (const Json& element : value) out.push_back(WithValidUtf8(element));
    return out;
  }
  if (value.is_object()) {
    Json out = Json::object();
    for (auto it = value.begin(); it != value.end(); ++it)
      out[ValidUtf8(it.key())] = WithValidUtf8(it.value());
    return out;
  }
  return value;
}

}  // namespace

std::string JsonText(const Json& value) {
  return WithValidUtf8(value).dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace configctl
