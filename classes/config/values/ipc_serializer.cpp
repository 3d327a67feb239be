#include "config/values/ipc_serializer.h"

#include <sys/ipc.h>
#include <sys/msg.h>

#include <cstring>
#include <vector>

IPCSerializer::IPCSerializer(eSerializationFormat fmt, int id)
    : MemorySerializer(fmt, nullptr, nullptr, false), queueID(id) {}

bool IPCSerializer::Write(CONFIGMGR_STREAM_HEADER_T header, Serializable* object) {
  unsigned int size = MemorySerializerSizer::GetSize(object, this);
  if (size == 0) return false;

  header.words[2] = size + 8;
  header.words[3] = kBlockSize;
  if (msgsnd(queueID, &header, kHeaderTextSize, IPC_NOWAIT) != 0) return false;

  // The object message: its type, header word 1, then the object.
  const size_t typeSize = sizeof(long);
  std::vector<char> buffer(typeSize + 4 + size, 0);
  long mtype = header.mtype + 1;
  memcpy(buffer.data(), &mtype, typeSize);
  memcpy(buffer.data() + typeSize, &header.words[0], 4);
  SetBufferStart(buffer.data());
  SetBufferEnd(buffer.data() + buffer.size());
  SetPos(buffer.data() + typeSize + 4);
  MemorySerializer::Write("Serializable", object);
  bool sent = msgsnd(queueID, buffer.data(), size + 4, IPC_NOWAIT) == 0;
  SetBufferStart(nullptr);
  SetBufferEnd(nullptr);
  SetPos(nullptr);
  return sent;
}
