// The mapper over the unit's catalogue: every scheme under every selector
// value, the values no table covers, the reverse tables, the one-time build
// and its messages, and re-mapping through a small catalogue of our own.
#include <vector>

#include "config/descriptors/integer_descriptor.h"
#include "mapper_fixture.h"

using namespace mapper_test;

namespace {

const char* const kInputGenerics[] = {
    "Vid1YUVProcAmpEnable",    "Vid1YUVProcAmpGain",       "Vid1YUVProcAmpBlack",
    "Vid1YUVProcAmpHue",       "Vid1YUVProcAmpSat",        "Vid1RGBProcAmpEnable",
    "Vid1RGBProcAmpGainRed",   "Vid1RGBProcAmpBlackRed",   "Vid1RGBProcAmpGammaRed",
    "Vid1RGBProcAmpGainGreen", "Vid1RGBProcAmpBlackGreen", "Vid1RGBProcAmpGammaGreen",
    "Vid1RGBProcAmpGainBlue",  "Vid1RGBProcAmpBlackBlue",  "Vid1RGBProcAmpGammaBlue"};

// The suffix of each input value; value 9 has no parameters of its own.
const char* const kInputSuffixes[] = {"SDI1",          "SDI2", "SDIDualLink", "Fiber1",    "Fiber2",
                                      "FiberDualLink", "HDMI", "Composite",   "Component", "SDI1"};

// Video formats with timing parameters of their own; the others use 1080i 59.94's.
const std::map<unsigned int, std::string> kFormatSuffixes = {
    {2, "525psf2997"},   {3, "525i5994"},      {6, "625psf25"},      {7, "625i50"},
    {11, "720p2398"},    {12, "720p24"},       {13, "720p25"},       {14, "720p2997"},
    {16, "720p50"},      {17, "720p5994"},     {19, "1080i50"},      {20, "1080i5994"},
    {22, "1080psf2398"}, {23, "1080psf24"},    {24, "1080psf25"},    {25, "1080psf2997"},
    {27, "1080p2398"},   {28, "1080p24"},      {29, "1080p25"},      {30, "1080p2997"},
    {32, "1080p50"},     {33, "1080p5994"},    {43, "2Kx1080p2398"}, {44, "2Kx1080p24"},
    {45, "2Kx1080p25"},  {46, "2Kx1080p2997"}, {48, "2Kx1080p50"},   {49, "2Kx1080p5994"}};

const char* const kInvalidIPMode =
    "Invalid IP Config mode.  TundraParamMapper treating as if DHCP\n";

IdSet Ids(std::vector<std::string> names) {
  IdSet ids;
  for (const std::string& name : names) ids.insert(Id(name));
  return ids;
}

}  // namespace

TEST(TundraParamMapperBuildTest, UnitCatalogueBuildsCleanlyOnceAndASecondMapperIsSilent) {
  EXPECT_EQ("Initializing mapper tables...\nMapper tables initialized with 24 entries.\n",
            FirstBuild().out);
  EXPECT_EQ("", FirstBuild().err);
  std::string before = TundraParamMapper::ToJSON();
  testing::internal::CaptureStdout();
  std::string err = Stderr([] {
    TundraParamMapper second;
    TundraParamMapper::Initialize();
  });
  EXPECT_EQ("", testing::internal::GetCapturedStdout());
  EXPECT_EQ("", err);
  EXPECT_EQ(before, TundraParamMapper::ToJSON());
}

TEST_F(MapperTest, InputSchemeFollowsProcessorOnesInputAndMapsTheSpareValueToSDI1) {
  for (unsigned int input = 0; input < 10; ++input) {
    selectors.values[Id("Vid1VideoInput")] = input;
    selectors.values[Id("Vid2VideoInput")] = (input + 3) % 8;  // must not matter
    for (const char* generic : kInputGenerics) {
      EXPECT_EQ(std::string(generic) + "_" + kInputSuffixes[input], Mapped(generic))
          << "input " << input;
    }
  }
  EXPECT_EQ(0, selectors.reads[Id("Vid2VideoInput")]);
}

TEST_F(MapperTest, FrameRateSchemeFollowsTheFrameRateMode) {
  const char* const families[] = {"5923", "5025", "6024"};
  for (unsigned int mode = 0; mode < 3; ++mode) {
    selectors.values[Id("FrameRateMode")] = mode;
    EXPECT_EQ(std::string("Vid1OutputFormat_") + families[mode], Mapped("Vid1OutputFormat"));
    EXPECT_EQ(std::string("Vid2OutputFormat_") + families[mode], Mapped("Vid2OutputFormat"));
  }
}

