// Load tool for the local socket transport. It starts a store and a socket
// server in this process on a free loopback port (or uses a running configd
// given with --port), runs N client threads, each with its own factory and
// connection, for S seconds, and prints one line per run:
//   op=get clients=1 seconds=5 ops/s=41234 p50_us=23.1 p99_us=40.2
// --op echo times a bare 40-byte request / 44-byte response over TCP with
// the same harness: the floor any request/response protocol pays here.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <pthread.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "config/access/socket_client.h"
#include "config/access/socket_connection.h"
#include "config/access/socket_factory.h"
#include "config/access/socket_server.h"
#include "config/access/stream_io.h"
#include "config/config_factory_impl.h"
#include "config/descriptors/param_descriptors.h"
#include "config/descriptors/string_descriptor.h"
#include "load_figures.h"
#include "load_parameter.h"

using namespace zyn::config::access;
using Clock = std::chrono::steady_clock;

namespace {

constexpr unsigned int kLoadString = 0xFEEDD002;

struct Options {
  std::string op = "get";
  int clients = 1;
  double seconds = 5;
  int port = 0;  // 0: start a server in this process
  // The integer parameter of get, set and event; a running configd needs
  // one of its catalogue's (the load parameters exist only in-process).
  unsigned int param = kLoadInteger;
};

void Usage() {
  fprintf(stderr,
          "usage: socket_load [--op get|set|getstring|event|echo] [--clients N] [--seconds S] "
          "[--port P] [--param ID]\n");
  exit(2);
}

Options Parse(int argc, char** argv) {
  Options options;
  for (int i = 1; i < argc; ++i) {
    std::string arg = argv[i];
    if (i + 1 >= argc) Usage();
    if (arg == "--op") {
      options.op = argv[++i];
    } else if (arg == "--clients") {
      options.clients = atoi(argv[++i]);
    } else if (arg == "--seconds") {
      options.seconds = atof(argv[++i]);
    } else if (arg == "--port") {
      options.port = atoi(argv[++i]);
    } else if (arg == "--param") {
      options.param = static_cast<unsigned int>(strtoul(argv[++i], nullptr, 0));
    } else {
      Usage();
    }
  }
  const char* ops[] = {"get", "set", "getstring", "event", "echo"};
  if (std::find(std::begin(ops), std::end(ops), options.op) == std::end(ops) ||
      options.clients < 1 || options.seconds <= 0)
    Usage();
  return options;
}

void RegisterLoadParameters() {
  AddLoadIntegerDescriptor();
  StringDescriptor* text = new StringDescriptor();
  text->SetParamID(kLoadString);
  text->SetParamIDName("eParamID_LoadString");
  text->SetParamType(eCParam_StringValue);
  text->SetFactoryDefault("SDI 1 embedded");
  AddDescriptor(text);
  IndexDescriptorNames();
}

// A bare TCP responder: reads a 40-byte request, writes a 44-byte answer.
class EchoServer {
 public:
  EchoServer() {
    listenFd = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ::bind(listenFd, reinterpret_cast<sockaddr*>(&address), sizeof address);
    ::listen(listenFd, 100);
    socklen_t length = sizeof address;
    getsockname(listenFd, reinterpret_cast<sockaddr*>(&address), &length);
    port = ntohs(address.sin_port);
    acceptor = std::thread([this] {
      for (;;) {
        int fd = ::accept(listenFd, nullptr, nullptr);
        if (fd < 0) return;
        int one = 1;
        setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
        std::thread([fd] {
          char request[40], response[44] = {};
          while (RecvExact(fd, request, sizeof request) == sizeof request)
            if (!SendAll(fd, response, sizeof response)) break;
          ::close(fd);
        }).detach();
      }
    });
  }
  ~EchoServer() {
    ::shutdown(listenFd, SHUT_RDWR);
    ::close(listenFd);
    acceptor.join();
  }
  int port;

 private:
  int listenFd;
  std::thread acceptor;
};

int ConnectEcho(int port) {
  int fd = ::socket(AF_INET, SOCK_STREAM, 0);
  int one = 1;
  setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
    perror("socket_load: connect");
    exit(1);
  }
  return fd;
}

// Collects the latency of every event seen by one listener.
class EventTimer : public ConfigEventListener {
 public:
  bool ParamChanged(eParam_t, unsigned int value, timeval) override {
    std::lock_guard<std::mutex> hold(lock);
    seen = value;
    arrived.notify_all();
    return true;
  }
  bool ParamChanged(eParam_t, std::string, timeval) override { return true; }
  // Waits until the event carrying `value` arrived.
  bool Wait(unsigned int value) {
    std::unique_lock<std::mutex> hold(lock);
    return arrived.wait_for(hold, std::chrono::seconds(2), [&] { return seen == value; });
  }

