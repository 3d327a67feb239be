#include "config/access/connection_utilities.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <set>
#include <string>
#include <thread>
#include <vector>

using zyn::config::access::ConnectionUtilities;

namespace {

XCONFIGMGR_HEADER_T Header(uint32_t msgtype, uint32_t connectionID, uint32_t requestID) {
  return zyn::config::access::MakeHeader(msgtype, connectionID, requestID, 0);
}

TEST(ConnectionUtilitiesTest, ConnectionIDsCarryThePidAndACounterAndTraceLines) {
  uint32_t first = ConnectionUtilities::GetConnectionID();
  uint32_t second = ConnectionUtilities::GetConnectionID();
  EXPECT_EQ(static_cast<uint32_t>(getpid()) & 0xFFFF, first & 0xFFFF);
  EXPECT_EQ(first & 0xFFFF, second & 0xFFFF);
  EXPECT_EQ((first >> 16) + 1, second >> 16);

  std::vector<uint32_t> ids(2000);
  auto take = [&ids](size_t from) {
    for (size_t i = from; i < ids.size(); i += 2) ids[i] = ConnectionUtilities::GetConnectionID();
  };
  std::thread other(take, 1);
  take(0);
  other.join();
  EXPECT_EQ(ids.size(), std::set<uint32_t>(ids.begin(), ids.end()).size())
      << "concurrent clients must never share an ID";

  using Lines = ConnectionUtilities;
  const uint32_t pid = static_cast<uint32_t>(getpid()) & 0xFFFF, id = (3u << 16) | pid;
  const std::string me = Lines::name_from_pid(static_cast<int>(pid)), cid = std::to_string(id);

  XCONFIGMGR_REQUEST_T request = {Header(80, id, 5), 0x1234, 0, 0, 0};
  EXPECT_EQ("(->) Get Request " + me + " [5]\n", Lines::FormatLine(request));
  request.header.msgtype = 113;
  const char payload[] = {0x00, 0x01, static_cast<char>(0xAB), 0x7F, 0, 0, 0, 0, 0, 0, 0, 0, 0x10};
  EXPECT_EQ("(->) Set String Request " + me + " [5] {0xd:0x0001ab7f000000000000000010}\n",
            Lines::FormatLine(request, payload, sizeof payload));

  XCONFIGMGR_RESPONSE_T response = {Header(96, id, 5), 0x1234, 15, 7, 0, 0};
  EXPECT_EQ("(<-) Get Response " + me + " [5] (error 15)\n", Lines::FormatLine(response));
  XCONFIGMGR_RESPONSE_T event = {Header(144, 0, 0xFFFFFFFF), 0x1234, 0, 7, 0, 3072};
  EXPECT_EQ("(<=) Param Changed Event event [-1]\n", Lines::FormatLine(event));
  event.header.connectionID = 0x0000FFFF;
  EXPECT_EQ("(<=) Param Changed Event event [-1]\n", Lines::FormatLine(event));

  XCONFIGMGR_CONNECTION_REQUEST_T connect = {Header(16, id, 0)};
  EXPECT_EQ("(->) " + cid + " Connect Request " + me + " [0]\n", Lines::FormatLine(connect));
  XCONFIGMGR_CONNECTION_RESPONSE_T answer = {Header(32, id, 0), 0};
  EXPECT_EQ("(<-) " + cid + " Connect Response " + me + " [0]\n", Lines::FormatLine(answer));
  answer.error = 2;
  EXPECT_EQ("(<-) " + cid + " Connect Response " + me + " [0] error 2\n",
            Lines::FormatLine(answer));
}

}  // namespace
