// configctl's JSON output, built with nlohmann-json. Json objects keep their
// members in the order they were added; JsonText writes a value compactly on
// one line. Nothing here parses JSON.
//
// Plain values; no shared state.
#ifndef TOOLS_CONFIGCTL_JSON_H
#define TOOLS_CONFIGCTL_JSON_H

#include <nlohmann/json.hpp>
#include <string>

namespace configctl {

typedef nlohmann::ordered_json Json;

// `value` as one line of JSON. Valid UTF-8 in strings and keys is written
// as it is; a byte that is not part of valid UTF-8 stands for the character
// of the same number (U+0080 to U+00FF), so every byte a string parameter
// may hold survives and the result is always valid JSON.
std::string JsonText(const Json& value);

}  // namespace configctl

#endif  // TOOLS_CONFIGCTL_JSON_H
