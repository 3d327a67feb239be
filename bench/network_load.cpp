// Load tool for the network transport. It starts a store, the local socket
// server and the TCP and UDP network servers in this process on free
// loopback ports (events multicast on the loopback interface to a free
// port), and prints one line per case, each against a baseline measured in
// the same run:
//   udp_get vs udp_echo      a UDP Get against a bare 40/44-byte UDP echo
//   tcp_get vs socket_get    a network TCP Get against the local socket Get
//   fanout udp vs tcp        one Set to 100 listening clients: time until the
//                            last client's listener has run
// Each case runs for S seconds (--seconds, default 3); a Get case and its
// baseline alternate in 100 ms slices, so that both see the same load.
// Ratios are ours / baseline: for ops/s above 1 is better, for latencies
// below 1 is better. A fan-out round that not every client heard (a lost
// datagram) is counted, not timed.
// Usage: network_load [--seconds S] [--help]
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "config/access/network_factory.h"
#include "config/access/network_server.h"
#include "config/access/network_tcp_client.h"
#include "config/access/network_udp_client.h"
#include "config/access/socket.h"
#include "config/access/socket_client.h"
#include "config/access/socket_factory.h"
#include "config/access/socket_server.h"
#include "config/config_factory_impl.h"
#include "config/descriptors/param_descriptors.h"
#include "load_figures.h"
#include "load_parameter.h"

using namespace zyn::boxline::config::access;
using Clock = std::chrono::steady_clock;

namespace {

constexpr int kFanout = 100;

// Times calls of `ours` and of `base` for `seconds` each, in microseconds,
// in alternating slices of 100 ms so that a change in the machine's load
// falls on both alike, after a warm-up of a tenth of that. A failed call
// ends that side (it would return at once and inflate the rate) and is
// counted in `failures`. Returns {ours, base}.
std::pair<Figures, Figures> TimePair(double seconds, int& failures,
                                     const std::function<bool()>& ours,
                                     const std::function<bool()>& base) {
  auto span = [](double s) {
    return std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(s));
  };
  for (const auto* op : {&ours, &base})
    for (Clock::time_point end = Clock::now() + span(seconds / 20); Clock::now() < end;)
      if (!(*op)()) break;
  struct Side {
    const std::function<bool()>* op;
    std::vector<double> samples;
    Clock::duration spent{};
    bool failed = false;
  } sides[2] = {{&ours, {}, {}, false}, {&base, {}, {}, false}};
  const Clock::duration slice = std::chrono::milliseconds(100), total = span(seconds);
  while ((sides[0].spent < total && !sides[0].failed) ||
         (sides[1].spent < total && !sides[1].failed)) {
    for (Side& side : sides) {
      if (side.spent >= total || side.failed) continue;
      Clock::time_point start = Clock::now(), end = start + std::min(slice, total - side.spent);
      for (Clock::time_point before = start; before < end; before = Clock::now()) {
        if (!(*side.op)()) {
          ++failures;
          side.failed = true;
          break;
        }
        side.samples.push_back(
            std::chrono::duration<double, std::micro>(Clock::now() - before).count());
      }
      side.spent += Clock::now() - start;
    }
  }
  auto figures = [](Side& side) {
    return Summarise(std::move(side.samples), std::chrono::duration<double>(side.spent).count());
  };
  return {figures(sides[0]), figures(sides[1])};
}

double Ratio(double ours, double base) { return base > 0 ? ours / base : 0.0; }

void Print(const char* name, const Figures& measured, const char* baseName, const Figures& base,
           int failures) {
  printf(
      "case=%s ops/s=%.0f p50_us=%.1f p99_us=%.1f | %s ops/s=%.0f p50_us=%.1f p99_us=%.1f | "
      "%s/%s ops/s=%.2fx (higher is better) p50=%.2fx p99=%.2fx (lower is better) failed=%d\n",
      name, measured.opsPerSecond, measured.p50, measured.p99, baseName, base.opsPerSecond,
      base.p50, base.p99, name, baseName, Ratio(measured.opsPerSecond, base.opsPerSecond),
      Ratio(measured.p50, base.p50), Ratio(measured.p99, base.p99), failures);
  fflush(stdout);
}

