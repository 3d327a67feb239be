#include "config/access/xconfigmgr_records.h"

#include <cstdio>
#include <cstring>

#include "config/values/integer_value.h"
#include "config/values/memory_deserializer.h"
#include "config/values/memory_serializer.h"
#include "config/values/string_value.h"

namespace zyn {
namespace config {
namespace access {

namespace {

struct MessageInfo {
  uint32_t code;
  const char* name;
  eMessageDirection direction;
  size_t localRequestSize;  // 0: the local server does not accept it
  size_t responseSize;      // a response's or event's record; 0 for requests
};

constexpr MessageInfo kMessages[] = {
    {XCFG_CONNECT_REQUEST, "Connect Request", eRequest, 24, 0},
    {XCFG_DISCONNECT_REQUEST, "Disconnect Request", eRequest, 24, 0},
    {XCFG_CONNECT_RESPONSE, "Connect Response", eResponse, 0, 28},
    {XCFG_DISCONNECT_RESPONSE, "Disconnect Response", eResponse, 0, 28},
    {XCFG_ADD_CONFIG_EVENT_LISTENER_REQUEST, "Add Listener Request", eRequest, 28, 0},
    {XCFG_REMOVE_CONFIG_EVENT_LISTENER_REQUEST, "Remove Listener Request", eRequest, 28, 0},
    {XCFG_ADD_CONFIG_EVENT_LISTENER_RESPONSE, "Add Listener Response", eResponse, 0, 28},
    {XCFG_REMOVE_CONFIG_EVENT_LISTENER_RESPONSE, "Remove Listener Response", eResponse, 0, 28},
    {XCFG_GET_PARAM_REQUEST, "Get Request", eRequest, 40, 0},
    {XCFG_SET_PARAM_REQUEST, "Set Request", eRequest, 40, 0},
    {XCFG_GET_PARAM_RESPONSE, "Get Response", eResponse, 0, 44},
    {XCFG_SET_PARAM_RESPONSE, "Set Response", eResponse, 0, 44},
    {XCFG_GET_STREAM_PARAM_REQUEST, "Get String Request", eRequest, 40, 0},
    {XCFG_SET_STREAM_PARAM_REQUEST, "Set String Request", eRequest, 40, 0},
    {XCFG_POPULATE_PARAM_REQUEST, "Populate Param Request", eRequest, 0, 0},
    {XCFG_GET_STREAM_PARAM_RESPONSE, "Get String Response", eResponse, 0, 44},
    {XCFG_SET_STREAM_PARAM_RESPONSE, "Set String Response", eResponse, 0, 44},
    {XCFG_POPULATE_PARAM_RESPONSE, "Populate Param Response", eResponse, 0, 44},
    {XCFG_PARAM_CHANGED_EVENT, "Param Changed Event", eEvent, 0, 44},
    {XCFG_PARAM_STREAM_CHANGED_EVENT, "Param String Changed Event", eEvent, 0, 44},
    {XCFG_PARAM_DATA_CHANGED_EVENT, "Param Data Changed Event", eEvent, 0, 44},
    {XCFG_GET_DATA_REQUEST, "Get Data Request", eRequest, 0, 0},
    {XCFG_GET_DATA_RESPONSE, "Get Data Response", eResponse, 0, 44},
    {XCFG_SET_DATA_REQUEST, "Set Data Request", eRequest, 0, 0},
    {XCFG_SET_DATA_RESPONSE, "Set Data Response", eResponse, 0, 44},
};

const MessageInfo* Find(uint32_t code) {
  for (const MessageInfo& info : kMessages)
    if (info.code == code) return &info;
  return nullptr;
}

}  // namespace

const char* MessageName(uint32_t msgtype) {
  const MessageInfo* info = Find(msgtype);
  return info != nullptr ? info->name : "N/A";
}

eMessageDirection MessageDirection(uint32_t msgtype) {
  const MessageInfo* info = Find(msgtype);
  return info != nullptr ? info->direction : eResponse;
}

const char* DirectionArrow(uint32_t msgtype) {
  switch (MessageDirection(msgtype)) {
    case eRequest:
      return "->";
    case eEvent:
      return "<=";
    default:
      return "<-";
  }
}

size_t LocalRequestSize(uint32_t msgtype) {
  const MessageInfo* info = Find(msgtype);
  return info != nullptr ? info->localRequestSize : 0;
}

size_t ResponseRecordSize(uint32_t msgtype) {
  const MessageInfo* info = Find(msgtype);
  return info != nullptr ? info->responseSize : 0;
}

XCONFIGMGR_HEADER_T MakeHeader(uint32_t msgtype, uint32_t connectionID, uint32_t requestID,
                               uint32_t configID) {
  return XCONFIGMGR_HEADER_T{msgtype, connectionID, requestID, configID, 0, kXConfigBufferSize};
}

// Records are plain sequences of 32-bit words without padding, so their
// wire form in host byte order is their memory image.
template <typename Record>
void Pack(const Record& record, char* out) {
  memcpy(out, &record, sizeof(Record));
}

template <typename Record>
void Unpack(const char* in, Record& record) {
  memcpy(&record, in, sizeof(Record));
}

template void Pack(const XCONFIGMGR_CONNECTION_REQUEST_T&, char*);
template void Pack(const XCONFIGMGR_CONNECTION_RESPONSE_T&, char*);
template void Pack(const XCONFIGMGR_EVENT_HANDLER_REQUEST_T&, char*);
template void Pack(const XCONFIGMGR_REQUEST_T&, char*);
template void Pack(const XCONFIGMGR_RESPONSE_T&, char*);
template void Unpack(const char*, XCONFIGMGR_CONNECTION_REQUEST_T&);
template void Unpack(const char*, XCONFIGMGR_CONNECTION_RESPONSE_T&);
template void Unpack(const char*, XCONFIGMGR_EVENT_HANDLER_REQUEST_T&);
template void Unpack(const char*, XCONFIGMGR_REQUEST_T&);
template void Unpack(const char*, XCONFIGMGR_RESPONSE_T&);

uint32_t PeekMessageType(const char* in) {
  uint32_t msgtype;
  memcpy(&msgtype, in, sizeof msgtype);
  return msgtype;
}

std::vector<char> EncodePayload(ConfigValue* value) {
  unsigned int size = MemorySerializerSizer::GetSize(value);
  if (value == nullptr || size == 0 || size > kXConfigStreamBufferSize) return {};
  std::vector<char> payload(size);
  MemorySerializer out(eSerializationFormat_Binary, payload.data(), payload.data() + size, false);
  out.Write("Serializable", static_cast<Serializable*>(value));
  return payload;
}

ConfigValue* DecodePayload(const char* data, size_t size) {
  if (data == nullptr || size == 0 || size > kXConfigStreamBufferSize) return nullptr;
  // The reader needs a mutable range; the payload stays untouched.
  char* start = const_cast<char*>(data);
  MemoryDeSerializer in(eSerializationFormat_Binary, start, start + size, false);
  ClassFactoryHeader header;
  if (!in.Read(header)) return nullptr;
  // A value of its own for each payload: connection threads decode at the
  // same time, so the registry's shared scratch values are not used here.
  ConfigValue* value = nullptr;
  if (header.classID == eClassID_IntegerValue) {
    value = new IntegerValue();
  } else if (header.classID == eClassID_StringValue) {
    value = new StringValue();
  } else {
    fprintf(stderr, "pValue == NULL after ClassFactory::Create() for classID = %d\n",
            static_cast<int>(header.classID));
    return nullptr;
  }
  value->SetClassID(header.classID);
  value->Deserialize(&in);
  if (in.Failed()) {
    delete value;
    return nullptr;
  }
  return value;
}

bool IsValidResponse(const XCONFIGMGR_HEADER_T& request, const XCONFIGMGR_HEADER_T& response) {
  bool valid = true;
  if (request.connectionID != response.connectionID) {
    fprintf(stderr,
            "IsValidResponse - request.connectionID (0x%X) != response.connectionID (0x%X)\n",
            request.connectionID, response.connectionID);
    valid = false;
  }
  if (request.configID != response.configID) {
    fprintf(stderr, "IsValidResponse - request.configID (%d) != response.configID (%d)\n",
            static_cast<int>(request.configID), static_cast<int>(response.configID));
    valid = false;
  }
  if (request.requestID != response.requestID) {
    fprintf(stderr, "IsValidResponse - request.requestID (%d) != response.requestID (%d)\n",
            static_cast<int>(request.requestID), static_cast<int>(response.requestID));
    valid = false;
  }
  return valid;
}

}  // namespace access
}  // namespace config
}  // namespace zyn
