#include "config/owner/register_handler.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <vector>

#include "config/config.h"
#include "config/descriptors/owner_params.h"
#include "config/descriptors/param_descriptor.h"
#include "config/owner/factory_reset.h"
#include "config/owner/file_system.h"
#include "config/owner/preset_image.h"
#include "config/owner/preset_store.h"
#include "config/owner/value_image.h"
#include "config/values/config_value.h"
#include "config/values/presets_param_vector.h"

using namespace zyn::config::values;

namespace {

// The commands of kOwnerOperations, in its order; probe has none.
constexpr unsigned int kProbe = 0xFFFFFFFF;
constexpr unsigned int kOperationCommands[] = {
    RegisterHandler::kRegisterSave, RegisterHandler::kRegisterRecall,  kRegisterLoadParamID,
    kRegisterStoreParamID,          RegisterHandler::kFactorySettings, kProbe};
static_assert(std::size(kOperationCommands) == std::size(kOwnerOperations),
              "one command per operation");

// The most the answers parameter holds, within its descriptor's length.
constexpr size_t kAnswersBytes = 2048;

std::string Said(const char* format, unsigned int number) {
  char text[96];
  snprintf(text, sizeof text, format, number);
  return text;
}

}  // namespace

RegisterHandler::RegisterHandler(Config* store, PresetStore* presets, std::string folder)
    : StoreWorker(store), _presets(presets), _folder(std::move(folder)) {}

RegisterHandler::~RegisterHandler() { Stop(); }

bool RegisterHandler::IsCommand(unsigned int id) {
  return id == kRegisterRecall || id == kRegisterSave || id == kRegisterLoadParamID ||
         id == kRegisterStoreParamID || id == kFactorySettings;
}

bool RegisterHandler::InPresets(const ParamDescriptor* descriptor) {
  return descriptor->GetRegisterType() != eRegister_Exclude;
}

bool RegisterHandler::ParamChanged(eParam_t id, unsigned int value, timeval) {
  if (!IsCommand(id)) return true;
  // Returning the reset command to idle is the owner's own doing.
  if (id == kFactorySettings && value == FactoryReset::kIdle) return true;
  {
    std::lock_guard<std::mutex> lock(_mutex);
    _queue.push_back(Pending{id, value, std::string()});
  }
  _wake.notify_one();
  return true;
}

bool RegisterHandler::ParamChanged(eParam_t id, std::string value, timeval) {
  if (id != kOwnerRegisterRequestParamID || value.empty()) return true;
  Pending pending{0, 0, std::string()};
  if (!ParseRequest(value, pending.token, pending.command, pending.value)) {
    pending.command = 0;
    if (pending.token.empty()) {
      fprintf(stderr, "RegisterHandler::ParamChanged - malformed owner request ignored\n");
      return true;
    }
  }
  {
    std::lock_guard<std::mutex> lock(_mutex);
    _queue.push_back(std::move(pending));
  }
  _wake.notify_one();
  return true;
}

bool RegisterHandler::ParseRequest(const std::string& text, std::string& token,
                                   unsigned int& command, unsigned int& number) {
  token.clear();
  if (text.size() < 9 || text[8] != ' ') return false;
  std::string word = text.substr(0, 8);
  if (word.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos || word == "00000000")
    return false;
  token = word;
  size_t space = text.find(' ', 9);
  if (space == std::string::npos) return false;
  std::string operation = text.substr(9, space - 9);
  std::string digits = text.substr(space + 1);
  if (digits.empty() || digits.size() > 3 ||
      digits.find_first_not_of("0123456789") != std::string::npos)
    return false;
  for (size_t i = 0; i < std::size(kOwnerOperations); ++i) {
    if (operation != kOwnerOperations[i]) continue;
    command = kOperationCommands[i];
    number = static_cast<unsigned int>(strtoul(digits.c_str(), nullptr, 10));
    return command != kFactorySettings || number == FactoryReset::kFactory ||
           number == FactoryReset::kHardFactory;
  }
  return false;
}

