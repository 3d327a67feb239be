// The mapper over the unit's catalogue under every selector value, its build
// and messages, re-mapping through a catalogue of our own, the JSON export.
#include "config/mapper/tundra_param_mapper.h"

#include <unistd.h>

#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>

#include "config/descriptors/param_descriptors.h"
#include "config/descriptors/param_suffixes.h"
#include "test_catalogue.h"
#include "test_config.h"
#include "test_stderr.h"

using tundra::mapper::TundraParamMapper;
typedef boost::unordered_set<unsigned int> IdSet;
typedef TundraParamMapper M;

namespace {

// The catalogue, then the process's first mapper: what it printed on
// standard output and standard error.
const std::pair<std::string, std::string>& FirstBuild() {
  static const std::pair<std::string, std::string> printed = [] {
    Stderr([] { CreateDescriptors(); });
    testing::internal::CaptureStdout();
    std::string err = Stderr([] { TundraParamMapper first; });
    return std::make_pair(testing::internal::GetCapturedStdout(), err);
  }();
  return printed;
}

unsigned int Id(const std::string& name) {
  const ParamDescriptor* d = GetDescriptor("eParamID_" + name);
  return d != nullptr ? d->GetParamID() : 0;
}

std::string NameOf(unsigned int id) {
  const ParamDescriptor* d = GetDescriptor(id);
  return d != nullptr ? d->GetParamIDName().substr(9) : "?";
}

std::string Hex(unsigned int id) {
  char text[16];
  snprintf(text, sizeof text, "0x%08X", id);
  return text;
}

class MapperTest : public testing::Test {
 protected:
  void SetUp() override { mapper.SetConfig(&selectors); }
  unsigned int Map(const std::string& name) { return mapper.MapParamID(Id(name)); }

  struct BuiltFirst {
    BuiltFirst() { FirstBuild(); }
  } built;  // before `mapper`, so the first build is the one captured
  IntegerConfig selectors;
  TundraParamMapper mapper;
};

}  // namespace

TEST(TundraParamMapperBuildTest, UnitCatalogueBuildsCleanlyOnceAndASecondMapperIsSilent) {
  EXPECT_EQ("Initializing mapper tables...\nMapper tables initialized with 24 entries.\n",
            FirstBuild().first);
  EXPECT_EQ("", FirstBuild().second);
  testing::internal::CaptureStdout();
  EXPECT_EQ("", Stderr([] { TundraParamMapper second; }));
  EXPECT_EQ("", testing::internal::GetCapturedStdout());
}

