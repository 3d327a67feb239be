// File holds the library's one file writer: a whole buffer written to a file
// and flushed to the storage before the call returns, so that a preset
// handed to the settings owner is complete on disk. The hand-over folder is
// shared with the owner, which runs as root, so files there are opened
// through open_regular.
#ifndef CLASSES_CONFIG_VALUES_FILE_H
#define CLASSES_CONFIG_VALUES_FILE_H

#include <sys/types.h>

#include <string>

class File {
 public:
  // Creates or truncates `path` (mode 0664), writes `size` bytes, fsyncs and
  // closes it. A symlink is not followed, and anything but a regular file
  // (a FIFO, a device) is refused as a failed open, untouched. False, with
  // the failing step on standard error, otherwise.
  static bool write_file(const std::string& path, const char* data, unsigned int size);
  // Opens `path` with O_NOFOLLOW and O_NONBLOCK added to `flags` and keeps
  // it only when it is a regular file: a descriptor, or -1 with errno set
  // (ELOOP for a symlink, EINVAL for a FIFO or device). Nothing is
  // truncated before the check.
  static int open_regular(const std::string& path, int flags, mode_t mode);
};

#endif  // CLASSES_CONFIG_VALUES_FILE_H
