// The value decoder. The first byte picks how the rest is read:
//   0: a framed object whose class ID the stream carries (MemoryDeSerializer);
//   1: an object of the registered class the second byte picks, read by its
//      own Deserialize as a reader that already knows the class would;
//   2: a protocol payload (DecodePayload).
// Whatever reads back whole is encoded again; the sizer, the writer and a
// second read must agree with each other, byte for byte.
#include <cstdlib>
#include <vector>

#include "config/access/xconfigmgr_records.h"
#include "config/values/config_value.h"
#include "config/values/memory_deserializer.h"
#include "config/values/memory_serializer.h"
#include "fuzz_common.h"

namespace {

constexpr eSerializationFormat kFormat = eSerializationFormat_Binary;
constexpr eClassID_t kRegistered[] = {
    eClassID_IntegerValue, eClassID_StringValue, eClassID_SectorHeader, eClassID_Checkpoint,
    eClassID_Presets,      eClassID_Vector,      eClassID_PackageHeader};

void Release(Serializable* object, bool shared) {
  if (!shared) delete object;
}

// The encoding of `object`: framed (class ID and all) or bare (its own
// Serialize). A framed one must be exactly the sizer's count.
std::vector<char> Encode(Serializable* object, bool framed) {
  std::vector<char> bytes(MemorySerializerSizer::GetSize(object));
  MemorySerializer writer(kFormat, bytes.data(), bytes.data() + bytes.size(), false);
  if (framed) {
    writer.Write("Serializable", object);
  } else {
    object->Serialize(&writer);
  }
  if (writer.Overflowed() || (framed && writer.GetBytesWritten() != bytes.size())) {
    fprintf(stdout, "sizer counted %zu bytes, writer wrote %u (class %d)\n", bytes.size(),
            writer.GetBytesWritten(), static_cast<int>(object->GetClassID()));
    abort();
  }
  bytes.resize(writer.GetBytesWritten());
  return bytes;
}

// Encodes, reads back the way the object was read (framed, or bare by an
// object of its class, whose nesting then starts one level lower) and
// encodes again: the two encodings must be equal.
void RoundTrip(Serializable* object, bool framed) {
  Encode(object, true);  // the sizer agrees with the writer
  std::vector<char> first = Encode(object, framed);
  MemoryDeSerializer reader(kFormat, first.data(), first.data() + first.size(), false);
  Serializable* again = nullptr;
  if (framed) {
    reader.Read("Serializable", again);
  } else if ((again = ClassFactory::Create(object->GetClassID())) != nullptr) {
    again->Deserialize(&reader);
  }
  if (again == nullptr || reader.Failed() || reader.Available() != 0) {
    fprintf(stdout, "class %d does not read back its own encoding\n",
            static_cast<int>(object->GetClassID()));
    abort();
  }
  bool shared = ClassFactory::IsSharedClass(again->GetClassID());
  std::vector<char> second = Encode(again, framed);
  Release(again, shared);
  if (first != second) {
    fprintf(stdout, "class %d encodes differently after a round trip\n",
            static_cast<int>(object->GetClassID()));
    abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz::Initialize(false);
  ClassFactory::InitFactories();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 2) return 0;
  int mode = data[0] % 3;
  eClassID_t picked = kRegistered[data[1] % (sizeof kRegistered / sizeof kRegistered[0])];
  // An exactly sized copy: a read past the input's end is caught.
  size_t skip = mode == 1 ? 2 : 1;
  std::vector<char> input(data + skip, data + size);
  char* start = input.data();
  char* end = start + input.size();
  MemoryDeSerializer reader(kFormat, start, end, false);
  Serializable* object = nullptr;
  bool shared = false;
  if (mode == 0) {
    reader.Read("Serializable", object);
    shared = object != nullptr && ClassFactory::IsSharedClass(object->GetClassID());
  } else if (mode == 1) {
    object = ClassFactory::Create(picked);
    shared = ClassFactory::IsSharedClass(picked);
    if (object != nullptr) object->Deserialize(&reader);
  } else {
    object = zyn::config::access::DecodePayload(start, input.size());
  }
  if (object == nullptr) return 0;
  if (!reader.Failed()) RoundTrip(object, mode != 1);
  Release(object, shared);
  return 0;
}
