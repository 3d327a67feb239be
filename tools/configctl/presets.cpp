#include "configctl/presets.h"

#include <time.h>
#include <unistd.h>

#include <cstdio>
#include <string>

#include "config/access/socket_client.h"
#include "config/descriptors/enum_descriptor.h"
#include "config/values/file.h"
#include "config/values/presets_param_vector.h"
#include "configctl/console.h"
#include "configctl/daemon_link.h"
#include "configctl/parameters.h"

using namespace zyn::config::values;

namespace configctl {

namespace {

constexpr unsigned int kRegisterRecall = 0x05CDE9A4;
constexpr unsigned int kRegisterRecallResult = 0x4000E4C8;
constexpr unsigned int kRegisterSave = 0xAAB50096;
constexpr unsigned int kRegisterSaveResult = 0x7A9D2C71;
constexpr unsigned int kFactorySettings = 0xEA4F2E24;
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

void Sleep(long ms) {
  timespec pause = {0, ms * 1000000};
  nanosleep(&pause, nullptr);
}

// Starts a command: result "in progress", then the command with `number`,
// and waits until configd moves the result on. The final state, or 0 when
// configd did not answer in time.
unsigned int RunRegister(Config* client, unsigned int command, unsigned int result,
                         unsigned int number) {
  client->Set(result, kRegisterInProgress);
  client->Set(command, number);
  for (long waited = 0; waited < kAnswerTimeoutMs; waited += kPollMs) {
    unsigned int state = kRegisterInProgress;
    if (!client->Get(result, state)) return 0;
    if (state != kRegisterInProgress) return state;
    Sleep(kPollMs);
  }
  return 0;
}

// The result state's name from the catalogue ("Recall Failed").
std::string StateName(unsigned int result, unsigned int state) {
  if (state == 0) return "no answer from configd";
  auto* list = dynamic_cast<EnumDescriptor*>(FindParameter(std::to_string(result)));
  return list != nullptr ? list->GetEnumValue(state) : std::to_string(state);
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
  unsigned int state = RunRegister(client, kRegisterSave, kRegisterSaveResult, number);
  if (state != kRegisterDone) {
    Console::Error("preset %u not saved: %s", number,
                   StateName(kRegisterSaveResult, state).c_str());
    return kExitFailure;
  }
  printf("preset %u saved\n", number);
  return kExitOk;
}

int Recall(Config* client, unsigned int number) {
  unsigned int state = RunRegister(client, kRegisterRecall, kRegisterRecallResult, number);
  if (state != kRegisterDone) {
    Console::Error("preset %u not recalled: %s", number,
                   StateName(kRegisterRecallResult, state).c_str());
    return kExitFailure;
  }
  printf("preset %u recalled\n", number);
  return kExitOk;
}

int List(Config* client) {
  for (unsigned int number = 0; number <= kLastPreset; ++number) {
    std::string name;
    ParamDescriptor* nameParam = FindParameter(NameParam(number));
    if (nameParam == nullptr || !client->Get(nameParam->GetParamID(), name)) {
      Console::Error("configd gave no name for preset %u", number);
      return kExitFailure;
    }
    // A load of the preset tells whether it holds anything.
    unsigned int state =
        RunRegister(client, kRegisterLoadParamID, kRegisterLoadResultParamID, number);
    if (state == kRegisterDone) unlink(PresetsParamVector::PresetFileName(number).c_str());
    if (state != kRegisterDone && state != kRegisterEmpty) {
      Console::Error("preset %u: %s", number, StateName(kRegisterLoadResultParamID, state).c_str());
      return kExitFailure;
    }
    const char* status = number == 0 ? "factory" : state == kRegisterDone ? "saved" : "empty";
    printf("%2u  %-20s  %s\n", number, name.c_str(), status);
  }
  return kExitOk;
}

int Export(Config* client, unsigned int number, const std::string& path) {
  PresetsParamVector preset;
  if (!preset.Load(static_cast<eConfigID_t>(number), client)) {
    Console::Error(
        "preset %u not exported: %s", number,
        StateName(kRegisterLoadResultParamID, client->Get(kRegisterLoadResultParamID)).c_str());
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
  if (!preset.Store(static_cast<eConfigID_t>(number), client)) {
    Console::Error(
        "%s not imported as preset %u: %s", path.c_str(), number,
        StateName(kRegisterStoreResultParamID, client->Get(kRegisterStoreResultParamID)).c_str());
    return kExitFailure;
  }
  printf("%s imported as preset %u\n", path.c_str(), number);
  return kExitOk;
}

}  // namespace

int RunPreset(const Arguments& arguments) {
  const std::vector<std::string>& words = arguments.operands;
  const PresetForm* form = nullptr;
  for (const PresetForm& candidate : kPresetForms)
    if (words[0] == candidate.sub) form = &candidate;
  if (form == nullptr || words.size() != form->operands + 1) {
    fprintf(stderr, "configctl: usage: configctl %s\nTry 'configctl --help'.\n",
            form != nullptr ? form->form : "preset save|recall|list|export|import ...");
    return kExitUsage;
  }
  const std::string sub = words[0];
  unsigned int number = 0;
  // Preset 0 is the factory preset: it can be recalled and exported only.
  bool readable = sub == "recall" || sub == "export";
  if (!readable && sub != "list" && words[1] == "0") {
    Console::Error("preset 0 holds the factory values and cannot be overwritten");
    return kExitFailure;
  }
  if (sub != "list" && !ParsePreset(words[1], readable ? 0 : 1, number)) return kExitFailure;
  DaemonLink link(arguments.uri);
  Config* client = link.Open();
  if (client == nullptr) return kExitFailure;
  if (sub == "save") return Save(client, number, arguments);
  if (sub == "recall") return Recall(client, number);
  if (sub == "list") return List(client);
  if (sub == "export") return Export(client, number, words[2]);
  return Import(client, number, words[2]);
}

int RunFactoryReset(const Arguments& arguments) {
  DaemonLink link(arguments.uri);
  Config* client = link.Open();
  if (client == nullptr) return kExitFailure;
  unsigned int kind = arguments.hard ? 2 : 1;
  if (!client->Set(kFactorySettings, kind)) {
    Console::Error("could not send the factory reset to configd");
    return kExitFailure;
  }
  for (long waited = 0; waited < kAnswerTimeoutMs; waited += kPollMs) {
    unsigned int state = kind;
    if (!client->Get(kFactorySettings, state)) break;
    if (state == 0) {
      printf("%s done\n", arguments.hard ? "HARD FACTORY" : "FACTORY");
      return kExitOk;
    }
    Sleep(kPollMs);
  }
  Console::Error("configd did not finish the factory reset");
  return kExitFailure;
}

}  // namespace configctl
