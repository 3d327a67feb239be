#include "config/access/socket_connection.h"

#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <set>
#include <vector>

#include "config/access/connection_utilities.h"
#include "config/access/live_registry.h"
#include "config/access/socket.h"
#include "config/access/stream_io.h"
#include "config/config_factory_impl.h"
#include "config/values/integer_value.h"
#include "config/values/string_value.h"
#include "support/rate_limited_log.h"
#include "support/semaphore_helper.h"

namespace zyn {
namespace config {
namespace access {

namespace {

// Every live connection of the process, for a clean shutdown.
// Never destroyed: connection threads may still leave it during exit.
::zyn::config::access::LiveRegistry<SocketConnection>& Live() {
  static auto* live = new ::zyn::config::access::LiveRegistry<SocketConnection>();
  return *live;
}

}  // namespace

SocketConnection::SocketConnection(Socket* socket)
    : _store(nullptr),
      _socket(socket),
      _fd(socket->get_fd()),
      _reader(_fd),
      _connection_id(0),
      _registered(false),
      _listening(false),
      _stop(false),
      _broken(false),
      _cut_off([this](const char* why) { CutOff(why); }) {
  SemaphoreHelper::InitSemaphore(&_state_lock);
  Live().Add(this);
}

SocketConnection::~SocketConnection() {
  Live().Remove(this);
  if (_outbox != nullptr) _outbox->Close();  // no send on the descriptor after this
  delete _socket;
  SemaphoreHelper::DestroySemaphore(&_state_lock);
}

int SocketConnection::LiveCount() { return Live().Count(); }

void SocketConnection::StopAll() { Live().StopAll(); }

bool SocketConnection::WaitForAll(long timeoutMs) { return Live().WaitForAll(timeoutMs); }

bool SocketConnection::Start() {
  int rc = ::zyn::config::access::StartDetachedThread(RunThenDelete<SocketConnection>, this,
                                                      kThreadStackSize);
  if (rc != 0) {
    errno = rc;
    perror("SocketConnection::Start");
    fprintf(stderr, "SocketConnection::Start - pthread_create failed\n");
    return false;
  }
  return true;
}

void SocketConnection::Stop() {
  _stop = true;
  ::shutdown(_fd, SHUT_RDWR);  // wakes the blocked read
}

void SocketConnection::Run() {
  ProcessMessages();
  ReleaseStore();
}

void SocketConnection::ReleaseStore() {
  if (_store == nullptr) return;
  // Leaving the listeners waits for a notification in progress, so no
  // writer reads the store for this connection once it is given back.
  if (_listening) _store->RemoveConfigEventListener(this);
  _listening = false;
  ConfigFactoryImpl::GetInstance()->Disconnect(_store);
  _store = nullptr;
}

void SocketConnection::ProcessMessages() {
  char record[sizeof(XCONFIGMGR_REQUEST_T)];
  while (!_stop) {
    _reader.StartRecord();
    long n = _reader.Read(record, 4);
    if (n == 0) break;  // the client has gone
    if (n != 4) {
      ReportBrokenRecord("message type");
      break;
    }
    uint32_t msgtype = PeekMessageType(record);
    size_t size = LocalRequestSize(msgtype);
    if (size == 0) {
      RateLimitedLog::Report("SocketConnection::ProcessMessages - Unknown message type %d",
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

void SocketConnection::ReportBrokenRecord(const char* what) {
  if (_reader.TimedOut()) {
    RateLimitedLog::Report(
        "SocketConnection::ProcessMessages - %s incomplete after the read time-out of %ld ms, "
        "connection closed (connection pid = 0x%X)",
        what, _read_timeout_ms, _connection_id.load());
    return;
  }
  RateLimitedLog::Report(
      "SocketConnection::ProcessMessages - error calling recv for %s (connection pid = 0x%X)", what,
      _connection_id.load());
}

bool SocketConnection::Dispatch(uint32_t msgtype, const char* record) {
  if (msgtype == XCFG_CONNECT_REQUEST || msgtype == XCFG_DISCONNECT_REQUEST) {
    XCONFIGMGR_CONNECTION_REQUEST_T request;
    Unpack(record, request);
    ConnectionUtilities::Dump(request);
    if (msgtype == XCFG_CONNECT_REQUEST) return ProcessConnectRequest(request);
    if (_store == nullptr) return false;
    return ProcessDisconnectRequest(request);
  }
  // Every other request needs the store a Connect Request opens first.
  if (_store == nullptr) {
    RateLimitedLog::Report(
        "SocketConnection::ProcessMessages - %s before XCFG_CONNECT_REQUEST "
        "(connection pid = 0x%X)",
        SymbolicName(msgtype), _connection_id.load());
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

bool SocketConnection::ProcessConnectRequest(const XCONFIGMGR_CONNECTION_REQUEST_T& request) {
  ReleaseStore();  // a second Connect Request moves the connection to its store
  _connection_id = request.header.connectionID;
  bool refused = false;
  _store = ConfigFactoryImpl::GetInstance()->ConnectStore(request.header.configID, &refused);
  uint32_t error = 0;
  if (_store == nullptr) error = refused ? kXConfigStoreLimitReached : kXConfigStoreUnavailable;
  XCONFIGMGR_CONNECTION_RESPONSE_T response{AnswerHeader(request.header, XCFG_CONNECT_RESPONSE),
                                            error};
  if (!SendRecord(response))
    RateLimitedLog::Report("SocketConnection::ProcessConnectRequest - unable to send response");
  return true;
}

bool SocketConnection::ProcessDisconnectRequest(const XCONFIGMGR_CONNECTION_REQUEST_T& request) {
  XCONFIGMGR_CONNECTION_RESPONSE_T response{AnswerHeader(request.header, XCFG_DISCONNECT_RESPONSE),
                                            0};
  if (!SendRecord(response)) {
    RateLimitedLog::Report(
        "SocketConnection::ProcessDisconnectRequest - unable to send response: %s",
        FailureCause(errno));
  }
  return true;
}

bool SocketConnection::ProcessGetRequest(const XCONFIGMGR_REQUEST_T& request) {
  unsigned int value = _store->Get(request.paramID);
  XCONFIGMGR_RESPONSE_T response{
      AnswerHeader(request.header, XCFG_GET_PARAM_RESPONSE), request.paramID, 0, value, 0, 0};
  if (!SendRecord(response))
    RateLimitedLog::Report("SocketConnection::ProcessGetRequest - _socket->send failed");
  return true;
}

bool SocketConnection::ProcessSetRequest(const XCONFIGMGR_REQUEST_T& request) {
  _store->Set(request.paramID, request.value);  // never answered
  return true;
}

bool SocketConnection::ProcessGetStreamRequest(const XCONFIGMGR_REQUEST_T& request) {
  SendStreamResponse(request);
  return true;
}

bool SocketConnection::ProcessSetStreamRequest(const XCONFIGMGR_REQUEST_T& request) {
  if (request.streamLength == 0 || request.streamLength > kXConfigStreamBufferSize)
    ConnectionUtilities::Dump(request);  // refused before its payload is read
  if (request.streamLength == 0) {
    RateLimitedLog::Report("SocketConnection::ProcessSetStreamMessage - invalid streamLength");
    return true;
  }
  // A payload longer than any value cannot be skipped safely: the stream
  // cannot be resynchronised, so the connection ends.
  if (request.streamLength > kXConfigStreamBufferSize) {
    RateLimitedLog::Report("SocketConnection::ProcessSetStreamMessage - invalid streamLength");
    return false;
  }
  std::vector<char> payload(request.streamLength);
  if (_reader.Read(payload.data(), payload.size()) != static_cast<long>(payload.size())) {
    // The peer closed, stalled or failed mid-payload: errno tells nothing
    // in the first two cases.
    ReportBrokenRecord("the payload of XCFG_SET_STREAM_PARAM_REQUEST");
    return false;
  }
  ConnectionUtilities::Dump(request, payload.data(), payload.size());
  ConfigValue* value = DecodePayload(payload.data(), payload.size());
  int result = value != nullptr ? DoSetRequest(value) : 0;
  delete value;
  if (result == 0) {
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

int SocketConnection::DoSetRequest(ConfigValue* value) {
  switch (value->GetClassID()) {
    case eClassID_IntegerValue: {
      IntegerValue* integer = dynamic_cast<IntegerValue*>(value);
      if (integer == nullptr) {
        RateLimitedLog::Report(
            "SocketConnection::DoSetRequest - type error, configValue is not an IntegerValue");
        return 0;
      }
      unsigned int v;
      integer->Get(v);
      return _store->Set(integer->GetParamID(), v);
    }
    case eClassID_StringValue: {
      StringValue* text = dynamic_cast<StringValue*>(value);
      if (text == nullptr) {
        RateLimitedLog::Report(
            "SocketConnection::DoSetRequest - type error, configValue is not a StringValue");
        return 0;
      }
      std::string v;
      text->Get(v);
      return _store->Set(text->GetParamID(), v);
    }
    default:
      RateLimitedLog::Report(
          "SocketConnection::DoSetRequest - returning error (unsupported classID)");
      return 0;
  }
}

bool SocketConnection::ProcessAddConfigEventListenerRequest(
    const XCONFIGMGR_EVENT_HANDLER_REQUEST_T& request) {
  {
    SemaphoreHelper lock(&_state_lock);
    if (request.paramID == 0) {
      _filter.clear();
    } else if (std::find(_filter.begin(), _filter.end(), request.paramID) == _filter.end()) {
      _filter.push_back(request.paramID);
    }
    // Events need the outbox; a connection that only asks and answers has
    // none until a send would block.
    if (_outbox == nullptr) _outbox = Outbox::Make(_fd, _cut_off);
    _registered = true;
  }
  // Joining the store's listeners happens outside _state_lock: a writer
  // notifying holds the store's listener lock and then takes _state_lock.
  if (!_listening) {
    _listening = true;
    _store->AddConfigEventListener(this);
  }
  return true;
}

bool SocketConnection::ProcessRemoveConfigEventListenerRequest(
    const XCONFIGMGR_EVENT_HANDLER_REQUEST_T& request) {
  XCONFIGMGR_CONNECTION_RESPONSE_T response{
      AnswerHeader(request.header, XCFG_REMOVE_CONFIG_EVENT_LISTENER_RESPONSE), 0};
  {
    SemaphoreHelper lock(&_state_lock);
    _registered = false;  // the filter and the store registration are kept
  }
  // Events handed over before it go first; none follows it.
  if (!SendRecord(response))
    RateLimitedLog::Report(
        "SocketConnection::ProcessRemoveConfigEventListenerRequest - Unable to send "
        "response!");
  return true;
}

bool SocketConnection::WantsEvent(unsigned int paramID) {
  if (!_registered || _broken) return false;
  return _filter.empty() || std::find(_filter.begin(), _filter.end(), paramID) != _filter.end();
}

bool SocketConnection::ParamChanged(unsigned int paramID, unsigned int value, timeval) {
  return PostEvent(false, paramID, value);
}

bool SocketConnection::ParamChanged(unsigned int paramID, std::string, timeval) {
  // The payload is the store's value when the event is made, on the writer's
  // thread right after its change.
  return PostEvent(true, paramID, 0);
}

bool SocketConnection::PostEvent(bool text, unsigned int paramID, unsigned int value) {
  SemaphoreHelper lock(&_state_lock);
  if (!WantsEvent(paramID)) return true;
  const uint32_t configID = static_cast<uint32_t>(_store->GetConfigID());
  if (text) {
    std::vector<char> bytes;
    if (!BuildStreamResponse(StreamChangedEventRequest(_connection_id, configID, paramID), bytes)) {
      RateLimitedLog::Report(
          "SocketConnection::ParamChanged - call to SendStreamResponse failed, unable to send "
          "event to %d",
          static_cast<int>(_connection_id));
      return false;
    }
    return _outbox->Post(bytes.data(), bytes.size());
  }
  char record[sizeof(XCONFIGMGR_RESPONSE_T)];
  ConnectionUtilities::PackChangedEvent(_connection_id, configID, paramID, value, record);
  return _outbox->Post(record, sizeof record);
}

void SocketConnection::CutOff(const char* why) {
  RateLimitedLog::Report("SocketConnection - client cut off, %s (connection pid = 0x%X)", why,
                         static_cast<unsigned>(_connection_id));
  _broken = true;
  ::shutdown(_fd, SHUT_RDWR);  // ends the reading loop
}

bool SocketConnection::BuildStreamResponse(const XCONFIGMGR_REQUEST_T& request,
                                           std::vector<char>& bytes) {
  uint32_t msgtype;
  switch (request.header.msgtype) {
    case XCFG_GET_STREAM_PARAM_REQUEST:
      msgtype = XCFG_GET_STREAM_PARAM_RESPONSE;
      break;
    case XCFG_SET_STREAM_PARAM_REQUEST:
      msgtype = XCFG_SET_STREAM_PARAM_RESPONSE;
      break;
    case XCFG_PARAM_STREAM_CHANGED_EVENT:
      msgtype = XCFG_PARAM_STREAM_CHANGED_EVENT;
      break;
    default:
      RateLimitedLog::Report("SocketConnection::SendStreamResponse - Invalid msgtype");
      return false;
  }
  ConfigValue* value = dynamic_cast<ConfigValue*>(_store->GetSerializable(request.paramID));
  if (value == nullptr) {
    RateLimitedLog::Report("SendStreamResponse: Invalid serializable value");
    return false;
  }
  std::vector<char> payload = EncodePayload(value);
  if (payload.empty()) {
    RateLimitedLog::Report("SendStreamResponse: Invalid serializable value");
    return false;
  }
  XCONFIGMGR_RESPONSE_T response{
      AnswerHeader(request.header, msgtype), request.paramID,         0, 0,
      static_cast<uint32_t>(payload.size()), kXConfigStreamBufferSize};
  bytes.resize(sizeof response + payload.size());
  Pack(response, bytes.data());
  memcpy(bytes.data() + sizeof response, payload.data(), payload.size());
  ConnectionUtilities::Dump(response, payload.data(), payload.size());
  return true;
}

bool SocketConnection::SendStreamResponse(const XCONFIGMGR_REQUEST_T& request) {
  std::vector<char> bytes;
  if (!BuildStreamResponse(request, bytes)) return false;
  if (!Send(bytes.data(), bytes.size())) {
    RateLimitedLog::Report("SendStreamResponse: socket send failed: %s", FailureCause(errno));
    return false;
  }
  return true;
}

bool SocketConnection::SendErrorResponse(XCONFIGMGR_RESPONSE_T& response) {
  response.streamLength = 0;
  response.streamBufferSize = 0;
  return SendError(response);
}

bool SocketConnection::SendErrorResponse(XCONFIGMGR_CONNECTION_RESPONSE_T& response) {
  return SendError(response);
}

template <typename Response>
bool SocketConnection::SendError(const Response& response) {
  if (response.error == 0)
    RateLimitedLog::Report("WARNING: response.error was not supplied by caller!!!");
  if (!SendRecord(response)) {
    RateLimitedLog::Report("SendErrorResponse: mq_send failed: %s", FailureCause(errno));
    return false;
  }
  return true;
}

template <typename Record>
bool SocketConnection::SendRecord(const Record& record) {
  char bytes[sizeof(Record)];
  Pack(record, bytes);
  ConnectionUtilities::Dump(record);
  return Send(bytes, sizeof bytes);
}

bool SocketConnection::Send(const char* bytes, size_t length) {
  return !_broken && Outbox::Send(_outbox, _fd, _cut_off, bytes, length);
}

}  // namespace access
}  // namespace config
}  // namespace zyn
