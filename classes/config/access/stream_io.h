// Exact reads and whole writes on a connected stream descriptor, for the
// protocol endpoints. Unlike Socket::recv, a read asks only for the bytes
// still missing, so it never consumes the start of the next record.
#ifndef CLASSES_CONFIG_ACCESS_STREAM_IO_H
#define CLASSES_CONFIG_ACCESS_STREAM_IO_H

#include <chrono>
#include <cstddef>
#include <cstring>
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
//
// With a read time-out, a record must arrive whole within the time-out
// after its first byte: a peer that stalls mid-record cannot hold its
// connection (and a connection slot) for ever. The wait for a record's
// first byte has no limit, so a client may stay idle between records.
class StreamReader {
 public:
  static constexpr size_t kCapacity = 4096;

  explicit StreamReader(int fd) : _fd(fd) {}
  StreamReader(const StreamReader&) = delete;
  StreamReader& operator=(const StreamReader&) = delete;

  // The longest a started record may take to arrive whole; 0 (the default):
  // no limit.
  void SetReadTimeoutMs(long ms) { _timeout_ms = ms; }
  // The next Read begins a record: its wait for the first byte has no
  // limit, and the record's time-out starts with that byte.
  void StartRecord() {
    _deadline = std::chrono::steady_clock::time_point::max();
    _started = false;
    _timed_out = false;
  }
  // As RecvExact: `length` on success, fewer when the peer closed or the
  // record's time-out passed (TimedOut tells), -1 on an error.
  long Read(char* buffer, size_t length);
  // True when the last Read stopped because the record's time-out passed.
  [[nodiscard]] bool TimedOut() const { return _timed_out; }
  // True when bytes already received wait in the buffer: a poll of the
  // descriptor would not see them.
  [[nodiscard]] bool Buffered() const { return _end > _start; }

 private:
  int _fd;
  std::vector<char> _buffer;  // allocated on the first read
  size_t _start = 0;
  size_t _end = 0;
  long _timeout_ms = 0;
  bool _started = false;  // a byte of the current record has been read
  bool _timed_out = false;
  std::chrono::steady_clock::time_point _deadline = std::chrono::steady_clock::time_point::max();
};

// The cause of a failed transfer for a message: the system's text for
// `error`, or, for 0 (no system call failed: the peer closed, the record
// was short or the connection had already been cut off), saying so rather
// than "Success".
inline const char* FailureCause(int error) {
  return error != 0 ? strerror(error) : "connection closed or record incomplete";
}
// Writes all `length` bytes (without SIGPIPE); false on an error or a send
// time-out.
bool SendAll(int fd, const char* buffer, size_t length);

}  // namespace access
}  // namespace config
}  // namespace zyn

#endif  // CLASSES_CONFIG_ACCESS_STREAM_IO_H
