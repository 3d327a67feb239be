#include "config/access/network_tcp_client.h"

#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "config/access/connection_utilities.h"
#include "config/access/socket.h"
#include "config/access/stream_io.h"

namespace zyn {
namespace boxline {
namespace config {
namespace access {

namespace records = ::zyn::config::access;

NetworkTCPClient::NetworkTCPClient(unsigned int connectionID, Socket* socket, eConfigID_t configID)
    : NetworkClient(connectionID, socket, configID), _reader(socket->get_fd()) {
  socket->set_buffer_size(SO_RCVBUF, kSocketBufferSize);
  socket->set_buffer_size(SO_SNDBUF, kSocketBufferSize);
  TimeReceives();
}

NetworkTCPClient::~NetworkTCPClient() {
  // A thread blocked inside a record would not see the stop request.
  if (_events_started) ::shutdown(_fd, SHUT_RDWR);
  StopEventsThread();
}

NetworkClient::eReadResult NetworkTCPClient::ReadMessage(char* buffer, size_t capacity,
                                                         size_t& length, uint32_t& msgtype) {
  long n = _reader.Read(buffer, 4);
  if (n < 0) return eReadError;
  if (n < 4) return eReadClosed;
  msgtype = records::PeekMessageType(buffer);
  size_t size = records::ResponseRecordSize(msgtype);
  if (size == 0) return eReadUnknown;
  n = _reader.Read(buffer + 4, size - 4);
  if (n < 0) return eReadError;
  if (n < static_cast<long>(size - 4)) return eReadClosed;
  length = size;
  if (size != sizeof(XCONFIGMGR_RESPONSE_T)) return eReadMessage;
  XCONFIGMGR_RESPONSE_T record;
  records::Unpack(buffer, record);
  if (record.streamLength == 0) return eReadMessage;
  // The stream cannot be resynchronised past a payload it will not read.
  if (record.streamLength > kXConfigStreamBufferSize || size + record.streamLength > capacity) {
    ::shutdown(_fd, SHUT_RDWR);
    return eReadInvalid;
  }
  n = _reader.Read(buffer + size, record.streamLength);
  if (n < 0) return eReadError;
  if (n < static_cast<long>(record.streamLength)) return eReadClosed;
  length = size + record.streamLength;
  return eReadMessage;
}

void NetworkTCPClient::RegisterForEvents(unsigned int paramID) {
  XCONFIGMGR_EVENT_HANDLER_REQUEST_T request{
      records::MakeHeader(XCFG_ADD_CONFIG_EVENT_LISTENER_REQUEST, _connection_id, 0, _config_id),
      paramID};
  char bytes[sizeof request];
  records::Pack(request, bytes);
  records::ConnectionUtilities::Dump(request);
  if (!SendMessage(bytes, sizeof bytes)) perror("NetworkTCPClient::RegisterForEvents");
}

void NetworkTCPClient::RegisterForEvents() { RegisterForEvents(0); }

bool NetworkTCPClient::UnregisterForEvents() {
  XCONFIGMGR_EVENT_HANDLER_REQUEST_T request{
      records::MakeHeader(XCFG_REMOVE_CONFIG_EVENT_LISTENER_REQUEST, _connection_id, 0, _config_id),
      0};
  char bytes[sizeof request];
  records::Pack(request, bytes);
  records::ConnectionUtilities::Dump(request);
  ExpectResponse();
  if (!SendMessage(bytes, sizeof bytes)) {
    CancelResponse();
    fprintf(stderr, "NetworkTCPClient::UnregisterForEvents - send failed\n");
    return false;
  }
  std::vector<char> message;
  XCONFIGMGR_CONNECTION_RESPONSE_T response;
  if (AwaitResponse(message, ResponseTimeoutMs(), nullptr) != eReadMessage ||
      message.size() < sizeof response) {
    fprintf(stderr, "NetworkTCPClient::UnregisterForEvents - recv failed\n");
    return false;
  }
  records::Unpack(message.data(), response);
  records::ConnectionUtilities::Dump(response);
  if (response.header.msgtype != XCFG_REMOVE_CONFIG_EVENT_LISTENER_RESPONSE) {
    fprintf(stderr,
            "NetworkTCPClient::UnregisterForEvents - msgtype != "
            "XCFG_REMOVE_CONFIG_EVENT_LISTENER_RESPONSE\n");
    return false;
  }
  if (response.error != 0) {
    fprintf(stderr, "NetworkTCPClient::UnregisterForEvents - error = %d\n",
            static_cast<int>(response.error));
    return false;
  }
  return true;
}

void NetworkTCPClient::ProcessEvents() {
  std::vector<char> buffer(sizeof(XCONFIGMGR_RESPONSE_T) + kXConfigStreamBufferSize);
  while (!_stop_events) {
    if (!WaitForSocketOrStop()) break;
    size_t length = 0;
    uint32_t msgtype = 0;
    eReadResult result = ReadMessage(buffer.data(), buffer.size(), length, msgtype);
    if (result == eReadClosed) break;
    if (result == eReadError || result == eReadInvalid) {
      fprintf(stderr, "NetworkTCPClient::ProcessEvents - recv error (%d) in process ID %d\n",
              result == eReadError ? errno : EMSGSIZE, static_cast<int>(getpid()));
      break;
    }
    if (result == eReadUnknown) {
      fprintf(stderr, "NetworkTCPClient::ProcessEvents - Unknown message type %d\n",
              static_cast<int>(msgtype));
      fprintf(stderr, "NetworkTCPClient::ProcessEvents - Exiting\n");
      break;
    }
    XCONFIGMGR_RESPONSE_T event;
    const char* payload = buffer.data() + sizeof event;
    size_t payloadLength = length > sizeof event ? length - sizeof event : 0;
    switch (msgtype) {
      case XCFG_PARAM_CHANGED_EVENT:
        records::Unpack(buffer.data(), event);
        records::ConnectionUtilities::Dump(event);
        ProcessConfigParamEvent(event);
        break;
      case XCFG_PARAM_STREAM_CHANGED_EVENT:
      case XCFG_PARAM_DATA_CHANGED_EVENT:
        records::Unpack(buffer.data(), event);
        records::ConnectionUtilities::Dump(event, payload, payloadLength);
        if (msgtype == XCFG_PARAM_STREAM_CHANGED_EVENT)
          ProcessConfigStreamParamEvent(event.paramID, payload, payloadLength);
        else
          ProcessConfigDataEvent(event.paramID, payload, payloadLength);
        break;
      default:
        if (!HandOver(buffer.data(), length))
          fprintf(stderr, "NetworkTCPClient::ProcessEvents - dropped unexpected %s (0x%X)\n",
                  records::MessageName(msgtype), msgtype);
        break;
    }
  }
  if (_stop_events) fprintf(stderr, "NetworkTCPClient::ProcessEvents - end\n");
  EventsReaderEnded();
}

}  // namespace access
}  // namespace config
}  // namespace boxline
}  // namespace zyn
