// Load tool for the local socket transport. It starts a store and a socket
// server in this process on a free loopback port (or uses a running configd
// given with --port), runs N client threads, each with its own factory and
// connection, for S seconds, and prints one line per run:
//   op=get clients=1 seconds=5 ops/s=41234 p50_us=23.1 p99_us=40.2
// --op echo times the same client's Gets against a bare responder in this
// process (a thread per connection that answers each record at once, with
// no store behind it): the floor any server of this protocol pays here.
// --op redis-get and redis-set drive an in-memory data server (a running
// one, --port) through the same harness: GET, and SET with the GET that
// confirms it, the counterparts of get and set.
// --against OP runs OP as the baseline, by the same client code with the
// same connection count, the two taking five turns each of a fifth of the
// seconds, and prints the ratio:
//   ratio get/echo clients=50 ops/s=0.71x p50_us=1.38x p99_us=1.22x
// --clients takes a list (1,50): each count is one pair of runs.
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
#include <initializer_list>
#include <memory>
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
  std::string against;  // the baseline op; empty: none
  std::vector<int> clients = {1};
  double seconds = 5;
  int port = 0;         // 0: start a server in this process
  int againstPort = 0;  // the baseline's server (redis ops only)
  // The integer parameter of get, set and event; a running configd needs
  // one of its catalogue's (the load parameters exist only in-process).
  unsigned int param = kLoadInteger;
};

constexpr int kTurns = 5;  // turns of an op and its baseline

const char* const kOps[] = {"get", "set", "getstring", "event", "echo", "redis-get", "redis-set"};

void PrintUsage(FILE* out) {
  fprintf(out,
          "usage: socket_load [--op OP] [--against OP] [--clients N[,N...]] [--seconds S] "
          "[--port P] [--against-port P] [--param ID]\n"
          "  OP: get, set, getstring, event, echo, redis-get or redis-set\n");
}

[[noreturn]] void Usage() {
  PrintUsage(stderr);
  exit(2);
}

bool IsRedis(const std::string& op) { return op.compare(0, 6, "redis-") == 0; }

