#include "config/access/connection_gate.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>

namespace zyn {
namespace config {
namespace access {

namespace {

int OpenReserve() { return open("/dev/null", O_RDONLY | O_CLOEXEC); }

}  // namespace

ConnectionGate::ConnectionGate(const char* where) : _where(where), _reserve(OpenReserve()) {}

ConnectionGate::~ConnectionGate() {
  if (_reserve >= 0) close(_reserve);
}

bool ConnectionGate::Due(time_t& reported) {
  time_t now = time(nullptr);
  if (now == reported) return false;
  reported = now;
  return true;
}

bool ConnectionGate::Exhausted() {
  if (_reserve < 0) _reserve = OpenReserve();
  if (_reserve < 0) return false;  // nothing to refuse with: the accept loop waits
  int probe = fcntl(_reserve, F_DUPFD_CLOEXEC, 0);
  if (probe >= 0) {
    close(probe);
    return false;
  }
  return errno == EMFILE;
}

void ConnectionGate::TakeAndClose(int listenFd) {
  close(_reserve);
  int client = accept(listenFd, nullptr, nullptr);
  if (client >= 0) close(client);
  // Another thread may take the freed number meanwhile; the reserve is
  // then lost, and refusing waits for the next free descriptor.
  _reserve = OpenReserve();
  ++_no_descriptor;
  if (Due(_no_descriptor_reported))
    fprintf(stderr, "%s - out of descriptors, %lu clients refused so far\n", _where,
            _no_descriptor);
}

bool ConnectionGate::RefuseWhileExhausted(int listenFd) {
  if (!_exhausted) return false;
  _exhausted = Exhausted();
  if (_exhausted) TakeAndClose(listenFd);
  return _exhausted;
}

bool ConnectionGate::RefuseOnFailedAccept(int listenFd) {
  _exhausted = Exhausted();
  if (_exhausted) {
    TakeAndClose(listenFd);
  } else {
    _accept_delay_ms = std::min(kMaxAcceptDelayMs, std::max(1L, 2 * _accept_delay_ms));
  }
  return _exhausted;
}

bool ConnectionGate::RefuseOverLimit(int live) {
  if (_max_connections <= 0 || live < _max_connections) return false;
  ++_over_limit;
  if (Due(_over_limit_reported))
    fprintf(stderr, "%s - connection limit of %d reached, %lu clients refused so far\n", _where,
            _max_connections, _over_limit);
  return true;
}

}  // namespace access
}  // namespace config
}  // namespace zyn