TEST_F(MapperTest, OutputFormatSchemeFollowsEachProcessorsActualFormat) {
  for (unsigned int format = 0; format < 57; ++format) {
    auto named = kFormatSuffixes.find(format);
    std::string suffix = named != kFormatSuffixes.end() ? named->second : "1080i5994";
    auto other = kFormatSuffixes.find((format + 1) % 57);
    std::string otherSuffix = other != kFormatSuffixes.end() ? other->second : "1080i5994";
    selectors.values[Id("Vid1ActualOutputFormat")] = format;
    selectors.values[Id("Vid2ActualOutputFormat")] = (format + 1) % 57;
    EXPECT_EQ("Vid1OutputTimingH_" + suffix, Mapped("Vid1OutputTimingH")) << format;
    EXPECT_EQ("Vid1OutputTimingV_" + suffix, Mapped("Vid1OutputTimingV")) << format;
    EXPECT_EQ("Vid2OutputTimingH_" + otherSuffix, Mapped("Vid2OutputTimingH")) << format;
    EXPECT_EQ("Vid2OutputTimingV_" + otherSuffix, Mapped("Vid2OutputTimingV")) << format;
  }
}

TEST_F(MapperTest, IPConfigSchemeReadsUnknownModesAsDHCPWithOneLinePerCall) {
  struct Case {
    unsigned int mode;
    const char* suffix;
    std::string err;
  };
  for (const Case& c :
       {Case{0, "_DHCP", ""}, Case{1, "_Static", ""}, Case{2, "_DHCP", kInvalidIPMode},
        Case{0xFFFFFFFF, "_DHCP", kInvalidIPMode}}) {
    selectors.values[Id("IPConfig")] = c.mode;
    for (const char* generic : {"IPAddress", "SubnetMask", "DefaultGateway"}) {
      std::string mapped;
      EXPECT_EQ(c.err, Stderr([&] { mapped = Mapped(generic); })) << c.mode;
      EXPECT_EQ(generic + std::string(c.suffix), mapped) << c.mode;
    }
  }
}

TEST_F(MapperTest, ValuesBeyondTheTablesAndAMissingConfigLeaveGenericsUnmapped) {
  struct Case {
    const char* selector;
    unsigned int value;
    const char* generic;
  };
  for (const Case& c : {Case{"Vid1VideoInput", 10, "Vid1YUVProcAmpGain"},
                        Case{"FrameRateMode", 3, "Vid2OutputFormat"},
                        Case{"Vid2ActualOutputFormat", 57, "Vid2OutputTimingV"},
                        Case{"Vid1ActualOutputFormat", 0xFFFFFFFF, "Vid1OutputTimingH"}}) {
    selectors.values[Id(c.selector)] = c.value;
    std::string mapped;
    EXPECT_EQ("TundraParamMapper::MapParamID - eParamID_" + std::string(c.selector) + " = " +
                  std::to_string(c.value) + " has no entry for eParamID_" + c.generic + "\n",
              Stderr([&] { mapped = Mapped(c.generic); }));
    EXPECT_EQ(c.generic, mapped);
  }

  TundraParamMapper detached;
  unsigned int gain = Id("Vid1YUVProcAmpGain");
  EXPECT_EQ(
      "TundraParamMapper::MapParamID - no Config to read selectors, "
      "eParamID_Vid1YUVProcAmpGain not mapped\n",
      Stderr([&] { EXPECT_EQ(gain, detached.MapParamID(gain)); }));
}

TEST_F(MapperTest, UnmappedIDsMapToThemselvesWithoutReadingAnySelector) {
  for (unsigned int id : {Id("FrontPanelLock"), Id("Vid1YUVProcAmpGain_HDMI"), Id("IPConfig"),
                          Id("Vid1OutputFormat_5025"), 0x12345678u, 0u}) {
    EXPECT_EQ(id, mapper.MapParamID(id)) << std::hex << id;
  }
  EXPECT_TRUE(selectors.reads.empty());
}

