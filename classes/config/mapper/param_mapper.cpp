#include "config/mapper/param_mapper.h"

namespace zyn {
namespace boxline {
namespace config {
namespace access {

ParamMapper::~ParamMapper() = default;

}  // namespace access
}  // namespace config
}  // namespace boxline
}  // namespace zyn
