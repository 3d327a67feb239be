// MemoryDeSerializer reads the value encoding from a caller's buffer between
// sectorStart and sectorEnd. No read ever passes sectorEnd: a truncated field
// or a string without its terminator fails the read, leaves the position
// where it was and marks the deserializer failed, after which every read
// fails. A framed object whose fields could not all be read yields null, and
// so does one inside kMaxNesting enclosing objects (a Vector of Vectors...),
// so that a crafted stream cannot exhaust the reader's stack.
//
// The reads of an unsigned char and of a long do not advance the position;
// a reader of such a field skips it itself with SetPos.
#ifndef CLASSES_CONFIG_VALUES_MEMORY_DESERIALIZER_H
#define CLASSES_CONFIG_VALUES_MEMORY_DESERIALIZER_H

#include "config/values/deserializer.h"

class MemoryDeSerializer : public DeSerializer {
 public:
  // Framed objects read inside one another, at most; far more than any
  // record of the system holds.
  static constexpr int kMaxNesting = 32;

  MemoryDeSerializer(eSerializationFormat format, char* start, char* end, bool flag);

  bool Read(const char* name, unsigned char& v) override;
  bool Read(const char* name, long& v) override;
  bool Read(const char* name, bool& v) override;
  bool Read(const char* name, std::string& v) override;
  bool Read(const char* name, unsigned int& v) override;
  bool Read(const char* name, int& v) override;
  bool Read(const char* name, Serializable*& object) override;
  bool Read(const char* name, char* buffer, unsigned int capacity, unsigned int& size) override;
  bool Read(const char* name, char*& data, unsigned int& size) override;
  bool Read(Serializable*& object) override;
  using DeSerializer::Read;
  // Always true: a memory stream has no further sectors.
  bool IsEndOfStream() override;

  virtual char* GetPos();
  virtual void SetPos(char* pos);
  virtual bool IsEndOfSector();
  virtual char* GetSectorStart();
  virtual void SetSectorStart(char* start);
  virtual char* GetSectorEnd();
  virtual void SetSectorEnd(char* end);
  // Bytes left between the read position and the sector's end.
  virtual long Available();
  // Reads the 4-byte class ID of a framed object.
  virtual bool Read(ClassFactoryHeader& header);

  // True once a read has failed for lack of input.
  [[nodiscard]] bool Failed() const { return failed; }
  // The fourth constructor argument, kept for the caller.
  [[nodiscard]] bool GetFlag() const { return flag; }

 private:
  // Checks that `n` bytes can be read; marks the failure when they cannot.
  bool Need(unsigned long n);
  bool PeekWord(uint32_t& v);

  char* pos;
  char* sectorStart;
  char* sectorEnd;
  bool flag;
  bool failed;
  int depth;  // framed objects being read
};

#endif  // CLASSES_CONFIG_VALUES_MEMORY_DESERIALIZER_H
