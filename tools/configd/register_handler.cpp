#include "configd/register_handler.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <vector>

#include "config/config.h"
#include "config/descriptors/param_descriptor.h"
#include "config/values/config_value.h"
#include "config/values/presets_param_vector.h"
#include "configd/factory_reset.h"
#include "configd/file_system.h"
#include "configd/preset_image.h"
#include "configd/preset_store.h"
#include "configd/value_image.h"

using namespace zyn::config::values;

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
    _queue.emplace_back(id, value);
  }
  _wake.notify_one();
  return true;
}

bool RegisterHandler::ParamChanged(eParam_t, std::string, timeval) { return true; }

void RegisterHandler::Run() {
  std::unique_lock<std::mutex> lock(_mutex);
  for (;;) {
    _wake.wait(lock, [this] { return _stopping || !_queue.empty(); });
    if (_queue.empty()) return;  // stopping with nothing left
    auto [id, value] = _queue.front();
    _queue.pop_front();
    lock.unlock();
    if (id == kRegisterSave) Save(value);
    if (id == kRegisterRecall) Recall(value);
    if (id == kRegisterLoadParamID) Load(value);
    if (id == kRegisterStoreParamID) Store(value);
    if (id == kFactorySettings) Reset(value == FactoryReset::kHardFactory);
    lock.lock();
  }
}

std::string RegisterHandler::PresetPath(unsigned int number) const {
  return _folder + "/preset_" + std::to_string(number) + ".bin";
}

void RegisterHandler::Save(unsigned int number) {
  _store->Set(kRegisterSaveResult, kRegisterInProgress);
  if (number == PresetStore::kFactoryPreset) {
    fprintf(stderr, "RegisterHandler::Save - the factory preset cannot be overwritten\n");
    _store->Set(kRegisterSaveResult, kRegisterFailed);
    return;
  }
  bool saved = _presets->Save(number, ValueImage::Capture(_store, &InPresets));
  _store->Set(kRegisterSaveResult, saved ? kRegisterDone : kRegisterFailed);
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

void RegisterHandler::Recall(unsigned int number) {
  _store->Set(kRegisterRecallResult, kRegisterInProgress);
  std::string values;
  if (number == PresetStore::kFactoryPreset) {
    values = ValueImage::Defaults(&InPresets);
  } else if (!_presets->Get(number, values)) {
    _store->Set(kRegisterRecallResult, kRegisterEmpty);
    return;
  }
  std::string problem;
  if (!ApplyWhole(values, problem)) {
    fprintf(stderr, "RegisterHandler::Recall - preset %u refused: %s\n", number, problem.c_str());
    _store->Set(kRegisterRecallResult, kRegisterFailed);
    return;
  }
  _store->Set(kRegisterRecallResult, kRegisterDone);
}

void RegisterHandler::Load(unsigned int number) {
  _store->Set(kRegisterLoadResultParamID, kRegisterInProgress);
  std::string values;
  if (number == PresetStore::kFactoryPreset) {
    values = ValueImage::Defaults(&InPresets);
  } else if (!_presets->Get(number, values)) {
    _store->Set(kRegisterLoadResultParamID, kRegisterEmpty);
    return;
  }
  std::string image = PresetImage::Encode(PresetImage::UnitProduct(), values);
  std::string why;
  const char* step = nullptr;
  bool written = FileSystem::MakePrivateFolder(_folder, kFolderMode, why);
  if (!written) {
    fprintf(stderr, "RegisterHandler::Load - the preset folder %s is not usable: %s\n",
            _folder.c_str(), why.c_str());
  } else if (!(written = FileSystem::Default()->WriteAtomic(PresetPath(number), image.data(),
                                                            image.size(), kFileMode, step))) {
    fprintf(stderr, "RegisterHandler::Load - preset %u not handed over: %s of %s failed: %s\n",
            number, step, PresetPath(number).c_str(), strerror(errno));
  }
  _store->Set(kRegisterLoadResultParamID, written ? kRegisterDone : kRegisterFailed);
}

void RegisterHandler::Store(unsigned int number) {
  _store->Set(kRegisterStoreResultParamID, kRegisterInProgress);
  std::string path = PresetPath(number);
  if (number == PresetStore::kFactoryPreset || number > PresetStore::kLastPreset) {
    fprintf(stderr, "RegisterHandler::Store - preset %u cannot be stored\n", number);
    _store->Set(kRegisterStoreResultParamID, kRegisterFailed);
    return;
  }
  std::string image;
  std::string unusable;
  if (!FileSystem::CheckFolder(_folder, unusable)) {
    fprintf(stderr, "RegisterHandler::Store - the preset folder %s is not usable: %s\n",
            _folder.c_str(), unusable.c_str());
    _store->Set(kRegisterStoreResultParamID, kRegisterFailed);
    return;
  }
  if (!FileSystem::Default()->ReadFile(path, PresetImage::kMaxImageBytes, image)) {
    fprintf(stderr, "RegisterHandler::Store - %s cannot be read: %s\n", path.c_str(),
            strerror(errno));
    _store->Set(kRegisterStoreResultParamID, kRegisterFailed);
    return;
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
    return;
  }
  bool kept = _presets->Save(number, values);
  _store->Set(kRegisterStoreResultParamID, kept ? kRegisterDone : kRegisterFailed);
}

void RegisterHandler::Reset(bool hard) {
  unsigned int changed = FactoryReset::Apply(_store, hard);
  if (hard && !_presets->Clear())
    fprintf(stderr, "RegisterHandler::Reset - some saved presets could not be removed\n");
  fprintf(stderr, "RegisterHandler::Reset - %s: %u values returned to their defaults\n",
          hard ? "HARD FACTORY" : "FACTORY", changed);
  _store->Set(kFactorySettings, FactoryReset::kIdle);
}
