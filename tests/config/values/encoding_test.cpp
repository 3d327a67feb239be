// Byte-for-byte checks of the value encoding and of the reader's refusal to
// pass the end of its input.
#include <gtest/gtest.h>

#include <cstring>

#include "config/values/integer_value.h"
#include "config/values/memory_deserializer.h"
#include "config/values/memory_serializer.h"
#include "config/values/string_value.h"
#include "test_bytes.h"
#include "test_stderr.h"

namespace {

MemoryDeSerializer ReaderOf(std::vector<char>& bytes) {
  return MemoryDeSerializer(eSerializationFormat_Binary, bytes.data(), bytes.data() + bytes.size(),
                            false);
}

}  // namespace

TEST(EncodingTest, ValuesFramedAsSerializableRoundTripAndTruncated) {
  StringValue text(eConfigID_Default, 0x100, eCParam_StringValue, "ab");
  EXPECT_EQ("00 00 00 01 00 00 00 00 00 00 01 00 00 00 00 0C 61 62 00", Hex(EncodeFramed(&text)));
  EXPECT_EQ(19u, MemorySerializerSizer::GetSize(&text));

  IntegerValue number(static_cast<eConfigID_t>(2), 7, static_cast<eParamType_t>(4), 300);
  EXPECT_EQ("00 00 00 00 00 00 00 02 00 00 00 07 00 00 00 04 00 00 01 2C",
            Hex(EncodeFramed(&number)));
  EXPECT_EQ(20u, MemorySerializerSizer::GetSize(&number));

  StringValue hello(static_cast<eConfigID_t>(3), 0x1234, eCParam_StringValue, "hello");
  std::vector<char> bytes = EncodeFramed(&hello);
  StringValue* read = dynamic_cast<StringValue*>(DecodeFramed(bytes));
  ASSERT_NE(nullptr, read);
  std::string v;
  read->Get(v);
  EXPECT_EQ("hello", v);
  EXPECT_EQ(0x1234u, read->GetParamID());
  EXPECT_EQ(3, read->GetConfigID());

  // Every proper prefix of the encoding yields no object.
  for (size_t cut = 0; cut < bytes.size(); ++cut) {
    MemoryDeSerializer partial(eSerializationFormat_Binary, bytes.data(), bytes.data() + cut,
                               false);
    Serializable* none = reinterpret_cast<Serializable*>(&partial);
    EXPECT_FALSE(partial.Read("Serializable", none)) << "cut at " << cut;
    EXPECT_EQ(nullptr, none) << "cut at " << cut;
  }
}

TEST(EncodingTest, ScalarWritesSizesTheBufferEndAndReads) {
  char buffer[64];
  MemorySerializer out(eSerializationFormat_Binary, buffer, buffer + sizeof buffer, false);
  MemorySerializerSizer sizer(eSerializationFormat_Binary);
  auto both = [&](auto write) {
    write(out);
    write(sizer);
  };
  both([](Serializer& s) { s.Write("b", true); });
  both([](Serializer& s) { s.Write("b", false); });
  both([](Serializer& s) { s.Write("i", -2); });
  both([](Serializer& s) { s.Write("c", static_cast<unsigned char>(0xAB)); });
  both([](Serializer& s) { s.Write("l", 0x01020304L); });
  both([](Serializer& s) { s.Write("d", static_cast<char*>(nullptr), 0u); });
  char block[] = {9, 8};
  both([&](Serializer& s) { s.Write("d", block, 2u); });
  std::vector<char> written(buffer, out.GetPos());
  EXPECT_EQ("00 00 BE EF 00 00 DE AD FF FF FF FE AB 01 02 03 04 00 00 00 00 00 00 00 02 09 08",
            Hex(written));
  EXPECT_EQ(written.size(), sizer.GetBytesWritten());
  EXPECT_EQ(written.size(), out.GetBytesWritten());

  // A write never passes the buffer's end.
  char small[6] = {0, 0, 0, 0, 0, 0x55};
  MemorySerializer bounded(eSerializationFormat_Binary, small, small + 5, false);
  bounded.Write("a", 1u);
  bounded.Write("b", 2u);  // does not fit
  EXPECT_TRUE(bounded.Overflowed());
  EXPECT_EQ(0x55, small[5]);
  EXPECT_EQ(4u, bounded.GetBytesWritten());

  auto read = [](std::vector<char> bytes) {
    MemoryDeSerializer in = ReaderOf(bytes);
    bool v = true;
    EXPECT_TRUE(in.Read("b", v));
    return v;
  };
  EXPECT_TRUE(read(Bytes({0, 0, 0xBE, 0xEF})));
  EXPECT_FALSE(read(Bytes({0, 0, 0, 1})));
  EXPECT_FALSE(read(Bytes({0, 0, 0xDE, 0xAD})));

  // Char and long reads do not advance: the reader skips such a field itself.
  std::vector<char> bytes = Bytes({0xFF, 0xFF, 0xFF, 0xFE, 0, 0, 0, 7});
  MemoryDeSerializer in = ReaderOf(bytes);
  unsigned char c = 0;
  long l = 0;
  ASSERT_TRUE(in.Read("c", c));
  ASSERT_TRUE(in.Read("l", l));
  EXPECT_EQ(0xFF, c);
  EXPECT_EQ(-2, l);
  EXPECT_EQ(bytes.data(), in.GetPos());
  in.SetPos(in.GetPos() + 4);
  unsigned int next = 0;
  ASSERT_TRUE(in.Read("u", next));
  EXPECT_EQ(7u, next);
  EXPECT_TRUE(in.IsEndOfSector());
}

