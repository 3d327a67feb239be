#include "configctl/presets.h"

#include <unistd.h>

#include <cstdio>
#include <string>

#include "common/json.h"
#include "common/owner_request.h"
#include "common/parameters.h"
#include "config/access/socket_client.h"
#include "config/descriptors/enum_descriptor.h"
#include "config/values/file.h"
#include "config/values/presets_param_vector.h"
#include "configctl/console.h"
#include "configctl/daemon_link.h"

using namespace zyn::config::values;

namespace configctl {

using namespace common;

namespace {

constexpr unsigned int kRegisterRecallResult = 0x4000E4C8;
constexpr unsigned int kRegisterSaveResult = 0x7A9D2C71;
constexpr unsigned int kLastPreset = 40;
constexpr long kAnswerTimeoutMs = 30000;
constexpr long kPollMs = 5;

struct PresetForm {
  const char* sub;
  size_t operands;  // after the subcommand
  const char* form;
};

constexpr PresetForm kPresetForms[] = {
    {"save", 1, "preset save N [--name TEXT]"},
    {"recall", 1, "preset recall N"},
    {"list", 0, "preset list"},
    {"export", 2, "preset export N FILE"},
    {"import", 2, "preset import N FILE"},
};

// Runs `operation` on preset `number` as this client's own request and
// waits for configd's answer to it.
OwnerRequest Ask(Config* client, const char* operation, unsigned int number) {
  OwnerRequest request(operation, number);
  request.Run(client, kAnswerTimeoutMs, kPollMs);
  return request;
}

// "Recall Failed (preset 5 refused: ...)", or why there was no answer.
std::string Outcome(unsigned int result, const OwnerRequest& request);

// The result state's name from the catalogue ("Recall Failed").
std::string StateName(unsigned int result, unsigned int state) {
  auto* list = dynamic_cast<EnumDescriptor*>(FindParameter(std::to_string(result)));
  return list != nullptr ? list->GetEnumValue(state) : std::to_string(state);
}

std::string Outcome(unsigned int result, const OwnerRequest& request) {
  if (!request.Failure().empty()) return request.Failure();
  return StateName(result, request.GetState()) + " (" + request.GetMessage() + ")";
}

bool ParsePreset(const std::string& text, unsigned int first, unsigned int& number) {
  if (!ParseNumber(text, number) || number < first || number > kLastPreset) {
    Console::Error("invalid preset '%s' (%u to %u)", text.c_str(), first, kLastPreset);
    return false;
  }
  return true;
}

std::string NameParam(unsigned int number) {
  return "eParamID_PresetName_" + std::to_string(number);
}

int Save(Config* client, unsigned int number, const Arguments& arguments) {
  if (arguments.hasName) {
    std::string kept;
    ParamDescriptor* name = FindParameter(NameParam(number));
    if (name == nullptr || !client->Set(name->GetParamID(), arguments.name) ||
        !client->Get(name->GetParamID(), kept) || kept != arguments.name) {
      Console::Error("configd refused the name '%s' for preset %u", arguments.name.c_str(), number);
      return kExitFailure;
    }
  }
  OwnerRequest saved = Ask(client, "save", number);
  if (saved.GetState() != kRegisterDone) {
    Console::Error("preset %u not saved: %s", number, Outcome(kRegisterSaveResult, saved).c_str());
    return kExitFailure;
  }
  printf("%s\n", saved.GetMessage().c_str());
  return kExitOk;
}

int Recall(Config* client, unsigned int number) {
  OwnerRequest recalled = Ask(client, "recall", number);
  if (recalled.GetState() != kRegisterDone) {
    Console::Error("preset %u not recalled: %s", number,
                   Outcome(kRegisterRecallResult, recalled).c_str());
    return kExitFailure;
  }
  printf("%s\n", recalled.GetMessage().c_str());
  return kExitOk;
}

int List(Config* client, bool json) {
  Json presets = Json::array();
  for (unsigned int number = 0; number <= kLastPreset; ++number) {
    std::string name;
    ParamDescriptor* nameParam = FindParameter(NameParam(number));
    if (nameParam == nullptr || !client->Get(nameParam->GetParamID(), name)) {
      Console::Error("configd gave no name for preset %u", number);
      return kExitFailure;
    }
    OwnerRequest probe = Ask(client, "probe", number);
    unsigned int state = probe.GetState();
    if (state != kRegisterDone && state != kRegisterEmpty) {
      Console::Error("preset %u: %s", number, Outcome(kRegisterLoadResultParamID, probe).c_str());
      return kExitFailure;
    }
    const char* status = number == 0 ? "factory" : state == kRegisterDone ? "saved" : "empty";
    if (json) {
      presets.push_back(Json{{"preset", number}, {"name", name}, {"state", status}});
    } else {
      printf("%2u  %-20s  %s\n", number, name.c_str(), status);
    }
  }
  if (json) printf("%s\n", JsonText(presets).c_str());
  return kExitOk;
}

int Export(Config* client, unsigned int number, const std::string& path) {
  OwnerRequest loaded = Ask(client, "load", number);
  if (loaded.GetState() != kRegisterDone) {
    Console::Error("preset %u not exported: %s", number,
                   Outcome(kRegisterLoadResultParamID, loaded).c_str());
    return kExitFailure;
  }
  // configd has handed the preset over; take it and clear the hand-over.
  PresetsParamVector preset;
  std::string handedOver = PresetsParamVector::PresetFileName(number);
  bool taken = preset.Slurp(handedOver);
  unlink(handedOver.c_str());
  if (!taken) {
    Console::Error("preset %u not exported: %s cannot be read", number, handedOver.c_str());
    return kExitFailure;
  }
  unsigned int size = 0;
  char* data = preset.GetData(size);
  if (data == nullptr || !File::write_file(path, data, size)) {
    Console::Error("cannot write %s", path.c_str());
    return kExitFailure;
  }
  printf("preset %u exported to %s (%u bytes)\n", number, path.c_str(), size);
  return kExitOk;
}

int Import(Config* client, unsigned int number, const std::string& path) {
  PresetsParamVector preset;
  unsigned int size = 0;
  if (!preset.Slurp(path) || preset.GetData(size) == nullptr || size == 0) {
    Console::Error("cannot read %s", path.c_str());
    return kExitFailure;
  }
  // Hand the image over, then ask configd to take it in as this client's
  // own request; the hand-over file goes whatever the answer.
  std::string handOver = PresetsParamVector::PresetFileName(number);
  if (!File::write_file(handOver, preset.GetData(size), size)) {
    Console::Error("%s not imported: %s cannot be written", path.c_str(), handOver.c_str());
    return kExitFailure;
  }
  OwnerRequest stored = Ask(client, "store", number);
  unlink(handOver.c_str());
  if (stored.GetState() != kRegisterDone) {
    Console::Error("%s not imported as preset %u: %s", path.c_str(), number,
                   Outcome(kRegisterStoreResultParamID, stored).c_str());
    return kExitFailure;
  }
  printf("%s imported as preset %u\n", path.c_str(), number);
  return kExitOk;
}

}  // namespace

int RunPreset(const Arguments& arguments) {
  const std::vector<std::string>& words = arguments.operands;
  const PresetForm* form = nullptr;
  unsigned int number = 0;
  for (const PresetForm& candidate : kPresetForms)
    if (words[0] == candidate.sub) form = &candidate;
  // A missing operand or a preset that is not a number is a malformed
  // command line; a number out of range is refused below.
  if (form == nullptr || words.size() != form->operands + 1 ||
      (form->operands > 0 && !ParseNumber(words[1], number))) {
    Console::Error("usage: configctl %s\nTry 'configctl --help'.",
                   form != nullptr ? form->form : "preset save|recall|list|export|import ...");
    return kExitUsage;
  }
  const std::string sub = words[0];
  // Preset 0 is the factory preset: it can be recalled and exported only.
  bool readable = sub == "recall" || sub == "export";
  if (!readable && sub != "list" && words[1] == "0") {
    Console::Error("preset 0 holds the factory values and cannot be overwritten");
    return kExitFailure;
  }
  if (sub != "list" && !ParsePreset(words[1], readable ? 0 : 1, number)) return kExitFailure;
  DaemonLink link(arguments.uri);
  Config* client = link.Open("preset");
  if (client == nullptr) return kExitFailure;
  if (sub == "save") return Save(client, number, arguments);
  if (sub == "recall") return Recall(client, number);
  if (sub == "list") return List(client, arguments.json);
  if (sub == "export") return Export(client, number, words[2]);
  return Import(client, number, words[2]);
}

int RunFactoryReset(const Arguments& arguments) {
  DaemonLink link(arguments.uri);
  Config* client = link.Open("factory-reset");
  if (client == nullptr) return kExitFailure;
  OwnerRequest reset = Ask(client, "reset", arguments.hard ? 2 : 1);
  if (!reset.Failure().empty() || reset.GetState() != kRegisterDone) {
    Console::Error("the factory reset failed: %s",
                   reset.Failure().empty() ? reset.GetMessage().c_str() : reset.Failure().c_str());
    return kExitFailure;
  }
  printf("%s done\n", arguments.hard ? "HARD FACTORY" : "FACTORY");
  return kExitOk;
}

}  // namespace configctl
