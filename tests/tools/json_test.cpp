// configctl's JSON escaper and object builder: the output must be valid JSON
// for any bytes a string parameter may hold.
#include "configctl/json.h"

#include <gtest/gtest.h>

using configctl::JsonArray;
using configctl::JsonObject;
using configctl::JsonString;

TEST(ConfigctlJsonTest, EscapesWhatJsonForbidsAndKeepsValidUtf8) {
  EXPECT_EQ("\"\"", JsonString(""));
  EXPECT_EQ("\"a \\\"b\\\" \\\\ c\"", JsonString("a \"b\" \\ c"));
  EXPECT_EQ("\"\\n\\r\\t\\u0001\\u001f\\u007f/\"", JsonString("\n\r\t\x01\x1f\x7f/"));
  EXPECT_EQ(std::string("\"\\u0000x\""), JsonString(std::string("\0x", 2)));
  // Two-, three- and four-byte sequences pass through unchanged.
  EXPECT_EQ("\"\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x8E\xAC\"",
            JsonString("\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x8E\xAC"));
  // Bytes outside valid UTF-8 become escapes of their own number: a stray
  // byte, a cut sequence, an overlong form, a surrogate, beyond U+10FFFF.
  EXPECT_EQ("\"\\u00ff\"", JsonString("\xFF"));
  EXPECT_EQ("\"\\u00e2\\u0082\"", JsonString("\xE2\x82"));
  EXPECT_EQ("\"\\u00e2\\u0082x\"", JsonString("\xE2\x82x"));
  EXPECT_EQ("\"\\u00c0\\u00af\"", JsonString("\xC0\xAF"));
  EXPECT_EQ("\"\\u00ed\\u00a0\\u0080\"", JsonString("\xED\xA0\x80"));
  EXPECT_EQ("\"\\u00f4\\u0090\\u0080\\u0080\"", JsonString("\xF4\x90\x80\x80"));
}

TEST(ConfigctlJsonTest, ObjectsKeepMemberOrderAndNest) {
  EXPECT_EQ("{}", JsonObject().Str());
  EXPECT_EQ("[]", JsonArray({}));
  std::string inner = JsonObject().AddNumber("n", 4294967295u).AddBool("ok", false).Str();
  EXPECT_EQ("{\"z\":\"last\\\"\",\"a\":[{\"n\":4294967295,\"ok\":false},1],\"k\\n\":null}",
            JsonObject()
                .AddString("z", "last\"")
                .AddRaw("a", JsonArray({inner, "1"}))
                .AddRaw("k\n", "null")
                .Str());
}