// A bare UDP responder: a 44-byte answer to every datagram.
class UdpEcho {
 public:
  UdpEcho() {
    fd = ::socket(AF_INET, SOCK_DGRAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
    socklen_t length = sizeof address;
    getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length);
    port = ntohs(address.sin_port);
    responder = std::thread([this] {
      char request[64], response[44] = {};
      for (;;) {
        sockaddr_in from{};
        socklen_t size = sizeof from;
        ssize_t n =
            ::recvfrom(fd, request, sizeof request, 0, reinterpret_cast<sockaddr*>(&from), &size);
        if (n <= 0) return;
        ::sendto(fd, response, sizeof response, 0, reinterpret_cast<sockaddr*>(&from), size);
      }
    });
  }
  ~UdpEcho() {
    ::shutdown(fd, SHUT_RDWR);
    ::close(fd);
    responder.join();
  }
  int fd;
  int port = 0;
  std::thread responder;
};

// Counts the clients whose listener has seen the awaited value.
class FanoutListener : public ConfigEventListener {
 public:
  struct Round {
    std::mutex lock;
    std::condition_variable done;
    unsigned int value = 0;
    int seen = 0;
  };
  explicit FanoutListener(Round& round) : _round(round) {}
  bool ParamChanged(eParam_t id, unsigned int value, timeval) override {
    std::lock_guard<std::mutex> hold(_round.lock);
    if (id == kLoadInteger && value == _round.value && ++_round.seen == kFanout)
      _round.done.notify_all();
    return true;
  }
  bool ParamChanged(eParam_t, std::string, timeval) override { return true; }

 private:
  Round& _round;
};

// Sets a new value through `writer`, round after round for `seconds`, and
// times each until every one of the listening clients has heard it
// (milliseconds). A round that not every client heard within a second (a
// lost datagram) has no time: it is counted in `lost`. Untimed rounds come
// first, until one reaches every client (the multicast clients' receivers
// are up).
Figures Fanout(Config* writer, std::vector<NetworkClient*>& clients, double seconds, int& lost) {
  FanoutListener::Round round;
  std::vector<std::unique_ptr<FanoutListener>> listeners;
  for (NetworkClient* client : clients) {
    listeners.emplace_back(new FanoutListener(round));
    client->AddConfigEventListener(listeners.back().get());
    // A TCP Get answered after the Add Listener Request: registered.
    if (dynamic_cast<NetworkTCPClient*>(client) != nullptr) client->Get(kLoadInteger);
  }
  static uint64_t sets = 1;  // the store starts at 0: the first Set changes it
  auto oneRound = [&] {
    const unsigned int value = LoadValue(sets++, RangeOf(kLoadInteger));
    {
      std::lock_guard<std::mutex> hold(round.lock);
      round.value = value;
      round.seen = 0;
    }
    writer->Set(kLoadInteger, value);
    std::unique_lock<std::mutex> hold(round.lock);
    return round.done.wait_for(hold, std::chrono::seconds(1),
                               [&] { return round.seen == kFanout; });
  };
  for (int i = 0; i < 20 && !oneRound(); ++i) {
  }
  std::vector<double> samples;
  lost = 0;
  Clock::time_point start = Clock::now();
  Clock::time_point end =
      start + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
  while (Clock::now() < end) {
    Clock::time_point before = Clock::now();
    if (oneRound())
      samples.push_back(std::chrono::duration<double, std::milli>(Clock::now() - before).count());
    else
      ++lost;
  }
  double took = std::chrono::duration<double>(Clock::now() - start).count();
  for (size_t i = 0; i < clients.size(); ++i)
    clients[i]->RemoveConfigEventListener(listeners[i].get());
  return Summarise(samples, took);
}

NetworkServer* StartServer(int type, int eventPort) {
  NetworkServer* server = new NetworkServer(AF_INET, type, 0);
  server->SetMulticastPort(eventPort);
  if (!server->Init() || !server->Start()) {
    fprintf(stderr, "network_load - server did not start\n");
    exit(1);
  }
  return server;
}

}  // namespace

