// The JSON export of the mapping tables (TundraParamMapper::ToJSON and
// GenerateMappingTablesFile). The document:
//
//   {"forward_maps": {"0x883AD0D9": {"param": "eParamID_Vid1YUVProcAmpGain",
//                                    "map_scheme": "eMapByInput",
//                                    "depends_on": {"id": ..., "param": ...},
//                                    "param_maps": [{"index": 0, "suffix": "SDI1",
//                                                    "id": ..., "param": ...}, ...]}, ...},
//    "reverse_maps": {"0xD22FD6CA": {"param": "eParamID_Vid1VideoInput",
//                                    "useAsReverseMapID": true,
//                                    "params_changed_by": [{"id": ..., "param": ...,
//                                                           "base_param_group": 7}, ...]}, ...}}
//
// Forward entries are ordered by scheme and ID name, reverse entries and
// their generics by ID name, so the same tables always give the same text.
// "param" is null for an ID without a descriptor, "base_param_group" for a
// generic outside the menus.
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "config/descriptors/param_descriptor.h"
#include "config/descriptors/param_descriptors.h"
#include "config/mapper/mapper_rules.h"
#include "config/mapper/tundra_param_mapper.h"

namespace tundra {
namespace mapper {

namespace {

typedef nlohmann::ordered_json Json;
typedef TundraParamMapper M;

std::string Hex(unsigned int id) {
  char text[16];
  snprintf(text, sizeof text, "0x%08X", id);
  return text;
}

std::string NameOf(unsigned int id) {
  const ParamDescriptor* d = GetDescriptor(id);
  return d != nullptr ? d->GetParamIDName() : std::string();
}

Json NameJson(unsigned int id) {
  const ParamDescriptor* d = GetDescriptor(id);
  return d != nullptr ? Json(d->GetParamIDName()) : Json(nullptr);
}

Json Ref(unsigned int id) { return Json{{"id", Hex(id)}, {"param", NameJson(id)}}; }

// Orders IDs by a rank (the scheme, for generics), then by ID name, then by
// number.
struct Ranked {
  int rank;
  std::string name;
  unsigned int id;
  bool operator<(const Ranked& other) const {
    if (rank != other.rank) return rank < other.rank;
    return name != other.name ? name < other.name : id < other.id;
  }
};

Json ForwardEntry(unsigned int generic_id, const MappingRule& rule) {
  Json entry;
  entry["param"] = NameJson(generic_id);
  entry["map_scheme"] = rule.schemeName;
  entry["depends_on"] = Ref(SelectorOf(rule, ProcNoOf(GetDescriptor(generic_id))));
  Json maps = Json::array();
  auto specifics = rule.table->find(generic_id);
  if (specifics != rule.table->end()) {
    for (std::size_t i = 0; i < specifics->second.size(); ++i) {
      unsigned int id = specifics->second[i];
      Json item = {{"index", i}};
      if (i < rule.count) item["suffix"] = rule.suffixes[i];
      item["id"] = Hex(id);
      item["param"] = NameJson(id);
      maps.push_back(std::move(item));
    }
  }
  entry["param_maps"] = std::move(maps);
  return entry;
}

Json ReverseEntry(unsigned int id, const boost::unordered_set<unsigned int>& generics) {
  Json entry;
  entry["param"] = NameJson(id);
  const ParamDescriptor* d = GetDescriptor(id);
  unsigned int flag = 0;
  entry["useAsReverseMapID"] = d != nullptr && d->GetAttribute("useAsReverseMapID", flag);
  std::vector<Ranked> sorted;
  for (unsigned int generic_id : generics) sorted.push_back({0, NameOf(generic_id), generic_id});
  std::sort(sorted.begin(), sorted.end());
  Json changed = Json::array();
  for (const Ranked& ranked : sorted) {
    Json item = Ref(ranked.id);
    const ParamDescriptor* generic = GetDescriptor(ranked.id);
    unsigned int group = 0;
    item["base_param_group"] =
        generic != nullptr && generic->GetAttribute("ParamGroup", group) ? Json(group) : Json();
    changed.push_back(std::move(item));
  }
  entry["params_changed_by"] = std::move(changed);
  return entry;
}

// The document, limited to one ID when only is not null.
Json Document(const unsigned int* only) {
  std::vector<Ranked> generics;
  for (const auto& entry : M::MappingScheme) {
    if (FindRule(entry.second) != nullptr && (only == nullptr || entry.first == *only))
      generics.push_back({entry.second, NameOf(entry.first), entry.first});
  }
  std::sort(generics.begin(), generics.end());
  Json forward = Json::object();
  for (const Ranked& generic : generics) {
    forward[Hex(generic.id)] =
        ForwardEntry(generic.id, *FindRule(static_cast<MappingScheme_t>(generic.rank)));
  }

  std::vector<Ranked> keys;
  for (const auto& entry : M::ReverseMap) {
    if (only == nullptr || entry.first == *only)
      keys.push_back({0, NameOf(entry.first), entry.first});
  }
  std::sort(keys.begin(), keys.end());
  Json reverse = Json::object();
  for (const Ranked& key : keys) {
    reverse[Hex(key.id)] = ReverseEntry(key.id, M::ReverseMap.find(key.id)->second);
  }
  return Json{{"forward_maps", std::move(forward)}, {"reverse_maps", std::move(reverse)}};
}

std::string Compact(const Json& value) {
  return value.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

// Indents objects and arrays that hold objects or arrays, and writes every
// other value on one line, so each ID reference and each specific of a
// table takes one line.
void Render(const Json& value, const std::string& indent, std::string& out) {
  bool nested = false;
  for (const Json& child : value) nested = nested || child.is_structured();
  if (!value.is_structured() || !nested) {
    out += Compact(value);
    return;
  }
  const std::string inner = indent + "  ";
  out += value.is_object() ? "{\n" : "[\n";
  bool first = true;
  for (auto it = value.begin(); it != value.end(); ++it) {
    out += first ? inner : ",\n" + inner;
    first = false;
    if (value.is_object()) out += Compact(Json(it.key())) + ": ";
    Render(*it, inner, out);
  }
  out += "\n" + indent + (value.is_object() ? "}" : "]");
}

std::string Text(const Json& document) {
  std::string out;
  Render(document, "", out);
  return out + "\n";
}

}  // namespace

std::string TundraParamMapper::ToJSON() { return Text(Document(nullptr)); }

std::string TundraParamMapper::ToJSON(unsigned int const& id) { return Text(Document(&id)); }

bool TundraParamMapper::GenerateMappingTablesFile(char const* path) {
  if (path == nullptr) {
    fprintf(stderr, "TundraParamMapper::GenerateMappingTablesFile - no file name\n");
    return false;
  }
  std::string text = ToJSON();
  FILE* file = fopen(path, "w");
  if (file == nullptr) {
    fprintf(stderr, "TundraParamMapper::GenerateMappingTablesFile - cannot open %s: %s\n", path,
            strerror(errno));
    return false;
  }
  bool written = fputs(text.c_str(), file) >= 0;
  int error = errno;
  if (fclose(file) != 0 && written) {
    written = false;
    error = errno;
  }
  if (!written) {
    fprintf(stderr, "TundraParamMapper::GenerateMappingTablesFile - cannot write %s: %s\n", path,
            strerror(error));
  }
  return written;
}

}  // namespace mapper
}  // namespace tundra