 private:
  std::mutex lock;
  std::condition_variable arrived;
  unsigned int seen = 0;
};

// One client's loop: the operation, timed, until the deadline.
std::vector<double> RunClient(const Options& options, int port, int index,
                              Clock::time_point deadline, std::atomic<int>& failures) {
  std::vector<double> latencies;
  latencies.reserve(200000);
  std::string uri = "socket://127.0.0.1:" + std::to_string(port) + "/configid=0";
  // Times `body` until the deadline or its first failure (a failed
  // exchange returns at once and would inflate the rate).
  auto time = [&](auto body) {
    while (Clock::now() < deadline) {
      auto start = Clock::now();
      if (!body()) {
        ++failures;
        return;
      }
      latencies.push_back(std::chrono::duration<double, std::micro>(Clock::now() - start).count());
    }
  };
  if (options.op == "echo") {
    int fd = ConnectEcho(port);
    char request[40] = {}, response[44];
    time([&] {
      return SendAll(fd, request, sizeof request) &&
             RecvExact(fd, response, sizeof response) == sizeof response;
    });
    ::close(fd);
    return latencies;
  }
  SocketFactory factory;
  Config* client = factory.Connect(uri);
  if (client == nullptr) {
    fprintf(stderr, "socket_load: cannot connect to %s\n", uri.c_str());
    exit(1);
  }
  unsigned int n = static_cast<unsigned int>(index) * 1000000u;
  unsigned int value = 0;
  std::string text;
  if (options.op == "get") {
    time([&] { return client->Get(options.param, value); });
  } else if (options.op == "set") {
    // A Set is not answered: time it together with the Get that confirms it.
    time([&] {
      return client->Set(options.param, ++n % 1000000) && client->Get(options.param, value);
    });
  } else if (options.op == "getstring") {
    time([&] { return client->Get(kLoadString, text); });
  } else {  // event: from a Set on one connection to the event on another
    SocketFactory eventsFactory;
    Config* events = eventsFactory.Connect(uri);
    EventTimer timer;
    events->AddConfigEventListener(options.param, &timer);
    client->Get(options.param);  // the registration is in place before timing
    time([&] {
      unsigned int next = (++n % 999999) + 1;
      return client->Set(options.param, next) && timer.Wait(next);
    });
    events->RemoveConfigEventListener(&timer);
    eventsFactory.Disconnect(events);
  }
  factory.Disconnect(client);
  return latencies;
}

}  // namespace

int main(int argc, char** argv) {
  Options options = Parse(argc, argv);
  // The library's diagnostics (connects, disconnects) are not the output.
  if (getenv("SOCKET_LOAD_VERBOSE") == nullptr) freopen("/dev/null", "w", stderr);

  std::unique_ptr<EchoServer> echo;
  Config* store = nullptr;
  SocketServer* server = nullptr;
  pthread_t serverThread{};
  int port = options.port;
  if (options.op == "echo") {
    echo.reset(new EchoServer());
    port = echo->port;
  } else if (port == 0) {
    RegisterLoadParameters();
    store = ConfigFactoryImpl::GetInstance()->Connect("local:configid=0");
    server = new SocketServer(0);
    if (!server->Init() || !server->Start()) return 1;
    port = server->GetPort();
    serverThread = server->GetThread();
  }

  auto deadline = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                     std::chrono::duration<double>(options.seconds));
  std::vector<std::vector<double>> results(options.clients);
  std::vector<std::thread> clients;
  std::atomic<int> failures{0};
  for (int i = 0; i < options.clients; ++i)
    clients.emplace_back([&, i] { results[i] = RunClient(options, port, i, deadline, failures); });
  for (std::thread& t : clients) t.join();

  std::vector<double> all;
  for (auto& r : results) all.insert(all.end(), r.begin(), r.end());
  Figures figures = Summarise(std::move(all), options.seconds);
  printf("op=%s clients=%d seconds=%g ops/s=%.0f p50_us=%.1f p99_us=%.1f failed_clients=%d\n",
         options.op.c_str(), options.clients, options.seconds, figures.opsPerSecond, figures.p50,
         figures.p99, failures.load());
  fflush(stdout);

  if (server != nullptr) {
    server->Stop();
    pthread_join(serverThread, nullptr);
    SocketConnection::StopAll();
    SocketConnection::WaitForAll(5000);
    ConfigFactoryImpl::GetInstance()->Disconnect(store);
  }
  return 0;
}
