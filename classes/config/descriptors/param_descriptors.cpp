#include "config/descriptors/param_descriptors.h"

#include <cstdio>

#include "config/descriptors/param_descriptors_audio.h"
#include "config/descriptors/param_descriptors_system.h"
#include "config/descriptors/param_descriptors_video.h"

namespace {

constexpr std::size_t kInitialBuckets = 10;

// Both registry maps are allocated once and never freed, so lookups stay
// valid until the process ends (static destructors included) and the
// descriptors stay reachable for leak checkers.
std::unordered_map<std::string, unsigned int>& ParamNameToID =
    *new std::unordered_map<std::string, unsigned int>(kInitialBuckets);

typedef void (*CatalogueBuilder)();

// The catalogue builders, run by CreateDescriptors in this fixed order (a
// later builder that registers an ID already present replaces it):
//   1. createParamDescriptor_TestID, createParamDescriptor_Status,
//      createParamDescriptor_PersistStatus, createParamDescriptor_ProductID
//   2. createParamDescriptors_Config, createParamDescriptor_FrontPanelLock,
//      createParamDescriptor_SystemPassword
//   3. createParamDescriptors_VideoProc, createParamDescriptors_AudioProc,
//      createParamDescriptors_LED, createParamDescriptors_Output,
//      createParamDescriptors_VidProcAmp, createParamDescriptors_CustomConversion,
//      createParamDescriptors_RegionOfInterest, createParamDescriptors_Remote,
//      createParamDescriptors_Presets, createParamDescriptors_System,
//      createParamDescriptors_Vid1OutputTiming, createParamDescriptors_Vid2OutputTiming,
//      createParamDescriptors_Alarm, createParamDescriptors_VCP, createParamDescriptors_MADI
//   4. CreateAudioDelaySamplesDescriptors, CreateAudioLevelDescriptors,
//      CreateAudioPhaseDescriptors, CreateAudioOutputMapDescriptors,
//      CreateAudioMixDownDescriptors, CreateMixDownLevelDescriptors
//   5. the menu positions: createParamDescriptor_LastSelectedParam,
//      createParamDescriptor_LastSelectedParamConfig,
//      createParamDescriptor_LastSelectedParamSystem,
//      createParamDescriptor_LastSelectedParamVideoProc,
//      createParamDescriptor_LastSelectedParamAudioProc,
//      createParamDescriptor_LastSelectedParamRemote,
//      createParamDescriptor_LastSelectedParamPreset,
//      createParamDescriptor_LastSelectedParamOutput,
//      createParamDescriptor_LastSelectedParamVideoOutput,
//      createParamDescriptor_LastSelectedParamAudioOutput
//   6. createParamDescriptor_CurrentlySelectedButton,
//      createParamDescriptor_PauseFeatures, createDiscoveryDescriptors
// The table ends with a null entry.
constexpr CatalogueBuilder kCatalogueBuilders[] = {
    // 1.
    createParamDescriptor_TestID,
    createParamDescriptor_Status,
    createParamDescriptor_PersistStatus,
    createParamDescriptor_ProductID,
    // 2.
    createParamDescriptors_Config,
    createParamDescriptor_FrontPanelLock,
    createParamDescriptor_SystemPassword,
    // 3.
    createParamDescriptors_VideoProc,
    createParamDescriptors_AudioProc,
    createParamDescriptors_LED,
    createParamDescriptors_Output,
    createParamDescriptors_VidProcAmp,
    createParamDescriptors_CustomConversion,
    createParamDescriptors_RegionOfInterest,
    createParamDescriptors_Remote,
    createParamDescriptors_Presets,
    createParamDescriptors_System,
    createParamDescriptors_Vid1OutputTiming,
    createParamDescriptors_Vid2OutputTiming,
    createParamDescriptors_Alarm,
    createParamDescriptors_VCP,
    createParamDescriptors_MADI,
    // 4.
    CreateAudioDelaySamplesDescriptors,
    CreateAudioLevelDescriptors,
    CreateAudioPhaseDescriptors,
    CreateAudioOutputMapDescriptors,
    CreateAudioMixDownDescriptors,
    CreateMixDownLevelDescriptors,
    // 5.
    createParamDescriptor_LastSelectedParam,
    createParamDescriptor_LastSelectedParamConfig,
    createParamDescriptor_LastSelectedParamSystem,
    createParamDescriptor_LastSelectedParamVideoProc,
    createParamDescriptor_LastSelectedParamAudioProc,
    createParamDescriptor_LastSelectedParamRemote,
    createParamDescriptor_LastSelectedParamPreset,
    createParamDescriptor_LastSelectedParamOutput,
    createParamDescriptor_LastSelectedParamVideoOutput,
    createParamDescriptor_LastSelectedParamAudioOutput,
    // 6.
    createParamDescriptor_CurrentlySelectedButton,
    createParamDescriptor_PauseFeatures,
    createDiscoveryDescriptors,
    nullptr,
};

}  // namespace

std::unordered_map<unsigned int, ParamDescriptor*>& g_paramDescriptors =
    *new std::unordered_map<unsigned int, ParamDescriptor*>(kInitialBuckets);

void CreateDescriptors() {
  if (!g_paramDescriptors.empty()) return;
  for (const CatalogueBuilder* builder = kCatalogueBuilders; *builder != nullptr; ++builder) {
    (*builder)();
  }
  IndexDescriptorNames();
}

void AddDescriptor(ParamDescriptor* d) {
  if (d == nullptr) {
    fprintf(stderr, "AddDescriptor - NULL descriptor ignored\n");
    return;
  }
  ParamDescriptor*& slot = g_paramDescriptors[d->GetParamID()];
  if (slot != d) delete slot;
  slot = d;
}

// Each name is entered with its descriptor's own ID, which is the key it is
// registered under except for eParamID_AudioDetectedInput_SDI2: that name
// leads to the ID its descriptor reports, SDI1's.
void IndexDescriptorNames() {
  for (const auto& entry : g_paramDescriptors) {
    ParamNameToID[entry.second->GetParamIDName()] = entry.second->GetParamID();
  }
}

ParamDescriptor* GetDescriptor(unsigned int id) {
  auto it = g_paramDescriptors.find(id);
  return it == g_paramDescriptors.end() ? nullptr : it->second;
}

ParamDescriptor* GetDescriptor(const std::string& idName) {
  auto it = ParamNameToID.find(idName);
  return it == ParamNameToID.end() ? nullptr : GetDescriptor(it->second);
}

bool IsValidParamID(unsigned int id) { return g_paramDescriptors.count(id) != 0; }

std::vector<unsigned int> GetParamIDs() {
  std::vector<unsigned int> ids;
  ids.reserve(g_paramDescriptors.size());
  for (const auto& entry : g_paramDescriptors) ids.push_back(entry.first);
  return ids;
}

std::vector<std::string> GetParamIDNames() {
  std::vector<std::string> names;
  names.reserve(ParamNameToID.size());
  for (const auto& entry : ParamNameToID) names.push_back(entry.first);
  return names;
}
