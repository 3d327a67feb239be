// The per-channel audio families: levels, phases, delays (per channel pair
// and global) and the output map, generated in loops from the ID tables
// below, one row per source (or output) and one entry per channel or pair.
// An entry of 0 means the source has no such channel: no parameter is made.
//
// Levels are tenths of a dB held 600 above the shown value, from -60.0 dB
// (0) to +12.0 dB (720), unity (600) by default, in 0.5 dB steps. Delays are
// samples at 48 kHz, up to one second. An output map entry is the channel of
// the output's source that feeds the output channel, 0 for silence; by
// default each channel carries the same channel of its source.
//
// Each level, phase and per-pair delay is enabled by its source's adjust
// enable or delay select ("enabled_by"); those of channels 1 to 8 of the
// sources a Dolby E framer can take are disabled while the framer owns their
// pair ("disabled_by").
#include <string>

#include "config/descriptors/audio_descriptor_helpers.h"
#include "config/descriptors/catalogue_family.h"
#include "config/descriptors/param_descriptors.h"
#include "config/descriptors/param_descriptors_audio.h"

namespace zyn {
namespace config {
namespace catalogue {
namespace {

constexpr int kMaxAudioPairs = kMaxAudioChannels / 2;
constexpr int kDolbyFramer = 0;
// The channel pairs a framer can own: channels 1 to 8.
constexpr int kFramerPairs = 4;
constexpr unsigned int kPerPairDelay = 1;  // eParamID_AudioDelaySelect_*: "Per Pair"

enum class SourceKind { kChannels, kMixDown, kSignalGenerator };

struct AudioSource {
  const char* name;
  SourceKind kind;
  int mixDown;  // the mixdown's number, for kMixDown
  // Menu sections of the audio proc menu; 0 for none.
  int levelSection;
  int phaseSection;
  int delaySection;
  unsigned int levelEnableID;  // eParamID_AudioLevelAdjustEnable_<name>
  unsigned int phaseEnableID;  // eParamID_AudioPhaseAdjustEnable_<name>
  unsigned int delaySelectID;  // eParamID_AudioDelaySelect_<name>
  bool framerCanOwn;
};

// clang-format off
constexpr AudioSource kAudioSources[kAudioSourceCount] = {
    {"SDI1", SourceKind::kChannels, 0, 15, 30, 40, 0x38D90EC6, 0x8FB40E9E, 0x833F6869, true},
    {"SDI2", SourceKind::kChannels, 0, 16, 31, 41, 0x7BD762C5, 0x7EA6B315, 0x4AFF7FA0, true},
    {"Fiber1", SourceKind::kChannels, 0, 17, 32, 42, 0x557FF938, 0xD0596504, 0x8E3C1CE0, true},
    {"Fiber2", SourceKind::kChannels, 0, 18, 33, 43, 0x61691927, 0x170182CF, 0x654B528D, true},
    {"AES", SourceKind::kChannels, 0, 19, 34, 44, 0x5751D610, 0x6878544A, 0x154024C3, true},
    {"MADIBNC", SourceKind::kChannels, 0, 20, 35, 45, 0x6472090A, 0x351A073D, 0x3F14EF60, false},
    {"MADIFIB", SourceKind::kChannels, 0, 21, 36, 46, 0xED942B46, 0xF4D3FED5, 0x12A39317, false},
    {"HDMI", SourceKind::kChannels, 0, 22, 37, 47, 0xAADCBCCF, 0x5EB99013, 0xEC293537, false},
    {"Analog", SourceKind::kChannels, 0, 23, 38, 48, 0x0EFAF7A9, 0xE764D43C, 0x568CE1CE, false},
    {"MixDown1", SourceKind::kMixDown, 1, 28, 0, 0, 0xF507E79D, 0, 0, false},
    {"MixDown2", SourceKind::kMixDown, 2, 29, 0, 0, 0xCCAC5640, 0, 0, false},
    {"AudioSG", SourceKind::kSignalGenerator, 0, 24, 39, 0, 0x4EA74511, 0x6D6FD700, 0, false},
    {"AudioSG", SourceKind::kSignalGenerator, 0, 0, 0, 0, 0, 0, 0, false},
};

struct AudioOutput {
  const char* name;
  int section;  // of the audio output menu
};

constexpr AudioOutput kAudioOutputs[kAudioOutputCount] = {
    {"SDI1", 3}, {"SDI2", 4}, {"Fiber1", 5}, {"Fiber2", 6}, {"AES", 7}, {"MADIBNC", 8}, {"MADIFIB", 9}, {"HDMI", 10}, {"Analog", 11}, {"GlobalAudio", 2},
};
constexpr int kGlobalAudioOutput = 9;

constexpr unsigned int kAudioLevelIDs[kAudioSourceCount][kMaxAudioChannels] = {
    // SDI1: 16
    {0x271AD233, 0xD58D036C, 0x4C37EB11, 0xB043B282, 0x3D74B5DF, 0xC4DCAFC8, 0xE266329D, 0x70BC6A3E,
     0xF475091B, 0x517726A1, 0x39357E3C, 0x5E843C03, 0xAE377306, 0xCF95EDAD, 0x6F9FBF18, 0x6C3C452F},
    // SDI2: 16
    {0x281AD3C6, 0xD88D0825, 0x4937E658, 0xAF43B0EF, 0x3E74B772, 0xC7DCB481, 0xDF662DE4, 0x6FBC68AB,
     0xF5750AAE, 0x4E7721E8, 0x3C3582F5, 0x5F843D96, 0xAD377173, 0xCC95E8F4, 0x729FC3D1, 0x6D3C46C2},
    // Fiber1: 16
    {0x4774F693, 0xC54575D4, 0xBC5F0B39, 0xA37BCF3A, 0x61353B87, 0x5A334F68, 0x562ADA9D, 0x3D15DAFE,
     0x71C5B61B, 0xFD6480C9, 0xFAA28564, 0xFA4263E3, 0x11DB3FA6, 0x06FC0C6D, 0xB93F0438, 0xDE3EB517},
    // Fiber2: 16
    {0x4874F826, 0xC8457A8D, 0xB95F0680, 0xA27BCDA7, 0x62353D1A, 0x5D335421, 0x532AD5E4, 0x3C15D96B,
     0x72C5B7AE, 0xFA647C10, 0xFDA28A1D, 0xFB426576, 0x10DB3E13, 0x03FC07B4, 0xBC3F08F1, 0xDF3EB6AA},
    // AES: 8
    {0x79C31F61, 0x30F7943C, 0x382F99E3, 0xAFC6B926, 0x8850C275, 0xD522BBA0, 0x07C35027, 0xAF8D258A},
    // MADIBNC: 64
    {0xB66800B0, 0x9ED10AC1, 0xA614E002, 0xC817E4F3, 0x11A7D2F4, 0xC85C24A5, 0xA6F54B16, 0x8BA22BA7,
     0xE03601C8, 0xD89819B2, 0xF402BCB1, 0x41BEEFA0, 0x402CFA3F, 0x1BED8246, 0x640C1495, 0x923867A4,
     0xEA9B1F63, 0x20072BAA, 0xEBF26409, 0x24C164C9, 0x727FBD6A, 0x1649AFD7, 0x773AD5B8, 0x2F7AAF0D,
     0x07B21A3E, 0xBAACED7B, 0xB42D96DC, 0x8C14E471, 0xC91B1072, 0x946F4868, 0x76102347, 0x2ED3361A,
     0x63802D39, 0x77EC4C8C, 0x37499BAB, 0x481F4D2E, 0x14760CBD, 0x08F6E950, 0x4F767CAF, 0x612F455F,
     0xC1388C40, 0xC4A5D1D1, 0x18F90252, 0x57E01703, 0x2C7590C4, 0xC05541B5, 0x17BB01E6, 0xE4042537,
     0xCB400818, 0x7498818E, 0xF539189D, 0x86C559EC, 0xFED4A50B, 0xF4D75B7A, 0xAF0AAD19, 0x9A1BDD48,
     0x45880727, 0x60DB2696, 0x82420025, 0x9EC1A395, 0x56A31146, 0x2550AE63, 0xCCEDF6A4, 0x2EB84BB1},
    // MADIFIB: 64
    {0x58C4D4B4, 0x24B99A39, 0xF788C7F2, 0x6390BE8F, 0x7B266E08, 0x25BE11FD, 0xF23489D6, 0x9FA9F113,
     0x44BD282C, 0xAC85A122, 0x78AFAAA9, 0x66956324, 0x9484D64B, 0x65EF8C86, 0xC2ACC96D, 0x7E30A238,
     0x8613F8FF, 0xB3A62F7A, 0x71DAF381, 0xA8311E41, 0x03A4583A, 0x2CCBDE43, 0xDA84C79C, 0x8B9F67E5,
     0x947EA41E, 0x18501977, 0x5FD74DD0, 0x10C03F69, 0x9A8FC1E2, 0x78F5A54C, 0x8B551D33, 0xC27239EA,
     0x66EF1D31, 0x23947080, 0x12732827, 0xD4EBD70E, 0x73152E95, 0x2B52F3D4, 0xA6472EBB, 0xB587216B,
     0x6393CD44, 0xCA8F2AC9, 0xECE81CC2, 0xF358F09F, 0x97316058, 0x1C7B8D8D, 0x64377526, 0x780B2123,
     0x2D4CC57C, 0x816441EE, 0x529C98F5, 0x326D7DE0, 0xDC789A87, 0x88765F4A, 0x34F4CF91, 0xFEA303AC,
     0x598FCC93, 0xAC1A6556, 0xDFA3ED7D, 0xFD62586D, 0xA0A51B86, 0xC0C987FF, 0xB8E63138, 0xB36539A9},
    // HDMI: 8
    {0x46A92A5C, 0x9E897F53, 0x80F33B96, 0xC81AD005, 0xC680F0E0, 0xF19DBD57, 0xBDE7F11A, 0x9320D989},
    // Analog: 8
    {0x575F626A, 0x3BAA8B45, 0x64B4FE98, 0x89116653, 0xE960196E, 0x7F661309, 0x02F5EC0C, 0xC5B05637},
    // MixDown1: 2
    {0x57A6CE6F, 0x3AB15FEC},
    // MixDown2: 2
    {0x58A6D002, 0x3DB164A5},
    // AudioSG: 2
    {0x634BB922, 0x2BD03697},
    {},  // AudioSG (fill): none
};

constexpr unsigned int kAudioPhaseIDs[kAudioSourceCount][kMaxAudioChannels] = {
    // SDI1: 16
    {0x3F8E731A, 0x23A30DF5, 0x31C032A0, 0xC0A4186B, 0x8ADE58CE, 0x738DDBA9, 0x89B7B224, 0x30AFFD6F,
     0x5384A3D2, 0x281A988E, 0x31A1472B, 0x98F8E3E4, 0x279C6769, 0x0943DEDA, 0x04EB4717, 0xBC0A1660},
    // SDI2: 16
    {0x3E8E7187, 0x20A3093C, 0x34C03759, 0xC1A419FE, 0x89DE573B, 0x708DD6F0, 0x8CB7B6DD, 0x31AFFF02,
     0x5284A23F, 0x271A96FB, 0x32A148BE, 0x9BF8E89D, 0x249C62B0, 0x0843DD47, 0x05EB48AA, 0xBF0A1B19},
    // Fiber1: 16
    {0xC164CD12, 0x87BDF755, 0x83557B80, 0x0FFFC3EB, 0x6B5CAD0E, 0xFC6CC531, 0xDE4EBAEC, 0x15E75657,
     0x9594BC0A, 0xFE1E67CE, 0x4F43EEAB, 0x5B1F02AC, 0xFD5381F1, 0x16F695D2, 0x3FD949BF, 0x4790F440},
    // Fiber2: 16
    {0xC064CB7F, 0x84BDF29C, 0x86558039, 0x10FFC57E, 0x6A5CAB7B, 0xF96CC078, 0xE14EBFA5, 0x16E757EA,
     0x9494BA77, 0xFD1E663B, 0x5043F03E, 0x5E1F0765, 0xFA537D38, 0x15F6943F, 0x40D94B52, 0x4A90F8F9},
    // AES: 8
    {0xD4FC2E7E, 0x84BC999F, 0x70DD6FF8, 0xF441FFD9, 0xB34AA69A, 0x02FDF37B, 0xFA2E8E14, 0x79E2BC85},
    // MADIBNC: 64
    {0x29DC397B, 0x76E1663E, 0x9EA9FB0D, 0xE66A21B8, 0x8578FBD7, 0xE1AF096A, 0x93F0B0C9, 0x20E9FF64,
     0x815C9923, 0xF9EF0717, 0xAF89A5F8, 0x06492F09, 0x3A5DF6AA, 0x629D47BB, 0x9AF00E1C, 0xF34A244D,
     0xA1BE7A7E, 0x5A83C53F, 0x5C15BAA0, 0x9014D52C, 0xE6321A4B, 0xAD442DCE, 0xF54844DD, 0x54652888,
     0x431CCA67, 0x7FC2E2BA, 0xF46C0159, 0x5A78C1B4, 0x0D8D91B3, 0x8F170B2D, 0xC9E43CDE, 0xB5026A9B,
     0xF446647C, 0x5A4E6169, 0x6D511F8A, 0xB51E2977, 0xE46E0B58, 0x65CCC5F5, 0x5009D226, 0x329B908A,
     0x1F98D269, 0xA9B87C58, 0x7A689A77, 0x8F2EADDE, 0x54617C2D, 0xB990D57C, 0x7A4CDB9B, 0xF144FB92,
     0x23FCA311, 0x36C96B2B, 0x776C1C0C, 0x13F5DC3D, 0x479F1CAE, 0x758FF2C7, 0x93EF17E8, 0x62FFFCB9,
     0x2E53059A, 0x7FB2D913, 0x87378C94, 0xC40392E0, 0x6A00CE7F, 0xC89ADFF2, 0x8B94B3F1, 0xB13A82E4},
    // MADIFIB: 64
    {0x877F6577, 0x03ADF01E, 0xFACEB3E5, 0x49B4139C, 0x9BFB2A43, 0x72D3A43A, 0x17606A41, 0x0A67D0F8,
     0x1F4FDBBF, 0x0DF6CC83, 0x12D397DC, 0x8C31BE81, 0xCDFCFA7A, 0xBDC79DB7, 0x441DC910, 0x51EAD925,
     0x2C109B5E, 0xAEDBA14B, 0x80EC2E24, 0x39442320, 0xC15BA6C7, 0xB797182E, 0x52AA3235, 0xB671E5EC,
     0x599EF8D3, 0x10E77D8A, 0x77DA27D1, 0xC67032C8, 0xAB80D44F, 0x6DB6F685, 0xD435943E, 0x92A66017,
     0x9FF01B70, 0x5EFA85E1, 0x80F0ECDA, 0x4BA12163, 0x48F531BC, 0xC46BE7CD, 0x9A0D6F66, 0x463B5DDA,
     0x2444F6E1, 0x0E3FA2BC, 0x10EB9263, 0x9980053E, 0x33016785, 0x653A8C70, 0x57F0D117, 0xC2B81A02,
     0x276B9309, 0x11F2F7A7, 0x23144000, 0x7294FE15, 0xD46BA68E, 0x8AD4ECB3, 0x787574CC, 0x666EECB1,
     0xC1F2096A, 0x9C69B0AF, 0x732FC728, 0xE65F9D64, 0xC0D1808B, 0x9A0F9162, 0x10400EE9, 0x9AB85478},
    // HDMI: 8
    {0x57FC27BD, 0x57C9B5D2, 0x1245622F, 0x07503814, 0x4622EF19, 0x88DDFDEE, 0x6AB0688B, 0xE2174E30},
    // Analog: 8
    {0x9F7CCCEB, 0x3E2026E4, 0x1E9D27C1, 0x1E079C22, 0xD95C3BC7, 0x11B94850, 0x13949E7D, 0x5867493E},
    {},  // MixDown1: none
    {},  // MixDown2: none
    // AudioSG: 2
    {0x51CB0EA9, 0x6D52F608},
    {},  // AudioSG (fill): none
};

// By source and channel pair (channels 1 and 2, 3 and 4, ...).
constexpr unsigned int kAudioDelayIDs[kAudioSourceCount][kMaxAudioPairs] = {
    // SDI1: 8
    {0x9EA03731, 0x531468E1, 0x807126F9, 0x4F5204B9, 0x415B1BFA, 0x2A40164B, 0x0AA3FF73, 0xFA88B943},
    // SDI2: 8
    {0x9BA03278, 0x50146428, 0x7D712240, 0x4C520000, 0x405B1A67, 0x2B4017DE, 0x0BA40106, 0xFB88BAD6},
    // Fiber1: 8
    {0x96975E59, 0x3DCD1809, 0x5CB776C1, 0xB7FE8781, 0x5A229DF2, 0x6C65854B, 0xBB64D1D3, 0x7A6BA623},
    // Fiber2: 8
    {0x939759A0, 0x3ACD1350, 0x59B77208, 0xB4FE82C8, 0x59229C5F, 0x6D6586DE, 0xBC64D366, 0x7B6BA7B6},
    // AES: 4
    {0x564C2F03, 0x68B13D73, 0x6234040B, 0x4041474B},
    // MADIBNC: 32
    {0x8EF514A2, 0xD23B8D72, 0x7700DBDA, 0xD8A72E1A, 0xF1F550DB, 0x9C6C6098, 0x21408870, 0x9EDDEC60,
     0xBDE61138, 0x71DAB609, 0xD900836A, 0x7E62A51A, 0x3BFF12DA, 0x49D70DFA, 0x6C902321, 0x5C229E38,
     0xFCBE3088, 0xEB2A8188, 0xC34409D8, 0x91CFEF95, 0xF0BB5336, 0x7B23DBEE, 0xDCF4EA3E, 0x1C1933D6,
     0x0495963D, 0x700445C8, 0xB92A7DD8, 0xBC825AD0, 0xF4904880, 0xD4665139, 0x6D8EA54A, 0x15911642},
    // MADIFIB: 32
    {0x61A6FA92, 0xA3B03EE2, 0x082576AA, 0x6C4631EA, 0xCD1EDD57, 0xFE791DFC, 0xC6163274, 0xC139F6E4,
     0x2130031C, 0xF7C34581, 0x6A251E3A, 0x1201A8EA, 0xCD23ADAA, 0xDD7611CA, 0xEFFE4999, 0xBF6C901C,
     0x5ECAEDEC, 0x4D373EEC, 0x27CB303C, 0xF070A46D, 0x3ABEF076, 0x0575FCCE, 0x69C1741E, 0x675A0596,
     0x6334B815, 0xD48B6C2C, 0x1DB1A43C, 0xDEDE6554, 0x99678584, 0xD7D54131, 0x7EB2769A, 0x697F6732},
    // HDMI: 4
    {0x06B4C876, 0x2D570466, 0x47EFB83E, 0x7D84AA7E},
    // Analog: 4
    {0xBEEE1B38, 0x59954468, 0x3EB13520, 0x4670A860},
    {},  // MixDown1: none
    {},  // MixDown2: none
    {},  // AudioSG: none
    {},  // AudioSG (fill): none
};

// By source; sources 9 to 12 have none.
constexpr unsigned int kAudioDelayGlobalIDs[kAudioSourceCount] = {
    0xCAAB2601, 0xC7AB2148, 0x23058F29, 0x20058A70, 0x3BEEAB13, 0xE64AA912, 0xB7BDC782, 0x570A9746, 0x3ECDBB88,
};

constexpr unsigned int kAudioOutputMapIDs[kAudioOutputCount][kMaxAudioChannels] = {
    // SDI1: 16
    {0x83297A76, 0x64461F51, 0x008D93AC, 0x94EE721F, 0x3676E8C2, 0x3C5A57DD, 0x1C566C08, 0x782DD65B,
     0x103C557E, 0xEA67C782, 0x7798CADF, 0xFF00C4C8, 0x1C8A479D, 0x924CFF36, 0x613EE733, 0x0FB1186C},
    // SDI2: 16
    {0x822978E3, 0x61461A98, 0x038D9865, 0x95EE73B2, 0x3576E72F, 0x395A5324, 0x1F5670C1, 0x792DD7EE,
     0x0F3C53EB, 0xE967C5EF, 0x7898CC72, 0x0200C981, 0x198A42E4, 0x914CFDA3, 0x623EE8C6, 0x12B11D25},
    // Fiber1: 16
    {0xB1684256, 0xFF413079, 0x05675714, 0x356DB0C7, 0xA16D2C7A, 0xD4257BDD, 0x4A32E2A8, 0x16FED65B,
     0x6746493E, 0xD84A6C3A, 0x9603D887, 0x8F01EC68, 0x8AF9779D, 0xD2540F16, 0x7C439393, 0xFA1412D4},
    // Fiber2: 16
    {0xB06840C3, 0xFC412BC0, 0x08675BCD, 0x366DB25A, 0xA06D2AE7, 0xD1257724, 0x4D32E761, 0x17FED7EE,
     0x664647AB, 0xD74A6AA7, 0x9703DA1A, 0x9201F121, 0x87F972E4, 0xD1540D83, 0x7D439526, 0xFD14178D},
    // AES: 8
    {0x559E5782, 0xA824A5A3, 0x879FEAFC, 0xC98C5435, 0xDA3191E6, 0x4B7ADDE7, 0x165E4D60, 0x5C858909},
    // MADIBNC: 64
    {0x8711024F, 0xC1CB74C2, 0x58235181, 0xF87872B4, 0xAB8D42B3, 0xE3BC50D6, 0x31623B65, 0xF264D988,
     0xE11C7B67, 0xE9590BF3, 0x32E8F9F4, 0xE99D4BA5, 0xC8367216, 0x0B0B488F, 0xD7A927B0, 0xC01231C1,
     0xC7560702, 0x662FF08B, 0xEE20A56C, 0x3903A1A8, 0xF1869287, 0x24B8EC5A, 0x1EE86579, 0x7DDFC6CC,
     0x8CAF07EB, 0xB8AF466E, 0xB4FD34FD, 0x6F009390, 0x1C3CB5EF, 0x6E24AB09, 0xA23972AA, 0x61CA8317,
     0x176521F8, 0x5B25A04D, 0x0999F67E, 0xCA78C3BB, 0x02CB8A1C, 0x763503B1, 0x5ACA60B2, 0x151FA9CE,
     0x5D23C0DD, 0xF7F0512C, 0x4E0D964B, 0xE79E5EBA, 0x5C477D59, 0xBC40A488, 0xAAF84667, 0xAD981BD6,
     0xFB3E0665, 0x549A929F, 0x50260580, 0xC68DAE11, 0x93D60692, 0xB0043443, 0x22996904, 0xCDA841F5,
     0xB7E54E26, 0x1CF9A577, 0x4C498758, 0x29C89794, 0x2243E413, 0x31D01136, 0xF7AB3845, 0xAB07C3D0},
    // MADIFIB: 64
    {0xDB674B5B, 0x15B9C5B2, 0xDB930AF9, 0x646FE3C8, 0x4980854F, 0x2EFD2296, 0x8EC5BBBD, 0x547196EC,
     0xF79EA9D3, 0x84D1E58F, 0x9C679508, 0x46FF38FD, 0x1375B0D6, 0x61DD8D9B, 0x7A05FBB4, 0x45FAC139,
     0x18C9EEF2, 0x43D3E607, 0x99C8C960, 0x1B11288C, 0x06CB8C73, 0xB5DD872A, 0x24D1BE71, 0x270F14C0,
     0x6A52FD67, 0x4301674E, 0x112380D5, 0x93D70714, 0x709491FB, 0xF40D3A81, 0x35D8767A, 0x75D24883,
     0x7AAF13DC, 0xB9C65525, 0x93EC175E, 0x25A319B7, 0xABF94510, 0xFAE1F1A9, 0x2EB7E822, 0x1F72942E,
     0xBA85AE35, 0xA11F9F20, 0x293722C7, 0x78C2F98A, 0xDFB5A3D1, 0x1E4D61EC, 0xC17A74D3, 0xF8D8ED96,
     0x58A186BD, 0xAB6B44AB, 0xF4FD4284, 0xC9FC9E09, 0x65492502, 0x4DF776DF, 0x8D53A598, 0x2C4763CD,
     0x01E8EB66, 0xB37C9D63, 0xB0D0ADBC, 0x15C0D228, 0x3EFABBAF, 0x7BD3AE76, 0x53CFF11D, 0xCD63CE54},
    // HDMI: 8
    {0xDDD87581, 0xFFB3F156, 0x49894613, 0xB9C294A0, 0xCE4ECFC5, 0xB12994DA, 0xE4DF6117, 0x1952AB04},
    // Analog: 8
    {0x4C71696F, 0xA51B0858, 0xB63FDD05, 0x5960762E, 0xF64FEC13, 0x1A3C78CC, 0xD61827C9, 0x007E9112},
    // GlobalAudio: 16
    {0xF8E0A916, 0x71C98233, 0x6D2AB26C, 0x65AB5FF1, 0xCD993BFA, 0x2600CC47, 0x5E7C5C40, 0xAA14C605,
     0xE6144BCE, 0x5AFAB13A, 0x2A4B9031, 0xD6A37B80, 0x548EF487, 0x14798E56, 0x761BBD8D, 0xCF7B17AC},
};

constexpr EnumValue kPhaseValues[] = {{0, "Normal"}, {1, "Invert"}};
constexpr CatalogueRow kLevel = Integer(0, nullptr, nullptr, nullptr).Range(0, 720, 600).Step(5).Display(10, 600, 1).Units("dB").Feature(eFeature_Audio);
constexpr CatalogueRow kPhase = Enum(0, nullptr, nullptr, nullptr).Values(kPhaseValues).Feature(eFeature_Audio);
constexpr CatalogueRow kDelay = Integer(0, nullptr, nullptr, nullptr).Range(0, 48000, 0).Units("samples").Feature(eFeature_Audio);
constexpr CatalogueRow kOutputMap = Integer(0, nullptr, nullptr, nullptr).Range(0, kMaxAudioChannels, 0).Feature(eFeature_Audio);
// clang-format on

// The signal generator's tones and the mixdown outputs' sides, by channel.
const char* Tone(int channel) { return channel == 1 ? "1kHz" : "400Hz"; }
const char* Side(int channel) { return channel == 1 ? "Lft" : "Rt"; }
const char* ShortSide(int channel) { return channel == 1 ? " L" : "R"; }

// Registers d in the audio proc menu with the relations of its source: enabled
// by `enable` holding `enabled_value`, and disabled while the Dolby E
// framer owns channel pair `pair` (from 0) when the source can carry one.
void AddAudioMember(ParamDescriptor* d, const AudioSource& source, unsigned int enable,
                    unsigned int enabled_value, int pair) {
  d->AddAttribute("ParamGroup", kAudioProcMenuGroup);
  if (enable != 0) d->AddRelation("enabled_by", enable, enabled_value);
  if (source.framerCanOwn && pair < kFramerPairs)
    HideChannelsControlledByDolbyFramer(static_cast<IntegerDescriptor*>(d), kDolbyFramer, pair);
  AddDescriptor(d);
}

}  // namespace
}  // namespace catalogue
}  // namespace config
}  // namespace zyn