void RegisterHandler::Run() {
  std::unique_lock<std::mutex> lock(_mutex);
  for (;;) {
    _wake.wait(lock, [this] { return _stopping || !_queue.empty(); });
    if (_queue.empty()) return;  // stopping with nothing left
    Pending pending = std::move(_queue.front());
    _queue.pop_front();
    lock.unlock();
    Outcome outcome = Execute(pending);
    if (!pending.token.empty()) Answer(pending.token, outcome);
    lock.lock();
  }
}

RegisterHandler::Outcome RegisterHandler::Execute(const Pending& pending) {
  unsigned int value = pending.value;
  switch (pending.command) {
    case kRegisterSave:
      return Save(value);
    case kRegisterRecall:
      return Recall(value);
    case kRegisterLoadParamID:
      return Load(value);
    case kRegisterStoreParamID:
      return Store(value);
    case kFactorySettings:
      return Reset(value == FactoryReset::kHardFactory);
    case kProbe:
      return Probe(value);
    default:
      return {kRegisterFailed, "not a request configd knows"};
  }
}

void RegisterHandler::Answer(const std::string& token, const Outcome& outcome) {
  std::string line = token + " " + std::to_string(outcome.state) + " " + outcome.message;
  for (char& c : line)
    if (c == '\n') c = ' ';
  _answers.push_back(line.substr(0, 255));
  size_t bytes = 0;
  for (const std::string& answer : _answers) bytes += answer.size() + 1;
  while (_answers.size() > kOwnerOutcomeLines || bytes > kAnswersBytes) {
    bytes -= _answers.front().size() + 1;
    _answers.pop_front();
  }
  std::string text;
  for (const std::string& answer : _answers) text += answer + "\n";
  if (!_store->Set(kOwnerRegisterOutcomesParamID, text))
    fprintf(stderr, "RegisterHandler::Answer - the store refused the answer to request %s\n",
            token.c_str());
}

RegisterHandler::Outcome RegisterHandler::Probe(unsigned int number) {
  std::string values;
  if (number == PresetStore::kFactoryPreset) return {kRegisterDone, "the factory preset"};
  if (_presets->Get(number, values)) return {kRegisterDone, Said("preset %u is saved", number)};
  return {kRegisterEmpty, Said("preset %u is empty", number)};
}

std::string RegisterHandler::PresetPath(unsigned int number) const {
  return _folder + "/preset_" + std::to_string(number) + ".bin";
}

RegisterHandler::Outcome RegisterHandler::Save(unsigned int number) {
  _store->Set(kRegisterSaveResult, kRegisterInProgress);
  Outcome outcome{kRegisterDone, Said("preset %u saved", number)};
  if (number == PresetStore::kFactoryPreset || number > PresetStore::kLastPreset) {
    fprintf(stderr, "RegisterHandler::Save - preset %u cannot be overwritten\n", number);
    outcome = {kRegisterFailed, Said("preset %u cannot be overwritten", number)};
  } else if (!_presets->Save(number, ValueImage::Capture(_store, &InPresets))) {
    outcome = {kRegisterFailed, Said("preset %u could not be written to the state folder", number)};
  }
  _store->Set(kRegisterSaveResult, outcome.state);
  return outcome;
}

