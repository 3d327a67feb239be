// The video processors' own parameters: input selection and detection,
// output format (a generic per frame-rate family), up/down/cross conversion,
// freeze, output mode and test pattern, matte, timecode, captions and WSS,
// legaliser and AFD. Nearly every parameter exists once per processor; the
// menu sections of processor 2 are those of processor 1 plus 20.
//
// Video formats are the unit's video-format numbers, the indices of
// OutputFormatSuffix: the frame-rate families run 2398, 24, 25, 2997, 30,
// 50, 5994, 60 within each raster (720p from 11, 1080i 19-21, 1080psf from
// 22, 1080p from 27, 2Kx1080p from 43).
#include "config/descriptors/catalogue_builder.h"
#include "config/descriptors/param_descriptors_video.h"

namespace zyn {
namespace config {
namespace catalogue {
namespace {

constexpr unsigned int kVideoLegalizerParamID = 0x980EE635;

// clang-format off
constexpr const char* kReadonly[] = {"readonly"};
constexpr const char* kReadonlyRestHidden[] = {"readonly", "rest_hidden"};
constexpr const char* kUnity[] = {"unity"};
constexpr const char* kFixedDecimal[] = {"fixed_decimal"};

constexpr IntAttribute kProc1[] = {{"proc_no", 1}};
constexpr IntAttribute kProc2[] = {{"proc_no", 2}};
// The selectors the parameter mapper reads.
constexpr IntAttribute kProc1Selector[] = {{"proc_no", 1}, {"useAsReverseMapID", 1}};
constexpr IntAttribute kProc2Selector[] = {{"proc_no", 2}, {"useAsReverseMapID", 1}};

// The legaliser's clips apply while the legaliser is on.
constexpr RelationEntry kEnabledByLegalizer[] = {{"enabled_by", kVideoLegalizerParamID, 1}};

constexpr EnumValue kOffOn[] = {{0, "Off"}, {1, "On"}};
constexpr EnumValue kInactiveActive[] = {{0, "Inactive"}, {1, "Active"}};
// Values are InputName indices. The analog input is the composite one (7);
// the component settings (8) belong to the component input standard.
constexpr EnumValue kVideoInputs[] = {{0, "SDI1"}, {1, "SDI2"}, {2, "SDI DualLink", "SDI Dual"}, {3, "Fiber1"}, {4, "Fiber2"}, {5, "Fiber Dual", "Fib Dual"}, {6, "HDMI"}, {7, "Analog"}};
// The input a processor actually uses, an analog input resolved by the
// analog input select.
constexpr EnumValue kActualInputs[] = {{0, "SDI1"}, {1, "SDI2"}, {2, "SDI DualLink", "SDI Dual"}, {3, "Fiber1"}, {4, "Fiber2"}, {5, "Fiber Dual", "Fib Dual"}, {6, "HDMI"}, {7, "Composite", "Cmpst"}, {8, "Component", "Cmpnt"}};
constexpr EnumValue kScanFormats[] = {{0, "Auto"}, {1, "Interlace", "Intrlace"}, {2, "PsF"}};
constexpr EnumValue kInputTypes[] = {{0, "No Input", "NoInput"}, {1, "SD"}, {2, "HD"}, {3, "3G Level A", "3G-A"}, {4, "3G Level B", "3G-B"}, {5, "Dual Link", "DualLink"}, {6, "HDMI"}, {7, "Analog"}};
constexpr EnumValue kVESAFormats[] = {{0, "None"}, {1, "640x480"}, {2, "800x600"}, {3, "1024x768"}, {4, "1280x720"}, {5, "1280x1024"}, {6, "1920x1080"}};

constexpr EnumValue kNoFormat = {0, "No Input", "NoInput"};
constexpr EnumValue k525psf2997 = {2, "525psf 29.97", "525sf29"};
constexpr EnumValue k525i5994 = {3, "525i 59.94", "525i59"};
constexpr EnumValue k625psf25 = {6, "625psf 25", "625sf25"};
constexpr EnumValue k625i50 = {7, "625i 50", "625i50"};
constexpr EnumValue k720p2398 = {11, "720p 23.98", "720p23"};
constexpr EnumValue k720p24 = {12, "720p 24", "720p24"};
constexpr EnumValue k720p25 = {13, "720p 25", "720p25"};
constexpr EnumValue k720p2997 = {14, "720p 29.97", "720p29"};
constexpr EnumValue k720p30 = {15, "720p 30", "720p30"};
constexpr EnumValue k720p50 = {16, "720p 50", "720p50"};
constexpr EnumValue k720p5994 = {17, "720p 59.94", "720p59"};
constexpr EnumValue k720p60 = {18, "720p 60", "720p60"};
constexpr EnumValue k1080i50 = {19, "1080i 50", "1080i50"};
constexpr EnumValue k1080i5994 = {20, "1080i 59.94", "1080i59"};
constexpr EnumValue k1080i60 = {21, "1080i 60", "1080i60"};
constexpr EnumValue k1080psf2398 = {22, "1080psf 23.98", "1080sf23"};
constexpr EnumValue k1080psf24 = {23, "1080psf 24", "1080sf24"};
constexpr EnumValue k1080psf25 = {24, "1080psf 25", "1080sf25"};
constexpr EnumValue k1080psf2997 = {25, "1080psf 29.97", "1080sf29"};
constexpr EnumValue k1080psf30 = {26, "1080psf 30", "1080sf30"};
constexpr EnumValue k1080p2398 = {27, "1080p 23.98", "1080p23"};
constexpr EnumValue k1080p24 = {28, "1080p 24", "1080p24"};
constexpr EnumValue k1080p25 = {29, "1080p 25", "1080p25"};
constexpr EnumValue k1080p2997 = {30, "1080p 29.97", "1080p29"};
constexpr EnumValue k1080p30 = {31, "1080p 30", "1080p30"};
constexpr EnumValue k1080p50 = {32, "1080p 50", "1080p50"};
constexpr EnumValue k1080p5994 = {33, "1080p 59.94", "1080p59"};
constexpr EnumValue k1080p60 = {34, "1080p 60", "1080p60"};
constexpr EnumValue k2K2398 = {43, "2Kx1080p 23.98", "2Kp23"};
constexpr EnumValue k2K24 = {44, "2Kx1080p 24", "2Kp24"};
constexpr EnumValue k2K25 = {45, "2Kx1080p 25", "2Kp25"};
constexpr EnumValue k2K2997 = {46, "2Kx1080p 29.97", "2Kp29"};
constexpr EnumValue k2K30 = {47, "2Kx1080p 30", "2Kp30"};
constexpr EnumValue k2K50 = {48, "2Kx1080p 50", "2Kp50"};
constexpr EnumValue k2K5994 = {49, "2Kx1080p 59.94", "2Kp59"};
constexpr EnumValue k2K60 = {50, "2Kx1080p 60", "2Kp60"};

// The output formats of each frame-rate family, in the order of
// FrameRateModeName: "5923", "5025", "6024".
constexpr EnumValue kFormats5923[] = {k525i5994, k525psf2997, k720p2398, k720p2997, k720p5994, k1080i5994, k1080psf2398, k1080psf2997, k1080p2398, k1080p2997, k1080p5994, k2K2398, k2K2997, k2K5994};
constexpr EnumValue kFormats5025[] = {k625i50, k625psf25, k720p25, k720p50, k1080i50, k1080psf25, k1080p25, k1080p50, k2K25, k2K50};
constexpr EnumValue kFormats6024[] = {k720p24, k720p30, k720p60, k1080i60, k1080psf24, k1080psf30, k1080p24, k1080p30, k1080p60, k2K24, k2K30, k2K60};
// Every output format of the three families.
constexpr EnumValue kOutputFormats[] = {k525i5994, k525psf2997, k625i50, k625psf25, k720p2398, k720p24, k720p25, k720p2997, k720p30, k720p50, k720p5994, k720p60, k1080i50, k1080i5994, k1080i60, k1080psf2398, k1080psf24, k1080psf25, k1080psf2997, k1080psf30, k1080p2398, k1080p24, k1080p25, k1080p2997, k1080p30, k1080p50, k1080p5994, k1080p60, k2K2398, k2K24, k2K25, k2K2997, k2K30, k2K50, k2K5994, k2K60};
// What an input or reference is detected as.
constexpr EnumValue kDetectedFormats[] = {kNoFormat, k525i5994, k525psf2997, k625i50, k625psf25, k720p2398, k720p24, k720p25, k720p2997, k720p30, k720p50, k720p5994, k720p60, k1080i50, k1080i5994, k1080i60, k1080psf2398, k1080psf24, k1080psf25, k1080psf2997, k1080psf30, k1080p2398, k1080p24, k1080p25, k1080p2997, k1080p30, k1080p50, k1080p5994, k1080p60, k2K2398, k2K24, k2K25, k2K2997, k2K30, k2K50, k2K5994, k2K60};

constexpr EnumValue kUpconvertModes[] = {{0, "4x3 Pillar", "4x3 Pilr"}, {1, "14x9 Pillar", "14x9Pilr"}, {2, "Full Screen", "FullScrn"}, {3, "LB to Full", "LB 2Full"}, {4, "Wide Zoom", "WideZoom"}};
constexpr EnumValue kDownconvertModes[] = {{0, "Anamorphic", "Anamrphc"}, {1, "Letterbox", "Ltrbox"}, {2, "Crop"}, {3, "14x9"}};
constexpr EnumValue kSDAspectRatios[] = {{0, "4:3"}, {1, "16:9"}};
constexpr EnumValue kSidebarEdges[] = {{0, "Hard"}, {1, "Soft"}};
constexpr EnumValue kBackgroundFills[] = {{0, "Black"}, {1, "Matte"}};
constexpr EnumValue kOutputModes[] = {{0, "Normal"}, {1, "Test Pattern", "TstPatrn"}};
constexpr EnumValue kTestPatterns[] = {{0, "Color Bars", "Bars"}, {1, "Black"}, {2, "Grey"}, {3, "Ramp"}};
constexpr EnumValue kLine21[] = {{0, "Pass"}, {1, "Blank"}};
constexpr EnumValue kCaptionStates[] = {{0, "No Input"}, {1, "Pass through", "PassThru"}, {2, "SD CC Detected", "SD CC"}, {3, "SD CC Not Detected", "SD No CC"}, {4, "HD CC Detected", "HD CC"}, {5, "HD CC Not Detected", "HD No CC"}};
constexpr EnumValue kTimecodeOutputs[] = {{0, "Off"}, {1, "VITC"}, {2, "RP188"}, {3, "VITC+RP188", "VITC+ATC"}};
constexpr EnumValue kWSSLines[] = {{20, "Line 20"}, {23, "Line 23"}};
// Active Format Description codes.
constexpr EnumValue kAFDCodes[] = {{0, "None"}, {2, "16:9 Top", "16x9 Top"}, {3, "14:9 Top", "14x9 Top"}, {4, "> 16:9", ">16x9"}, {8, "Full Frame", "Full"}, {9, "4:3 Center", "4x3 Ctr"}, {10, "16:9 Center", "16x9 Ctr"}, {11, "14:9 Center", "14x9 Ctr"}, {13, "4:3 Alt 14:9", "4x3A149"}, {14, "16:9 Alt 14:9", "169A149"}, {15, "16:9 Alt 4:3", "169A43"}};
constexpr EnumValue kFreezeOnLoss[] = {{0, "Black"}, {1, "Freeze"}};

// Legaliser clips are tenths of a percent of the nominal video range, held
// 100 above the shown value: 100 shows as 0.0 %, 1100 as 100.0 %.
constexpr CatalogueRow kLegalizerClip = Decimal(0, nullptr, nullptr, nullptr).Precision(1).Display(10, 100, 1).Units("%").Classes(kFixedDecimal).Relations(kEnabledByLegalizer).Feature(eFeature_Video).IntAttributes(kProc1);

constexpr CatalogueRow V1(CatalogueRow row) { return row.Feature(eFeature_Video).IntAttributes(kProc1); }
constexpr CatalogueRow V2(CatalogueRow row) { return row.Feature(eFeature_Video).IntAttributes(kProc2); }
constexpr CatalogueRow Status(CatalogueRow row) { return row.Store(kStatus).Classes(kReadonly); }
constexpr CatalogueRow Clip(unsigned int id, const char* id_name, const char* name, const char* short_name) {
  CatalogueRow row = kLegalizerClip;
  row.id = id;
  row.idName = id_name;
  row.name = name;
  row.shortName = short_name;
  return row;
}

constexpr CatalogueRow kVideoProcRows[] = {
    // Input.
    V1(Enum(0xD22FD6CA, "eParamID_Vid1VideoInput", "Vid 1 Input", "Vid 1 In").Values(kVideoInputs).Menu(kVideoProcMenuGroup, "1.1")).IntAttributes(kProc1Selector),
    V2(Enum(0xC5E9E8E1, "eParamID_Vid2VideoInput", "Vid 2 Input", "Vid 2 In").Values(kVideoInputs).Default(1).Menu(kVideoProcMenuGroup, "21.1")).IntAttributes(kProc2Selector),
    V1(Enum(0xEC770636, "eParamID_Vid1InputScanFormat", "Vid 1 Input Scan", "V1 Scan").Values(kScanFormats).Menu(kVideoProcMenuGroup, "1.2")),
    V2(Enum(0x36DD8919, "eParamID_Vid2InputScanFormat", "Vid 2 Input Scan", "V2 Scan").Values(kScanFormats).Menu(kVideoProcMenuGroup, "21.2")),
    Status(V1(Enum(0x269539C1, "eParamID_Vid1ActualVideoInput", "Vid 1 Actual Input", "V1 ActIn").Values(kActualInputs))),
    Status(V2(Enum(0x81F82EAE, "eParamID_Vid2ActualVideoInput", "Vid 2 Actual Input", "V2 ActIn").Values(kActualInputs).Default(1))),
    Status(V1(Enum(0x8CC7B010, "eParamID_Vid1DetectedInputType", "Vid 1 Input Type", "V1 InTyp").Values(kInputTypes))),
    Status(V2(Enum(0xBD09FC54, "eParamID_Vid2DetectedInputType", "Vid 2 Input Type", "V2 InTyp").Values(kInputTypes))),
    Status(V1(Enum(0xE96DA7E8, "eParamID_Vid1DetectedInputFormat", "Vid 1 Input Format", "V1 InFmt").Values(kDetectedFormats))),
    Status(V2(Enum(0x2E3036DF, "eParamID_Vid2DetectedInputFormat", "Vid 2 Input Format", "V2 InFmt").Values(kDetectedFormats))),
    Status(V1(Enum(0xFFF2AC34, "eParamID_Vid1DetectedVESAFormat", "Vid 1 VESA Format", "V1 VESA").Values(kVESAFormats))),
    Status(V2(Enum(0x5534523B, "eParamID_Vid2DetectedVESAFormat", "Vid 2 VESA Format", "V2 VESA").Values(kVESAFormats))),
    Status(Enum(0xCF7D3A85, "eParamID_GenlockSourceFormat", "Genlock Format", "GenlkFmt").Values(kDetectedFormats).Feature(eFeature_Video)),
    Status(Enum(0x16ED5E05, "eParamID_DetectedReferenceFormat", "Reference Format", "Ref Fmt").Values(kDetectedFormats).Feature(eFeature_Video)),

    // Output format: the generic, mapped by frame-rate family, and its specifics.
    V1(Enum(0xAC589D79, "eParamID_Vid1OutputFormat", "Vid 1 Output Format", "V1 OutFmt").Values(kOutputFormats).Default(20).Store(kVolatile).Menu(kVideoProcMenuGroup, "2.1")),
    V1(Enum(0x8A932E14, "eParamID_Vid1OutputFormat_5923", "Vid 1 Output Format", "V1 OutFmt").Values(kFormats5923).Default(20)),
    V1(Enum(0xF4E610AE, "eParamID_Vid1OutputFormat_5025", "Vid 1 Output Format", "V1 OutFmt").Values(kFormats5025).Default(19)),
    V1(Enum(0x8B57A705, "eParamID_Vid1OutputFormat_6024", "Vid 1 Output Format", "V1 OutFmt").Values(kFormats6024).Default(21)),
    V2(Enum(0xD955E40D, "eParamID_Vid2OutputFormat", "Vid 2 Output Format", "V2 OutFmt").Values(kOutputFormats).Default(20).Store(kVolatile).Menu(kVideoProcMenuGroup, "22.1")),
    V2(Enum(0xF93A8B27, "eParamID_Vid2OutputFormat_5923", "Vid 2 Output Format", "V2 OutFmt").Values(kFormats5923).Default(20)),
    V2(Enum(0x0AB97A79, "eParamID_Vid2OutputFormat_5025", "Vid 2 Output Format", "V2 OutFmt").Values(kFormats5025).Default(19)),
    V2(Enum(0xB293BC94, "eParamID_Vid2OutputFormat_6024", "Vid 2 Output Format", "V2 OutFmt").Values(kFormats6024).Default(21)),
    // The format each processor puts out: the output-timing selector.
    Status(V1(Enum(0x2038AECE, "eParamID_Vid1ActualOutputFormat", "Vid 1 Actual Format", "V1 ActFmt").Values(kOutputFormats).Default(20))).IntAttributes(kProc1Selector),
    Status(V2(Enum(0xC5934F62, "eParamID_Vid2ActualOutputFormat", "Vid 2 Actual Format", "V2 ActFmt").Values(kOutputFormats).Default(20))).IntAttributes(kProc2Selector),

    // Conversion.
    V1(Enum(0xB3FF7C75, "eParamID_Vid1UpconvertMode", "Upconvert Mode", "UpCnvert").Values(kUpconvertModes).Menu(kVideoProcMenuGroup, "3.1")),
    V2(Enum(0x05CDAA11, "eParamID_Vid2UpconvertMode", "Upconvert Mode", "UpCnvert").Values(kUpconvertModes).Menu(kVideoProcMenuGroup, "23.1")),
    V1(Enum(0xAE838337, "eParamID_Vid1DownconvertMode", "Downconvert Mode", "DnCnvert").Values(kDownconvertModes).Default(1).Menu(kVideoProcMenuGroup, "3.2")),
    V2(Enum(0xF04DD612, "eParamID_Vid2DownconvertMode", "Downconvert Mode", "DnCnvert").Values(kDownconvertModes).Default(1).Menu(kVideoProcMenuGroup, "23.2")),
    // The downconversion used while the input carries no AFD.
    V1(Enum(0xECCFE644, "eParamID_Vid1DownconvertAFDDefault", "Downconvert AFD Default", "DnAFDDef").Values(kDownconvertModes).Default(1).Menu(kVideoProcMenuGroup, "3.3")),
    V2(Enum(0x145B2743, "eParamID_Vid2DownconvertAFDDefault", "Downconvert AFD Default", "DnAFDDef").Values(kDownconvertModes).Default(1).Menu(kVideoProcMenuGroup, "23.3")),
    V1(Enum(0xD4D53201, "eParamID_Vid1SDAspectRatio", "SD Aspect Ratio", "SDAspect").Values(kSDAspectRatios).Menu(kVideoProcMenuGroup, "3.4")),
    V2(Enum(0x561B4DB2, "eParamID_Vid2SDAspectRatio", "SD Aspect Ratio", "SDAspect").Values(kSDAspectRatios).Menu(kVideoProcMenuGroup, "23.4")),
    V1(Enum(0xF1C07C69, "eParamID_Vid1SidebarEdge", "Sidebar Edge", "SideEdge").Values(kSidebarEdges).Menu(kVideoProcMenuGroup, "3.5")),
    V2(Enum(0x5887E809, "eParamID_Vid2SidebarEdge", "Sidebar Edge", "SideEdge").Values(kSidebarEdges).Menu(kVideoProcMenuGroup, "23.5")),
    V1(Enum(0x5559E6AB, "eParamID_Vid1CustomSizePos", "Custom Size/Position", "CustSize").Values(kOffOn).Menu(kVideoProcMenuGroup, "4.1")),
    V2(Enum(0x55B4EBB8, "eParamID_Vid2CustomSizePos", "Custom Size/Position", "CustSize").Values(kOffOn).Menu(kVideoProcMenuGroup, "24.1")),
    Status(V1(Enum(0xA6B42F16, "eParamID_Vid1UFCTransformActive", "Vid 1 Conversion", "V1 Conv").Values(kInactiveActive))),
    Status(V2(Enum(0x58346AA2, "eParamID_Vid2UFCTransformActive", "Vid 2 Conversion", "V2 Conv").Values(kInactiveActive))),
    Status(V1(Enum(0xE2DF6F57, "eParamID_Vid1UFCPresetActive", "Vid 1 Conversion Preset", "V1 CnvPr").Values(kInactiveActive))),
    Status(V2(Enum(0x6E019BC3, "eParamID_Vid2UFCPresetActive", "Vid 2 Conversion Preset", "V2 CnvPr").Values(kInactiveActive))),
    Enum(0xAB06713B, "eParamID_ReverseTelecine", "Reverse Telecine", "RevTelec").Values(kOffOn).Feature(eFeature_Video).Menu(kVideoProcMenuGroup, "18.1"),

    // Freeze, output mode, test pattern and matte.
    V1(Enum(0xFF88F26B, "eParamID_Vid1FreezeOutput", "Vid 1 Freeze", "V1Freeze").Values(kOffOn).Store(kVolatile).Menu(kVideoProcMenuGroup, "9.1")),
    V2(Enum(0xB2487B42, "eParamID_Vid2FreezeOutput", "Vid 2 Freeze", "V2Freeze").Values(kOffOn).Store(kVolatile).Menu(kVideoProcMenuGroup, "29.1")),
    V1(Enum(0x16BF14B4, "eParamID_Vid1FreezeOnInputLoss", "On Input Loss", "InLoss").Values(kFreezeOnLoss).Default(1).Menu(kVideoProcMenuGroup, "9.2")),
    V2(Enum(0xA522EFBB, "eParamID_Vid2FreezeOnInputLoss", "On Input Loss", "InLoss").Values(kFreezeOnLoss).Default(1).Menu(kVideoProcMenuGroup, "29.2")),
    V1(Enum(0x2ACD28EF, "eParamID_Vid1VideoOutputMode", "Vid 1 Output Mode", "VoutMode").Values(kOutputModes).Menu(kVideoProcMenuGroup, "10.1")),
    V2(Enum(0x5ECA5DE8, "eParamID_Vid2VideoOutputMode", "Vid 2 Output Mode", "VoutMode").Values(kOutputModes).Menu(kVideoProcMenuGroup, "30.1")),
    V1(Enum(0x0498A6E8, "eParamID_Vid1TestPatternVideo", "Test Pattern", "TstPatrn").Values(kTestPatterns).Menu(kVideoProcMenuGroup, "10.2")),
    V1(Enum(0x40094712, "eParamID_Vid1BackgroundFill", "Background Fill", "BkgdFill").Values(kBackgroundFills).Menu(kVideoProcMenuGroup, "10.3")),
    // The matte colour: luma and chroma in percent, hue in degrees.
    V1(Integer(0xDE0FB540, "eParamID_Vid1MatteLuma", "Matte Luma", "MattLuma").Range(0, 100, 0).Units("%").Classes(kUnity).Menu(kVideoProcMenuGroup, "11.1")),
    V1(Integer(0x506D6F7A, "eParamID_Vid1MatteHue", "Matte Hue", "MatteHue").Range(0, 359, 0).Units("deg").Menu(kVideoProcMenuGroup, "11.2")),
    V1(Integer(0x32E13134, "eParamID_Vid1MatteChroma", "Matte Chroma", "MattChrm").Range(0, 100, 0).Units("%").Menu(kVideoProcMenuGroup, "11.3")),

    // Timecode, captions and WSS.
    V1(Enum(0x4EEF1A0A, "eParamID_Vid1TimecodeOutput", "Timecode Output", "TC Out").Values(kTimecodeOutputs).Default(3).Menu(kVideoProcMenuGroup, "12.1")),
    V2(Enum(0x0CA933DD, "eParamID_Vid2TimecodeOutput", "Timecode Output", "TC Out").Values(kTimecodeOutputs).Default(3).Menu(kVideoProcMenuGroup, "32.1")),
    V1(Integer(0xB19CCABF, "eParamID_Vid1VITCOutputLines", "VITC Output Line", "VITCLine").Range(10, 20, 14).Menu(kVideoProcMenuGroup, "12.2")),
    V2(Integer(0xF8255AB6, "eParamID_Vid2VITCOutputLines", "VITC Output Line", "VITCLine").Range(10, 20, 14).Menu(kVideoProcMenuGroup, "32.2")),
    V1(Enum(0x0B319CB8, "eParamID_Vid1CaptionXlator", "Caption Translator", "CC Xlate").Values(kOffOn).Default(1).Menu(kVideoProcMenuGroup, "13.1")),
    V2(Enum(0x2C50BFE5, "eParamID_Vid2CaptionXlator", "Caption Translator", "CC Xlate").Values(kOffOn).Default(1).Menu(kVideoProcMenuGroup, "33.1")),
    V1(Enum(0x84D29BD3, "eParamID_Vid1SDLine21Blanking", "SD Line 21", "Line 21").Values(kLine21).Menu(kVideoProcMenuGroup, "13.2")),
    V2(Enum(0x078B8571, "eParamID_Vid2SDLine21Blanking", "SD Line 21", "Line 21").Values(kLine21).Menu(kVideoProcMenuGroup, "33.2")),
    Status(V1(Enum(0x82AB62E7, "eParamID_Vid1DetectedCaptions", "Vid 1 Captions", "Vid 1 CC").Values(kCaptionStates))),
    Status(V2(Enum(0x25C1A7B0, "eParamID_Vid2DetectedCaptions", "Vid 2 Captions", "Vid 2 CC").Values(kCaptionStates))),
    V1(Enum(0x718F88A3, "eParamID_Vid1WSSOut", "Vid 1 WSS Output", "WSS Out").Values(kOffOn).Menu(kVideoProcMenuGroup, "13.12")),
    V1(Enum(0x2B931C25, "eParamID_Vid1WSSOutputLines", "Vid 1 WSS Output Lines", "WSSLines").Values(kWSSLines).Default(23).Menu(kVideoProcMenuGroup, "13.13")),

    // Legaliser.
    V1(Enum(kVideoLegalizerParamID, "eParamID_Vid1VideoLegalizer", "Video Legalizer", "Legalize").Values(kOffOn).Menu(kVideoProcMenuGroup, "16.1")),
    Clip(0x6CC8B175, "eParamID_Vid1LegalizerBlackClip", "Legalizer Black Clip", "LglBlack").Range(28, 100, 100).Menu(kVideoProcMenuGroup, "16.2"),
    Clip(0xEE0D0C7D, "eParamID_Vid1LegalizerWhiteClip", "Legalizer White Clip", "LglWhite").Range(1000, 1190, 1100).Menu(kVideoProcMenuGroup, "16.3"),
    Clip(0x60E9664A, "eParamID_Vid1LegalizerChromaClip", "Legalizer Chroma Clip", "LglChrma").Range(1000, 1400, 1100).Menu(kVideoProcMenuGroup, "16.4"),

    // AFD.
    V1(Enum(0x73EF6F7B, "eParamID_Vid1AFDOut", "Vid 1 AFD Output", "AFD Out").Values(kOffOn).Menu(kVideoProcMenuGroup, "17.1")),
    V2(Enum(0xACA23613, "eParamID_Vid2AFDOut", "Vid 2 AFD Output", "AFD Out").Values(kOffOn).Menu(kVideoProcMenuGroup, "37.1")),
    V1(Integer(0x6AB7EE6F, "eParamID_Vid1AFDVANCOutputLines", "AFD VANC Output Line", "AFDLines").Range(9, 20, 11).Menu(kVideoProcMenuGroup, "17.2")),
    V2(Integer(0xC432F497, "eParamID_Vid2AFDVANCOutputLines", "AFD VANC Output Line", "AFDLines").Range(9, 20, 11).Menu(kVideoProcMenuGroup, "37.2")),
    V1(Enum(0x4BA0C480, "eParamID_Vid1AFDOutMode", "Vid 1 Output AFD Mode", "AFDOtMod").Values(kAFDCodes).Store(kStatus).Classes(kReadonlyRestHidden)),
    V2(Enum(0xDA810078, "eParamID_Vid2AFDOutMode", "Vid 2 Output AFD Mode", "AFDOtMod").Values(kAFDCodes).Store(kStatus).Classes(kReadonlyRestHidden)),
    Status(V1(Enum(0x2BD97C26, "eParamID_Vid1DetectedAFDMode", "Vid 1 Input AFD", "V1 InAFD").Values(kAFDCodes))),
    Status(V2(Enum(0xE4163861, "eParamID_Vid2DetectedAFDMode", "Vid 2 Input AFD", "V2 InAFD").Values(kAFDCodes))),
    Status(V1(Enum(0x11CDBF83, "eParamID_Vid1AFDActive", "Vid 1 AFD Active", "V1 AFD").Values(kInactiveActive))),
    Status(V2(Enum(0x1DD87591, "eParamID_Vid2AFDActive", "Vid 2 AFD Active", "V2 AFD").Values(kInactiveActive))),
};
// clang-format on

}  // namespace
}  // namespace catalogue
}  // namespace config
}  // namespace zyn

void createParamDescriptors_VideoProc() {
  zyn::config::catalogue::AddCatalogueRows(zyn::config::catalogue::kVideoProcRows);
}