TEST_F(MapperTest, EverySchemeFollowsItsSelectorParamsChangedByAndBrokenRules) {
  // The suffix tables themselves are checked against the catalogue: every
  // specific they name must exist for the tables to build cleanly.
  InitializeSuffixes();
  const std::vector<std::string> formats(OutputFormatSuffix,
                                         OutputFormatSuffix + kOutputFormatSuffixCount);
  struct Scheme {
    std::vector<std::string> generics;
    const char* selector;
    std::vector<std::string> suffixes;  // by selector value
  };
  std::vector<std::string> inputGenerics;  // processor 1's proc amp
  for (unsigned int id : mapper.ParamsChangedBy(Id("Vid1VideoInput")))
    inputGenerics.push_back(NameOf(id));
  ASSERT_EQ(15u, inputGenerics.size());
  for (const Scheme& s : std::vector<Scheme>{
           {inputGenerics, "Vid1VideoInput", {InputName, InputName + 10}},  // not "Universal"
           {{"Vid1OutputFormat", "Vid2OutputFormat"}, "FrameRateMode", {"5923", "5025", "6024"}},
           {{"Vid1OutputTimingH", "Vid1OutputTimingV"}, "Vid1ActualOutputFormat", formats},
           {{"Vid2OutputTimingH", "Vid2OutputTimingV"}, "Vid2ActualOutputFormat", formats},
           {{"IPAddress", "SubnetMask", "DefaultGateway"}, "IPConfig", {"DHCP", "Static"}}}) {
    bool ip = s.generics[0] == "IPAddress";  // modes beyond the table read as DHCP
    for (unsigned int value = 0; value <= s.suffixes.size(); ++value) {
      selectors.values[Id(s.selector)] = value;
      for (const std::string& generic : s.generics) {
        unsigned int mapped = 0;
        std::string err = Stderr([&] { mapped = Map(generic); });
        if (value == s.suffixes.size() && !ip) {  // beyond the table: the generic, and why
          EXPECT_EQ(NameOf(Id(generic)), NameOf(mapped)) << s.selector << " " << value;
          EXPECT_EQ(0u, err.find("TundraParamMapper::MapParamID - eParamID_" +
                                 std::string(s.selector) + " = " + std::to_string(value)));
          continue;
        }
        EXPECT_EQ(generic + "_" + s.suffixes[value % s.suffixes.size()], NameOf(mapped)) << value;
        EXPECT_EQ(ip && value > 1
                      ? "Invalid IP Config mode.  TundraParamMapper treating as if DHCP\n"
                      : "",
                  err);
      }
    }
  }

  for (unsigned int id : {Id("FrontPanelLock"), Id("Vid1YUVProcAmpGain_HDMI"), 0x12345678u})
    EXPECT_EQ(id, mapper.MapParamID(id));
  TundraParamMapper detached;
  EXPECT_EQ(
      "TundraParamMapper::MapParamID - no Config to read selectors, "
      "eParamID_IPAddress not mapped\n",
      Stderr([&] { EXPECT_EQ(Id("IPAddress"), detached.MapParamID(Id("IPAddress"))); }));

  for (const auto& c : std::map<std::string, IdSet>{
           {"FrameRateMode", {Id("Vid1OutputFormat"), Id("Vid2OutputFormat")}},
           {"Vid1ActualOutputFormat", {Id("Vid1OutputTimingH"), Id("Vid1OutputTimingV")}},
           {"Vid1YUVProcAmpGain_HDMI", {Id("Vid1YUVProcAmpGain")}},
           {"FrontPanelLock", {}},  // unrelated
           {"Vid1YUVProcAmpGain", {}}}) {
    EXPECT_TRUE(c.second == mapper.ParamsChangedBy(Id(c.first))) << c.first;
    EXPECT_EQ(c.second.empty(), mapper.isBaseParam(Id(c.first))) << c.first;
  }
  // Every specific of every table names its generic.
  for (auto* table : {&M::InputBasedMaps, &M::FrameRateFamilyBasedMaps, &M::OutputFormatBasedMaps,
                      &M::IPConfigBasedMaps})
    for (const auto& entry : *table)
      for (unsigned int specific : entry.second)
        EXPECT_EQ(1u, mapper.ParamsChangedBy(specific).count(entry.first)) << NameOf(specific);

  // An input-based generic without "proc_no" whose HDMI specific is an
  // IP-config generic, not kept, with a static specific only.
  test_catalogue::Integer(0xFEED1000, "eParamID_TestOuter", 0, 1, 0);
  test_catalogue::Integer(0xFEED1001, "eParamID_TestOuter_HDMI", 0, 1, 0)
      ->SetPersistenceType(ePersist_Volatile);
  test_catalogue::Integer(0xFEED1002, "eParamID_TestOuter_HDMI_Static", 0, 1, 0);
  IndexDescriptorNames();
  testing::internal::CaptureStdout();
  M::InitIPConfigBasedMap("eParamID_TestOuter_HDMI");
  M::InitInputBasedMap(0xFEED1000);
  std::string out = testing::internal::GetCapturedStdout();
  for (const char* line :
       {"Not found : eParamID_TestOuter_HDMI DHCP mapping [ eParamID_TestOuter_HDMI_DHCP ]\n",
        "Warning: Generic parameter eParamID_TestOuter is set to ePersist!\n",
        "Warning: Generic parameter eParamID_TestOuter is NOT set to eFactoryReset_Exclude!\n",
        "Not found - proc_no attribute for param : eParamID_TestOuter\n",
        "Not found : eParamID_TestOuter Composite mapping\n",
        "Warning: Mapped (specific) parameter eParamID_TestOuter_HDMI is not set to ePersist! "
        "154\n",
        "WARNING: Attribute 'proc_no' not found for input based param : eParamID_TestOuter_HDMI\n"})
    EXPECT_TRUE(Has(out, line)) << line;
  EXPECT_EQ(2 + 1 + 3 + 1 + 9 + 2, std::count(out.begin(), out.end(), '\n')) << out;

  selectors.values[Id("Vid2VideoInput")] = 6;  // no "proc_no": processor 2's selector
  selectors.values[Id("IPConfig")] = 1;
  EXPECT_EQ(0xFEED1002u, mapper.MapParamID(0xFEED1000));
  selectors.values[Id("IPConfig")] = 0;  // no DHCP specific: TestOuter_HDMI stands for itself
  EXPECT_EQ(0xFEED1001u, mapper.MapParamID(0xFEED1000));
  EXPECT_TRUE(IdSet{0xFEED1001} == mapper.ParamsChangedBy(0xFEED1002));

  EXPECT_EQ("Not found generic (str) PD IN HERE : eParamID_NoSuch (318)\n",
            Stderr([] { M::InitOutputFormatBasedMap("eParamID_NoSuch"); }));
  EXPECT_EQ("Not found generic (int) PD : 0xfeed10ff\n",
            Stderr([] { M::InitIPConfigBasedMap(0xFEED10FFu); }));
}

