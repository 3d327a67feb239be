#include "config/owner/sector_file.h"

#include <fcntl.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "config/owner/file_system.h"
#include "config/owner/sector_codec.h"

SectorFile::SectorFile(FileSystem* files, std::string folder, std::string name,
                       unsigned int configVersion)
    : _files(files),
      _folder(std::move(folder)),
      _name(std::move(name)),
      _config_version(configVersion) {}

std::string SectorFile::SlotPath(int slot) const {
  return _folder + "/" + _name + (slot == 0 ? ".a" : ".b");
}

SectorFile::LoadResult SectorFile::Load(std::string& data) {
  data.clear();
  _from_older_copy = false;
  bool found = false;
  int newest = -1;
  // A damaged slot that was, or may have been, written after the one loaded.
  bool damaged = false;
  bool damagedOdometerKnown = false;
  unsigned int damagedOdometer = 0;
  for (int slot = 0; slot < 2; ++slot) {
    std::string path = SlotPath(slot);
    std::string bytes;
    _exists[slot] = _files->ReadFile(path, kMaxSectorBytes, bytes);
    if (!_exists[slot]) {
      if (errno == ENOENT) continue;
      _exists[slot] = errno == EFBIG;
      fprintf(stderr, "SectorFile::Load - %s unreadable (%s), ignored\n", path.c_str(),
              strerror(errno));
      damaged = true;
      continue;
    }
    unsigned int odometer = 0;
    std::string slotData;
    std::string problem;
    if (!SectorCodec::Decode(bytes, _config_version, odometer, slotData, problem)) {
      fprintf(stderr, "SectorFile::Load - %s damaged (%s), ignored\n", path.c_str(),
              problem.c_str());
      damaged = true;
      damagedOdometerKnown = bytes.size() >= SectorCodec::kHeaderSize;
      damagedOdometer = odometer;
      continue;
    }
    if (!found || SectorCodec::IsNewer(odometer, _odometer)) {
      found = true;
      newest = slot;
      _odometer = odometer;
      data.swap(slotData);
    }
  }
  if (!found) {
    _odometer = 0;
    _next_slot = 0;
    return _exists[0] || _exists[1] ? LoadResult::kNoneValid : LoadResult::kMissing;
  }
  _next_slot = 1 - newest;
  _from_older_copy =
      damaged && (!damagedOdometerKnown || SectorCodec::IsNewer(damagedOdometer, _odometer));
  return LoadResult::kLoaded;
}

bool SectorFile::Write(const std::string& data) {
  unsigned int odometer = _odometer + 1;
  std::string sector = SectorCodec::Encode(odometer, _config_version, data);
  std::string path = SlotPath(_next_slot);
  const char* failed = nullptr;
  if (!_files->WriteAtomic(path, sector.data(), sector.size(), 0644, failed)) {
    _last_error = errno;
    std::string line = std::string("SectorFile::Write - ") + failed + " of " + path +
                       " failed: " + strerror(_last_error) + "\n";
    // A failure that repeats (a full disk, retried) is reported once.
    if (line != _last_failure) fprintf(stderr, "%s", line.c_str());
    _last_failure.swap(line);
    return false;
  }
  _last_error = 0;
  _last_failure.clear();
  _from_older_copy = false;
  _exists[_next_slot] = true;
  _odometer = odometer;
  _next_slot = 1 - _next_slot;
  _bytes_written += sector.size();
  return true;
}

bool SectorFile::Remove() {
  bool removed = true;
  for (int slot = 0; slot < 2; ++slot) {
    std::string path = SlotPath(slot);
    if (_files->Unlink(path) != 0 && errno != ENOENT) {
      fprintf(stderr, "SectorFile::Remove - %s: %s\n", path.c_str(), strerror(errno));
      removed = false;
    }
    _exists[slot] = false;
  }
  _files->SyncFolder(_folder);
  _odometer = 0;
  _next_slot = 0;
  return removed;
}
