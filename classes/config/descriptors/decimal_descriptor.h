// DecimalDescriptor: an integer parameter shown as a fixed-point number; the
// stored unsigned value carries `precision` decimal places.
//
// Ownership and thread-safety are those of ParamDescriptor. A family builder
// copies a decimal template with the IntegerDescriptor copy assignment and
// then sets the precision.
#ifndef CLASSES_CONFIG_DESCRIPTORS_DECIMAL_DESCRIPTOR_H
#define CLASSES_CONFIG_DESCRIPTORS_DECIMAL_DESCRIPTOR_H

#include "config/descriptors/integer_descriptor.h"

class DecimalDescriptor : public IntegerDescriptor {
 public:
  DecimalDescriptor() = default;
  DecimalDescriptor(const DecimalDescriptor&) = default;
  DecimalDescriptor& operator=(const DecimalDescriptor&) = default;
  ~DecimalDescriptor() override;

  virtual unsigned int GetPrecision() const;
  virtual void SetPrecision(unsigned int value);

 private:
  unsigned int precision = 0;
};

#endif  // CLASSES_CONFIG_DESCRIPTORS_DECIMAL_DESCRIPTOR_H
