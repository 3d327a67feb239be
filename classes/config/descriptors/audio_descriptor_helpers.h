// Helpers shared by the audio catalogue builders: the relations that disable
// a per-channel audio parameter while a Dolby E framer owns its channels, and
// the map from a per-output audio parameter to the member of its family that
// carries the factory default.
//
// Thread-safety: FactoryDefaultParamID is filled while the catalogue is built
// (single-threaded). Its lookup inserts missing keys, so it is not safe to
// call concurrently with itself; after start look up only known IDs.
#ifndef CLASSES_CONFIG_DESCRIPTORS_AUDIO_DESCRIPTOR_HELPERS_H
#define CLASSES_CONFIG_DESCRIPTORS_AUDIO_DESCRIPTOR_HELPERS_H

#include <unordered_map>

class IntegerDescriptor;

// The framer-activity parameters of the two Dolby E framers.
constexpr unsigned int kAudio1DolbyFramerActiveParamID = 0xF107D3C5;  // framer 0
constexpr unsigned int kAudio2DolbyFramerActiveParamID = 0x955ED016;  // framer 1

// For channel pair 0 to 3 of framer 0 or 1, adds to d two "disabled_by"
// relations (framer-activity ID, framer state) for the two framer states that
// route that pair. Any other framer or pair, or a null d, adds nothing.
void HideChannelsControlledByDolbyFramer(IntegerDescriptor* d, int framer, int channelPair);

// Per-output audio parameter ID to the ID of its family member that carries
// the factory default; filled by the audio output-map builder.
extern std::unordered_map<unsigned int, unsigned int> FactoryDefaultParamID;

// The entry of id in FactoryDefaultParamID. An unknown id yields 0 and is
// remembered as mapping to 0.
unsigned int GetAudioProcOutputParamIDThatHasFactoryDefault(unsigned int id);

#endif  // CLASSES_CONFIG_DESCRIPTORS_AUDIO_DESCRIPTOR_HELPERS_H
