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

// One line per message code. A request size of 0 means that transport's
// server does not accept the message.
struct MessageInfo {
  uint32_t code;
  const char* name;
  const char* symbol;
  eMessageDirection direction;
  size_t localRequestSize;
  size_t tcpRequestSize;
  size_t udpRequestSize;
};

constexpr MessageInfo kMessages[] = {
    {XCFG_CONNECT_REQUEST, "Connect Request", "XCFG_CONNECT_REQUEST", eRequest, 24, 24, 24},
    {XCFG_DISCONNECT_REQUEST, "Disconnect Request", "XCFG_DISCONNECT_REQUEST", eRequest, 24, 24,
     24},
    {XCFG_CONNECT_RESPONSE, "Connect Response", "XCFG_CONNECT_RESPONSE", eResponse, 0, 0, 0},
    {XCFG_DISCONNECT_RESPONSE, "Disconnect Response", "XCFG_DISCONNECT_RESPONSE", eResponse, 0, 0,
     0},
    {XCFG_ADD_CONFIG_EVENT_LISTENER_REQUEST, "Add Listener Request",
     "XCFG_ADD_CONFIG_EVENT_LISTENER_REQUEST", eRequest, 28, 28, 0},
    {XCFG_REMOVE_CONFIG_EVENT_LISTENER_REQUEST, "Remove Listener Request",
     "XCFG_REMOVE_CONFIG_EVENT_LISTENER_REQUEST", eRequest, 28, 28, 0},
    {XCFG_ADD_CONFIG_EVENT_LISTENER_RESPONSE, "Add Listener Response",
     "XCFG_ADD_CONFIG_EVENT_LISTENER_RESPONSE", eResponse, 0, 0, 0},
    {XCFG_REMOVE_CONFIG_EVENT_LISTENER_RESPONSE, "Remove Listener Response",
     "XCFG_REMOVE_CONFIG_EVENT_LISTENER_RESPONSE", eResponse, 0, 0, 0},
    {XCFG_GET_PARAM_REQUEST, "Get Request", "XCFG_GET_PARAM_REQUEST", eRequest, 40, 40, 40},
    {XCFG_SET_PARAM_REQUEST, "Set Request", "XCFG_SET_PARAM_REQUEST", eRequest, 40, 40, 40},
    {XCFG_GET_PARAM_RESPONSE, "Get Response", "XCFG_GET_PARAM_RESPONSE", eResponse, 0, 0, 0},
    {XCFG_SET_PARAM_RESPONSE, "Set Response", "XCFG_SET_PARAM_RESPONSE", eResponse, 0, 0, 0},
    {XCFG_GET_STREAM_PARAM_REQUEST, "Get String Request", "XCFG_GET_STREAM_PARAM_REQUEST", eRequest,
     40, 40, 40},
    {XCFG_SET_STREAM_PARAM_REQUEST, "Set String Request", "XCFG_SET_STREAM_PARAM_REQUEST", eRequest,
     40, 40, 40},
    {XCFG_POPULATE_PARAM_REQUEST, "Populate Param Request", "XCFG_POPULATE_PARAM_REQUEST", eRequest,
     0, 0, 0},
    {XCFG_GET_STREAM_PARAM_RESPONSE, "Get String Response", "XCFG_GET_STREAM_PARAM_RESPONSE",
     eResponse, 0, 0, 0},
    {XCFG_SET_STREAM_PARAM_RESPONSE, "Set String Response", "XCFG_SET_STREAM_PARAM_RESPONSE",
     eResponse, 0, 0, 0},
    {XCFG_POPULATE_PARAM_RESPONSE, "Populate Param Response", "XCFG_POPULATE_PARAM_RESPONSE",
     eResponse, 0, 0, 0},
    {XCFG_PARAM_CHANGED_EVENT, "Param Changed Event", "XCFG_PARAM_CHANGED_EVENT", eEvent, 0, 0, 0},
    {XCFG_PARAM_STREAM_CHANGED_EVENT, "Param String Changed Event",
     "XCFG_PARAM_STREAM_CHANGED_EVENT", eEvent, 0, 0, 0},
    {XCFG_PARAM_DATA_CHANGED_EVENT, "Param Data Changed Event", "XCFG_PARAM_DATA_CHANGED_EVENT",
     eEvent, 0, 0, 0},
    {XCFG_GET_DATA_REQUEST, "Get Data Request", "XCFG_GET_DATA_REQUEST", eRequest, 0, 0, 40},
    {XCFG_GET_DATA_RESPONSE, "Get Data Response", "XCFG_GET_DATA_RESPONSE", eResponse, 0, 0, 0},
    {XCFG_SET_DATA_REQUEST, "Set Data Request", "XCFG_SET_DATA_REQUEST", eRequest, 0, 0, 40},
    {XCFG_SET_DATA_RESPONSE, "Set Data Response", "XCFG_SET_DATA_RESPONSE", eResponse, 0, 0, 0},
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

size_t TCPRequestSize(uint32_t msgtype) {
  const MessageInfo* info = Find(msgtype);
  return info != nullptr ? info->tcpRequestSize : 0;
}

size_t UDPRequestSize(uint32_t msgtype) {
  const MessageInfo* info = Find(msgtype);
  return info != nullptr ? info->udpRequestSize : 0;
}

size_t ResponseRecordSize(uint32_t msgtype) {
  const MessageInfo* info = Find(msgtype);
  if (info == nullptr || info->direction == eRequest) return 0;
  switch (msgtype) {
    case XCFG_CONNECT_RESPONSE:
    case XCFG_DISCONNECT_RESPONSE:
    case XCFG_ADD_CONFIG_EVENT_LISTENER_RESPONSE:
    case XCFG_REMOVE_CONFIG_EVENT_LISTENER_RESPONSE:
      return sizeof(XCONFIGMGR_CONNECTION_RESPONSE_T);
    default:
      return sizeof(XCONFIGMGR_RESPONSE_T);
  }
}

const char* SymbolicName(uint32_t msgtype) {
  const MessageInfo* info = Find(msgtype);
  return info != nullptr ? info->symbol : "N/A";
}

XCONFIGMGR_HEADER_T MakeHeader(uint32_t msgtype, uint32_t connectionID, uint32_t requestID,
                               uint32_t configID) {
  return XCONFIGMGR_HEADER_T{msgtype, connectionID, requestID, configID, 0, kXConfigBufferSize};
}

XCONFIGMGR_HEADER_T AnswerHeader(const XCONFIGMGR_HEADER_T& request, uint32_t msgtype) {
  XCONFIGMGR_HEADER_T header = request;
  header.msgtype = msgtype;
  header.bufferSize = kXConfigBufferSize;
  return header;
}

XCONFIGMGR_RESPONSE_T ParamChangedEvent(uint32_t connectionID, uint32_t configID, uint32_t paramID,
                                        uint32_t value) {
  return XCONFIGMGR_RESPONSE_T{
      MakeHeader(XCFG_PARAM_CHANGED_EVENT, connectionID, kXConfigEventRequestID, configID),
      paramID,
      0,
      value,
      0,
      kXConfigStreamBufferSize};
}

XCONFIGMGR_REQUEST_T StreamChangedEventRequest(uint32_t connectionID, uint32_t configID,
                                               uint32_t paramID) {
  return XCONFIGMGR_REQUEST_T{
      MakeHeader(XCFG_PARAM_STREAM_CHANGED_EVENT, connectionID, kXConfigEventRequestID, configID),
      paramID, 0, 0, 0};
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

std::vector<char> PackWithPayload(const XCONFIGMGR_RESPONSE_T& record,
                                  const std::vector<char>& payload) {
  std::vector<char> bytes(sizeof record + payload.size());
  Pack(record, bytes.data());
  if (!payload.empty()) memcpy(bytes.data() + sizeof record, payload.data(), payload.size());
  return bytes;
}

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
