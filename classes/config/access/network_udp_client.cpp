#include "config/access/network_udp_client.h"

#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "config/access/connection_utilities.h"
#include "config/access/socket.h"

namespace zyn {
namespace boxline {
namespace config {
namespace access {

namespace records = ::zyn::config::access;

NetworkUDPClient::NetworkUDPClient(unsigned int connectionID, Socket* socket, eConfigID_t configID,
                                   bool eventsOnly)
    : NetworkClient(connectionID, socket, configID), _response_thread(), _events_only(eventsOnly) {
  socket->set_buffer_size(SO_RCVBUF, kSocketBufferSize);
  socket->set_buffer_size(SO_SNDBUF, kSocketBufferSize);
  TimeReceives();
  StartResponseThread();
}

NetworkUDPClient::~NetworkUDPClient() {
  StopEventsThread();
  {
    std::lock_guard<std::mutex> hold(_queue_lock);
    _stop_responses = true;
    _queue_ready.notify_all();
  }
  if (_response_started) pthread_join(_response_thread, nullptr);
}

void* NetworkUDPClient::ResponseThreadEntry(void* arg) {
  static_cast<NetworkUDPClient*>(arg)->ProcessResponses();
  return nullptr;
}

void NetworkUDPClient::StartResponseThread() {
  {
    std::lock_guard<std::mutex> hold(_queue_lock);
    if (_responses_running) return;
    _responses_running = true;
  }
  if (_response_started) pthread_join(_response_thread, nullptr);
  _response_started = pthread_create(&_response_thread, nullptr, ResponseThreadEntry, this) == 0;
  if (!_response_started) {
    fprintf(stderr, "NetworkUDPClient::StartResponseThread - unable to start thread\n");
    std::lock_guard<std::mutex> hold(_queue_lock);
    _responses_running = false;
  }
}

bool NetworkUDPClient::IsShutdown(const XCONFIGMGR_RESPONSE_T& event) {
  return event.header.msgtype == XCFG_PARAM_CHANGED_EVENT && event.paramID == kSystemStateParamID &&
         event.value == kSystemStateShutdown;
}

void NetworkUDPClient::ProcessResponses() {
  for (;;) {
    XCONFIGMGR_RESPONSE_T event;
    {
      std::unique_lock<std::mutex> hold(_queue_lock);
      _queue_ready.wait(hold, [this] { return _stop_responses || !_event_queue.empty(); });
      if (_stop_responses) break;
      event = _event_queue.front();
      _event_queue.pop_front();
    }
    ProcessConfigParamEvent(event);
    if (IsShutdown(event)) break;
  }
  std::lock_guard<std::mutex> hold(_queue_lock);
  _responses_running = false;
}

NetworkClient::eReadResult NetworkUDPClient::ReadMessage(char* buffer, size_t capacity,
                                                         size_t& length, uint32_t& msgtype) {
  ssize_t n;
  do {
    n = ::recv(_fd, buffer, capacity, 0);
  } while (n < 0 && errno == EINTR);
  if (n < 0) return eReadError;
  if (n < 4) return eReadInvalid;
  length = static_cast<size_t>(n);
  msgtype = records::PeekMessageType(buffer);
  size_t size = records::ResponseRecordSize(msgtype);
  if (size == 0) return eReadUnknown;
  if (length < size) return eReadInvalid;
  if (size != sizeof(XCONFIGMGR_RESPONSE_T)) return eReadMessage;
  XCONFIGMGR_RESPONSE_T record;
  records::Unpack(buffer, record);
  // The payload must lie inside the datagram.
  if (record.streamLength > length - size) return eReadInvalid;
  length = size + record.streamLength;
  return eReadMessage;
}

bool NetworkUDPClient::Set(eParam_t id, unsigned int value) {
  if (!KnownParam(id, "NetworkClient::Set(eParam_t) - invalid paramid 0x%08X \n")) return false;
  XCONFIGMGR_RESPONSE_T response;
  errno = 0;
  if (!IntegerExchange(XCFG_SET_PARAM_REQUEST, id, value, XCFG_SET_PARAM_RESPONSE,
                       "NetworkUDPClient::Set - select failed on port %d (PID:%d)\n",
                       "NetworkUDPClient::Set - recvfrom failed", response))
    return false;
  if (response.error != 0) {
    fprintf(stderr, "NetworkUDPClient::Set - response error:%d\n",
            static_cast<int>(response.error));
    return false;
  }
  return true;
}

bool NetworkUDPClient::Get(eParam_t id, std::string& value) {
  static const StreamMessages kMessages = {
      nullptr, "NetworkUDPClient::Get - response error != 0\n",
      "NetworkUDPClient::Get - invalid streamLength (PID:%d)\n",
      "NetworkUDPClient::Get - recvfrom failed\n"};
  if (!KnownParam(id, "NetworkClient::Get(string) - invalid paramid 0x%08X \n")) return false;
  return StreamExchange(XCFG_GET_STREAM_PARAM_REQUEST, id, XCFG_GET_STREAM_PARAM_RESPONSE,
                        kMessages, value);
}

bool NetworkUDPClient::GetData(eParam_t id, std::string& data) {
  static const StreamMessages kMessages = {
      nullptr, "NetworkUDPClient::GetData - response error != 0\n",
      "NetworkUDPClient::GetData - invalid streamLength (PID:%d)\n",
      "NetworkUDPClient::GetData - recvfrom failed\n"};
  if (!KnownParam(id, "NetworkUDPClient::GetData - invalid paramid 0x%08X \n")) return false;
  return StreamExchange(XCFG_GET_DATA_REQUEST, id, XCFG_GET_DATA_RESPONSE, kMessages, data);
}

bool NetworkUDPClient::SetData(eParam_t id, std::string& data) {
  if (!KnownParam(id, "NetworkUDPClient::SetData - invalid paramid 0x%08X \n")) return false;
  return SendValue(XCFG_SET_DATA_REQUEST, id, data, "NetworkUDPClient::SetData");
}

bool NetworkUDPClient::ConfirmDisconnect() {
  if (_events_only) return true;
  return NetworkClient::ConfirmDisconnect();
}

void NetworkUDPClient::RegisterForEvents() {
  if (!_socket->add_membership(kXConfigEventGroup, kXConfigEventInterface))
    perror("NetworkUDPClient::RegisterForEvents - add membership failed");
}

bool NetworkUDPClient::UnregisterForEvents() {
  if (_socket->drop_membership(kXConfigEventGroup, kXConfigEventInterface)) return true;
  perror("NetworkUDPClient::UnregisterForEvents - drop membership failed");
  return false;
}

void NetworkUDPClient::CheckSequence(uint32_t sequence) {
  uint32_t last = _last_sequence;
  bool known = _have_sequence;
  _have_sequence = true;
  _last_sequence = sequence;
  if (!known || sequence == last) return;
  uint32_t gap = sequence - last - 1;
  // Half the counter's range ahead is a jump forward; anything else is a
  // counter that started again.
  uint32_t lost = gap < 0x80000000u ? gap : sequence;
  if (lost == 0) return;
  _lost_events += lost;
  fprintf(stderr, "NetworkUDPClient::ProcessEvents - lost %u events (sequence %u after %u)\n", lost,
          sequence, last);
}

void NetworkUDPClient::ProcessEvents() {
  prctl(PR_SET_NAME, "UDPClntPrcsEvts", 0, 0, 0);
  StartResponseThread();
  std::vector<char> buffer(kXConfigDatagramSize);
  while (!_stop_events) {
    if (!WaitForSocketOrStop()) break;
    size_t length = 0;
    uint32_t msgtype = 0;
    eReadResult result = ReadMessage(buffer.data(), buffer.size(), length, msgtype);
    if (result == eReadError) {
      // A connected socket reports an unreachable server once; go on.
      if (errno == ECONNREFUSED) continue;
      perror("NetworkUDPClient::ProcessEvents");
      break;
    }
    if (result == eReadUnknown) {
      fprintf(stderr, "NetworkUDPClient::ProcessEvents - Unknown message type %d\n",
              static_cast<int>(msgtype));
      continue;
    }
    if (result != eReadMessage) {
      fprintf(stderr, "NetworkUDPClient::ProcessEvents - malformed datagram dropped\n");
      continue;
    }
    if (records::MessageDirection(msgtype) != records::eEvent) {
      if (!HandOver(buffer.data(), length))
        fprintf(stderr, "NetworkUDPClient::ProcessEvents - dropped unexpected %s (0x%X)\n",
                records::MessageName(msgtype), msgtype);
      continue;
    }
    XCONFIGMGR_RESPONSE_T event;
    records::Unpack(buffer.data(), event);
    // The counter runs across every store of the server.
    if (msgtype == XCFG_PARAM_CHANGED_EVENT) CheckSequence(event.header.requestID);
    if (event.header.configID != static_cast<uint32_t>(_config_id)) {
      fprintf(stderr, "NetworkUDPClient::ProcessEvents - ConfigID:%d  Inbound ConfigID:%d\n",
              static_cast<int>(_config_id), static_cast<int>(event.header.configID));
      continue;
    }
    const char* payload = buffer.data() + sizeof event;
    size_t payloadLength = length - sizeof event;
    records::ConnectionUtilities::Dump(event, payloadLength > 0 ? payload : nullptr, payloadLength);
    if (msgtype == XCFG_PARAM_STREAM_CHANGED_EVENT) {
      ProcessConfigStreamParamEvent(event.paramID, payload, payloadLength);
    } else if (msgtype == XCFG_PARAM_DATA_CHANGED_EVENT) {
      ProcessConfigDataEvent(event.paramID, payload, payloadLength);
    } else {
      {
        std::lock_guard<std::mutex> hold(_queue_lock);
        _event_queue.push_back(event);
        _queue_ready.notify_one();
      }
      if (IsShutdown(event)) {
        fprintf(stderr,
                "NetworkUDPClient::ProcessEvents exiting due to system state going into shutdown "
                "state\n");
        break;
      }
    }
  }
  EventsReaderEnded();
}

}  // namespace access
}  // namespace config
}  // namespace boxline
}  // namespace zyn
