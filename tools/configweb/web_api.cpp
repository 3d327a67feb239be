#include "configweb/web_api.h"

#include <time.h>
#include <unistd.h>

#include <chrono>
#include <mutex>
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
#include "config/mapper/mapper_rules.h"
#include "config/values/file.h"
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

// The confirm-then-act controls ("Reboot?", "Confirm?", "Rebooting"): the
// page offers them as a button that sets the acting value after the user
// has confirmed. Those named here get their words; others a plain label.
struct CommandText {
  const char* param;
  const char* label;
  const char* consequence;
};
constexpr CommandText kCommandTexts[] = {
    {"eParamID_SoftwareReset", "Reboot the unit",
     "The unit restarts now: its video and audio outputs stop until it is back, and this page "
     "reconnects by itself."},
    {"eParamID_AudioMixDown_Reset", "Reset the mix downs",
     "Both mix downs return to their default sources, inputs and levels."},
};

// The command a confirm-then-act enumeration stands for, or null.
Json CommandJson(const ParamDescriptor* descriptor) {
  auto* values = dynamic_cast<const EnumDescriptor*>(descriptor);
  if (values == nullptr) return nullptr;
  unsigned int act = 0;
  bool confirming = false;
  for (unsigned int value = values->GetMinValue(); value <= values->GetMaxValue(); ++value) {
    if (values->GetEnumValue(value) == "Confirm?") confirming = true;
    act = value;
  }
  if (!confirming) return nullptr;
  std::string label = descriptor->GetName().empty() ? values->GetEnumValue(values->GetMinValue())
                                                    : descriptor->GetName();
  if (!label.empty() && label.back() == '?') label.pop_back();
  Json command{{"label", label}, {"consequence", "This acts on the unit at once."}, {"value", act}};
  for (const CommandText& text : kCommandTexts)
    if (descriptor->GetParamIDName() == text.param) {
      command["label"] = text.label;
      command["consequence"] = text.consequence;
    }
  return command;
}

// The parameter whose value chooses what `generic` stands for, or 0.
unsigned int SelectorOf(const ParamDescriptor* generic) {
  using tundra::mapper::TundraParamMapper;
  auto scheme = TundraParamMapper::MappingScheme.find(generic->GetParamID());
  if (scheme == TundraParamMapper::MappingScheme.end()) return 0;
  const tundra::mapper::MappingRule* rule = tundra::mapper::FindRule(scheme->second);
  if (rule == nullptr) return 0;
  return tundra::mapper::SelectorOf(*rule, tundra::mapper::ProcNoOf(generic));
}

// What a generic parameter stands for now, in words: the specific's display
// name and the selector's value that chose it ("IP Address (IP Config:
// Static)"), since the specifics of one generic share its display name.
void AddMapping(Json& object, ParamDescriptor* descriptor, Config* config,
                zyn::boxline::config::access::MappingConfig* mapping) {
  unsigned int mapped = mapping->MapID(descriptor->GetParamID());
  if (mapped == descriptor->GetParamID()) return;
  ParamDescriptor* target = GetDescriptor(mapped);
  object["maps_to"] = common::ParamName(mapped, target);
  object["maps_to_id"] = mapped;
  std::string words = target != nullptr && !target->GetName().empty()
                          ? target->GetName()
                          : object["maps_to"].get<std::string>();
  unsigned int selector = SelectorOf(descriptor);
  ParamDescriptor* chooser = selector != 0 ? GetDescriptor(selector) : nullptr;
  ParamValue choice;
  if (chooser != nullptr && common::ReadValue(config, chooser, choice)) {
    object["selector"] = selector;
    auto* list = dynamic_cast<EnumDescriptor*>(chooser);
    std::string chosen = list != nullptr && !choice.isString
                             ? list->GetEnumValue(static_cast<unsigned int>(choice.number))
                         : choice.isString ? choice.text
                                           : std::to_string(choice.number);
    words += " (" + chooser->GetName() + ": " + chosen + ")";
  }
  object["maps_to_name"] = words;
}

