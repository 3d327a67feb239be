// SectorFile keeps one piece of the owner's state (the settings, or one
// preset) as two sector files in a folder, NAME.a and NAME.b, written in
// turn. Each write puts a whole sector with the next odometer into the slot
// that does not hold the newest valid sector: it writes and fsyncs a
// temporary file, renames it over that slot and fsyncs the folder, and only
// then counts it, so a crash or power cut during a write leaves both slots
// as they were and the newest valid sector whole. Load takes the valid
// sector with the newest odometer and reports a damaged one in one line.
// The folder's safety (owner, mode) is the caller's to check; the files are
// opened without following links (see file_system.h).
//
// Ownership: the FileSystem is borrowed and must outlive the object.
// Thread-safety: none; one thread uses an object (the settings' flush
// thread, or the register thread for presets).
#ifndef CLASSES_CONFIG_OWNER_SECTOR_FILE_H
#define CLASSES_CONFIG_OWNER_SECTOR_FILE_H

#include <cstdint>
#include <string>

class FileSystem;

class SectorFile {
 public:
  // The largest sector read back; a larger file is damaged.
  static constexpr size_t kMaxSectorBytes = 16u << 20;

  SectorFile(FileSystem* files, std::string folder, std::string name, unsigned int configVersion);
  SectorFile(const SectorFile&) = delete;
  SectorFile& operator=(const SectorFile&) = delete;

  enum class LoadResult { kLoaded, kMissing, kNoneValid };
  // Reads both slots and gives the newest valid sector's data. kMissing when
  // neither file exists; kNoneValid when files exist but none checks out.
  LoadResult Load(std::string& data);
  // Writes `data` as the next sector. False after a one-line report (not
  // repeated while the same failure repeats); the newest valid sector is
  // then still the previous one, and GetLastError gives the errno.
  bool Write(const std::string& data);
  // Removes both slots. False when a file could not be removed.
  bool Remove();

  [[nodiscard]] unsigned int GetOdometer() const { return _odometer; }
  // True after a Load that took the older copy because the other slot is
  // damaged and was (by its header), or may have been, written after it;
  // false again once a write succeeds.
  [[nodiscard]] bool FromOlderCopy() const { return _from_older_copy; }
  // Sector bytes handed to the file system by successful writes.
  [[nodiscard]] uint64_t GetBytesWritten() const { return _bytes_written; }
  [[nodiscard]] std::string SlotPath(int slot) const;
  [[nodiscard]] const std::string& GetFolder() const { return _folder; }
  // The errno of the last write when it failed, otherwise 0.
  [[nodiscard]] int GetLastError() const { return _last_error; }

 private:
  FileSystem* _files;
  std::string _folder;
  std::string _name;
  unsigned int _config_version;
  unsigned int _odometer = 0;  // of the newest valid sector
  int _next_slot = 0;
  bool _exists[2] = {false, false};
  bool _from_older_copy = false;
  uint64_t _bytes_written = 0;
  int _last_error = 0;
  std::string _last_failure;  // the line of the last failed write
};

#endif  // CLASSES_CONFIG_OWNER_SECTOR_FILE_H
