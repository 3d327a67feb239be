#include "config/values/memory_deserializer.h"

#include <cstdio>
#include <cstring>
#include <new>

#include "config/values/big_endian.h"
#include "config/values/class_factory.h"

using zyn::config::values::GetBigEndian32;

namespace {
constexpr uint32_t kTrueWord = 0x0000BEEF;
}  // namespace

MemoryDeSerializer::MemoryDeSerializer(eSerializationFormat fmt, char* start, char* end, bool f)
    : DeSerializer(fmt),
      pos(start),
      sectorStart(start),
      sectorEnd(end),
      flag(f),
      failed(false),
      depth(0) {}

bool MemoryDeSerializer::Need(unsigned long n) {
  if (failed) return false;
  long available = Available();
  if (available < 0 || static_cast<unsigned long>(available) < n) failed = true;
  return !failed;
}

bool MemoryDeSerializer::PeekWord(uint32_t& v) {
  if (!Need(4)) return false;
  v = GetBigEndian32(pos);
  return true;
}

bool MemoryDeSerializer::Read(const char*, unsigned char& v) {
  if (!Need(1)) return false;
  v = static_cast<unsigned char>(*pos);
  return true;
}

bool MemoryDeSerializer::Read(const char*, long& v) {
  uint32_t word;
  if (!PeekWord(word)) return false;
  v = static_cast<int32_t>(word);
  return true;
}

bool MemoryDeSerializer::Read(const char* name, bool& v) {
  unsigned int word;
  if (!Read(name, word)) return false;
  v = word == kTrueWord;
  return true;
}

bool MemoryDeSerializer::Read(const char*, std::string& v) {
  if (!Need(1)) return false;
  const char* end = static_cast<const char*>(memchr(pos, '\0', Available()));
  if (end == nullptr) {
    failed = true;
    return false;
  }
  v.assign(pos, static_cast<size_t>(end - pos));
  pos += (end - pos) + 1;
  return true;
}

bool MemoryDeSerializer::Read(const char*, unsigned int& v) {
  uint32_t word;
  if (!PeekWord(word)) return false;
  v = word;
  pos += 4;
  return true;
}

bool MemoryDeSerializer::Read(const char* name, int& v) {
  unsigned int word;
  if (!Read(name, word)) return false;
  v = static_cast<int>(word);
  return true;
}

bool MemoryDeSerializer::Read(ClassFactoryHeader& header) {
  unsigned int id;
  if (!Read("ClassID", id)) return false;
  header.classID = static_cast<eClassID_t>(id);
  return true;
}

bool MemoryDeSerializer::Read(const char*, Serializable*& object) {
  object = nullptr;
  ClassFactoryHeader header;
  if (!Read(header)) return false;
  if (depth >= kMaxNesting) {
    fprintf(stderr, "MemoryDeSerializer::Read - objects nested deeper than %d, refused\n",
            kMaxNesting);
    failed = true;
    return false;
  }
  Serializable* value = ClassFactory::Create(header.classID);
  if (value == nullptr) {
    fprintf(stderr, "pValue == NULL after ClassFactory::Create() for classID = %d\n",
            static_cast<int>(header.classID));
    return false;
  }
  bool shared = ClassFactory::IsSharedClass(header.classID);
  ++depth;
  try {
    value->Deserialize(this);
  } catch (...) {
    failed = true;
  }
  --depth;
  if (failed) {
    if (!shared) delete value;
    return false;
  }
  object = value;
  return true;
}

bool MemoryDeSerializer::Read(Serializable*& object) { return Read("Serializable", object); }

bool MemoryDeSerializer::Read(const char* name, char* buffer, unsigned int capacity,
                              unsigned int& size) {
  unsigned int blockSize;
  if (!Read(name, blockSize)) return false;
  if (blockSize > capacity) {
    size = 0;
    return false;
  }
  if (!Need(blockSize)) return false;
  if (blockSize > 0) memcpy(buffer, pos, blockSize);
  pos += blockSize;
  size = blockSize;
  return true;
}

bool MemoryDeSerializer::Read(const char* name, char*& data, unsigned int& size) {
  unsigned int blockSize;
  if (!Read(name, blockSize)) return false;
  if (blockSize == 0) {
    data = nullptr;
    size = 0;
    return true;
  }
  // The length is checked against the input before anything is allocated.
  if (!Need(blockSize)) return false;
  char* block = new (std::nothrow) char[blockSize];
  if (block == nullptr) {
    failed = true;
    return false;
  }
  memcpy(block, pos, blockSize);
  pos += blockSize;
  data = block;
  size = blockSize;
  return true;
}

bool MemoryDeSerializer::IsEndOfStream() { return true; }

char* MemoryDeSerializer::GetPos() { return pos; }
void MemoryDeSerializer::SetPos(char* p) { pos = p; }
bool MemoryDeSerializer::IsEndOfSector() { return pos >= GetSectorEnd(); }
char* MemoryDeSerializer::GetSectorStart() { return sectorStart; }
void MemoryDeSerializer::SetSectorStart(char* start) { sectorStart = start; }
char* MemoryDeSerializer::GetSectorEnd() { return sectorEnd; }
void MemoryDeSerializer::SetSectorEnd(char* end) { sectorEnd = end; }
long MemoryDeSerializer::Available() { return GetSectorEnd() - GetPos(); }
