#include "config/access/network_tcp_connection.h"

#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <set>

#include "config/access/connection_utilities.h"
#include "config/access/live_registry.h"
#include "config/access/socket.h"
#include "config/config_factory_impl.h"
#include "config/values/config_value.h"
#include "support/rate_limited_log.h"
#include "support/semaphore_helper.h"

namespace zyn {
namespace boxline {
namespace config {
namespace access {

using namespace ::zyn::config::access;

namespace {

// Every live connection of the process, for a clean shutdown.
// Never destroyed: connection threads may still leave it during exit.
::zyn::config::access::LiveRegistry<NetworkTCPConnection>& Live() {
  static auto* live = new ::zyn::config::access::LiveRegistry<NetworkTCPConnection>();
  return *live;
}

}  // namespace

NetworkTCPConnection::NetworkTCPConnection(Socket* s)
    : config(nullptr),
      socket(s),
      _fd(s->get_fd()),
      _reader(_fd),
      connectionID(0),
      _config_id(0),
      registered(false),
      _listening(false),
      stopped(false),
      _broken(false),
      _cut_off([this](const char* why) { CutOff(why); }) {
  SemaphoreHelper::InitSemaphore(&_state_lock);
  Live().Add(this);
}

NetworkTCPConnection::~NetworkTCPConnection() {
  Live().Remove(this);
  if (_outbox != nullptr) _outbox->Close();  // no send on the descriptor after this
  delete socket;
  SemaphoreHelper::DestroySemaphore(&_state_lock);
}

int NetworkTCPConnection::LiveCount() { return Live().Count(); }

void NetworkTCPConnection::StopAll() { Live().StopAll(); }

bool NetworkTCPConnection::WaitForAll(long timeoutMs) { return Live().WaitForAll(timeoutMs); }

bool NetworkTCPConnection::Start() {
  int rc = ::zyn::config::access::StartDetachedThread(RunThenDelete<NetworkTCPConnection>, this,
                                                      kThreadStackSize);
  if (rc != 0) {
    fprintf(stderr, "NetworkTCPConnection::Start - pthread_create failed\n");
    return false;
  }
  return true;
}

void NetworkTCPConnection::Stop() {
  stopped = true;
  ::shutdown(_fd, SHUT_RDWR);  // wakes the blocked read
}

void NetworkTCPConnection::Run() {
  ProcessMessages();
  ReleaseConfig();
}

void NetworkTCPConnection::ReleaseConfig() {
  if (config == nullptr) return;
  // Leaving the listeners waits for a notification in progress, so no
  // callback reaches the connection, and no writer reads the store for it,
  // once the store is given back.
  if (_listening) config->RemoveConfigEventListener(this);
  _listening = false;
  ConfigFactoryImpl::GetInstance()->Disconnect(config);
  config = nullptr;
}

void NetworkTCPConnection::ProcessMessages() {
  char record[sizeof(XCONFIGMGR_REQUEST_T)];
  while (!stopped) {
    _reader.StartRecord();
    long n = _reader.Read(record, 4);
    if (n == 0) break;  // the client has gone
    if (n != 4) {
      ReportBrokenRecord("socket message");
      break;
    }
    uint32_t msgtype = PeekMessageType(record);
    size_t size = TCPRequestSize(msgtype);
    if (size == 0) {
      RateLimitedLog::Report("NetworkTCPConnection::ProcessMessages - Unknown message type %d",
                             static_cast<int>(msgtype));
      break;
    }
    n = _reader.Read(record + 4, size - 4);
    if (n != static_cast<long>(size - 4)) {
      ReportBrokenRecord(SymbolicName(msgtype));
      break;
    }
    if (!Dispatch(msgtype, record)) break;
  }
}

void NetworkTCPConnection::ReportBrokenRecord(const char* what) {
  unsigned int id = connectionID & 0xFFFF;
  if (_reader.TimedOut()) {
    RateLimitedLog::Report(
        "NetworkTCPConnection::ProcessMessages - %s incomplete after the read time-out of %ld "
        "ms, connection closed (connection pid = 0x%X)",
        what, _read_timeout_ms, id);
    return;
  }
  RateLimitedLog::Report(
      "NetworkTCPConnection::ProcessMessages - error calling recv for %s (connection pid = 0x%X)",
      what, id);
}

bool NetworkTCPConnection::Dispatch(uint32_t msgtype, const char* record) {
  if (msgtype == XCFG_CONNECT_REQUEST || msgtype == XCFG_DISCONNECT_REQUEST) {
    XCONFIGMGR_CONNECTION_REQUEST_T request;
    Unpack(record, request);
    ConnectionUtilities::Dump(request);
    return msgtype == XCFG_CONNECT_REQUEST ? ProcessConnectRequest(request)
                                           : ProcessDisconnectRequest(request);
  }
  // Every other request needs the store a Connect Request opens first.
  if (config == nullptr) {
    RateLimitedLog::Report(
        "NetworkTCPConnection::ProcessMessages - %s before XCFG_CONNECT_REQUEST "
        "(connection pid = 0x%X)",
        SymbolicName(msgtype), connectionID & 0xFFFF);
    return false;
  }
  if (msgtype == XCFG_ADD_CONFIG_EVENT_LISTENER_REQUEST ||
      msgtype == XCFG_REMOVE_CONFIG_EVENT_LISTENER_REQUEST) {
    XCONFIGMGR_EVENT_HANDLER_REQUEST_T request;
    Unpack(record, request);
    ConnectionUtilities::Dump(request);
    return msgtype == XCFG_ADD_CONFIG_EVENT_LISTENER_REQUEST
               ? ProcessAddConfigEventListenerRequest(request)
               : ProcessRemoveConfigEventListenerRequest(request);
  }
  XCONFIGMGR_REQUEST_T request;
  Unpack(record, request);
  // A string set is traced by its handler, with the payload.
  if (msgtype != XCFG_SET_STREAM_PARAM_REQUEST) ConnectionUtilities::Dump(request);
  switch (msgtype) {
    case XCFG_GET_PARAM_REQUEST:
      return ProcessGetRequest(request);
    case XCFG_SET_PARAM_REQUEST:
      return ProcessSetRequest(request);
    case XCFG_GET_STREAM_PARAM_REQUEST:
      return ProcessGetStreamRequest(request);
    default:
      return ProcessSetStreamRequest(request);
  }
}

bool NetworkTCPConnection::ProcessConnectRequest(const XCONFIGMGR_CONNECTION_REQUEST_T& request) {
  ReleaseConfig();  // a second Connect Request moves the connection to its store
  connectionID = request.header.connectionID;
  {
    SemaphoreHelper hold(&_state_lock);
    _config_id = request.header.configID;
  }
  bool refused = false;
  config = ConfigFactoryImpl::GetInstance()->ConnectStore(request.header.configID, &refused);
  if (config == nullptr && !refused) {
    // No answer: the client's own wait for the response ends its attempt.
    RateLimitedLog::Report(
        "NetworkTCPConnection::ProcessConnectRequest - unable to connect to the config");
    return true;
  }
  // A store limit refusal is answered, so the client fails at once.
  XCONFIGMGR_CONNECTION_RESPONSE_T response{AnswerHeader(request.header, XCFG_CONNECT_RESPONSE),
                                            refused ? kXConfigStoreLimitReached : 0u};
  if (!SendRecord(response))
    RateLimitedLog::Report("NetworkTCPConnection::ProcessConnectRequest - unable to send response");
  return true;
}

bool NetworkTCPConnection::ProcessDisconnectRequest(
    const XCONFIGMGR_CONNECTION_REQUEST_T& request) {
  XCONFIGMGR_CONNECTION_RESPONSE_T response{AnswerHeader(request.header, XCFG_DISCONNECT_RESPONSE),
                                            0};
  if (!SendRecord(response))
    RateLimitedLog::Report(
        "NetworkTCPConnection::ProcessDisconnectRequest: unable to send response");
  return true;
}

bool NetworkTCPConnection::ProcessGetRequest(const XCONFIGMGR_REQUEST_T& request) {
  unsigned int value = config->Get(request.paramID);
  XCONFIGMGR_RESPONSE_T response{
      AnswerHeader(request.header, XCFG_GET_PARAM_RESPONSE), request.paramID, 0, value, 0, 0};
  if (!SendRecord(response))
    RateLimitedLog::Report("NetworkTCPConnection::ProcessGetRequest - _socket->send failed");
  return true;
}

bool NetworkTCPConnection::ProcessSetRequest(const XCONFIGMGR_REQUEST_T& request) {
  config->Set(request.paramID, request.value);  // never answered
  return true;
}

bool NetworkTCPConnection::ProcessGetStreamRequest(const XCONFIGMGR_REQUEST_T& request) {
  SendStreamResponse(request);
  return true;
}

bool NetworkTCPConnection::ProcessSetStreamRequest(const XCONFIGMGR_REQUEST_T& request) {
  if (request.streamLength == 0 || request.streamLength > kXConfigStreamBufferSize)
    ConnectionUtilities::Dump(request);  // refused before its payload is read
  if (request.streamLength == 0) {
    RateLimitedLog::Report("NetworkTCPConnection::ProcessSetStreamMessage - invalid streamLength");
    return true;
  }
  // A payload longer than any value cannot be skipped safely: the stream
  // cannot be resynchronised, so the connection ends.
  if (request.streamLength > kXConfigStreamBufferSize) {
    RateLimitedLog::Report("NetworkTCPConnection::ProcessSetStreamMessage - invalid streamLength");
    return false;
  }
  std::vector<char> payload(request.streamLength);
  if (_reader.Read(payload.data(), payload.size()) != static_cast<long>(payload.size())) {
    ReportBrokenRecord(SymbolicName(request.header.msgtype));
    return false;
  }
  ConnectionUtilities::Dump(request, payload.data(), payload.size());
  ConfigValue* value = DecodePayload(payload.data(), payload.size());
  bool applied = value != nullptr && DoSetRequest(config, value);
  delete value;
  if (!applied) {
    XCONFIGMGR_RESPONSE_T response{AnswerHeader(request.header, XCFG_SET_STREAM_PARAM_RESPONSE),
                                   request.paramID,
                                   kXConfigSetStringError,
                                   0,
                                   0,
                                   0};
    SendErrorResponse(response);
  }
  return true;
}

bool NetworkTCPConnection::ProcessAddConfigEventListenerRequest(
    const XCONFIGMGR_EVENT_HANDLER_REQUEST_T& request) {
  {
    SemaphoreHelper hold(&_state_lock);
    if (request.paramID == 0) {
      paramIDs.clear();
    } else if (std::find(paramIDs.begin(), paramIDs.end(), request.paramID) == paramIDs.end()) {
      paramIDs.push_back(request.paramID);
    }
    // Events need the outbox; a connection that only asks and answers has
    // none until a send would block.
    if (_outbox == nullptr) _outbox = Outbox::Make(_fd, _cut_off);
    registered = true;
  }
  // Joining the store's listeners happens outside _state_lock: a writer
  // that notifies holds the store's listener lock and then takes it.
  if (!_listening) {
    _listening = true;
    config->AddConfigEventListener(this);
  }
  return true;
}

bool NetworkTCPConnection::ProcessRemoveConfigEventListenerRequest(
    const XCONFIGMGR_EVENT_HANDLER_REQUEST_T& request) {
  XCONFIGMGR_CONNECTION_RESPONSE_T response{
      AnswerHeader(request.header, XCFG_REMOVE_CONFIG_EVENT_LISTENER_RESPONSE), 0};
  {
    // No events after the response (those handed over before it go
    // first); the store registration is kept, so a later Add Listener
    // Request only switches them on again.
    SemaphoreHelper hold(&_state_lock);
    registered = false;
  }
  if (!SendRecord(response))
    RateLimitedLog::Report(
        "NetworkTCPConnection::ProcessRemoveConfigEventListenerRequest - Unable to send "
        "response!");
  return true;
}

bool NetworkTCPConnection::ParamChanged(unsigned int paramID, unsigned int value, timeval) {
  return PostEvent(false, paramID, value);
}

bool NetworkTCPConnection::ParamChanged(unsigned int paramID, std::string, timeval) {
  // The payload is the store's value when the event is made, on the writer's
  // thread right after its change.
  return PostEvent(true, paramID, 0);
}

bool NetworkTCPConnection::PostEvent(bool text, unsigned int paramID, unsigned int value) {
  SemaphoreHelper hold(&_state_lock);
  if (!registered || _broken) return true;
  if (text) {
    std::vector<char> bytes;
    if (!BuildStreamResponse(StreamChangedEventRequest(connectionID, _config_id, paramID), bytes))
      return false;
    return _outbox->Post(bytes.data(), bytes.size());
  }
  char record[sizeof(XCONFIGMGR_RESPONSE_T)];
  ConnectionUtilities::PackChangedEvent(connectionID, _config_id, paramID, value, record);
  return _outbox->Post(record, sizeof record);
}

void NetworkTCPConnection::CutOff(const char* why) {
  RateLimitedLog::Report("NetworkTCPConnection - client cut off, %s (connection pid = 0x%X)", why,
                         connectionID & 0xFFFF);
  _broken = true;
  ::shutdown(_fd, SHUT_RDWR);  // ends the reading loop
}

bool NetworkTCPConnection::BuildStreamResponse(const XCONFIGMGR_REQUEST_T& request,
                                               std::vector<char>& bytes) {
  uint32_t msgtype = request.header.msgtype == XCFG_GET_STREAM_PARAM_REQUEST
                         ? static_cast<uint32_t>(XCFG_GET_STREAM_PARAM_RESPONSE)
                         : static_cast<uint32_t>(XCFG_PARAM_STREAM_CHANGED_EVENT);
  ConfigValue* value = dynamic_cast<ConfigValue*>(config->GetSerializable(request.paramID));
  std::vector<char> payload;
  if (value != nullptr) payload = EncodePayload(value);
  if (payload.empty()) {
    RateLimitedLog::Report("SendStreamResponse: Invalid serializable value");
    return false;
  }
  XCONFIGMGR_RESPONSE_T response{
      AnswerHeader(request.header, msgtype), request.paramID,         0, 0,
      static_cast<uint32_t>(payload.size()), kXConfigStreamBufferSize};
  bytes = PackWithPayload(response, payload);
  ConnectionUtilities::Dump(response, payload.data(), payload.size());
  return true;
}

bool NetworkTCPConnection::SendStreamResponse(const XCONFIGMGR_REQUEST_T& request) {
  std::vector<char> bytes;
  if (!BuildStreamResponse(request, bytes)) return false;
  if (!Send(bytes.data(), bytes.size())) {
    RateLimitedLog::Report("SendStreamResponse: socket send failed: %s", FailureCause(errno));
    return false;
  }
  return true;
}

bool NetworkTCPConnection::SendErrorResponse(XCONFIGMGR_RESPONSE_T& response) {
  if (response.error == 0)
    RateLimitedLog::Report("WARNING: response.error was not supplied by caller!!!");
  response.streamLength = 0;
  response.streamBufferSize = 0;
  if (!SendRecord(response)) {
    RateLimitedLog::Report("SendErrorResponse: send failed: %s", FailureCause(errno));
    return false;
  }
  return true;
}

template <typename Record>
bool NetworkTCPConnection::SendRecord(const Record& record) {
  char bytes[sizeof(Record)];
  Pack(record, bytes);
  ConnectionUtilities::Dump(record);
  return Send(bytes, sizeof bytes);
}

bool NetworkTCPConnection::Send(const char* bytes, size_t length) {
  return !_broken && Outbox::Send(_outbox, _fd, _cut_off, bytes, length);
}

}  // namespace access
}  // namespace config
}  // namespace boxline
}  // namespace zyn
