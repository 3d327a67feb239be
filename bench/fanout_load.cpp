// Event fan-out over the local socket transport against a bare floor. It
// starts a real configd from the build folder on free loopback ports with a
// temporary state folder, connects N listeners (default 100) registered for
// one parameter and one writer, and times rounds: from just before the
// writer's Set goes out until the last listener has read the whole event
// record. The baseline, in the same run and read by the same reader code, is
// a bare single-threaded epoll server in this process that, on one trigger
// record of the Set's size, writes one record of the event's size to each of
// its N clients. Every round's Set changes the value. The two sides take
// turns in blocks of rounds, so that a change in the machine's load falls on
// both alike. One line per side and the ratios:
//   side=configd listeners=100 rounds=2000 record_bytes=44 p50_us=... p99_us=...
//   side=floor listeners=100 rounds=2000 record_bytes=44 p50_us=... p99_us=...
//   configd/floor p50=1.60x (target <= 1.2) p99=1.90x (target <= 1.5) (lower is better)
// The writer and the readers run on this program's main thread: the reader
// waits on one epoll set over the N connections, read by level-triggered
// non-blocking reads.
#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <signal.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "config/access/stream_io.h"
#include "config/access/xconfigmgr_records.h"
#include "config/descriptors/param_descriptors.h"
#include "config/values/string_value.h"
#include "load_figures.h"
#include "load_parameter.h"

using namespace zyn::config::access;
using Clock = std::chrono::steady_clock;

namespace {

// Catalogue parameters of configd's: an integer with a range, and a text.
constexpr unsigned int kIntegerParam = 0xA21E8942;  // eParamID_Vid1RGBProcAmpGainBlue
constexpr unsigned int kStringParam = 0x663F2B65;   // eParamID_SystemName
constexpr int kBlock = 10;                          // rounds per turn of a side
constexpr int kWarmup = 100;                        // untimed rounds per side

struct Options {
  int listeners = 100;
  int rounds = 2000;
  bool text = false;
  std::string configd;  // empty: tools/configd beside this program's folder
};

void PrintUsage(FILE* out) {
  fprintf(out, "usage: fanout_load [--listeners N] [--rounds R] [--string] [--configd PATH]\n");
}

Options Parse(int argc, char** argv) {
  Options options;
  for (int i = 1; i < argc; ++i) {
    std::string arg = argv[i];
    bool hasValue = i + 1 < argc;
    if (arg == "--help") {
      PrintUsage(stdout);
      exit(0);
    } else if (arg == "--string") {
      options.text = true;
    } else if (arg == "--listeners" && hasValue) {
      options.listeners = atoi(argv[++i]);
    } else if (arg == "--rounds" && hasValue) {
      options.rounds = atoi(argv[++i]);
    } else if (arg == "--configd" && hasValue) {
      options.configd = argv[++i];
    } else {
      PrintUsage(stderr);
      exit(2);
    }
  }
  if (options.listeners < 1 || options.rounds < 1) {
    PrintUsage(stderr);
    exit(2);
  }
  if (options.configd.empty()) {
    std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe");
    options.configd = (self.parent_path().parent_path() / "tools" / "configd").string();
  }
  return options;
}

[[noreturn]] void Fail(const char* what) {
  fprintf(stderr, "fanout_load: %s\n", what);
  exit(1);
}

void NoDelay(int fd) {
  int one = 1;
  setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
}

int ConnectLoopback(int port) {
  int fd = ::socket(AF_INET, SOCK_STREAM, 0);
  NoDelay(fd);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0)
    Fail("cannot connect on loopback");
  return fd;
}

// A port the system chose for a socket of `type`, free when this returns.
int FreePort(int type) {
  int fd = ::socket(AF_INET, type, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  if (::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
      getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length) != 0)
    Fail("no free port");
  ::close(fd);
  return ntohs(address.sin_port);
}

