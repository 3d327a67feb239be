#include "config/descriptors/audio_descriptor_helpers.h"

#include <iterator>

#include "config/descriptors/integer_descriptor.h"

std::unordered_map<unsigned int, unsigned int> FactoryDefaultParamID(10);

namespace {

constexpr unsigned int kDolbyFramerActiveParamIDs[] = {kAudio1DolbyFramerActiveParamID,
                                                       kAudio2DolbyFramerActiveParamID};

// The two framer states that route each channel pair.
constexpr unsigned int kFramerStatesByChannelPair[][2] = {{3, 11}, {4, 12}, {5, 13}, {6, 14}};

constexpr int kFramerCount = static_cast<int>(std::size(kDolbyFramerActiveParamIDs));
constexpr int kChannelPairCount = static_cast<int>(std::size(kFramerStatesByChannelPair));

}  // namespace

void HideChannelsControlledByDolbyFramer(IntegerDescriptor* d, int framer, int channelPair) {
  if (d == nullptr || framer < 0 || framer >= kFramerCount || channelPair < 0 ||
      channelPair >= kChannelPairCount) {
    return;
  }
  for (unsigned int state : kFramerStatesByChannelPair[channelPair]) {
    d->AddRelation("disabled_by", kDolbyFramerActiveParamIDs[framer], state);
  }
}

unsigned int GetAudioProcOutputParamIDThatHasFactoryDefault(unsigned int id) {
  return FactoryDefaultParamID[id];
}
