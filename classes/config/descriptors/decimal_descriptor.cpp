#include "config/descriptors/decimal_descriptor.h"

DecimalDescriptor::~DecimalDescriptor() = default;

unsigned int DecimalDescriptor::GetPrecision() const { return precision; }
void DecimalDescriptor::SetPrecision(unsigned int value) { precision = value; }
