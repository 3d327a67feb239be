// Load tool for writers against listeners that never read. It starts a store
// and a stream server (local socket, or --transport tcp for the network one)
// in this process on a free loopback port and times the store's Set on W
// writer threads in alternating rounds:
//   stalled: N clients register for every event and never read again; the
//            round lasts until the server has cut every one of them off, or
//            --round-cap seconds (default 20) when it does not;
//   reading: N clients that register for every event and read all they
//            get, for as long (the cost of the fan-out itself; in a tight
//            loop they may fall behind and be cut off too, which is
//            reported);
//   none:    no listener at all, for as long: the baseline.
// Every Set changes the stored value (see LoadValue), so every one is an
// event for the stalled clients.
// By default each writer sets in a tight loop; --interval-us paces it to one
// Set per interval, as a front panel or a control process writes.
// It prints one line per kind of round and the ratios of the p99s:
//   listeners=20 writers=1 rounds=4 seconds=3.1 samples=2518269 ops/s=812345 p50_us=0.9 ...
//   listeners=20-reading writers=1 rounds=4 seconds=3.1 samples=2718269 ...
//   listeners=0 writers=1 rounds=4 seconds=3.1 samples=2897157 ops/s=934567 p50_us=0.8 ...
//   p99 stalled/none=1.31x (target <= 2, lower is better) uncut_listeners=0 | ...
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "config/access/network_server.h"
#include "config/access/network_tcp_connection.h"
#include "config/access/socket_connection.h"
#include "config/access/socket_server.h"
#include "config/access/stream_io.h"
#include "config/access/xconfigmgr_records.h"
#include "config/config_factory_impl.h"
#include "config/descriptors/param_descriptors.h"
#include "load_parameter.h"

using namespace zyn::config::access;
using zyn::boxline::config::access::NetworkServer;
using zyn::boxline::config::access::NetworkTCPConnection;
using Clock = std::chrono::steady_clock;

