#include "configctl/conformance/session.h"

#include <chrono>
#include <cstdio>
#include <cstring>

#include "config/access/connection_utilities.h"
#include "config/descriptors/enum_descriptor.h"
#include "config/descriptors/param_descriptors.h"
#include "config/values/integer_value.h"
#include "config/values/string_value.h"

namespace configctl {
namespace conformance {

using namespace zyn::config::access;

namespace {

constexpr const char* kEventGroup = "239.18.27.18";

constexpr const char* kHeaderWords[] = {"msgtype",  "connectionID", "requestID",
                                        "configID", "flags",        "bufferSize"};
constexpr const char* kRequestWords[] = {"paramID", "value", "streamLength", "reserved"};
constexpr const char* kResponseWords[] = {"paramID", "error", "value", "streamLength",
                                          "streamBufferSize"};

// The field name of word `index` of a record of `size` bytes.
const char* WordName(size_t size, size_t index) {
  if (index < 6) return kHeaderWords[index];
  if (size == sizeof(XCONFIGMGR_CONNECTION_RESPONSE_T)) return "error";
  if (size == sizeof(XCONFIGMGR_REQUEST_T)) return kRequestWords[index - 6];
  return kResponseWords[index - 6];
}

uint32_t WordAt(const std::vector<char>& bytes, size_t index) {
  uint32_t word = 0;
  memcpy(&word, bytes.data() + 4 * index, sizeof word);
  return word;
}

}  // namespace

const char* TransportName(Transport transport) {
  switch (transport) {
    case kSocket:
      return "socket";
    case kTcp:
      return "tcp";
    case kUdp:
      return "udp";
  }
  return "?";
}

bool Session::Fail(const std::string& line) {
  if (!_detail.empty()) _detail += "\n";
  _detail += line;
  return false;
}

std::unique_ptr<Link> Session::Open() {
  auto link = std::make_unique<Link>();
  std::string error;
  if (!link->probe.Open(_target.host, _target.port, !Stream(), kAnswerMs, error)) {
    Fail(error);
    return nullptr;
  }
  link->connectionID = ConnectionUtilities::GetConnectionID();
  return link;
}

std::unique_ptr<Link> Session::Connect() {
  std::unique_ptr<Link> link = Open();
  if (link == nullptr) return nullptr;
  XCONFIGMGR_CONNECTION_REQUEST_T request{Header(*link, XCFG_CONNECT_REQUEST)};
  std::vector<char> answer;
  if (!Send(*link, request) ||
      !Answer(*link, sizeof(XCONFIGMGR_CONNECTION_RESPONSE_T), answer, "Connect Request"))
    return nullptr;
  if (WordAt(answer, 0) != XCFG_CONNECT_RESPONSE || WordAt(answer, 6) != 0) {
    Fail("Connect Request answered by msgtype " + std::to_string(WordAt(answer, 0)) +
         " with error " + std::to_string(WordAt(answer, 6)));
    return nullptr;
  }
  return link;
}

std::unique_ptr<Probe> Session::Events() {
  auto events = std::make_unique<Probe>();
  std::string error;
  if (!events->Listen(kEventGroup, _target.eventPort, error)) {
    Skip(error);
    return nullptr;
  }
  return events;
}

XCONFIGMGR_HEADER_T Session::Header(const Link& link, uint32_t msgtype) {
  return MakeHeader(msgtype, link.connectionID, _nextRequest++, 0);
}

XCONFIGMGR_REQUEST_T Session::Request(const Link& link, uint32_t msgtype, uint32_t paramID,
                                      uint32_t value, uint32_t streamLength) {
  return XCONFIGMGR_REQUEST_T{Header(link, msgtype), paramID, value, streamLength, 0};
}

bool Session::Answer(Link& link, size_t size, std::vector<char>& bytes, const std::string& what) {
  if (link.probe.Receive(size, kAnswerMs, bytes) && bytes.size() >= 4) return true;
  if (bytes.empty())
    return Fail("no answer to " + what + " within " + std::to_string(kAnswerMs) + " ms");
  return Fail("answer to " + what + " cut short: " + std::to_string(bytes.size()) + " of " +
              std::to_string(size) + " bytes");
}

bool Session::Compare(const std::vector<char>& actual, const std::vector<char>& expected,
                      uint32_t ignore, const std::string& what) {
  bool same = true;
  if (actual.size() != expected.size())
    same = Fail(what + ": expected " + std::to_string(expected.size()) + " bytes, got " +
                std::to_string(actual.size()));
  size_t words = std::min(actual.size(), expected.size()) / 4;
  for (size_t i = 0; i < words; ++i) {
    if ((ignore & Word(static_cast<int>(i))) != 0) continue;
    uint32_t want = WordAt(expected, i);
    uint32_t got = WordAt(actual, i);
    if (want == got) continue;
    char line[160];
    snprintf(line, sizeof line, "%s: word %zu (%s): expected %08X, got %08X", what.c_str(), i,
             WordName(expected.size(), i), want, got);
    same = Fail(line);
  }
  return same;
}

bool Session::Fence(Link& link, const std::string& what) {
  XCONFIGMGR_REQUEST_T get = Request(link, XCFG_GET_PARAM_REQUEST, _target.integerParam);
  std::vector<char> answer;
  if (!Send(link, get) || !Answer(link, sizeof(XCONFIGMGR_RESPONSE_T), answer, "Get Request"))
    return false;
  XCONFIGMGR_RESPONSE_T response;
  Unpack(answer.data(), response);
  if (response.header.msgtype == XCFG_GET_PARAM_RESPONSE &&
      response.header.requestID == get.header.requestID)
    return true;
  return Fail(what + " was answered (msgtype " + std::to_string(response.header.msgtype) +
              ", requestID " + std::to_string(response.header.requestID) +
              ") where nothing should come");
}

bool Session::Serving(const std::string& after) {
  std::unique_ptr<Link> link = Connect();
  uint32_t value = 0;
  if (link != nullptr && GetInteger(*link, _target.integerParam, value)) return true;
  return Fail("the server stopped serving new clients after " + after);
}

bool Session::GetInteger(Link& link, uint32_t paramID, uint32_t& value) {
  XCONFIGMGR_REQUEST_T get = Request(link, XCFG_GET_PARAM_REQUEST, paramID);
  std::vector<char> answer;
  if (!Send(link, get) || !Answer(link, sizeof(XCONFIGMGR_RESPONSE_T), answer, "Get Request"))
    return false;
  XCONFIGMGR_RESPONSE_T response;
  Unpack(answer.data(), response);
  if (response.header.msgtype != XCFG_GET_PARAM_RESPONSE || response.error != 0)
    return Fail("Get Request answered by msgtype " + std::to_string(response.header.msgtype) +
                " with error " + std::to_string(response.error));
  value = response.value;
  return true;
}

bool Session::GetText(Link& link, uint32_t paramID, std::string& text) {
  XCONFIGMGR_REQUEST_T get = Request(link, XCFG_GET_STREAM_PARAM_REQUEST, paramID);
  std::vector<char> answer;
  if (!Send(link, get) ||
      !Answer(link, sizeof(XCONFIGMGR_RESPONSE_T), answer, "Get String Request"))
    return false;
  XCONFIGMGR_RESPONSE_T response;
  Unpack(answer.data(), response);
  if (response.header.msgtype != XCFG_GET_STREAM_PARAM_RESPONSE || response.error != 0 ||
      response.streamLength == 0 || response.streamLength > kXConfigStreamBufferSize)
    return Fail("Get String Request answered by msgtype " +
                std::to_string(response.header.msgtype) + ", error " +
                std::to_string(response.error) + ", streamLength " +
                std::to_string(response.streamLength));
  std::vector<char> payload;
  if (Stream()) {
    if (!Answer(link, response.streamLength, payload, "Get String Request (payload)")) return false;
  } else {
    payload.assign(answer.begin() + sizeof response, answer.end());
  }
  std::unique_ptr<ConfigValue> value(DecodePayload(payload.data(), payload.size()));
  if (value == nullptr || payload.size() != response.streamLength)
    return Fail("the Get String Response's payload does not decode to one value");
  return TextOf(value.get(), text) || Fail("the Get String Response's payload is not a value");
}

bool Session::TextOf(ConfigValue* value, std::string& text) {
  if (auto* string = dynamic_cast<StringValue*>(value)) {
    string->Get(text);
    return true;
  }
  auto* integer = dynamic_cast<IntegerValue*>(value);
  unsigned int number = 0;
  if (integer == nullptr) return false;
  integer->Get(number);
  text = std::to_string(number);
  return true;
}

bool Session::SetInteger(Link& link, uint32_t paramID, uint32_t value, std::vector<char>* answer) {
  if (!Send(link, Request(link, XCFG_SET_PARAM_REQUEST, paramID, value))) return false;
  if (Stream()) return true;
  std::vector<char> ignored;
  return Answer(link, sizeof(XCONFIGMGR_RESPONSE_T), answer ? *answer : ignored, "Set Request");
}

std::vector<char> Session::TextPayload(uint32_t paramID, const std::string& text) {
  StringValue value(static_cast<eConfigID_t>(0), paramID, eCParam_StringValue, text);
  return EncodePayload(&value);
}

bool Session::SetText(Link& link, uint32_t paramID, const std::string& text) {
  std::vector<char> payload = TextPayload(paramID, text);
  uint32_t length = static_cast<uint32_t>(payload.size());
  return Send(link, Request(link, XCFG_SET_STREAM_PARAM_REQUEST, paramID, 0, length), payload);
}

uint32_t Session::OtherInteger(uint32_t current) const {
  auto* descriptor = dynamic_cast<IntegerDescriptor*>(GetDescriptor(_target.integerScratch));
  if (descriptor == nullptr) return current ^ 1;
  auto* enumeration = dynamic_cast<EnumDescriptor*>(descriptor);
  for (uint32_t candidate : {current ^ 1, current + 1, current - 1, descriptor->GetMinValue(),
                             descriptor->GetMaxValue()}) {
    if (candidate == current || candidate < descriptor->GetMinValue() ||
        candidate > descriptor->GetMaxValue())
      continue;
    if (enumeration == nullptr || enumeration->GetEnumValueDescriptor(candidate) != nullptr)
      return candidate;
  }
  return current;
}

std::string Session::OtherText(const std::string& current) const {
  return current == "conformance" ? "conformance-2" : "conformance";
}

bool Session::NextEvent(Probe& events, uint32_t msgtype, uint32_t paramID, std::vector<char>& bytes,
                        uint32_t* others) {
  auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(kAnswerMs);
  for (;;) {
    auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        deadline - std::chrono::steady_clock::now());
    if (left.count() <= 0 ||
        !events.Receive(sizeof(XCONFIGMGR_RESPONSE_T), static_cast<int>(left.count()), bytes))
      break;
    if (bytes.size() < sizeof(XCONFIGMGR_RESPONSE_T)) continue;
    XCONFIGMGR_RESPONSE_T event;
    Unpack(bytes.data(), event);
    if (Stream() && event.streamLength > 0 && event.streamLength <= kXConfigStreamBufferSize) {
      std::vector<char> payload;
      if (!events.Receive(event.streamLength, kAnswerMs, payload)) break;
      bytes.insert(bytes.end(), payload.begin(), payload.end());
    }
    if (event.header.msgtype == msgtype && event.paramID == paramID) return true;
    if (others != nullptr && event.header.msgtype == XCFG_PARAM_CHANGED_EVENT) ++*others;
  }
  return Fail(std::string("no ") + MessageName(msgtype) + " for parameter " +
              std::to_string(paramID) + " within " + std::to_string(kAnswerMs) + " ms");
}

}  // namespace conformance
}  // namespace configctl