// configd as a child process, on loopback only, its state in a folder of
// its own that is removed with it.
class Configd {
 public:
  explicit Configd(const std::string& path) {
    char folder[] = "/tmp/fanout_load.XXXXXX";
    if (mkdtemp(folder) == nullptr) Fail("cannot make a temporary folder");
    _folder = folder;
    int out[2];
    if (pipe(out) != 0) Fail("pipe");
    const std::string multicast = std::to_string(FreePort(SOCK_DGRAM));
    const std::string state = _folder + "/state";
    const bool verbose = getenv("FANOUT_LOAD_VERBOSE") != nullptr;
    _pid = fork();
    if (_pid == 0) {
      dup2(out[1], STDOUT_FILENO);
      if (!verbose) {
        int null = open("/dev/null", O_WRONLY);
        dup2(null, STDERR_FILENO);
      }
      ::close(out[0]);
      ::close(out[1]);
      execl(path.c_str(), path.c_str(), "--port", "0", "--address", "127.0.0.1", "--tcp-port", "0",
            "--tcp-address", "127.0.0.1", "--udp-port", "0", "--udp-address", "127.0.0.1",
            "--multicast-port", multicast.c_str(), "--state-dir", state.c_str(),
            static_cast<char*>(nullptr));
      _exit(127);
    }
    ::close(out[1]);
    _out = fdopen(out[0], "r");
    // The local socket server's port; the UDP server's line comes last.
    char line[256];
    while (fgets(line, sizeof line, _out) != nullptr) {
      sscanf(line, "configd: ready on port %d", &port);
      if (strstr(line, "udp ready") != nullptr) break;
    }
    if (port <= 0) {
      fprintf(stderr, "fanout_load: %s did not start\n", path.c_str());
      Stop();
      exit(1);
    }
  }
  ~Configd() { Stop(); }
  Configd(const Configd&) = delete;
  Configd& operator=(const Configd&) = delete;

  int port = 0;

 private:
  void Stop() {
    if (_pid > 0) {
      kill(_pid, SIGTERM);
      waitpid(_pid, nullptr, 0);
      _pid = 0;
    }
    if (_out != nullptr) fclose(_out);
    _out = nullptr;
    std::error_code ignored;
    std::filesystem::remove_all(_folder, ignored);
  }

  pid_t _pid = 0;
  FILE* _out = nullptr;
  std::string _folder;
};

template <typename Record>
bool SendRecord(int fd, const Record& record) {
  char bytes[sizeof(Record)];
  Pack(record, bytes);
  return SendAll(fd, bytes, sizeof bytes);
}

// A connection to configd with its Connect Request answered.
int ConnectClient(int port, uint32_t connectionID) {
  int fd = ConnectLoopback(port);
  char answer[sizeof(XCONFIGMGR_CONNECTION_RESPONSE_T)];
  if (!SendRecord(fd, XCONFIGMGR_CONNECTION_REQUEST_T{MakeHeader(XCFG_CONNECT_REQUEST, connectionID,
                                                                 1, 0)}) ||
      RecvExact(fd, answer, sizeof answer) != sizeof answer)
    Fail("configd did not answer a Connect Request");
  return fd;
}

// A listener of `param`: registered once a Get sent after the Add Listener
// Request has been answered.
int ConnectListener(int port, uint32_t connectionID, unsigned int param) {
  int fd = ConnectClient(port, connectionID);
  char answer[sizeof(XCONFIGMGR_RESPONSE_T)];
  if (!SendRecord(
          fd,
          XCONFIGMGR_EVENT_HANDLER_REQUEST_T{
              MakeHeader(XCFG_ADD_CONFIG_EVENT_LISTENER_REQUEST, connectionID, 2, 0), param}) ||
      !SendRecord(fd, XCONFIGMGR_REQUEST_T{MakeHeader(XCFG_GET_PARAM_REQUEST, connectionID, 3, 0),
                                           kIntegerParam, 0, 0, 0}) ||
      RecvExact(fd, answer, sizeof answer) != sizeof answer)
    Fail("configd did not register a listener");
  return fd;
}

// The bytes of the n-th Set of the run: every one changes the value.
std::vector<char> SetBytes(bool text, uint64_t n, uint32_t connectionID, const LoadRange& range) {
  XCONFIGMGR_REQUEST_T request{
      MakeHeader(XCFG_SET_PARAM_REQUEST, connectionID, static_cast<uint32_t>(n), 0), kIntegerParam,
      LoadValue(n, range), 0, 0};
  std::vector<char> payload;
  if (text) {
    // Two names of one length, in turn.
    StringValue name(eConfigID_Default, kStringParam, eCParam_StringValue,
                     n % 2 ? "fanout-a" : "fanout-b");
    payload = EncodePayload(&name);
    request.header.msgtype = XCFG_SET_STREAM_PARAM_REQUEST;
    request.paramID = kStringParam;
    request.value = 0;
    request.streamLength = static_cast<uint32_t>(payload.size());
  }
  std::vector<char> bytes(sizeof request + payload.size());
  Pack(request, bytes.data());
  std::copy(payload.begin(), payload.end(), bytes.begin() + sizeof request);
  return bytes;
}

