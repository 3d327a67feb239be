#include "configweb/web_api.h"

#include <time.h>

#include <chrono>
#include <sstream>
#include <thread>
#include <vector>

#include "common/formatting.h"
#include "common/json.h"
#include "common/owner_request.h"
#include "common/parameters.h"
#include "common/user_access.h"
#include "config/access/mapping_config.h"
#include "config/config.h"
#include "config/descriptors/enum_descriptor.h"
#include "config/descriptors/owner_params.h"
#include "config/descriptors/param_descriptors.h"
#include "config/descriptors/param_groups.h"
#include "config/descriptors/param_ids.h"
#include "config/values/presets_param_vector.h"
#include "configweb/daemon_session.h"
#include "configweb/page.h"

namespace configweb {

using common::Json;
using common::JsonText;
using common::ParamValue;
using common::SetOutcome;

namespace {

constexpr int kFirstGroup = static_cast<int>(kRemoteMenuGroup);
constexpr int kLastGroup = static_cast<int>(kDebugMenuGroup);
constexpr unsigned int kLastPreset = 40;
constexpr long kPresetPollMs = 10;

// The register commands the page offers, with their result parameters.
struct PresetCommand {
  const char* operation;
  eParam_t result;  // whose state names the outcome
};
constexpr PresetCommand kPresetCommands[] = {
    {"save", eParamID_RegisterSaveResult},
    {"recall", eParamID_RegisterRecallResult},
};

WebReply Error(int status, const std::string& message) {
  WebReply reply;
  reply.status = status;
  reply.body = JsonText(Json{{"error", message}});
  return reply;
}

WebReply JsonReply(const std::string& body) {
  WebReply reply;
  reply.body = body;
  return reply;
}

WebReply JsonReply(const Json& value) { return JsonReply(JsonText(value)); }

WebReply Unreachable(const DaemonSession& session) {
  return Error(503, "configd is not reachable at " + session.GetUri());
}

std::vector<std::string> PathSegments(const std::string& target, bool& valid) {
  std::string path = target.substr(0, target.find('?'));
  std::vector<std::string> segments;
  valid = true;
  std::string segment;
  std::istringstream in(path);
  while (std::getline(in, segment, '/')) {
    if (segment.empty()) continue;
    std::string decoded;
    if (!UrlDecode(segment, decoded)) valid = false;
    segments.push_back(decoded);
  }
  return segments;
}

int StringToGroup(const std::string& text) {
  unsigned int number = 0;
  if (!common::ParseNumber(text, number) || number < static_cast<unsigned int>(kFirstGroup) ||
      number > static_cast<unsigned int>(kLastGroup))
    return 0;
  return static_cast<int>(number);
}

// The value under "value" of a JSON object body, as text: numbers and
// strings alike, for ParseValue to read by the parameter's kind.
bool BodyValue(const std::string& body, std::string& text, std::string& error) {
  Json tree = Json::parse(body, nullptr, false);
  if (tree.is_discarded()) {
    error = "the body is not JSON";
    return false;
  }
  auto value = tree.is_object() ? tree.find("value") : tree.end();
  if (value == tree.end() || !(value->is_string() || value->is_number())) {
    error = "the body needs a \"value\" member holding a number or a string";
    return false;
  }
  // A number goes on as its text, so that ParseValue refuses a negative or
  // fractional one the same way as typed text.
  text = value->is_string() ? value->get<std::string>() : value->dump();
  return true;
}

void Pause(long ms) { std::this_thread::sleep_for(std::chrono::milliseconds(ms)); }

}  // namespace

bool HiddenFromPage(const ParamDescriptor* descriptor) {
  for (const char* name : {"panel_hidden", "hidden_param", "rest_hidden"})
    if (descriptor->HasClassName(name)) return true;
  return false;
}

std::string GroupName(int group) {
  if (group == static_cast<int>(kDebugMenuGroup)) return "Debug";
  auto* buttons = dynamic_cast<EnumDescriptor*>(GetDescriptor(eParamID_CurrentlySelectedButton));
  std::string name = buttons != nullptr ? buttons->GetEnumValue(group) : "";
  return name.empty() ? "Group " + std::to_string(group) : name;
}

bool UrlDecode(const std::string& text, std::string& decoded) {
  decoded.clear();
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      decoded += text[i];
      continue;
    }
    if (i + 2 >= text.size() || !isxdigit(static_cast<unsigned char>(text[i + 1])) ||
        !isxdigit(static_cast<unsigned char>(text[i + 2])))
      return false;
    decoded += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
    i += 2;
  }
  return true;
}

