// Exact reads and whole writes on a connected stream descriptor, for the
// protocol endpoints. Unlike Socket::recv, a read asks only for the bytes
// still missing, so it never consumes the start of the next record.
#ifndef CLASSES_CONFIG_ACCESS_STREAM_IO_H
#define CLASSES_CONFIG_ACCESS_STREAM_IO_H

#include <cstddef>

namespace zyn {
namespace config {
namespace access {

// Reads exactly `length` bytes. Returns the bytes read: `length` on success,
// fewer when the peer closed, or -1 on an error.
long RecvExact(int fd, char* buffer, size_t length);
// Writes all `length` bytes (without SIGPIPE); false on an error or a send
// time-out.
bool SendAll(int fd, const char* buffer, size_t length);

}  // namespace access
}  // namespace config
}  // namespace zyn

#endif  // CLASSES_CONFIG_ACCESS_STREAM_IO_H
