#include "config/owner/sector_codec.h"

#include <array>
#include <cstdio>

#include "config/values/big_endian.h"
#include "config/values/memory_deserializer.h"
#include "config/values/memory_serializer.h"
#include "config/values/sector_header.h"

namespace {

constexpr eSerializationFormat kFormat = eSerializationFormat_Binary;

std::array<uint32_t, 256> MakeCrcTable() {
  std::array<uint32_t, 256> table{};
  for (uint32_t i = 0; i < 256; ++i) {
    uint32_t c = i;
    for (int k = 0; k < 8; ++k) c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
    table[i] = c;
  }
  return table;
}

}  // namespace

uint32_t SectorCodec::Crc32(const char* bytes, size_t size) {
  static const std::array<uint32_t, 256> table = MakeCrcTable();
  uint32_t crc = 0xFFFFFFFFu;
  for (size_t i = 0; i < size; ++i)
    crc = table[(crc ^ static_cast<unsigned char>(bytes[i])) & 0xFF] ^ (crc >> 8);
  return crc ^ 0xFFFFFFFFu;
}

std::string SectorCodec::Encode(unsigned int odometer, unsigned int configVersion,
                                const std::string& data) {
  SectorHeader header(odometer, configVersion, static_cast<unsigned int>(data.size()));
  std::string sector(kHeaderSize, '\0');
  MemorySerializer writer(kFormat, &sector[0], &sector[0] + kHeaderSize, false);
  header.Serialize(&writer);
  sector += data;
  char crc[4];
  zyn::config::values::PutBigEndian32(crc, Crc32(sector.data(), sector.size()));
  sector.append(crc, 4);
  return sector;
}

bool SectorCodec::Decode(const std::string& sector, unsigned int configVersion,
                         unsigned int& odometer, std::string& data, std::string& problem) {
  if (sector.size() < kOverhead) {
    problem = "truncated at " + std::to_string(sector.size()) + " bytes";
    return false;
  }
  std::string head = sector.substr(0, kHeaderSize);
  MemoryDeSerializer reader(kFormat, &head[0], &head[0] + kHeaderSize, false);
  SectorHeader header(0, 0, 0);
  header.Deserialize(&reader);
  odometer = header.GetOdometer();
  if (header.GetLength() != sector.size() - kOverhead) {
    problem = "length " + std::to_string(header.GetLength()) + " does not match its " +
              std::to_string(sector.size()) + " bytes";
    return false;
  }
  size_t covered = sector.size() - 4;
  if (Crc32(sector.data(), covered) != zyn::config::values::GetBigEndian32(&sector[covered])) {
    problem = "checksum mismatch";
    return false;
  }
  if (header.GetConfigVersion() != configVersion) {
    char text[64];
    snprintf(text, sizeof text, "foreign config version 0x%08X", header.GetConfigVersion());
    problem = text;
    return false;
  }
  data = sector.substr(kHeaderSize, header.GetLength());
  return true;
}
