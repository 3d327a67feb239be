// DeSerializer is the abstract reader of the value encoding. Every read
// returns false when the field cannot be read (truncated input, a string
// without its terminator); the output is then left untouched. Field names are
// accepted for symmetry with Serializer and are not checked.
//
// A deserializer is used by one thread at a time.
#ifndef CLASSES_CONFIG_VALUES_DESERIALIZER_H
#define CLASSES_CONFIG_VALUES_DESERIALIZER_H

#include <string>

#include "config/values/serializable.h"
#include "config/values/serializer.h"

class DeSerializer {
 public:
  explicit DeSerializer(eSerializationFormat format);
  virtual ~DeSerializer() = default;
  DeSerializer(const DeSerializer&) = delete;
  DeSerializer& operator=(const DeSerializer&) = delete;

  // Reads one byte without advancing the read position.
  virtual bool Read(const char* name, unsigned char& v) = 0;
  // Reads a 4-byte word without advancing the read position.
  virtual bool Read(const char* name, long& v) = 0;
  // True exactly when the word is 0x0000BEEF.
  virtual bool Read(const char* name, bool& v) = 0;
  virtual bool Read(const char* name, std::string& v) = 0;
  virtual bool Read(const char* name, unsigned int& v) = 0;
  virtual bool Read(const char* name, int& v) = 0;
  // Recreates a framed object through ClassFactory; `object` is null when the
  // class is unknown or the object could not be read. Objects of class IDs 0,
  // 1, 6 and 7 are the factory's shared scratch objects: do not delete them.
  virtual bool Read(const char* name, Serializable*& object) = 0;
  // Copies a data block into `buffer` when it fits `capacity`; otherwise sets
  // `size` to 0 and leaves the data unread.
  virtual bool Read(const char* name, char* buffer, unsigned int capacity, unsigned int& size) = 0;
  // Reads a data block into a new array owned by the caller (delete[]); a
  // block of size 0 allocates nothing and sets `data` to null.
  virtual bool Read(const char* name, char*& data, unsigned int& size) = 0;
  // Reads a string of at most `maxLength` characters; a longer one fails.
  virtual bool Read(std::string& v, unsigned int maxLength);
  virtual bool Read(Serializable*& object) = 0;
  virtual bool IsEndOfStream() = 0;

  eSerializationFormat GetFormat() const { return format; }

 private:
  eSerializationFormat format;
};

#endif  // CLASSES_CONFIG_VALUES_DESERIALIZER_H
