// The fixed audio parameters: per-source level, phase and delay enables,
// the mixdowns' source and mode, each output's audio source, the Dolby E
// framer, detected input audio and MADI status, and the AES/EBU sample-rate
// conversion of each AES pair.
//
// Audio source values are the source indices of param_descriptors_audio.h.
// An output's source may also be 13, "follow GlobalAudio" (12 is the source
// table's repeated signal-generator entry, not a source of its own).
//
// eParamID_AudioDetectedInput_SDI2 is registered under its own ID but its
// descriptor reports the ID of eParamID_AudioDetectedInput_SDI1, as the unit
// has always had it: clients that look it up by name reach SDI1's parameter,
// by number SDI2's. Keep it so.
#include "config/descriptors/audio_descriptor_helpers.h"
#include "config/descriptors/catalogue_family.h"
#include "config/descriptors/param_descriptors.h"
#include "config/descriptors/param_descriptors_audio.h"

namespace zyn {
namespace config {
namespace catalogue {
namespace {

constexpr unsigned int kDetectedInputSDI1ParamID = 0x65B79CBF;
constexpr unsigned int kDetectedInputSDI2ParamID = 0x66FD2962;

// clang-format off
constexpr const char* kReadonly[] = {"readonly"};

constexpr EnumValue kDisableEnable[] = {{0, "Disable"}, {1, "Enable"}};
constexpr EnumValue kOffOn[] = {{0, "Off"}, {1, "On"}};
// Delays: the source's global delay, or one per channel pair.
constexpr EnumValue kDelaySelects[] = {{0, "Global"}, {1, "Per Pair", "PerPair"}};

constexpr EnumValue kSDI1 = {0, "SDI1"};
constexpr EnumValue kSDI2 = {1, "SDI2"};
constexpr EnumValue kFiber1 = {2, "Fiber1"};
constexpr EnumValue kFiber2 = {3, "Fiber2"};
constexpr EnumValue kAES = {4, "AES"};
constexpr EnumValue kMADIBNC = {5, "MADI BNC", "MADI BNC"};
constexpr EnumValue kMADIFIB = {6, "MADI Fiber", "MADI Fib"};
constexpr EnumValue kHDMI = {7, "HDMI"};
constexpr EnumValue kAnalog = {8, "Analog"};
constexpr EnumValue kMixDown1 = {9, "Mix Down 1", "MixDown1"};
constexpr EnumValue kMixDown2 = {10, "Mix Down 2", "MixDown2"};
constexpr EnumValue kSignalGenerator = {11, "Signal Gen", "Sig Gen"};
constexpr EnumValue kFollowGlobal = {13, "Global Audio", "Global"};

// What a mixdown mixes: an input source.
constexpr EnumValue kInputSources[] = {kSDI1, kSDI2, kFiber1, kFiber2, kAES, kMADIBNC, kMADIFIB, kHDMI, kAnalog};
// What the global audio map carries.
constexpr EnumValue kGlobalSources[] = {kSDI1, kSDI2, kFiber1, kFiber2, kAES, kMADIBNC, kMADIFIB, kHDMI, kAnalog, kMixDown1, kMixDown2, kSignalGenerator};
// What an output carries; by default the global audio.
constexpr EnumValue kOutputSources[] = {kFollowGlobal, kSDI1, kSDI2, kFiber1, kFiber2, kAES, kMADIBNC, kMADIFIB, kHDMI, kAnalog, kMixDown1, kMixDown2, kSignalGenerator};
constexpr EnumValue kMixDownModes[] = {{0, "Off"}, {1, "Stereo Lo/Ro", "Lo/Ro"}, {2, "Surround Lt/Rt", "Lt/Rt"}, {3, "Mono"}};
// A command that needs confirming, as the front panel steps through it.
constexpr EnumValue kResetSteps[] = {{0, "Reset?", "Reset"}, {1, "Confirm?"}, {2, "Resetting", "Resetng"}};
constexpr EnumValue kDetectedAudio[] = {{0, "No Audio", "None"}, {1, "PCM"}, {2, "Dolby E", "DolbyE"}, {3, "Non-PCM", "NonPCM"}};
constexpr EnumValue kMADIStates[] = {{0, "No Signal", "NoSignal"}, {1, "56 Channel", "56 Ch"}, {2, "64 Channel", "64 Ch"}};

// The Dolby E framer takes one channel pair of an embedded or AES source.
// Its activity names the pair it owns: 3 to 6 while framing pairs 1 to 4,
// 11 to 14 while locking onto them (HideChannelsControlledByDolbyFramer).
constexpr EnumValue kFramerInputs[] = {kSDI1, kSDI2, kFiber1, kFiber2, kAES};
constexpr EnumValue kFramerPairs[] = {{0, "Off"}, {1, "Ch 1/2"}, {2, "Ch 3/4"}, {3, "Ch 5/6"}, {4, "Ch 7/8"}};
constexpr EnumValue kFramerStates[] = {{0, "Off"}, {1, "Searching", "Search"}, {2, "No Dolby E", "NoDolbyE"},
                                       {3, "Framing Ch 1/2", "Frm 1/2"}, {4, "Framing Ch 3/4", "Frm 3/4"}, {5, "Framing Ch 5/6", "Frm 5/6"}, {6, "Framing Ch 7/8", "Frm 7/8"},
                                       {11, "Locking Ch 1/2", "Lck 1/2"}, {12, "Locking Ch 3/4", "Lck 3/4"}, {13, "Locking Ch 5/6", "Lck 5/6"}, {14, "Locking Ch 7/8", "Lck 7/8"}};
constexpr EnumValue kLockStates[] = {{0, "Unlocked"}, {1, "Locked"}};

constexpr CatalogueRow Audio(CatalogueRow row) { return row.Feature(eFeature_Audio); }
constexpr CatalogueRow Proc(CatalogueRow row, const char* menu) { return Audio(row).Menu(kAudioProcMenuGroup, menu); }
constexpr CatalogueRow Output(CatalogueRow row, const char* menu) { return Audio(row).Menu(kAudioOutputMenuGroup, menu); }
constexpr CatalogueRow Status(CatalogueRow row) { return Audio(row).Store(kStatus).Classes(kReadonly); }
constexpr CatalogueRow LevelEnable(unsigned int id, const char* id_name, const char* name, const char* menu) { return Proc(Enum(id, id_name, name, "LvlAdjEn").Values(kDisableEnable), menu); }
constexpr CatalogueRow PhaseEnable(unsigned int id, const char* id_name, const char* name, const char* menu) { return Proc(Enum(id, id_name, name, "PhsAdjEn").Values(kDisableEnable), menu); }
constexpr CatalogueRow DelaySelect(unsigned int id, const char* id_name, const char* name, const char* menu) { return Proc(Enum(id, id_name, name, "DlySel").Values(kDelaySelects), menu); }
constexpr CatalogueRow OutputSelect(unsigned int id, const char* id_name, const char* name, const char* menu) { return Output(Enum(id, id_name, name, "AudioSrc").Values(kOutputSources).Default(kFollowGlobal.value), menu); }
constexpr CatalogueRow Detected(unsigned int id, const char* id_name, const char* name) { return Status(Enum(id, id_name, name, "AudioIn").Values(kDetectedAudio)); }

constexpr CatalogueRow kAudioProcRows[] = {
    // Mixdowns.
    Proc(Enum(0xF00A566B, "eParamID_AudioInputSelect_MixDown1", "Mix Down 1 Source", "MxDn1Src").Values(kInputSources), "1.1"),
    Proc(Enum(0xF2801460, "eParamID_AudioMixDown1_Mode", "Mix Down 1 Mode", "MxDn1Md").Values(kMixDownModes).Default(1), "1.2"),
    Proc(Enum(0xD1C651A3, "eParamID_AudioInputSelect_MixDown2", "Mix Down 2 Source", "MxDn2Src").Values(kInputSources).Default(kSDI2.value), "1.3"),
    Proc(Enum(0xC901DDD6, "eParamID_AudioMixDown2_Mode", "Mix Down 2 Mode", "MxDn2Md").Values(kMixDownModes).Default(1), "1.4"),
    Proc(Enum(0xAD3E62B3, "eParamID_AudioMixDown_Reset", "Reset Mix Downs", "MxDnRst").Values(kResetSteps).Store(kVolatile), "1.5"),

    // The Dolby E framer.
    Proc(Enum(0x83AEC1BF, "eParamID_Audio1DolbyFramerInput", "Dolby Framer Input", "DlbyIn").Values(kFramerInputs), "6.1"),
    Proc(Enum(0xD15E07A1, "eParamID_Audio1DolbyFramerInputPair", "Dolby Framer Pair", "DlbyPair").Values(kFramerPairs), "6.2"),
    Proc(Integer(0xFC2ABDBA, "eParamID_Audio1DolbyFramerOffsetSamples", "Dolby Framer Offset", "DlbyOfst").Range(0, 1601, 0).Units("samples"), "6.3"),
    Proc(Integer(0x9026CFF5, "eParamID_Audio1DolbyFramerOffsetFrames", "Dolby Framer Delay", "DlbyDly").Range(0, 3, 1).Units("frames"), "6.4"),
    Proc(Enum(0x97506694, "eParamID_Audio1DolbyETimingCorrection", "Dolby E Timing Correct", "DlbyTime").Values(kOffOn).Default(1), "6.5"),
    Status(Enum(kAudio1DolbyFramerActiveParamID, "eParamID_Audio1DolbyFramerActive", "Dolby Framer", "DlbyFrmr").Values(kFramerStates)),
    Status(Enum(0xFE06C2DE, "eParamID_Audio1DolbyFramerLocked", "Dolby Framer Lock", "DlbyLock").Values(kLockStates)),

    // Level adjustment, by source.
    LevelEnable(0x38D90EC6, "eParamID_AudioLevelAdjustEnable_SDI1", "SDI1 Level Adjust", "7.1"),
    LevelEnable(0x7BD762C5, "eParamID_AudioLevelAdjustEnable_SDI2", "SDI2 Level Adjust", "7.2"),
    LevelEnable(0x557FF938, "eParamID_AudioLevelAdjustEnable_Fiber1", "Fiber1 Level Adjust", "7.3"),
    LevelEnable(0x61691927, "eParamID_AudioLevelAdjustEnable_Fiber2", "Fiber2 Level Adjust", "7.4"),
    LevelEnable(0x5751D610, "eParamID_AudioLevelAdjustEnable_AES", "AES Level Adjust", "7.5"),
    LevelEnable(0x6472090A, "eParamID_AudioLevelAdjustEnable_MADIBNC", "MADI BNC Level Adjust", "7.6"),
    LevelEnable(0xED942B46, "eParamID_AudioLevelAdjustEnable_MADIFIB", "MADI Fiber Level Adjust", "7.7"),
    LevelEnable(0xAADCBCCF, "eParamID_AudioLevelAdjustEnable_HDMI", "HDMI Level Adjust", "7.8"),
    LevelEnable(0x0EFAF7A9, "eParamID_AudioLevelAdjustEnable_Analog", "Analog Level Adjust", "7.9"),
    LevelEnable(0xF507E79D, "eParamID_AudioLevelAdjustEnable_MixDown1", "Mix Down 1 Level Adjust", "7.10"),
    LevelEnable(0xCCAC5640, "eParamID_AudioLevelAdjustEnable_MixDown2", "Mix Down 2 Level Adjust", "7.11"),
    LevelEnable(0x4EA74511, "eParamID_AudioLevelAdjustEnable_AudioSG", "Signal Gen Level Adjust", "7.12"),

    // Phase adjustment, by source (the mixdowns have none).
    PhaseEnable(0x8FB40E9E, "eParamID_AudioPhaseAdjustEnable_SDI1", "SDI1 Phase Adjust", "8.1"),
    PhaseEnable(0x7EA6B315, "eParamID_AudioPhaseAdjustEnable_SDI2", "SDI2 Phase Adjust", "8.2"),
    PhaseEnable(0xD0596504, "eParamID_AudioPhaseAdjustEnable_Fiber1", "Fiber1 Phase Adjust", "8.3"),
    PhaseEnable(0x170182CF, "eParamID_AudioPhaseAdjustEnable_Fiber2", "Fiber2 Phase Adjust", "8.4"),
    PhaseEnable(0x6878544A, "eParamID_AudioPhaseAdjustEnable_AES", "AES Phase Adjust", "8.5"),
    PhaseEnable(0x351A073D, "eParamID_AudioPhaseAdjustEnable_MADIBNC", "MADI BNC Phase Adjust", "8.6"),
    PhaseEnable(0xF4D3FED5, "eParamID_AudioPhaseAdjustEnable_MADIFIB", "MADI Fiber Phase Adjust", "8.7"),
    PhaseEnable(0x5EB99013, "eParamID_AudioPhaseAdjustEnable_HDMI", "HDMI Phase Adjust", "8.8"),
    PhaseEnable(0xE764D43C, "eParamID_AudioPhaseAdjustEnable_Analog", "Analog Phase Adjust", "8.9"),
    PhaseEnable(0x6D6FD700, "eParamID_AudioPhaseAdjustEnable_AudioSG", "Signal Gen Phase Adjust", "8.12"),

    // Delay, by input source.
    DelaySelect(0x833F6869, "eParamID_AudioDelaySelect_SDI1", "SDI1 Delay", "9.1"),
    DelaySelect(0x4AFF7FA0, "eParamID_AudioDelaySelect_SDI2", "SDI2 Delay", "9.2"),
    DelaySelect(0x8E3C1CE0, "eParamID_AudioDelaySelect_Fiber1", "Fiber1 Delay", "9.3"),
    DelaySelect(0x654B528D, "eParamID_AudioDelaySelect_Fiber2", "Fiber2 Delay", "9.4"),
    DelaySelect(0x154024C3, "eParamID_AudioDelaySelect_AES", "AES Delay", "9.5"),
    DelaySelect(0x3F14EF60, "eParamID_AudioDelaySelect_MADIBNC", "MADI BNC Delay", "9.6"),
    DelaySelect(0x12A39317, "eParamID_AudioDelaySelect_MADIFIB", "MADI Fiber Delay", "9.7"),
    DelaySelect(0xEC293537, "eParamID_AudioDelaySelect_HDMI", "HDMI Delay", "9.8"),
    DelaySelect(0x568CE1CE, "eParamID_AudioDelaySelect_Analog", "Analog Delay", "9.9"),

    // Outputs.
    Output(Enum(0x5C1CA233, "eParamID_AudioOutputSelect_GlobalAudio", "Global Audio Source", "GlblSrc").Values(kGlobalSources), "1.1"),
    OutputSelect(0x1004EB46, "eParamID_AudioOutputSelect_SDI1", "SDI1 Audio Out", "1.2"),
    OutputSelect(0xF365B851, "eParamID_AudioOutputSelect_SDI2", "SDI2 Audio Out", "1.3"),
    OutputSelect(0x9BFA3F26, "eParamID_AudioOutputSelect_Fiber1", "Fiber1 Audio Out", "1.4"),
    OutputSelect(0x18BBD1AD, "eParamID_AudioOutputSelect_Fiber2", "Fiber2 Audio Out", "1.5"),
    OutputSelect(0xDC9362FF, "eParamID_AudioOutputSelect_AES", "AES Audio Out", "1.6"),
    OutputSelect(0xB3CBBB0A, "eParamID_AudioOutputSelect_MADIBNC", "MADI BNC Audio Out", "1.7"),
    OutputSelect(0x74C566CB, "eParamID_AudioOutputSelect_MADIFIB", "MADI Fiber Audio Out", "1.8"),
    OutputSelect(0x1F8C490E, "eParamID_AudioOutputSelect_HDMI", "HDMI Audio Out", "1.9"),
    OutputSelect(0x77293FD5, "eParamID_AudioOutputSelect_Analog", "Analog Audio Out", "1.10"),
    Output(Enum(0x31BF328B, "eParamID_AudioProcEmbAudioOut", "Embedded Audio Out", "EmbAudio").Values(kOffOn).Default(1), "1.11"),
    Output(Enum(0x09EB4D7E, "eParamID_AudioOutputMapReset", "Reset Output Map", "MapReset").Values(kResetSteps).Store(kVolatile), "1.12"),

    // Detection.
    Detected(kDetectedInputSDI1ParamID, "eParamID_AudioDetectedInput_SDI1", "SDI1 Audio In"),
    Detected(kDetectedInputSDI2ParamID, "eParamID_AudioDetectedInput_SDI2", "SDI2 Audio In"),
    Detected(0xF1C31AF1, "eParamID_AudioDetectedInput_Fiber1", "Fiber1 Audio In"),
    Detected(0x87EA6A69, "eParamID_AudioDetectedInput_Fiber2", "Fiber2 Audio In"),
    Detected(0x0CA1506B, "eParamID_AudioDetectedInput_MADIBNC", "MADI BNC Audio In"),
    Detected(0xD270AC17, "eParamID_AudioDetectedInput_MADIFIB", "MADI Fiber Audio In"),
    Detected(0x8EC8BE1D, "eParamID_AudioDetectedInput_HDMI", "HDMI Audio In"),
    Status(Enum(0x811DA0E1, "eParamID_MADIStatus", "MADI Status", "MADIStat").Values(kMADIStates)),
};

// Sample-rate conversion of AES pairs 1 to 4 (channels 2n-1 and 2n).
constexpr CatalogueRow kAESSRC = Proc(Enum(0, nullptr, nullptr, nullptr).Values(kOffOn).Default(1), nullptr);
constexpr unsigned int kAESSRCIDs[] = {
    0xCE3FEC59, 0xD2C6F4A9, 0x44537169, 0x376E8F29,
};
// clang-format on

}  // namespace
}  // namespace catalogue
}  // namespace config
}  // namespace zyn

namespace catalogue = zyn::config::catalogue;

void createParamDescriptors_AudioProc() {
  catalogue::AddCatalogueRows(catalogue::kAudioProcRows);
  GetDescriptor(catalogue::kDetectedInputSDI2ParamID)
      ->SetParamID(catalogue::kDetectedInputSDI1ParamID);
  createParamDescriptors_AESEBUAudioSRC();
}

void createParamDescriptors_AESEBUAudioSRC() {
  int pair = 1;
  for (unsigned int id : catalogue::kAESSRCIDs) {
    AddDescriptor(catalogue::BuildMember(
        catalogue::kAESSRC, id,
        catalogue::Format("eParamID_AESEBUAudioSRCCh%dand%d", 2 * pair - 1, 2 * pair),
        catalogue::Format("AES/EBU %d/%d SRC", 2 * pair - 1, 2 * pair),
        catalogue::Format("SRC %d/%d", 2 * pair - 1, 2 * pair), catalogue::Format("14.%d", pair)));
    ++pair;
  }
}
