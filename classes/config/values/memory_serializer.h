// MemorySerializer writes the value encoding into a caller's buffer;
// MemorySerializerSizer counts the bytes the same writes would take, so the
// caller can size the buffer first. All words are big-endian.
//
// The buffer belongs to the caller. A write that would pass the buffer's end
// writes nothing and marks the serializer overflowed, so a mis-sized buffer is
// never overrun; callers that size with GetSize() never see it.
#ifndef CLASSES_CONFIG_VALUES_MEMORY_SERIALIZER_H
#define CLASSES_CONFIG_VALUES_MEMORY_SERIALIZER_H

#include "config/values/serializer.h"

class MemorySerializer : public Serializer {
 public:
  MemorySerializer(eSerializationFormat format, char* start, char* end, bool flag);

  void Write(const std::string& name, unsigned char v) override;
  void Write(const std::string& name, long v) override;
  void Write(const std::string& name, bool v) override;
  void Write(const std::string& name, const std::string& v) override;
  void Write(const std::string& name, unsigned int v) override;
  void Write(const std::string& name, int v) override;
  void Write(const std::string& name, Serializable* object) override;
  void Write(const std::string& name, char* data, unsigned int size) override;
  using Serializer::Write;
  // Counts `n` bytes and advances the write position by `n`.
  void Wrote(unsigned int n) override;

  virtual char* GetPos();
  virtual void SetPos(char* pos);
  virtual bool IsEndOfBuffer();
  virtual char* GetBufferStart();
  virtual void SetBufferStart(char* start);
  virtual char* GetBufferEnd();
  virtual void SetBufferEnd(char* end);
  // Bytes left between the write position and the buffer's end.
  virtual long Available();

  [[nodiscard]] bool Overflowed() const { return overflowed; }
  // The fourth constructor argument, kept for the caller.
  [[nodiscard]] bool GetFlag() const { return flag; }

 protected:
  // Copies `n` bytes at the write position when they fit.
  void Put(const char* bytes, unsigned int n);
  void PutWord(uint32_t v);

 private:
  char* pos;
  char* bufferStart;
  char* bufferEnd;
  bool flag;
  bool overflowed;
};

class MemorySerializerSizer : public Serializer {
 public:
  explicit MemorySerializerSizer(eSerializationFormat format);

  void Write(const std::string& name, unsigned char v) override;
  void Write(const std::string& name, long v) override;
  void Write(const std::string& name, bool v) override;
  void Write(const std::string& name, const std::string& v) override;
  void Write(const std::string& name, unsigned int v) override;
  void Write(const std::string& name, int v) override;
  void Write(const std::string& name, Serializable* object) override;
  void Write(const std::string& name, char* data, unsigned int size) override;
  using Serializer::Write;

  // The encoded size of `object` framed as a Serializable (class header
  // included), counted with the format of `like` (or the binary format).
  static unsigned int GetSize(Serializable* object, MemorySerializer* like = nullptr);
};

#endif  // CLASSES_CONFIG_VALUES_MEMORY_SERIALIZER_H
