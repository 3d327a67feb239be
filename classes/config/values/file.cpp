#include "config/values/file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace {

// Opens `path` for writing without following a symlink or blocking on a
// FIFO, and truncates it only once it is known to be a regular file: the
// hand-over folder is shared with the settings owner, which runs as root.
int OpenRegularForWriting(const std::string& path) {
  int fd = open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0664);
  if (fd < 0) return -1;
  struct stat info;
  int error = fstat(fd, &info) != 0    ? errno
              : !S_ISREG(info.st_mode) ? EINVAL
              : ftruncate(fd, 0) != 0  ? errno
                                       : 0;
  if (error == 0) return fd;
  close(fd);
  errno = error;
  return -1;
}

}  // namespace

bool File::write_file(const std::string& path, const char* data, unsigned int size) {
  int fd = OpenRegularForWriting(path);
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
