#include "common/display_scale.h"

#include <cctype>

#include "config/descriptors/enum_descriptor.h"
#include "config/descriptors/integer_descriptor.h"

namespace common {

namespace {

constexpr unsigned int kMaxDecimals = 9;

unsigned long long PowerOfTen(unsigned int exponent) {
  unsigned long long value = 1;
  while (exponent-- > 0) value *= 10;
  return value;
}

// `numerator` / `scale` with `decimals` decimals, rounded half away from zero.
std::string Fixed(long long numerator, unsigned int scale, unsigned int decimals) {
  bool negative = numerator < 0;
  unsigned long long magnitude =
      negative ? 0ull - static_cast<unsigned long long>(numerator) : numerator;
  unsigned long long unit = PowerOfTen(decimals);
  // magnitude < 2^33 and unit <= 10^9, so twice their product fits.
  unsigned long long rounded = (2 * magnitude * unit + scale) / (2ull * scale);
  std::string text = std::to_string(rounded / unit);
  if (decimals > 0) {
    std::string fraction = std::to_string(rounded % unit);
    text += "." + std::string(decimals - fraction.size(), '0') + fraction;
  }
  return negative && rounded != 0 ? "-" + text : text;
}

std::string Trimmed(const std::string& text) {
  size_t first = text.find_first_not_of(' ');
  if (first == std::string::npos) return "";
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

}  // namespace

DisplayScale DisplayScale::Of(const ParamDescriptor* descriptor) {
  DisplayScale scale;
  auto* integer = dynamic_cast<const IntegerDescriptor*>(descriptor);
  if (integer == nullptr || dynamic_cast<const EnumDescriptor*>(descriptor) != nullptr)
    return scale;
  scale.number = true;
  // A zero divisor would mean nothing; such a parameter shows its raw number.
  scale.scaleBy = integer->GetScaleBy() == 0 ? 1 : integer->GetScaleBy();
  scale.offsetBy = integer->GetOffsetBy();
  scale.decimals =
      integer->GetDisplayPrecision() > kMaxDecimals ? kMaxDecimals : integer->GetDisplayPrecision();
  scale.units = integer->GetUnits();
  return scale;
}

std::string DisplayScale::Text(unsigned int raw) const {
  return Fixed(static_cast<long long>(raw) - offsetBy, scaleBy, decimals);
}

std::string DisplayScale::TextWithUnits(unsigned int raw) const {
  return units.empty() ? Text(raw) : Text(raw) + " " + units;
}

double DisplayScale::Value(unsigned int raw) const { return std::stod(Text(raw)); }

bool DisplayScale::Parse(const std::string& input, const std::string& name, unsigned int& raw,
                         std::string& error) const {
  std::string text = Trimmed(input);
  if (!units.empty() && text.size() > units.size() &&
      text.compare(text.size() - units.size(), units.size(), units) == 0)
    text = Trimmed(text.substr(0, text.size() - units.size()));
  size_t i = 0;
  bool negative = false;
  if (i < text.size() && (text[i] == '-' || text[i] == '+')) negative = text[i++] == '-';
  // Up to 18 digits in all, so that their number fits in 64 bits.
  unsigned long long digits = 0;
  unsigned int count = 0;
  unsigned int fraction = 0;
  bool point = false;
  for (; i < text.size(); ++i) {
    if (text[i] == '.' && !point) {
      point = true;
      continue;
    }
    if (!isdigit(static_cast<unsigned char>(text[i])) || ++count > 18) break;
    digits = digits * 10 + static_cast<unsigned int>(text[i] - '0');
    if (point) ++fraction;
  }
  if (i != text.size() || count == 0) {
    error =
        "'" + input + "' is not a number" + (units.empty() ? "" : " of " + units) + " for " + name;
    return false;
  }
  // raw * 10^fraction = +-digits * scale + offset * 10^fraction.
  __int128 unit = PowerOfTen(fraction);
  __int128 scaled = static_cast<__int128>(digits) * scaleBy;
  __int128 total = (negative ? -scaled : scaled) + static_cast<__int128>(offsetBy) * unit;
  if (total % unit != 0) {
    error = "'" + input + "' is finer than " + name + "'s step of " + Fixed(1, scaleBy, decimals) +
            (units.empty() ? "" : " " + units);
    return false;
  }
  total /= unit;
  if (total < 0 || total > 0xFFFFFFFF) {
    error = "'" + input + "' is " + (total < 0 ? "below the lowest" : "beyond the highest") +
            " value " + name + " can hold, " + TextWithUnits(total < 0 ? 0 : 0xFFFFFFFFu);
    return false;
  }
  raw = static_cast<unsigned int>(total);
  return true;
}

}  // namespace common