namespace catalogue = zyn::config::catalogue;
using catalogue::Format;

void CreateAudioLevelDescriptors() {
  for (int s = 0; s < kAudioSourceCount; ++s) {
    const catalogue::AudioSource& source = catalogue::kAudioSources[s];
    for (int channel = 1; channel <= kMaxAudioChannels; ++channel) {
      const unsigned int id = catalogue::kAudioLevelIDs[s][channel - 1];
      if (id == 0) continue;
      std::string name, short_name;
      switch (source.kind) {
        case catalogue::SourceKind::kChannels:
          name = Format("%s Level Ch %d", source.name, channel);
          short_name = Format("Lvl ch%d", channel);
          break;
        case catalogue::SourceKind::kSignalGenerator:
          name = Format("%s Level %s", source.name, catalogue::Tone(channel));
          short_name = Format("Lvl%s", catalogue::Tone(channel));
          break;
        case catalogue::SourceKind::kMixDown:
          name = Format("Mix Down %d Output %s", source.mixDown, catalogue::Side(channel));
          short_name = Format("MxDnOut%s", catalogue::ShortSide(channel));
          break;
      }
      catalogue::AddAudioMember(
          catalogue::BuildMember(catalogue::kLevel, id,
                                 Format("eParamID_AudioLevelCh%d_%s", channel, source.name), name,
                                 short_name, Format("%d.%d", source.levelSection, channel)),
          source, source.levelEnableID, 1, (channel - 1) / 2);
    }
  }
}

