#include "config/descriptors/param_descriptor.h"

#include <algorithm>
#include <utility>

namespace {

// Erases the first element equal to id; returns whether there was one.
bool EraseFirst(std::vector<unsigned int>& ids, unsigned int id) {
  auto it = std::find(ids.begin(), ids.end(), id);
  if (it == ids.end()) return false;
  ids.erase(it);
  return true;
}

}  // namespace

ParamDescriptor::~ParamDescriptor() = default;

unsigned int ParamDescriptor::GetParamID() const { return paramID; }
void ParamDescriptor::SetParamID(unsigned int id) { paramID = id; }

eParamType_t ParamDescriptor::GetParamType() const { return paramType; }
void ParamDescriptor::SetParamType(eParamType_t type) { paramType = type; }

std::string ParamDescriptor::GetParamIDName() const { return paramIDName; }
void ParamDescriptor::SetParamIDName(std::string id_name) { paramIDName = std::move(id_name); }

eFeature_t ParamDescriptor::GetFeatureType() const { return featureType; }
void ParamDescriptor::SetFeatureType(eFeature_t type) { featureType = type; }

ePersist_t ParamDescriptor::GetPersistenceType() const { return persistenceType; }
void ParamDescriptor::SetPersistenceType(ePersist_t type) { persistenceType = type; }

eUserRegisterData_t ParamDescriptor::GetRegisterType() const { return registerType; }
void ParamDescriptor::SetRegisterType(eUserRegisterData_t type) { registerType = type; }

eFactoryReset_t ParamDescriptor::GetFactoryResetType() const { return factoryResetType; }
void ParamDescriptor::SetFactoryResetType(eFactoryReset_t type) { factoryResetType = type; }

eAccess_t ParamDescriptor::GetAccessType() const { return accessType; }
void ParamDescriptor::SetAccessType(eAccess_t type) { accessType = type; }

std::string ParamDescriptor::GetName() const { return name; }
void ParamDescriptor::SetName(std::string display_name) { name = std::move(display_name); }

std::string ParamDescriptor::GetShortName() const { return shortName; }
std::string ParamDescriptor::GetShortName(unsigned int /*index*/) const { return shortName; }
void ParamDescriptor::SetShortName(std::string short_name) { shortName = std::move(short_name); }

std::string ParamDescriptor::GetRegEx() const { return regEx; }
void ParamDescriptor::SetRegEx(std::string reg_ex) { regEx = std::move(reg_ex); }

std::vector<unsigned int> ParamDescriptor::GetDependentParamIDs() const {
  return dependentParamIDs;
}
void ParamDescriptor::SetDependentParamIDs(std::vector<unsigned int> ids) {
  dependentParamIDs = std::move(ids);
}
void ParamDescriptor::AddDependentParamID(unsigned int id) { dependentParamIDs.push_back(id); }
bool ParamDescriptor::RemoveDependentParamID(unsigned int id) {
  return EraseFirst(dependentParamIDs, id);
}

std::vector<unsigned int> ParamDescriptor::GetDependsOnParamIDs() const {
  return dependsOnParamIDs;
}
void ParamDescriptor::SetDependsOnParamIDs(std::vector<unsigned int> ids) {
  dependsOnParamIDs = std::move(ids);
}
void ParamDescriptor::AddDependsOnParamID(unsigned int id) { dependsOnParamIDs.push_back(id); }
bool ParamDescriptor::RemoveDependsOnParamID(unsigned int id) {
  return EraseFirst(dependsOnParamIDs, id);
}

ParamDescriptor::RelationMap& ParamDescriptor::GetRelations() { return relations; }

std::vector<ParamDescriptor::Relation>& ParamDescriptor::GetRelation(std::string relation_name) {
  return relations[relation_name];
}

void ParamDescriptor::AddRelation(std::string relation_name, unsigned int a, unsigned int b) {
  relations[relation_name].emplace_back(a, b);
}

std::vector<std::string> ParamDescriptor::GetClassNames() const { return classNames; }

void ParamDescriptor::AddClassName(std::string class_name) {
  RemoveClassName(class_name);
  classNames.push_back(std::move(class_name));
}

bool ParamDescriptor::RemoveClassName(std::string class_name) {
  auto it = std::find(classNames.begin(), classNames.end(), class_name);
  if (it == classNames.end()) return false;
  classNames.erase(it);
  return true;
}

bool ParamDescriptor::HasClassName(std::string class_name) const {
  return std::find(classNames.begin(), classNames.end(), class_name) != classNames.end();
}

void ParamDescriptor::ToggleClassName(std::string class_name) {
  if (HasClassName(class_name)) {
    RemoveClassName(class_name);
  } else {
    AddClassName(class_name);
  }
}

void ParamDescriptor::GetAttributes(std::map<std::string, unsigned int>& out) const {
  out = intAttributes;
}

void ParamDescriptor::GetAttributes(std::map<std::string, std::string>& out) const {
  out = stringAttributes;
}

bool ParamDescriptor::GetAttribute(std::string attribute_name, unsigned int& out) const {
  auto it = intAttributes.find(attribute_name);
  if (it == intAttributes.end()) return false;
  out = it->second;
  return true;
}

bool ParamDescriptor::GetAttribute(std::string attribute_name, std::string& out) const {
  auto it = stringAttributes.find(attribute_name);
  if (it == stringAttributes.end()) return false;
  out = it->second;
  return true;
}

void ParamDescriptor::AddAttribute(std::string attribute_name, unsigned int attribute_value) {
  intAttributes[attribute_name] = attribute_value;
}

void ParamDescriptor::AddAttribute(std::string attribute_name, std::string attribute_value) {
  stringAttributes[attribute_name] = std::move(attribute_value);
}
