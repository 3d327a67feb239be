#include "config/descriptors/string_descriptor.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

StringDescriptor::~StringDescriptor() = default;

void StringDescriptor::SetParamType(eParamType_t type) {
  if (type != eCParam_StringValue) {
    fprintf(stderr,
            "StringDescriptor::SetParamType - ERROR: Invalid paramType - must be "
            "eCParam_StringValue");
    exit(-1);
  }
  ParamDescriptor::SetParamType(type);
}

unsigned int StringDescriptor::GetMinLength() const { return minLength; }
void StringDescriptor::SetMinLength(unsigned int value) { minLength = value; }

unsigned int StringDescriptor::GetMaxLength() const { return maxLength; }
void StringDescriptor::SetMaxLength(unsigned int value) { maxLength = value; }

unsigned int StringDescriptor::GetMinIndex() const { return minIndex; }
void StringDescriptor::SetMinIndex(unsigned int value) { minIndex = value; }

unsigned int StringDescriptor::GetMaxIndex() const { return maxIndex; }
void StringDescriptor::SetMaxIndex(unsigned int value) { maxIndex = value; }

std::string StringDescriptor::GetFactoryDefault() const { return factoryDefault; }
void StringDescriptor::SetFactoryDefault(std::string text) { factoryDefault = std::move(text); }
