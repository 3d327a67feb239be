// What the fuzz targets share: the unit's catalogue with store 0 held open
// for the whole run, and a socketpair over which one input is fed to a
// stream connection exactly as a client would send it.
//
// A target defines LLVMFuzzerTestOneInput and calls fuzz::Initialize from
// LLVMFuzzerInitialize; libFuzzer or the replay driver (replay_main.cpp)
// calls both. The library's error lines for bad input are silenced by the
// caller: libFuzzer's -close_fd_mask=2, or the replay driver. Inputs run
// one at a time on the calling thread; the only other thread is the
// StreamPeer, made once, which finishes its part of an exchange before
// StreamExchange returns: no descriptor outlives an input.
#ifndef FUZZ_FUZZ_COMMON_H
#define FUZZ_FUZZ_COMMON_H

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <condition_variable>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <mutex>
#include <thread>

#include "config/access/socket.h"
#include "config/config.h"
#include "config/config_factory_impl.h"
#include "config/descriptors/param_descriptors.h"
#include "config/values/class_factory.h"

namespace fuzz {

// The catalogue, the class registry and an open store 0, made once. The
// store stays open so that connections to it do not rebuild it per input,
// and it is the only store: a Connect naming another config ID takes the
// refusal path (as past configd's store limit) instead of building a whole
// store per input.
inline Config* Store() {
  static Config* store = [] {
    CreateDescriptors();
    ClassFactory::InitFactories();
    ConfigFactoryImpl::GetInstance()->SetMaxStores(1);
    return ConfigFactoryImpl::GetInstance()->Connect("local:configid=0");
  }();
  return store;
}

inline void Initialize(bool needsStore) {
  if (needsStore) Store();
}

// The client side of StreamExchange: one thread for the whole run (a thread
// per input costs more than the input under the sanitizers), handed one
// exchange at a time under `_lock`.
class StreamPeer {
 public:
  static StreamPeer& Get() {
    static StreamPeer* peer = new StreamPeer();  // lives until the process ends
    return *peer;
  }

  // Starts the client's side of one exchange on `fd`.
  void Begin(int fd, const uint8_t* data, size_t size) {
    std::lock_guard<std::mutex> hold(_lock);
    _fd = fd;
    _data = data;
    _size = size;
    _busy = true;
    _changed.notify_all();
  }
  // Waits until the serving side has closed and the client has seen it.
  void End() {
    std::unique_lock<std::mutex> hold(_lock);
    _changed.wait(hold, [this] { return !_busy; });
  }

 private:
  StreamPeer() {
    std::thread([this] { Serve(); }).detach();
  }

  void Serve() {
    for (;;) {
      std::unique_lock<std::mutex> hold(_lock);
      _changed.wait(hold, [this] { return _busy; });
      int fd = _fd;
      const uint8_t* data = _data;
      size_t size = _size;
      hold.unlock();
      Talk(fd, data, size);
      hold.lock();
      _busy = false;
      _changed.notify_all();
    }
  }

  // Writes the input, shuts the writing side, and reads and discards every
  // answer until the serving side has closed. Nothing blocks however much
  // either side sends.
  static void Talk(int fd, const uint8_t* data, size_t size) {
    fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) | O_NONBLOCK);
    size_t sent = 0;
    bool writing = size > 0;
    if (!writing) shutdown(fd, SHUT_WR);
    char sink[8192];
    for (;;) {
      pollfd p{fd, static_cast<short>(POLLIN | (writing ? POLLOUT : 0)), 0};
      if (poll(&p, 1, -1) < 0) return;
      if (writing && (p.revents & POLLOUT)) {
        ssize_t n = send(fd, data + sent, size - sent, MSG_NOSIGNAL);
        if (n > 0) sent += static_cast<size_t>(n);
        if ((n < 0 && errno != EAGAIN) || sent == size) {
          writing = false;
          shutdown(fd, SHUT_WR);
        }
      }
      if (p.revents & (POLLIN | POLLHUP | POLLERR)) {
        ssize_t n = recv(fd, sink, sizeof sink, 0);
        if (n == 0 || (n < 0 && errno != EAGAIN)) return;  // the serving side has closed
      }
    }
  }

  std::mutex _lock;
  std::condition_variable _changed;
  int _fd = -1;  // guarded by _lock, as are the next three
  const uint8_t* _data = nullptr;
  size_t _size = 0;
  bool _busy = false;
};

// Feeds `size` bytes to a stream connection: `serve` gets a Socket holding
// one end of a fresh socketpair and must read it to the end (or give up) and
// close it, while the StreamPeer plays the client on the other end.
inline void StreamExchange(const uint8_t* data, size_t size,
                           const std::function<void(Socket*)>& serve) {
  int ends[2];
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
    perror("StreamExchange - socketpair");
    return;
  }
  StreamPeer& peer = StreamPeer::Get();
  peer.Begin(ends[1], data, size);
  auto* socket = new Socket(Socket::kLocalDomain, Socket::kStream);
  socket->adopt(ends[0]);
  serve(socket);
  peer.End();
  close(ends[1]);
}

}  // namespace fuzz

#endif  // FUZZ_FUZZ_COMMON_H
