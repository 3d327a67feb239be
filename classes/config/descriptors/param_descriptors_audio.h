// The builders of the audio catalogue: the fixed audio parameters (source
// enables and selections, output selection, the Dolby E framer, detection)
// and the per-channel families generated from ID tables (levels, phases,
// delays, the output map, the mixdown inputs and levels, AES/EBU sample-rate
// conversion). CreateDescriptors runs them in its fixed order.
//
// Audio sources, by index, as the families use them: 0 SDI1, 1 SDI2,
// 2 Fiber1, 3 Fiber2 (embedded, 16 channels each), 4 AES (8 channels, four
// pairs), 5 MADIBNC, 6 MADIFIB (64 channels each), 7 HDMI (8), 8 Analog (8),
// 9 MixDown1, 10 MixDown2 (a left and a right output each), 11 AudioSG (the
// signal generator: a 1 kHz and a 400 Hz tone). Index 12 repeats the signal
// generator's name and has no parameters of its own. The outputs of the
// output map are sources 0 to 8 and GlobalAudio, the map that outputs
// follow by default.
//
// Per-channel and per-pair parameters of channels 1 to 8 of the sources a
// Dolby E framer can take its input from (SDI1, SDI2, Fiber1, Fiber2, AES)
// carry the framer's "disabled_by" relations (audio_descriptor_helpers.h).
//
// Sources: param_descriptors_audioproc.cpp (the fixed parameters and the
// AES/EBU conversion pairs), _audio_families.cpp (levels, phases, delays,
// output map) and _audioproc_mixdown.cpp (the mixdowns).
//
// Thread-safety: the builders write the registry (and FactoryDefaultParamID);
// they run only while the catalogue is built.
#ifndef CLASSES_CONFIG_DESCRIPTORS_PARAM_DESCRIPTORS_AUDIO_H
#define CLASSES_CONFIG_DESCRIPTORS_PARAM_DESCRIPTORS_AUDIO_H

// The menu groups (k...MenuGroup).
#include "config/descriptors/param_groups.h"

constexpr int kAudioSourceCount = 13;
constexpr int kMaxAudioChannels = 64;
constexpr int kAudioOutputCount = 10;
constexpr int kMixDownCount = 2;
// A mixdown's inputs: L, R, C, LFE, Ls, Rs.
constexpr int kMixDownInputCount = 6;

// The fixed audio parameters; also makes the AES/EBU conversion pairs.
void createParamDescriptors_AudioProc();
void createParamDescriptors_AESEBUAudioSRC();

void CreateAudioDelaySamplesDescriptors();
void CreateAudioLevelDescriptors();
void CreateAudioPhaseDescriptors();
// Also fills FactoryDefaultParamID: each output's channel n takes its
// factory default from GlobalAudio's channel n where that exists, otherwise
// from itself.
void CreateAudioOutputMapDescriptors();

// The mixdown inputs, from the unit's ID table.
void CreateAudioMixDownDescriptors();
// The mixdown inputs of ids (one row per mixdown, one entry per input); an
// entry of 0 makes no parameter and is reported on standard error as a
// missing ID.
void CreateAudioMixDownDescriptors(const unsigned int (&ids)[kMixDownCount][kMixDownInputCount]);
void CreateMixDownLevelDescriptors();

#endif  // CLASSES_CONFIG_DESCRIPTORS_PARAM_DESCRIPTORS_AUDIO_H
