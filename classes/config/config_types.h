// Scalar types shared by every part of the configuration library: which
// parameter (eParam_t) and which store (eConfigID_t) an operation addresses.
#ifndef CLASSES_CONFIG_CONFIG_TYPES_H
#define CLASSES_CONFIG_CONFIG_TYPES_H

#include <cstdint>

// A parameter ID: a fixed 32-bit number per parameter of the catalogue.
typedef uint32_t eParam_t;

// Which store a Config addresses; store 0 is the default one.
enum eConfigID_t : int32_t {
  eConfigID_Default = 0,
  eConfigID_Invalid = -1,
};

#endif  // CLASSES_CONFIG_CONFIG_TYPES_H
