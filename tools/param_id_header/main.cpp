// param_id_header prints the header of named parameter ID constants
// (config/descriptors/param_ids.h) from the catalogue this library builds,
// so that programs can name parameters without building the catalogue.
// scripts/param_ids runs it and writes the header; a test checks that the
// committed header and the catalogue agree.
#include <algorithm>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "config/descriptors/param_descriptors.h"

int main() {
  CreateDescriptors();
  // The registry's keys are the parameters' IDs; each descriptor gives the
  // name (one descriptor reports another parameter's ID on purpose, so the
  // key is taken, not the descriptor's own ID).
  std::vector<std::pair<std::string, unsigned int>> params;
  for (unsigned int id : GetParamIDs()) params.emplace_back(GetDescriptor(id)->GetParamIDName(), id);
  std::sort(params.begin(), params.end());

  printf(
      "// The ID of every parameter of the unit's catalogue as a named constant,\n"
      "// so that a program writes Get(eParamID_SystemName) without building the\n"
      "// catalogue. Generated from the catalogue by scripts/param_ids: do not edit\n"
      "// by hand; a test fails when this file and the catalogue disagree.\n"
      "//\n"
      "// CONFIG_PARAM_IDS(X) calls X(name, id) once per parameter, in name order.\n"
      "#ifndef CLASSES_CONFIG_DESCRIPTORS_PARAM_IDS_H\n"
      "#define CLASSES_CONFIG_DESCRIPTORS_PARAM_IDS_H\n"
      "\n"
      "#include \"config/config_types.h\"\n"
      "\n"
      "// clang-format off\n"
      "#define CONFIG_PARAM_IDS(X) \\\n");
  for (size_t i = 0; i < params.size(); ++i)
    printf("  X(%s, 0x%08X)%s\n", params[i].first.c_str(), params[i].second,
           i + 1 < params.size() ? " \\" : "");
  printf(
      "// clang-format on\n"
      "\n"
      "#define CONFIG_PARAM_ID_CONSTANT(name, id) constexpr eParam_t name = id;\n"
      "CONFIG_PARAM_IDS(CONFIG_PARAM_ID_CONSTANT)\n"
      "#undef CONFIG_PARAM_ID_CONSTANT\n"
      "\n"
      "// The number of parameters in the catalogue.\n"
      "#define CONFIG_PARAM_ID_COUNT_ONE(name, id) +1\n"
      "constexpr unsigned int kParamIDCount = 0 CONFIG_PARAM_IDS(CONFIG_PARAM_ID_COUNT_ONE);\n"
      "#undef CONFIG_PARAM_ID_COUNT_ONE\n"
      "\n"
      "#endif  // CLASSES_CONFIG_DESCRIPTORS_PARAM_IDS_H\n");
  return 0;
}
