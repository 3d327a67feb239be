// StringDescriptor: the descriptor of a text parameter, with its length
// limits, the range of character positions and the factory default text.
// A new one allows at most 20 characters at positions 0 to 19.
//
// Ownership and thread-safety are those of ParamDescriptor.
#ifndef CLASSES_CONFIG_DESCRIPTORS_STRING_DESCRIPTOR_H
#define CLASSES_CONFIG_DESCRIPTORS_STRING_DESCRIPTOR_H

#include <string>

#include "config/descriptors/param_descriptor.h"

class StringDescriptor : public ParamDescriptor {
 public:
  StringDescriptor() = default;
  StringDescriptor(const StringDescriptor&) = default;
  StringDescriptor& operator=(const StringDescriptor&) = default;
  ~StringDescriptor() override;

  // Accepts only eCParam_StringValue. Any other type is a catalogue
  // programming error: it prints a message and ends the process with -1.
  void SetParamType(eParamType_t type) override;

  virtual unsigned int GetMinLength() const;
  virtual void SetMinLength(unsigned int value);
  virtual unsigned int GetMaxLength() const;
  virtual void SetMaxLength(unsigned int value);
  virtual unsigned int GetMinIndex() const;
  virtual void SetMinIndex(unsigned int value);
  virtual unsigned int GetMaxIndex() const;
  virtual void SetMaxIndex(unsigned int value);
  virtual std::string GetFactoryDefault() const;
  virtual void SetFactoryDefault(std::string text);

 private:
  unsigned int minLength = 0;
  unsigned int maxLength = 20;
  unsigned int minIndex = 0;
  unsigned int maxIndex = 19;
  std::string factoryDefault;
};

#endif  // CLASSES_CONFIG_DESCRIPTORS_STRING_DESCRIPTOR_H
