// The suffix tables that form the ID names of per-input, per-frame-rate-
// family, per-IP-configuration and per-output-format parameter variants, for
// example "eParamID_Vid1RGBProcAmpGainGreen" + "_" + InputName[1]. The index
// of InputName is the input-selection number, that of OutputFormatSuffix the
// video-format number.
//
// The tables are empty until InitializeSuffixes fills them. Fill them once,
// before other threads read them; refilling is harmless but not locked.
#ifndef CLASSES_CONFIG_DESCRIPTORS_PARAM_SUFFIXES_H
#define CLASSES_CONFIG_DESCRIPTORS_PARAM_SUFFIXES_H

#include <string>

constexpr int kInputNameCount = 11;
constexpr int kFrameRateModeNameCount = 3;
constexpr int kIPConfigSuffixCount = 2;
constexpr int kOutputFormatSuffixCount = 57;

extern std::string InputName[kInputNameCount];
extern std::string FrameRateModeName[kFrameRateModeNameCount];
extern std::string IPConfigSuffix[kIPConfigSuffixCount];
extern std::string OutputFormatSuffix[kOutputFormatSuffixCount];

// Fills the four tables. Entry 9 of InputName is "SDI1" again, so the input
// value without parameters of its own maps to SDI1's; every video format
// without a suffix of its own holds "1080i5994".
void InitializeSuffixes();

#endif  // CLASSES_CONFIG_DESCRIPTORS_PARAM_SUFFIXES_H
