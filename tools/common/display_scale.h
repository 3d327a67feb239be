// How a number parameter is shown to people: the store keeps a raw unsigned
// number, the user reads (raw - offset) / scale with a fixed number of
// decimals and the unit after it. A level held as tenths of a dB 600 above
// the shown value has scale 10, offset 600, 1 decimal and "dB": raw 570 is
// "-3.0 dB". A parameter without scale, offset or decimals shows its raw
// number, with its unit when it has one.
//
// Plain values built from the read-only registry; no shared state.
#ifndef TOOLS_COMMON_DISPLAY_SCALE_H
#define TOOLS_COMMON_DISPLAY_SCALE_H

#include <string>

class ParamDescriptor;

namespace common {

struct DisplayScale {
  bool number = false;  // a plain number parameter (not a string or enumeration)
  unsigned int scaleBy = 1;
  unsigned int offsetBy = 0;
  unsigned int decimals = 0;  // at most 9
  std::string units;

  // The descriptor's display fields; `number` false for anything else.
  static DisplayScale Of(const ParamDescriptor* descriptor);

  // Whether the shown number differs from the raw one.
  bool IsScaled() const { return number && (scaleBy != 1 || offsetBy != 0 || decimals != 0); }

  // The shown number of `raw`, rounded half away from zero: "-3.0".
  std::string Text(unsigned int raw) const;
  // Text with the unit after a blank when there is one: "-3.0 dB".
  std::string TextWithUnits(unsigned int raw) const;
  // The shown number as a double, for JSON.
  double Value(unsigned int raw) const;

  // The raw number that `text` (a shown number, optionally followed by this
  // parameter's unit) stands for. False with a one-line reason naming the
  // parameter `name` when the text is not a number, is finer than one raw
  // step, or lies outside what the store's 32 bits can hold.
  bool Parse(const std::string& text, const std::string& name, unsigned int& raw,
             std::string& error) const;
};

}  // namespace common

#endif  // TOOLS_COMMON_DISPLAY_SCALE_H
