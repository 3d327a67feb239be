#include "config/owner/preset_store.h"

#include "config/owner/sector_codec.h"

PresetStore::PresetStore(FileSystem* files, std::string folder)
    : _files(files), _folder(std::move(folder)) {}

SectorFile& PresetStore::FileOf(unsigned int number) {
  std::unique_ptr<SectorFile>& file = _sector_files[number];
  if (!file) {
    file = std::make_unique<SectorFile>(_files, _folder, "preset_" + std::to_string(number),
                                        SectorCodec::kPresetVersion);
  }
  return *file;
}

unsigned int PresetStore::Load() {
  _saved.clear();
  for (unsigned int number = 1; number <= kLastPreset; ++number) {
    std::string values;
    if (FileOf(number).Load(values) == SectorFile::LoadResult::kLoaded) _saved[number] = values;
  }
  return static_cast<unsigned int>(_saved.size());
}

bool PresetStore::Save(unsigned int number, const std::string& values) {
  if (number == kFactoryPreset || number > kLastPreset) return false;
  if (!FileOf(number).Write(values)) return false;
  _saved[number] = values;
  return true;
}

bool PresetStore::Get(unsigned int number, std::string& values) const {
  auto found = _saved.find(number);
  if (found == _saved.end()) return false;
  values = found->second;
  return true;
}

bool PresetStore::FromOlderCopy(unsigned int number) {
  return _saved.count(number) != 0 && FileOf(number).FromOlderCopy();
}

bool PresetStore::Clear() {
  bool removed = true;
  for (unsigned int number = 1; number <= kLastPreset; ++number)
    removed = FileOf(number).Remove() && removed;
  _saved.clear();
  return removed;
}
