// Serializer is the abstract writer of the value encoding: a flat, untagged
// sequence of fields in the order the object writes them. Field names are
// passed to every write but are not stored. ClassFactoryHeader is the record
// (one class ID) that precedes every embedded object.
//
// A serializer is used by one thread at a time.
#ifndef CLASSES_CONFIG_VALUES_SERIALIZER_H
#define CLASSES_CONFIG_VALUES_SERIALIZER_H

#include <cstdint>
#include <string>

#include "config/values/serializable.h"

// The encoding does not vary with the format; one value suffices.
enum eSerializationFormat : int32_t {
  eSerializationFormat_Binary = 0,
};

struct ClassFactoryHeader {
  eClassID_t classID;
};

class Serializer {
 public:
  explicit Serializer(eSerializationFormat format);
  virtual ~Serializer() = default;
  Serializer(const Serializer&) = delete;
  Serializer& operator=(const Serializer&) = delete;

  virtual void Write(const std::string& name, unsigned char v) = 0;
  virtual void Write(const std::string& name, long v) = 0;
  virtual void Write(const std::string& name, bool v) = 0;
  virtual void Write(const std::string& name, const std::string& v) = 0;
  virtual void Write(const std::string& name, unsigned int v) = 0;
  virtual void Write(const std::string& name, int v) = 0;
  // The object's class header, then its own fields. A null object writes
  // nothing.
  virtual void Write(const std::string& name, Serializable* object) = 0;
  // A 4-byte size (under the name "Size"), then `size` raw bytes.
  virtual void Write(const std::string& name, char* data, unsigned int size) = 0;
  // The 4-byte class ID under the name "ClassID".
  virtual void Write(ClassFactoryHeader& header);
  // Counts `n` more bytes written.
  virtual void Wrote(unsigned int n);

  // A string literal would otherwise pick the bool overload.
  void Write(const std::string& name, const char* v) = delete;

  eSerializationFormat GetFormat() const { return format; }
  [[nodiscard]] unsigned int GetBytesWritten() const { return bytesWritten; }

 protected:
  // Shared body of Write(name, Serializable*): the header, then the fields.
  void WriteFramed(Serializable* object);

 private:
  eSerializationFormat format;
  unsigned int bytesWritten;
};

#endif  // CLASSES_CONFIG_VALUES_SERIALIZER_H
