#include "config/descriptors/integer_descriptor.h"

#include <utility>

IntegerDescriptor::~IntegerDescriptor() = default;

unsigned int IntegerDescriptor::GetMinValue() const { return minValue; }
void IntegerDescriptor::SetMinValue(unsigned int value) { minValue = value; }

unsigned int IntegerDescriptor::GetMaxValue() const { return maxValue; }
void IntegerDescriptor::SetMaxValue(unsigned int value) { maxValue = value; }

unsigned int IntegerDescriptor::GetFactoryDefault() const { return factoryDefault; }
void IntegerDescriptor::SetFactoryDefault(unsigned int value) { factoryDefault = value; }

unsigned int IntegerDescriptor::GetAdjustBy() const { return adjustBy; }
void IntegerDescriptor::SetAdjustBy(unsigned int value) { adjustBy = value; }

unsigned int IntegerDescriptor::GetScaleBy() const { return scaleBy; }
void IntegerDescriptor::SetScaleBy(unsigned int value) { scaleBy = value; }

unsigned int IntegerDescriptor::GetOffsetBy() const { return offsetBy; }
void IntegerDescriptor::SetOffsetBy(unsigned int value) { offsetBy = value; }

unsigned int IntegerDescriptor::GetDisplayPrecision() const { return displayPrecision; }
void IntegerDescriptor::SetDisplayPrecision(unsigned int value) { displayPrecision = value; }

std::string IntegerDescriptor::GetUnits() const { return units; }
void IntegerDescriptor::SetUnits(std::string text) { units = std::move(text); }

std::string IntegerDescriptor::GetUnits2() const { return units2; }
void IntegerDescriptor::SetUnits2(std::string text) { units2 = std::move(text); }
