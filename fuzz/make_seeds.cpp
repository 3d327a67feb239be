// Writes the seed corpus of every fuzz target under the folder given:
// <folder>/<target>/seed-<name>. Every seed is made by the library's own
// encoders (values, records, sectors, preset images) from a few parameters
// of the unit's catalogue: valid inputs, and near-valid ones that differ in
// one field or are cut short. Run again after a change of the encodings;
// the output is the same on every run.
#include <sys/stat.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "config/access/xconfigmgr_records.h"
#include "config/descriptors/param_descriptors.h"
#include "config/owner/preset_image.h"
#include "config/owner/sector_codec.h"
#include "config/owner/value_image.h"
#include "config/values/checkpoint.h"
#include "config/values/class_factory.h"
#include "config/values/integer_value.h"
#include "config/values/memory_serializer.h"
#include "config/values/package_header.h"
#include "config/values/presets_param_vector.h"
#include "config/values/sector_header.h"
#include "config/values/string_value.h"
#include "config/values/vector.h"

namespace {

using namespace zyn::config::access;
using zyn::config::values::Vector;

std::string g_root;
// Deep enough to overflow a connection thread's stack without a nesting bound.
constexpr int kNestedLevels = 8000;
int g_written = 0;

// Writes <target>/<kind>-<name>; kind is "seed", or "regress" for an input
// that once broke the library.
bool Save(const std::string& target, const std::string& name, const std::string& bytes,
          const char* kind = "seed") {
  std::string folder = g_root + "/" + target;
  mkdir(g_root.c_str(), 0755);
  mkdir(folder.c_str(), 0755);
  std::ofstream out(folder + "/" + kind + "-" + name, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  ++g_written;
  return static_cast<bool>(out);
}

std::string Cut(const std::string& bytes, size_t drop) {
  return bytes.substr(0, bytes.size() > drop ? bytes.size() - drop : 0);
}

// The framed encoding of `object` (class header first).
std::string Framed(Serializable* object) {
  std::string bytes(MemorySerializerSizer::GetSize(object), '\0');
  MemorySerializer writer(eSerializationFormat_Binary, &bytes[0], &bytes[0] + bytes.size(), false);
  writer.Write("Serializable", object);
  return bytes;
}

// A Vector holding a Vector holding ... `levels` deep: its reading once
// recursed without bound and overflowed the reader's stack.
std::string NestedVectors(int levels) {
  Vector innermost;
  std::string inner = Framed(&innermost);
  std::string outer = inner.substr(0, 8);  // class ID 9, one element
  outer[7] = 1;
  std::string bytes;
  bytes.reserve(outer.size() * levels + inner.size());
  for (int i = 0; i < levels; ++i) bytes += outer;
  return bytes + inner;
}

// Parameters the seeds talk about, picked from the catalogue by kind.
struct Picks {
  unsigned int number = 0;  // an integer parameter with dependants, or any
  unsigned int text = 0;    // a string parameter
  unsigned int data = 0;    // a data parameter (class name "data"), else the string one
  std::string sample = "seed";
};

Picks Pick() {
  Picks picks;
  bool withDependants = false;
  for (unsigned int id : GetParamIDs()) {
    ParamDescriptor* d = GetDescriptor(id);
    std::vector<std::string> classes = d->GetClassNames();
    bool isData = !classes.empty() && classes.front() == "data";
    if (isData && picks.data == 0) picks.data = id;
    if (d->GetParamType() == eCParam_StringValue && !isData && picks.text == 0) picks.text = id;
    if (d->GetParamType() != eCParam_IntegerValue || withDependants) continue;
    if (picks.number == 0) picks.number = id;
    if (!d->GetDependentParamIDs().empty()) {
      picks.number = id;
      withDependants = true;
    }
  }
  if (picks.data == 0) picks.data = picks.text;
  return picks;
}

// One client's records in the order sent; `datagrams` frames each record
// for the UDP target (2-byte big-endian length first).
class Session {
 public:
  explicit Session(bool datagrams) : _datagrams(datagrams) {}

  Session& Connect(uint32_t configID, uint32_t msgtype = XCFG_CONNECT_REQUEST) {
    XCONFIGMGR_CONNECTION_REQUEST_T r{MakeHeader(msgtype, kConnection, ++_request, configID)};
    return Add(r, "");
  }
  Session& Listener(uint32_t msgtype, uint32_t paramID) {
    XCONFIGMGR_EVENT_HANDLER_REQUEST_T r{MakeHeader(msgtype, kConnection, ++_request, 0), paramID};
    return Add(r, "");
  }
  Session& Request(uint32_t msgtype, uint32_t paramID, uint32_t value = 0,
                   const std::string& payload = "", int lengthDelta = 0) {
    XCONFIGMGR_REQUEST_T r{MakeHeader(msgtype, kConnection, ++_request, 0), paramID, value,
                           static_cast<uint32_t>(payload.size() + lengthDelta), 0};
    return Add(r, payload);
  }
  Session& Raw(const std::string& bytes) {
    Frame(bytes);
    return *this;
  }
  [[nodiscard]] const std::string& Bytes() const { return _bytes; }

 private:
  static constexpr uint32_t kConnection = 0x00010000u | 4242u;

  template <typename Record>
  Session& Add(const Record& record, const std::string& payload) {
    std::string bytes(sizeof record, '\0');
    Pack(record, &bytes[0]);
    Frame(bytes + payload);
    return *this;
  }
  void Frame(const std::string& bytes) {
    if (_datagrams) {
      _bytes += static_cast<char>(bytes.size() >> 8);
      _bytes += static_cast<char>(bytes.size() & 0xFF);
    }
    _bytes += bytes;
  }

  bool _datagrams;
  uint32_t _request = 0;
  std::string _bytes;
};

std::string StringPayload(unsigned int paramID, const std::string& text) {
  StringValue value(eConfigID_Default, paramID, eCParam_StringValue, text);
  std::vector<char> bytes = EncodePayload(&value);
  return std::string(bytes.begin(), bytes.end());
}

void StreamSeeds(const std::string& target, bool network, const Picks& p) {
  std::string text = StringPayload(p.text, p.sample);
  Save(target, "connect", Session(false).Connect(0).Bytes());
  Save(target, "get-set",
       Session(false)
           .Connect(0)
           .Request(XCFG_GET_PARAM_REQUEST, p.number)
           .Request(XCFG_SET_PARAM_REQUEST, p.number, 1)
           .Request(XCFG_GET_PARAM_REQUEST, p.number)
           .Connect(0, XCFG_DISCONNECT_REQUEST)
           .Bytes());
  Save(target, "string",
       Session(false)
           .Connect(0)
           .Request(XCFG_GET_STREAM_PARAM_REQUEST, p.text)
           .Request(XCFG_SET_STREAM_PARAM_REQUEST, p.text, 0, text)
           .Request(XCFG_GET_STREAM_PARAM_REQUEST, p.text)
           .Bytes());
  Save(target, "listener",
       Session(false)
           .Connect(0)
           .Listener(XCFG_ADD_CONFIG_EVENT_LISTENER_REQUEST, p.number)
           .Listener(XCFG_ADD_CONFIG_EVENT_LISTENER_REQUEST, p.text)
           .Request(XCFG_SET_PARAM_REQUEST, p.number, 0)
           .Request(XCFG_SET_STREAM_PARAM_REQUEST, p.text, 0, text)
           .Listener(XCFG_REMOVE_CONFIG_EVENT_LISTENER_REQUEST, p.number)
           .Request(XCFG_SET_PARAM_REQUEST, p.number, 1)
           .Bytes());
  Save(target, "other-store",
       Session(false).Connect(3).Request(XCFG_GET_PARAM_REQUEST, p.number).Bytes());
  Save(target, "before-connect", Session(false).Request(XCFG_GET_PARAM_REQUEST, p.number).Bytes());
  Save(target, "stream-too-long",
       Session(false)
           .Connect(0)
           .Request(XCFG_SET_STREAM_PARAM_REQUEST, p.text, 0, text, kXConfigStreamBufferSize)
           .Bytes());
  Save(
      target, "stream-short",
      Session(false).Connect(0).Request(XCFG_SET_STREAM_PARAM_REQUEST, p.text, 0, text, 8).Bytes());
  Save(target, "not-a-string",
       Session(false)
           .Connect(0)
           .Request(XCFG_SET_STREAM_PARAM_REQUEST, p.number, 0, StringPayload(p.number, "x"))
           .Bytes());
  Save(target, "cut-record",
       Cut(Session(false).Connect(0).Request(XCFG_GET_PARAM_REQUEST, p.number).Bytes(), 3));
  Save(target, "unknown-type",
       Session(false).Connect(0).Request(XCFG_GET_DATA_RESPONSE, 0).Bytes());
  if (network) {
    Save(target, "data", Session(false).Connect(0).Request(XCFG_GET_DATA_REQUEST, p.data).Bytes());
  }
}

void DatagramSeeds(const Picks& p) {
  const std::string target = "network_udp";
  IntegerValue number(eConfigID_Default, p.number, eCParam_IntegerValue, 1);
  std::string text = StringPayload(p.text, p.sample);
  Save(target, "get-set",
       Session(true)
           .Request(XCFG_GET_PARAM_REQUEST, p.number)
           .Request(XCFG_SET_PARAM_REQUEST, p.number, 1)
           .Connect(0, XCFG_DISCONNECT_REQUEST)
           .Request(XCFG_GET_PARAM_REQUEST, p.number)
           .Bytes());
  Save(target, "string",
       Session(true)
           .Request(XCFG_GET_STREAM_PARAM_REQUEST, p.text)
           .Request(XCFG_SET_STREAM_PARAM_REQUEST, p.text, 0, text)
           .Bytes());
  Save(target, "data",
       Session(true)
           .Request(XCFG_GET_DATA_REQUEST, p.data)
           .Request(XCFG_SET_DATA_REQUEST, p.data, 0, StringPayload(p.data, p.sample))
           .Request(XCFG_GET_DATA_REQUEST, p.data)
           .Request(XCFG_SET_DATA_REQUEST, p.data, 0, Framed(&number))
           .Bytes());
  Save(target, "other-store",
       Session(true).Connect(3).Connect(3).Request(XCFG_GET_PARAM_REQUEST, p.number).Bytes());
  Save(target, "stream-claims-more",
       Session(true).Request(XCFG_SET_STREAM_PARAM_REQUEST, p.text, 0, text, 16).Bytes());
  Save(target, "short-datagram",
       Session(true)
           .Raw(Cut(Session(false).Request(XCFG_GET_PARAM_REQUEST, p.number).Bytes(), 4))
           .Bytes());
  Save(target, "listener-over-udp",
       Session(true).Listener(XCFG_ADD_CONFIG_EVENT_LISTENER_REQUEST, p.number).Bytes());
}

void ValueSeeds(const Picks& p) {
  const std::string target = "value_decoder";
  IntegerValue number(static_cast<eConfigID_t>(2), p.number, eCParam_EventValue, 300);
  StringValue text(eConfigID_Default, p.text, eCParam_StringValue, "ab");
  SectorHeader sector(7, SectorCodec::kSettingsVersion, 40);
  Checkpoint checkpoint(static_cast<eConfigID_t>(1));
  checkpoint.SetOffset(64);
  PackageHeader package;
  package.SetProductID(PresetImage::UnitProduct());
  package.SetFileSize(120);
  zyn::config::values::PresetsParamVector preset;
  preset.SetData("image", 5);
  Vector list;
  list.Add(number.Clone());
  list.Add(text.Clone());
  std::vector<std::pair<const char*, Serializable*>> objects = {{"integer", &number},
                                                                {"string", &text},
                                                                {"sector-header", &sector},
                                                                {"checkpoint", &checkpoint},
                                                                {"package-header", &package},
                                                                {"presets", &preset},
                                                                {"vector", &list}};
  const eClassID_t order[] = {eClassID_IntegerValue, eClassID_StringValue, eClassID_SectorHeader,
                              eClassID_Checkpoint,   eClassID_Presets,     eClassID_Vector,
                              eClassID_PackageHeader};
  for (auto& [name, object] : objects) {
    std::string framed = Framed(object);
    Save(target, std::string("framed-") + name, std::string(1, '\0') + framed);
    Save(target, std::string("framed-cut-") + name, std::string(1, '\0') + Cut(framed, 1));
    char picked = 0;
    for (char i = 0; i < 7; ++i)
      if (order[static_cast<int>(i)] == object->GetClassID()) picked = i;
    Save(target, std::string("picked-") + name, std::string{'\1', picked} + framed.substr(4));
  }
  Save(target, "payload-integer", std::string(1, '\2') + Framed(&number));
  Save(target, "payload-string", std::string(1, '\2') + Framed(&text));
  Save(target, "string-unterminated", std::string(1, '\0') + Cut(Framed(&text), 1));
  std::string unknown = Framed(&number);
  unknown[3] = 2;  // a class ID nothing is registered for
  Save(target, "unknown-class", std::string(1, '\0') + unknown);
  Save(target, "nested-vectors", std::string(1, '\0') + NestedVectors(kNestedLevels), "regress");
}

std::string ValuesImage(const Picks& p, const std::string& sample) {
  Vector values;
  values.Add(new IntegerValue(eConfigID_Default, p.number, eCParam_IntegerValue, 1));
  values.Add(new StringValue(eConfigID_Default, p.text, eCParam_StringValue, sample));
  return ValueImage::Encode(values);
}

// The sector target's input: flags, the size of slot a, slot a, slot b.
std::string Slots(int flags, const std::string& a, const std::string& b) {
  std::string input{static_cast<char>(flags), static_cast<char>(a.size() >> 8),
                    static_cast<char>(a.size() & 0xFF)};
  return input + a + b;
}

void SectorSeeds(const Picks& p) {
  const std::string target = "sector";
  const unsigned int settings = SectorCodec::kSettingsVersion;
  std::string older = SectorCodec::Encode(4, settings, ValuesImage(p, "old"));
  std::string newer = SectorCodec::Encode(5, settings, ValuesImage(p, p.sample));
  std::string damaged = newer;
  damaged[damaged.size() - 1] ^= 0x5A;
  Save(target, "one-slot", Slots(4, newer, ""));
  Save(target, "both-slots", Slots(0, older, newer));
  Save(target, "wrapped-odometer",
       Slots(0, SectorCodec::Encode(0xFFFFFFFFu, settings, ValuesImage(p, "wrap")),
             SectorCodec::Encode(1, settings, ValuesImage(p, p.sample))));
  Save(target, "damaged-newer", Slots(0, older, damaged));
  Save(target, "repaired", Slots(2, older, damaged));
  Save(target, "foreign",
       Slots(0, SectorCodec::Encode(6, SectorCodec::kPresetVersion, ValuesImage(p, "x")), older));
  Save(target, "truncated", Slots(0, Cut(newer, 6), Cut(older, older.size() - 10)));
  Save(target, "values-cut", Slots(1, Cut(newer, 5), ""));
  Save(target, "empty-values", Slots(4, SectorCodec::Encode(1, settings, ""), ""));
}

void PresetSeeds(const Picks& p) {
  const std::string target = "preset";
  unsigned int product = PresetImage::UnitProduct();
  std::string image = PresetImage::Encode(product, ValuesImage(p, p.sample));
  Save(target, "valid", std::string(1, '\0') + image);
  Save(target, "other-product",
       std::string(1, '\0') + PresetImage::Encode(product + 1, ValuesImage(p, "x")));
  Save(target, "size-mismatch", std::string(1, '\0') + image + "tail");
  Save(target, "repaired-cut-values", std::string(1, '\1') + Cut(image, 3));
  Save(target, "truncated-header", std::string(1, '\0') + image.substr(0, 12));
  Vector foreign;
  foreign.Add(new SectorHeader(1, 2, 3));
  Save(target, "foreign-element",
       std::string(1, '\0') + PresetImage::Encode(product, ValueImage::Encode(foreign)));
  Save(target, "nested-vectors",
       std::string(1, '\0') + PresetImage::Encode(product, NestedVectors(kNestedLevels)),
       "regress");
}

void UriSeeds() {
  const char* uris[] = {
      "local:configid=3",
      "socket://127.0.0.1:43110/caching=true",
      "socket://127.0.0.1:43110/configid=12",
      "tcp://127.0.0.1:43110",
      "udp://127.0.0.1:43110/configid=2/eventport=63111/caching=true",
      "multicast://127.0.0.1:63110/configid=-1",
      "udp://127.0.0.1:43110/eventport=x",
      "tcp:127.0.0.1",
      "socket",
      "configid=99999999999999999999",
  };
  int n = 0;
  for (const char* uri : uris) Save("uri", "uri-" + std::to_string(n++), uri);
  Save("uri", "long-words", "tcp://" + std::string(150, 'h') + ":" + std::string(120, '4'));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    fprintf(stderr, "usage: %s CORPUS_FOLDER\n", argv[0]);
    return 2;
  }
  g_root = argv[1];
  CreateDescriptors();
  ClassFactory::InitFactories();
  Picks picks = Pick();
  if (picks.number == 0 || picks.text == 0 || picks.data == 0) {
    fprintf(stderr, "make_seeds - the catalogue lacks an integer, string or data parameter\n");
    return 1;
  }
  StreamSeeds("socket_stream", false, picks);
  StreamSeeds("network_tcp", true, picks);
  DatagramSeeds(picks);
  ValueSeeds(picks);
  SectorSeeds(picks);
  PresetSeeds(picks);
  UriSeeds();
  printf("%d seeds written under %s\n", g_written, g_root.c_str());
  return 0;
}
