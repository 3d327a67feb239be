// Explicit big-endian packing of 32-bit words: the value encoding, the
// stored records and the presets are big-endian on every host, so nothing
// here depends on the processor's own byte order.
#ifndef CLASSES_CONFIG_VALUES_BIG_ENDIAN_H
#define CLASSES_CONFIG_VALUES_BIG_ENDIAN_H

#include <cstdint>

namespace zyn {
namespace config {
namespace values {

inline void PutBigEndian32(char* out, uint32_t v) {
  out[0] = static_cast<char>(v >> 24);
  out[1] = static_cast<char>(v >> 16);
  out[2] = static_cast<char>(v >> 8);
  out[3] = static_cast<char>(v);
}

inline uint32_t GetBigEndian32(const char* in) {
  const unsigned char* p = reinterpret_cast<const unsigned char*>(in);
  return (uint32_t{p[0]} << 24) | (uint32_t{p[1]} << 16) | (uint32_t{p[2]} << 8) | uint32_t{p[3]};
}

}  // namespace values
}  // namespace config
}  // namespace zyn

#endif  // CLASSES_CONFIG_VALUES_BIG_ENDIAN_H
