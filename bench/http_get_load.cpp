// An HTTP/1.1 GET load client, the same for every server it is pointed at:
// K keep-alive connections (one thread each, blocking reads) send GETs of
// one path one after another for S seconds. One line:
//   op=get connections=K seconds=S ops/s=... p50_us=... p99_us=... body_bytes=...
// A connection the server closes (after its keep-alive limit) is opened
// again; the reconnect counts in that request's latency.
// --probe prints only the body size of one GET, to make a file of that size.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "load_figures.h"

using Clock = std::chrono::steady_clock;

namespace {

struct Options {
  int port = 0;
  std::string path = "/";
  int connections = 4;
  double seconds = 5;
  bool probe = false;
};

int Connect(int port) {
  int fd = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
    close(fd);
    return -1;
  }
  int on = 1;
  setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  return fd;
}

// Sends `request` and reads one response whole; its status and body size.
// False when the connection failed or was closed.
bool Exchange(int fd, const std::string& request, std::string& buffer, int& status,
              size_t& bodyBytes) {
  if (send(fd, request.data(), request.size(), MSG_NOSIGNAL) !=
      static_cast<ssize_t>(request.size()))
    return false;
  char chunk[16384];
  size_t headEnd;
  while ((headEnd = buffer.find("\r\n\r\n")) == std::string::npos) {
    ssize_t n = recv(fd, chunk, sizeof chunk, 0);
    if (n <= 0) return false;
    buffer.append(chunk, static_cast<size_t>(n));
  }
  status = buffer.size() > 12 ? atoi(buffer.c_str() + 9) : 0;
  size_t length = 0;
  for (const char* name : {"Content-Length: ", "content-length: "}) {
    size_t at = buffer.find(name);
    if (at != std::string::npos && at < headEnd) length = strtoul(buffer.c_str() + at + 16, 0, 10);
  }
  size_t total = headEnd + 4 + length;
  while (buffer.size() < total) {
    ssize_t n = recv(fd, chunk, sizeof chunk, 0);
    if (n <= 0) return false;
    buffer.append(chunk, static_cast<size_t>(n));
  }
  buffer.erase(0, total);
  bodyBytes = length;
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  for (int i = 1; i < argc; ++i) {
    std::string arg = argv[i];
    bool value = i + 1 < argc;
    if (arg == "--probe")
      options.probe = true;
    else if (arg == "--port" && value)
      options.port = atoi(argv[++i]);
    else if (arg == "--path" && value)
      options.path = argv[++i];
    else if (arg == "--connections" && value)
      options.connections = atoi(argv[++i]);
    else if (arg == "--seconds" && value)
      options.seconds = atof(argv[++i]);
    else {
      fprintf(stderr,
              "usage: http_get_load --port P [--path PATH] [--connections K] [--seconds S] "
              "[--probe]\n");
      return 2;
    }
  }
  std::string request =
      "GET " + options.path + " HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: keep-alive\r\n\r\n";
  if (options.probe) {
    int fd = Connect(options.port);
    std::string buffer;
    int status = 0;
    size_t bytes = 0;
    if (fd < 0 || !Exchange(fd, request, buffer, status, bytes) || status != 200) return 1;
    close(fd);
    printf("%zu\n", bytes);
    return 0;
  }

  std::vector<std::vector<double>> latencies(options.connections);
  std::atomic<long> failures{0};
  std::atomic<size_t> bodyBytes{0};
  auto start = Clock::now();
  auto stop = start + std::chrono::duration_cast<Clock::duration>(
                          std::chrono::duration<double>(options.seconds));
  std::vector<std::thread> threads;
  for (int c = 0; c < options.connections; ++c) {
    threads.emplace_back([&, c] {
      int fd = Connect(options.port);
      std::string buffer;
      while (Clock::now() < stop) {
        auto sent = Clock::now();
        int status = 0;
        size_t bytes = 0;
        if (fd < 0 || !Exchange(fd, request, buffer, status, bytes)) {
          if (fd >= 0) close(fd);
          buffer.clear();
          fd = Connect(options.port);
          if (fd < 0 || !Exchange(fd, request, buffer, status, bytes)) {
            ++failures;
            continue;
          }
        }
        if (status != 200) ++failures;
        bodyBytes = bytes;
        latencies[c].push_back(
            std::chrono::duration<double, std::micro>(Clock::now() - sent).count());
      }
      if (fd >= 0) close(fd);
    });
  }
  for (std::thread& thread : threads) thread.join();
  double seconds = std::chrono::duration<double>(Clock::now() - start).count();
  std::vector<double> all;
  for (const auto& one : latencies) all.insert(all.end(), one.begin(), one.end());
  Figures figures = Summarise(all, seconds);
  printf(
      "op=get connections=%d seconds=%.1f ops/s=%.0f p50_us=%.1f p99_us=%.1f body_bytes=%zu "
      "failures=%ld\n",
      options.connections, seconds, figures.opsPerSecond, figures.p50, figures.p99,
      bodyBytes.load(), failures.load());
  return failures == 0 ? 0 : 1;
}
