#include "config/values/memory_serializer.h"

#include <cstring>

#include "config/values/big_endian.h"

using zyn::config::values::PutBigEndian32;

namespace {
// The two words that encode a bool.
constexpr uint32_t kTrueWord = 0x0000BEEF;
constexpr uint32_t kFalseWord = 0x0000DEAD;
}  // namespace

MemorySerializer::MemorySerializer(eSerializationFormat fmt, char* start, char* end, bool f)
    : Serializer(fmt), pos(start), bufferStart(start), bufferEnd(end), flag(f), overflowed(false) {}

void MemorySerializer::Put(const char* bytes, unsigned int n) {
  if (overflowed || Available() < static_cast<long>(n)) {
    overflowed = true;
    return;
  }
  if (n > 0 && bytes != nullptr) {
    memcpy(pos, bytes, n);
  } else if (n > 0) {
    memset(pos, 0, n);
  }
  Wrote(n);
}

void MemorySerializer::PutWord(uint32_t v) {
  char word[4];
  PutBigEndian32(word, v);
  Put(word, 4);
}

void MemorySerializer::Write(const std::string&, unsigned char v) {
  char c = static_cast<char>(v);
  Put(&c, 1);
}

void MemorySerializer::Write(const std::string&, long v) { PutWord(static_cast<uint32_t>(v)); }

void MemorySerializer::Write(const std::string&, bool v) { PutWord(v ? kTrueWord : kFalseWord); }

void MemorySerializer::Write(const std::string&, const std::string& v) {
  Put(v.c_str(), static_cast<unsigned int>(v.size() + 1));
}

void MemorySerializer::Write(const std::string&, unsigned int v) { PutWord(v); }

void MemorySerializer::Write(const std::string& name, int v) {
  Write(name, static_cast<unsigned int>(v));
}

void MemorySerializer::Write(const std::string&, Serializable* object) { WriteFramed(object); }

void MemorySerializer::Write(const std::string&, char* data, unsigned int size) {
  Write("Size", size);
  Put(data, size);
}

void MemorySerializer::Wrote(unsigned int n) {
  Serializer::Wrote(n);
  pos += n;
}

char* MemorySerializer::GetPos() { return pos; }
void MemorySerializer::SetPos(char* p) { pos = p; }
bool MemorySerializer::IsEndOfBuffer() { return pos >= GetBufferEnd(); }
char* MemorySerializer::GetBufferStart() { return bufferStart; }
void MemorySerializer::SetBufferStart(char* start) { bufferStart = start; }
char* MemorySerializer::GetBufferEnd() { return bufferEnd; }
void MemorySerializer::SetBufferEnd(char* end) { bufferEnd = end; }
long MemorySerializer::Available() { return GetBufferEnd() - GetPos(); }

MemorySerializerSizer::MemorySerializerSizer(eSerializationFormat fmt) : Serializer(fmt) {}

void MemorySerializerSizer::Write(const std::string&, unsigned char) { Wrote(1); }
void MemorySerializerSizer::Write(const std::string&, long) { Wrote(4); }
void MemorySerializerSizer::Write(const std::string&, bool) { Wrote(4); }
void MemorySerializerSizer::Write(const std::string&, const std::string& v) {
  Wrote(static_cast<unsigned int>(v.size() + 1));
}
void MemorySerializerSizer::Write(const std::string&, unsigned int) { Wrote(4); }
void MemorySerializerSizer::Write(const std::string&, int) { Wrote(4); }
void MemorySerializerSizer::Write(const std::string&, Serializable* object) { WriteFramed(object); }
void MemorySerializerSizer::Write(const std::string&, char*, unsigned int size) { Wrote(4 + size); }

unsigned int MemorySerializerSizer::GetSize(Serializable* object, MemorySerializer* like) {
  MemorySerializerSizer sizer(like != nullptr ? like->GetFormat() : eSerializationFormat_Binary);
  sizer.Write("Serializable", object);
  return sizer.GetBytesWritten();
}
