// The tools' JSON output, built with nlohmann-json. Json objects keep their
// members in the order they were added; JsonText writes a value compactly on
// one line.
//
// Plain values; no shared state.
#ifndef TOOLS_COMMON_JSON_H
#define TOOLS_COMMON_JSON_H

#include <nlohmann/json.hpp>
#include <string>

namespace common {

typedef nlohmann::ordered_json Json;

// `value` as one line of JSON. A string parameter may hold bytes that are not
// UTF-8; each such byte is written as U+FFFD, so the result is always valid
// JSON.
inline std::string JsonText(const Json& value) {
  return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace common

#endif  // TOOLS_COMMON_JSON_H
