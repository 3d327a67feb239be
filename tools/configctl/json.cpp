#include "configctl/json.h"

#include <cstdio>

namespace configctl {

namespace {

// The length of the valid UTF-8 sequence that starts at text[i], or 0.
size_t Utf8SequenceLength(const std::string& text, size_t i) {
  unsigned char lead = static_cast<unsigned char>(text[i]);
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

void AppendEscape(std::string& out, unsigned int code) {
  char escape[8];
  snprintf(escape, sizeof escape, "\\u%04x", code);
  out += escape;
}

}  // namespace

std::string JsonString(const std::string& text) {
  std::string out = "\"";
  for (size_t i = 0; i < text.size();) {
    unsigned char c = static_cast<unsigned char>(text[i]);
    if (c >= 0x80) {
      size_t length = Utf8SequenceLength(text, i);
      if (length == 0) {
        AppendEscape(out, c);
        ++i;
      } else {
        out.append(text, i, length);
        i += length;
      }
      continue;
    }
    switch (c) {
      case '"':
        out += "\\\"";
        break;
      case '\\':
        out += "\\\\";
        break;
      case '\n':
        out += "\\n";
        break;
      case '\r':
        out += "\\r";
        break;
      case '\t':
        out += "\\t";
        break;
      default:
        if (c < 0x20 || c == 0x7F) {
          AppendEscape(out, c);
        } else {
          out += static_cast<char>(c);
        }
    }
    ++i;
  }
  out += '"';
  return out;
}

std::string JsonArray(const std::vector<std::string>& elements) {
  std::string out = "[";
  for (size_t i = 0; i < elements.size(); ++i) {
    if (i > 0) out += ',';
    out += elements[i];
  }
  out += ']';
  return out;
}

JsonObject& JsonObject::AddString(const std::string& key, const std::string& text) {
  return AddRaw(key, JsonString(text));
}

JsonObject& JsonObject::AddNumber(const std::string& key, unsigned long long number) {
  return AddRaw(key, std::to_string(number));
}

JsonObject& JsonObject::AddBool(const std::string& key, bool value) {
  return AddRaw(key, value ? "true" : "false");
}

JsonObject& JsonObject::AddRaw(const std::string& key, const std::string& json) {
  if (!_members.empty()) _members += ',';
  _members += JsonString(key);
  _members += ':';
  _members += json;
  return *this;
}

std::string JsonObject::Str() const { return "{" + _members + "}"; }

}  // namespace configctl
