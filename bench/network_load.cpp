// Load tool for the network transport. It starts a store, the local socket
// server and the TCP and UDP network servers in this process on free
// loopback ports (events multicast on the loopback interface to a free
// port), and prints one line per case, each against a baseline measured in
// the same run:
//   udp_get vs udp_echo      a UDP Get against a bare 40/44-byte UDP echo
//   tcp_get vs socket_get    a network TCP Get against the local socket Get
//   fanout udp vs tcp        one Set to 100 listening clients: time until the
//                            last client's listener has run
// Usage: network_load [--ops N] [--rounds R]
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

// Times `ops` calls of `op`, in microseconds each.
Figures Time(int ops, const std::function<void()>& op) {
  for (int i = 0; i < ops / 10; ++i) op();  // warm up
  std::vector<double> samples;
  samples.reserve(ops);
  Clock::time_point start = Clock::now();
  for (int i = 0; i < ops; ++i) {
    Clock::time_point before = Clock::now();
    op();
    samples.push_back(std::chrono::duration<double, std::micro>(Clock::now() - before).count());
  }
  return Summarise(samples, std::chrono::duration<double>(Clock::now() - start).count());
}

void Print(const char* name, const Figures& measured, const char* baseName, const Figures& base) {
  printf(
      "case=%s ops/s=%.0f p50_us=%.1f p99_us=%.1f | %s ops/s=%.0f p50_us=%.1f p99_us=%.1f | "
      "ratio_p50=%.3f ratio_ops=%.3f\n",
      name, measured.opsPerSecond, measured.p50, measured.p99, baseName, base.opsPerSecond,
      base.p50, base.p99, measured.p50 / base.p50, base.opsPerSecond / measured.opsPerSecond);
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

// Sets a new value through `writer` `rounds` times and times each until
// every one of the listening clients has heard it (milliseconds).
Figures Fanout(Config* writer, std::vector<NetworkClient*>& clients, int rounds) {
  FanoutListener::Round round;
  std::vector<std::unique_ptr<FanoutListener>> listeners;
  for (NetworkClient* client : clients) {
    listeners.emplace_back(new FanoutListener(round));
    client->AddConfigEventListener(listeners.back().get());
    // A TCP Get answered after the Add Listener Request: registered.
    if (dynamic_cast<NetworkTCPClient*>(client) != nullptr) client->Get(kLoadInteger);
  }
  std::vector<double> samples;
  Clock::time_point start = Clock::now();
  for (int i = 0; i < rounds; ++i) {
    {
      std::lock_guard<std::mutex> hold(round.lock);
      round.value = 1000 + i;
      round.seen = 0;
    }
    Clock::time_point before = Clock::now();
    writer->Set(kLoadInteger, 1000 + i);
    std::unique_lock<std::mutex> hold(round.lock);
    if (!round.done.wait_for(hold, std::chrono::seconds(5), [&] { return round.seen == kFanout; }))
      fprintf(stderr, "network_load - round %d: only %d clients heard the Set\n", i, round.seen);
    samples.push_back(std::chrono::duration<double, std::milli>(Clock::now() - before).count());
  }
  double seconds = std::chrono::duration<double>(Clock::now() - start).count();
  for (size_t i = 0; i < clients.size(); ++i)
    clients[i]->RemoveConfigEventListener(listeners[i].get());
  return Summarise(samples, seconds);
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
  int ops = 20000, rounds = 200;
  for (int i = 1; i + 1 < argc; i += 2) {
    if (strcmp(argv[i], "--ops") == 0) ops = atoi(argv[i + 1]);
    if (strcmp(argv[i], "--rounds") == 0) rounds = atoi(argv[i + 1]);
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
    Figures bare = Time(ops, [&] {
      ::send(fd, request, sizeof request, 0);
      ::recv(fd, response, sizeof response, 0);
    });
    Figures get = Time(ops, [&] { udp->Get(kLoadInteger); });
    Print("udp_get", get, "udp_echo", bare);
    ::close(fd);
  }
  Figures socketGet = Time(ops, [&] { local->Get(kLoadInteger); });
  Figures tcpGet = Time(ops, [&] { tcp->Get(kLoadInteger); });
  Print("tcp_get", tcpGet, "socket_get", socketGet);

  std::vector<NetworkClient*> multicast, streams;
  for (int i = 0; i < kFanout; ++i) {
    multicast.push_back(factory.Connect("multicast://" + loopback + std::to_string(events)));
    streams.push_back(factory.Connect("tcp://" + loopback + std::to_string(tcpServer->GetPort())));
  }
  if (!eventPort.add_membership(kXConfigEventGroup, kXConfigEventInterface)) {
    printf("case=fanout skipped: no multicast on the loopback interface\n");
  } else {
    Figures overTcp = Fanout(tcp.get(), streams, rounds);
    Figures overUdp = Fanout(udp.get(), multicast, rounds);
    printf(
        "case=fanout_udp_100 p50_ms=%.3f p99_ms=%.3f | fanout_tcp_100 p50_ms=%.3f "
        "p99_ms=%.3f | ratio_p50=%.3f ratio_p99=%.3f\n",
        overUdp.p50, overUdp.p99, overTcp.p50, overTcp.p99, overUdp.p50 / overTcp.p50,
        overUdp.p99 / overTcp.p99);
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
