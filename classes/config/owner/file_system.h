// FileSystem is the owner's narrow view of the files it keeps its state in:
// open, write, fsync, close, read a whole file, remove, and make a folder.
// The default object forwards each call to the system; a test subclasses it
// and overrides a step to make writes or flushes fail or stop halfway, so
// that the writers above it can be driven through every fault.
//
// It is also the one place where the owner's folders are held safe. configd
// runs as root, and its folders may sit in shared places (the preset
// hand-over folder in /tmp), so a folder is used only when CheckFolder
// passes it (a real folder, not a symlink, owned by configd's effective
// user, not writable by others); every file in it is opened with
// O_NOFOLLOW and O_NONBLOCK and used only when fstat says it is a regular
// file (a planted symlink is never followed, a planted FIFO never blocks);
// and a file is replaced by writing a temporary file beside it and renaming
// it over the old one, so a reader never sees half a file.
//
// Stateless apart from what a subclass adds; the forwarding calls are safe
// from any thread.
#ifndef CLASSES_CONFIG_OWNER_FILE_SYSTEM_H
#define CLASSES_CONFIG_OWNER_FILE_SYSTEM_H

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
  virtual int Rename(const std::string& from, const std::string& to);

  // Whether `path` is a folder configd may keep files in: false with the
  // reason in `why` ("it is a symlink", "it is writable by others", or the
  // system's error) when it is missing, a symlink, not a folder, owned by
  // another user, writable by others, or not readable and writable.
  static bool CheckFolder(const std::string& path, std::string& why);
  // Creates `path` (its parent must exist) with exactly `mode` when it is
  // missing, then CheckFolder. False with the reason in `why`.
  static bool MakePrivateFolder(const std::string& path, mode_t mode, std::string& why);

  // Opens a file without following a symlink and without blocking, and
  // keeps it only when it is a regular file: a descriptor, or -1 with errno
  // set (ELOOP for a symlink, EINVAL when not a regular file).
  int OpenRegular(const std::string& path, int flags, mode_t mode);
  // Replaces `path` (missing, or a regular file; anything else is refused)
  // with `size` bytes of `data`, created with exactly `mode`: writes and
  // fsyncs a temporary file in the same folder, renames it over `path` and
  // fsyncs the folder. False with errno set and the failing step ("open",
  // "write", "fsync", "close", "rename", "folder fsync") in `step`; `path`
  // then still holds what it held (after a failed folder fsync, either).
  bool WriteAtomic(const std::string& path, const char* data, size_t size, mode_t mode,
                   const char*& step);

  // Reads the whole regular file into `bytes` (through OpenRegular),
  // refusing one larger than `limit`. False when it is missing, unreadable,
  // not a regular file or too large (errno tells which; EFBIG for too
  // large).
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

#endif  // CLASSES_CONFIG_OWNER_FILE_SYSTEM_H