// The floor: one thread, one epoll set over the trigger connection; each
// whole trigger record read is answered by one record of `recordSize`
// bytes written to every client. The clients and the trigger connection are
// accepted before the thread starts.
class FloorServer {
 public:
  FloorServer(int clients, size_t triggerSize, size_t recordSize)
      : _triggerSize(triggerSize), _record(recordSize) {
    _listen = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (::bind(_listen, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(_listen, 128) != 0 ||
        getsockname(_listen, reinterpret_cast<sockaddr*>(&address), &length) != 0)
      Fail("floor server did not start");
    _port = ntohs(address.sin_port);
    for (int i = 0; i <= clients; ++i) {
      _connected.push_back(ConnectLoopback(_port));
      int fd = ::accept(_listen, nullptr, nullptr);
      if (fd < 0) Fail("floor server accept");
      NoDelay(fd);
      _accepted.push_back(fd);
    }
    _trigger = _accepted.back();
    _accepted.pop_back();
    fcntl(_trigger, F_SETFL, O_NONBLOCK);
    _thread = std::thread([this] { Run(); });
  }
  ~FloorServer() {
    ::shutdown(_connected.back(), SHUT_WR);  // the trigger's end: the loop stops
    _thread.join();
    for (int fd : _accepted) ::close(fd);
    for (int fd : _connected) ::close(fd);
    ::close(_trigger);
    ::close(_listen);
  }
  FloorServer(const FloorServer&) = delete;
  FloorServer& operator=(const FloorServer&) = delete;

  // This side's ends: the clients' connections, then the writer's.
  std::vector<int> Clients() const { return {_connected.begin(), _connected.end() - 1}; }
  int Writer() const { return _connected.back(); }

 private:
  void Run() {
    int poll = epoll_create1(0);
    epoll_event interest{};
    interest.events = EPOLLIN;
    interest.data.fd = _trigger;
    epoll_ctl(poll, EPOLL_CTL_ADD, _trigger, &interest);
    std::vector<char> trigger(_triggerSize);
    size_t got = 0;
    for (;;) {
      epoll_event ready;
      if (epoll_wait(poll, &ready, 1, -1) < 0) {
        if (errno == EINTR) continue;
        break;
      }
      ssize_t n = ::read(_trigger, trigger.data() + got, trigger.size() - got);
      if (n == 0 || (n < 0 && errno != EAGAIN)) break;
      if (n < 0) continue;
      got += static_cast<size_t>(n);
      if (got < trigger.size()) continue;
      got = 0;
      for (int fd : _accepted)
        if (!SendAll(fd, _record.data(), _record.size())) Fail("floor server send");
    }
    ::close(poll);
  }

  size_t _triggerSize;
  std::vector<char> _record;
  int _listen, _port, _trigger;
  std::vector<int> _connected, _accepted;
  std::thread _thread;
};

// The readers of one side: one epoll set over its N connections (which stay
// the caller's), each of which receives one record of `recordSize` bytes per
// round.
class Readers {
 public:
  Readers(std::vector<int> fds, size_t recordSize)
      : _fds(std::move(fds)), _records(_fds.size(), std::vector<char>(recordSize)) {
    _poll = epoll_create1(0);
    for (size_t i = 0; i < _fds.size(); ++i) {
      fcntl(_fds[i], F_SETFL, O_NONBLOCK);
      epoll_event interest{};
      interest.events = EPOLLIN;
      interest.data.u64 = i;
      epoll_ctl(_poll, EPOLL_CTL_ADD, _fds[i], &interest);
    }
  }
  ~Readers() { ::close(_poll); }
  Readers(const Readers&) = delete;
  Readers& operator=(const Readers&) = delete;

  // Sends `trigger` on `writer` and reads until every connection has its
  // whole record: the time that took, in microseconds; negative when a
  // connection had nothing for two seconds or closed.
  double Round(int writer, const std::vector<char>& trigger) {
    std::vector<size_t> got(_fds.size(), 0);
    size_t done = 0;
    const Clock::time_point start = Clock::now();
    if (!SendAll(writer, trigger.data(), trigger.size())) return -1;
    epoll_event ready[128];
    while (done < _fds.size()) {
      int n = epoll_wait(_poll, ready, 128, 2000);
      if (n < 0 && errno == EINTR) continue;
      if (n <= 0) return -1;
      for (int i = 0; i < n; ++i) {
        size_t at = ready[i].data.u64;
        std::vector<char>& record = _records[at];
        if (got[at] == record.size()) return -1;  // more than one record
        ssize_t r = ::read(_fds[at], record.data() + got[at], record.size() - got[at]);
        if (r == 0 || (r < 0 && errno != EAGAIN)) return -1;
        if (r > 0 && (got[at] += static_cast<size_t>(r)) == record.size()) ++done;
      }
    }
    return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
  }
  // The record connection `i` read in the last round.
  const std::vector<char>& Record(size_t i) const { return _records[i]; }
  size_t Size() const { return _fds.size(); }