TEST(MapperJsonTest, ExportLoadsBackAsTheTablesAndIsWrittenToAFile) {
  FirstBuild();
  nlohmann::json document = nlohmann::json::parse(M::ToJSON());
  const nlohmann::json& forward = document.at("forward_maps");
  const nlohmann::json& reverse = document.at("reverse_maps");
  EXPECT_EQ(M::MappingScheme.size(), forward.size());
  const char* const schemes[] = {"", "eMapByInput", "eMapByFrameRateFamily", "eMapByOutputFormat",
                                 "eMapByIPConfig"};
  for (auto* table : {&M::InputBasedMaps, &M::FrameRateFamilyBasedMaps, &M::OutputFormatBasedMaps,
                      &M::IPConfigBasedMaps}) {
    for (const auto& generic : *table) {
      const nlohmann::json& entry = forward.at(Hex(generic.first));
      EXPECT_EQ(schemes[M::MappingScheme.at(generic.first)], entry.at("map_scheme"));
      ASSERT_EQ(generic.second.size(), entry.at("param_maps").size());
      for (size_t i = 0; i < generic.second.size(); ++i)
        EXPECT_EQ(Hex(generic.second[i]), entry["param_maps"][i].at("id"));
      EXPECT_EQ(1u, reverse.count(entry["depends_on"]["id"].get<std::string>()));
    }
  }
  EXPECT_EQ(M::ReverseMap.size(), reverse.size());
  for (const auto& key : M::ReverseMap)
    EXPECT_EQ(key.second.size(), reverse.at(Hex(key.first)).at("params_changed_by").size());
  const nlohmann::json& input = reverse[Hex(Id("Vid1VideoInput"))];
  EXPECT_EQ(true, input["useAsReverseMapID"]);
  EXPECT_EQ(7, input["params_changed_by"][0]["base_param_group"]);
  EXPECT_EQ("{\n  \"forward_maps\": {},\n  \"reverse_maps\": {}\n}\n", M::ToJSON(Id("Status")));

  char path[] = "/tmp/mapper_json_test_XXXXXX";
  ASSERT_EQ(0, close(mkstemp(path)));
  EXPECT_TRUE(M::GenerateMappingTablesFile(path));
  std::stringstream text;
  text << std::ifstream(path).rdbuf();
  unlink(path);
  EXPECT_EQ(M::ToJSON(), text.str());
  EXPECT_EQ(
      "TundraParamMapper::GenerateMappingTablesFile - cannot write /dev/full: "
      "No space left on device\n",
      Stderr([] { EXPECT_FALSE(M::GenerateMappingTablesFile("/dev/full")); }));
}
