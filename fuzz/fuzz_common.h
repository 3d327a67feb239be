// What the fuzz targets share: quiet standard error, the unit's catalogue
// with store 0 held open for the whole run, and a socketpair over which one
// input is fed to a stream connection exactly as a client would send it.
//
// A target defines LLVMFuzzerTestOneInput and calls fuzz::Initialize from
// LLVMFuzzerInitialize; libFuzzer or the replay driver (replay_main.cpp)
// calls both. Inputs run one at a time on the calling thread; the only other
// thread is the peer of StreamExchange, joined before it returns, so no
// thread or descriptor outlives an input.
#ifndef FUZZ_FUZZ_COMMON_H
#define FUZZ_FUZZ_COMMON_H

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <thread>

#include "config/access/socket.h"
#include "config/config.h"
#include "config/config_factory_impl.h"
#include "config/descriptors/param_descriptors.h"
#include "config/values/class_factory.h"

namespace fuzz {

// Silences the library's error lines (bad input is what the targets feed)
// unless the run asks for -verbose=N with N > 0.
inline void QuietUnlessVerbose(int argc, char** argv) {
  for (int i = 1; i < argc; ++i)
    if (strncmp(argv[i], "-verbose=", 9) == 0 && strcmp(argv[i] + 9, "0") != 0) return;
  int null = open("/dev/null", O_WRONLY);
  if (null < 0) return;
  dup2(null, STDERR_FILENO);
  close(null);
}

// The catalogue, the class registry and an open store 0, made once. The
// store stays open so that connections to it do not rebuild it per input.
inline Config* Store() {
  static Config* store = [] {
    CreateDescriptors();
    ClassFactory::InitFactories();
    return ConfigFactoryImpl::GetInstance()->Connect("local:configid=0");
  }();
  return store;
}

inline void Initialize(int* argc, char*** argv, bool needsStore) {
  QuietUnlessVerbose(*argc, *argv);
  if (needsStore) Store();
}

// Feeds `size` bytes to a stream connection: `serve` gets a Socket holding
// one end of a fresh socketpair and must read it to the end (or give up) and
// close it; meanwhile a peer thread writes the input to the other end, shuts
// its writing side, and reads and discards every answer until the serving
// side has closed. Nothing blocks however much either side sends.
inline void StreamExchange(const uint8_t* data, size_t size,
                           const std::function<void(Socket*)>& serve) {
  int ends[2];
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
    perror("StreamExchange - socketpair");
    return;
  }
  int peer = ends[1];
  std::thread client([peer, data, size] {
    fcntl(peer, F_SETFL, fcntl(peer, F_GETFL) | O_NONBLOCK);
    size_t sent = 0;
    bool writing = true;
    if (size == 0) shutdown(peer, SHUT_WR);
    char sink[8192];
    for (;;) {
      pollfd p{peer, static_cast<short>(POLLIN | (writing && size > 0 ? POLLOUT : 0)), 0};
      if (poll(&p, 1, -1) < 0) break;
      if (writing && size > 0 && (p.revents & POLLOUT)) {
        ssize_t n = send(peer, data + sent, size - sent, MSG_NOSIGNAL);
        if (n > 0) sent += static_cast<size_t>(n);
        if (n < 0 && errno != EAGAIN) writing = false;
        if (sent == size) writing = false;
        if (!writing) shutdown(peer, SHUT_WR);
      }
      if (p.revents & (POLLIN | POLLHUP | POLLERR)) {
        ssize_t n = recv(peer, sink, sizeof sink, 0);
        if (n == 0 || (n < 0 && errno != EAGAIN)) break;  // the serving side has closed
      }
    }
  });
  auto* socket = new Socket(Socket::kLocalDomain, Socket::kStream);
  socket->adopt(ends[0]);
  serve(socket);
  client.join();
  close(peer);
}

}  // namespace fuzz

#endif  // FUZZ_FUZZ_COMMON_H
