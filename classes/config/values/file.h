// File holds the library's one file writer: a whole buffer written to a file
// and flushed to the storage before the call returns, so that a preset
// handed to the settings owner is complete on disk.
#ifndef CLASSES_CONFIG_VALUES_FILE_H
#define CLASSES_CONFIG_VALUES_FILE_H

#include <string>

class File {
 public:
  // Creates or truncates `path` (mode 0664), writes `size` bytes, fsyncs and
  // closes it. A symlink is not followed, and anything but a regular file
  // (a FIFO, a device) is refused as a failed open, untouched. False, with
  // the failing step on standard error, otherwise.
  static bool write_file(const std::string& path, const char* data, unsigned int size);
};

#endif  // CLASSES_CONFIG_VALUES_FILE_H
