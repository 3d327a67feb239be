// ParamMapper translates the parameter IDs a caller uses into the IDs of the
// store behind a MappingConfig, and tells which caller-side parameters a
// change of a store parameter affects. A generic parameter (one proc amp
// gain, say) stands for one of several specific parameters chosen by the
// current value of a selector parameter read through the Config given to
// SetConfig.
//
// Ownership: the mapper does not own the Config it reads through; whoever
// attaches it keeps that Config alive for as long as the mapper is used.
//
// Thread-safety: the implementation's to state; the unit's mapper may be
// called from any thread once its tables are built.
#ifndef CLASSES_CONFIG_MAPPER_PARAM_MAPPER_H
#define CLASSES_CONFIG_MAPPER_PARAM_MAPPER_H

#include <boost/unordered_set.hpp>

class Config;

namespace zyn {
namespace boxline {
namespace config {
namespace access {

class ParamMapper {
 public:
  ParamMapper() = default;
  ParamMapper(const ParamMapper&) = delete;
  ParamMapper& operator=(const ParamMapper&) = delete;

  // The ID to use in place of id; id itself when it is not mapped.
  virtual unsigned int MapParamID(unsigned int const& id) = 0;
  // The caller-side (generic) IDs whose effective value changes when id
  // changes; empty when none does.
  virtual boost::unordered_set<unsigned int> ParamsChangedBy(unsigned int const& id) = 0;
  // True when id is neither a specific parameter nor a selector of any
  // generic one.
  virtual bool isBaseParam(unsigned int const& id) = 0;
  virtual ~ParamMapper();
  // The configuration that selector values are read from; not owned.
  virtual void SetConfig(::Config* config) = 0;
};

}  // namespace access
}  // namespace config
}  // namespace boxline
}  // namespace zyn

#endif  // CLASSES_CONFIG_MAPPER_PARAM_MAPPER_H
