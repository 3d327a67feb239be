#include "config/owner/file_system.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "config/values/file.h"

int FileSystem::Open(const std::string& path, int flags, mode_t mode) {
  return open(path.c_str(), flags | O_CLOEXEC, mode);
}

ssize_t FileSystem::Write(int fd, const char* data, size_t size) { return write(fd, data, size); }

int FileSystem::Fsync(int fd) { return fsync(fd); }

int FileSystem::Close(int fd) { return close(fd); }

int FileSystem::Unlink(const std::string& path) { return unlink(path.c_str()); }

int FileSystem::Rename(const std::string& from, const std::string& to) {
  return rename(from.c_str(), to.c_str());
}

bool FileSystem::CheckFolder(const std::string& path, std::string& why) {
  struct stat info;
  if (lstat(path.c_str(), &info) != 0) {
    why = strerror(errno);
    return false;
  }
  if (S_ISLNK(info.st_mode)) {
    why = "it is a symlink";
  } else if (!S_ISDIR(info.st_mode)) {
    why = "it is not a folder";
  } else if (info.st_uid != geteuid()) {
    why = "it is owned by uid " + std::to_string(info.st_uid) + ", not by configd's uid " +
          std::to_string(geteuid());
  } else if ((info.st_mode & S_IWOTH) != 0) {
    why = "it is writable by others";
  } else if (access(path.c_str(), R_OK | W_OK | X_OK) != 0) {
    why = strerror(errno);
  } else {
    return true;
  }
  return false;
}

bool FileSystem::MakePrivateFolder(const std::string& path, mode_t mode, std::string& why) {
  // The mode is set again after mkdir, which the process's umask narrows.
  if (mkdir(path.c_str(), mode) == 0) {
    if (chmod(path.c_str(), mode) != 0) {
      why = strerror(errno);
      return false;
    }
  } else if (errno != EEXIST) {
    why = strerror(errno);
    return false;
  }
  return CheckFolder(path, why);
}

int FileSystem::OpenRegular(const std::string& path, int flags, mode_t mode) {
  return File::open_regular(path, flags, mode);
}

bool FileSystem::WriteAtomic(const std::string& path, const char* data, size_t size, mode_t mode,
                             const char*& step) {
  std::string temporary = path + ".tmp";
  step = "open";
  // Something planted in the file's place (a symlink, a FIFO) is refused,
  // not replaced: it says that someone else writes in this folder.
  int existing = OpenRegular(path, O_RDONLY, 0);
  if (existing < 0 && errno != ENOENT) return false;
  if (existing >= 0) Close(existing);
  // O_EXCL never follows a link; a leftover temporary (ours, from a crash,
  // or planted) is removed once.
  const int flags = O_WRONLY | O_CREAT | O_EXCL;
  int fd = OpenRegular(temporary, flags, mode);
  if (fd < 0 && errno == EEXIST && Unlink(temporary) == 0) fd = OpenRegular(temporary, flags, mode);
  if (fd < 0) return false;
  bool written = false;
  if (fchmod(fd, mode) != 0) {
    step = "open";
  } else if (!WriteAll(fd, data, size)) {
    step = "write";
  } else if (Fsync(fd) != 0) {
    step = "fsync";
  } else {
    written = true;
  }
  int error = errno;
  if (Close(fd) != 0 && written) {
    written = false;
    step = "close";
    error = errno;
  }
  if (written && Rename(temporary, path) != 0) {
    written = false;
    step = "rename";
    error = errno;
  }
  if (!written) {
    Unlink(temporary);
    errno = error;
    return false;
  }
  size_t slash = path.rfind('/');
  if (!SyncFolder(slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash))) {
    step = "folder fsync";
    return false;
  }
  return true;
}

bool FileSystem::ReadFile(const std::string& path, size_t limit, std::string& bytes) {
  bytes.clear();
  int fd = OpenRegular(path, O_RDONLY, 0);
  if (fd < 0) return false;
  struct stat info;
  if (fstat(fd, &info) != 0) {
    int saved = errno;
    close(fd);
    errno = saved;
    return false;
  }
  if (static_cast<unsigned long long>(info.st_size) > limit) {
    close(fd);
    errno = EFBIG;
    return false;
  }
  bytes.resize(static_cast<size_t>(info.st_size));
  size_t done = 0;
  while (done < bytes.size()) {
    ssize_t n = read(fd, &bytes[done], bytes.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) break;
    done += static_cast<size_t>(n);
  }
  close(fd);
  bytes.resize(done);  // a file that shrank while read is taken as read
  return true;
}

bool FileSystem::MakeFolders(const std::string& path) {
  for (size_t slash = path.find('/', 1);; slash = path.find('/', slash + 1)) {
    std::string part = path.substr(0, slash);
    if (!part.empty() && mkdir(part.c_str(), 0755) != 0 && errno != EEXIST) return false;
    if (slash == std::string::npos) break;
  }
  struct stat info;
  return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool FileSystem::SyncFolder(const std::string& path) {
  int fd = Open(path, O_RDONLY | O_DIRECTORY, 0);
  if (fd < 0) return false;
  bool synced = Fsync(fd) == 0;
  close(fd);
  return synced;
}

bool FileSystem::WriteAll(int fd, const char* data, size_t size) {
  size_t done = 0;
  while (done < size) {
    ssize_t n = Write(fd, data + done, size - done);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    done += static_cast<size_t>(n);
  }
  return true;
}

FileSystem* FileSystem::Default() {
  static FileSystem forwarding;
  return &forwarding;
}
