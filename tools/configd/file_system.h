// FileSystem is the owner's narrow view of the files it keeps its state in:
// open, write, fsync, close, read a whole file, remove, and make a folder.
// The default object forwards each call to the system; a test subclasses it
// and overrides a step to make writes or flushes fail or stop halfway, so
// that the writers above it can be driven through every fault.
//
// Stateless apart from what a subclass adds; the forwarding calls are safe
// from any thread.
#ifndef TOOLS_CONFIGD_FILE_SYSTEM_H
#define TOOLS_CONFIGD_FILE_SYSTEM_H

#include <sys/types.h>

#include <string>

class FileSystem {
 public:
  FileSystem() = default;
  virtual ~FileSystem() = default;
  FileSystem(const FileSystem&) = delete;
  FileSystem& operator=(const FileSystem&) = delete;

  // The system's calls: a descriptor or -1, a byte count or -1, 0 or -1,
  // with errno set on failure.
  virtual int Open(const std::string& path, int flags, mode_t mode);
  virtual ssize_t Write(int fd, const char* data, size_t size);
  virtual int Fsync(int fd);
  virtual int Close(int fd);
  virtual int Unlink(const std::string& path);

  // Reads the whole file into `bytes`, refusing one larger than `limit`.
  // False when it is missing, unreadable or too large (errno tells which;
  // EFBIG for too large).
  virtual bool ReadFile(const std::string& path, size_t limit, std::string& bytes);
  // Creates `path` and any missing parents (mode 0755). True when it exists
  // as a folder afterwards.
  virtual bool MakeFolders(const std::string& path);
  // Flushes the folder's entries (a created or removed file) to storage.
  virtual bool SyncFolder(const std::string& path);

  // Writes all of `size` bytes, retrying short writes. False on the first
  // failed or empty write.
  bool WriteAll(int fd, const char* data, size_t size);

  // The process-wide forwarding instance.
  static FileSystem* Default();
};

#endif  // TOOLS_CONFIGD_FILE_SYSTEM_H
