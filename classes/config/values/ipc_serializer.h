// IPCSerializer sends one serialisable object through a System V message
// queue: first a header message announcing the size, then a message holding
// the header's word 1 and the object in the value encoding.
//
// CONFIGMGR_STREAM_HEADER_T is the header message: the message type followed
// by six 32-bit words. Word 3 (counting the type as word 0) carries the size
// of the object message and word 4 the block size 1024; the other words are
// the caller's.
#ifndef CLASSES_CONFIG_VALUES_IPC_SERIALIZER_H
#define CLASSES_CONFIG_VALUES_IPC_SERIALIZER_H

#include <cstdint>

#include "config/values/memory_serializer.h"

struct CONFIGMGR_STREAM_HEADER_T {
  long mtype;
  uint32_t words[6];  // words 1 to 6 of the header
};

class IPCSerializer : public MemorySerializer {
 public:
  static constexpr unsigned int kHeaderTextSize = 24;
  static constexpr uint32_t kBlockSize = 1024;

  IPCSerializer(eSerializationFormat format, int queueID);

  // Sends `header` and then `object` without blocking. False when the object
  // encodes to nothing or either send fails.
  bool Write(CONFIGMGR_STREAM_HEADER_T header, Serializable* object);
  using MemorySerializer::Write;

  int GetQueueID() const { return queueID; }

 private:
  int queueID;
};

#endif  // CLASSES_CONFIG_VALUES_IPC_SERIALIZER_H
