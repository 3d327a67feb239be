// The video catalogue: every builder makes exactly its listed parameters
// under their IDs, the rows clients rely on, the per-input, per-format and
// per-frame-rate families, and what the parameter mapper needs of them.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "config/descriptors/decimal_descriptor.h"
#include "config/descriptors/param_descriptors_video.h"
#include "config/descriptors/param_suffixes.h"
#include "unit_catalogue.h"

namespace {

using namespace unit_catalogue;

// clang-format off
const Listed kVideoProc[] = {
    {0xDE0FB540, "Vid1MatteLuma"}, {0x2ACD28EF, "Vid1VideoOutputMode"}, {0xF1C07C69, "Vid1SidebarEdge"}, {0x2B931C25, "Vid1WSSOutputLines"},
    {0x6AB7EE6F, "Vid1AFDVANCOutputLines"}, {0x5887E809, "Vid2SidebarEdge"}, {0xE4163861, "Vid2DetectedAFDMode"},
    {0xC432F497, "Vid2AFDVANCOutputLines"}, {0xDA810078, "Vid2AFDOutMode"}, {0x4BA0C480, "Vid1AFDOutMode"}, {0x2BD97C26, "Vid1DetectedAFDMode"},
    {0x506D6F7A, "Vid1MatteHue"}, {0x32E13134, "Vid1MatteChroma"}, {0x078B8571, "Vid2SDLine21Blanking"}, {0x561B4DB2, "Vid2SDAspectRatio"},
    {0x145B2743, "Vid2DownconvertAFDDefault"}, {0xF04DD612, "Vid2DownconvertMode"}, {0x05CDAA11, "Vid2UpconvertMode"},
    {0xD4D53201, "Vid1SDAspectRatio"}, {0xAE838337, "Vid1DownconvertMode"}, {0xEC770636, "Vid1InputScanFormat"}, {0x269539C1, "Vid1ActualVideoInput"},
    {0xC5E9E8E1, "Vid2VideoInput"}, {0x36DD8919, "Vid2InputScanFormat"}, {0xB3FF7C75, "Vid1UpconvertMode"}, {0x0498A6E8, "Vid1TestPatternVideo"},
    {0x40094712, "Vid1BackgroundFill"}, {0xD22FD6CA, "Vid1VideoInput"}, {0x5ECA5DE8, "Vid2VideoOutputMode"}, {0x718F88A3, "Vid1WSSOut"},
    {0x73EF6F7B, "Vid1AFDOut"}, {0x5559E6AB, "Vid1CustomSizePos"}, {0xA6B42F16, "Vid1UFCTransformActive"}, {0x11CDBF83, "Vid1AFDActive"},
    {0xE2DF6F57, "Vid1UFCPresetActive"}, {0xECCFE644, "Vid1DownconvertAFDDefault"}, {0x55B4EBB8, "Vid2CustomSizePos"},
    {0xB293BC94, "Vid2OutputFormat_6024"}, {0x0AB97A79, "Vid2OutputFormat_5025"}, {0xF93A8B27, "Vid2OutputFormat_5923"},
    {0xD955E40D, "Vid2OutputFormat"}, {0x8B57A705, "Vid1OutputFormat_6024"}, {0xF4E610AE, "Vid1OutputFormat_5025"},
    {0x8A932E14, "Vid1OutputFormat_5923"}, {0xAC589D79, "Vid1OutputFormat"}, {0x25C1A7B0, "Vid2DetectedCaptions"},
    {0x82AB62E7, "Vid1DetectedCaptions"}, {0xCF7D3A85, "GenlockSourceFormat"}, {0x16ED5E05, "DetectedReferenceFormat"},
    {0xC5934F62, "Vid2ActualOutputFormat"}, {0x2038AECE, "Vid1ActualOutputFormat"}, {0xBD09FC54, "Vid2DetectedInputType"},
    {0x8CC7B010, "Vid1DetectedInputType"}, {0x2E3036DF, "Vid2DetectedInputFormat"}, {0xE96DA7E8, "Vid1DetectedInputFormat"},
    {0x5534523B, "Vid2DetectedVESAFormat"}, {0xFFF2AC34, "Vid1DetectedVESAFormat"}, {0xACA23613, "Vid2AFDOut"}, {0x1DD87591, "Vid2AFDActive"},
    {0x58346AA2, "Vid2UFCTransformActive"}, {0x6E019BC3, "Vid2UFCPresetActive"}, {0x2C50BFE5, "Vid2CaptionXlator"},
    {0xF8255AB6, "Vid2VITCOutputLines"}, {0x0CA933DD, "Vid2TimecodeOutput"}, {0x81F82EAE, "Vid2ActualVideoInput"},
    {0xB19CCABF, "Vid1VITCOutputLines"}, {0x4EEF1A0A, "Vid1TimecodeOutput"}, {0xAB06713B, "ReverseTelecine"}, {0xB2487B42, "Vid2FreezeOutput"},
    {0xFF88F26B, "Vid1FreezeOutput"}, {0x84D29BD3, "Vid1SDLine21Blanking"}, {0x0B319CB8, "Vid1CaptionXlator"},
    {0x60E9664A, "Vid1LegalizerChromaClip"}, {0x6CC8B175, "Vid1LegalizerBlackClip"}, {0xEE0D0C7D, "Vid1LegalizerWhiteClip"},
    {0x980EE635, "Vid1VideoLegalizer"}, {0xA522EFBB, "Vid2FreezeOnInputLoss"}, {0x16BF14B4, "Vid1FreezeOnInputLoss"},
};
const Listed kOutput[] = {
    {0xB56BA67D, "AnalogOut"}, {0xE4D46A22, "HDMIVideoOut"}, {0xC8232AF4, "Fiber21080p5060Config"}, {0xD9B72718, "Fiber11080p5060Config"},
    {0xCC65CEA1, "Fiber2VideoOut"}, {0x93A2E7D0, "Fiber1VideoOut"}, {0xB24D1C3E, "SDI21080p5060Config"}, {0x024D82BE, "SDI11080p5060Config"},
    {0xE4A64AD5, "SDI2VideoOut"}, {0x32556F95, "SDI1VideoOut"},
};
const Listed kVidProcAmp[] = {
    {0x9CB12DBA, "Vid1YUVProcAmpHue"}, {0xFF5CA80F, "Vid1RGBProcAmpGainGreen_SDI2"}, {0x8C5CDF8B, "Vid1RGBProcAmpGainRed_SDIDualLink"},
    {0x5DFADFC8, "Vid1RGBProcAmpGainRed_HDMI"}, {0x2ED8D548, "Vid1RGBProcAmpGainGreen"}, {0x77100E16, "Vid1YUVProcAmpGain_SDI2"},
    {0xC8FB37EF, "Vid1RGBProcAmpGainGreen_Fiber2"}, {0x1DF873E1, "Vid1RGBProcAmpGainBlue_Fiber1"}, {0x883AD0D9, "Vid1YUVProcAmpGain"},
    {0x026EEB26, "Vid1RGBProcAmpGainRed"}, {0xAD76FD13, "Vid1YUVProcAmpBlack"}, {0xAF9D7BEB, "Vid1RGBProcAmpGainBlue_Composite"},
    {0x02970948, "Vid1RGBProcAmpGainRed_FiberDualLink"}, {0xCB087F44, "Vid1RGBProcAmpGainGreen_Component"}, {0xB87ACB03, "Vid1YUVProcAmpGain_SDI1"},
    {0x21EB9C4C, "Vid1RGBProcAmpGainGreen_SDI1"}, {0x81820CE9, "Vid1RGBProcAmpGainBlue_SDI2"}, {0xB183F259, "Vid1YUVProcAmpGain_FiberDualLink"},
    {0x79AB35C5, "Vid1RGBProcAmpGainBlue_FiberDualLink"}, {0xC6CAFB54, "Vid1RGBProcAmpGainRed_SDI2"}, {0xB7222DAC, "Vid1RGBProcAmpGainGreen_HDMI"},
    {0xE001D622, "Vid1YUVProcAmpGain_Composite"}, {0x5FCC8A2F, "Vid1RGBProcAmpGainBlue_Component"},
    {0x51DBE510, "Vid1RGBProcAmpGainGreen_SDIDualLink"}, {0x1E61B56A, "Vid1YUVProcAmpEnable"}, {0xCC1D2D4C, "Vid1RGBProcAmpEnable_Component"},
    {0x03A70870, "Vid1RGBProcAmpEnable_Composite"}, {0x44B2B49B, "Vid1RGBProcAmpEnable_HDMI"}, {0x7EC19E94, "Vid1RGBProcAmpEnable_FiberDualLink"},
    {0xE6F60410, "Vid1RGBProcAmpEnable_Fiber2"}, {0xF33E7991, "Vid1RGBProcAmpEnable_Fiber1"}, {0xB1ECA243, "Vid1RGBProcAmpEnable_SDIDualLink"},
    {0xE9A2F7A6, "Vid1RGBProcAmpEnable_SDI2"}, {0x66AA1C9B, "Vid1RGBProcAmpEnable_SDI1"}, {0x8066D834, "Vid1RGBProcAmpEnable"},
    {0x067FCA24, "Vid1YUVProcAmpEnable_Component"}, {0xB5E4E569, "Vid1YUVProcAmpEnable_Composite"}, {0x6F3EB669, "Vid1YUVProcAmpEnable_HDMI"},
    {0xEE1915B6, "Vid1YUVProcAmpEnable_FiberDualLink"}, {0xE238E1FE, "Vid1YUVProcAmpEnable_Fiber2"}, {0x6AA0F24A, "Vid1YUVProcAmpEnable_Fiber1"},
    {0x6E79E319, "Vid1YUVProcAmpEnable_SDIDualLink"}, {0xACD34CBB, "Vid1YUVProcAmpEnable_SDI2"}, {0xBB07FBFC, "Vid1YUVProcAmpEnable_SDI1"},
    {0x8629321D, "Vid1RGBProcAmpGainBlue_SDIDualLink"}, {0x5B32DEC1, "Vid1YUVProcAmpGain_Fiber1"}, {0x150C4E21, "Vid1RGBProcAmpGainBlue_HDMI"},
    {0x81AD6B85, "Vid1RGBProcAmpGainRed_Fiber1"}, {0x419CF2F7, "Vid1RGBProcAmpGainGreen_Composite"}, {0xD3F8839E, "Vid1YUVProcAmpGain_Component"},
    {0xCDF1F4D1, "Vid1RGBProcAmpGainBlue_Fiber2"}, {0xC31F7FD4, "Vid1RGBProcAmpGainRed_Composite"}, {0x3935291D, "Vid1RGBProcAmpGainBlue_SDI1"},
    {0xE87262C2, "Vid1YUVProcAmpGain_Fiber2"}, {0xA2868C68, "Vid1RGBProcAmpGainGreen_FiberDualLink"}, {0xA21E8942, "Vid1RGBProcAmpGainBlue"},
    {0x13DDCCAB, "Vid1YUVProcAmpGain_HDMI"}, {0x05D2E7E7, "Vid1RGBProcAmpGainGreen_Fiber1"}, {0xBB363416, "Vid1YUVProcAmpGain_SDIDualLink"},
    {0xC2E1DCA9, "Vid1RGBProcAmpGainRed_Fiber2"}, {0xE710A8FF, "Vid1RGBProcAmpGainRed_Component"}, {0x55226413, "Vid1RGBProcAmpGainRed_SDI1"},
    {0x8205FC44, "Vid1RGBProcAmpBlackGreen_SDI2"}, {0x05510351, "Vid1RGBProcAmpBlackGreen_SDI1"}, {0xC42155A0, "Vid1RGBProcAmpGammaRed_Component"},
    {0x2D2BC4B8, "Vid1RGBProcAmpGammaRed_Composite"}, {0x35BBEB78, "Vid1RGBProcAmpGammaRed_HDMI"}, {0x5C1636F8, "Vid1RGBProcAmpGammaRed_Fiber2"},
    {0xE76AC32F, "Vid1RGBProcAmpGammaRed_Fiber1"}, {0x7A73741E, "Vid1RGBProcAmpGammaRed_FiberDualLink"},
    {0x2A117A6C, "Vid1RGBProcAmpGammaRed_SDIDualLink"}, {0x55936910, "Vid1RGBProcAmpGammaRed_SDI2"}, {0xB9E267E7, "Vid1RGBProcAmpGammaRed_SDI1"},
    {0x329BF2F4, "Vid1RGBProcAmpBlackRed_Component"}, {0xB931081D, "Vid1RGBProcAmpBlackRed_Composite"}, {0x7C4945B6, "Vid1RGBProcAmpBlackRed_HDMI"},
    {0x1187A4FF, "Vid1RGBProcAmpBlackRed_FiberDualLink"}, {0x25100783, "Vid1RGBProcAmpBlackRed_Fiber2"},
    {0xDEC550D7, "Vid1RGBProcAmpBlackRed_Fiber1"}, {0x5E980183, "Vid1RGBProcAmpBlackRed_SDIDualLink"}, {0x85A1F505, "Vid1RGBProcAmpBlackRed_SDI2"},
    {0xBAB30BB1, "Vid1RGBProcAmpBlackRed_SDI1"}, {0xD4795959, "Vid1RGBProcAmpGammaBlue"}, {0x614E8437, "Vid1RGBProcAmpBlackBlue"},
    {0xA67D0984, "Vid1RGBProcAmpGammaGreen"}, {0x9CAF5F1E, "Vid1RGBProcAmpBlackGreen"}, {0x63DD6FE9, "Vid1RGBProcAmpGammaRed"},
    {0xB81BFC46, "Vid1RGBProcAmpBlackRed"}, {0x0153B2AC, "Vid1YUVProcAmpSat_Component"}, {0x8D8FB5FB, "Vid1YUVProcAmpSat_Composite"},
    {0x87B9C78B, "Vid1RGBProcAmpGammaBlue_Component"}, {0xD60D3FBF, "Vid1RGBProcAmpGammaBlue_Composite"},
    {0x2DFA6B39, "Vid1RGBProcAmpGammaBlue_HDMI"}, {0x4014421C, "Vid1RGBProcAmpGammaBlue_FiberDualLink"},
    {0xA44251D5, "Vid1RGBProcAmpGammaBlue_Fiber2"}, {0x0EBDAF7E, "Vid1RGBProcAmpGammaBlue_Fiber1"},
    {0x69742FCB, "Vid1RGBProcAmpGammaBlue_SDIDualLink"}, {0xA255EAA6, "Vid1RGBProcAmpGammaBlue_SDI2"}, {0x822CEC47, "Vid1RGBProcAmpGammaBlue_SDI1"},
    {0x4997D190, "Vid1RGBProcAmpBlackBlue_Component"}, {0x5BDDEFAB, "Vid1RGBProcAmpBlackBlue_Composite"},
    {0x4F103DAD, "Vid1RGBProcAmpBlackBlue_HDMI"}, {0x20227D7F, "Vid1RGBProcAmpBlackBlue_FiberDualLink"},
    {0x68106555, "Vid1RGBProcAmpBlackBlue_Fiber2"}, {0x3E697FBC, "Vid1RGBProcAmpBlackBlue_Fiber1"},
    {0x04DCADA3, "Vid1RGBProcAmpBlackBlue_SDIDualLink"}, {0xEFDEAC31, "Vid1RGBProcAmpBlackBlue_SDI2"}, {0xECC355C7, "Vid1RGBProcAmpBlackBlue_SDI1"},
    {0xDBE52BFF, "Vid1RGBProcAmpGammaGreen_Component"}, {0x411D88F3, "Vid1RGBProcAmpGammaGreen_Composite"},
    {0x1E898581, "Vid1RGBProcAmpGammaGreen_HDMI"}, {0xB21BFDD9, "Vid1RGBProcAmpGammaGreen_FiberDualLink"},
    {0x6957AC68, "Vid1RGBProcAmpGammaGreen_Fiber2"}, {0xA011802E, "Vid1RGBProcAmpGammaGreen_Fiber1"},
    {0x470252A5, "Vid1RGBProcAmpGammaGreen_SDIDualLink"}, {0xD292BE87, "Vid1RGBProcAmpGammaGreen_SDI2"},
    {0xA84E089B, "Vid1RGBProcAmpGammaGreen_SDI1"}, {0x8B67437E, "Vid1RGBProcAmpBlackGreen_Component"},
    {0x56A498E3, "Vid1RGBProcAmpBlackGreen_Composite"}, {0xC6356946, "Vid1RGBProcAmpBlackGreen_HDMI"},
    {0x3050BB9A, "Vid1RGBProcAmpBlackGreen_FiberDualLink"}, {0xA1DFF81B, "Vid1RGBProcAmpBlackGreen_Fiber2"},
    {0x06D00CF2, "Vid1RGBProcAmpBlackGreen_Fiber1"}, {0x0CEDDBFC, "Vid1RGBProcAmpBlackGreen_SDIDualLink"}, {0x0F9FD491, "Vid1YUVProcAmpSat_HDMI"},
    {0x8D2B4FDF, "Vid1YUVProcAmpSat_FiberDualLink"}, {0x8F20E05D, "Vid1YUVProcAmpSat_Fiber2"}, {0xDE8CD1C4, "Vid1YUVProcAmpSat_Fiber1"},
    {0xEA5FA26A, "Vid1YUVProcAmpSat_SDIDualLink"}, {0x3B47DA31, "Vid1YUVProcAmpSat_SDI2"}, {0x475C549B, "Vid1YUVProcAmpSat_SDI1"},
    {0x8966E2CE, "Vid1YUVProcAmpHue_Component"}, {0x07894C9D, "Vid1YUVProcAmpHue_Composite"}, {0x20EE85B6, "Vid1YUVProcAmpHue_HDMI"},
    {0xEB85B6C9, "Vid1YUVProcAmpHue_FiberDualLink"}, {0x4F394825, "Vid1YUVProcAmpHue_Fiber2"}, {0x8CCE81AD, "Vid1YUVProcAmpHue_Fiber1"},
    {0xD3FD982F, "Vid1YUVProcAmpHue_SDIDualLink"}, {0x69013F3F, "Vid1YUVProcAmpHue_SDI2"}, {0xDCA6E4AB, "Vid1YUVProcAmpHue_SDI1"},
    {0x65AA5AC7, "Vid1YUVProcAmpBlack_Component"}, {0x002922E4, "Vid1YUVProcAmpBlack_Composite"}, {0x856BDD88, "Vid1YUVProcAmpBlack_HDMI"},
    {0xD29CF46C, "Vid1YUVProcAmpBlack_FiberDualLink"}, {0x0EF9A265, "Vid1YUVProcAmpBlack_Fiber2"}, {0xF833509C, "Vid1YUVProcAmpBlack_Fiber1"},
    {0x6D4CA820, "Vid1YUVProcAmpBlack_SDIDualLink"}, {0x51D765FC, "Vid1YUVProcAmpBlack_SDI2"}, {0x6D3EAF5B, "Vid1YUVProcAmpBlack_SDI1"},
    {0x1916717A, "Vid1YUVProcAmpSat"},
};
const Listed kRegionOfInterest[] = {
    {0xAD1724DB, "Vid2ROILeft"}, {0xF98D06A4, "Vid2ROITop"}, {0x59147879, "Vid2ROIRight"}, {0xB906DFD9, "Vid2ROIBottom"},
};
const Listed kVid1OutputTiming[] = {
    {0x6A7486E8, "Vid1ExtraFrameDelay"}, {0xAC4C169C, "Vid1OutputTimingV_2Kx1080p24"}, {0x595D2B28, "Vid1OutputTimingH_2Kx1080p2398"},
    {0xCE7FC7A4, "Vid1OutputTimingV_1080psf30"}, {0xBDAF3ED5, "Vid1OutputTimingH_1080psf30"}, {0xFC42D4C7, "Vid1OutputTimingV_1080psf2997"},
    {0x3B50C33E, "Vid1OutputTimingH_1080psf2997"}, {0xCDF8581E, "Vid1OutputTimingV_1080psf25"}, {0x6EDFEB8C, "Vid1OutputTimingH_1080psf25"},
    {0x8902D344, "Vid1OutputTimingV_1080psf24"}, {0xBBF97840, "Vid1OutputTimingH_1080psf24"}, {0x11922B07, "Vid1OutputTimingH_1080psf2398"},
    {0x324E1D51, "Vid1OutputTimingV_1080p60"}, {0x28E2C260, "Vid1OutputTimingV_1080psf2398"}, {0xC6580954, "Vid1OutputTimingH_1080p60"},
    {0x5D3CFD4E, "Vid1OutputTimingH_1080p5994"}, {0x17747D1D, "Vid1OutputTimingV_1080p50"}, {0x48952200, "Vid1OutputTimingV_1080p5994"},
    {0xA0C7774C, "Vid1OutputTimingH_1080p50"}, {0x068D39CD, "Vid1OutputTimingH_1080p30"}, {0x6B72EA29, "Vid1OutputTimingV_1080p2997"},
    {0xC855E308, "Vid1OutputTimingV_1080p30"}, {0x1BEFF855, "Vid1OutputTimingH_1080p2997"}, {0x7C36B203, "Vid1OutputTimingH_1080p25"},
    {0xEE0EAA3B, "Vid1OutputTimingV_1080p24"}, {0x4E695A01, "Vid1OutputTimingV_1080p25"}, {0x6AC1FE13, "Vid1OutputTimingH_1080p24"},
    {0x6BBFE8C9, "Vid1OutputTimingH_1080p2398"}, {0xBE9994F5, "Vid1OutputTimingV_1080i60"}, {0xF7281997, "Vid1OutputTimingV_1080p2398"},
    {0xCF42EC7D, "Vid1OutputTimingH_1080i60"}, {0xD2520889, "Vid1OutputTimingH_1080i5994"}, {0x9A671887, "Vid1OutputTimingV_1080i50"},
    {0xBA77E6B0, "Vid1OutputTimingV_1080i5994"}, {0x5C3781E9, "Vid1OutputTimingH_1080i50"}, {0x872EB4D9, "Vid1OutputTimingH"},
    {0x580B37C5, "Vid1OutputTimingV"}, {0xB8479416, "Vid1OutputTimingV_625i50"}, {0xE52539CD, "Vid1OutputTimingH_625i50"},
    {0x080CBC0B, "Vid1OutputTimingH_525psf2997"}, {0x35E1AA1D, "Vid1OutputTimingV_525i5994"}, {0xAF358A5F, "Vid1OutputTimingV_525psf2997"},
    {0x07E3B3DA, "Vid1OutputTimingH_525i5994"}, {0x933E6B67, "Vid1OutputTimingH_2Kx1080p60"}, {0x007EFFFD, "Vid1OutputTimingV_2Kx1080p5994"},
    {0x76FD5A85, "Vid1OutputTimingV_2Kx1080p60"}, {0xB679CC78, "Vid1OutputTimingH_2Kx1080p5994"}, {0x9EF31C68, "Vid1OutputTimingH_2Kx1080p50"},
    {0x5919651C, "Vid1OutputTimingV_2Kx1080p30"}, {0x8EB53B79, "Vid1OutputTimingV_2Kx1080p50"}, {0x5F6338DA, "Vid1OutputTimingH_2Kx1080p30"},
    {0x5B0C4C6A, "Vid1OutputTimingH_2Kx1080p2997"}, {0xF711AA41, "Vid1OutputTimingV_2Kx1080p25"}, {0xA5F89484, "Vid1OutputTimingV_2Kx1080p2997"},
    {0x856F6EAF, "Vid1OutputTimingH_2Kx1080p25"}, {0x37E47C56, "Vid1OutputTimingH_2Kx1080p24"}, {0xBE8DD5D8, "Vid1OutputTimingV_2Kx1080p2398"},
    {0x8B1FD4A2, "Vid1OutputTimingV_720p60"}, {0x300AF53F, "Vid1OutputTimingH_720p60"}, {0xC072476A, "Vid1OutputTimingV_720p5994"},
    {0x71A3BA7B, "Vid1OutputTimingH_720p5994"}, {0xEF050387, "Vid1OutputTimingV_720p50"}, {0x669233AF, "Vid1OutputTimingH_720p50"},
    {0xBFBA4CC5, "Vid1OutputTimingV_720p30"}, {0x62D72D84, "Vid1OutputTimingH_720p30"}, {0x20603A34, "Vid1OutputTimingV_720p2997"},
    {0xF7B02E6B, "Vid1OutputTimingH_720p2997"}, {0xE790AD60, "Vid1OutputTimingV_720p25"}, {0xA67ECDB2, "Vid1OutputTimingH_720p25"},
    {0x810A4701, "Vid1OutputTimingV_720p24"}, {0x936BAF82, "Vid1OutputTimingH_720p24"}, {0xBDB20B01, "Vid1OutputTimingV_720p2398"},
    {0x4CAC9D56, "Vid1OutputTimingH_720p2398"}, {0xB5D58A7B, "Vid1OutputTimingV_625psf25"}, {0xFD9D4EE1, "Vid1OutputTimingH_625psf25"},
};
const Listed kVid2OutputTiming[] = {
    {0x8A665529, "Vid2ExtraFrameDelay"}, {0x3B77B0D6, "Vid2OutputTimingV_2Kx1080p24"}, {0x15D095ED, "Vid2OutputTimingH_2Kx1080p2398"},
    {0x713C1B3D, "Vid2OutputTimingV_1080psf30"}, {0x1690B035, "Vid2OutputTimingH_1080psf30"}, {0x0FCAFD09, "Vid2OutputTimingV_1080psf2997"},
    {0xA3EDF322, "Vid2OutputTimingH_1080psf2997"}, {0x1C7BA21D, "Vid2OutputTimingV_1080psf25"}, {0x3DD70900, "Vid2OutputTimingH_1080psf25"},
    {0x73E20750, "Vid2OutputTimingV_1080psf24"}, {0x69E80912, "Vid2OutputTimingH_1080psf24"}, {0x64F1985F, "Vid2OutputTimingH_1080psf2398"},
    {0x00A110EA, "Vid2OutputTimingV_1080p60"}, {0x58033B90, "Vid2OutputTimingV_1080psf2398"}, {0x296ECC90, "Vid2OutputTimingH_1080p60"},
    {0x2C4387D1, "Vid2OutputTimingH_1080p5994"}, {0xFB139A5A, "Vid2OutputTimingV_1080p50"}, {0x23947842, "Vid2OutputTimingV_1080p5994"},
    {0x5D197184, "Vid2OutputTimingH_1080p50"}, {0x556564A6, "Vid2OutputTimingH_1080p30"}, {0x84647713, "Vid2OutputTimingV_1080p2997"},
    {0x67876429, "Vid2OutputTimingV_1080p30"}, {0xCCECBD93, "Vid2OutputTimingH_1080p2997"}, {0xF87A78CB, "Vid2OutputTimingH_1080p25"},
    {0x75CCB205, "Vid2OutputTimingV_1080p24"}, {0xAEE10C1D, "Vid2OutputTimingV_1080p25"}, {0x72D9E608, "Vid2OutputTimingH_1080p24"},
    {0x86B67242, "Vid2OutputTimingH_1080p2398"}, {0xF3E83771, "Vid2OutputTimingV_1080i60"}, {0xA97730F0, "Vid2OutputTimingV_1080p2398"},
    {0x996365D2, "Vid2OutputTimingH_1080i60"}, {0xC3187A95, "Vid2OutputTimingH_1080i5994"}, {0x0823B351, "Vid2OutputTimingV_1080i50"},
    {0x61971C8F, "Vid2OutputTimingV_1080i5994"}, {0x9B2E9167, "Vid2OutputTimingH_1080i50"}, {0xC97C9E85, "Vid2OutputTimingH"},
    {0xD8DB72BD, "Vid2OutputTimingV"}, {0x9A164C11, "Vid2OutputTimingV_625i50"}, {0x435DBD30, "Vid2OutputTimingH_625i50"},
    {0x2DF16E3F, "Vid2OutputTimingH_525psf2997"}, {0xB005F004, "Vid2OutputTimingV_525i5994"}, {0x27CB703C, "Vid2OutputTimingV_525psf2997"},
    {0x372A6EC9, "Vid2OutputTimingH_525i5994"}, {0x6F3EB13D, "Vid2OutputTimingH_2Kx1080p60"}, {0xAE3CC48F, "Vid2OutputTimingV_2Kx1080p5994"},
    {0xDF5C3617, "Vid2OutputTimingV_2Kx1080p60"}, {0xF55C68E4, "Vid2OutputTimingH_2Kx1080p5994"}, {0xE8A5E4AC, "Vid2OutputTimingH_2Kx1080p50"},
    {0xD67EE81A, "Vid2OutputTimingV_2Kx1080p30"}, {0x4581A61F, "Vid2OutputTimingV_2Kx1080p50"}, {0xDD68F4B2, "Vid2OutputTimingH_2Kx1080p30"},
    {0x5C7DA9D3, "Vid2OutputTimingH_2Kx1080p2997"}, {0x17E5A849, "Vid2OutputTimingV_2Kx1080p25"}, {0xEDF9C2EF, "Vid2OutputTimingV_2Kx1080p2997"},
    {0x84B4814D, "Vid2OutputTimingH_2Kx1080p25"}, {0xD8E0C657, "Vid2OutputTimingH_2Kx1080p24"}, {0x78373CC1, "Vid2OutputTimingV_2Kx1080p2398"},
    {0xF18CB648, "Vid2OutputTimingV_720p60"}, {0xBD953253, "Vid2OutputTimingH_720p60"}, {0x82DE52F7, "Vid2OutputTimingV_720p5994"},
    {0xA658907A, "Vid2OutputTimingH_720p5994"}, {0x3E125F75, "Vid2OutputTimingV_720p50"}, {0xED34E1A8, "Vid2OutputTimingH_720p50"},
    {0x4C00F5F6, "Vid2OutputTimingV_720p30"}, {0xE23E6798, "Vid2OutputTimingH_720p30"}, {0x67823176, "Vid2OutputTimingV_720p2997"},
    {0x02544D8D, "Vid2OutputTimingH_720p2997"}, {0xFDFBD075, "Vid2OutputTimingV_720p25"}, {0x94B3BE22, "Vid2OutputTimingH_720p25"},
    {0x929A157F, "Vid2OutputTimingV_720p24"}, {0x61DE2B9C, "Vid2OutputTimingH_720p24"}, {0x046CEF5B, "Vid2OutputTimingV_720p2398"},
    {0xEF3DF8FD, "Vid2OutputTimingH_720p2398"}, {0x8025C6E3, "Vid2OutputTimingV_625psf25"}, {0x81B7A38D, "Vid2OutputTimingH_625psf25"},
};

// Processor 1 has every custom member, processor 2 no size or left crop.
const char* const kCustomConversion[] = {
    "Vid1CustomSize", "Vid1CustomHPosition", "Vid2CustomHPosition", "Vid1CustomVPosition", "Vid2CustomVPosition",
    "Vid1CustomAspect", "Vid2CustomAspect", "Vid1CustomLeftCrop", "Vid1CustomTopCrop", "Vid2CustomTopCrop",
    "Vid1CustomRightCrop", "Vid2CustomRightCrop", "Vid1CustomBotCrop", "Vid2CustomBotCrop",
};

struct TellingRow {
  const char* idName;
  const char* name;
  const char* shortName;
  const char* menu;
  const char* classes;
  const char* values;
};

const TellingRow kTellingRows[] = {
    {"eParamID_Vid1VideoInput", "Vid 1 Input", "Vid 1 In", "7:1.1", "", "0 SDI1, 1 SDI2, 2 SDI DualLink/SDI Dual, 3 Fiber1, 4 Fiber2, 5 Fiber Dual/Fib Dual, 6 HDMI, 7 Analog"},
    {"eParamID_Vid2UpconvertMode", "Upconvert Mode", "UpCnvert", "7:23.1", "", "0 4x3 Pillar/4x3 Pilr, 1 14x9 Pillar/14x9Pilr, 2 Full Screen/FullScrn, 3 LB to Full/LB 2Full, 4 Wide Zoom/WideZoom"},
    {"eParamID_Vid1VideoOutputMode", "Vid 1 Output Mode", "VoutMode", "7:10.1", "", "0 Normal, 1 Test Pattern/TstPatrn"},
    {"eParamID_Vid2DetectedCaptions", "Vid 2 Captions", "Vid 2 CC", "", "readonly", "0 No Input, 1 Pass through/PassThru, 2 SD CC Detected/SD CC, 3 SD CC Not Detected/SD No CC, 4 HD CC Detected/HD CC, 5 HD CC Not Detected/HD No CC"},
    {"eParamID_Vid1AFDOutMode", "Vid 1 Output AFD Mode", "AFDOtMod", "", "readonly rest_hidden", nullptr},
    {"eParamID_Vid1LegalizerBlackClip", "Legalizer Black Clip", "LglBlack", "7:16.2", "fixed_decimal", ""},
    {"eParamID_Vid1MatteLuma", "Matte Luma", "MattLuma", "7:11.1", "unity", ""},
    {"eParamID_Vid1AFDVANCOutputLines", "AFD VANC Output Line", "AFDLines", "7:17.2", "", ""},
    {"eParamID_Vid1WSSOutputLines", "Vid 1 WSS Output Lines", "WSSLines", "7:13.13", "", nullptr},
};
// clang-format on

template <std::size_t N>
std::vector<Listed> ListOf(const Listed (&rows)[N]) {
  return std::vector<Listed>(rows, rows + N);
}

TEST(VideoCatalogueTest, BuildersMakeExactlyTheirListedParameters) {
  const struct {
    const char* builder;
    void (*build)();
    std::vector<Listed> listed;
  } builders[] = {
      {"VideoProc", createParamDescriptors_VideoProc, ListOf(kVideoProc)},
      {"Output", createParamDescriptors_Output, ListOf(kOutput)},
      {"VidProcAmp", createParamDescriptors_VidProcAmp, ListOf(kVidProcAmp)},
      {"RegionOfInterest", createParamDescriptors_RegionOfInterest, ListOf(kRegionOfInterest)},
      {"Vid1OutputTiming", createParamDescriptors_Vid1OutputTiming, ListOf(kVid1OutputTiming)},
      {"Vid2OutputTiming", createParamDescriptors_Vid2OutputTiming, ListOf(kVid2OutputTiming)},
  };
  const std::size_t counts[] = {78, 10, 150, 4, 75, 75};
  for (std::size_t b = 0; b < std::size(builders); ++b) {
    const std::map<unsigned int, std::string> built = BuildAlone(builders[b].build);
    EXPECT_EQ(built.size(), counts[b]) << builders[b].builder;
    EXPECT_EQ(builders[b].listed.size(), counts[b]) << builders[b].builder;
    for (const Listed& p : builders[b].listed) {
      auto it = built.find(p.id);
      EXPECT_EQ(it == built.end() ? "(none)" : it->second, std::string("eParamID_") + p.name)
          << builders[b].builder << " " << std::hex << p.id;
    }
  }

  std::set<std::string> custom;
  for (const auto& entry : BuildAlone(createParamDescriptors_CustomConversion))
    custom.insert(entry.second);
  std::set<std::string> expected;
  for (const char* name : kCustomConversion) expected.insert(std::string("eParamID_") + name);
  EXPECT_EQ(custom, expected);
}

TEST(VideoCatalogueTest, TellingRows) {
  for (const TellingRow& row : kTellingRows) {
    ParamDescriptor* d = Find(row.idName);
    if (d == nullptr) continue;
    EXPECT_EQ(d->GetName() + "|" + d->GetShortName() + "|" + MenuPlaceOf(d) + "|" + ClassesOf(d),
              std::string(row.name) + "|" + row.shortName + "|" + row.menu + "|" + row.classes);
    if (row.values != nullptr) {
      EXPECT_EQ(ValuesOf(d), row.values) << row.idName;
    }
  }
  EXPECT_EQ(IntAttributeOf(Find("eParamID_Vid1VideoInput"), "useAsReverseMapID"), 1u);
  EXPECT_EQ(IntAttributeOf(Find("eParamID_Vid1AFDOutMode"), "proc_no"), 1u);
  ParamDescriptor* clip = Find("eParamID_Vid1LegalizerBlackClip");
  ASSERT_NE(dynamic_cast<DecimalDescriptor*>(clip), nullptr);
  EXPECT_EQ(clip->GetRelation("enabled_by"),
            (std::vector<ParamDescriptor::Relation>{
                {Find("eParamID_Vid1VideoLegalizer")->GetParamID(), 1}}));
}

// Members are copies of their template under their own ID and name: the
// generic differs from them only in being neither kept nor in presets nor
// reset, and the processor's members carry its number.
TEST(VideoCatalogueTest, FamiliesAreCopiesOfTheirTemplates) {
  const struct {
    const char* generic;
    const char* member;
    unsigned int memberID;
    unsigned int proc;
  } samples[] = {
      {"eParamID_Vid1RGBProcAmpGainGreen", "eParamID_Vid1RGBProcAmpGainGreen_SDI2", 0xFF5CA80F, 1},
      {"eParamID_Vid1YUVProcAmpEnable", "eParamID_Vid1YUVProcAmpEnable_Component", 0x067FCA24, 1},
      {"eParamID_Vid1OutputTimingV", "eParamID_Vid1OutputTimingV_1080psf30", 0xCE7FC7A4, 1},
      {"eParamID_Vid2OutputTimingH", "eParamID_Vid2OutputTimingH_2Kx1080p2398", 0x15D095ED, 2},
  };
  for (const auto& s : samples) {
    IntegerDescriptor* generic = dynamic_cast<IntegerDescriptor*>(Find(s.generic));
    IntegerDescriptor* member = dynamic_cast<IntegerDescriptor*>(Find(s.member));
    ASSERT_TRUE(generic != nullptr && member != nullptr) << s.member;
    EXPECT_EQ(member->GetParamID(), s.memberID);
    EXPECT_EQ(IntAttributeOf(member, "proc_no"), s.proc) << s.member;
    EXPECT_EQ(ValuesOf(member), ValuesOf(generic)) << s.member;
    EXPECT_EQ(std::vector<unsigned int>({member->GetMinValue(), member->GetMaxValue(),
                                         member->GetFactoryDefault(), member->GetScaleBy(),
                                         member->GetOffsetBy()}),
              std::vector<unsigned int>({generic->GetMinValue(), generic->GetMaxValue(),
                                         generic->GetFactoryDefault(), generic->GetScaleBy(),
                                         generic->GetOffsetBy()}))
        << s.member;
    EXPECT_EQ(member->GetUnits(), generic->GetUnits());
    EXPECT_EQ(MenuPlaceOf(member), "") << "only the generic is in the menus";
  }
  EXPECT_EQ(IntAttributeOf(Find("eParamID_Vid2CustomAspect"), "proc_no"), 2u);
  EXPECT_EQ(MenuPlaceOf(Find("eParamID_Vid2CustomAspect")), "7:24.5");
  EXPECT_EQ(ValuesOf(Find("eParamID_Vid1OutputFormat_5025")),
            "7 625i 50/625i50, 6 625psf 25/625sf25, 13 720p 25/720p25, 16 720p 50/720p50, "
            "19 1080i 50/1080i50, 24 1080psf 25/1080sf25, 29 1080p 25/1080p25, "
            "32 1080p 50/1080p50, 45 2Kx1080p 25/2Kp25, 48 2Kx1080p 50/2Kp50");
}

// The mapper's 21 video generics: not kept, not in presets, not reset; a
// specific for every selector value, kept, with the processor's number.
TEST(VideoCatalogueTest, MappedParametersFitTheMapper) {
  InitializeSuffixes();
  const struct {
    const char* generic;
    const std::string* suffixes;
    int count;
    unsigned int proc;  // 0: the mapper reads none
  } schemes[] = {
      // clang-format off
      {"eParamID_Vid1YUVProcAmpEnable", InputName, 10, 1},     {"eParamID_Vid1YUVProcAmpGain", InputName, 10, 1},
      {"eParamID_Vid1YUVProcAmpBlack", InputName, 10, 1},      {"eParamID_Vid1YUVProcAmpHue", InputName, 10, 1},
      {"eParamID_Vid1YUVProcAmpSat", InputName, 10, 1},        {"eParamID_Vid1RGBProcAmpEnable", InputName, 10, 1},
      {"eParamID_Vid1RGBProcAmpGainRed", InputName, 10, 1},    {"eParamID_Vid1RGBProcAmpBlackRed", InputName, 10, 1},
      {"eParamID_Vid1RGBProcAmpGammaRed", InputName, 10, 1},   {"eParamID_Vid1RGBProcAmpGainGreen", InputName, 10, 1},
      {"eParamID_Vid1RGBProcAmpBlackGreen", InputName, 10, 1}, {"eParamID_Vid1RGBProcAmpGammaGreen", InputName, 10, 1},
      {"eParamID_Vid1RGBProcAmpGainBlue", InputName, 10, 1},   {"eParamID_Vid1RGBProcAmpBlackBlue", InputName, 10, 1},
      {"eParamID_Vid1RGBProcAmpGammaBlue", InputName, 10, 1},
      {"eParamID_Vid1OutputFormat", FrameRateModeName, 3, 0},  {"eParamID_Vid2OutputFormat", FrameRateModeName, 3, 0},
      {"eParamID_Vid1OutputTimingH", OutputFormatSuffix, 57, 1}, {"eParamID_Vid1OutputTimingV", OutputFormatSuffix, 57, 1},
      {"eParamID_Vid2OutputTimingH", OutputFormatSuffix, 57, 2}, {"eParamID_Vid2OutputTimingV", OutputFormatSuffix, 57, 2},
      // clang-format on
  };
  for (const auto& scheme : schemes) {
    ParamDescriptor* generic = Find(scheme.generic);
    ASSERT_NE(generic, nullptr);
    EXPECT_NE(generic->GetPersistenceType(), ePersist) << scheme.generic;
    EXPECT_EQ(generic->GetRegisterType(), eRegister_Exclude) << scheme.generic;
    EXPECT_EQ(generic->GetFactoryResetType(), eFactoryReset_Exclude) << scheme.generic;
    if (scheme.proc != 0) {
      EXPECT_EQ(IntAttributeOf(generic, "proc_no"), scheme.proc) << scheme.generic;
    }
    for (int i = 0; i < scheme.count; ++i) {
      const std::string name = std::string(scheme.generic) + "_" + scheme.suffixes[i];
      ParamDescriptor* specific = GetDescriptor(name);
      ASSERT_NE(specific, nullptr) << name;
      EXPECT_EQ(specific->GetPersistenceType(), ePersist) << name;
      if (scheme.proc != 0) {
        EXPECT_EQ(IntAttributeOf(specific, "proc_no"), scheme.proc) << name;
      }
    }
  }

  // The selectors' values index the suffix tables the mapper uses with them.
  for (const char* input : {"eParamID_Vid1VideoInput", "eParamID_Vid2VideoInput"}) {
    for (const auto& v : static_cast<EnumDescriptor*>(Find(input))->GetEnumValueDescriptors()) {
      ASSERT_LT(v.first, 10u) << input;
      EXPECT_NE(GetDescriptor("eParamID_Vid1YUVProcAmpGain_" + InputName[v.first]), nullptr);
    }
  }
  for (const char* actual :
       {"eParamID_Vid1ActualOutputFormat", "eParamID_Vid2ActualOutputFormat"}) {
    EXPECT_EQ(IntAttributeOf(Find(actual), "useAsReverseMapID"), 1u);
    for (const auto& v : static_cast<EnumDescriptor*>(Find(actual))->GetEnumValueDescriptors()) {
      ASSERT_LT(v.first, 57u) << actual;
      std::string format = v.second.GetName();  // "1080i 59.94" is suffix "1080i5994"
      format.erase(
          std::remove_if(format.begin(), format.end(), [](char c) { return c == ' ' || c == '.'; }),
          format.end());
      EXPECT_NE(GetDescriptor("eParamID_Vid1OutputTimingH_" + format), nullptr) << format;
      EXPECT_TRUE(OutputFormatSuffix[v.first] == format ||
                  OutputFormatSuffix[v.first] == "1080i5994")
          << v.first << " " << format;
    }
  }
}

}  // namespace
