// configctl's JSON text: one line, and valid JSON for any bytes a string
// parameter may hold.
#include "configctl/json.h"

#include <gtest/gtest.h>

using configctl::Json;
using configctl::JsonText;

TEST(ConfigctlJsonTest, EscapesWhatJsonForbidsAndKeepsEveryByte) {
  EXPECT_EQ("{\"a \\\"b\\\" \\\\ c\":[\"\\n\\r\\t\\u0001\\u001f/\",null]}",
            JsonText(Json{{"a \"b\" \\ c", {"\n\r\t\x01\x1f/", nullptr}}}));
  // Valid UTF-8 passes unchanged; a byte outside it (a cut sequence, an
  // overlong form, a surrogate, beyond U+10FFFF) becomes the character of
  // its own number, in values and keys alike.
  EXPECT_EQ("\"\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x8E\xAC\"",
            JsonText("\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x8E\xAC"));
  for (const auto& c : std::vector<std::pair<std::string, std::string>>{
           {"\xE2\x82x", "\xC3\xA2\xC2\x82x"},
           {"\xC0\xAF", "\xC3\x80\xC2\xAF"},
           {"\xED\xA0\x80", "\xC3\xAD\xC2\xA0\xC2\x80"},
           {"\xF4\x90\x80\x80", "\xC3\xB4\xC2\x90\xC2\x80\xC2\x80"}}) {
    EXPECT_EQ("{\"" + c.second + "\":\"" + c.second + "\"}", JsonText(Json{{c.first, c.first}}));
  }
}