bool RegisterHandler::ApplyWhole(const std::string& values, std::string& problem) {
  Vector wanted;
  if (!ValueImage::Parse(values, wanted)) {
    problem = "its values do not read back";
    return false;
  }
  std::vector<ConfigValue*> changes;
  for (size_t i = 0; i < wanted.Size(); ++i) {
    auto* value = static_cast<ConfigValue*>(wanted.Get(i));
    std::string why;
    ValueImage::Fit fit = ValueImage::Check(value, why);
    if (fit == ValueImage::Fit::kUnknown) {
      char id[16];
      snprintf(id, sizeof id, "0x%08X", value->GetParamID());
      problem = std::string("unknown parameter ") + id;
      return false;
    }
    ParamDescriptor* descriptor = _store->GetParamDescriptor(value->GetParamID());
    if (fit != ValueImage::Fit::kFits) {
      problem = descriptor->GetParamIDName() + ": " + why;
      return false;
    }
    if (!InPresets(descriptor)) {
      problem = descriptor->GetParamIDName() + " does not belong in presets";
      return false;
    }
    if (!ValueImage::Holds(_store, value)) changes.push_back(value);
  }
  // Keep what is replaced, so that a refusal part-way can be undone.
  Vector before;
  std::string previous = ValueImage::Capture(_store, [&](const ParamDescriptor* d) {
    for (ConfigValue* change : changes)
      if (change->GetParamID() == d->GetParamID()) return true;
    return false;
  });
  ValueImage::Parse(previous, before);
  for (size_t i = 0; i < changes.size(); ++i) {
    if (ValueImage::Apply(_store, changes[i])) continue;
    problem = _store->GetParamDescriptor(changes[i]->GetParamID())->GetParamIDName() +
              " refused by the store";
    for (size_t j = 0; j < before.Size(); ++j) {
      auto* old = static_cast<ConfigValue*>(before.Get(j));
      if (!ValueImage::Holds(_store, old)) ValueImage::Apply(_store, old);
    }
    return false;
  }
  return true;
}

RegisterHandler::Outcome RegisterHandler::Recall(unsigned int number) {
  _store->Set(kRegisterRecallResult, kRegisterInProgress);
  std::string values;
  std::string problem;
  Outcome outcome{kRegisterDone, Said("preset %u recalled", number)};
  if (number == PresetStore::kFactoryPreset) {
    values = ValueImage::Defaults(&InPresets);
  } else if (!_presets->Get(number, values)) {
    outcome = {kRegisterEmpty, Said("preset %u is empty", number)};
  }
  if (outcome.state == kRegisterDone && !ApplyWhole(values, problem)) {
    fprintf(stderr, "RegisterHandler::Recall - preset %u refused: %s\n", number, problem.c_str());
    outcome = {kRegisterFailed, Said("preset %u refused: ", number) + problem};
  } else if (outcome.state == kRegisterDone && _presets->FromOlderCopy(number)) {
    outcome.message =
        Said("preset %u recalled from its older copy: the newer copy is damaged", number);
    fprintf(stderr, "RegisterHandler::Recall - %s\n", outcome.message.c_str());
  }
  _store->Set(kRegisterRecallResult, outcome.state);
  return outcome;
}

RegisterHandler::Outcome RegisterHandler::Load(unsigned int number) {
  _store->Set(kRegisterLoadResultParamID, kRegisterInProgress);
  std::string values;
  if (number == PresetStore::kFactoryPreset) {
    values = ValueImage::Defaults(&InPresets);
  } else if (!_presets->Get(number, values)) {
    _store->Set(kRegisterLoadResultParamID, kRegisterEmpty);
    return {kRegisterEmpty, Said("preset %u is empty", number)};
  }
  std::string image = PresetImage::Encode(PresetImage::UnitProduct(), values);
  std::string why;
  const char* step = nullptr;
  bool written = FileSystem::MakePrivateFolder(_folder, kFolderMode, why);
  if (!written) {
    fprintf(stderr, "RegisterHandler::Load - the preset folder %s is not usable: %s\n",
            _folder.c_str(), why.c_str());
    why = "the preset folder " + _folder + " is not usable: " + why;
  } else if (!(written = FileSystem::Default()->WriteAtomic(PresetPath(number), image.data(),
                                                            image.size(), kFileMode, step))) {
    why = std::string(step) + " of " + PresetPath(number) + " failed: " + strerror(errno);
    fprintf(stderr, "RegisterHandler::Load - preset %u not handed over: %s\n", number, why.c_str());
  }
  _store->Set(kRegisterLoadResultParamID, written ? kRegisterDone : kRegisterFailed);
  if (!written) return {kRegisterFailed, Said("preset %u not handed over: ", number) + why};
  return {kRegisterDone, "handed over in " + PresetPath(number)};
}