TEST_F(MapperTest, ParamsChangedByNamesTheGenericsOfEachSelectorAndSpecific) {
  IdSet inputGenerics;
  for (const char* generic : kInputGenerics) inputGenerics.insert(Id(generic));
  struct Case {
    const char* param;
    IdSet generics;
  };
  for (const Case& c : std::vector<Case>{
           {"Vid1VideoInput", inputGenerics},
           {"FrameRateMode", Ids({"Vid1OutputFormat", "Vid2OutputFormat"})},
           {"Vid1ActualOutputFormat", Ids({"Vid1OutputTimingH", "Vid1OutputTimingV"})},
           {"Vid2ActualOutputFormat", Ids({"Vid2OutputTimingH", "Vid2OutputTimingV"})},
           {"IPConfig", Ids({"IPAddress", "SubnetMask", "DefaultGateway"})},
           {"Vid1YUVProcAmpGain_HDMI", Ids({"Vid1YUVProcAmpGain"})},
           {"Vid1RGBProcAmpGammaBlue_SDI1", Ids({"Vid1RGBProcAmpGammaBlue"})},
           {"Vid2OutputFormat_6024", Ids({"Vid2OutputFormat"})},
           {"Vid1OutputTimingH_1080i5994", Ids({"Vid1OutputTimingH"})},
           {"SubnetMask_Static", Ids({"SubnetMask"})},
           {"FrontPanelLock", {}},
           {"Vid1YUVProcAmpGain", {}},
       }) {
    EXPECT_TRUE(c.generics == UnitOnly(mapper.ParamsChangedBy(Id(c.param)))) << c.param;
    EXPECT_EQ(c.generics.empty(), mapper.isBaseParam(Id(c.param))) << c.param;
  }
  EXPECT_TRUE(mapper.ParamsChangedBy(0x12345678).empty());
  EXPECT_TRUE(mapper.isBaseParam(0x12345678));

  // Every specific of every table names its generic; no generic of the unit
  // is a specific or selector itself.
  for (const TundraParamMapper::SpecificTable* table :
       {&TundraParamMapper::InputBasedMaps, &TundraParamMapper::FrameRateFamilyBasedMaps,
        &TundraParamMapper::OutputFormatBasedMaps, &TundraParamMapper::IPConfigBasedMaps}) {
    for (const auto& entry : *table) {
      if (entry.first >> 16 == 0xFEED) continue;
      EXPECT_TRUE(mapper.isBaseParam(entry.first)) << NameOf(entry.first);
      for (unsigned int specific : entry.second) {
        EXPECT_EQ(1u, mapper.ParamsChangedBy(specific).count(entry.first)) << NameOf(specific);
      }
    }
  }
}

namespace {

// A catalogue of our own: an input-based generic without "proc_no" whose
// HDMI specific is itself an IP-config generic, and an output-format generic
// of processor 2 with only its 1080i 59.94 specific.
constexpr unsigned int kOuter = 0xFEED1000;
constexpr unsigned int kOuterHDMI = 0xFEED1001;
constexpr unsigned int kOuterHDMIDHCP = 0xFEED1002;
constexpr unsigned int kOuterHDMIStatic = 0xFEED1003;
constexpr unsigned int kTiming = 0xFEED1010;
constexpr unsigned int kTiming1080i = 0xFEED1011;

void Add(unsigned int id, const std::string& name, ePersist_t persist, int proc_no) {
  IntegerDescriptor* d = new IntegerDescriptor();
  d->SetParamID(id);
  d->SetParamIDName(name);
  d->SetPersistenceType(persist);
  if (persist != ePersist) {
    d->SetRegisterType(eRegister_Exclude);
    d->SetFactoryResetType(eFactoryReset_Exclude);
  }
  if (proc_no >= 0) d->AddAttribute("proc_no", static_cast<unsigned int>(proc_no));
  AddDescriptor(d);
}

// Builds the extra catalogue and its tables once; returns what the builders
// printed on standard output.
const std::string& ExtraBuild() {
  static const std::string out = [] {
    FirstBuild();
    Add(kOuter, "eParamID_TestOuter", ePersist, -1);
    Add(kOuterHDMI, "eParamID_TestOuter_HDMI", ePersist_Volatile, -1);
    Add(kOuterHDMIDHCP, "eParamID_TestOuter_HDMI_DHCP", ePersist_Volatile, -1);
    Add(kOuterHDMIStatic, "eParamID_TestOuter_HDMI_Static", ePersist_Volatile, -1);
    Add(kTiming, "eParamID_TestTiming", ePersist_Volatile, 2);
    Add(kTiming1080i, "eParamID_TestTiming_1080i5994", ePersist, 2);
    IndexDescriptorNames();
    testing::internal::CaptureStdout();
    TundraParamMapper::InitIPConfigBasedMap("eParamID_TestOuter_HDMI");
    TundraParamMapper::InitInputBasedMap(kOuter);
    TundraParamMapper::InitOutputFormatBasedMap(GetDescriptor(kTiming));
    return testing::internal::GetCapturedStdout();
  }();
  return out;
}

}  // namespace

