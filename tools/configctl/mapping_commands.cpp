#include "configctl/mapping_commands.h"

#include <unistd.h>

#include <cstdio>
#include <vector>

#include "common/formatting.h"
#include "common/json.h"
#include "common/parameters.h"
#include "config/access/socket_client.h"
#include "config/descriptors/param_descriptors.h"
#include "config/mapper/tundra_param_mapper.h"
#include "configctl/commands.h"
#include "configctl/console.h"
#include "configctl/daemon_link.h"

namespace configctl {

using namespace common;

using tundra::mapper::TundraParamMapper;

int RunMap(const Arguments& arguments) {
  std::vector<ParamDescriptor*> descriptors;
  if (!ResolveParameters(arguments.operands, descriptors)) return kExitFailure;
  DaemonLink link(arguments.uri);
  Config* client = link.Open("map");
  if (client == nullptr) return kExitFailure;
  BuildMapperTables();
  TundraParamMapper mapper;
  mapper.SetConfig(client);
  for (ParamDescriptor* descriptor : descriptors) {
    unsigned int id = descriptor->GetParamID();
    unsigned int mapped = mapper.MapParamID(id);
    std::string from = ParamName(id, descriptor);
    std::string to = ParamName(mapped, GetDescriptor(mapped));
    std::string line = from + " -> " + to;
    if (arguments.json) {
      line = JsonText(Json{{"param", from}, {"id", id}, {"maps_to", to}, {"maps_to_id", mapped}});
    }
    fputs((line + "\n").c_str(), stdout);
  }
  return kExitOk;
}

int RunExportMapping(const Arguments& arguments) {
  const std::string& path = arguments.operands[0];
  BuildMapperTables();
  if (!TundraParamMapper::GenerateMappingTablesFile(path.c_str())) {
    Console::Error("cannot write the mapping tables to %s", path.c_str());
    return kExitFailure;
  }
  return kExitOk;
}

}  // namespace configctl
