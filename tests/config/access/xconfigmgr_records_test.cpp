// The record codec: the message table, payloads and response matching.
#include "config/access/xconfigmgr_records.h"

#include <gtest/gtest.h>

#include <array>
#include <map>

#include "config/values/integer_value.h"
#include "config/values/string_value.h"
#include "test_bytes.h"

using namespace zyn::config::access;

TEST(XConfigRecordsTest, MessageTable) {
  EXPECT_STREQ("Connect Request", MessageName(16));
  EXPECT_STREQ("Param String Changed Event", MessageName(145));
  EXPECT_STREQ("Set Data Response", MessageName(259));
  EXPECT_STREQ("N/A", MessageName(15));
  EXPECT_STREQ("N/A", MessageName(260));
  EXPECT_STREQ("->", DirectionArrow(XCFG_POPULATE_PARAM_REQUEST));
  EXPECT_STREQ("->", DirectionArrow(XCFG_SET_DATA_REQUEST));
  EXPECT_STREQ("<=", DirectionArrow(XCFG_PARAM_DATA_CHANGED_EVENT));
  EXPECT_STREQ("<-", DirectionArrow(XCFG_ADD_CONFIG_EVENT_LISTENER_RESPONSE));
  EXPECT_STREQ("<-", DirectionArrow(999));
  // The servers read these whole request sizes and refuse every other code:
  // TCP takes the listener requests but no data requests, UDP the reverse.
  typedef std::array<size_t, 3> Sizes;  // local, TCP, UDP
  const std::map<uint32_t, Sizes> sizes = {
      {16, {24, 24, 24}}, {17, {24, 24, 24}}, {48, {28, 28, 0}},   {49, {28, 28, 0}},
      {80, {40, 40, 40}}, {81, {40, 40, 40}}, {112, {40, 40, 40}}, {113, {40, 40, 40}},
      {256, {0, 0, 40}},  {258, {0, 0, 40}}};
  for (uint32_t code = 0; code < 0x200; ++code) {
    auto it = sizes.find(code);
    EXPECT_EQ(it != sizes.end() ? it->second : Sizes{},
              (Sizes{LocalRequestSize(code), TCPRequestSize(code), UDPRequestSize(code)}))
        << "local, TCP and UDP sizes of code " << code;
  }
  EXPECT_STREQ("XCFG_SET_DATA_REQUEST", SymbolicName(XCFG_SET_DATA_REQUEST));
  EXPECT_STREQ("N/A", SymbolicName(999));
}

TEST(XConfigRecordsTest, Payloads) {
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
}

TEST(XConfigRecordsTest, ResponseMatching) {
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
