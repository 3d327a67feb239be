#include "config/access/outbox.h"

#include <sys/socket.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

#include "config/access/send_loop.h"
#include "config/access/stream_io.h"

namespace zyn {
namespace config {
namespace access {

namespace {

std::atomic<long> s_drain_limit_ms{Outbox::kDefaultDrainLimitMs};

// The queue's clock: coarse (a few milliseconds) and cheap, as a limit of
// seconds needs.
timespec Now() {
  timespec now;
  clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
  return now;
}

long ElapsedMs(const timespec& since, const timespec& now) {
  return (now.tv_sec - since.tv_sec) * 1000L + (now.tv_nsec - since.tv_nsec) / 1000000L;
}

// An emptied block bigger than this is freed rather than kept for reuse, so
// an idle connection holds no more than a small buffer.
constexpr size_t kKeptSpare = 4096;

}  // namespace

void Outbox::SetDrainLimitMs(long ms) { s_drain_limit_ms = ms > 0 ? ms : kDefaultDrainLimitMs; }

long Outbox::DrainLimitMs() { return s_drain_limit_ms; }

std::shared_ptr<Outbox> Outbox::Make(int fd, FailureFunction failure, long drainLimitMs,
                                     size_t bound, SendLoop* loop) {
  if (setsockopt(fd, SOL_SOCKET, SO_SNDBUF, &kSocketSendBuffer, sizeof kSocketSendBuffer) != 0)
    perror("Outbox - unable to set the send buffer size");
  return std::shared_ptr<Outbox>(new Outbox(fd, std::move(failure), drainLimitMs, bound, loop));
}

Outbox::Outbox(int fd, FailureFunction failure, long drainLimitMs, size_t bound, SendLoop* loop)
    : _fd(fd),
      _failure(std::move(failure)),
      _drain_limit_ms(drainLimitMs > 0 ? drainLimitMs : DrainLimitMs()),
      _bound(bound),
      _loop(loop != nullptr ? *loop : SendLoop::Shared()) {}

Outbox::~Outbox() = default;

bool Outbox::Send(const char* bytes, size_t length) {
  std::unique_lock<std::mutex> hold(_lock);
  if (_closed || _cut_off) return false;
  if (!_sending && !_blocked && _queued == 0) return SendNowLocked(hold, bytes, length);
  if (!AppendLocked(bytes, length)) return false;
  if (!_sending && !_blocked) ScheduleLocked();
  return true;
}

bool Outbox::Send(std::shared_ptr<Outbox>& outbox, int fd, const FailureFunction& failure,
                  const char* bytes, size_t length) {
  if (outbox == nullptr) {
    ssize_t sent;
    do {
      sent = send(fd, bytes, length, MSG_DONTWAIT | MSG_NOSIGNAL);
    } while (sent < 0 && errno == EINTR);
    if (sent == static_cast<ssize_t>(length)) return true;
    if (sent < 0 && errno != EAGAIN && errno != EWOULDBLOCK) {
      char why[96];
      snprintf(why, sizeof why, "send failed: %s", FailureCause(errno));
      failure(why);
      return false;
    }
    size_t done = sent > 0 ? static_cast<size_t>(sent) : 0;
    bytes += done;
    length -= done;
    outbox = Make(fd, failure);
  }
  return outbox->Send(bytes, length);
}

bool Outbox::SendNowLocked(std::unique_lock<std::mutex>& hold, const char* bytes, size_t length) {
  _sending = true;
  hold.unlock();
  ssize_t sent = send(_fd, bytes, length, MSG_DONTWAIT | MSG_NOSIGNAL);
  int error = sent < 0 ? errno : 0;
  hold.lock();
  bool wouldBlock = error == EAGAIN || error == EWOULDBLOCK;
  if (sent < 0 && !wouldBlock && error != EINTR && !_closed && !_cut_off) {
    char why[96];
    snprintf(why, sizeof why, "send failed: %s", FailureCause(error));
    CutOffLocked(why);
    ReleaseTurnLocked();
    return false;
  }
  size_t done = sent > 0 ? static_cast<size_t>(sent) : 0;
  if (done < length && !_closed && !_cut_off) {
    // The rest goes first, before anything queued meanwhile.
    _writing.emplace_back(bytes + done, bytes + length);
    _offset = 0;
    if (_queued == 0) _undrained_since = Now();
    _queued += length - done;
    if (error != EINTR) _blocked = true;
  }
  ReleaseTurnLocked();
  return true;
}

bool Outbox::Post(const char* bytes, size_t length) {
  std::lock_guard<std::mutex> hold(_lock);
  if (_closed || _cut_off || !AppendLocked(bytes, length)) return false;
  // A busy sender finds the bytes itself; a blocked socket waits for epoll.
  if (!_sending && !_blocked) ScheduleLocked();
  return true;
}

bool Outbox::AppendLocked(const char* bytes, size_t length) {
  char why[96];
  if (_queued == 0) {
    _undrained_since = Now();
  } else if (_queued + length > _bound) {
    snprintf(why, sizeof why, "queue over %zu bytes", _bound);
    CutOffLocked(why);
    return false;
  } else if (ElapsedMs(_undrained_since, Now()) > _drain_limit_ms) {
    snprintf(why, sizeof why, "queue not drained for %ld ms", _drain_limit_ms);
    CutOffLocked(why);
    return false;
  }
  if (_queue.empty() || _queue.back().size() + length > kBlockSize) {
    _queue.emplace_back(std::move(_spare));
    _spare = std::vector<char>();
    // A backlog grows a block at a time, never by copying a block over.
    if (_queued > kKeptSpare) _queue.back().reserve(kBlockSize);
  }
  std::vector<char>& block = _queue.back();
  block.insert(block.end(), bytes, bytes + length);
  _queued += length;
  return true;
}

void Outbox::CutOffLocked(const char* why) {
  // Under the lock, so Close cannot return, and the connection go, while
  // the callback still uses it.
  if (_failure) _failure(why);
  _cut_off = true;
  _queue.clear();
  if (!_sending) {
    _writing.clear();
    _offset = 0;
  }
  _queued = 0;
}

bool Outbox::IsCutOff() {
  std::lock_guard<std::mutex> hold(_lock);
  return _cut_off;
}

void Outbox::Close() {
  std::unique_lock<std::mutex> hold(_lock);
  if (_closed) return;
  _closed = true;
  _queue.clear();
  _queued = 0;
  _turn_free.wait(hold, [this] { return !_sending; });
  _writing.clear();
  if (_slot >= 0) _loop.Detach(_slot, this, _fd);
}

void Outbox::ScheduleLocked() {
  if (_scheduled) return;
  _scheduled = true;
  if (_slot < 0) _slot = _loop.Attach(shared_from_this(), _fd);
  _loop.Schedule(_slot, shared_from_this());
}

void Outbox::ReleaseTurnLocked() {
  _sending = false;
  if (_closed || _cut_off) {
    _writing.clear();
    _offset = 0;
    _turn_free.notify_all();
    return;
  }
  if (_kick) {  // epoll said writable while the turn was taken
    _kick = false;
    _blocked = false;
  }
  if (_blocked) {
    // Watched for EPOLLOUT from now on.
    if (_slot < 0) _slot = _loop.Attach(shared_from_this(), _fd);
    return;
  }
  if (_queued != 0) ScheduleLocked();
}

void Outbox::RefillLocked() {
  if (!_writing.empty() || _queue.empty()) return;
  _writing.swap(_queue);
  _offset = 0;
}

int Outbox::SendWriting(int& error) {
  iovec parts[64];
  while (!_writing.empty()) {
    size_t count = 0;
    for (size_t i = 0; i < _writing.size() && count < sizeof parts / sizeof parts[0]; ++i) {
      const std::vector<char>& block = _writing[i];
      size_t skip = i == 0 ? _offset : 0;
      parts[count].iov_base = const_cast<char*>(block.data() + skip);
      parts[count].iov_len = block.size() - skip;
      ++count;
    }
    msghdr message{};
    message.msg_iov = parts;
    message.msg_iovlen = count;
    ssize_t sent = sendmsg(_fd, &message, MSG_DONTWAIT | MSG_NOSIGNAL);
    if (sent < 0) {
      error = errno;
      if (error == EINTR) continue;
      return error == EAGAIN || error == EWOULDBLOCK ? 0 : -1;
    }
    // Drops the blocks that went out; a partly sent one keeps its offset.
    size_t left = static_cast<size_t>(sent);
    size_t finished = 0;
    while (finished < _writing.size() && left >= _writing[finished].size() - _offset) {
      left -= _writing[finished].size() - _offset;
      _offset = 0;
      ++finished;
    }
    _offset += left;
    std::lock_guard<std::mutex> hold(_lock);
    _queued -= std::min(_queued, static_cast<size_t>(sent));
    if (finished != 0 && _spare.capacity() == 0 &&
        _writing[finished - 1].capacity() <= kKeptSpare) {
      _spare.swap(_writing[finished - 1]);
      _spare.clear();
    }
    _writing.erase(_writing.begin(), _writing.begin() + static_cast<long>(finished));
  }
  return 1;
}

void Outbox::Flush(bool writable) {
  {
    std::lock_guard<std::mutex> hold(_lock);
    if (writable) {
      if (_sending) {
        _kick = true;
        return;
      }
      _blocked = false;
    } else {
      _scheduled = false;
    }
    if (_closed || _cut_off || _sending || _blocked || _queued == 0) return;
    _sending = true;
    RefillLocked();
  }
  for (;;) {
    int error = 0;
    int result = SendWriting(error);
    std::lock_guard<std::mutex> hold(_lock);
    if (result > 0 && !_closed && !_cut_off && !_queue.empty()) {
      RefillLocked();
      continue;  // more came while sending
    }
    if (result < 0 && !_closed && !_cut_off) {
      char why[96];
      snprintf(why, sizeof why, "send failed: %s", FailureCause(error));
      CutOffLocked(why);
    }
    if (result == 0) _blocked = true;
    ReleaseTurnLocked();
    return;
  }
}

void Outbox::CheckDrained() {
  std::lock_guard<std::mutex> hold(_lock);
  if (_closed || _cut_off || _queued == 0) return;
  if (ElapsedMs(_undrained_since, Now()) <= _drain_limit_ms) return;
  char why[96];
  snprintf(why, sizeof why, "queue not drained for %ld ms", _drain_limit_ms);
  CutOffLocked(why);
}

}  // namespace access
}  // namespace config
}  // namespace zyn
