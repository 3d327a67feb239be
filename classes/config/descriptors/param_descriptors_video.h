// The builders of the video catalogue: the parameters of the two video
// processors (Vid1, Vid2) and of the video outputs. CreateDescriptors runs
// them in its fixed order; each registers its descriptors under their fixed
// IDs.
//
// The sources: param_descriptors_videoproc.cpp (input, output format,
// conversion, AFD, captions, matte, test pattern, legaliser),
// _output.cpp (output routing), _procamp.cpp (the per-input proc amp
// families), _custom_conversion.cpp (custom size, crops and region of
// interest) and _output_timing.cpp (the per-format output timing).
//
// Per-input, per-frame-rate-family and per-format variants are the specific
// parameters of the parameter mapper: each generic parameter (the plain
// name) is neither kept nor in presets nor reset, carries "proc_no" (1 or 2),
// and its specifics ("_" and an InputName, FrameRateModeName or
// OutputFormatSuffix entry) are kept. Vid1VideoInput and Vid2VideoInput take
// the InputName indices as values, Vid1ActualOutputFormat and
// Vid2ActualOutputFormat the video-format numbers that index
// OutputFormatSuffix.
//
// Thread-safety: the builders write the registry; they run only while the
// catalogue is built.
#ifndef CLASSES_CONFIG_DESCRIPTORS_PARAM_DESCRIPTORS_VIDEO_H
#define CLASSES_CONFIG_DESCRIPTORS_PARAM_DESCRIPTORS_VIDEO_H

// The menu groups (k...MenuGroup).
#include "config/descriptors/param_groups.h"

void createParamDescriptors_VideoProc();
void createParamDescriptors_Output();
void createParamDescriptors_VidProcAmp();

// The custom size, position and crop parameters of both processors, made by
// the per-processor builders below.
void createParamDescriptors_CustomConversion();
void createParamDescriptors_VidXCustomSize();
void createParamDescriptors_VidXROILeft();
void createParamDescriptors_VidXROITop();
void createParamDescriptors_VidXROIRight();
void createParamDescriptors_VidXROIBottom();

// Processor 2's region of interest.
void createParamDescriptors_RegionOfInterest();

void createParamDescriptors_Vid1OutputTiming();
void createParamDescriptors_Vid2OutputTiming();

#endif  // CLASSES_CONFIG_DESCRIPTORS_PARAM_DESCRIPTORS_VIDEO_H
