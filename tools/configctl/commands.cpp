#include "configctl/commands.h"

#include <algorithm>
#include <cstdio>
#include <list>

#include "common/formatting.h"
#include "common/json.h"
#include "common/user_access.h"
#include "config/access/socket_client.h"
#include "config/descriptors/enum_descriptor.h"
#include "config/descriptors/owner_params.h"
#include "config/descriptors/param_descriptors.h"
#include "config/descriptors/param_groups.h"
#include "config/manager/config_cache.h"
#include "configctl/conformance/checker.h"
#include "configctl/console.h"
#include "configctl/daemon_link.h"
#include "configctl/mapping_commands.h"
#include "configctl/presets.h"
#include "configctl/watch.h"

namespace configctl {

using namespace common;

namespace {

void PrintLine(const std::string& line) {
  fputs(line.c_str(), stdout);
  fputc('\n', stdout);
}

}  // namespace

bool ResolveParameters(const std::vector<std::string>& words,
                       std::vector<ParamDescriptor*>& descriptors) {
  bool all = true;
  descriptors.clear();
  for (const std::string& word : words) {
    ParamDescriptor* descriptor = FindParameter(word);
    if (descriptor == nullptr) {
      Console::Error("unknown parameter '%s'", word.c_str());
      all = false;
    }
    descriptors.push_back(descriptor);
  }
  return all;
}

int RunCommand(const Arguments& arguments) {
  switch (arguments.command) {
    case Command::kGet:
      return RunGet(arguments);
    case Command::kSet:
      return RunSet(arguments);
    case Command::kWatch:
      return RunWatch(arguments);
    case Command::kDescribe:
      return RunDescribe(arguments);
    case Command::kList:
      return RunList(arguments);
    case Command::kMap:
      return RunMap(arguments);
    case Command::kExportMapping:
      return RunExportMapping(arguments);
    case Command::kPreset:
      return RunPreset(arguments);
    case Command::kFactoryReset:
      return RunFactoryReset(arguments);
    case Command::kHealth:
      return RunHealth(arguments);
    case Command::kConformance:
      return conformance::RunConformance(arguments);
    case Command::kHelp:
    case Command::kVersion:
      break;
  }
  fputs(UsageText(), stdout);
  return kExitOk;
}

int RunGet(const Arguments& arguments) {
  std::vector<ParamDescriptor*> descriptors;
  if (!ResolveParameters(arguments.operands, descriptors)) return kExitFailure;
  DaemonLink link(arguments.uri);
  Config* client = link.Open("get");
  if (client == nullptr) return kExitFailure;
  if (arguments.mapped) client = link.Map(client, nullptr);
  int status = kExitOk;
  for (ParamDescriptor* descriptor : descriptors) {
    ParamValue value;
    if (!ReadValue(client, descriptor, value)) {
      Console::Error("configd gave no value for %s", descriptor->GetParamIDName().c_str());
      status = kExitFailure;
      continue;
    }
    unsigned int id = descriptor->GetParamID();
    PrintLine(arguments.json ? ValueJson(id, descriptor, value) : ValueLine(id, descriptor, value));
  }
  return status;
}

int RunSet(const Arguments& arguments) {
  std::vector<ParamDescriptor*> descriptors;
  if (!ResolveParameters({arguments.operands[0]}, descriptors)) return kExitFailure;
  ParamDescriptor* descriptor = descriptors[0];
  std::string name = descriptor->GetParamIDName();
  ParamValue requested;
  std::string error;
  if (!ParseValue(descriptor, arguments.operands[1], requested, error, arguments.raw)) {
    Console::Error("%s", error.c_str());
    return kExitFailure;
  }
  DaemonLink link(arguments.uri);
  Config* client = link.Open("set");
  if (client == nullptr) return kExitFailure;
  if (arguments.mapped) client = link.Map(client, nullptr);
  // A generic parameter follows the rule of the one it stands for now.
  const ParamDescriptor* target = EffectiveDescriptor(descriptor, client);
  std::string readOnly = arguments.force ? std::string() : ReadOnlyReason(descriptor, target);
  if (!readOnly.empty()) {
    Console::Error("%s", readOnly.c_str());
    return kExitFailure;
  }
  if (target != nullptr && target != descriptor && !CheckValue(target, requested, error)) {
    Console::Error("%s", error.c_str());
    return kExitFailure;
  }
  ParamValue before;
  if (!ReadValue(client, descriptor, before)) {
    Console::Error("configd gave no value for %s", name.c_str());
    return kExitFailure;
  }
  unsigned int id = descriptor->GetParamID();
  bool sent =
      requested.isString ? client->Set(id, requested.text) : client->Set(id, requested.number);
  ParamValue after;
  // A Get after a Set on the same connection sees the Set's outcome. Over
  // UDP the Set is answered, and a false answer is configd's refusal.
  bool refused = !sent && link.SetsAreAnswered();
  // A cache would answer with the value just written; the store's own answer
  // (clamped or refused) comes from the connection under it.
  auto* cache = dynamic_cast<ConfigCache*>(client);
  Config* store = cache != nullptr ? cache->GetConfig() : client;
  if ((!sent && !refused) || !ReadValue(store, descriptor, after)) {
    Console::Error("could not set %s through configd", name.c_str());
    return kExitFailure;
  }
  SetOutcome outcome =
      refused ? SetOutcome::kRefused : ClassifySet(descriptor, requested, before, after);
  if (arguments.json) {
    PrintLine(SetJson(descriptor, requested, after, outcome));
  } else if (outcome == SetOutcome::kRefused) {
    Console::Error("%s", SetLine(descriptor, requested, after, outcome).c_str());
  } else {
    PrintLine(SetLine(descriptor, requested, after, outcome));
  }
  return outcome == SetOutcome::kRefused ? kExitFailure : kExitOk;
}

int RunHealth(const Arguments& arguments) {
  DaemonLink link(arguments.uri);
  Config* client = link.Open("health");
  if (client == nullptr) return kExitFailure;
  std::string health;
  if (!client->Get(kOwnerHealthParamID, health) || health.empty()) {
    Console::Error("configd at %s does not publish its health", arguments.uri.c_str());
    return kExitFailure;
  }
  PrintLine(arguments.json ? JsonText(Json{{"health", health}}) : health);
  return health == kOwnerHealthOk ? kExitOk : kExitFailure;
}

int RunDescribe(const Arguments& arguments) {
  std::vector<ParamDescriptor*> descriptors;
  if (!ResolveParameters(arguments.operands, descriptors)) return kExitFailure;
  if (arguments.json) {
    PrintLine(DescribeJson(descriptors[0]));
  } else {
    fputs(DescribeText(descriptors[0]).c_str(), stdout);
  }
  return kExitOk;
}

int RunList(const Arguments& arguments) {
  std::vector<ParamDescriptor*> descriptors;
  if (arguments.hasGroup) {
    for (unsigned int id : GetParamGroup(arguments.group)) descriptors.push_back(GetDescriptor(id));
    if (descriptors.empty()) {
      Console::Error("menu group %d has no parameters", arguments.group);
      return kExitFailure;
    }
  } else {
    // The owner's own parameters are a protocol between configd and its
    // clients, not settings.
    for (unsigned int id : GetParamIDs())
      if (!IsOwnerParam(id)) descriptors.push_back(GetDescriptor(id));
    std::sort(descriptors.begin(), descriptors.end(),
              [](const ParamDescriptor* a, const ParamDescriptor* b) {
                return a->GetParamIDName() < b->GetParamIDName();
              });
  }
  if (arguments.json) {
    std::vector<std::string> rows;
    for (const ParamDescriptor* descriptor : descriptors)
      rows.push_back(ListJson(descriptor, arguments.hasGroup));
    std::string array = "[";
    for (size_t i = 0; i < rows.size(); ++i) array += (i == 0 ? "\n" : ",\n") + rows[i];
    PrintLine(array + (rows.empty() ? "]" : "\n]"));
    return kExitOk;
  }
  size_t width = 0;
  for (const ParamDescriptor* descriptor : descriptors)
    width = std::max(width, descriptor->GetParamIDName().size());
  for (const ParamDescriptor* descriptor : descriptors)
    PrintLine(ListRow(descriptor, width, arguments.hasGroup));
  return kExitOk;
}

}  // namespace configctl