RegisterHandler::Outcome RegisterHandler::Store(unsigned int number) {
  _store->Set(kRegisterStoreResultParamID, kRegisterInProgress);
  std::string path = PresetPath(number);
  if (number == PresetStore::kFactoryPreset || number > PresetStore::kLastPreset) {
    fprintf(stderr, "RegisterHandler::Store - preset %u cannot be stored\n", number);
    _store->Set(kRegisterStoreResultParamID, kRegisterFailed);
    return {kRegisterFailed, Said("preset %u cannot be overwritten", number)};
  }
  std::string image;
  std::string unusable;
  if (!FileSystem::CheckFolder(_folder, unusable)) {
    fprintf(stderr, "RegisterHandler::Store - the preset folder %s is not usable: %s\n",
            _folder.c_str(), unusable.c_str());
    _store->Set(kRegisterStoreResultParamID, kRegisterFailed);
    return {kRegisterFailed, "the preset folder " + _folder + " is not usable: " + unusable};
  }
  if (!FileSystem::Default()->ReadFile(path, PresetImage::kMaxImageBytes, image)) {
    std::string why = strerror(errno);
    fprintf(stderr, "RegisterHandler::Store - %s cannot be read: %s\n", path.c_str(), why.c_str());
    _store->Set(kRegisterStoreResultParamID, kRegisterFailed);
    return {kRegisterFailed, path + " cannot be read: " + why};
  }
  std::string values;
  std::string problem;
  bool fits = PresetImage::Decode(image, PresetImage::UnitProduct(), values, problem);
  if (fits) {
    // Every value must be one the store would take unchanged.
    Vector parsed;
    ValueImage::Parse(values, parsed);
    for (size_t i = 0; fits && i < parsed.Size(); ++i) {
      auto* value = static_cast<ConfigValue*>(parsed.Get(i));
      std::string why;
      ParamDescriptor* descriptor = _store->GetParamDescriptor(value->GetParamID());
      fits = ValueImage::Check(value, why) == ValueImage::Fit::kFits && InPresets(descriptor);
      if (!fits) problem = "a value does not fit its parameter";
    }
  }
  if (!fits) {
    fprintf(stderr, "RegisterHandler::Store - %s rejected: %s\n", path.c_str(), problem.c_str());
    _store->Set(kRegisterStoreResultParamID, kRegisterEmpty);
    return {kRegisterEmpty, path + " rejected: " + problem};
  }
  bool kept = _presets->Save(number, values);
  _store->Set(kRegisterStoreResultParamID, kept ? kRegisterDone : kRegisterFailed);
  if (!kept)
    return {kRegisterFailed, Said("preset %u could not be written to the state folder", number)};
  return {kRegisterDone, Said("preset %u stored", number)};
}

RegisterHandler::Outcome RegisterHandler::Reset(bool hard) {
  unsigned int changed = FactoryReset::Apply(_store, hard);
  bool cleared = !hard || _presets->Clear();
  if (!cleared)
    fprintf(stderr, "RegisterHandler::Reset - some saved presets could not be removed\n");
  const char* kind = hard ? "HARD FACTORY" : "FACTORY";
  fprintf(stderr, "RegisterHandler::Reset - %s: %u values returned to their defaults\n", kind,
          changed);
  _store->Set(kFactorySettings, FactoryReset::kIdle);
  std::string said =
      std::string(kind) + ": " + std::to_string(changed) + " values returned to their defaults";
  if (!cleared) return {kRegisterFailed, said + ", but some saved presets could not be removed"};
  return {kRegisterDone, said};
}
