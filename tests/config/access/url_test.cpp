#include "config/access/url.h"

#include <gtest/gtest.h>

#include <string>

#include "test_stderr.h"

using zyn::config::access::url;

// A parse of fewer than three words leaves the fields as they were.
TEST(UrlTest, SplitsSchemeHostAndPortBoundedIgnoringTheRestOrChangesNothing) {
  url parsed;
  ASSERT_TRUE(parsed.parse("tcp://host:1/caching=true"));
  EXPECT_EQ(
      "url::parse - unable to parse url, found 2 matches\n"
      "url::parse - unable to parse url, found 0 matches\n",
      Stderr([&] {
        EXPECT_FALSE(parsed.parse("socket://127.0.0.1"));
        EXPECT_FALSE(parsed.parse("::://"));
      }));
  EXPECT_EQ("tcp", parsed.scheme);
  EXPECT_EQ("host", parsed.host);
  EXPECT_EQ("1", parsed.port);

  // Overlong text is bounded.
  std::string host(150, 'h');
  EXPECT_TRUE(parsed.parse("s://" + host + ":9"));
  EXPECT_EQ(std::string(url::kMaxWord, 'h'), parsed.host) << "a word keeps at most 99 bytes";
  EXPECT_EQ(std::string(150 - url::kMaxWord, 'h'), parsed.port) << "and the rest moves on";

  EXPECT_EQ("url::parse - unable to parse url, found 0 matches\n", Stderr([&] {
              EXPECT_FALSE(parsed.parse(std::string(url::kMaxText, '/') + "a://b:1"));
            }))
      << "only the first kMaxText bytes are read";
}