Options Parse(int argc, char** argv) {
  Options options;
  for (int i = 1; i < argc; ++i) {
    std::string arg = argv[i];
    if (arg == "--help") {
      PrintUsage(stdout);
      exit(0);
    }
    if (i + 1 >= argc) Usage();
    if (arg == "--op") {
      options.op = argv[++i];
    } else if (arg == "--against") {
      options.against = argv[++i];
    } else if (arg == "--clients") {
      options.clients.clear();
      std::string list = argv[++i];
      for (size_t at = 0; at <= list.size();) {
        size_t comma = std::min(list.find(',', at), list.size());
        options.clients.push_back(atoi(list.substr(at, comma - at).c_str()));
        at = comma + 1;
      }
    } else if (arg == "--seconds") {
      options.seconds = atof(argv[++i]);
    } else if (arg == "--port") {
      options.port = atoi(argv[++i]);
    } else if (arg == "--against-port") {
      options.againstPort = atoi(argv[++i]);
    } else if (arg == "--param") {
      options.param = static_cast<unsigned int>(strtoul(argv[++i], nullptr, 0));
    } else {
      Usage();
    }
  }
  auto known = [](const std::string& op) {
    return std::find(std::begin(kOps), std::end(kOps), op) != std::end(kOps);
  };
  if (!known(options.op) || (!options.against.empty() && !known(options.against)) ||
      options.seconds <= 0 || (IsRedis(options.op) && options.port == 0) ||
      (IsRedis(options.against) && options.againstPort == 0))
    Usage();
  for (int count : options.clients)
    if (count < 1) Usage();
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

// A bare responder of the protocol: a thread per connection that answers a
// Connect or Disconnect Request (24 bytes) with its 28-byte response and
// any other 40-byte request with a 44-byte Get Response, headers echoed.
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
          Answer(fd);
          ::close(fd);
        }).detach();
      }
    });
  }
  static void Answer(int fd) {
    char request[sizeof(XCONFIGMGR_REQUEST_T)];
    while (RecvExact(fd, request, 4) == 4) {
      uint32_t type = PeekMessageType(request);
      if (type == XCFG_CONNECT_REQUEST || type == XCFG_DISCONNECT_REQUEST) {
        XCONFIGMGR_CONNECTION_REQUEST_T connect;
        if (RecvExact(fd, request + 4, sizeof connect - 4) != sizeof connect - 4) return;
        Unpack(request, connect);
        XCONFIGMGR_CONNECTION_RESPONSE_T answer{AnswerHeader(connect.header, type + 16), 0};
        char bytes[sizeof answer];
        Pack(answer, bytes);
        if (!SendAll(fd, bytes, sizeof bytes)) return;
        continue;
      }
      XCONFIGMGR_REQUEST_T get;
      if (RecvExact(fd, request + 4, sizeof get - 4) != sizeof get - 4) return;
      Unpack(request, get);
      XCONFIGMGR_RESPONSE_T answer{
          AnswerHeader(get.header, XCFG_GET_PARAM_RESPONSE), get.paramID, 0, 0, 0, 0};
      char bytes[sizeof answer];
      Pack(answer, bytes);
      if (!SendAll(fd, bytes, sizeof bytes)) return;
    }
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

int ConnectLoopback(int port) {
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

// One connection to the in-memory data server in its request protocol:
// commands go out whole, and each exchange reads every reply it asked for.
class RedisConnection {
 public:
  explicit RedisConnection(int port) : _fd(ConnectLoopback(port)) {}
  ~RedisConnection() { ::close(_fd); }
  RedisConnection(const RedisConnection&) = delete;
  RedisConnection& operator=(const RedisConnection&) = delete;

  // The command of `words` in the protocol's array-of-bulk-strings form.
  static std::string Command(std::initializer_list<std::string> words) {
    std::string out = "*" + std::to_string(words.size()) + "\r\n";
    for (const std::string& word : words)
      out += "$" + std::to_string(word.size()) + "\r\n" + word + "\r\n";
    return out;
  }
  // Sends `commands` in one write and reads `replies` replies; false when
  // the connection closed or a reply was an error.
  bool Exchange(const std::string& commands, int replies) {
    if (!SendAll(_fd, commands.data(), commands.size())) return false;
    for (int i = 0; i < replies; ++i)
      if (!ReadReply()) return false;
    return true;
  }

 private:
  bool Fill() {
    if (_start > 0) {
      _buffer.erase(0, _start);
      _start = 0;
    }
    char chunk[4096];
    ssize_t n = ::recv(_fd, chunk, sizeof chunk, 0);
    if (n <= 0) return false;
    _buffer.append(chunk, static_cast<size_t>(n));
    return true;
  }
  // A simple-string, integer, error or bulk-string reply.
  bool ReadReply() {
    size_t end;
    while ((end = _buffer.find("\r\n", _start)) == std::string::npos)
      if (!Fill()) return false;
    const char kind = _buffer[_start];
    const long size = atol(_buffer.c_str() + _start + 1);
    _start = end + 2;
    if (kind == '-') return false;
    if (kind != '$' || size < 0) return true;
    while (_buffer.size() - _start < static_cast<size_t>(size) + 2)
      if (!Fill()) return false;
    _start += static_cast<size_t>(size) + 2;
    return true;
  }

  int _fd;
  std::string _buffer;
  size_t _start = 0;
};

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

// Numbers the Sets of every client of a run (see LoadValue).
std::atomic<uint64_t> g_sets{0};

// One client's loop: the operation, timed, until the deadline.
// Its rate counts from its first timed operation, once it is connected.
std::vector<double> RunClient(const std::string& op, const Options& options, int port,
                              const LoadRange& range, Clock::time_point deadline,
                              std::atomic<int>& failures, double& rate) {
  std::vector<double> latencies;
  latencies.reserve(200000);
  std::string uri = "socket://127.0.0.1:" + std::to_string(port) + "/configid=0";
  // Times `body` until the deadline or its first failure (a failed
  // exchange returns at once and would inflate the rate).
  auto time = [&](auto body) {
    const Clock::time_point first = Clock::now();
    while (Clock::now() < deadline) {
      auto start = Clock::now();
      if (!body()) {
        ++failures;
        break;
      }
      latencies.push_back(std::chrono::duration<double, std::micro>(Clock::now() - start).count());
    }
    const double seconds = std::chrono::duration<double>(Clock::now() - first).count();
    rate = seconds > 0 ? latencies.size() / seconds : 0;
  };
  if (IsRedis(op)) {
    RedisConnection redis(port);
    const std::string get = RedisConnection::Command({"GET", "load:integer"});
    if (op == "redis-get") {
      time([&] { return redis.Exchange(get, 1); });
    } else {
      // SET and the GET that confirms it in one write: one round trip, as
      // a Set and its Get below.
      time([&] {
        std::string value = std::to_string(LoadValue(g_sets++, range));
        return redis.Exchange(RedisConnection::Command({"SET", "load:integer", value}) + get, 2);
      });
    }
    return latencies;
  }
  SocketFactory factory;
  Config* client = factory.Connect(uri);
  if (client == nullptr) {
    fprintf(stderr, "socket_load: cannot connect to %s\n", uri.c_str());
    exit(1);
  }
  unsigned int value = 0;
  std::string text;
  if (op == "get" || op == "echo") {  // the same Gets, against the store or the bare responder
    time([&] { return client->Get(options.param, value); });
  } else if (op == "set") {
    // A Set is not answered: time it together with the Get that confirms it.
    time([&] {
      return client->Set(options.param, LoadValue(g_sets++, range)) &&
             client->Get(options.param, value);
    });
  } else if (op == "getstring") {
    time([&] { return client->Get(kLoadString, text); });
  } else {  // event: from a Set on one connection to the event on another
    SocketFactory eventsFactory;
    Config* events = eventsFactory.Connect(uri);
    EventTimer timer;
    events->AddConfigEventListener(options.param, &timer);
    client->Get(options.param);  // the registration is in place before timing
    time([&] {
      unsigned int next = LoadValue(g_sets++, range);
      return client->Set(options.param, next) && timer.Wait(next);
    });
    events->RemoveConfigEventListener(&timer);
    eventsFactory.Disconnect(events);
  }
  factory.Disconnect(client);
  return latencies;
}

// What the runs of one op gathered: every latency, and the sum of the
// clients' rates per run.
struct Tally {
  std::vector<double> latencies;
  double rates = 0;
  int runs = 0;
  int failures = 0;
};

// `clients` threads of `op` against `port` for `seconds`, added to `tally`.
void Run(const std::string& op, const Options& options, int port, const LoadRange& range,
         int clients, double seconds, Tally& tally) {
  if (IsRedis(op)) {  // GET answers a stored value, as get does
    RedisConnection redis(port);
    redis.Exchange(RedisConnection::Command({"SET", "load:integer", "0"}), 1);
  }
  auto deadline = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                     std::chrono::duration<double>(seconds));
  std::vector<std::vector<double>> results(clients);
  std::vector<double> rates(clients, 0.0);
  std::vector<std::thread> threads;
  std::atomic<int> failures{0};
  for (int i = 0; i < clients; ++i)
    threads.emplace_back(
        [&, i] { results[i] = RunClient(op, options, port, range, deadline, failures, rates[i]); });
  for (std::thread& t : threads) t.join();
  for (int i = 0; i < clients; ++i) {
    tally.latencies.insert(tally.latencies.end(), results[i].begin(), results[i].end());
    tally.rates += rates[i];
  }
  ++tally.runs;
  tally.failures += failures.load();
}

// The line of one op: its rate is the mean of its runs' rates.
Figures Report(const std::string& op, int clients, const Options& options, Tally& tally) {
  Figures figures = Summarise(std::move(tally.latencies), 1);
  figures.opsPerSecond = tally.runs > 0 ? tally.rates / tally.runs : 0;
  printf("op=%s clients=%d seconds=%g ops/s=%.0f p50_us=%.1f p99_us=%.1f failed_clients=%d\n",
         op.c_str(), clients, options.seconds, figures.opsPerSecond, figures.p50, figures.p99,
         tally.failures);
  fflush(stdout);
  return figures;
}

bool IsStoreOp(const std::string& op) { return !op.empty() && op != "echo" && !IsRedis(op); }

}  // namespace