std::string PresetNameParam(unsigned int preset) {
  return "eParamID_PresetName_" + std::to_string(preset);
}

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

bool TakesPresetFile(const std::string& method, const std::string& target) {
  std::string path = target.substr(0, target.find('?'));
  return method == "PUT" && path.compare(0, 13, "/api/presets/") == 0 && path.size() > 5 &&
         path.compare(path.size() - 5, 5, "/file") == 0;
}

WebReply WebApi::Handle(const std::string& method, const std::string& target,
                        const std::string& body) {
  bool valid = true;
  std::vector<std::string> path = PathSegments(target, valid);
  if (!valid) return Error(400, "malformed %-escape in the path");
  bool get = method == "GET";
  size_t mark = target.find('?');
  std::string query = mark == std::string::npos ? std::string() : target.substr(mark + 1);
  if (path.empty() || path[0] != "api") {
    const PageFile* file = FindPageFile(target.substr(0, mark));
    if (file == nullptr) return Error(404, "no such page");
    if (!get) return Error(405, "the page is only read");
    WebReply page;
    page.contentType = file->contentType;
    page.body.assign(reinterpret_cast<const char*>(file->data), file->size);
    page.etag = file->etag;
    return page;
  }
  if (path.size() < 2) return Error(404, "no such page");
  const std::string& what = path[1];
  size_t n = path.size();
  if (what == "status" && n == 2 && get) return Status();
  if (what == "health" && n == 2 && get) return Health();
  if (what == "unit" && n == 2 && get) return Unit();
  if (what == "index" && n == 2 && get) return Index();
  if (what == "groups" && n == 2 && get) return Groups();
  if (what == "groups" && n == 3 && get) return Group(path[2], query);
  if (what == "groups" && n == 4 && get && path[3] == "mapping") return Mapping(path[2]);
  if (what == "params" && n == 3) {
    if (get) return GetParam(path[2]);
    if (method == "PUT" || method == "POST") return SetParam(path[2], body);
    return Error(405, "a parameter takes GET, PUT or POST");
  }
  if (what == "presets" && n == 2 && get) return PresetList();
  if (what == "presets" && n == 4) {
    if (path[3] == "file" && (get || method == "PUT")) return Preset(path[2], method, body);
    if (method != "POST") return Error(405, "preset commands take POST");
    return Preset(path[2], path[3], body);
  }
  if (what == "reset" && n == 3) {
    if (method != "POST") return Error(405, "a factory reset takes POST");
    return FactoryReset(path[2]);
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

Json WebApi::ParamJson(ParamDescriptor* descriptor, Config* config, const ParamValue* value) {
  Json object{
      {"param", descriptor->GetParamIDName()},
      {"id", descriptor->GetParamID()},
      {"name", descriptor->GetName()},
      {"readonly", common::IsUserReadOnly(common::EffectiveDescriptor(descriptor, config))}};
  if (auto* integer = dynamic_cast<IntegerDescriptor*>(descriptor))
    object["step"] = integer->GetAdjustBy();
  // A generic parameter says which specific one it stands for now.
  if (auto* mapping = dynamic_cast<zyn::boxline::config::access::MappingConfig*>(config))
    AddMapping(object, descriptor, config, mapping);
  Json command = CommandJson(descriptor);
  if (!command.is_null()) object["command"] = command;
  object["descriptor"] = Describe(descriptor);
  if (value != nullptr)
    object["current"] =
        Json::parse(common::ValueJson(descriptor->GetParamID(), descriptor, *value));
  return object;
}

Json WebApi::Describe(ParamDescriptor* descriptor) {
  std::lock_guard<std::mutex> hold(_keptLock);
  auto known = _described.find(descriptor->GetParamID());
  if (known != _described.end()) return known->second;
  return _described[descriptor->GetParamID()] = Json::parse(common::DescribeJson(descriptor));
}

WebReply WebApi::Group(const std::string& number, const std::string& query) {
  int group = StringToGroup(number);
  if (group == 0) return Error(404, "no menu group '" + number + "'");
  // "section=K": only the parameters whose menu number starts "K."; and
  // "values=no": only their names and menu numbers, all that a large
  // group's first view needs for the sections it keeps folded.
  std::string section;
  bool values = true;
  std::istringstream fields(query);
  for (std::string field; std::getline(fields, field, '&');) {
    if (field.compare(0, 8, "section=") == 0) section = field.substr(8) + ".";
    if (field == "values=no") values = false;
  }
  std::vector<ParamDescriptor*> descriptors;
  for (unsigned int id : GetParamGroup(group)) {
    ParamDescriptor* descriptor = GetDescriptor(id);
    if (!HiddenFromPage(descriptor) &&
        common::MenuNumber(descriptor).compare(0, section.size(), section) == 0)
      descriptors.push_back(descriptor);
  }
  if (!values) {
    // The brief form: what names and folds the sections, nothing read. It
    // depends on the catalogue alone, so a whole group's is made once.
    std::lock_guard<std::mutex> hold(_keptLock);
    std::string made;
    std::string& kept = section.empty() ? _briefs[group] : made;
    if (kept.empty()) {
      Json brief = Json::array();
      for (ParamDescriptor* descriptor : descriptors) {
        Json object{{"param", descriptor->GetParamIDName()},
                    {"id", descriptor->GetParamID()},
                    {"name", descriptor->GetName()},
                    {"menu_number", common::MenuNumber(descriptor)}};
        Json command = CommandJson(descriptor);
        if (!command.is_null()) object["command"] = command;
        brief.push_back(object);
      }
      kept = JsonText(Json{{"group", group}, {"name", GroupName(group)}, {"params", brief}});
    }
    return JsonReply(kept);
  }
  // Values come from the session's cache where it has them, so they are
  // read before the connection is taken for the rest.
  std::vector<ParamValue> current(descriptors.size());
  std::vector<bool> read(current.size(), false);
  for (size_t i = 0; i < current.size(); ++i) {
    bool got = false;
    if (!_session.ReadValue(descriptors[i], current[i], got)) return Unreachable(_session);
    read[i] = got;
  }
  Json params = Json::array();
  bool connected = _session.WithConfig([&](Config* config) {
    for (size_t i = 0; i < descriptors.size(); ++i)
      params.push_back(ParamJson(descriptors[i], config, read[i] ? &current[i] : nullptr));
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

bool WebApi::RunOwnerRequest(common::OwnerRequest& request, WebReply& failure) {
  bool sent = false;
  if (!_session.WithConfig([&](Config* config) { sent = request.Send(config); })) {
    failure = Unreachable(_session);
    return false;
  }
  if (!sent) {
    failure = Error(409, "configd did not take the request");
    return false;
  }
  // Each look takes the connection only briefly, so the page's other
  // requests go on meanwhile.
  bool answered = false;
  auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(kPresetTimeoutMs);
  while (!answered && std::chrono::steady_clock::now() < deadline) {
    if (!_session.WithConfig([&](Config* config) { answered = request.Poll(config); })) {
      failure = Unreachable(_session);
      return false;
    }
    if (!answered) Pause(kPresetPollMs);
  }
  if (!answered) failure = Error(504, "configd did not answer in time");
  return answered;
}

WebReply WebApi::Preset(const std::string& number, const std::string& operation,
                        const std::string& body) {
  bool file = operation == "GET" || operation == "PUT";
  const PresetCommand* command = nullptr;
  for (const PresetCommand& candidate : kPresetCommands)
    if (operation == candidate.operation) command = &candidate;
  if (command == nullptr && !file) return Error(404, "no preset command '" + operation + "'");
  unsigned int preset = 0;
  if (!common::ParseNumber(number, preset) || preset > kLastPreset)
    return Error(400, "invalid preset '" + number + "' (0 to " + std::to_string(kLastPreset) + ")");
  // Preset 0 holds the factory values: it can be recalled and exported only.
  if (preset == 0 && (operation == "save" || operation == "PUT"))
    return Error(403, "preset 0 holds the factory values and cannot be overwritten");
  if (operation == "GET") return PresetExport(preset);
  if (operation == "PUT") return PresetImport(preset, body);
  std::string name;
  if (operation == "save" && !body.empty()) {
    Json tree = Json::parse(body, nullptr, false);
    auto member = tree.is_object() ? tree.find("name") : tree.end();
    if (member == tree.end() || !member->is_string())
      return Error(400, "the body needs a \"name\" member holding a string");
    name = member->get<std::string>();
    ParamDescriptor* nameParam = common::FindParameter(PresetNameParam(preset));
    std::string error;
    ParamValue value;
    if (nameParam == nullptr || !common::ParseValue(nameParam, name, value, error))
      return Error(400, "the name '" + name + "' is refused: " + error);
    bool kept = false;
    if (!_session.WithConfig([&](Config* config) {
          std::string now;
          kept = config->Set(nameParam->GetParamID(), name) &&
                 config->Get(nameParam->GetParamID(), now) && now == name;
        }))
      return Unreachable(_session);
    if (!kept) return Error(409, "configd refused the name '" + name + "'");
  }
  using zyn::config::values::kRegisterDone;
  // Sent as this page's own request: the answer read back is configd's
  // answer to it, whatever other clients ask meanwhile.
  common::OwnerRequest request(operation, preset);
  WebReply failure;
  if (!RunOwnerRequest(request, failure)) return failure;
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

WebReply WebApi::PresetList() {
  using zyn::config::values::kRegisterDone;
  using zyn::config::values::kRegisterEmpty;
  Json presets = Json::array();
  for (unsigned int preset = 0; preset <= kLastPreset; ++preset) {
    std::string name;
    ParamDescriptor* nameParam = common::FindParameter(PresetNameParam(preset));
    if (nameParam == nullptr) continue;
    if (!_session.WithConfig([&](Config* config) { config->Get(nameParam->GetParamID(), name); }))
      return Unreachable(_session);
    const char* state = "factory";
    if (preset != 0) {
      common::OwnerRequest probe("probe", preset);
      WebReply failure;
      if (!RunOwnerRequest(probe, failure)) return failure;
      state = probe.GetState() == kRegisterDone    ? "saved"
              : probe.GetState() == kRegisterEmpty ? "empty"
                                                   : "unknown";
    }
    presets.push_back(Json{{"preset", preset}, {"name", name}, {"state", state}});
  }
  return JsonReply(presets);
}

WebReply WebApi::PresetExport(unsigned int preset) {
  using zyn::config::values::kRegisterDone;
  common::OwnerRequest request("load", preset);
  WebReply failure;
  if (!RunOwnerRequest(request, failure)) return failure;
  if (request.GetState() != kRegisterDone)
    return Error(409,
                 "preset " + std::to_string(preset) + " not exported: " + request.GetMessage());
  // configd has handed the preset over; take it and clear the hand-over.
  zyn::config::values::PresetsParamVector image;
  std::string handedOver = zyn::config::values::PresetsParamVector::PresetFileName(preset);
  bool taken = image.Slurp(handedOver);
  unlink(handedOver.c_str());
  unsigned int size = 0;
  char* data = taken ? image.GetData(size) : nullptr;
  if (data == nullptr) return Error(502, "the preset file " + handedOver + " cannot be read");
  WebReply reply;
  reply.contentType = "application/octet-stream";
  reply.body.assign(data, size);
  return reply;
}

WebReply WebApi::PresetImport(unsigned int preset, const std::string& image) {
  using zyn::config::values::kRegisterDone;
  if (image.empty()) return Error(400, "the preset file is empty");
  std::string handOver = zyn::config::values::PresetsParamVector::PresetFileName(preset);
  if (!File::write_file(handOver, image.data(), static_cast<unsigned int>(image.size())))
    return Error(502, "the preset file cannot be handed to configd at " + handOver);
  common::OwnerRequest request("store", preset);
  WebReply failure;
  bool answered = RunOwnerRequest(request, failure);
  unlink(handOver.c_str());
  if (!answered) return failure;
  WebReply reply = JsonReply(
      Json{{"preset", preset},
           {"operation", "import"},
           {"state", request.GetState()},
           {"result", request.GetState() == kRegisterDone ? "Import Complete" : "Import Failed"},
           {"message", request.GetMessage()}});
  if (request.GetState() != kRegisterDone) reply.status = 409;
  return reply;
}

WebReply WebApi::FactoryReset(const std::string& kind) {
  using zyn::config::values::kRegisterDone;
  if (kind != "factory" && kind != "hard") return Error(404, "no reset '" + kind + "'");
  common::OwnerRequest request("reset", kind == "hard" ? 2 : 1);
  WebReply failure;
  if (!RunOwnerRequest(request, failure)) return failure;
  WebReply reply = JsonReply(
      Json{{"reset", kind}, {"state", request.GetState()}, {"message", request.GetMessage()}});
  if (request.GetState() != kRegisterDone) reply.status = 409;
  return reply;
}

WebReply WebApi::Unit() {
  static const std::pair<const char*, eParam_t> kFields[] = {
      {"system_name", eParamID_SystemName},
      {"product", eParamID_ProductID},
      {"software_version", eParamID_SoftwareVersion},
      {"serial_number", eParamID_FormattedSerialNumber},
      {"ip_address", eParamID_IPAddress_Actual},
  };
  Json unit = Json::object();
  Json watch = Json::array();
  for (const auto& field : kFields) {
    ParamDescriptor* descriptor = GetDescriptor(field.second);
    ParamValue value;
    bool read = false;
    if (descriptor == nullptr) continue;
    if (!_session.ReadValue(descriptor, value, read)) return Unreachable(_session);
    std::string text = value.isString ? value.text : std::to_string(value.number);
    // Trailing blanks pad some fixed-width values (the serial number).
    text.erase(text.find_last_not_of(' ') + 1);
    unit[field.first] = read ? text : "";
    watch.push_back(field.second);
  }
  // A unit whose product was never set is the family's first model, as the
  // owner assumes for its preset images.
  if (unit["product"] == "") unit["product"] = "KR-9";
  unit["watch"] = watch;
  return JsonReply(unit);
}

WebReply WebApi::Index() {
  // Compact rows [ID name, display name, short name, group, menu number]:
  // the page's search reads every parameter at once.
  Json rows = Json::array();
  for (int group = kFirstGroup; group <= kLastGroup; ++group)
    for (unsigned int id : GetParamGroup(group)) {
      ParamDescriptor* descriptor = GetDescriptor(id);
      if (HiddenFromPage(descriptor)) continue;
      rows.push_back(
          Json::array({descriptor->GetParamIDName(), descriptor->GetName(),
                       descriptor->GetShortName(), group, common::MenuNumber(descriptor)}));
    }
  return JsonReply(rows);
}

WebReply WebApi::Mapping(const std::string& number) {
  int group = StringToGroup(number);
  if (group == 0) return Error(404, "no menu group '" + number + "'");
  Json mapped = Json::array();
  bool connected = _session.WithConfig([&](Config* config) {
    auto* mapping = dynamic_cast<zyn::boxline::config::access::MappingConfig*>(config);
    if (mapping == nullptr) return;
    for (unsigned int id : GetParamGroup(group)) {
      ParamDescriptor* descriptor = GetDescriptor(id);
      if (HiddenFromPage(descriptor)) continue;
      Json object{
          {"id", id},
          {"readonly", common::IsUserReadOnly(common::EffectiveDescriptor(descriptor, config))}};
      AddMapping(object, descriptor, config, mapping);
      if (!object.contains("maps_to")) continue;
      ParamValue value;
      if (common::ReadValue(config, descriptor, value))
        object["current"] = Json::parse(common::ValueJson(id, descriptor, value));
      mapped.push_back(object);
    }
  });
  if (!connected) return Unreachable(_session);
  return JsonReply(mapped);
}

}  // namespace configweb