WebReply WebApi::Handle(const std::string& method, const std::string& target,
                        const std::string& body) {
  bool valid = true;
  std::vector<std::string> path = PathSegments(target, valid);
  if (!valid) return Error(400, "malformed %-escape in the path");
  bool get = method == "GET";
  if (path.empty()) {
    if (!get) return Error(405, "the page is only read");
    WebReply page;
    page.contentType = "text/html; charset=utf-8";
    page.body = PageHtml();
    return page;
  }
  if (path[0] != "api" || path.size() < 2) return Error(404, "no such page");
  const std::string& what = path[1];
  size_t n = path.size();
  if (what == "status" && n == 2 && get) return Status();
  if (what == "health" && n == 2 && get) return Health();
  if (what == "groups" && n == 2 && get) return Groups();
  if (what == "groups" && n == 3 && get) return Group(path[2]);
  if (what == "params" && n == 3) {
    if (get) return GetParam(path[2]);
    if (method == "PUT" || method == "POST") return SetParam(path[2], body);
    return Error(405, "a parameter takes GET, PUT or POST");
  }
  if (what == "presets" && n == 4) {
    if (method != "POST") return Error(405, "preset commands take POST");
    return Preset(path[2], path[3]);
  }
  return Error(404, "no such API path");
}

WebReply WebApi::Status() {
  return JsonReply(Json{{"connected", _session.IsConnected()}, {"uri", _session.GetUri()}});
}

WebReply WebApi::Health() {
  std::string health;
  bool published = false;
  bool connected = _session.WithConfig(
      [&](Config* config) { published = config->Get(kOwnerHealthParamID, health); });
  if (connected && published && !health.empty())
    return JsonReply(Json{{"ok", health == kOwnerHealthOk}, {"message", health}});
  // An error in the API's usual form, with the health fields the page reads.
  WebReply reply;
  std::string error = connected ? "configd does not publish its health"
                                : "configd is not reachable at " + _session.GetUri();
  reply.status = connected ? 502 : 503;
  reply.body = JsonText(
      Json{{"ok", false}, {"message", connected ? error : "configd lost"}, {"error", error}});
  return reply;
}

WebReply WebApi::Groups() {
  Json groups = Json::array();
  for (int group = kFirstGroup; group <= kLastGroup; ++group) {
    size_t count = 0;
    for (unsigned int id : GetParamGroup(group))
      if (!HiddenFromPage(GetDescriptor(id))) ++count;
    if (count == 0) continue;
    groups.push_back(Json{{"group", group}, {"name", GroupName(group)}, {"count", count}});
  }
  return JsonReply(groups);
}

Json WebApi::ParamJson(ParamDescriptor* descriptor, Config* config) {
  Json object{
      {"param", descriptor->GetParamIDName()},
      {"id", descriptor->GetParamID()},
      {"name", descriptor->GetName()},
      {"readonly", common::IsUserReadOnly(common::EffectiveDescriptor(descriptor, config))}};
  if (auto* integer = dynamic_cast<IntegerDescriptor*>(descriptor))
    object["step"] = integer->GetAdjustBy();
  // A generic parameter says which specific one it stands for now.
  if (auto* mapping = dynamic_cast<zyn::boxline::config::access::MappingConfig*>(config)) {
    unsigned int mapped = mapping->MapID(descriptor->GetParamID());
    if (mapped != descriptor->GetParamID()) {
      object["maps_to"] = common::ParamName(mapped, GetDescriptor(mapped));
      object["maps_to_id"] = mapped;
    }
  }
  object["descriptor"] = Json::parse(common::DescribeJson(descriptor));
  ParamValue value;
  if (common::ReadValue(config, descriptor, value))
    object["current"] = Json::parse(common::ValueJson(descriptor->GetParamID(), descriptor, value));
  return object;
}

WebReply WebApi::Group(const std::string& number) {
  int group = StringToGroup(number);
  if (group == 0) return Error(404, "no menu group '" + number + "'");
  std::vector<ParamDescriptor*> descriptors;
  for (unsigned int id : GetParamGroup(group)) {
    ParamDescriptor* descriptor = GetDescriptor(id);
    if (!HiddenFromPage(descriptor)) descriptors.push_back(descriptor);
  }
  Json params = Json::array();
  bool connected = _session.WithConfig([&](Config* config) {
    for (ParamDescriptor* descriptor : descriptors) params.push_back(ParamJson(descriptor, config));
  });
  if (!connected) return Unreachable(_session);
  return JsonReply(Json{{"group", group}, {"name", GroupName(group)}, {"params", params}});
}

