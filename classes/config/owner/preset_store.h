// PresetStore holds the unit's saved user presets ("registers") 1 to 40,
// each as the encoded values of its register parameters, and keeps every
// preset in its own pair of sector files (preset_N.a/.b in the state
// folder), so a saved preset survives power cuts like the settings do.
// Preset 0, the factory preset, is never stored: it is the factory defaults.
//
// Ownership: the FileSystem is borrowed. Thread-safety: none; Load runs at
// start, everything else on the owner's register thread.
#ifndef CLASSES_CONFIG_OWNER_PRESET_STORE_H
#define CLASSES_CONFIG_OWNER_PRESET_STORE_H

#include <map>
#include <memory>
#include <string>

#include "config/owner/sector_file.h"

class FileSystem;

class PresetStore {
 public:
  static constexpr unsigned int kFactoryPreset = 0;
  static constexpr unsigned int kLastPreset = 40;

  PresetStore(FileSystem* files, std::string folder);
  PresetStore(const PresetStore&) = delete;
  PresetStore& operator=(const PresetStore&) = delete;

  // Reads every saved preset; a damaged one is reported and left empty.
  // Returns the number of presets found.
  unsigned int Load();
  // Keeps `values` as preset `number` (1 to 40) once written to its files.
  bool Save(unsigned int number, const std::string& values);
  // The values of preset `number`; false when it was never saved.
  bool Get(unsigned int number, std::string& values) const;
  // Whether preset `number` was read from its older copy because the newer
  // one is damaged (until it is saved again).
  bool FromOlderCopy(unsigned int number);
  // Forgets and removes every saved preset.
  bool Clear();

 private:
  SectorFile& FileOf(unsigned int number);

  FileSystem* _files;
  std::string _folder;
  std::map<unsigned int, std::string> _saved;
  std::map<unsigned int, std::unique_ptr<SectorFile>> _sector_files;
};

#endif  // CLASSES_CONFIG_OWNER_PRESET_STORE_H