namespace {

struct Options {
  std::string transport = "socket";
  int listeners = 20;
  int writers = 1;
  double seconds = 5;
  int intervalUs = 0;    // 0: a tight loop
  double roundCap = 20;  // the longest stalled round, in seconds
};

void Usage() {
  fprintf(stderr,
          "usage: event_stall_load [--transport socket|tcp] [--listeners N] [--writers W] "
          "[--seconds S] [--interval-us U] [--round-cap S]\n");
  exit(2);
}

Options Parse(int argc, char** argv) {
  Options options;
  for (int i = 1; i < argc; ++i) {
    std::string arg = argv[i];
    if (arg == "--help") {
      printf(
          "usage: event_stall_load [--transport socket|tcp] [--listeners N] [--writers W] "
          "[--seconds S] [--interval-us U] [--round-cap S]\n");
      exit(0);
    }
    if (i + 1 >= argc) Usage();
    if (arg == "--transport") {
      options.transport = argv[++i];
    } else if (arg == "--listeners") {
      options.listeners = atoi(argv[++i]);
    } else if (arg == "--writers") {
      options.writers = atoi(argv[++i]);
    } else if (arg == "--seconds") {
      options.seconds = atof(argv[++i]);
    } else if (arg == "--interval-us") {
      options.intervalUs = atoi(argv[++i]);
    } else if (arg == "--round-cap") {
      options.roundCap = atof(argv[++i]);
    } else {
      Usage();
    }
  }
  if ((options.transport != "socket" && options.transport != "tcp") || options.listeners < 1 ||
      options.writers < 1 || options.seconds <= 0 || options.intervalUs < 0 ||
      options.roundCap <= 0)
    Usage();
  return options;
}

template <typename Record>
bool SendRecord(int fd, const Record& record) {
  char bytes[sizeof(Record)];
  Pack(record, bytes);
  return SendAll(fd, bytes, sizeof bytes);
}

// A client that connects and registers for every event; a stalled one
// (with a small receive buffer) never reads again.
int ConnectListener(int port, uint32_t connectionID, bool stalled) {
  int fd = ::socket(AF_INET, SOCK_STREAM, 0);
  int small = 4096;
  if (stalled) setsockopt(fd, SOL_SOCKET, SO_RCVBUF, &small, sizeof small);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  char answer[sizeof(XCONFIGMGR_RESPONSE_T)];
  if (::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
      !SendRecord(fd, XCONFIGMGR_CONNECTION_REQUEST_T{MakeHeader(XCFG_CONNECT_REQUEST, connectionID,
                                                                 1, 0)}) ||
      RecvExact(fd, answer, sizeof(XCONFIGMGR_CONNECTION_RESPONSE_T)) !=
          sizeof(XCONFIGMGR_CONNECTION_RESPONSE_T) ||
      !SendRecord(fd,
                  XCONFIGMGR_EVENT_HANDLER_REQUEST_T{
                      MakeHeader(XCFG_ADD_CONFIG_EVENT_LISTENER_REQUEST, connectionID, 2, 0), 0}) ||
      // The Get's answer: the registration is in place.
      !SendRecord(fd, XCONFIGMGR_REQUEST_T{MakeHeader(XCFG_GET_PARAM_REQUEST, connectionID, 3, 0),
                                           kLoadInteger, 0, 0, 0}) ||
      RecvExact(fd, answer, sizeof answer) != sizeof answer) {
    perror("event_stall_load: listener");
    exit(1);
  }
  return fd;
}

// Numbers every Set of the run, across writers and rounds (see LoadValue).
std::atomic<uint64_t> g_sets{1};

// W writers time Sets until `done` says the round is over.
template <typename Done>
std::vector<float> TimeSets(Config* store, int writers, int intervalUs, Done done) {
  const LoadRange range = RangeOf(kLoadInteger);
  std::vector<std::vector<float>> results(writers);
  std::vector<std::thread> threads;
  for (int w = 0; w < writers; ++w) {
    threads.emplace_back([&, w] {
      auto next = Clock::now();
      while (!done()) {
        if (intervalUs > 0) {
          next += std::chrono::microseconds(intervalUs);
          std::this_thread::sleep_until(next);
        }
        const unsigned int value = LoadValue(g_sets++, range);
        auto start = Clock::now();
        store->Set(kLoadInteger, value);
        results[w].push_back(
            std::chrono::duration<float, std::micro>(Clock::now() - start).count());
      }
    });
  }
  for (std::thread& t : threads) t.join();
  std::vector<float> all;
  for (auto& r : results) all.insert(all.end(), r.begin(), r.end());
  return all;
}

struct Summary {
  double p50, p99;
};

Summary Print(const char* label, int writers, int rounds, std::vector<float>& all, double seconds) {
  std::sort(all.begin(), all.end());
  auto percentile = [&](double p) {
    return all.empty() ? 0.0 : all[std::min(all.size() - 1, static_cast<size_t>(p * all.size()))];
  };
  Summary summary{percentile(0.50), percentile(0.99)};
  printf(
      "listeners=%s writers=%d rounds=%d seconds=%.2f samples=%zu ops/s=%.0f p50_us=%.2f "
      "p99_us=%.2f max_us=%.0f\n",
      label, writers, rounds, seconds, all.size(), all.size() / seconds, summary.p50, summary.p99,
      all.empty() ? 0.0 : all.back());
  return summary;
}

}  // namespace

