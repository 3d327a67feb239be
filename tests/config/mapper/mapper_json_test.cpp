// The JSON export of the mapping tables, loaded back with the JSON library
// and compared with the tables themselves, and the file it is written to.
#include <stdlib.h>
#include <unistd.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "mapper_fixture.h"

using namespace mapper_test;
using nlohmann::json;

namespace {

std::string Hex(unsigned int id) {
  char text[16];
  snprintf(text, sizeof text, "0x%08X", id);
  return text;
}

const char* const kSchemeNames[] = {"eMapNone", "eMapByInput", "eMapByFrameRateFamily",
                                    "eMapByOutputFormat", "eMapByIPConfig"};

const TundraParamMapper::SpecificTable* TableOf(tundra::mapper::MappingScheme_t scheme) {
  switch (scheme) {
    case tundra::mapper::eMapByInput:
      return &TundraParamMapper::InputBasedMaps;
    case tundra::mapper::eMapByFrameRateFamily:
      return &TundraParamMapper::FrameRateFamilyBasedMaps;
    case tundra::mapper::eMapByOutputFormat:
      return &TundraParamMapper::OutputFormatBasedMaps;
    default:
      return &TundraParamMapper::IPConfigBasedMaps;
  }
}

std::string ParamOf(unsigned int id) { return "eParamID_" + NameOf(id); }

}  // namespace

TEST(MapperJsonTest, ExportHoldsEveryTableEntry) {
  FirstBuild();
  json document = json::parse(TundraParamMapper::ToJSON());
  const json& forward = document.at("forward_maps");
  const json& reverse = document.at("reverse_maps");
  EXPECT_EQ(TundraParamMapper::MappingScheme.size(), forward.size());
  for (const auto& scheme : TundraParamMapper::MappingScheme) {
    SCOPED_TRACE(ParamOf(scheme.first));
    const json& entry = forward.at(Hex(scheme.first));
    EXPECT_EQ(ParamOf(scheme.first), entry.at("param"));
    EXPECT_EQ(kSchemeNames[scheme.second], entry.at("map_scheme"));
    const std::vector<unsigned int>& specifics = TableOf(scheme.second)->at(scheme.first);
    const json& maps = entry.at("param_maps");
    ASSERT_EQ(specifics.size(), maps.size());
    for (size_t i = 0; i < specifics.size(); ++i) {
      EXPECT_EQ(i, maps[i].at("index"));
      EXPECT_EQ(Hex(specifics[i]), maps[i].at("id"));
      EXPECT_EQ(ParamOf(specifics[i]), maps[i].at("param"));
    }
    // The selector it depends on lists it among the generics it changes.
    const json& selector = reverse.at(entry.at("depends_on").at("id").get<std::string>());
    bool listed = false;
    for (const json& generic : selector.at("params_changed_by"))
      listed = listed || generic.at("id") == Hex(scheme.first);
    EXPECT_TRUE(listed);
  }

  EXPECT_EQ(TundraParamMapper::ReverseMap.size(), reverse.size());
  for (const auto& key : TundraParamMapper::ReverseMap) {
    SCOPED_TRACE(ParamOf(key.first));
    const json& entry = reverse.at(Hex(key.first));
    IdSet listed;
    for (const json& generic : entry.at("params_changed_by"))
      listed.insert(std::stoul(generic.at("id").get<std::string>(), nullptr, 16));
    EXPECT_TRUE(key.second == listed);
  }
}

TEST(MapperJsonTest, EntriesCarryNamesGroupsAndOneLinePerSpecific) {
  FirstBuild();
  std::string text = TundraParamMapper::ToJSON();
  EXPECT_NE(std::string::npos,
            text.find("\n        {\"index\":6,\"suffix\":\"HDMI\",\"id\":\"0x13DDCCAB\","
                      "\"param\":\"eParamID_Vid1YUVProcAmpGain_HDMI\"},\n"));
  json document = json::parse(text);
  const json& input = document["reverse_maps"][Hex(Id("Vid1VideoInput"))];
  EXPECT_EQ(true, input["useAsReverseMapID"]);
  EXPECT_EQ(15u, input["params_changed_by"].size());
  for (const json& generic : input["params_changed_by"]) EXPECT_EQ(7, generic["base_param_group"]);
  EXPECT_EQ(false, document["reverse_maps"][Hex(Id("IPAddress_DHCP"))]["useAsReverseMapID"]);
  json depends = {{"id", Hex(Id("FrameRateMode"))}, {"param", "eParamID_FrameRateMode"}};
  EXPECT_EQ(depends, document["forward_maps"][Hex(Id("Vid2OutputFormat"))]["depends_on"]);

  // One ID: its own entries only, in the same shape.
  json gain = json::parse(TundraParamMapper::ToJSON(Id("Vid1YUVProcAmpGain")));
  EXPECT_EQ(1u, gain["forward_maps"].size());
  EXPECT_EQ(document["forward_maps"][Hex(Id("Vid1YUVProcAmpGain"))],
            gain["forward_maps"][Hex(Id("Vid1YUVProcAmpGain"))]);
  EXPECT_TRUE(gain["reverse_maps"].empty());
  json mode = json::parse(TundraParamMapper::ToJSON(Id("FrameRateMode")));
  EXPECT_TRUE(mode["forward_maps"].empty());
  EXPECT_EQ(1u, mode["reverse_maps"].size());
  EXPECT_EQ("{\n  \"forward_maps\": {},\n  \"reverse_maps\": {}\n}\n",
            TundraParamMapper::ToJSON(Id("FrontPanelLock")));
}

TEST(MapperJsonTest, TablesFileHoldsTheExportOrReportsWhyNot) {
  FirstBuild();
  char path[] = "/tmp/mapper_json_test_XXXXXX";
  int fd = mkstemp(path);
  ASSERT_GE(fd, 0);
  close(fd);
  EXPECT_TRUE(TundraParamMapper::GenerateMappingTablesFile(path));
  std::ifstream in(path);
  std::stringstream text;
  text << in.rdbuf();
  unlink(path);
  EXPECT_EQ(TundraParamMapper::ToJSON(), text.str());

  bool written = true;
  EXPECT_EQ(
      "TundraParamMapper::GenerateMappingTablesFile - cannot open /nonexistent/m.json: "
      "No such file or directory\n",
      Stderr(
          [&] { written = TundraParamMapper::GenerateMappingTablesFile("/nonexistent/m.json"); }));
  EXPECT_FALSE(written);
  EXPECT_EQ(
      "TundraParamMapper::GenerateMappingTablesFile - cannot write /dev/full: "
      "No space left on device\n",
      Stderr([&] { written = TundraParamMapper::GenerateMappingTablesFile("/dev/full"); }));
  EXPECT_FALSE(written);
  EXPECT_EQ("TundraParamMapper::GenerateMappingTablesFile - no file name\n",
            Stderr([&] { written = TundraParamMapper::GenerateMappingTablesFile(nullptr); }));
  EXPECT_FALSE(written);
}
