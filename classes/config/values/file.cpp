#include "config/values/file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

bool File::write_file(const std::string& path, const char* data, unsigned int size) {
  int fd = open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC, 0664);
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
