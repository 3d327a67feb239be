#include "config/values/factories.h"

#include <cstdio>

#include "config/values/package_header.h"
#include "config/values/presets_param_vector.h"
#include "config/values/sector_header.h"
#include "config/values/vector.h"

SectorHeaderFactory::SectorHeaderFactory() : ClassFactory(eClassID_SectorHeader) { Register(this); }

Serializable* SectorHeaderFactory::Create() {
  static SectorHeader* header = [] {
    SectorHeader* h = new SectorHeader(0, 0, 0);
    h->SetClassID(eClassID_Unset);
    return h;
  }();
  return header;
}

namespace zyn {
namespace config {
namespace values {

VectorFactory::VectorFactory() : ClassFactory(eClassID_Vector) { Register(this); }

Serializable* VectorFactory::Create() {
  fprintf(stderr, "VectorFactory::Create - return new Vector()\n");
  return new Vector();
}

PresetsFactory::PresetsFactory(ePresetsPolicy p) : ClassFactory(eClassID_Presets), policy(p) {
  Register(this);
}

Serializable* PresetsFactory::Create() {
  if (policy == ePresetsPolicy_ParamVector) return new PresetsParamVector();
  fprintf(stderr, "PresetsFactory::Create - unknown policy %d, unable to create Presets instance\n",
          static_cast<int>(policy));
  return nullptr;
}

PackageHeaderFactory::PackageHeaderFactory() : ClassFactory(eClassID_PackageHeader) {
  Register(this);
}

Serializable* PackageHeaderFactory::Create() {
  // The text names Vector although the object is a PackageHeader; log
  // readers match it as it is.
  fprintf(stderr, "PackageHeaderFactory::Create - return new Vector()\n");
  return new PackageHeader();
}

}  // namespace values
}  // namespace config
}  // namespace zyn
