#include "config/access/socket_client.h"

#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

#include "config/access/connection_utilities.h"
#include "config/access/socket.h"
#include "config/access/stream_io.h"
#include "config/descriptors/param_descriptors.h"
#include "config/values/string_value.h"
#include "support/logger.h"
#include "support/semaphore_helper.h"

namespace zyn {
namespace config {
namespace access {

namespace {

// The size of the rest of a record the events reader accepts, after its
// 4-byte type; 0 for a type that is not an event or an end-of-connection
// response.
size_t EventRecordRest(uint32_t msgtype) {
  switch (msgtype) {
    case XCFG_PARAM_CHANGED_EVENT:
    case XCFG_PARAM_STREAM_CHANGED_EVENT:
      return sizeof(XCONFIGMGR_RESPONSE_T) - 4;
    case XCFG_DISCONNECT_RESPONSE:
    case XCFG_REMOVE_CONFIG_EVENT_LISTENER_RESPONSE:
      return sizeof(XCONFIGMGR_CONNECTION_RESPONSE_T) - 4;
    default:
      return 0;
  }
}

timeval Now() {
  timeval now;
  gettimeofday(&now, nullptr);
  return now;
}

}  // namespace

void* thread_start(void* arg) {
  static_cast<SocketClient*>(arg)->ProcessEvents();
  return nullptr;
}

SocketClient::SocketClient(unsigned int connectionID, Socket* socket, sem_t* semaphore,
                           int& requestCounter, eConfigID_t configID)
    : _connection_id(connectionID),
      _socket(socket),
      _fd(socket->get_fd()),
      _semaphore(semaphore),
      _request_counter(requestCounter),
      _config_id(configID),
      _registered(false),
      _events_thread(),
      _events_started(false),
      _events_reading(false) {
  SemaphoreHelper::InitSemaphore(&_listener_lock);
  _socket->set_send_timeout(static_cast<int>(kResponseTimeoutMs));
}

SocketClient::~SocketClient() {
  StopEventsThread();
  delete _socket;
  SemaphoreHelper::DestroySemaphore(&_listener_lock);
}

uint32_t SocketClient::NextRequestID() { return static_cast<uint32_t>(_request_counter++); }

bool SocketClient::SendBytes(const char* bytes, size_t length) {
  return SendAll(_fd, bytes, length);
}

void SocketClient::SetResponseTimeout(long ms) {
  _response_timeout_ms = ms;
  _socket->set_send_timeout(ms > 0 ? static_cast<int>(std::min(ms, 86400000L)) : 0);
}

bool SocketClient::GiveUp(uint32_t msgtype, uint32_t requestID, bool inStep) {
  const char* method = msgtype == XCFG_DISCONNECT_REQUEST ? "ConfirmDisconnect"
                       : msgtype == XCFG_REMOVE_CONFIG_EVENT_LISTENER_REQUEST
                           ? "UnregisterForEvents"
                           : "Get";
  fprintf(stderr, "SocketClient::%s - no response to %s within %ld ms%s\n", method,
          SymbolicName(msgtype), _response_timeout_ms.load(), inStep ? "" : ", connection closed");
  if (!inStep) {
    ::shutdown(_fd, SHUT_RDWR);
    return false;
  }
  std::lock_guard<std::mutex> hold(_handover_lock);
  _abandoned.push_back(requestID);
  if (_abandoned.size() > kAbandonedMax) _abandoned.pop_front();
  return false;
}

bool SocketClient::IsAbandoned(const XCONFIGMGR_HEADER_T& header) {
  if (header.connectionID != _connection_id) return false;
  std::lock_guard<std::mutex> hold(_handover_lock);
  auto it = std::find(_abandoned.begin(), _abandoned.end(), header.requestID);
  if (it == _abandoned.end()) return false;
  _abandoned.erase(it);
  return true;
}

bool SocketClient::ReadPayload(std::vector<char>& payload, uint32_t length, Deadline deadline) {
  if (length > kXConfigStreamBufferSize) return false;
  payload.resize(length);
  bool timedOut = false;
  return RecvExactBy(_fd, payload.data(), length, deadline, &timedOut) == static_cast<long>(length);
}

bool SocketClient::ReceiveResponse(const XCONFIGMGR_HEADER_T& request,
                                   XCONFIGMGR_RESPONSE_T& response, Deadline deadline) {
  for (;;) {
    char bytes[sizeof(XCONFIGMGR_RESPONSE_T)];
    bool timedOut = false;
    long n = RecvExactBy(_fd, bytes, sizeof bytes, deadline, &timedOut);
    if (timedOut) return GiveUp(request.msgtype, request.requestID, n == 0);
    if (n < 0) {
      perror("SocketClient::Get - socket recv failed");
      return false;
    }
    if (n != static_cast<long>(sizeof bytes)) {
      fprintf(stderr,
              "SocketClient::Get(): receive return != sizeof(XCONFIGMGR_RESPONSE_T), FAILED\n");
      return false;
    }
    Unpack(bytes, response);
    ConnectionUtilities::Dump(response);
    // The owner answers a string set only when it refuses it; such an
    // answer to an earlier request arrives ahead of this one's.
    if (response.header.msgtype == XCFG_SET_STREAM_PARAM_RESPONSE &&
        response.header.requestID != request.requestID &&
        response.header.connectionID == request.connectionID) {
      fprintf(stderr, "SocketClient::Set - store refused the value of paramID 0x%X (error %d)\n",
              response.paramID, static_cast<int>(response.error));
      continue;
    }
    if (IsAbandoned(response.header)) {
      std::vector<char> skipped;
      if (!ReadPayload(skipped, response.streamLength, deadline))
        return GiveUp(request.msgtype, request.requestID, false);
      continue;
    }
    if (!IsValidResponse(request, response.header)) {
      fprintf(stderr, "SocketClient::Get - response does not match request\n");
      return false;
    }
    return true;
  }
}

bool SocketClient::Exchange(uint32_t msgtype, eParam_t id, uint32_t expected,
                            XCONFIGMGR_RESPONSE_T& response, Deadline deadline) {
  // The events thread would take the response for an unknown event.
  if (_events_reading) {
    fprintf(stderr,
            "SocketClient::Get - the connection carries events, requests need a client of "
            "their own\n");
    return false;
  }
  XCONFIGMGR_REQUEST_T request{MakeHeader(msgtype, _connection_id, NextRequestID(), _config_id), id,
                               0, 0, 0};
  char bytes[sizeof request];
  Pack(request, bytes);
  ConnectionUtilities::Dump(request);
  if (!SendBytes(bytes, sizeof bytes)) {
    fprintf(stderr, "SocketClient::Get - send failed\n");
    return false;
  }
  if (!ReceiveResponse(request.header, response, deadline)) return false;
  if (response.header.msgtype != expected) {
    fprintf(stderr, "SocketClient::Get(): response message did not match response message info\n");
    return false;
  }
  if (response.error != 0) {
    fprintf(stderr, "SocketClient::Get - response error != 0\n");
    return false;
  }
  return true;
}

bool SocketClient::Get(eParam_t id, unsigned int& value) {
  SemaphoreHelper lock(_semaphore);
  XCONFIGMGR_RESPONSE_T response;
  if (!Exchange(XCFG_GET_PARAM_REQUEST, id, XCFG_GET_PARAM_RESPONSE, response,
                DeadlineAfter(_response_timeout_ms)))
    return false;
  value = response.value;
  return true;
}

unsigned int SocketClient::Get(eParam_t id) {
  unsigned int value = 0;
  return Get(id, value) ? value : 0;
}

bool SocketClient::Get(eParam_t id, std::string& value) {
  SemaphoreHelper lock(_semaphore);
  XCONFIGMGR_RESPONSE_T response;
  Deadline deadline = DeadlineAfter(_response_timeout_ms);
  if (!Exchange(XCFG_GET_STREAM_PARAM_REQUEST, id, XCFG_GET_STREAM_PARAM_RESPONSE, response,
                deadline))
    return false;
  if (response.streamLength == 0 || response.streamLength > kXConfigStreamBufferSize) {
    fprintf(stderr, "SocketClient::Get - invalid streamLength\n");
    return false;
  }
  std::vector<char> payload;
  if (!ReadPayload(payload, response.streamLength, deadline))
    return GiveUp(XCFG_GET_STREAM_PARAM_REQUEST, response.header.requestID, false);
  std::unique_ptr<ConfigValue> decoded(DecodePayload(payload.data(), payload.size()));
  StringValue* text = dynamic_cast<StringValue*>(decoded.get());
  if (text == nullptr) {
    fprintf(stderr, "SocketClient::Get - response does not match request\n");
    return false;
  }
  text->Get(value);
  return true;
}

bool SocketClient::Set(eParam_t id, unsigned int value) {
  SemaphoreHelper lock(_semaphore);
  XCONFIGMGR_REQUEST_T request{
      MakeHeader(XCFG_SET_PARAM_REQUEST, _connection_id, NextRequestID(), _config_id), id, value, 0,
      0};
  char bytes[sizeof request];
  Pack(request, bytes);
  ConnectionUtilities::Dump(request);
  if (!SendBytes(bytes, sizeof bytes)) {
    fprintf(stderr, "SocketClient::Set - send failed\n");
    return false;
  }
  return true;
}

bool SocketClient::Set(eParam_t id, std::string value) {
  StringValue text(_config_id, id, eCParam_StringValue, std::move(value));
  std::vector<char> payload = EncodePayload(&text);
  if (payload.empty()) {
    fprintf(stderr, "SocketClient::Set - value of paramID 0x%X too long to send\n", id);
    return false;
  }
  SemaphoreHelper lock(_semaphore);
  XCONFIGMGR_REQUEST_T request{
      MakeHeader(XCFG_SET_STREAM_PARAM_REQUEST, _connection_id, NextRequestID(), _config_id), id, 0,
      static_cast<uint32_t>(payload.size()), 0};
  std::vector<char> bytes(sizeof request + payload.size());
  Pack(request, bytes.data());
  memcpy(bytes.data() + sizeof request, payload.data(), payload.size());
  ConnectionUtilities::Dump(request, payload.data(), payload.size());
  if (!SendBytes(bytes.data(), bytes.size())) {
    fprintf(stderr, "SocketClient::Set - send failed\n");
    return false;
  }
  return true;
}

eConfigID_t SocketClient::GetConfigID() { return _config_id; }

timeval SocketClient::GetLastConfigUpdate() { return timeval{0, 0}; }

ParamDescriptor* SocketClient::GetParamDescriptor(eParam_t id) { return GetDescriptor(id); }

ParamDescriptor* SocketClient::GetParamDescriptor(std::string name) { return GetDescriptor(name); }

std::vector<unsigned int> SocketClient::GetParamIDs() { return ::GetParamIDs(); }

void SocketClient::RegisterForEvents(unsigned int paramID) {
  XCONFIGMGR_EVENT_HANDLER_REQUEST_T request{
      MakeHeader(XCFG_ADD_CONFIG_EVENT_LISTENER_REQUEST, _connection_id, NextRequestID(), 0),
      paramID};
  char bytes[sizeof request];
  Pack(request, bytes);
  ConnectionUtilities::Dump(request);
  if (!SendBytes(bytes, sizeof bytes)) fprintf(stderr, "SocketClient::Set - send failed\n");
}

bool SocketClient::AddConfigEventListener(ConfigEventListener* listener) {
  SemaphoreHelper lock(_semaphore);
  bool first;
  {
    SemaphoreHelper listeners(&_listener_lock);
    first = _listeners.empty();
  }
  if (first) {
    if (!_registered) RegisterForEvents(0);
    _registered = true;
    StartEventsThread();
  }
  SemaphoreHelper listeners(&_listener_lock);
  if (std::find(_listeners.begin(), _listeners.end(), listener) == _listeners.end())
    _listeners.push_back(listener);
  return true;
}

bool SocketClient::AddConfigEventListener(eParam_t id, ConfigEventListener* listener) {
  SemaphoreHelper lock(_semaphore);
  if (_registered)
    fprintf(stderr,
            "SocketClient::AddConfigEventListener - WARNING: use either filtered or global event "
            "registration, not both\n");
  bool first;
  {
    SemaphoreHelper listeners(&_listener_lock);
    first = _listeners.empty();
    if (std::find(_listeners.begin(), _listeners.end(), listener) == _listeners.end())
      _listeners.push_back(listener);
  }
  if (first) StartEventsThread();
  RegisterForEvents(id);
  return true;
}

bool SocketClient::AddConfigEventListener(std::list<eParam_t> ids, ConfigEventListener* listener) {
  for (eParam_t id : ids) AddConfigEventListener(id, listener);
  return true;
}

bool SocketClient::RemoveConfigEventListener(ConfigEventListener* listener) {
  bool nowEmpty = false;
  {
    SemaphoreHelper listeners(&_listener_lock);
    auto it = std::find(_listeners.begin(), _listeners.end(), listener);
    if (it != _listeners.end()) {
      _listeners.erase(it);
      nowEmpty = _listeners.empty();
    }
  }
  if (nowEmpty) {
    UnregisterForEvents();
    StopEventsThread();
  }
  return false;
}

bool SocketClient::UnregisterForEvents() {
  XCONFIGMGR_CONNECTION_RESPONSE_T response;
  XCONFIGMGR_HEADER_T header;
  {
    SemaphoreHelper lock(_semaphore);
    // After a Disconnect the owner has closed the connection: nothing to end.
    if (_disconnected) return false;
    XCONFIGMGR_EVENT_HANDLER_REQUEST_T request{
        MakeHeader(XCFG_REMOVE_CONFIG_EVENT_LISTENER_REQUEST, _connection_id, NextRequestID(), 0),
        0};
    header = request.header;
    char bytes[sizeof request];
    Pack(request, bytes);
    ConnectionUtilities::Dump(request);
    if (!ConnectionExchange(bytes, sizeof bytes, header, response)) return false;
    _registered = false;
  }
  if (!IsValidResponse(header, response.header)) {
    fprintf(stderr, "SocketClient::UnregisterForEvents - IsValidResponse returned false\n");
    return false;
  }
  if (response.header.msgtype != XCFG_REMOVE_CONFIG_EVENT_LISTENER_RESPONSE) {
    fprintf(stderr,
            "SocketClient::UnregisterForEvents - msgtype != "
            "XCFG_REMOVE_CONFIG_EVENT_LISTENER_RESPONSE\n");
    return false;
  }
  return true;
}

bool SocketClient::ConfirmDisconnect() {
  XCONFIGMGR_CONNECTION_RESPONSE_T response;
  SemaphoreHelper lock(_semaphore);
  XCONFIGMGR_CONNECTION_REQUEST_T request{
      MakeHeader(XCFG_DISCONNECT_REQUEST, _connection_id, NextRequestID(), _config_id)};
  char bytes[sizeof request];
  Pack(request, bytes);
  ConnectionUtilities::Dump(request);
  if (!ConnectionExchange(bytes, sizeof bytes, request.header, response)) return false;
  _disconnected = response.header.msgtype == XCFG_DISCONNECT_RESPONSE &&
                  IsValidResponse(request.header, response.header) && response.error == 0;
  return _disconnected;
}

bool SocketClient::ConnectionExchange(const char* request, size_t length,
                                      const XCONFIGMGR_HEADER_T& header,
                                      XCONFIGMGR_CONNECTION_RESPONSE_T& response) {
  if (!_events_reading) {
    if (!SendBytes(request, length)) return false;
    char answer[sizeof response];
    bool timedOut = false;
    long n =
        RecvExactBy(_fd, answer, sizeof answer, DeadlineAfter(_response_timeout_ms), &timedOut);
    // These exchanges end the connection's use: a late answer is not
    // waited for.
    if (timedOut) return GiveUp(header.msgtype, header.requestID, false);
    if (n != static_cast<long>(sizeof answer)) return false;
    Unpack(answer, response);
    ConnectionUtilities::Dump(response);
    return true;
  }
  // The events thread reads this socket: it hands the answer over.
  std::unique_lock<std::mutex> hold(_handover_lock);
  _handover_waiting = true;
  _handover_full = false;
  _handover_request = header.requestID;
  if (!SendBytes(request, length)) {
    _handover_waiting = false;
    return false;
  }
  bool answered = _handover_ready.wait_until(hold, DeadlineAfter(_response_timeout_ms),
                                             [this] { return _handover_full; });
  _handover_waiting = false;
  if (answered) {
    response = _handover;
    return true;
  }
  hold.unlock();
  return GiveUp(header.msgtype, header.requestID, true);
}

SocketClient::HandOverResult SocketClient::HandOver(const char* record) {
  XCONFIGMGR_CONNECTION_RESPONSE_T answer;
  Unpack(record, answer);
  std::lock_guard<std::mutex> hold(_handover_lock);
  if (_handover_waiting && answer.header.requestID == _handover_request) {
    _handover = answer;
    ConnectionUtilities::Dump(_handover);
    _handover_full = true;
    _handover_ready.notify_all();
    return HandOverResult::kHandedOver;
  }
  auto late = std::find(_abandoned.begin(), _abandoned.end(), answer.header.requestID);
  if (late == _abandoned.end()) return HandOverResult::kUnexpected;
  _abandoned.erase(late);
  return HandOverResult::kDropped;
}

bool SocketClient::StartEventsThread() {
  if (_events_started) return true;
  _events_reading = true;
  int rc = pthread_create(&_events_thread, nullptr, thread_start, this);
  if (rc != 0) {
    _events_reading = false;
    errno = rc;
    perror("SocketClient::StartEventsThread - unable to start thread");
    return false;
  }
  _events_started = true;
  return true;
}

void SocketClient::StopEventsThread() {
  if (!_events_started) return;
  if (_socket == nullptr) {
    fprintf(stderr, "SocketClient::StopEventsThread - NULL socket");
    return;
  }
  // Shutting the socket down ends the events thread's blocked read.
  ::shutdown(_fd, SHUT_RDWR);
  if (pthread_join(_events_thread, nullptr) != 0)
    fprintf(stderr, "SocketClient::StopEventsThread - thread join failed");
  _events_started = false;
  _events_reading = false;
  _socket->close();
  // The number may be given to another connection at once: nothing of this
  // client may reach it.
  _fd = -1;
}

void SocketClient::Run() { ProcessEvents(); }

bool SocketClient::ReadEvent(XCONFIGMGR_RESPONSE_T& event, std::string& text, bool& unknown) {
  unknown = false;
  char record[sizeof(XCONFIGMGR_RESPONSE_T)];
  uint32_t msgtype;
  for (;;) {
    if (RecvExact(_fd, record, 4) != 4) return false;
    msgtype = PeekMessageType(record);
    size_t rest = EventRecordRest(msgtype);
    memset(&event, 0, sizeof event);
    event.header.msgtype = msgtype;
    unknown = rest == 0;
    if (unknown) return false;
    if (RecvExact(_fd, record + 4, rest) != static_cast<long>(rest)) return false;
    if (rest + 4 != sizeof(XCONFIGMGR_CONNECTION_RESPONSE_T)) break;
    HandOverResult handed = HandOver(record);
    if (handed == HandOverResult::kHandedOver) return true;
    unknown = handed == HandOverResult::kUnexpected;
    if (unknown) return false;
  }
  Unpack(record, event);
  if (msgtype != XCFG_PARAM_STREAM_CHANGED_EVENT) {
    ConnectionUtilities::Dump(event);
    return true;
  }
  if (event.streamLength == 0 || event.streamLength > kXConfigStreamBufferSize) return false;
  std::vector<char> payload(event.streamLength);
  if (RecvExact(_fd, payload.data(), payload.size()) != static_cast<long>(payload.size()))
    return false;
  ConnectionUtilities::Dump(event, payload.data(), payload.size());
  std::unique_ptr<ConfigValue> decoded(DecodePayload(payload.data(), payload.size()));
  StringValue* value = dynamic_cast<StringValue*>(decoded.get());
  if (value == nullptr) return false;
  value->Get(text);
  return true;
}

void SocketClient::ProcessEvents() {
  for (;;) {
    XCONFIGMGR_RESPONSE_T event;
    std::string text;
    bool unknown;
    errno = 0;  // a close by configd or a short record sets none
    if (!ReadEvent(event, text, unknown)) {
      if (unknown) {
        fprintf(stderr, "SocketClient::ProcessEvents - Unknown message type %d\n",
                static_cast<int>(event.header.msgtype));
        fprintf(stderr,
                "SocketClient::ProcessEvents - I'm sorry to do this to you but... we have no "
                "choice - we're going to have to shut this party down\n");
        fprintf(stderr,
                "SocketClient::ProcessEvents - ******************* NO MORE EVENTS HANDLED "
                "***************\n");
      } else {
        int error = errno;
        // No error number: configd closed the connection in order.
        if (error != 0 || zyn::logging::IsVerbose())
          fprintf(stderr, "SocketClient::ProcessEvents - recv ERROR (%d) in processid %d: %s\n",
                  error, static_cast<int>(getpid()), FailureCause(error));
      }
      _events_broken = true;
      break;
    }
    // A handed-over end-of-connection answer: nothing more will arrive.
    if (event.header.msgtype == XCFG_DISCONNECT_RESPONSE ||
        event.header.msgtype == XCFG_REMOVE_CONFIG_EVENT_LISTENER_RESPONSE)
      break;
    if (event.header.msgtype == XCFG_PARAM_CHANGED_EVENT) {
      ProcessConfigParamEvent(event);
    } else {
      ProcessConfigStreamParamEvent(event, text);
    }
  }
  _events_reading = false;
}

void SocketClient::ProcessConfigParamEvent(const XCONFIGMGR_RESPONSE_T& event) {
  SemaphoreHelper listeners(&_listener_lock);
  // The wire carries no time: the event is stamped on arrival.
  timeval now = Now();
  if (event.header.connectionID != _connection_id) {
    fprintf(stderr, "SocketClient::ProcessConfigParamEvent - connectionID mismatch\n");
    return;
  }
  for (ConfigEventListener* listener : _listeners)
    listener->ParamChanged(event.paramID, event.value, now);
}

void SocketClient::ProcessConfigStreamParamEvent(const XCONFIGMGR_RESPONSE_T& event,
                                                 const std::string& text) {
  SemaphoreHelper listeners(&_listener_lock);
  timeval now = Now();
  if (event.header.connectionID != _connection_id) {
    fprintf(stderr, "SocketClient::ProcessConfigParamEvent - connectionID mismatch\n");
    return;
  }
  for (ConfigEventListener* listener : _listeners) listener->ParamChanged(event.paramID, text, now);
}

bool SocketClient::WaitForConfigEvent(ConfigEvent& event, long, long) {
  {
    SemaphoreHelper lock(_semaphore);
    if (!_registered) RegisterForEvents(0);
    _registered = true;
  }
  XCONFIGMGR_RESPONSE_T record;
  std::string text;
  bool unknown;
  if (!ReadEvent(record, text, unknown) || record.header.msgtype == XCFG_DISCONNECT_RESPONSE ||
      record.header.msgtype == XCFG_REMOVE_CONFIG_EVENT_LISTENER_RESPONSE) {
    if (unknown)
      fprintf(stderr, "SocketClient::WaitForConfigEvent - Unknown message type %d\n",
              static_cast<int>(record.header.msgtype));
    else
      fprintf(stderr, "SocketClient::WaitForConfigEvent - recv ERROR\n");
    return false;
  }
  event = ConfigEvent();
  event.paramID = record.paramID;
  event.timestamp = Now();
  if (record.header.msgtype == XCFG_PARAM_CHANGED_EVENT) {
    event.paramType = eCParam_EventValue;
    event.intValue = record.value;
  } else {
    event.paramType = eCParam_StringValue;
    event.stringValue = text;
  }
  return true;
}

}  // namespace access
}  // namespace config
}  // namespace zyn