int main(int argc, char** argv) {
  double seconds = 3;
  const char* usage = "usage: network_load [--seconds S] [--help]\n";
  for (int i = 1; i < argc; ++i) {
    char* end = nullptr;
    if (strcmp(argv[i], "--help") == 0) {
      printf("%s", usage);
      return 0;
    } else if (strcmp(argv[i], "--seconds") == 0 && i + 1 < argc &&
               (seconds = strtod(argv[++i], &end)) > 0 && *end == '\0') {
      continue;
    }
    fprintf(stderr, "%s", usage);
    return 2;
  }
  AddLoadIntegerDescriptor();
  IndexDescriptorNames();
  Config* store = ConfigFactoryImpl::GetInstance()->Connect("local:configid=0");

  // The event port: kept by a socket of our own that never reads.
  Socket eventPort(Socket::kInternetDomain, Socket::kDatagram);
  eventPort.create();
  eventPort.bind("", 0);
  sockaddr_in bound{};
  socklen_t length = sizeof bound;
  getsockname(eventPort.get_fd(), reinterpret_cast<sockaddr*>(&bound), &length);
  int events = ntohs(bound.sin_port);

  NetworkServer* tcpServer = StartServer(SOCK_STREAM, events);
  NetworkServer* udpServer = StartServer(SOCK_DGRAM, events);
  zyn::config::access::SocketServer* socketServer = new zyn::config::access::SocketServer(0);
  if (!socketServer->Init() || !socketServer->Start()) return 1;
  std::string loopback = "127.0.0.1:";
  NetworkFactory factory;
  std::unique_ptr<NetworkClient> udp(
      factory.Connect("udp://" + loopback + std::to_string(udpServer->GetPort())));
  std::unique_ptr<NetworkClient> tcp(
      factory.Connect("tcp://" + loopback + std::to_string(tcpServer->GetPort())));
  zyn::config::access::SocketFactory socketFactory;
  std::unique_ptr<Config> local(
      socketFactory.Connect("socket://" + loopback + std::to_string(socketServer->GetPort())));
  if (!udp || !tcp || !local) return 1;

  {
    UdpEcho echo;
    int fd = ::socket(AF_INET, SOCK_DGRAM, 0);
    sockaddr_in to{};
    to.sin_family = AF_INET;
    to.sin_port = htons(static_cast<uint16_t>(echo.port));
    to.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ::connect(fd, reinterpret_cast<sockaddr*>(&to), sizeof to);
    char request[40] = {}, response[44];
    int failures = 0;
    unsigned int value = 0;
    auto [get, bare] = TimePair(
        seconds, failures, [&] { return udp->Get(kLoadInteger, value); },
        [&] {
          return ::send(fd, request, sizeof request, 0) == sizeof request &&
                 ::recv(fd, response, sizeof response, 0) == sizeof response;
        });
    Print("udp_get", get, "udp_echo", bare, failures);
    ::close(fd);
  }
  int failures = 0;
  unsigned int value = 0;
  auto [tcpGet, socketGet] = TimePair(
      seconds, failures, [&] { return tcp->Get(kLoadInteger, value); },
      [&] { return local->Get(kLoadInteger, value); });
  Print("tcp_get", tcpGet, "socket_get", socketGet, failures);

  std::vector<NetworkClient*> multicast, streams;
  for (int i = 0; i < kFanout; ++i) {
    multicast.push_back(factory.Connect("multicast://" + loopback + std::to_string(events)));
    streams.push_back(factory.Connect("tcp://" + loopback + std::to_string(tcpServer->GetPort())));
  }
  if (!eventPort.add_membership(kXConfigEventGroup, kXConfigEventInterface)) {
    printf("case=fanout skipped: no multicast on the loopback interface\n");
  } else {
    int lostTcp = 0, lostUdp = 0;
    Figures overTcp = Fanout(tcp.get(), streams, seconds, lostTcp);
    Figures overUdp = Fanout(udp.get(), multicast, seconds, lostUdp);
    printf(
        "case=fanout_udp_100 rounds/s=%.0f p50_ms=%.3f p99_ms=%.3f lost_rounds=%d | "
        "fanout_tcp_100 rounds/s=%.0f p50_ms=%.3f p99_ms=%.3f lost_rounds=%d | udp/tcp "
        "p50=%.2fx p99=%.2fx (lower is better)\n",
        overUdp.opsPerSecond, overUdp.p50, overUdp.p99, lostUdp, overTcp.opsPerSecond, overTcp.p50,
        overTcp.p99, lostTcp, Ratio(overUdp.p50, overTcp.p50), Ratio(overUdp.p99, overTcp.p99));
  }
  for (NetworkClient* client : multicast) factory.Disconnect(client);
  for (NetworkClient* client : streams) factory.Disconnect(client);
  factory.Disconnect(udp.release());
  factory.Disconnect(tcp.release());
  socketFactory.Disconnect(local.release());
  tcpServer->Stop();
  udpServer->Stop();
  socketServer->Stop();
  ConfigFactoryImpl::GetInstance()->Disconnect(store);
  return 0;
}
