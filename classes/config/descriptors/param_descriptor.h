// ParamDescriptor: the metadata of one parameter of the unit (its ID and
// names, value type, storage, register and factory-reset policy, class names,
// attributes, relations and dependencies). It holds no current value; the
// configuration store validates values against it and the parameter mapper
// reads its attributes. The subclasses add what each kind of value needs.
//
// Ownership: descriptors are made on the heap by the catalogue builders and
// handed to the descriptor registry, which owns them for the life of the
// process.
//
// Thread-safety: a descriptor carries no lock. It is written only while the
// catalogue is built (single-threaded, at start) and is read-only afterwards.
// GetRelation inserts an empty entry for a missing name, so readers after
// start must only look up relations that exist.
//
// Copying is kept public on purpose: family builders copy a fully set-up
// template descriptor into each new member of the family and then change its
// ID and names.
#ifndef CLASSES_CONFIG_DESCRIPTORS_PARAM_DESCRIPTOR_H
#define CLASSES_CONFIG_DESCRIPTORS_PARAM_DESCRIPTOR_H

#include <map>
#include <string>
#include <vector>

#include "config/descriptors/param_types.h"

class ParamDescriptor {
 public:
  // Two numbers tied to a named relation, kept in the order they were added.
  // Their users give them a meaning; the catalogue stores (parameter ID,
  // value of that parameter) pairs, as in "disabled_by" or "enabled_by".
  struct Relation {
    Relation() = default;
    Relation(unsigned int param_id, unsigned int param_value)
        : paramID(param_id), value(param_value) {}
    bool operator==(const Relation& other) const {
      return paramID == other.paramID && value == other.value;
    }

    unsigned int paramID = 0;
    unsigned int value = 0;
  };
  typedef std::map<std::string, std::vector<Relation>> RelationMap;

  ParamDescriptor() = default;
  ParamDescriptor(const ParamDescriptor&) = default;
  ParamDescriptor& operator=(const ParamDescriptor&) = default;
  virtual ~ParamDescriptor();

  virtual unsigned int GetParamID() const;
  virtual void SetParamID(unsigned int id);

  virtual eParamType_t GetParamType() const;
  virtual void SetParamType(eParamType_t type);

  // The symbolic ID, "eParamID_" followed by the parameter's name.
  virtual std::string GetParamIDName() const;
  virtual void SetParamIDName(std::string id_name);

  virtual eFeature_t GetFeatureType() const;
  virtual void SetFeatureType(eFeature_t type);

  virtual ePersist_t GetPersistenceType() const;
  virtual void SetPersistenceType(ePersist_t type);

  virtual eUserRegisterData_t GetRegisterType() const;
  virtual void SetRegisterType(eUserRegisterData_t type);

  virtual eFactoryReset_t GetFactoryResetType() const;
  virtual void SetFactoryResetType(eFactoryReset_t type);

  virtual eAccess_t GetAccessType() const;
  virtual void SetAccessType(eAccess_t type);

  // The display name.
  virtual std::string GetName() const;
  virtual void SetName(std::string display_name);

  // The abbreviated display name. The indexed form accepts a channel or
  // output index and ignores it: every index gets the one short name.
  virtual std::string GetShortName() const;
  virtual std::string GetShortName(unsigned int index) const;
  virtual void SetShortName(std::string short_name);

  // The validation pattern for text entry; "*" accepts any value.
  virtual std::string GetRegEx() const;
  virtual void SetRegEx(std::string reg_ex);

  // Parameters whose state depends on this one. Remove erases the first
  // equal ID and returns whether there was one.
  virtual std::vector<unsigned int> GetDependentParamIDs() const;
  virtual void SetDependentParamIDs(std::vector<unsigned int> ids);
  virtual void AddDependentParamID(unsigned int id);
  virtual bool RemoveDependentParamID(unsigned int id);

  // Parameters this one depends on; same contract as the dependents.
  virtual std::vector<unsigned int> GetDependsOnParamIDs() const;
  virtual void SetDependsOnParamIDs(std::vector<unsigned int> ids);
  virtual void AddDependsOnParamID(unsigned int id);
  virtual bool RemoveDependsOnParamID(unsigned int id);

  // References into the descriptor. GetRelation creates an empty entry for a
  // name it does not hold. AddRelation appends (a, b) under the name.
  virtual RelationMap& GetRelations();
  virtual std::vector<Relation>& GetRelation(std::string relation_name);
  virtual void AddRelation(std::string relation_name, unsigned int a, unsigned int b);

  // Free tags in insertion order, never listed twice. AddClassName moves a
  // name already present to the end. RemoveClassName returns whether the name
  // was there. Comparison is exact and case-sensitive.
  virtual std::vector<std::string> GetClassNames() const;
  virtual void AddClassName(std::string class_name);
  virtual bool RemoveClassName(std::string class_name);
  virtual bool HasClassName(std::string class_name) const;
  virtual void ToggleClassName(std::string class_name);

  // Integer and string attributes are two separate maps; the same name may
  // exist in both. GetAttributes replaces *out with a copy of the map.
  // GetAttribute returns false and leaves out untouched when the name is not
  // in that map. AddAttribute inserts or overwrites.
  virtual void GetAttributes(std::map<std::string, unsigned int>& out) const;
  virtual void GetAttributes(std::map<std::string, std::string>& out) const;
  virtual bool GetAttribute(std::string attribute_name, unsigned int& out) const;
  virtual bool GetAttribute(std::string attribute_name, std::string& out) const;
  virtual void AddAttribute(std::string attribute_name, unsigned int attribute_value);
  virtual void AddAttribute(std::string attribute_name, std::string attribute_value);

 private:
  unsigned int paramID = 0;
  eParamType_t paramType = eCParam_None;
  std::string paramIDName;
  eFeature_t featureType = eFeature_General;
  ePersist_t persistenceType = ePersist;
  eUserRegisterData_t registerType = eRegister_Include;
  eFactoryReset_t factoryResetType = eFactoryReset_Include;
  eAccess_t accessType = eAccess_ReadWrite;
  std::string name;
  std::string shortName;
  std::string regEx;
  std::vector<unsigned int> dependentParamIDs;
  std::vector<unsigned int> dependsOnParamIDs;
  RelationMap relations;
  std::vector<std::string> classNames;
  std::map<std::string, unsigned int> intAttributes;
  std::map<std::string, std::string> stringAttributes;
};

#endif  // CLASSES_CONFIG_DESCRIPTORS_PARAM_DESCRIPTOR_H
