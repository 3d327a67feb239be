// TundraParamMapper is the unit's ParamMapper. Some settings exist once per
// input, per output format, per frame-rate family or per IP configuration
// mode as specific parameters ("eParamID_Vid1YUVProcAmpGain_HDMI"), beside
// one generic parameter ("eParamID_Vid1YUVProcAmpGain") that a user
// interface reads and writes. The mapper tells which specific parameter a
// generic one stands for now, from the current value of its selector: the
// processor's video input, its actual output format, the frame-rate mode or
// the IP configuration mode.
//
// The tables are found from the catalogue alone: a specific's ID name is the
// generic's name, "_" and an entry of the scheme's suffix table, and the
// processor a generic belongs to is its "proc_no" attribute. Rules and
// selectors per scheme are in mapper_rules.h; the JSON export of the tables
// is in mapper_json.cpp.
//
// Ownership: the tables are static members shared by every mapper of the
// process and live until it exits; a mapper object holds only the Config it
// reads selectors through, which it does not own.
//
// Threads: Initialize and the Init*Map builders write the tables without a
// lock and run on one thread, normally at the first construction while the
// process starts, after the catalogue is built (CreateDescriptors). After
// that the tables are only read, and MapParamID, ParamsChangedBy and
// isBaseParam may be called from any thread; MapParamID's Config::Get takes
// that Config's own locks. Build diagnostics go to standard output.
#ifndef CLASSES_CONFIG_MAPPER_TUNDRA_PARAM_MAPPER_H
#define CLASSES_CONFIG_MAPPER_TUNDRA_PARAM_MAPPER_H

#include <boost/unordered_set.hpp>
#include <string>
#include <unordered_map>
#include <vector>

#include "config/mapper/param_mapper.h"

class ParamDescriptor;

namespace tundra {
namespace mapper {

struct MappingRule;

// How a generic parameter is mapped; an ID without an entry is eMapNone.
enum MappingScheme_t : int {
  eMapNone = 0,
  eMapByInput = 1,
  eMapByFrameRateFamily = 2,
  eMapByOutputFormat = 3,
  eMapByIPConfig = 4,
};

class TundraParamMapper : public zyn::boxline::config::access::ParamMapper {
 public:
  typedef std::unordered_map<unsigned int, MappingScheme_t> SchemeTable;
  // Generic ID -> specific IDs, indexed by the selector's value.
  typedef std::unordered_map<unsigned int, std::vector<unsigned int>> SpecificTable;
  // Specific or selector ID -> the generic IDs stored in it or selected by it.
  typedef std::unordered_map<unsigned int, boost::unordered_set<unsigned int>> ReverseTable;

  // Builds the tables if no mapper has yet (Initialize); reads no selector
  // until SetConfig is called.
  TundraParamMapper();
  ~TundraParamMapper() override;

  // The specific ID a generic stands for under the current selector value,
  // mapped again if that is itself a generic; any other ID unchanged. A
  // mapped ID needs SetConfig; without it, or with a selector value outside
  // the table, the generic's own ID is returned with one line on standard
  // error. An IP configuration mode above 1 is read as DHCP (mode 0).
  unsigned int MapParamID(unsigned int const& id) override;
  boost::unordered_set<unsigned int> ParamsChangedBy(unsigned int const& id) override;
  bool isBaseParam(unsigned int const& id) override;
  void SetConfig(::Config* selectors) override;

  // Builds the tables once per process: the two lines "Initializing mapper
  // tables..." and "Mapper tables initialized with N entries." on standard
  // output, and a warning line for each inconsistency of the catalogue with
  // the mapping rules. Later calls do nothing.
  static void Initialize();

  // Enter one generic parameter under a scheme, given by descriptor, by ID
  // or by ID name; the ID and name forms report a parameter that does not
  // exist and enter nothing. Entering a generic again rebuilds its entry.
  static void InitInputBasedMap(ParamDescriptor* generic);
  static void InitInputBasedMap(unsigned int const& id);
  static void InitInputBasedMap(char const* name);
  static void InitFrameRateFamilyBasedMap(ParamDescriptor* generic);
  static void InitFrameRateFamilyBasedMap(unsigned int const& id);
  static void InitFrameRateFamilyBasedMap(char const* name);
  static void InitOutputFormatBasedMap(ParamDescriptor* generic);
  static void InitOutputFormatBasedMap(unsigned int const& id);
  static void InitOutputFormatBasedMap(char const* name);
  static void InitIPConfigBasedMap(ParamDescriptor* generic);
  static void InitIPConfigBasedMap(unsigned int const& id);
  static void InitIPConfigBasedMap(char const* name);

  // The tables as JSON text: "forward_maps" (each generic, its scheme, its
  // selector and its specifics by selector value) and "reverse_maps" (each
  // specific or selector and the generics it changes), IDs written "0x%08X"
  // beside their ID names. The overload with an ID keeps only that ID's
  // entries, in the same shape.
  static std::string ToJSON();
  static std::string ToJSON(unsigned int const& id);
  // Writes ToJSON() to the file at path (created or truncated). False, with
  // one line on standard error, when the file cannot be written.
  static bool GenerateMappingTablesFile(char const* path);

  // The tables. Written only by Initialize and the builders; read-only once
  // they are built.
  static SchemeTable MappingScheme;
  static SpecificTable InputBasedMaps;
  static SpecificTable FrameRateFamilyBasedMaps;
  static SpecificTable OutputFormatBasedMaps;
  static SpecificTable IPConfigBasedMaps;
  static ReverseTable ReverseMap;

 private:
  // Enter one generic under rule; the three forms of the Init*Map builders.
  static void BuildMap(const MappingRule& rule, ParamDescriptor* generic);
  static void BuildMap(const MappingRule& rule, unsigned int id);
  static void BuildMap(const MappingRule& rule, char const* name);

  static bool _initialized;
  // The selector each generic of a processor scheme was entered with, as
  // its "proc_no" chose it, so that a mapping need not read the descriptor.
  static std::unordered_map<unsigned int, unsigned int> _selectors;

  ::Config* config;  // not owned; null until SetConfig
};

}  // namespace mapper
}  // namespace tundra

#endif  // CLASSES_CONFIG_MAPPER_TUNDRA_PARAM_MAPPER_H
