#include "configctl/conformance/cases.h"

#include <cstring>
#include <memory>

#include "config/values/integer_value.h"
#include "config/values/string_value.h"

namespace configctl {
namespace conformance {

using namespace zyn::config::access;

namespace {

constexpr unsigned kStream = kSocket | kTcp;
constexpr unsigned kAll = kSocket | kTcp | kUdp;
constexpr uint32_t kUnknownType = 999;
constexpr uint32_t kUdpRefused = 0xFFFFFFFF;
constexpr size_t kDatagramLimit = 24 * 1024;
constexpr size_t kResponseSize = sizeof(XCONFIGMGR_RESPONSE_T);
constexpr size_t kConnectionSize = sizeof(XCONFIGMGR_CONNECTION_RESPONSE_T);
// Words of a response that a case leaves to others.
constexpr uint32_t kAllButHead = ~(Word(0) | Word(1) | Word(2) | Word(3));

std::vector<char> Head(const std::vector<char>& bytes, size_t size) {
  return std::vector<char>(bytes.begin(), bytes.begin() + std::min(size, bytes.size()));
}

XCONFIGMGR_RESPONSE_T Response(const XCONFIGMGR_HEADER_T& request, uint32_t msgtype,
                               uint32_t paramID, uint32_t error, uint32_t value,
                               uint32_t streamLength = 0, uint32_t streamBufferSize = 0) {
  return XCONFIGMGR_RESPONSE_T{
      AnswerHeader(request, msgtype), paramID, error, value, streamLength, streamBufferSize};
}

XCONFIGMGR_CONNECTION_RESPONSE_T ConnectionResponse(const XCONFIGMGR_HEADER_T& request,
                                                    uint32_t msgtype) {
  return XCONFIGMGR_CONNECTION_RESPONSE_T{AnswerHeader(request, msgtype), 0};
}

// Sends a record and takes its answer (`size` bytes on a stream).
template <typename Record>
bool Exchange(Session& s, Link& link, const Record& record, size_t size, std::vector<char>& answer,
              const std::vector<char>& payload = {}) {
  return s.Send(link, record, payload) &&
         s.Answer(link, size, answer, MessageName(record.header.msgtype));
}

// Sends something the server must not answer, then proves it did not (the
// stream stays in step too).
template <typename Record>
bool Unanswered(Session& s, Link& link, const Record& record,
                const std::vector<char>& payload = {}) {
  return s.Send(link, record, payload) && s.Fence(link, MessageName(record.header.msgtype));
}

// A stream record the server cannot take ends that connection alone.
bool EndsConnectionOnly(Session& s, Link& link, const std::vector<char>& bytes,
                        const std::string& what) {
  if (!link.probe.Send(bytes)) return s.Fail("could not send " + what);
  if (!link.probe.Ended(Session::kAnswerMs))
    return s.Fail("the connection stayed open after " + what);
  return s.Serving(what);
}

// Sends raw bytes the UDP server must drop without an answer.
bool DatagramDropped(Session& s, const std::vector<char>& bytes, const std::string& what) {
  std::unique_ptr<Link> link = s.Connect();
  if (link == nullptr) return false;
  if (!link->probe.Send(bytes)) return s.Fail("could not send " + what);
  return s.Fence(*link, what);
}

template <typename Record>
std::vector<char> Bytes(const Record& record, size_t size = sizeof(Record)) {
  std::vector<char> bytes(std::max(size, sizeof(Record)));
  Pack(record, bytes.data());
  bytes.resize(size);
  return bytes;
}

// ---- connection exchange --------------------------------------------------

bool ConnectReply(Session& s) {
  std::unique_ptr<Link> link = s.Open();
  if (link == nullptr) return false;
  XCONFIGMGR_CONNECTION_REQUEST_T request{s.Header(*link, XCFG_CONNECT_REQUEST)};
  std::vector<char> answer;
  return Exchange(s, *link, request, kConnectionSize, answer) &&
         s.Expect(Head(answer, kConnectionSize), ConnectionResponse(request.header, 32), 0,
                  "Connect Response");
}

// 28 bytes on a stream; over UDP a whole 44-byte response record, zero
// after bufferSize.
bool ConnectSize(Session& s) {
  std::unique_ptr<Link> link = s.Open();
  if (link == nullptr) return false;
  XCONFIGMGR_CONNECTION_REQUEST_T request{s.Header(*link, XCFG_CONNECT_REQUEST)};
  std::vector<char> answer;
  if (!Exchange(s, *link, request, kConnectionSize, answer)) return false;
  if (s.Stream()) return s.Fence(*link, "the Connect Response's last word");
  return s.Expect(answer, Response(request.header, XCFG_CONNECT_RESPONSE, 0, 0, 0),
                  Word(0) | Word(1) | Word(2) | Word(3) | Word(4) | Word(5), "Connect Response");
}

bool ConnectAgain(Session& s) {
  std::unique_ptr<Link> link = s.Connect();
  if (link == nullptr) return false;
  link->connectionID += 0x10000;
  XCONFIGMGR_CONNECTION_REQUEST_T request{s.Header(*link, XCFG_CONNECT_REQUEST)};
  std::vector<char> answer;
  return Exchange(s, *link, request, kConnectionSize, answer) &&
         s.Expect(Head(answer, kConnectionSize), ConnectionResponse(request.header, 32), 0,
                  "second Connect Response");
}

bool ConnectTwoClients(Session& s) {
  std::unique_ptr<Link> first = s.Connect();
  std::unique_ptr<Link> second = s.Connect();
  if (first == nullptr || second == nullptr) return false;
  XCONFIGMGR_REQUEST_T a = s.Request(*first, XCFG_GET_PARAM_REQUEST, s.target().integerParam);
  XCONFIGMGR_REQUEST_T b = s.Request(*second, XCFG_GET_PARAM_REQUEST, s.target().integerParam);
  std::vector<char> answerA, answerB;
  return s.Send(*first, a) && s.Send(*second, b) &&
         s.Answer(*second, kResponseSize, answerB, "Get Request") &&
         s.Answer(*first, kResponseSize, answerA, "Get Request") &&
         s.Expect(answerB, Response(b.header, 96, 0, 0, 0), kAllButHead, "second client") &&
         s.Expect(answerA, Response(a.header, 96, 0, 0, 0), kAllButHead, "first client");
}

// ---- integer Get and Set --------------------------------------------------

bool GetReply(Session& s) {
  std::unique_ptr<Link> link = s.Connect();
  if (link == nullptr) return false;
  uint32_t param = s.target().integerParam;
  XCONFIGMGR_REQUEST_T request = s.Request(*link, XCFG_GET_PARAM_REQUEST, param);
  std::vector<char> answer;
  return Exchange(s, *link, request, kResponseSize, answer) &&
         s.Expect(answer, Response(request.header, 96, param, 0, 0), Word(8), "Get Response");
}

bool GetSize(Session& s) {
  std::unique_ptr<Link> link = s.Connect();
  if (link == nullptr) return false;
  XCONFIGMGR_REQUEST_T request = s.Request(*link, XCFG_GET_PARAM_REQUEST, s.target().integerParam);
  std::vector<char> answer;
  if (!Exchange(s, *link, request, kResponseSize, answer)) return false;
  if (s.Stream()) return s.Fence(*link, "the Get Response's last word");
  return answer.size() == kResponseSize ||
         s.Fail("Get Response: expected 44 bytes, got " + std::to_string(answer.size()));
}

// Requests sent back to back are answered in order, each with its own ID.
bool GetRequestIDs(Session& s) {
  std::unique_ptr<Link> link = s.Connect();
  if (link == nullptr) return false;
  std::vector<XCONFIGMGR_REQUEST_T> requests;
  for (int i = 0; i < 3; ++i) {
    requests.push_back(s.Request(*link, XCFG_GET_PARAM_REQUEST, s.target().integerParam));
    if (!s.Send(*link, requests.back())) return false;
  }
  for (const XCONFIGMGR_REQUEST_T& request : requests) {
    std::vector<char> answer;
    if (!s.Answer(*link, kResponseSize, answer, "Get Request") ||
        !s.Expect(answer, Response(request.header, 96, 0, 0, 0), kAllButHead, "Get Response"))
      return false;
  }
  return true;
}

bool GetUnknownParam(Session& s) {
  std::unique_ptr<Link> link = s.Connect();
  if (link == nullptr) return false;
  uint32_t param = s.target().unknownParam;
  XCONFIGMGR_REQUEST_T request = s.Request(*link, XCFG_GET_PARAM_REQUEST, param);
  std::vector<char> answer;
  return Exchange(s, *link, request, kResponseSize, answer) &&
         s.Expect(answer, Response(request.header, 96, param, 0, 0),
                  Word(7) | Word(8) | Word(9) | Word(10), "Get Response") &&
         s.Fence(*link, "a Get of an unknown parameter");
}

// A stream Set is never answered; the value is in the store afterwards.
bool SetUnanswered(Session& s) {
  std::unique_ptr<Link> link = s.Connect();
  uint32_t param = s.target().integerScratch;
  uint32_t before = 0, after = 0;
  if (link == nullptr || !s.GetInteger(*link, param, before)) return false;
  uint32_t wanted = s.OtherInteger(before);
  if (!Unanswered(s, *link, s.Request(*link, XCFG_SET_PARAM_REQUEST, param, wanted)) ||
      !s.GetInteger(*link, param, after))
    return false;
  return after == wanted || s.Fail("the Set was not applied: value " + std::to_string(after) +
                                   ", expected " + std::to_string(wanted));
}

bool SetResponse(Session& s) {
  std::unique_ptr<Link> link = s.Connect();
  uint32_t param = s.target().integerScratch;
  uint32_t before = 0;
  if (link == nullptr || !s.GetInteger(*link, param, before)) return false;
  uint32_t wanted = s.OtherInteger(before);
  XCONFIGMGR_REQUEST_T request = s.Request(*link, XCFG_SET_PARAM_REQUEST, param, wanted);
  std::vector<char> answer;
  return Exchange(s, *link, request, kResponseSize, answer) &&
         s.Expect(answer, Response(request.header, 97, param, 0, wanted), 0, "Set Response");
}

// A refused Set: silence on a stream; over UDP a Set Response with error
// 0xFFFFFFFF and the value read back.
bool SetRefused(Session& s) {
  std::unique_ptr<Link> link = s.Connect();
  uint32_t param = s.target().unknownParam;
  uint32_t current = 0;
  if (link == nullptr || !s.GetInteger(*link, param, current)) return false;
  XCONFIGMGR_REQUEST_T request = s.Request(*link, XCFG_SET_PARAM_REQUEST, param, 5);
  if (s.Stream()) return Unanswered(s, *link, request);
  std::vector<char> answer;
  return Exchange(s, *link, request, kResponseSize, answer) &&
         s.Expect(answer, Response(request.header, 97, param, kUdpRefused, current), 0,
                  "Set Response to a refused Set");
}

// ---- string streams -------------------------------------------------------

// Takes a Get String Response and its payload; the payload decoded.
std::unique_ptr<ConfigValue> GetStream(Session& s, Link& link, uint32_t param,
                                       std::vector<char>& answer, XCONFIGMGR_REQUEST_T& request) {
  request = s.Request(link, XCFG_GET_STREAM_PARAM_REQUEST, param);
  if (!Exchange(s, link, request, kResponseSize, answer)) return nullptr;
  XCONFIGMGR_RESPONSE_T response;
  Unpack(answer.data(), response);
  std::vector<char> payload(answer.begin() + kResponseSize, answer.end());
  if (s.Stream() && response.streamLength <= kXConfigStreamBufferSize &&
      !s.Answer(link, response.streamLength, payload, "Get String Request (payload)"))
    return nullptr;
  answer.resize(kResponseSize);
  if (payload.size() != response.streamLength) {
    s.Fail("streamLength " + std::to_string(response.streamLength) + " but " +
           std::to_string(payload.size()) + " payload bytes");
    return nullptr;
  }
  std::unique_ptr<ConfigValue> value(DecodePayload(payload.data(), payload.size()));
  if (value == nullptr) s.Fail("the payload does not decode to a value");
  return value;
}

bool GetStringReply(Session& s) {
  std::unique_ptr<Link> link = s.Connect();
  if (link == nullptr) return false;
  uint32_t param = s.target().stringParam;
  std::vector<char> answer;
  XCONFIGMGR_REQUEST_T request;
  std::unique_ptr<ConfigValue> value = GetStream(s, *link, param, answer, request);
  if (!s.Expect(answer, Response(request.header, 128, param, 0, 0, 0, kXConfigStreamBufferSize),
                Word(9), "Get String Response") ||
      value == nullptr)
    return false;
  if (dynamic_cast<StringValue*>(value.get()) == nullptr || value->GetParamID() != param)
    return s.Fail("the payload is not the parameter's StringValue");
  return true;
}

bool GetStringOfInteger(Session& s) {
  std::unique_ptr<Link> link = s.Connect();
  if (link == nullptr) return false;
  uint32_t param = s.target().integerParam, number = 0;
  std::vector<char> answer;
  XCONFIGMGR_REQUEST_T request;
  std::unique_ptr<ConfigValue> value = GetStream(s, *link, param, answer, request);
  if (!s.Expect(answer, Response(request.header, 128, param, 0, 0, 0, kXConfigStreamBufferSize),
                Word(9), "Get String Response") ||
      value == nullptr || !s.GetInteger(*link, param, number))
    return false;
  auto* integer = dynamic_cast<IntegerValue*>(value.get());
  unsigned int held = 0;
  if (integer != nullptr) integer->Get(held);
  if (integer == nullptr || held != number)
    return s.Fail("the payload is not an IntegerValue holding " + std::to_string(number));
  return true;
}

bool SetStringRoundTrip(Session& s) {
  std::unique_ptr<Link> link = s.Connect();
  uint32_t param = s.target().stringScratch;
  std::string before, after;
  if (link == nullptr || !s.GetText(*link, param, before)) return false;
  std::string wanted = s.OtherText(before);
  std::vector<char> payload = Session::TextPayload(param, wanted);
  XCONFIGMGR_REQUEST_T request = s.Request(*link, XCFG_SET_STREAM_PARAM_REQUEST, param, 0,
                                           static_cast<uint32_t>(payload.size()));
  if (!Unanswered(s, *link, request, payload) || !s.GetText(*link, param, after)) return false;
  return after == wanted || s.Fail("read back \"" + after + "\" after setting \"" + wanted + "\"");
}

// A Set String the store refuses: answered with error 15 on a stream, not
// at all over UDP; the connection goes on either way.
bool RefusedStringSet(Session& s, const std::vector<char>& payload, const std::string& what) {
  std::unique_ptr<Link> link = s.Connect();
  if (link == nullptr) return false;
  uint32_t param = s.target().unknownParam;
  XCONFIGMGR_REQUEST_T request = s.Request(*link, XCFG_SET_STREAM_PARAM_REQUEST, param, 0,
                                           static_cast<uint32_t>(payload.size()));
  if (!s.Stream()) return Unanswered(s, *link, request, payload);
  std::vector<char> answer;
  return Exchange(s, *link, request, kResponseSize, answer, payload) &&
         s.Expect(answer, Response(request.header, 129, param, kXConfigSetStringError, 0), 0,
                  what) &&
         s.Fence(*link, what);
}

bool SetStringRefused(Session& s) {
  return RefusedStringSet(s, Session::TextPayload(s.target().unknownParam, "refused"),
                          "Set String Response");
}

// A payload of exactly 3072 bytes is read whole.
bool Payload3072(Session& s) {
  uint32_t param = s.target().unknownParam;
  size_t overhead = Session::TextPayload(param, "").size();
  std::vector<char> payload =
      Session::TextPayload(param, std::string(kXConfigStreamBufferSize - overhead, 'x'));
  if (payload.size() != kXConfigStreamBufferSize)
    return s.Fail("could not build a 3072-byte payload");
  return RefusedStringSet(s, payload, "Set String Response (3072-byte payload)");
}

// One byte more: a stream connection is closed (it cannot be resynchronised),
// a datagram dropped.
bool Payload3073(Session& s) {
  std::unique_ptr<Link> link = s.Connect();
  if (link == nullptr) return false;
  XCONFIGMGR_REQUEST_T request =
      s.Request(*link, XCFG_SET_STREAM_PARAM_REQUEST, s.target().unknownParam, 0,
                kXConfigStreamBufferSize + 1);
  std::vector<char> bytes = Bytes(request);
  bytes.resize(bytes.size() + kXConfigStreamBufferSize + 1, 'x');
  if (s.Stream()) return EndsConnectionOnly(s, *link, bytes, "a 3073-byte payload");
  return link->probe.Send(bytes) && s.Fence(*link, "a 3073-byte payload");
}

bool ZeroStreamLength(Session& s) {
  std::unique_ptr<Link> link = s.Connect();
  if (link == nullptr) return false;
  return Unanswered(s, *link,
                    s.Request(*link, XCFG_SET_STREAM_PARAM_REQUEST, s.target().stringParam));
}

bool BadPayload(Session& s) {
  return RefusedStringSet(s, std::vector<char>(16, '\xFF'), "Set String Response (bad payload)");
}

// A Get padded to the largest datagram is taken whole and answered.
bool DatagramAtLimit(Session& s) {
  std::unique_ptr<Link> link = s.Connect();
  if (link == nullptr) return false;
  uint32_t param = s.target().integerParam;
  XCONFIGMGR_REQUEST_T request = s.Request(*link, XCFG_GET_PARAM_REQUEST, param);
  std::vector<char> answer;
  return link->probe.Send(Bytes(request, kDatagramLimit)) &&
         s.Answer(*link, kResponseSize, answer, "a 24576-byte Get Request") &&
         s.Expect(answer, Response(request.header, 96, param, 0, 0), Word(8), "Get Response");
}

// A Set String datagram beyond the limit is neither answered nor applied.
bool DatagramOverLimit(Session& s) {
  std::unique_ptr<Link> link = s.Connect();
  if (link == nullptr) return false;
  uint32_t param = s.target().stringParam;
  std::string before, after;
  const size_t size = kDatagramLimit + 1024;
  XCONFIGMGR_REQUEST_T request = s.Request(*link, XCFG_SET_STREAM_PARAM_REQUEST, param, 0,
                                           static_cast<uint32_t>(size - sizeof request));
  return s.GetText(*link, param, before) && link->probe.Send(Bytes(request, size)) &&
         s.Fence(*link, "an oversized datagram") && s.GetText(*link, param, after) &&
         (before == after || s.Fail("an oversized datagram changed the value"));
}

bool StreamLengthBeyondDatagram(Session& s) {
  std::unique_ptr<Link> link = s.Connect();
  if (link == nullptr) return false;
  XCONFIGMGR_REQUEST_T request =
      s.Request(*link, XCFG_SET_STREAM_PARAM_REQUEST, s.target().stringParam, 0, 200);
  return link->probe.Send(Bytes(request, sizeof request + 20)) &&
         s.Fence(*link, "a streamLength beyond the datagram");
}

// ---- unknown types and short datagrams ------------------------------------

bool RejectType(Session& s, uint32_t msgtype) {
  std::unique_ptr<Link> link = s.Connect();
  if (link == nullptr) return false;
  XCONFIGMGR_REQUEST_T request = s.Request(*link, msgtype, s.target().stringParam);
  std::string what = std::string("a record of type ") + std::to_string(msgtype);
  if (s.Stream()) return EndsConnectionOnly(s, *link, Bytes(request), what);
  return Unanswered(s, *link, request) && s.Serving(what);
}

bool UnknownType(Session& s) { return RejectType(s, kUnknownType); }
bool PopulateRejected(Session& s) { return RejectType(s, XCFG_POPULATE_PARAM_REQUEST); }
bool DataRequestRejected(Session& s) { return RejectType(s, XCFG_GET_DATA_REQUEST); }

bool ListenerOverUdp(Session& s) {
  std::unique_ptr<Link> link = s.Connect();
  if (link == nullptr) return false;
  XCONFIGMGR_EVENT_HANDLER_REQUEST_T request{
      s.Header(*link, XCFG_ADD_CONFIG_EVENT_LISTENER_REQUEST), 0};
  return Unanswered(s, *link, request);
}

bool ShortDatagram(Session& s) {
  return DatagramDropped(s, std::vector<char>{'\x50', 0, 0}, "a 3-byte datagram");
}

bool TruncatedDatagram(Session& s) {
  XCONFIGMGR_REQUEST_T request{MakeHeader(XCFG_GET_PARAM_REQUEST, 1, 1, 0), s.target().integerParam,
                               0, 0, 0};
  return DatagramDropped(s, Bytes(request, 20), "a 20-byte Get Request");
}

bool UnconnectedStore(Session& s) {
  std::unique_ptr<Link> link = s.Connect();
  if (link == nullptr) return false;
  XCONFIGMGR_REQUEST_T request = s.Request(*link, XCFG_GET_PARAM_REQUEST, s.target().integerParam);
  request.header.configID = 4242;
  return Unanswered(s, *link, request);
}

// ---- listeners and events -------------------------------------------------

bool AddListener(Session& s, Link& link, uint32_t param) {
  XCONFIGMGR_EVENT_HANDLER_REQUEST_T request{s.Header(link, XCFG_ADD_CONFIG_EVENT_LISTENER_REQUEST),
                                             param};
  return Unanswered(s, link, request);
}

bool RemoveListener(Session& s, Link& link) {
  XCONFIGMGR_EVENT_HANDLER_REQUEST_T request{
      s.Header(link, XCFG_REMOVE_CONFIG_EVENT_LISTENER_REQUEST), 0};
  std::vector<char> answer;
  return Exchange(s, link, request, kConnectionSize, answer) &&
         s.Expect(answer, ConnectionResponse(request.header, 65), 0, "Remove Listener Response");
}

bool AddListenerUnanswered(Session& s) {
  std::unique_ptr<Link> link = s.Connect();
  return link != nullptr && AddListener(s, *link, 0);
}

bool RemoveListenerReply(Session& s) {
  std::unique_ptr<Link> link = s.Connect();
  return link != nullptr && AddListener(s, *link, 0) && RemoveListener(s, *link) &&
         s.Fence(*link, "the Remove Listener Response's last word");
}

// A registered connection `events` and another that changes the integer
// scratch to a new value.
struct Change {
  std::unique_ptr<Link> events, setter;
  uint32_t value = 0;
};

bool ChangeInteger(Session& s, Change& change, uint32_t listenFor) {
  change.events = s.Connect();
  change.setter = s.Connect();
  uint32_t param = s.target().integerScratch, before = 0;
  if (change.events == nullptr || change.setter == nullptr ||
      !AddListener(s, *change.events, listenFor) || !s.GetInteger(*change.setter, param, before))
    return false;
  change.value = s.OtherInteger(before);
  return s.SetInteger(*change.setter, param, change.value) &&
         s.Fence(*change.setter, "the Set Request");
}

bool ParamChangedEvent(Session& s) {
  Change change;
  std::vector<char> event;
  uint32_t param = s.target().integerScratch;
  return ChangeInteger(s, change, 0) && s.NextEvent(change.events->probe, 144, param, event) &&
         s.Expect(event,
                  zyn::config::access::ParamChangedEvent(change.events->connectionID, 0, param,
                                                         change.value),
                  0, "Param Changed Event");
}

// Registered for another parameter only: the local server filters, the TCP
// server sends every change.
bool EventFilter(Session& s) {
  Change change;
  std::vector<char> event;
  uint32_t param = s.target().integerScratch;
  if (!ChangeInteger(s, change, s.target().stringParam)) return false;
  if (s.Is(kTcp)) return s.NextEvent(change.events->probe, 144, param, event);
  return change.events->probe.Quiet(Session::kQuietMs) ||
         s.Fail("an event came for a parameter the listener did not name");
}

bool EventsEndWithRemove(Session& s) {
  std::unique_ptr<Link> events = s.Connect();
  if (events == nullptr || !AddListener(s, *events, 0) || !RemoveListener(s, *events)) return false;
  std::unique_ptr<Link> setter = s.Connect();
  uint32_t param = s.target().integerScratch, before = 0;
  if (setter == nullptr || !s.GetInteger(*setter, param, before) ||
      !s.SetInteger(*setter, param, s.OtherInteger(before)) || !s.Fence(*setter, "the Set"))
    return false;
  return events->probe.Quiet(Session::kQuietMs) || s.Fail("an event came after Remove Listener");
}

bool StringChangedEvent(Session& s) {
  std::unique_ptr<Link> events = s.Connect();
  std::unique_ptr<Link> setter = s.Connect();
  uint32_t param = s.target().stringScratch;
  std::string before;
  if (events == nullptr || setter == nullptr || !AddListener(s, *events, 0) ||
      !s.GetText(*setter, param, before))
    return false;
  std::string wanted = s.OtherText(before);
  std::vector<char> event;
  if (!s.SetText(*setter, param, wanted) || !s.NextEvent(events->probe, 145, param, event))
    return false;
  XCONFIGMGR_RESPONSE_T expected{MakeHeader(145, events->connectionID, kXConfigEventRequestID, 0),
                                 param,
                                 0,
                                 0,
                                 0,
                                 kXConfigStreamBufferSize};
  std::unique_ptr<ConfigValue> value(
      DecodePayload(event.data() + kResponseSize, event.size() - kResponseSize));
  bool same = s.Expect(Head(event, kResponseSize), expected, Word(9), "Param String Changed Event");
  std::string text;
  if (!Session::TextOf(value.get(), text) || text != wanted)
    return s.Fail("the event's payload is not the new text \"" + wanted + "\"");
  return same;
}

// Over UDP: the change multicast to the event group.
bool MulticastEvent(Session& s) {
  std::unique_ptr<Probe> group = s.Events();
  std::unique_ptr<Link> link = s.Connect();
  uint32_t param = s.target().integerScratch, before = 0;
  if (group == nullptr || link == nullptr || !s.GetInteger(*link, param, before)) return false;
  uint32_t wanted = s.OtherInteger(before);
  std::vector<char> event;
  return s.SetInteger(*link, param, wanted) && s.NextEvent(*group, 144, param, event) &&
         s.Expect(event, zyn::config::access::ParamChangedEvent(0, 0, param, wanted), Word(2),
                  "multicast Param Changed Event");
}

// The event counter goes up by one with every Param Changed Event.
bool EventSequence(Session& s) {
  std::unique_ptr<Probe> group = s.Events();
  std::unique_ptr<Link> link = s.Connect();
  uint32_t param = s.target().integerScratch, before = 0, others = 0;
  if (group == nullptr || link == nullptr || !s.GetInteger(*link, param, before)) return false;
  std::vector<char> first, second;
  if (!s.SetInteger(*link, param, s.OtherInteger(before)) ||
      !s.NextEvent(*group, 144, param, first) || !s.SetInteger(*link, param, before) ||
      !s.NextEvent(*group, 144, param, second, &others))
    return false;
  XCONFIGMGR_RESPONSE_T a, b;
  Unpack(first.data(), a);
  Unpack(second.data(), b);
  if (b.header.requestID == a.header.requestID + others + 1) return true;
  return s.Fail("sequence counter went from " + std::to_string(a.header.requestID) + " to " +
                std::to_string(b.header.requestID) + " over " + std::to_string(others + 1) +
                " events");
}

bool RefusedSetMulticast(Session& s) {
  std::unique_ptr<Probe> group = s.Events();
  std::unique_ptr<Link> link = s.Connect();
  uint32_t param = s.target().unknownParam, current = 0;
  if (group == nullptr || link == nullptr || !s.GetInteger(*link, param, current)) return false;
  std::vector<char> event;
  return s.SetInteger(*link, param, 5) && s.NextEvent(*group, 144, param, event) &&
         s.Expect(event, zyn::config::access::ParamChangedEvent(0, 0, param, current), Word(2),
                  "Param Changed Event after a refused Set");
}

bool StringMulticast(Session& s) {
  std::unique_ptr<Probe> group = s.Events();
  std::unique_ptr<Link> link = s.Connect();
  uint32_t param = s.target().stringScratch;
  std::string before;
  if (group == nullptr || link == nullptr || !s.GetText(*link, param, before)) return false;
  std::vector<char> payload = Session::TextPayload(param, s.OtherText(before)), event;
  if (!s.SetText(*link, param, s.OtherText(before)) || !s.NextEvent(*group, 145, param, event))
    return false;
  XCONFIGMGR_RESPONSE_T expected{
      MakeHeader(145, 0, 0, 0), param, 0, 0, static_cast<uint32_t>(payload.size()),
      kXConfigStreamBufferSize};
  bool same = s.Expect(Head(event, kResponseSize), expected, 0, "Param String Changed Event");
  if (std::vector<char>(event.begin() + std::min(kResponseSize, event.size()), event.end()) !=
      payload)
    return s.Fail("the event's payload differs from the request's");
  return same;
}

// ---- Disconnect -----------------------------------------------------------

bool DisconnectReply(Session& s) {
  std::unique_ptr<Link> link = s.Connect();
  if (link == nullptr) return false;
  XCONFIGMGR_CONNECTION_REQUEST_T request{s.Header(*link, XCFG_DISCONNECT_REQUEST)};
  std::vector<char> answer;
  return Exchange(s, *link, request, kConnectionSize, answer) &&
         s.Expect(answer, ConnectionResponse(request.header, 33), 0, "Disconnect Response");
}

// The connection is the client's to close.
bool DisconnectKeepsConnection(Session& s) {
  std::unique_ptr<Link> link = s.Connect();
  if (link == nullptr) return false;
  XCONFIGMGR_CONNECTION_REQUEST_T request{s.Header(*link, XCFG_DISCONNECT_REQUEST)};
  std::vector<char> answer;
  return Exchange(s, *link, request, kConnectionSize, answer) &&
         s.Fence(*link, "the Disconnect Response's last word");
}

// ---- malformed records ----------------------------------------------------

bool HalfRecord(Session& s, bool hangUp) {
  std::unique_ptr<Link> link = s.Connect();
  if (link == nullptr) return false;
  XCONFIGMGR_REQUEST_T request = s.Request(*link, XCFG_GET_PARAM_REQUEST, s.target().integerParam);
  if (!link->probe.Send(Bytes(request, 20))) return s.Fail("could not send half a record");
  if (hangUp) link->probe.Close();
  return s.Serving(hangUp ? "a client hung up mid-record" : "while a client stalls mid-record");
}

bool TruncatedRecord(Session& s) { return HalfRecord(s, true); }
bool StalledRecord(Session& s) { return HalfRecord(s, false); }

bool HugeStreamLength(Session& s) {
  std::unique_ptr<Link> link = s.Connect();
  if (link == nullptr) return false;
  XCONFIGMGR_REQUEST_T request =
      s.Request(*link, XCFG_SET_STREAM_PARAM_REQUEST, s.target().stringParam, 0, 0xFFFFFFFF);
  return EndsConnectionOnly(s, *link, Bytes(request), "a streamLength of 0xFFFFFFFF");
}

bool GarbageBurst(Session& s) {
  std::unique_ptr<Link> link = s.Connect();
  if (link == nullptr) return false;
  for (uint32_t i = 0; i < 64; ++i) {
    std::vector<char> bytes(1 + (i * 397) % 300, static_cast<char>(i * 31));
    if (bytes.size() >= 4) memcpy(bytes.data(), &i, 4);             // types 0..63
    if (i == 16 || i == 17 || i == 48 || i == 49) bytes.resize(3);  // requests: cut short
    if (!link->probe.Send(bytes)) return s.Fail("could not send garbage");
  }
  return s.Fence(*link, "garbage datagrams") && s.Serving("garbage datagrams");
}

const Case kCases[] = {
    {"connect.reply", "connection", kAll, Scratch::kNone, ConnectReply},
    {"connect.size", "connection", kAll, Scratch::kNone, ConnectSize},
    {"connect.again", "connection", kAll, Scratch::kNone, ConnectAgain},
    {"connect.two-clients", "connection", kAll, Scratch::kNone, ConnectTwoClients},
    {"get.reply", "integer", kAll, Scratch::kNone, GetReply},
    {"get.size", "integer", kAll, Scratch::kNone, GetSize},
    {"get.request-ids", "integer", kAll, Scratch::kNone, GetRequestIDs},
    {"get.unknown-param", "integer", kAll, Scratch::kNone, GetUnknownParam},
    {"set.unanswered", "integer", kStream, Scratch::kInteger, SetUnanswered},
    {"set.response", "integer", kUdp, Scratch::kInteger, SetResponse},
    {"set.refused", "refused", kAll, Scratch::kNone, SetRefused},
    {"string.get-reply", "string", kAll, Scratch::kNone, GetStringReply},
    {"string.get-integer", "string", kAll, Scratch::kNone, GetStringOfInteger},
    {"string.set-roundtrip", "string", kAll, Scratch::kString, SetStringRoundTrip},
    {"string.set-refused", "refused", kAll, Scratch::kNone, SetStringRefused},
    {"string.payload-3072", "string", kAll, Scratch::kNone, Payload3072},
    {"string.payload-3073", "string", kAll, Scratch::kNone, Payload3073},
    {"string.zero-length", "string", kAll, Scratch::kNone, ZeroStreamLength},
    {"datagram.at-limit", "string", kUdp, Scratch::kNone, DatagramAtLimit},
    {"datagram.over-limit", "string", kUdp, Scratch::kNone, DatagramOverLimit},
    {"datagram.length-mismatch", "string", kUdp, Scratch::kNone, StreamLengthBeyondDatagram},
    {"unknown.type", "unknown", kAll, Scratch::kNone, UnknownType},
    {"unknown.populate", "unknown", kAll, Scratch::kNone, PopulateRejected},
    {"unknown.data-request", "unknown", kStream, Scratch::kNone, DataRequestRejected},
    {"unknown.listener", "unknown", kUdp, Scratch::kNone, ListenerOverUdp},
    {"unknown.short-datagram", "unknown", kUdp, Scratch::kNone, ShortDatagram},
    {"unknown.truncated-datagram", "unknown", kUdp, Scratch::kNone, TruncatedDatagram},
    {"unknown.config-id", "unknown", kUdp, Scratch::kNone, UnconnectedStore},
    {"events.add-unanswered", "events", kStream, Scratch::kNone, AddListenerUnanswered},
    {"events.remove-reply", "events", kStream, Scratch::kNone, RemoveListenerReply},
    {"events.param-changed", "events", kStream, Scratch::kInteger, ParamChangedEvent},
    {"events.filter", "events", kStream, Scratch::kInteger, EventFilter},
    {"events.after-remove", "events", kStream, Scratch::kInteger, EventsEndWithRemove},
    {"events.string-changed", "events", kStream, Scratch::kString, StringChangedEvent},
    {"events.multicast", "events", kUdp, Scratch::kInteger, MulticastEvent},
    {"events.sequence", "events", kUdp, Scratch::kInteger, EventSequence},
    {"events.refused-set", "events", kUdp, Scratch::kNone, RefusedSetMulticast},
    {"events.string-multicast", "events", kUdp, Scratch::kString, StringMulticast},
    {"disconnect.reply", "disconnect", kAll, Scratch::kNone, DisconnectReply},
    {"disconnect.keeps-connection", "disconnect", kStream, Scratch::kNone,
     DisconnectKeepsConnection},
    {"malformed.truncated", "malformed", kStream, Scratch::kNone, TruncatedRecord},
    {"malformed.stalled", "malformed", kStream, Scratch::kNone, StalledRecord},
    {"malformed.bad-payload", "malformed", kAll, Scratch::kNone, BadPayload},
    {"malformed.huge-length", "malformed", kStream, Scratch::kNone, HugeStreamLength},
    {"malformed.garbage", "malformed", kUdp, Scratch::kNone, GarbageBurst},
};

}  // namespace

const Case* Cases(size_t& count) {
  count = sizeof kCases / sizeof kCases[0];
  return kCases;
}

}  // namespace conformance
}  // namespace configctl
