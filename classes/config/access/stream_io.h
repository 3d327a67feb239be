// Exact reads and whole writes on a connected stream descriptor, for the
// protocol endpoints. Unlike Socket::recv, a read asks only for the bytes
// still missing, so it never consumes the start of the next record.
#ifndef CLASSES_CONFIG_ACCESS_STREAM_IO_H
#define CLASSES_CONFIG_ACCESS_STREAM_IO_H

#include <chrono>
#include <cstddef>
#include <vector>

namespace zyn {
namespace config {
namespace access {

// Reads exactly `length` bytes. Returns the bytes read: `length` on success,
// fewer when the peer closed, or -1 on an error.
long RecvExact(int fd, char* buffer, size_t length);
// The point `ms` milliseconds from now; none (the far future) for 0 or less,
// or for more than a year.
inline std::chrono::steady_clock::time_point DeadlineAfter(long ms) {
  if (ms <= 0 || ms > 365L * 86400000L) return std::chrono::steady_clock::time_point::max();
  return std::chrono::steady_clock::now() + std::chrono::milliseconds(ms);
}
// As RecvExact, but waits for the bytes only until `deadline`. When the
// deadline passes first, returns the bytes read by then with *timedOut set.
long RecvExactBy(int fd, char* buffer, size_t length,
                 std::chrono::steady_clock::time_point deadline, bool* timedOut);
// Reads a stream through a small buffer, so that a record and whatever
// follows it arrive in one system call. Used by one thread at a time.
class StreamReader {
 public:
  static constexpr size_t kCapacity = 4096;

  explicit StreamReader(int fd) : _fd(fd) {}
  StreamReader(const StreamReader&) = delete;
  StreamReader& operator=(const StreamReader&) = delete;

  // As RecvExact: `length` on success, fewer when the peer closed, -1 on an
  // error.
  long Read(char* buffer, size_t length);
  // True when bytes already received wait in the buffer: a poll of the
  // descriptor would not see them.
  [[nodiscard]] bool Buffered() const { return _end > _start; }

 private:
  int _fd;
  std::vector<char> _buffer;  // allocated on the first read
  size_t _start = 0;
  size_t _end = 0;
};

// Writes all `length` bytes (without SIGPIPE); false on an error or a send
// time-out.
bool SendAll(int fd, const char* buffer, size_t length);

}  // namespace access
}  // namespace config
}  // namespace zyn

#endif  // CLASSES_CONFIG_ACCESS_STREAM_IO_H
