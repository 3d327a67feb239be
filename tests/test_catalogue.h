// A small catalogue of test parameters, one of each kind the store treats
// differently, registered once per test process. IDs stay in a range the
// unit's catalogue never uses.
#ifndef TESTS_TEST_CATALOGUE_H
#define TESTS_TEST_CATALOGUE_H

#include "config/descriptors/enum_descriptor.h"
#include "config/descriptors/integer_descriptor.h"
#include "config/descriptors/param_descriptors.h"
#include "config/descriptors/string_descriptor.h"

namespace test_catalogue {

constexpr unsigned int kPercent = 0xFEEDC001;       // integer 0..100, default 50
constexpr unsigned int kTenToHundred = 0xFEEDC002;  // integer 10..100, default 10
constexpr unsigned int kMode = 0xFEEDC003;          // enumeration {0, 1, 2}, default 1
constexpr unsigned int kName = 0xFEEDC004;          // string, default "unit"
constexpr unsigned int kWrapped = 0xFEEDC005;       // range 0xFFFFFFF6 spanning 10
constexpr unsigned int kLimited = 0xFEEDC006;       // 0..1000, dependent_minimum kPercent
constexpr unsigned int kRaw = 0xFEEDC007;           // 0..10 but "do_not_validate"
constexpr unsigned int kSource = 0xFEEDC008;        // integer with dependants kPercent, kName
constexpr unsigned int kVolatile = 0xFEEDC009;      // integer 0..100, class name "volatile"
constexpr unsigned int kUnknown = 0xFEEDC0FF;       // no descriptor

// Registers a number parameter: an integer one, or an enumeration (D).
template <typename D = IntegerDescriptor>
D* Integer(unsigned int id, const char* name, unsigned int min, unsigned int max,
           unsigned int def) {
  D* d = new D();
  d->SetParamID(id);
  d->SetParamIDName(name);
  d->SetParamType(eCParam_IntegerValue);
  d->SetMinValue(min);
  d->SetMaxValue(max);
  d->SetFactoryDefault(def);
  AddDescriptor(d);
  return d;
}

// Registers the test parameters (once) and returns.
inline void Register() {
  static bool done = false;
  if (done) return;
  done = true;
  Integer(kPercent, "eParamID_TestPercent", 0, 100, 50);
  Integer(kTenToHundred, "eParamID_TestTenToHundred", 10, 100, 10);
  EnumDescriptor* mode = Integer<EnumDescriptor>(kMode, "eParamID_TestMode", 0, 2, 1);
  mode->AddNameValuePair(0, "Off");
  mode->AddNameValuePair(1, "On");
  mode->AddNameValuePair(2, "Auto");
  StringDescriptor* name = new StringDescriptor();
  name->SetParamID(kName);
  name->SetParamIDName("eParamID_TestName");
  name->SetParamType(eCParam_StringValue);
  name->SetFactoryDefault("unit");
  AddDescriptor(name);
  Integer(kWrapped, "eParamID_TestWrapped", 0xFFFFFFF6, 10, 0);
  Integer(kLimited, "eParamID_TestLimited", 0, 1000, 0)
      ->AddAttribute("dependent_minimum", kPercent);
  Integer(kRaw, "eParamID_TestRaw", 0, 10, 0)->AddClassName("do_not_validate");
  IntegerDescriptor* source = Integer(kSource, "eParamID_TestSource", 0, 5, 0);
  source->AddDependentParamID(kPercent);
  source->AddDependentParamID(kName);
  Integer(kVolatile, "eParamID_TestVolatile", 0, 100, 0)->AddClassName("volatile");
  IndexDescriptorNames();
}

}  // namespace test_catalogue

#endif  // TESTS_TEST_CATALOGUE_H