WebReply WebApi::GetParam(const std::string& name) {
  ParamDescriptor* descriptor = common::FindParameter(name);
  if (descriptor == nullptr) return Error(404, "unknown parameter '" + name + "'");
  ParamValue value;
  bool read = false;
  if (!_session.ReadValue(descriptor, value, read)) return Unreachable(_session);
  if (!read) return Error(502, "configd gave no value for " + descriptor->GetParamIDName());
  return JsonReply(common::ValueJson(descriptor->GetParamID(), descriptor, value));
}

WebReply WebApi::SetParam(const std::string& name, const std::string& body) {
  ParamDescriptor* descriptor = common::FindParameter(name);
  if (descriptor == nullptr) return Error(404, "unknown parameter '" + name + "'");
  std::string text;
  std::string error;
  ParamValue requested;
  if (!BodyValue(body, text, error) || !common::ParseValue(descriptor, text, requested, error))
    return Error(400, error);
  ParamValue before;
  ParamValue after;
  bool done = false;
  const ParamDescriptor* target = nullptr;
  bool connected = _session.WithConfig([&](Config* config) {
    // A generic parameter follows the rule of the one it stands for now.
    target = common::EffectiveDescriptor(descriptor, config);
    if (common::IsUserReadOnly(target)) return;
    if (target != descriptor && !common::CheckValue(target, requested, error)) return;
    if (!common::ReadValue(config, descriptor, before)) return;
    unsigned int id = descriptor->GetParamID();
    bool sent =
        requested.isString ? config->Set(id, requested.text) : config->Set(id, requested.number);
    // A Get after a Set on the same connection sees the Set's outcome.
    done = sent && common::ReadValue(config, descriptor, after);
  });
  _session.ForgetValue(descriptor->GetParamID());
  std::string readOnly = connected ? common::ReadOnlyReason(descriptor, target) : "";
  if (!readOnly.empty()) return Error(403, readOnly);
  if (!error.empty()) return Error(400, error);
  if (!connected) return Unreachable(_session);
  if (!done)
    return Error(502, "could not set " + descriptor->GetParamIDName() + " through configd");
  SetOutcome outcome = common::ClassifySet(descriptor, requested, before, after);
  WebReply reply = JsonReply(common::SetJson(descriptor, requested, after, outcome));
  if (outcome == SetOutcome::kRefused) reply.status = 409;
  return reply;
}

WebReply WebApi::Preset(const std::string& number, const std::string& operation) {
  const PresetCommand* command = nullptr;
  for (const PresetCommand& candidate : kPresetCommands)
    if (operation == candidate.operation) command = &candidate;
  if (command == nullptr) return Error(404, "no preset command '" + operation + "'");
  unsigned int preset = 0;
  if (!common::ParseNumber(number, preset) || preset > kLastPreset)
    return Error(400, "invalid preset '" + number + "' (0 to " + std::to_string(kLastPreset) + ")");
  using zyn::config::values::kRegisterDone;
  // Sent as this page's own request: the answer read back is configd's
  // answer to it, whatever other clients ask meanwhile.
  common::OwnerRequest request(operation, preset);
  bool sent = false;
  if (!_session.WithConfig([&](Config* config) { sent = request.Send(config); }))
    return Unreachable(_session);
  if (!sent) return Error(409, "configd refused preset " + std::to_string(preset));
  // Each look takes the connection only briefly, so the page's other
  // requests go on meanwhile.
  bool answered = false;
  auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(kPresetTimeoutMs);
  while (!answered && std::chrono::steady_clock::now() < deadline) {
    if (!_session.WithConfig([&](Config* config) { answered = request.Poll(config); }))
      return Unreachable(_session);
    if (!answered) Pause(kPresetPollMs);
  }
  if (!answered) return Error(504, "configd did not finish the preset " + operation + " in time");
  unsigned int state = request.GetState();
  auto* results = dynamic_cast<EnumDescriptor*>(GetDescriptor(command->result));
  std::string resultName = results != nullptr ? results->GetEnumValue(state) : "";
  WebReply reply = JsonReply(Json{{"preset", preset},
                                  {"operation", operation},
                                  {"state", state},
                                  {"result", resultName},
                                  {"message", request.GetMessage()}});
  if (state != kRegisterDone) reply.status = 409;
  return reply;
}

}  // namespace configweb