int main(int argc, char** argv) {
  Options options = Parse(argc, argv);
  // The library's diagnostics (connects, disconnects) are not the output.
  if (getenv("SOCKET_LOAD_VERBOSE") == nullptr) freopen("/dev/null", "w", stderr);

  std::unique_ptr<EchoServer> echo;
  if (options.op == "echo" || options.against == "echo") echo.reset(new EchoServer());
  Config* store = nullptr;
  SocketServer* server = nullptr;
  pthread_t serverThread{};
  int storePort = options.port;
  LoadRange range{0, 1000000};
  const bool storeOps = IsStoreOp(options.op) || IsStoreOp(options.against);
  if (storeOps && storePort == 0) {
    RegisterLoadParameters();
    range = RangeOf(options.param);
    store = ConfigFactoryImpl::GetInstance()->Connect("local:configid=0");
    server = new SocketServer(0);
    if (!server->Init() || !server->Start()) return 1;
    storePort = server->GetPort();
    serverThread = server->GetThread();
  } else if (storeOps) {
    CreateDescriptors();  // the running configd's catalogue: the parameter's range
    range = RangeOf(options.param);
  }
  auto portOf = [&](const std::string& op, int given) {
    if (op == "echo") return echo->port;
    return IsRedis(op) ? given : storePort;
  };

  for (int clients : options.clients) {
    // With a baseline, each op runs in turns of a fifth of the seconds,
    // alternating, so that a change in the machine's load falls on both.
    const int turns = options.against.empty() ? 1 : kTurns;
    Tally oursTally, baseTally;
    for (int turn = 0; turn < turns; ++turn) {
      Run(options.op, options, portOf(options.op, options.port), range, clients,
          options.seconds / turns, oursTally);
      if (!options.against.empty())
        Run(options.against, options, portOf(options.against, options.againstPort), range, clients,
            options.seconds / turns, baseTally);
    }
    Figures ours = Report(options.op, clients, options, oursTally);
    if (options.against.empty()) continue;
    Figures base = Report(options.against, clients, options, baseTally);
    auto ratio = [](double a, double b) { return b > 0 ? a / b : 0.0; };
    printf(
        "ratio %s/%s clients=%d ops/s=%.2fx p50_us=%.2fx p99_us=%.2fx (ops/s above 1 and "
        "latencies below 1 favour %s)\n",
        options.op.c_str(), options.against.c_str(), clients,
        ratio(ours.opsPerSecond, base.opsPerSecond), ratio(ours.p50, base.p50),
        ratio(ours.p99, base.p99), options.op.c_str());
    fflush(stdout);
  }

  if (server != nullptr) {
    server->Stop();
    pthread_join(serverThread, nullptr);
    SocketConnection::StopAll();
    SocketConnection::WaitForAll(5000);
    ConfigFactoryImpl::GetInstance()->Disconnect(store);
  }
  return 0;
}