TEST_F(MapperTest, BuildReportsEveryRuleACatalogueBreaks) {
  const std::string& out = ExtraBuild();
  std::string expected =
      "Warning: Generic parameter eParamID_TestOuter is set to ePersist!\n"
      "Warning: Generic parameter eParamID_TestOuter is NOT set to eRegister_Exclude!\n"
      "Warning: Generic parameter eParamID_TestOuter is NOT set to eFactoryReset_Exclude!\n"
      "Not found - proc_no attribute for param : eParamID_TestOuter\n";
  for (int input = 0; input < 10; ++input) {
    if (input == 6) {
      expected +=
          "Warning: Mapped (specific) parameter eParamID_TestOuter_HDMI is not set to ePersist! "
          "154\nWARNING: Attribute 'proc_no' not found for input based param : "
          "eParamID_TestOuter_HDMI\n";
    } else {
      expected +=
          "Not found : eParamID_TestOuter " + std::string(kInputSuffixes[input]) + " mapping\n";
    }
  }
  // The IP-config build of TestOuter_HDMI, first, says nothing: its flags
  // and specifics are as the rules want.
  EXPECT_EQ(0u, out.find(expected)) << out;
  std::string timing = out.substr(expected.size());
  for (const auto& format : kFormatSuffixes) {
    if (format.second == "1080i5994") continue;
    std::string line = "Not found : eParamID_TestTiming " + format.second +
                       " mapping [ eParamID_TestTiming_" + format.second + " ]\n";
    EXPECT_NE(std::string::npos, timing.find(line)) << line;
  }
  EXPECT_EQ(27u, std::count(timing.begin(), timing.end(), '\n')) << timing;

  // Without "proc_no" the generic belongs to processor 2.
  EXPECT_EQ(IdSet{kOuter}, mapper.ParamsChangedBy(Id("Vid2VideoInput")));
  EXPECT_EQ(1u, mapper.ParamsChangedBy(Id("Vid2ActualOutputFormat")).count(kTiming));
}

TEST_F(MapperTest, SpecificThatIsItselfGenericIsMappedInTurn) {
  ExtraBuild();
  selectors.values[Id("Vid2VideoInput")] = 6;
  selectors.values[Id("IPConfig")] = 1;
  EXPECT_EQ(kOuterHDMIStatic, mapper.MapParamID(kOuter));
  selectors.values[Id("IPConfig")] = 0;
  EXPECT_EQ(kOuterHDMIDHCP, mapper.MapParamID(kOuter));
  selectors.values[Id("Vid2VideoInput")] = 1;  // no specific: the generic stands for itself
  EXPECT_EQ(kOuter, mapper.MapParamID(kOuter));
  EXPECT_EQ(IdSet{kOuterHDMI}, mapper.ParamsChangedBy(kOuterHDMIStatic));
  EXPECT_EQ(1u, mapper.ParamsChangedBy(Id("IPConfig")).count(kOuterHDMI));

  selectors.values[Id("Vid2ActualOutputFormat")] = 20;
  EXPECT_EQ(kTiming1080i, mapper.MapParamID(kTiming));
  selectors.values[Id("Vid2ActualOutputFormat")] = 0;  // unnamed: falls back to 1080i 59.94
  EXPECT_EQ(kTiming1080i, mapper.MapParamID(kTiming));
  selectors.values[Id("Vid2ActualOutputFormat")] = 19;  // 1080i50 is missing
  EXPECT_EQ(kTiming, mapper.MapParamID(kTiming));
}

TEST(TundraParamMapperBuildTest, MissingGenericsAreReportedAndEnterNothing) {
  FirstBuild();
  typedef void (*ByName)(char const*);
  typedef void (*ById)(unsigned int const&);
  struct Case {
    ByName byName;
    ById byId;
    int number;
  };
  for (const Case& c :
       {Case{TundraParamMapper::InitInputBasedMap, TundraParamMapper::InitInputBasedMap, 184},
        Case{TundraParamMapper::InitFrameRateFamilyBasedMap,
             TundraParamMapper::InitFrameRateFamilyBasedMap, 246},
        Case{TundraParamMapper::InitOutputFormatBasedMap,
             TundraParamMapper::InitOutputFormatBasedMap, 318},
        Case{TundraParamMapper::InitIPConfigBasedMap, TundraParamMapper::InitIPConfigBasedMap,
             378}}) {
    testing::internal::CaptureStdout();
    EXPECT_EQ("Not found generic (str) PD IN HERE : eParamID_NoSuchParam (" +
                  std::to_string(c.number) + ")\n",
              Stderr([&] { c.byName("eParamID_NoSuchParam"); }));
    EXPECT_EQ("Not found generic (int) PD : 0xfeed10ff\n", Stderr([&] { c.byId(0xFEED10FF); }));
    EXPECT_EQ("", testing::internal::GetCapturedStdout());
  }
  EXPECT_EQ(0u, TundraParamMapper::MappingScheme.count(0xFEED10FF));
}