 private:
  std::vector<int> _fds;
  std::vector<std::vector<char>> _records;
  int _poll;
};

}  // namespace

int main(int argc, char** argv) {
  Options options = Parse(argc, argv);
  signal(SIGPIPE, SIG_IGN);
  {
    // configd's catalogue, for the integer's range; its build's complaints
    // about this machine's identity are not the output.
    int saved = dup(STDERR_FILENO), null = open("/dev/null", O_WRONLY);
    if (getenv("FANOUT_LOAD_VERBOSE") == nullptr) dup2(null, STDERR_FILENO);
    CreateDescriptors();
    dup2(saved, STDERR_FILENO);
    ::close(saved);
    ::close(null);
  }
  const LoadRange range = RangeOf(kIntegerParam);
  const unsigned int param = options.text ? kStringParam : kIntegerParam;

  Configd configd(options.configd);
  const uint32_t writerID = 0x00082000;
  int writer = ConnectClient(configd.port, writerID);
  std::vector<int> listeners;
  for (int i = 0; i < options.listeners; ++i)
    listeners.push_back(ConnectListener(configd.port, writerID + 1 + i, param));

  // The event record's size: its header and, for a text, the value's
  // payload, framed as the Set's.
  uint64_t sets = 1;  // configd starts at the default; round 1 differs from round 2
  const size_t triggerSize = SetBytes(options.text, sets, writerID, range).size();
  const size_t recordSize =
      sizeof(XCONFIGMGR_RESPONSE_T) + (triggerSize - sizeof(XCONFIGMGR_REQUEST_T));
  Readers ours(listeners, recordSize);
  FloorServer floor(options.listeners, triggerSize, recordSize);
  Readers floorReaders(floor.Clients(), recordSize);
  const std::vector<char> floorTrigger(triggerSize, 0);

  // One round on configd: the time, checked against what each listener got.
  auto configdRound = [&] {
    const uint64_t n = sets++;
    double us = ours.Round(writer, SetBytes(options.text, n, writerID, range));
    if (us < 0) Fail("a configd listener had no whole event within two seconds");
    for (size_t i = 0; i < ours.Size(); ++i) {
      XCONFIGMGR_RESPONSE_T event;
      Unpack(ours.Record(i).data(), event);
      const bool right = options.text ? event.header.msgtype == XCFG_PARAM_STREAM_CHANGED_EVENT &&
                                            event.streamLength == recordSize - sizeof event
                                      : event.header.msgtype == XCFG_PARAM_CHANGED_EVENT &&
                                            event.value == LoadValue(n, range);
      if (event.paramID != param || !right) Fail("a configd listener read another record");
    }
    return us;
  };
  auto floorRound = [&] {
    double us = floorReaders.Round(floor.Writer(), floorTrigger);
    if (us < 0) Fail("a floor client had no whole record within two seconds");
    return us;
  };

  for (int i = 0; i < kWarmup; ++i) {
    configdRound();
    floorRound();
  }
  std::vector<double> configdSamples, floorSamples;
  while (static_cast<int>(configdSamples.size()) < options.rounds) {
    int block = std::min(kBlock, options.rounds - static_cast<int>(configdSamples.size()));
    for (int i = 0; i < block; ++i) configdSamples.push_back(configdRound());
    for (int i = 0; i < block; ++i) floorSamples.push_back(floorRound());
  }

  Figures a = Summarise(configdSamples, 1), b = Summarise(floorSamples, 1);
  for (auto [side, figures] : {std::make_pair("configd", a), std::make_pair("floor", b)})
    printf("side=%s listeners=%d rounds=%d record_bytes=%zu p50_us=%.1f p99_us=%.1f\n", side,
           options.listeners, options.rounds, recordSize, figures.p50, figures.p99);
  printf("configd/floor p50=%.2fx (target <= 1.2) p99=%.2fx (target <= 1.5) (lower is better)\n",
         b.p50 > 0 ? a.p50 / b.p50 : 0.0, b.p99 > 0 ? a.p99 / b.p99 : 0.0);
  fflush(stdout);
  for (int fd : listeners) ::close(fd);
  ::close(writer);
  return 0;
}
