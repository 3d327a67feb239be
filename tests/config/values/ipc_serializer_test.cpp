#include "config/values/ipc_serializer.h"

#include <gtest/gtest.h>
#include <sys/ipc.h>
#include <sys/msg.h>

#include <cstring>

#include "config/values/integer_value.h"
#include "test_bytes.h"

namespace {

struct Message {
  long mtype;
  char text[256];
};

}  // namespace

TEST(IPCSerializerTest, SendsHeaderThenObject) {
  int queue = msgget(IPC_PRIVATE, IPC_CREAT | 0600);
  ASSERT_GE(queue, 0) << "no System V message queue available";
  IntegerValue value(eConfigID_Default, 0x4D575A8E, eCParam_IntegerValue, 1);
  IPCSerializer serializer(eSerializationFormat_Binary, queue);
  CONFIGMGR_STREAM_HEADER_T header{40, {0xAABBCCDD, 5, 0, 0, 6, 7}};
  ASSERT_TRUE(serializer.Write(header, &value));

  Message first{};
  ASSERT_EQ(24, msgrcv(queue, &first, sizeof first.text, 40, IPC_NOWAIT));
  std::vector<uint32_t> words(5);
  memcpy(words.data(), first.text, 5 * sizeof(uint32_t));
  EXPECT_EQ(words, (std::vector<uint32_t>{0xAABBCCDD, 5, 20 + 8, 1024, 6}))
      << "the third word is the object's size plus 8";

  Message second{};
  ASSERT_EQ(24, msgrcv(queue, &second, sizeof second.text, 41, IPC_NOWAIT));
  std::vector<char> text(second.text, second.text + 24);
  uint32_t word1;
  memcpy(&word1, text.data(), 4);
  EXPECT_EQ(0xAABBCCDDu, word1) << "header word 1 leads the object message";
  EXPECT_EQ(Hex(EncodeFramed(&value)), Hex(std::vector<char>(text.begin() + 4, text.end())));

  // A queue that is gone refuses the header.
  msgctl(queue, IPC_RMID, nullptr);
  EXPECT_FALSE(serializer.Write(header, &value));
}