int main(int argc, char** argv) {
  Options options = Parse(argc, argv);
  // The cut-off lines and the library's diagnostics are not the output.
  if (getenv("EVENT_STALL_LOAD_VERBOSE") == nullptr) freopen("/dev/null", "w", stderr);
  const bool tcp = options.transport == "tcp";
  int (*liveCount)() = tcp ? &NetworkTCPConnection::LiveCount : &SocketConnection::LiveCount;
  bool (*waitForAll)(long) =
      tcp ? &NetworkTCPConnection::WaitForAll : &SocketConnection::WaitForAll;

  AddLoadIntegerDescriptor();
  IndexDescriptorNames();
  Config* store = ConfigFactoryImpl::GetInstance()->Connect("local:configid=0");
  SocketServer* socketServer = nullptr;
  NetworkServer* networkServer = nullptr;
  int port;
  pthread_t serverThread;
  if (tcp) {
    networkServer = new NetworkServer(AF_INET, SOCK_STREAM, 0);
    if (!networkServer->Init() || !networkServer->Start()) return 1;
    port = networkServer->GetPort();
    serverThread = networkServer->GetThread();
  } else {
    socketServer = new SocketServer(0);
    if (!socketServer->Init() || !socketServer->Start()) return 1;
    port = socketServer->GetPort();
    serverThread = socketServer->GetThread();
  }

  std::vector<float> stalled, reading, none;
  double readingSeconds = 0, letGo = 0;
  int readersCut = 0;
  double stalledSeconds = 0, noneSeconds = 0;
  int rounds = 0, uncut = 0;
  uint32_t connectionID = 0x00081000;
  auto span = [](double s) {
    return std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(s));
  };
  while (stalledSeconds + readingSeconds + noneSeconds < options.seconds) {
    std::vector<int> fds;
    for (int i = 0; i < options.listeners; ++i)
      fds.push_back(ConnectListener(port, connectionID++, true));
    // Every kind of round asks the same two questions after each Set.
    auto start = Clock::now();
    const auto cap = start + span(options.roundCap);
    std::vector<float> round = TimeSets(store, options.writers, options.intervalUs, [&] {
      const bool cutOff = liveCount() == 0;  // every stalled client cut off
      return Clock::now() >= cap || cutOff;
    });
    const double length = std::chrono::duration<double>(Clock::now() - start).count();
    uncut += liveCount();
    stalledSeconds += length;
    for (int fd : fds) ::close(fd);
    stalled.insert(stalled.end(), round.begin(), round.end());
    ++rounds;

    // As many listeners that read everything, for as long.
    fds.clear();
    std::vector<std::thread> drains;
    for (int i = 0; i < options.listeners; ++i) {
      fds.push_back(ConnectListener(port, connectionID++, false));
      drains.emplace_back([fd = fds.back()] {
        char bytes[16384];
        while (::recv(fd, bytes, sizeof bytes, 0) > 0) {
        }
      });
    }
    start = Clock::now();
    auto end = start + span(length);
    round = TimeSets(store, options.writers, options.intervalUs, [&] {
      const bool cutOff = liveCount() == 0;
      return Clock::now() >= end || cutOff;
    });
    readersCut += options.listeners - liveCount();
    readingSeconds += std::chrono::duration<double>(Clock::now() - start).count();
    for (int fd : fds) ::shutdown(fd, SHUT_RDWR);
    for (std::thread& drain : drains) drain.join();
    for (int fd : fds) ::close(fd);
    reading.insert(reading.end(), round.begin(), round.end());

    // No listener, for as long, once the server has let go of the last.
    Clock::time_point closing = Clock::now();
    if (!waitForAll(30000)) {
      fprintf(stdout, "event_stall_load: the server kept closed listeners for 30 s\n");
      return 1;
    }
    letGo = std::max(letGo, std::chrono::duration<double>(Clock::now() - closing).count());
    start = Clock::now();
    end = start + span(length);
    round = TimeSets(store, options.writers, options.intervalUs, [&] {
      const bool cutOff = liveCount() == 0;
      return Clock::now() >= end && cutOff;
    });
    noneSeconds += std::chrono::duration<double>(Clock::now() - start).count();
    none.insert(none.end(), round.begin(), round.end());
  }
  std::string label = std::to_string(options.listeners);
  Summary withStalled = Print(label.c_str(), options.writers, rounds, stalled, stalledSeconds);
  Summary withReading =
      Print((label + "-reading").c_str(), options.writers, rounds, reading, readingSeconds);
  Summary baseline = Print("0", options.writers, rounds, none, noneSeconds);
  auto ratio = [&](const Summary& a) { return baseline.p99 > 0 ? a.p99 / baseline.p99 : 0.0; };
  printf(
      "p99 stalled/none=%.2fx (target <= 2, lower is better) uncut_listeners=%d | "
      "reading/none=%.2fx cut_readers=%d | longest_close_s=%.2f\n",
      ratio(withStalled), uncut, ratio(withReading), readersCut, letGo);
  fflush(stdout);

  if (tcp) {
    networkServer->Stop();
  } else {
    socketServer->Stop();
  }
  pthread_join(serverThread, nullptr);
  ConfigFactoryImpl::GetInstance()->Disconnect(store);
  return 0;
}
