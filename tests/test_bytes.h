// Helpers shared by the tests: encode an object to bytes, read it back, and
// render byte sequences as spaced hexadecimal text, so failures show the
// whole encoding.
#ifndef TESTS_TEST_BYTES_H
#define TESTS_TEST_BYTES_H

#include <cstdio>
#include <string>
#include <vector>

#include "config/values/memory_deserializer.h"
#include "config/values/memory_serializer.h"
#include "test_stderr.h"

inline std::string Hex(const std::vector<char>& bytes) {
  std::string text;
  char byte[4];
  for (char c : bytes) {
    snprintf(byte, sizeof byte, text.empty() ? "%02X" : " %02X", static_cast<unsigned char>(c));
    text += byte;
  }
  return text;
}

// The object's encoding framed as a Serializable (class ID first), in a
// buffer sized by the sizer.
inline std::vector<char> EncodeFramed(Serializable* object) {
  std::vector<char> buffer(MemorySerializerSizer::GetSize(object));
  MemorySerializer serializer(eSerializationFormat_Binary, buffer.data(),
                              buffer.data() + buffer.size(), false);
  serializer.Write("Serializable", object);
  return buffer;
}

// The object's own fields, without the class header.
inline std::vector<char> EncodeFields(Serializable* object) {
  std::vector<char> framed = EncodeFramed(object);
  return std::vector<char>(framed.begin() + 4, framed.end());
}

// The object framed in `bytes`, read through the class registry (its
// messages dropped); null when the read fails. The caller owns what the
// registry hands out as new.
inline Serializable* DecodeFramed(std::vector<char>& bytes) {
  MemoryDeSerializer in(eSerializationFormat_Binary, bytes.data(), bytes.data() + bytes.size(),
                        false);
  Serializable* object = nullptr;
  Stderr([&] { in.Read(object); });
  return object;
}

inline std::vector<char> Bytes(std::initializer_list<int> values) {
  std::vector<char> bytes;
  for (int v : values) bytes.push_back(static_cast<char>(v));
  return bytes;
}

#endif  // TESTS_TEST_BYTES_H
