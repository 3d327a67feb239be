#include "config/access/network_udp_connection.h"

#include <arpa/inet.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "config/access/connection_utilities.h"
#include "config/access/socket.h"
#include "config/access/stream_io.h"
#include "config/config_factory_impl.h"
#include "config/descriptors/param_descriptor.h"
#include "config/descriptors/param_types.h"
#include "config/values/string_value.h"
#include "support/rate_limited_log.h"
#include "support/semaphore_helper.h"

namespace zyn {
namespace boxline {
namespace config {
namespace access {

using namespace ::zyn::config::access;

namespace {

// The error of a UDP response whose request the store refused.
constexpr uint32_t kRefused = 0xFFFFFFFF;

// A response without payload to `request`.
XCONFIGMGR_RESPONSE_T Response(const XCONFIGMGR_HEADER_T& request, uint32_t msgtype,
                               uint32_t paramID, uint32_t error, uint32_t value) {
  return XCONFIGMGR_RESPONSE_T{AnswerHeader(request, msgtype), paramID, error, value, 0, 0};
}

}  // namespace

NetworkUDPConnection::NetworkUDPConnection(Socket* server)
    : eventSocket(nullptr),
      eventAddress(),
      serverSocket(server),
      eventSequence(0),
      _server_thread(pthread_self()) {
  SemaphoreHelper::InitSemaphore(&_event_lock);
  eventAddress.sin_family = AF_INET;
  eventAddress.sin_port = htons(kDefaultEventPort);
  inet_pton(AF_INET, kEventGroup, &eventAddress.sin_addr);
  eventSocket = new Socket(Socket::kInternetDomain, Socket::kDatagram);
  if (eventSocket == nullptr) {
    fprintf(stderr, "NetworkUDPConnection - failed to new multicast Socket\n");
    return;
  }
  if (!eventSocket->create())
    fprintf(stderr, "NetworkUDPConnection - failed to create multicast Socket\n");
  if (!eventSocket->bind("127.0.0.1", 0)) {
    perror("SocketConnect multicast");
    fprintf(stderr, "NetworkUDPConnection - failed to bind multicast Socket\n");
  }
  eventSocket->set_buffer_size(SO_SNDBUF, kSocketBufferSize);
  // Events stay on the host unless an owner routes them elsewhere.
  SetEventInterface(kDefaultEventInterface);
}

NetworkUDPConnection::~NetworkUDPConnection() {
  for (auto& entry : configs) {
    Unrelay(entry.first);
    ConfigFactoryImpl::GetInstance()->Disconnect(entry.second);
  }
  delete eventSocket;
  SemaphoreHelper::DestroySemaphore(&_event_lock);
}

void NetworkUDPConnection::Relay(unsigned int configID, Config* config) {
  auto* relay = new StoreRelay(this, configID);
  _relays[configID] = relay;
  config->AddConfigEventListener(relay);
}

void NetworkUDPConnection::Unrelay(unsigned int configID) {
  auto relay = _relays.find(configID);
  if (relay == _relays.end()) return;
  auto config = configs.find(configID);
  if (config != configs.end()) config->second->RemoveConfigEventListener(relay->second);
  delete relay->second;
  _relays.erase(relay);
}

bool NetworkUDPConnection::StoreRelay::ParamChanged(eParam_t id, unsigned int value, timeval) {
  if (pthread_equal(pthread_self(), _owner->_server_thread)) return true;
  _owner->ParamChanged(id, _config_id, value);
  return true;
}

bool NetworkUDPConnection::StoreRelay::ParamChanged(eParam_t id, std::string value, timeval) {
  if (pthread_equal(pthread_self(), _owner->_server_thread)) return true;
  StringValue text(eConfigID_Default, id, eCParam_StringValue, value);
  std::vector<char> payload = EncodePayload(&text);
  if (!payload.empty())
    _owner->ParamChanged(id, _config_id, payload.data(), static_cast<unsigned int>(payload.size()));
  return true;
}

void NetworkUDPConnection::SetMulticastPort(int port) {
  eventAddress.sin_port = htons(static_cast<uint16_t>(port));
}

bool NetworkUDPConnection::SetEventInterface(const std::string& address) {
  if (eventSocket == nullptr || !eventSocket->set_multicast_interface(address)) {
    fprintf(stderr, "NetworkUDPConnection::SetEventInterface - invalid interface %s\n",
            address.c_str());
    return false;
  }
  return true;
}

void NetworkUDPConnection::ProcessMessages(char* datagram, int length, sockaddr_in& from) {
  if (length < 4) {
    RateLimitedLog::Report(
        "NetworkUDPConnection::ProcessDatagramMessages - insufficient message length");
    return;
  }
  uint32_t msgtype = PeekMessageType(datagram);
  size_t size = UDPRequestSize(msgtype);
  if (size == 0) {
    RateLimitedLog::Report(
        "NetworkUDPConnection::ProcessDatagramMessages - Unknown message type \"%s\" (0x%X )",
        MessageName(msgtype), msgtype);
    return;
  }
  if (static_cast<size_t>(length) < size) {
    RateLimitedLog::Report(
        "NetworkUDPConnection::ProcessDatagramMessages - insufficient message length");
    return;
  }
  if (msgtype == XCFG_CONNECT_REQUEST || msgtype == XCFG_DISCONNECT_REQUEST) {
    XCONFIGMGR_CONNECTION_REQUEST_T request;
    Unpack(datagram, request);
    ConnectionUtilities::Dump(request);
    if (msgtype == XCFG_CONNECT_REQUEST) {
      ProcessConnectRequest(request, from);
    } else {
      ProcessDisconnectRequest(request, from);
    }
    return;
  }
  XCONFIGMGR_REQUEST_T request;
  Unpack(datagram, request);
  char* payload = datagram + size;
  unsigned int received = static_cast<unsigned int>(length) - static_cast<unsigned int>(size);
  if (msgtype == XCFG_SET_STREAM_PARAM_REQUEST || msgtype == XCFG_SET_DATA_REQUEST) {
    // The claimed length is checked against what actually arrived.
    if (request.streamLength == 0 || request.streamLength > received ||
        request.streamLength > kXConfigStreamBufferSize) {
      RateLimitedLog::Report(
          "NetworkUDPConnection::ProcessSetStreamMessage - invalid streamLength");
      return;
    }
    ConnectionUtilities::Dump(request, payload, request.streamLength);
  } else {
    ConnectionUtilities::Dump(request);
  }
  switch (msgtype) {
    case XCFG_GET_PARAM_REQUEST:
      ProcessGetRequest(request, from);
      break;
    case XCFG_SET_PARAM_REQUEST:
      ProcessSetRequest(request, from);
      break;
    case XCFG_GET_STREAM_PARAM_REQUEST:
      ProcessGetStreamRequest(request, from);
      break;
    case XCFG_SET_STREAM_PARAM_REQUEST:
      ProcessSetStreamRequest(request.header.configID, payload, request.streamLength);
      break;
    case XCFG_GET_DATA_REQUEST:
      ProcessGetDataRequest(request, from);
      break;
    default:
      ProcessSetDataRequest(request, payload, request.streamLength);
      break;
  }
}

Config* NetworkUDPConnection::GetConfig(unsigned int configID) {
  auto it = configs.find(configID);
  if (it == configs.end() && _expired.count(configID) > 0) {
    // Its clients still think it open: it is opened again for them, as a
    // Connect Request would, when the store limit allows.
    bool refused = false;
    Config* config = ConfigFactoryImpl::GetInstance()->ConnectStore(configID, &refused);
    if (config != nullptr) {
      _expired.erase(configID);
      it = configs.emplace(configID, config).first;
      Relay(configID, config);
    }
  }
  if (it == configs.end()) {
    RateLimitedLog::Report("NetworkUDPConnection::GetConfig - ConfigID %d instance not present",
                           static_cast<int>(configID));
    return nullptr;
  }
  _last_used[configID] = std::chrono::steady_clock::now();
  return it->second;
}

int NetworkUDPConnection::ExpireIdleStores() {
  if (_store_idle.count() <= 0) return 0;
  auto now = std::chrono::steady_clock::now();
  int released = 0;
  for (auto it = configs.begin(); it != configs.end();) {
    unsigned int configID = it->first;
    if (configID == 0 || now - _last_used[configID] < _store_idle) {
      ++it;
      continue;
    }
    // The relay leaves first: a released store must not call it. A store
    // someone else still holds keeps its relay and stays open for UDP.
    Unrelay(configID);
    if (!ConfigFactoryImpl::GetInstance()->DisconnectStoreIfUnshared(it->second)) {
      Relay(configID, it->second);
      _last_used[configID] = now;
      ++it;
      continue;
    }
    _last_used.erase(configID);
    _expired.insert(configID);
    it = configs.erase(it);
    ++released;
  }
  if (released > 0)
    fprintf(stderr, "NetworkUDPConnection::ExpireIdleStores - %d idle stores released\n", released);
  return released;
}

void NetworkUDPConnection::ProcessConnectRequest(const XCONFIGMGR_CONNECTION_REQUEST_T& request,
                                                 const sockaddr_in& from) {
  unsigned int configID = request.header.configID;
  bool refused = false;
  Config* config = ConfigFactoryImpl::GetInstance()->ConnectStore(configID, &refused);
  if (refused) {
    // Clients read the answer's first word after the header as the error of
    // a connection response: the refusal is there and in `error` alike.
    XCONFIGMGR_RESPONSE_T response =
        Response(request.header, XCFG_CONNECT_RESPONSE, kXConfigStoreLimitReached,
                 kXConfigStoreLimitReached, 0);
    if (!Answer(response, from))
      RateLimitedLog::Report("NetworkUDPConnection::ProcessConnectRequest - send failed");
    return;
  }
  if (config == nullptr) {
    RateLimitedLog::Report(
        "NetworkUDPConnection::ProcessConnectRequest - unable to connect to the config");
    return;
  }
  // Every client of a config ID shares one open store; a reconnect
  // replaces it without raising the store's use count.
  auto it = configs.find(configID);
  if (it != configs.end()) {
    Unrelay(configID);
    ConfigFactoryImpl::GetInstance()->Disconnect(it->second);
  }
  configs[configID] = config;
  _expired.erase(configID);
  _last_used[configID] = std::chrono::steady_clock::now();
  Relay(configID, config);
  // The UDP form of the answer is a whole 44-byte response record.
  XCONFIGMGR_RESPONSE_T response = Response(request.header, XCFG_CONNECT_RESPONSE, 0, 0, 0);
  if (!Answer(response, from))
    RateLimitedLog::Report("NetworkUDPConnection::ProcessConnectRequest - send failed");
}

void NetworkUDPConnection::ProcessDisconnectRequest(const XCONFIGMGR_CONNECTION_REQUEST_T& request,
                                                    const sockaddr_in& from) {
  // A given-back store is not opened again just to say goodbye.
  if (_expired.erase(request.header.configID) == 0 &&
      GetConfig(request.header.configID) == nullptr) {
    RateLimitedLog::Report(
        "NetworkUDPConnection::ProcessDisconnectRequest - Unable to get ConfigManger for "
        "ConfigID %d",
        static_cast<int>(request.header.configID));
    return;
  }
  // The store stays open for the config ID's other clients.
  XCONFIGMGR_CONNECTION_RESPONSE_T response{AnswerHeader(request.header, XCFG_DISCONNECT_RESPONSE),
                                            0};
  if (!Answer(response, from))
    RateLimitedLog::Report(
        "NetworkUDPConnection::ProcessDisconnectRequest: unable to send response");
}

void NetworkUDPConnection::ProcessGetRequest(const XCONFIGMGR_REQUEST_T& request,
                                             const sockaddr_in& from) {
  Config* config = GetConfig(request.header.configID);
  if (config == nullptr) return;
  XCONFIGMGR_RESPONSE_T response = Response(request.header, XCFG_GET_PARAM_RESPONSE,
                                            request.paramID, 0, config->Get(request.paramID));
  if (!Answer(response, from))
    RateLimitedLog::Report("NetworkUDPConnection::ProcessGetRequest - send failed");
}

void NetworkUDPConnection::ProcessSetRequest(const XCONFIGMGR_REQUEST_T& request,
                                             const sockaddr_in& from) {
  Config* config = GetConfig(request.header.configID);
  if (config == nullptr) return;
  bool accepted = config->Set(request.paramID, request.value);
  unsigned int value = config->Get(request.paramID);
  if (!accepted) {
    ParamDescriptor* descriptor = config->GetParamDescriptor(request.paramID);
    RateLimitedLog::Report(
        "\tNetworkUDPConnection::ProcessSetRequest - Set failed for paramID 0x%08x (%s), "
        "value %d",
        request.paramID, descriptor != nullptr ? descriptor->GetParamIDName().c_str() : "Invalid",
        static_cast<int>(request.value));
  }
  XCONFIGMGR_RESPONSE_T response = Response(request.header, XCFG_SET_PARAM_RESPONSE,
                                            request.paramID, accepted ? 0 : kRefused, value);
  if (!Answer(response, from))
    RateLimitedLog::Report("NetworkUDPConnection::ProcessSetRequest - send failed: %s",
                           FailureCause(errno));
  // Accepted or not, every listener learns the value the store now holds.
  ParamChanged(request.paramID, request.header.configID, value);
  FireDependentParamsChangedEvents(request, request.paramID);
}

void NetworkUDPConnection::ProcessGetStreamRequest(const XCONFIGMGR_REQUEST_T& request,
                                                   const sockaddr_in& from) {
  Config* config = GetConfig(request.header.configID);
  if (config == nullptr) return;
  ConfigValue* value = dynamic_cast<ConfigValue*>(config->GetSerializable(request.paramID));
  std::vector<char> payload;
  if (value != nullptr) payload = EncodePayload(value);
  if (payload.empty()) RateLimitedLog::Report("SendStreamResponse: Invalid serializable value");
  if (!AnswerWithPayload(request, XCFG_GET_STREAM_PARAM_RESPONSE, payload, from))
    RateLimitedLog::Report("NetworkUDPConnection::ProcessGetStreamRequest - send failed");
}

bool NetworkUDPConnection::AnswerWithPayload(const XCONFIGMGR_REQUEST_T& request, uint32_t msgtype,
                                             const std::vector<char>& payload,
                                             const sockaddr_in& to) {
  XCONFIGMGR_RESPONSE_T response = Response(request.header, msgtype, request.paramID, 0, 0);
  if (payload.empty()) {
    // Answered all the same: a client waits for this datagram without a
    // time-out.
    response.error = kRefused;
  } else {
    response.streamLength = static_cast<uint32_t>(payload.size());
    response.streamBufferSize = kXConfigStreamBufferSize;
  }
  ConnectionUtilities::Dump(response, payload.data(), payload.size());
  return Answer(PackWithPayload(response, payload), to);
}

void NetworkUDPConnection::ProcessSetStreamRequest(unsigned int configID, char* payload,
                                                   unsigned int length) {
  Config* config = GetConfig(configID);
  if (config == nullptr) return;
  ConfigValue* value = DecodePayload(payload, length);
  if (value == nullptr) return;
  unsigned int paramID = value->GetParamID();
  bool applied = DoSetRequest(config, value);
  delete value;
  if (applied) ParamChanged(paramID, configID, payload, length);
}

void NetworkUDPConnection::ProcessGetDataRequest(const XCONFIGMGR_REQUEST_T& request,
                                                 const sockaddr_in& from) {
  Config* config = GetConfig(request.header.configID);
  if (config == nullptr) return;
  std::string data;
  std::vector<char> payload;
  if (config->GetData(request.paramID, data)) {
    StringValue value(static_cast<eConfigID_t>(request.header.configID), request.paramID,
                      eCParam_StringValue, data);
    payload = EncodePayload(&value);
  }
  if (payload.empty())
    RateLimitedLog::Report("NetworkUDPConnection::ProcessGetDataRequest - GetData failed");
  if (!AnswerWithPayload(request, XCFG_GET_DATA_RESPONSE, payload, from))
    RateLimitedLog::Report("NetworkUDPConnection::ProcessGetDataRequest - send failed");
}

void NetworkUDPConnection::ProcessSetDataRequest(const XCONFIGMGR_REQUEST_T& request, char* payload,
                                                 unsigned int length) {
  Config* config = GetConfig(request.header.configID);
  if (config == nullptr) return;
  ConfigValue* value = DecodePayload(payload, length);
  StringValue* text = dynamic_cast<StringValue*>(value);
  if (text == nullptr) {
    if (value != nullptr)
      RateLimitedLog::Report(
          "NetworkUDPConnection::ProcessSetDataRequest - type error, configValue is not a "
          "StringValue");
    delete value;
    return;
  }
  std::string data;
  text->Get(data);
  delete value;
  if (config->SetData(request.paramID, data)) DataChanged(request, payload, length);
}

void NetworkUDPConnection::ParamChanged(unsigned int paramID, unsigned int configID,
                                        unsigned int value) {
  SemaphoreHelper hold(&_event_lock);
  XCONFIGMGR_RESPONSE_T event{MakeHeader(XCFG_PARAM_CHANGED_EVENT, 0, eventSequence++, configID),
                              paramID,
                              0,
                              value,
                              0,
                              kXConfigStreamBufferSize};
  if (!MulticastLocked(event, {}))
    RateLimitedLog::Report("NetworkUDPConnection::ParamChanged: %s", FailureCause(errno));
}

void NetworkUDPConnection::ParamChanged(unsigned int paramID, unsigned int configID,
                                        const char* payload, unsigned int length) {
  XCONFIGMGR_RESPONSE_T event{MakeHeader(XCFG_PARAM_STREAM_CHANGED_EVENT, 0, 0, configID),
                              paramID,
                              0,
                              0,
                              length,
                              kXConfigStreamBufferSize};
  if (!Multicast(event, std::vector<char>(payload, payload + length)))
    RateLimitedLog::Report("NetworkUDPConnection::ParamChanged: %s", FailureCause(errno));
}

void NetworkUDPConnection::DataChanged(const XCONFIGMGR_REQUEST_T& request, const char* payload,
                                       unsigned int length) {
  XCONFIGMGR_RESPONSE_T event{request.header, request.paramID,         0, 0,
                              length,         kXConfigStreamBufferSize};
  event.header.msgtype = XCFG_PARAM_DATA_CHANGED_EVENT;
  event.header.bufferSize = kXConfigBufferSize;
  if (!Multicast(event, std::vector<char>(payload, payload + length)))
    RateLimitedLog::Report("NetworkUDPConnection::DataChanged: %s", FailureCause(errno));
}

void NetworkUDPConnection::FireDependentParamsChangedEvents(const XCONFIGMGR_REQUEST_T& request,
                                                            unsigned int paramID) {
  // Dependants are announced from the default store, whichever store the
  // request addressed.
  Config* config = GetConfig(0);
  if (config == nullptr) {
    RateLimitedLog::Report(
        "NetworkUDPConnection::FireDependentParamsChangedEvents - GetConfig returned NULL");
    return;
  }
  ParamDescriptor* changed = config->GetParamDescriptor(paramID);
  if (changed == nullptr) return;
  for (unsigned int dependant : changed->GetDependentParamIDs()) {
    ParamDescriptor* descriptor = config->GetParamDescriptor(dependant);
    if (descriptor == nullptr) continue;
    if (descriptor->HasClassName(kDataClassName)) {
      std::string data;
      if (!config->GetData(dependant, data)) {
        RateLimitedLog::Report(
            "NetworkUDPConnection::FireDependentParamsChangedEvents - GetData failed for %s",
            descriptor->GetParamIDName().c_str());
        continue;
      }
      StringValue value(static_cast<eConfigID_t>(0), dependant, eCParam_StringValue, data);
      std::vector<char> payload = EncodePayload(&value);
      XCONFIGMGR_REQUEST_T event = request;
      event.header.configID = 0;
      event.paramID = dependant;
      DataChanged(event, payload.data(), static_cast<unsigned int>(payload.size()));
    } else if (descriptor->GetParamType() == eCParam_StringValue) {
      ConfigValue* value = dynamic_cast<ConfigValue*>(config->GetSerializable(dependant));
      std::vector<char> payload;
      if (value != nullptr) payload = EncodePayload(value);
      ParamChanged(dependant, 0, payload.data(), static_cast<unsigned int>(payload.size()));
    } else {
      ParamChanged(dependant, 0, config->Get(dependant));
    }
  }
}

bool NetworkUDPConnection::Answer(const std::vector<char>& bytes, const sockaddr_in& to) {
  return serverSocket->sendto(bytes.data(), static_cast<int>(bytes.size()), to);
}

template <typename Record>
bool NetworkUDPConnection::Answer(const Record& record, const sockaddr_in& to) {
  char bytes[sizeof(Record)];
  Pack(record, bytes);
  ConnectionUtilities::Dump(record);
  return serverSocket->sendto(bytes, sizeof bytes, to);
}

bool NetworkUDPConnection::Multicast(const XCONFIGMGR_RESPONSE_T& event,
                                     const std::vector<char>& payload) {
  SemaphoreHelper hold(&_event_lock);
  return MulticastLocked(event, payload);
}

bool NetworkUDPConnection::MulticastLocked(const XCONFIGMGR_RESPONSE_T& event,
                                           const std::vector<char>& payload) {
  if (eventSocket == nullptr) return false;
  ConnectionUtilities::Dump(event, payload.data(), payload.size());
  std::vector<char> bytes = PackWithPayload(event, payload);
  return eventSocket->sendto(bytes.data(), static_cast<int>(bytes.size()), eventAddress);
}

}  // namespace access
}  // namespace config
}  // namespace boxline
}  // namespace zyn
