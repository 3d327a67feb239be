#include "config/access/network_client.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cassert>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "config/access/connection_utilities.h"
#include "config/access/dump_context.h"
#include "config/access/socket.h"
#include "config/access/stream_io.h"
#include "config/descriptors/param_descriptors.h"
#include "config/values/string_value.h"
#include "support/semaphore_helper.h"

namespace zyn {
namespace boxline {
namespace config {
namespace access {

namespace records = ::zyn::config::access;
using records::ConnectionUtilities;

namespace {

timeval Now() {
  timeval now;
  gettimeofday(&now, nullptr);
  return now;
}

}  // namespace

std::atomic<int> NetworkClient::s_response_timeout_ms{NetworkClient::kDefaultResponseTimeoutMs};

void NetworkClient::SetResponseTimeoutMs(int milliseconds) {
  s_response_timeout_ms = milliseconds > 0 ? milliseconds : kDefaultResponseTimeoutMs;
}

int NetworkClient::ResponseTimeoutMs() { return s_response_timeout_ms; }

NetworkClient::NetworkClient(unsigned int connectionID, Socket* socket, eConfigID_t configID)
    : _config_id(configID),
      _connection_id(connectionID),
      _socket(socket),
      _registered(false),
      _events_thread(),
      _stop_events(false),
      _fd(socket->get_fd()),
      _request_buffer(kXConfigDatagramSize) {
  SemaphoreHelper::InitSemaphore(&_listener_lock);
  SemaphoreHelper::InitSemaphore(&_socket_lock);
}

void NetworkClient::TimeReceives() {
  int milliseconds = ResponseTimeoutMs();
  timeval wait{milliseconds / 1000, (milliseconds % 1000) * 1000};
  _timed_receives = setsockopt(_fd, SOL_SOCKET, SO_RCVTIMEO, &wait, sizeof wait) == 0;
}

NetworkClient::~NetworkClient() {
  // The transports stop the events thread in their own destructors, while
  // their reading code still exists.
  delete _socket;
  for (int fd : _wake)
    if (fd >= 0) ::close(fd);
  SemaphoreHelper::DestroySemaphore(&_socket_lock);
  SemaphoreHelper::DestroySemaphore(&_listener_lock);
}

bool NetworkClient::KnownParam(eParam_t id, const char* format) {
  if (GetParamDescriptor(id) != nullptr) return true;
  fprintf(stderr, format, id);
  return false;
}

bool NetworkClient::SendMessage(const char* bytes, size_t length) {
  return records::SendAll(_fd, bytes, length);
}

void NetworkClient::ExpectResponse() {
  std::lock_guard<std::mutex> hold(_handover_lock);
  _handover_waiting = _events_reading;
  _handover_full = false;
}

void NetworkClient::CancelResponse() {
  std::lock_guard<std::mutex> hold(_handover_lock);
  _handover_waiting = false;
  _handover_full = false;
}

void NetworkClient::TimedOut(const char* timeoutFormat) {
  int code = errno;
  fprintf(stderr, timeoutFormat, _socket->get_port(), static_cast<int>(getpid()));
  exit(code != 0 ? code : -1);
}

NetworkClient::eReadResult NetworkClient::AwaitResponse(std::vector<char>& message, int timeoutMs,
                                                        const char* timeoutFormat) {
  {
    std::unique_lock<std::mutex> hold(_handover_lock);
    if (_handover_waiting) {
      auto ready = [this] { return _handover_full || !_events_reading; };
      bool answered = true;
      if (timeoutMs < 0) {
        _handover_ready.wait(hold, ready);
      } else {
        answered = _handover_ready.wait_for(hold, std::chrono::milliseconds(timeoutMs), ready);
      }
      _handover_waiting = false;
      if (!answered) {
        hold.unlock();
        errno = ETIMEDOUT;
        if (timeoutFormat != nullptr) TimedOut(timeoutFormat);
        return eReadError;
      }
      if (_handover_full) {
        _handover_full = false;
        message.swap(_handover);
        return eReadMessage;
      }
      // The events thread ended before the answer came: read it here.
    }
  }
  return ReadOwnResponse(message, timeoutMs, timeoutFormat);
}

NetworkClient::eReadResult NetworkClient::ReadOwnResponse(std::vector<char>& message, int timeoutMs,
                                                          const char* timeoutFormat) {
  for (;;) {
    if (!_timed_receives && timeoutMs >= 0 && !HasBufferedInput() &&
        !_socket->read_select(timeoutMs)) {
      if (timeoutFormat != nullptr) TimedOut(timeoutFormat);
      return eReadError;
    }
    size_t length = 0;
    uint32_t msgtype = 0;
    eReadResult result =
        ReadMessage(_request_buffer.data(), _request_buffer.size(), length, msgtype);
    if (result == eReadError && (errno == EAGAIN || errno == EWOULDBLOCK)) {
      // The socket's receive time-out (the response wait) ran out.
      if (timeoutMs < 0) continue;
      if (timeoutFormat != nullptr) {
        records::dump_context();
        TimedOut(timeoutFormat);
      }
      return eReadError;
    }
    if (result != eReadMessage) return result;
    // Events keep arriving on a connection the server still counts as a
    // listener; nobody here waits for them.
    if (records::MessageDirection(msgtype) == records::eEvent) continue;
    // The server answers a string set only when it refuses it, so such an
    // answer to an earlier request may come ahead of this one's.
    if (msgtype == XCFG_SET_STREAM_PARAM_RESPONSE) {
      XCONFIGMGR_RESPONSE_T refusal;
      records::Unpack(_request_buffer.data(), refusal);
      fprintf(stderr, "NetworkClient::Set - store refused the value of paramID 0x%X (error %d)\n",
              refusal.paramID, static_cast<int>(refusal.error));
      continue;
    }
    message.assign(_request_buffer.begin(), _request_buffer.begin() + length);
    return eReadMessage;
  }
}

bool NetworkClient::HandOver(const char* message, size_t length) {
  std::lock_guard<std::mutex> hold(_handover_lock);
  if (!_handover_waiting || _handover_full) return false;
  _handover.assign(message, message + length);
  _handover_full = true;
  _handover_ready.notify_all();
  return true;
}

bool NetworkClient::IntegerExchange(uint32_t msgtype, eParam_t id, uint32_t value,
                                    uint32_t expected, const char* timeoutFormat,
                                    const char* recvFailed, XCONFIGMGR_RESPONSE_T& response) {
  SemaphoreHelper lock(&_socket_lock);
  XCONFIGMGR_REQUEST_T request{records::MakeHeader(msgtype, _connection_id, 0, _config_id), id,
                               value, 0, 0};
  char bytes[sizeof request];
  records::Pack(request, bytes);
  ConnectionUtilities::Dump(request);
  ExpectResponse();
  if (!SendMessage(bytes, sizeof bytes)) {
    CancelResponse();
    fprintf(stderr, msgtype == XCFG_SET_PARAM_REQUEST ? "NetworkClient::Set - send failed\n"
                                                      : "NetworkClient::Get - send failed\n");
    return false;
  }
  std::vector<char>& message = _response;
  if (AwaitResponse(message, ResponseTimeoutMs(), timeoutFormat) != eReadMessage ||
      message.size() < sizeof response) {
    fprintf(stderr, "%s\n", recvFailed);
    return false;
  }
  records::Unpack(message.data(), response);
  ConnectionUtilities::Dump(response);
  if (!records::IsValidResponse(request.header, response.header)) return false;
  if (response.header.msgtype != expected) {
    fprintf(stderr, "NetworkClient::Get - unexpected msgtype %d\n",
            static_cast<int>(response.header.msgtype));
    return false;
  }
  return true;
}

unsigned int NetworkClient::Get(eParam_t id) {
  unsigned int value = 0;
  return Get(id, value) ? value : 0;
}

bool NetworkClient::Get(eParam_t id, unsigned int& value) {
  if (!KnownParam(id, "NetworkClient::Get(eParam_t) - invalid paramid 0x%08X \n")) return false;
  XCONFIGMGR_RESPONSE_T response;
  if (!IntegerExchange(
          XCFG_GET_PARAM_REQUEST, id, 0, XCFG_GET_PARAM_RESPONSE,
          "NetworkClient::Get - select failed on port %d (PID:%d)\n",
          "NetworkClient::Get: receive return != sizeof(XCONFIGMGR_RESPONSE_T), FAILED", response))
    return false;
  if (response.error != 0) {
    fprintf(stderr, "NetworkClient::Get - response message indicated an error\n");
    return false;
  }
  value = response.value;
  return true;
}

bool NetworkClient::Set(eParam_t id, unsigned int value) {
  if (!KnownParam(id, "NetworkClient::Set(eParam_t) - invalid paramid 0x%08X \n")) return false;
  SemaphoreHelper lock(&_socket_lock);
  XCONFIGMGR_REQUEST_T request{
      records::MakeHeader(XCFG_SET_PARAM_REQUEST, _connection_id, 0, _config_id), id, value, 0, 0};
  char bytes[sizeof request];
  records::Pack(request, bytes);
  ConnectionUtilities::Dump(request);
  if (!SendMessage(bytes, sizeof bytes)) {
    fprintf(stderr, "NetworkClient::Set - send failed\n");
    return false;
  }
  return true;
}

bool NetworkClient::SendValue(uint32_t msgtype, eParam_t id, const std::string& text,
                              const char* caller) {
  StringValue value(_config_id, id, eCParam_StringValue, text);
  std::vector<char> payload = records::EncodePayload(&value);
  if (payload.empty()) {
    fprintf(stderr, "%s - value of paramID 0x%08X too long to send\n", caller, id);
    return false;
  }
  XCONFIGMGR_REQUEST_T request{records::MakeHeader(msgtype, _connection_id, 0, _config_id), id, 0,
                               static_cast<uint32_t>(payload.size()), 0};
  size_t requestLength = sizeof request;
  size_t streamLength = payload.size();
  // One UDP datagram carries the record and its payload.
  assert((requestLength + streamLength) <= (24 * 1024));
  std::vector<char> bytes(requestLength + streamLength);
  records::Pack(request, bytes.data());
  memcpy(bytes.data() + requestLength, payload.data(), streamLength);
  SemaphoreHelper lock(&_socket_lock);
  ConnectionUtilities::Dump(request, payload.data(), payload.size());
  if (!SendMessage(bytes.data(), bytes.size())) {
    fprintf(stderr, "NetworkClient::Set: socket send failed (stream data)\n");
    return false;
  }
  return true;
}

bool NetworkClient::Set(eParam_t id, std::string value) {
  if (!KnownParam(id, "NetworkClient::Set(string) - invalid paramid 0x%08X \n")) return false;
  return SendValue(XCFG_SET_STREAM_PARAM_REQUEST, id, value, "NetworkClient::Set(string)");
}

bool NetworkClient::StreamExchange(uint32_t msgtype, eParam_t id, uint32_t expected,
                                   const StreamMessages& messages, std::string& value) {
  SemaphoreHelper lock(&_socket_lock);
  XCONFIGMGR_REQUEST_T request{records::MakeHeader(msgtype, _connection_id, 0, _config_id), id, 0,
                               0, 0};
  char bytes[sizeof request];
  records::Pack(request, bytes);
  ConnectionUtilities::Dump(request);
  ExpectResponse();
  if (!SendMessage(bytes, sizeof bytes)) {
    CancelResponse();
    fprintf(stderr, "NetworkClient::Get - send failed\n");
    return false;
  }
  std::vector<char> message;
  int timeoutMs = messages.timeout != nullptr ? ResponseTimeoutMs() : -1;
  eReadResult result = AwaitResponse(message, timeoutMs, messages.timeout);
  if (result == eReadInvalid) {
    fprintf(stderr, messages.invalidLength, static_cast<int>(getpid()));
    return false;
  }
  XCONFIGMGR_RESPONSE_T response;
  if (result != eReadMessage || message.size() < sizeof response) {
    fprintf(stderr, "%s", messages.shortRead);
    return false;
  }
  records::Unpack(message.data(), response);
  const char* payload = message.data() + sizeof response;
  ConnectionUtilities::Dump(response, payload, message.size() - sizeof response);
  if (!records::IsValidResponse(request.header, response.header)) return false;
  if (response.error != 0 || response.header.msgtype != expected) {
    fprintf(stderr, "%s", messages.error);
    return false;
  }
  if (response.streamLength == 0 || response.streamLength != message.size() - sizeof response) {
    fprintf(stderr, messages.invalidLength, static_cast<int>(getpid()));
    return false;
  }
  std::unique_ptr<ConfigValue> decoded(records::DecodePayload(payload, response.streamLength));
  StringValue* text = dynamic_cast<StringValue*>(decoded.get());
  if (text == nullptr) {
    fprintf(stderr, "NetworkClient::Get - warning! deserialized non-StringValue\n");
    return false;
  }
  text->Get(value);
  return true;
}

bool NetworkClient::Get(eParam_t id, std::string& value) {
  static const StreamMessages kMessages = {
      "NetworkClient::Get [Stream] - select failed on port %d (PID:%d)\n",
      "NetworkClient::Get - response error != 0\n", "NetworkClient::Get - invalid streamLength\n",
      "NetworkClient::Get - bytes read do not equal streamLength\n"};
  if (!KnownParam(id, "NetworkClient::Get(string) - invalid paramid 0x%08X \n")) return false;
  return StreamExchange(XCFG_GET_STREAM_PARAM_REQUEST, id, XCFG_GET_STREAM_PARAM_RESPONSE,
                        kMessages, value);
}

eConfigID_t NetworkClient::GetConfigID() { return _config_id; }

timeval NetworkClient::GetLastConfigUpdate() { return timeval{0, 0}; }

ParamDescriptor* NetworkClient::GetParamDescriptor(eParam_t id) { return GetDescriptor(id); }

ParamDescriptor* NetworkClient::GetParamDescriptor(std::string name) { return GetDescriptor(name); }

std::vector<unsigned int> NetworkClient::GetParamIDs() { return ::GetParamIDs(); }

bool NetworkClient::IsDirty(unsigned int, eConfigID_t) { return false; }

uint64_t NetworkClient::LostEvents() const { return _lost_events; }

bool NetworkClient::ConnectionExchange(uint32_t msgtype, uint32_t expected, const char* prefix) {
  SemaphoreHelper lock(&_socket_lock);
  XCONFIGMGR_CONNECTION_REQUEST_T request{
      records::MakeHeader(msgtype, _connection_id, 0, _config_id)};
  char bytes[sizeof request];
  records::Pack(request, bytes);
  ConnectionUtilities::Dump(request);
  ExpectResponse();
  if (!SendMessage(bytes, sizeof bytes)) {
    CancelResponse();
    fprintf(stderr, "%s: send failed\n", prefix);
    return false;
  }
  std::string timeoutFormat = std::string(prefix) + " - select failed on port %d\n";
  std::vector<char> message;
  XCONFIGMGR_CONNECTION_RESPONSE_T response;
  if (AwaitResponse(message, ResponseTimeoutMs(), timeoutFormat.c_str()) != eReadMessage ||
      message.size() < sizeof response) {
    if (msgtype == XCFG_CONNECT_REQUEST)
      fprintf(stderr, "%s - receive failed\n", prefix);
    else
      fprintf(stderr, "%s - recv for connectionID %X failed\n", prefix, _connection_id);
    return false;
  }
  records::Unpack(message.data(), response);
  ConnectionUtilities::Dump(response);
  if (response.header.msgtype != expected) {
    fprintf(stderr, "%s: unexpected msgtype == %d\n", prefix,
            static_cast<int>(response.header.msgtype));
    return false;
  }
  if (!records::IsValidResponse(request.header, response.header)) return false;
  if (response.error != 0) {
    fprintf(stderr, "%s: server responded with error %d\n", prefix,
            static_cast<int>(response.error));
    return false;
  }
  return true;
}

bool NetworkClient::ConfirmConnection() {
  return ConnectionExchange(XCFG_CONNECT_REQUEST, XCFG_CONNECT_RESPONSE,
                            "NetworkClient::ConfirmConnection");
}

bool NetworkClient::ConfirmDisconnect() {
  return ConnectionExchange(XCFG_DISCONNECT_REQUEST, XCFG_DISCONNECT_RESPONSE,
                            "NetworkClient::ConfirmDisconnect");
}

void NetworkClient::RegisterForEvents(unsigned int) {}

void NetworkClient::RegisterForEvents() { RegisterForEvents(0); }

bool NetworkClient::UnregisterForEvents() { return true; }

bool NetworkClient::AddConfigEventListener(ConfigEventListener* listener) {
  if (listener == nullptr) return false;
  SemaphoreHelper lock(&_socket_lock);
  bool first;
  {
    SemaphoreHelper listeners(&_listener_lock);
    first = _listeners.empty();
  }
  if (first) {
    if (!_registered) RegisterForEvents();
    _registered = true;
    StartEventsThread();
  }
  SemaphoreHelper listeners(&_listener_lock);
  if (std::find(_listeners.begin(), _listeners.end(), listener) == _listeners.end())
    _listeners.push_back(listener);
  return true;
}

bool NetworkClient::RemoveConfigEventListener(ConfigEventListener* listener) {
  SemaphoreHelper lock(&_socket_lock);
  bool nowEmpty;
  {
    SemaphoreHelper listeners(&_listener_lock);
    auto it = std::find(_listeners.begin(), _listeners.end(), listener);
    if (it == _listeners.end()) return false;
    _listeners.erase(it);
    nowEmpty = _listeners.empty();
  }
  if (nowEmpty) {
    if (UnregisterForEvents()) _registered = false;
    StopEventsThread();
  }
  return true;
}

void* NetworkClient::EventsThreadEntry(void* arg) {
  static_cast<NetworkClient*>(arg)->ProcessEvents();
  return nullptr;
}

bool NetworkClient::StartEventsThread() {
  if (_events_started) return true;
  if (_wake[0] < 0 && ::pipe2(_wake, O_NONBLOCK | O_CLOEXEC) != 0) {
    perror("NetworkClient::StartEventsThread - unable to start thread");
    return false;
  }
  _stop_events = false;
  _events_reading = true;
  int rc = pthread_create(&_events_thread, nullptr, EventsThreadEntry, this);
  if (rc != 0) {
    _events_reading = false;
    errno = rc;
    perror("NetworkClient::StartEventsThread - unable to start thread");
    return false;
  }
  _events_started = true;
  return true;
}

void NetworkClient::StopEventsThread() {
  if (!_events_started) return;
  if (_socket == nullptr) {
    fprintf(stderr, "NetworkClient::StopEventsThread - NULL socket");
    return;
  }
  // The pipe wakes the thread from its wait on the socket, which stays open
  // for the client's requests.
  _stop_events = true;
  char wake = 1;
  if (::write(_wake[1], &wake, 1) != 1) ::shutdown(_fd, SHUT_RDWR);
  if (pthread_join(_events_thread, nullptr) != 0)
    fprintf(stderr, "NetworkClient::StopEventsThread - thread join failed");
  _events_started = false;
  while (::read(_wake[0], &wake, 1) == 1) {
  }
}

bool NetworkClient::WaitForSocketOrStop() {
  pollfd watched[2] = {{_fd, POLLIN, 0}, {_wake[0], POLLIN, 0}};
  for (;;) {
    if (_stop_events) return false;
    if (HasBufferedInput()) return true;
    int ready = poll(watched, 2, -1);
    if (ready < 0 && errno == EINTR) continue;
    if (ready < 0 || watched[1].revents != 0 || _stop_events) return false;
    if (watched[0].revents != 0) return true;
  }
}

void NetworkClient::EventsReaderEnded() {
  std::lock_guard<std::mutex> hold(_handover_lock);
  _events_reading = false;
  _handover_ready.notify_all();
}

void NetworkClient::ProcessConfigParamEvent(const XCONFIGMGR_RESPONSE_T& event) {
  timeval now = Now();
  SemaphoreHelper listeners(&_listener_lock);
  for (ConfigEventListener* listener : _listeners)
    listener->ParamChanged(event.paramID, event.value, now);
}

namespace {

// The text of an event's payload; false when it holds no string value.
bool DecodeText(const char* payload, size_t length, std::string& text) {
  std::unique_ptr<ConfigValue> decoded(records::DecodePayload(payload, length));
  if (decoded == nullptr) {
    fprintf(stderr, "NetworkClient::ProcessConfigStreamParamEvent - unable to deserialize\n");
    return false;
  }
  StringValue* value = dynamic_cast<StringValue*>(decoded.get());
  if (value == nullptr) {
    fprintf(stderr,
            "NetworkClient::ProcessConfigStreamParamEvent - unable to assign configValue\n");
    return false;
  }
  value->Get(text);
  return true;
}

}  // namespace

void NetworkClient::ProcessConfigStreamParamEvent(uint32_t paramID, const char* payload,
                                                  size_t length) {
  std::string text;
  if (!DecodeText(payload, length, text)) return;
  timeval now = Now();
  SemaphoreHelper listeners(&_listener_lock);
  for (ConfigEventListener* listener : _listeners) listener->ParamChanged(paramID, text, now);
}

void NetworkClient::ProcessConfigDataEvent(uint32_t paramID, const char* payload, size_t length) {
  std::string data;
  if (!DecodeText(payload, length, data)) return;
  timeval now = Now();
  SemaphoreHelper listeners(&_listener_lock);
  for (ConfigEventListener* listener : _listeners) listener->DataChanged(paramID, data, now);
}

}  // namespace access
}  // namespace config
}  // namespace boxline
}  // namespace zyn
