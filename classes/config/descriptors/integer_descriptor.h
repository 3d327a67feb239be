// IntegerDescriptor: the descriptor of an unsigned 32-bit parameter, with its
// valid range, factory default, step, and how the value is shown (scale,
// offset, decimals shown, unit texts). It holds limits only; the update
// preconditions and the configuration store check values against them.
//
// Ownership and thread-safety are those of ParamDescriptor: heap-made, owned
// by the descriptor registry, written only while the catalogue is built and
// read-only afterwards. Copying is public so that family builders can copy a
// template into each member.
#ifndef CLASSES_CONFIG_DESCRIPTORS_INTEGER_DESCRIPTOR_H
#define CLASSES_CONFIG_DESCRIPTORS_INTEGER_DESCRIPTOR_H

#include <string>

#include "config/descriptors/param_descriptor.h"

class IntegerDescriptor : public ParamDescriptor {
 public:
  IntegerDescriptor() = default;
  IntegerDescriptor(const IntegerDescriptor&) = default;
  IntegerDescriptor& operator=(const IntegerDescriptor&) = default;
  ~IntegerDescriptor() override;

  virtual unsigned int GetMinValue() const;
  virtual void SetMinValue(unsigned int value);
  virtual unsigned int GetMaxValue() const;
  virtual void SetMaxValue(unsigned int value);
  // The value after a factory reset.
  virtual unsigned int GetFactoryDefault() const;
  virtual void SetFactoryDefault(unsigned int value);
  // The step of one knob or button increment.
  virtual unsigned int GetAdjustBy() const;
  virtual void SetAdjustBy(unsigned int value);
  // Display divisor and offset.
  virtual unsigned int GetScaleBy() const;
  virtual void SetScaleBy(unsigned int value);
  virtual unsigned int GetOffsetBy() const;
  virtual void SetOffsetBy(unsigned int value);
  // Number of decimals shown.
  virtual unsigned int GetDisplayPrecision() const;
  virtual void SetDisplayPrecision(unsigned int value);
  // Unit texts shown after the value.
  virtual std::string GetUnits() const;
  virtual void SetUnits(std::string text);
  virtual std::string GetUnits2() const;
  virtual void SetUnits2(std::string text);

 private:
  unsigned int minValue = 0;
  unsigned int maxValue = 0;
  unsigned int factoryDefault = 0;
  unsigned int adjustBy = 1;
  unsigned int scaleBy = 1;
  unsigned int offsetBy = 0;
  unsigned int displayPrecision = 0;
  std::string units;
  std::string units2;
};

#endif  // CLASSES_CONFIG_DESCRIPTORS_INTEGER_DESCRIPTOR_H
