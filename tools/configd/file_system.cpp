#include "configd/file_system.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

int FileSystem::Open(const std::string& path, int flags, mode_t mode) {
  return open(path.c_str(), flags | O_CLOEXEC, mode);
}

ssize_t FileSystem::Write(int fd, const char* data, size_t size) { return write(fd, data, size); }

int FileSystem::Fsync(int fd) { return fsync(fd); }

int FileSystem::Close(int fd) { return close(fd); }

int FileSystem::Unlink(const std::string& path) { return unlink(path.c_str()); }

bool FileSystem::ReadFile(const std::string& path, size_t limit, std::string& bytes) {
  bytes.clear();
  int fd = Open(path, O_RDONLY, 0);
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
