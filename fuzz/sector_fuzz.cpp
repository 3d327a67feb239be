// The owner's persisted settings reader: the input is the two slot files of
// the settings' SectorFile, read back by PersistenceWorker::Restore into
// store 0 as configd does at start. Input: a flags byte, the 2-byte
// big-endian size of slot "a", slot "a", then slot "b". Flags: bit 0 and
// bit 1 repair the length field and checksum of slot a / slot b (so that
// the values behind them are reached), bit 2 leaves slot b missing.
#include <cerrno>
#include <string>

#include "config/owner/file_system.h"
#include "config/owner/persistence_worker.h"
#include "config/owner/sector_codec.h"
#include "config/owner/sector_file.h"
#include "config/values/big_endian.h"
#include "fuzz_common.h"

namespace {

// Serves the two slots from memory; everything else is refused.
class SlotFiles : public FileSystem {
 public:
  std::string slot[2];
  bool present[2] = {true, true};

  bool ReadFile(const std::string& path, size_t limit, std::string& bytes) override {
    int which = path.back() == 'a' ? 0 : 1;
    bytes.clear();
    if (!present[which]) {
      errno = ENOENT;
      return false;
    }
    if (slot[which].size() > limit) {
      errno = EFBIG;
      return false;
    }
    bytes = slot[which];
    return true;
  }
  int Open(const std::string&, int, mode_t) override {
    errno = EROFS;
    return -1;
  }
};

void Repair(std::string& sector) {
  if (sector.size() < SectorCodec::kOverhead) return;
  zyn::config::values::PutBigEndian32(&sector[8], sector.size() - SectorCodec::kOverhead);
  size_t covered = sector.size() - 4;
  zyn::config::values::PutBigEndian32(&sector[covered], SectorCodec::Crc32(sector.data(), covered));
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz::Initialize(true);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 3) return 0;
  uint8_t flags = data[0];
  size_t first = std::min(static_cast<size_t>(data[1]) << 8 | data[2], size - 3);
  SlotFiles files;
  files.slot[0].assign(reinterpret_cast<const char*>(data) + 3, first);
  files.slot[1].assign(reinterpret_cast<const char*>(data) + 3 + first, size - 3 - first);
  files.present[1] = (flags & 4) == 0;
  for (int i = 0; i < 2; ++i)
    if (flags & (1 << i)) Repair(files.slot[i]);
  SectorFile file(&files, "/settings", "settings", SectorCodec::kSettingsVersion);
  PersistenceWorker worker(fuzz::Store(), &file, 1000);
  worker.Restore();
  return 0;
}
