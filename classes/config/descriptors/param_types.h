// The enumerations that classify a parameter: its value type, feature family,
// persistence, user-register membership, factory-reset policy and access
// class. All are 32-bit; values other than the named ones are plain numbers
// used by the catalogue.
#ifndef CLASSES_CONFIG_DESCRIPTORS_PARAM_TYPES_H
#define CLASSES_CONFIG_DESCRIPTORS_PARAM_TYPES_H

#include <cstdint>

enum eParamType_t : int32_t {
  eCParam_None = 0,
  eCParam_IntegerValue = 3,  // integer and enumerated parameters
  eCParam_EventValue = 4,    // the type ConfigEvent reports for integer changes
  eCParam_DecimalValue = 7,
  eCParam_StringValue = 12,  // the only type a StringDescriptor accepts
};

enum eFeature_t : int32_t {
  eFeature_System = 0,
  eFeature_Video = 1,
  eFeature_Audio = 2,
  eFeature_General = 3,  // what a new descriptor starts with
  eFeature_Network = 5,
};

enum ePersist_t : int32_t {
  ePersist = 0,  // kept across power cycles
  ePersist_Volatile = 1,
  ePersist_Status = 2,
};

enum eUserRegisterData_t : int32_t {
  eRegister_Include = 0,  // stored in user presets
  eRegister_Exclude = 1,
};

enum eFactoryReset_t : int32_t {
  eFactoryReset_Exclude = 0,  // a factory reset leaves the value alone
  eFactoryReset_Include = 1,
  eFactoryReset_Always = 2,
};

enum eAccess_t : int32_t {
  eAccess_ReadWrite = 0,
};

#endif  // CLASSES_CONFIG_DESCRIPTORS_PARAM_TYPES_H
