// The record codec: payloads and response matching.
#include "config/access/xconfigmgr_records.h"

#include <gtest/gtest.h>

#include "config/values/integer_value.h"
#include "config/values/string_value.h"
#include "test_bytes.h"

using namespace zyn::config::access;

TEST(XConfigRecordsTest, PayloadsAndResponseMatching) {
  StringValue text(eConfigID_Default, 0x100, eCParam_StringValue, "ab");
  std::vector<char> payload = EncodePayload(&text);
  EXPECT_EQ("00 00 00 01 00 00 00 00 00 00 01 00 00 00 00 0C 61 62 00", Hex(payload));
  std::unique_ptr<ConfigValue> back(DecodePayload(payload.data(), payload.size()));
  ASSERT_NE(nullptr, back);
  EXPECT_TRUE(text.IsEqual(back.get()));

  // Every truncation fails; so do empty and oversized payloads.
  for (size_t cut = 0; cut < payload.size(); ++cut)
    EXPECT_EQ(nullptr, DecodePayload(payload.data(), cut)) << cut;
  std::vector<char> huge(kXConfigStreamBufferSize + 1, 0);
  EXPECT_EQ(nullptr, DecodePayload(huge.data(), huge.size()));

  StringValue tooLong(eConfigID_Default, 1, eCParam_StringValue, std::string(3100, 'x'));
  EXPECT_TRUE(EncodePayload(&tooLong).empty());

  IntegerValue number(eConfigID_Default, 7, eCParam_IntegerValue, 300);
  payload = EncodePayload(&number);
  back.reset(DecodePayload(payload.data(), payload.size()));
  ASSERT_NE(nullptr, dynamic_cast<IntegerValue*>(back.get()));

  std::vector<char> vector = Bytes({0, 0, 0, 9, 0, 0, 0, 0});
  Stderr([&] { EXPECT_EQ(nullptr, DecodePayload(vector.data(), vector.size())) << "not a value"; });

  // Which response answers a request.
  XCONFIGMGR_HEADER_T request = MakeHeader(80, 0x20001234, 5, 0);
  XCONFIGMGR_HEADER_T response = MakeHeader(96, 0x20001234, 5, 0);
  EXPECT_TRUE(IsValidResponse(request, response));
  response = MakeHeader(96, 0x30001234, 6, 2);
  EXPECT_EQ(
      "IsValidResponse - request.connectionID (0x20001234) != response.connectionID "
      "(0x30001234)\n"
      "IsValidResponse - request.configID (0) != response.configID (2)\n"
      "IsValidResponse - request.requestID (5) != response.requestID (6)\n",
      Stderr([&] { EXPECT_FALSE(IsValidResponse(request, response)); }));
  XCONFIGMGR_HEADER_T event = MakeHeader(144, 0x20001234, kXConfigEventRequestID, 0);
  Stderr([&] { EXPECT_FALSE(IsValidResponse(request, event)) << "an event never answers"; });
}