void CreateAudioPhaseDescriptors() {
  for (int s = 0; s < kAudioSourceCount; ++s) {
    const catalogue::AudioSource& source = catalogue::kAudioSources[s];
    const bool generator = source.kind == catalogue::SourceKind::kSignalGenerator;
    for (int channel = 1; channel <= kMaxAudioChannels; ++channel) {
      const unsigned int id = catalogue::kAudioPhaseIDs[s][channel - 1];
      if (id == 0) continue;
      const std::string name = generator
                                   ? Format("%s Phase %s", source.name, catalogue::Tone(channel))
                                   : Format("%s Phase Ch %d", source.name, channel);
      const std::string short_name =
          generator ? Format("Phs%s", catalogue::Tone(channel)) : Format("Phs ch%d", channel);
      catalogue::AddAudioMember(
          catalogue::BuildMember(catalogue::kPhase, id,
                                 Format("eParamID_AudioPhaseCh%d_%s", channel, source.name), name,
                                 short_name, Format("%d.%d", source.phaseSection, channel)),
          source, source.phaseEnableID, 1, (channel - 1) / 2);
    }
  }
}

void CreateAudioDelaySamplesDescriptors() {
  for (int s = 0; s < kAudioSourceCount; ++s) {
    const catalogue::AudioSource& source = catalogue::kAudioSources[s];
    for (int pair = 1; pair <= catalogue::kMaxAudioPairs; ++pair) {
      const unsigned int id = catalogue::kAudioDelayIDs[s][pair - 1];
      if (id == 0) continue;
      const int first = 2 * pair - 1;
      catalogue::AddAudioMember(
          catalogue::BuildMember(
              catalogue::kDelay, id,
              Format("eParamID_AudioDelayCh%dand%d_%s", first, first + 1, source.name),
              Format("%s %s Ch %d/%d", source.name, "Delay", first, first + 1),
              Format("Dly%d&%d", first, first + 1), Format("%d.%d", source.delaySection, pair)),
          source, source.delaySelectID, catalogue::kPerPairDelay, pair - 1);
    }
    const unsigned int global = catalogue::kAudioDelayGlobalIDs[s];
    if (global == 0) continue;
    ParamDescriptor* d = catalogue::BuildMember(
        catalogue::kDelay, global, Format("eParamID_AudioDelayGlobal_%s", source.name),
        Format("%s Delay Global", source.name), Format("%sDly", source.name),
        Format("10.%d", s + 1));
    d->AddAttribute("ParamGroup", kAudioProcMenuGroup);
    AddDescriptor(d);
  }
}

void CreateAudioOutputMapDescriptors() {
  const unsigned int(&global)[kMaxAudioChannels] =
      catalogue::kAudioOutputMapIDs[catalogue::kGlobalAudioOutput];
  for (int o = 0; o < kAudioOutputCount; ++o) {
    const catalogue::AudioOutput& output = catalogue::kAudioOutputs[o];
    for (int channel = 1; channel <= kMaxAudioChannels; ++channel) {
      const unsigned int id = catalogue::kAudioOutputMapIDs[o][channel - 1];
      if (id == 0) continue;
      IntegerDescriptor* d = static_cast<IntegerDescriptor*>(catalogue::BuildMember(
          catalogue::kOutputMap, id, Format("eParamID_AudioOutputCh%d_%s", channel, output.name),
          Format("%s Output Ch %d", output.name, channel), Format("Out ch%d", channel),
          Format("%d.%d", output.section, channel)));
      d->SetFactoryDefault(static_cast<unsigned int>(channel));
      d->AddAttribute("ParamGroup", kAudioOutputMenuGroup);
      AddDescriptor(d);
      const unsigned int with_default = global[channel - 1];
      FactoryDefaultParamID[id] = with_default != 0 ? with_default : id;
    }
  }
}
