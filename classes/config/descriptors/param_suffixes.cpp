#include "config/descriptors/param_suffixes.h"

std::string InputName[kInputNameCount];
std::string FrameRateModeName[kFrameRateModeNameCount];
std::string IPConfigSuffix[kIPConfigSuffixCount];
std::string OutputFormatSuffix[kOutputFormatSuffixCount];

namespace {

const char* const kInputNames[kInputNameCount] = {
    "SDI1", "SDI2",      "SDIDualLink", "Fiber1", "Fiber2",    "FiberDualLink",
    "HDMI", "Composite", "Component",   "SDI1",   "Universal",
};

const char* const kFrameRateModeNames[kFrameRateModeNameCount] = {"5923", "5025", "6024"};

const char* const kIPConfigSuffixes[kIPConfigSuffixCount] = {"DHCP", "Static"};

// Video formats without per-format parameters of their own use these.
const char* const kDefaultOutputFormatSuffix = "1080i5994";

struct FormatSuffix {
  int format;
  const char* suffix;
};

const FormatSuffix kOutputFormatSuffixes[] = {
    {2, "525psf2997"},   {3, "525i5994"},      {6, "625psf25"},      {7, "625i50"},
    {11, "720p2398"},    {12, "720p24"},       {13, "720p25"},       {14, "720p2997"},
    {16, "720p50"},      {17, "720p5994"},     {19, "1080i50"},      {20, "1080i5994"},
    {22, "1080psf2398"}, {23, "1080psf24"},    {24, "1080psf25"},    {25, "1080psf2997"},
    {27, "1080p2398"},   {28, "1080p24"},      {29, "1080p25"},      {30, "1080p2997"},
    {32, "1080p50"},     {33, "1080p5994"},    {43, "2Kx1080p2398"}, {44, "2Kx1080p24"},
    {45, "2Kx1080p25"},  {46, "2Kx1080p2997"}, {48, "2Kx1080p50"},   {49, "2Kx1080p5994"},
};

}  // namespace

void InitializeSuffixes() {
  for (int i = 0; i < kInputNameCount; ++i) InputName[i] = kInputNames[i];
  for (int i = 0; i < kFrameRateModeNameCount; ++i) FrameRateModeName[i] = kFrameRateModeNames[i];
  for (int i = 0; i < kIPConfigSuffixCount; ++i) IPConfigSuffix[i] = kIPConfigSuffixes[i];
  for (int i = 0; i < kOutputFormatSuffixCount; ++i) {
    OutputFormatSuffix[i] = kDefaultOutputFormatSuffix;
  }
  for (const FormatSuffix& entry : kOutputFormatSuffixes) {
    OutputFormatSuffix[entry.format] = entry.suffix;
  }
}