TEST(EncodingTest, DataBlocks) {
  std::vector<char> empty = Bytes({0, 0, 0, 0});
  MemoryDeSerializer in = ReaderOf(empty);
  char* data = reinterpret_cast<char*>(&empty);  // must be replaced by null
  unsigned int size = 99;
  ASSERT_TRUE(in.Read("d", data, size));
  EXPECT_EQ(nullptr, data);
  EXPECT_EQ(0u, size);

  std::vector<char> three = Bytes({0, 0, 0, 3, 'x', 'y', 'z'});
  MemoryDeSerializer owned = ReaderOf(three);
  ASSERT_TRUE(owned.Read("d", data, size));
  ASSERT_EQ(3u, size);
  EXPECT_EQ(0, memcmp("xyz", data, 3));
  delete[] data;

  // Into a caller's buffer: too small leaves the data unread after the size.
  char buffer[2];
  MemoryDeSerializer small = ReaderOf(three);
  EXPECT_FALSE(small.Read("d", buffer, sizeof buffer, size));
  EXPECT_EQ(0u, size);
  EXPECT_EQ(three.data() + 4, small.GetPos());
  char large[8];
  MemoryDeSerializer fits = ReaderOf(three);
  ASSERT_TRUE(fits.Read("d", large, sizeof large, size));
  EXPECT_EQ(3u, size);
  EXPECT_TRUE(fits.IsEndOfSector());
}

TEST(EncodingTest, TruncatedInputFailsTheRead) {
  // A word cut short.
  std::vector<char> word = Bytes({0, 0, 1});
  MemoryDeSerializer in = ReaderOf(word);
  unsigned int v = 42;
  EXPECT_FALSE(in.Read("u", v));
  EXPECT_EQ(42u, v);
  EXPECT_TRUE(in.Failed());
  EXPECT_EQ(word.data(), in.GetPos());

  // A string without its terminator.
  std::vector<char> text = Bytes({'a', 'b'});
  MemoryDeSerializer unterminated = ReaderOf(text);
  std::string s = "kept";
  EXPECT_FALSE(unterminated.Read("s", s));
  EXPECT_EQ("kept", s);

  // A data block claiming more than the input holds allocates nothing.
  std::vector<char> block = Bytes({0x7F, 0xFF, 0xFF, 0xFF, 1, 2});
  MemoryDeSerializer huge = ReaderOf(block);
  char* data = nullptr;
  unsigned int size = 0;
  EXPECT_FALSE(huge.Read("d", data, size));
  EXPECT_EQ(nullptr, data);

  // After a failure every further read fails.
  std::vector<char> two = Bytes({'a', 0});
  MemoryDeSerializer sticky = ReaderOf(two);
  sticky.SetSectorEnd(two.data() + 1);
  EXPECT_FALSE(sticky.Read("s", s));
  sticky.SetSectorEnd(two.data() + 2);
  EXPECT_FALSE(sticky.Read("s", s));

  // A string longer than the reader's bound.
  std::vector<char> abc = Bytes({'a', 'b', 'c', 0});
  MemoryDeSerializer bound = ReaderOf(abc);
  EXPECT_FALSE(bound.Read(s, 2));
  MemoryDeSerializer fits = ReaderOf(abc);
  EXPECT_TRUE(fits.Read(s, 3));
  EXPECT_EQ("abc", s);
}

TEST(EncodingTest, UnknownClassesAndDeepNestingYieldNull) {
  std::vector<char> bytes = Bytes({0, 0, 0, 5, 0, 0, 0, 0});
  MemoryDeSerializer in = ReaderOf(bytes);
  Serializable* object = nullptr;
  std::string err = Stderr([&] { EXPECT_FALSE(in.Read("Serializable", object)); });
  EXPECT_EQ(nullptr, object);
  EXPECT_TRUE(Has(err, "pValue == NULL after ClassFactory::Create() for classID = 5\n")) << err;

  for (int levels : {32, 33}) {
    std::vector<char> nested;  // Vectors each holding the next; the innermost empty
    for (int i = 1; i <= levels; ++i)
      nested.insert(nested.end(), {0, 0, 0, 9, 0, 0, 0, i < levels});
    MemoryDeSerializer reader = ReaderOf(nested);
    Serializable* made = nullptr;
    err = Stderr([&] { reader.Read("Serializable", made); });
    EXPECT_EQ(levels == 32, made != nullptr) << err;
    EXPECT_EQ(levels == 33, Has(err, "objects nested deeper than 32, refused\n"));
    delete made;
  }
}
