#include "config/values/file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

int File::open_regular(const std::string& path, int flags, mode_t mode) {
  int fd = open(path.c_str(), flags | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, mode);
  if (fd < 0) return -1;
  struct stat info;
  int error = fstat(fd, &info) != 0 ? errno : S_ISREG(info.st_mode) ? 0 : EINVAL;
  if (error == 0) return fd;
  close(fd);
  errno = error;
  return -1;
}

bool File::write_file(const std::string& path, const char* data, unsigned int size) {
  // Truncated only once it is known to be a regular file.
  int fd = open_regular(path, O_RDWR | O_CREAT, 0664);
  if (fd >= 0 && ftruncate(fd, 0) != 0) {
    int error = errno;
    close(fd);
    errno = error;
    fd = -1;
  }
  if (fd < 0) {
    perror("open failed");
    fprintf(stderr, "File::write_file - open %s failed\n", path.c_str());
    return false;
  }
  bool ok = true;
  unsigned int done = 0;
  while (done < size) {
    ssize_t n = write(fd, data + done, size - done);
    if (n <= 0) break;
    done += static_cast<unsigned int>(n);
  }
  if (done < size) {
    fprintf(stderr, "File::write_file - write failed to write enough data\n");
    ok = false;
  }
  if (fsync(fd) != 0) {
    perror("fsync failed");
    fprintf(stderr, "File::write_file - fsync of %s failed\n", path.c_str());
    ok = false;
  }
  if (close(fd) != 0) {
    perror("close failed");
    fprintf(stderr, "File::write_file - close of %s failed\n", path.c_str());
    ok = false;
  }
  return ok;
}
