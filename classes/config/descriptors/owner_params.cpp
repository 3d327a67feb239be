#include "config/descriptors/owner_params.h"

#include "config/descriptors/catalogue_builder.h"
#include "config/descriptors/param_descriptors.h"

namespace zyn {
namespace config {
namespace catalogue {
namespace {

constexpr const char* kRequestClasses[] = {"volatile", "rest_hidden"};
constexpr const char* kAnswerClasses[] = {"readonly", "volatile", "rest_hidden"};

// clang-format off
constexpr CatalogueRow kOwnerRows[] = {
    String(kOwnerRegisterRequestParamID, "eParamID_OwnerRegisterRequest", "Owner Request", "OwnReq").Text(0, 64, "").Store(kVolatile).Classes(kRequestClasses),
    String(kOwnerRegisterOutcomesParamID, "eParamID_OwnerRegisterOutcomes", "Owner Outcomes", "OwnOut").Text(0, 2048, "").Store(kVolatile).Classes(kAnswerClasses),
    String(kOwnerHealthParamID, "eParamID_OwnerHealth", "Owner Health", "OwnHlth").Text(1, 512, kOwnerHealthOk).Store(kVolatile).Classes(kAnswerClasses),
};
// clang-format on

}  // namespace
}  // namespace catalogue
}  // namespace config
}  // namespace zyn

bool IsOwnerParam(unsigned int id) {
  return id == kOwnerRegisterRequestParamID || id == kOwnerRegisterOutcomesParamID ||
         id == kOwnerHealthParamID;
}

void AddOwnerDescriptors() {
  CreateDescriptors();
  if (IsValidParamID(kOwnerHealthParamID)) return;
  zyn::config::catalogue::AddCatalogueRows(zyn::config::catalogue::kOwnerRows);
  IndexDescriptorNames();
}
