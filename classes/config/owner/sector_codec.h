// SectorCodec turns the owner's stored state into bytes and back. A sector
// is a SectorHeader (odometer, config version, length of the data), the data
// (the values as one Vector in the value encoding), and a CRC-32 of header
// and data as one big-endian word:
//
//   0            12                 12 + length
//   | header (12) | data (length)   | CRC-32 (4) |
//
// The config version tells what the data is (settings or a preset); a sector
// of another version is foreign to its reader. The odometer counts writes and
// may wrap: IsNewer compares two odometers along the circle.
//
// Stateless; safe from any thread.
#ifndef CLASSES_CONFIG_OWNER_SECTOR_CODEC_H
#define CLASSES_CONFIG_OWNER_SECTOR_CODEC_H

#include <cstddef>
#include <cstdint>
#include <string>

class SectorCodec {
 public:
  static constexpr size_t kHeaderSize = 12;
  static constexpr size_t kOverhead = kHeaderSize + 4;
  // The config versions of the owner's two kinds of sector.
  static constexpr unsigned int kSettingsVersion = 0x53450001;
  static constexpr unsigned int kPresetVersion = 0x50520001;

  // The whole sector holding `data`.
  static std::string Encode(unsigned int odometer, unsigned int configVersion,
                            const std::string& data);
  // Checks a whole sector of version `configVersion` and, when it checks
  // out, gives its odometer and data. False with the reason in `problem`
  // (truncated, length mismatch, checksum mismatch, foreign); `odometer`
  // then holds what the header says when there is a header to read.
  static bool Decode(const std::string& sector, unsigned int configVersion, unsigned int& odometer,
                     std::string& data, std::string& problem);

  // Whether odometer `a` was written after `b`, counting across a wrap.
  static bool IsNewer(unsigned int a, unsigned int b) { return static_cast<int32_t>(a - b) > 0; }
  // The CRC-32 (reflected polynomial 0xEDB88320) of `size` bytes.
  static uint32_t Crc32(const char* bytes, size_t size);
};

#endif  // CLASSES_CONFIG_OWNER_SECTOR_CODEC_H
