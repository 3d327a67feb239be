// configctl's JSON output: a string escaper and a builder of one object whose
// members keep the order they were added in. Members take values already
// rendered as JSON, so objects and arrays nest. Nothing here parses JSON.
//
// Plain values; no shared state.
#ifndef TOOLS_CONFIGCTL_JSON_H
#define TOOLS_CONFIGCTL_JSON_H

#include <string>
#include <vector>

namespace configctl {

// `text` as a JSON string literal, quotes included. Valid UTF-8 is kept as
// it is; quotes, backslashes and control characters are escaped, and a byte
// that is not part of valid UTF-8 is written as the \u escape of its number,
// so the result is always valid JSON.
std::string JsonString(const std::string& text);

// "[e1,e2,...]" from rendered elements.
std::string JsonArray(const std::vector<std::string>& elements);

class JsonObject {
 public:
  JsonObject& AddString(const std::string& key, const std::string& text);
  JsonObject& AddNumber(const std::string& key, unsigned long long number);
  JsonObject& AddBool(const std::string& key, bool value);
  // `json` must be a rendered JSON value.
  JsonObject& AddRaw(const std::string& key, const std::string& json);
  // The object, "{...}".
  std::string Str() const;

 private:
  std::string _members;
};

}  // namespace configctl

#endif  // TOOLS_CONFIGCTL_JSON_H
