// configctl's JSON text: one line, members in the order added, and valid
// JSON for any bytes a string parameter may hold.
#include "configctl/json.h"

#include <gtest/gtest.h>

using configctl::Json;
using configctl::JsonText;

TEST(ConfigctlJsonTest, EscapesWhatJsonForbidsAndKeepsEveryByte) {
  EXPECT_EQ("\"\"", JsonText(""));
  EXPECT_EQ("\"a \\\"b\\\" \\\\ c\"", JsonText("a \"b\" \\ c"));
  EXPECT_EQ("\"\\n\\r\\t\\u0001\\u001f/\"", JsonText("\n\r\t\x01\x1f/"));
  EXPECT_EQ(std::string("\"\\u0000x\""), JsonText(std::string("\0x", 2)));
  // Two-, three- and four-byte sequences pass through unchanged.
  EXPECT_EQ("\"\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x8E\xAC\"",
            JsonText("\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x8E\xAC"));
  // A byte outside valid UTF-8 (a stray byte, a cut sequence, an overlong
  // form, a surrogate, beyond U+10FFFF) becomes the character of its own
  // number, in values and keys alike.
  struct Case {
    std::string bytes;
    std::string utf8;
  };
  for (const Case& c :
       {Case{"\xFF", "\xC3\xBF"}, Case{"\xE2\x82", "\xC3\xA2\xC2\x82"},
        Case{"\xE2\x82x", "\xC3\xA2\xC2\x82x"}, Case{"\xC0\xAF", "\xC3\x80\xC2\xAF"},
        Case{"\xED\xA0\x80", "\xC3\xAD\xC2\xA0\xC2\x80"},
        Case{"\xF4\x90\x80\x80", "\xC3\xB4\xC2\x90\xC2\x80\xC2\x80"}}) {
    std::string text = JsonText(Json{{c.bytes, c.bytes}});
    EXPECT_EQ("{\"" + c.utf8 + "\":\"" + c.utf8 + "\"}", text);
    EXPECT_TRUE(Json::accept(text)) << text;
  }
}

TEST(ConfigctlJsonTest, ObjectsKeepMemberOrderAndNest) {
  EXPECT_EQ("{}", JsonText(Json::object()));
  EXPECT_EQ("[]", JsonText(Json::array()));
  Json inner = {{"n", 4294967295u}, {"ok", false}};
  Json outer;
  outer["z"] = "last\"";
  outer["a"] = Json::array({inner, 1});
  outer["k\n"] = nullptr;
  EXPECT_EQ("{\"z\":\"last\\\"\",\"a\":[{\"n\":4294967295,\"ok\":false},1],\"k\\n\":null}",
            JsonText(outer));
}
