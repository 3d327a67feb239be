// The records of the configuration protocol between a client process and
// the process that owns the settings: their message types, fixed layouts and
// the one codec that turns them into bytes and back. Records are sequences
// of 32-bit words in the host's byte order (both ends share a host); a record
// that carries a value is followed by `streamLength` bytes of payload in the
// big-endian value encoding.
//
// Handlers work on the decoded structs below; only this codec touches raw
// record bytes.
#ifndef CLASSES_CONFIG_ACCESS_XCONFIGMGR_RECORDS_H
#define CLASSES_CONFIG_ACCESS_XCONFIGMGR_RECORDS_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

class ConfigValue;

// Message type codes.
enum eXConfigMsgType : uint32_t {
  XCFG_CONNECT_REQUEST = 16,
  XCFG_DISCONNECT_REQUEST = 17,
  XCFG_CONNECT_RESPONSE = 32,
  XCFG_DISCONNECT_RESPONSE = 33,
  XCFG_ADD_CONFIG_EVENT_LISTENER_REQUEST = 48,
  XCFG_REMOVE_CONFIG_EVENT_LISTENER_REQUEST = 49,
  XCFG_ADD_CONFIG_EVENT_LISTENER_RESPONSE = 64,
  XCFG_REMOVE_CONFIG_EVENT_LISTENER_RESPONSE = 65,
  XCFG_GET_PARAM_REQUEST = 80,
  XCFG_SET_PARAM_REQUEST = 81,
  XCFG_GET_PARAM_RESPONSE = 96,
  XCFG_SET_PARAM_RESPONSE = 97,
  XCFG_GET_STREAM_PARAM_REQUEST = 112,
  XCFG_SET_STREAM_PARAM_REQUEST = 113,
  XCFG_POPULATE_PARAM_REQUEST = 114,
  XCFG_GET_STREAM_PARAM_RESPONSE = 128,
  XCFG_SET_STREAM_PARAM_RESPONSE = 129,
  XCFG_POPULATE_PARAM_RESPONSE = 130,
  XCFG_PARAM_CHANGED_EVENT = 144,
  XCFG_PARAM_STREAM_CHANGED_EVENT = 145,
  XCFG_PARAM_DATA_CHANGED_EVENT = 146,
  XCFG_GET_DATA_REQUEST = 256,
  XCFG_GET_DATA_RESPONSE = 257,
  XCFG_SET_DATA_REQUEST = 258,
  XCFG_SET_DATA_RESPONSE = 259,
};

// Fixed values of the protocol.
constexpr uint32_t kXConfigBufferSize = 4096;        // bufferSize of every header
constexpr uint32_t kXConfigStreamBufferSize = 3072;  // largest payload; streamBufferSize
constexpr uint32_t kXConfigEventRequestID = 0xFFFFFFFF;
constexpr uint32_t kXConfigSetStringError = 15;  // a string value the store did not take
// The error of a Connect Response whose store cannot be opened, and of one
// that the owner's limit on open stores turned away.
constexpr uint32_t kXConfigStoreUnavailable = 1;
constexpr uint32_t kXConfigStoreLimitReached = 2;
constexpr int kXConfigPort = 43110;

// The first 24 bytes of every record.
struct XCONFIGMGR_HEADER_T {
  uint32_t msgtype;
  uint32_t connectionID;
  uint32_t requestID;
  uint32_t configID;
  uint32_t flags;
  uint32_t bufferSize;
};

// Connect and Disconnect Request: the header only (24 bytes).
struct XCONFIGMGR_CONNECTION_REQUEST_T {
  XCONFIGMGR_HEADER_T header;
};

// Connect, Disconnect, Add and Remove Listener Response (28 bytes).
struct XCONFIGMGR_CONNECTION_RESPONSE_T {
  XCONFIGMGR_HEADER_T header;
  uint32_t error;
};

// Add and Remove Listener Request (28 bytes); paramID 0 means every
// parameter.
struct XCONFIGMGR_EVENT_HANDLER_REQUEST_T {
  XCONFIGMGR_HEADER_T header;
  uint32_t paramID;
};

// Get, Set, Get String and Set String Request (40 bytes).
struct XCONFIGMGR_REQUEST_T {
  XCONFIGMGR_HEADER_T header;
  uint32_t paramID;
  uint32_t value;
  uint32_t streamLength;
  uint32_t reserved;
};

// Every other response and the events (44 bytes).
struct XCONFIGMGR_RESPONSE_T {
  XCONFIGMGR_HEADER_T header;
  uint32_t paramID;
  uint32_t error;
  uint32_t value;
  uint32_t streamLength;
  uint32_t streamBufferSize;
};

static_assert(sizeof(XCONFIGMGR_CONNECTION_REQUEST_T) == 24, "record layout");
static_assert(sizeof(XCONFIGMGR_CONNECTION_RESPONSE_T) == 28, "record layout");
static_assert(sizeof(XCONFIGMGR_EVENT_HANDLER_REQUEST_T) == 28, "record layout");
static_assert(sizeof(XCONFIGMGR_REQUEST_T) == 40, "record layout");
static_assert(sizeof(XCONFIGMGR_RESPONSE_T) == 44, "record layout");

namespace zyn {
namespace config {
namespace access {

// How a message shows in trace lines.
enum eMessageDirection { eRequest, eResponse, eEvent };

// The display name of a message code, "N/A" for a code outside the table.
const char* MessageName(uint32_t msgtype);
// "->" for requests, "<-" for responses, "<=" for events.
eMessageDirection MessageDirection(uint32_t msgtype);
const char* DirectionArrow(uint32_t msgtype);
// The whole size of the record a request of this type is, as the local
// server reads it (24, 28 or 40 bytes); 0 for a type it does not accept.
size_t LocalRequestSize(uint32_t msgtype);
// The same for the network servers: the TCP server reads 24, 28 or 40 bytes
// (no data requests); the UDP server takes 24 or 40-byte records (no listener
// requests, but the data requests).
size_t TCPRequestSize(uint32_t msgtype);
size_t UDPRequestSize(uint32_t msgtype);
// The code's symbolic name, as messages quote it ("XCFG_GET_PARAM_REQUEST"),
// "N/A" for a code outside the table.
const char* SymbolicName(uint32_t msgtype);
// The size of the record a response or event of this type travels in (28
// for connection and listener responses, 44 for the others, without the
// payload); 0 for a request or an unknown type.
size_t ResponseRecordSize(uint32_t msgtype);

// A header with the fixed fields filled: flags 0, bufferSize 4096.
XCONFIGMGR_HEADER_T MakeHeader(uint32_t msgtype, uint32_t connectionID, uint32_t requestID,
                               uint32_t configID);

// The header of a response to `request`: every field echoed under the
// response's code, bufferSize 4096.
XCONFIGMGR_HEADER_T AnswerHeader(const XCONFIGMGR_HEADER_T& request, uint32_t msgtype);

// The "Param Changed Event" of an integer change, for the connection
// `connectionID` of the store `configID`.
XCONFIGMGR_RESPONSE_T ParamChangedEvent(uint32_t connectionID, uint32_t configID, uint32_t paramID,
                                        uint32_t value);
// The request a "Param String Changed Event" is built from, as a string
// response is from its request.
XCONFIGMGR_REQUEST_T StreamChangedEventRequest(uint32_t connectionID, uint32_t configID,
                                               uint32_t paramID);

// Packing into and out of the wire bytes of each record. Pack writes exactly
// sizeof(record) bytes; Unpack reads exactly that many.
template <typename Record>
void Pack(const Record& record, char* out);
template <typename Record>
void Unpack(const char* in, Record& record);
// A response record followed by its payload, as one block of wire bytes.
std::vector<char> PackWithPayload(const XCONFIGMGR_RESPONSE_T& record,
                                  const std::vector<char>& payload);
// The message type at the head of a record.
uint32_t PeekMessageType(const char* in);

// The payload of a value: the value framed as "Serializable" in the value
// encoding. Empty when the value would not fit the 3072-byte stream buffer.
std::vector<char> EncodePayload(ConfigValue* value);
// The value of a payload of `size` bytes (at most 3072), or null. The value
// is a new object owned by the caller.
ConfigValue* DecodePayload(const char* data, size_t size);

// True when the response answers the request: same connection, store and
// request ID. Each mismatch is reported on standard error.
bool IsValidResponse(const XCONFIGMGR_HEADER_T& request, const XCONFIGMGR_HEADER_T& response);

}  // namespace access
}  // namespace config
}  // namespace zyn

#endif  // CLASSES_CONFIG_ACCESS_XCONFIGMGR_RECORDS_H
