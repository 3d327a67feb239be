// Load tool for configweb's event stream. It starts a store and a socket
// server in this process, configweb's session, API and HTTP server on free
// loopback ports, and opens N event streams (default 20). Two runs, one
// line each:
//   op=stream streams=20 seconds=3 ops/s=... per_stream_ops/s=... lost=0
//     a writer sets a string parameter as fast as the store takes it; ops/s
//     is the events every stream received per second (the slowest stream),
//   op=latency streams=20 sets=2000 p50_us=... p99_us=...
//     one set at a time through a socket client (the path configctl takes),
//     timed until the change has arrived on every stream,
// and a baseline line, op=latency-listener, for the same sets seen by a
// plain event connection of the library without configweb in between.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "config/access/socket_client.h"
#include "config/access/socket_connection.h"
#include "config/access/socket_factory.h"
#include "config/access/socket_server.h"
#include "config/config_event_listener.h"
#include "config/config_factory_impl.h"
#include "config/descriptors/param_descriptors.h"
#include "config/descriptors/param_ids.h"
#include "configctl/parameters.h"
#include "configweb/daemon_session.h"
#include "configweb/event_hub.h"
#include "configweb/http_server.h"
#include "configweb/web_api.h"

using namespace zyn::config::access;
using Clock = std::chrono::steady_clock;

namespace {

constexpr int kMaxSets = 100000;

long long NowUs() {
  return std::chrono::duration_cast<std::chrono::microseconds>(Clock::now().time_since_epoch())
      .count();
}

// The send time of each numbered set, read by the stream readers.
std::vector<std::atomic<long long>> g_sentUs(kMaxSets);

// The number after `tag` in a text value ("lat-17"), or -1.
long SetNumber(const char* text, size_t length, const char* tag) {
  std::string view(text, length);
  size_t at = view.find(tag);
  if (at == std::string::npos) return -1;
  return strtol(view.c_str() + at + strlen(tag), nullptr, 10);
}

// One page's stream: counts throughput frames and records each latency set
// it sees.
class PageStream {
 public:
  bool Open(int port) {
    _fd = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(_fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) return false;
    const char request[] = "GET /api/events HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n";
    if (send(_fd, request, sizeof request - 1, MSG_NOSIGNAL) <= 0) return false;
    _thread = std::thread(&PageStream::Run, this);
    return true;
  }
  void Close() {
    shutdown(_fd, SHUT_RDWR);
    if (_thread.joinable()) _thread.join();
    close(_fd);
  }
  std::atomic<long> throughputFrames{0};
  std::atomic<long> lastLatencySet{-1};
  std::vector<float> latenciesUs;  // written by the reader, read after Close

 private:
  void Run() {
    std::string buffer;
    char chunk[65536];
    for (;;) {
      ssize_t n = recv(_fd, chunk, sizeof chunk, 0);
      if (n <= 0) return;
      long long now = NowUs();
      buffer.append(chunk, static_cast<size_t>(n));
      size_t start = 0;
      size_t end;
      while ((end = buffer.find("\n\n", start)) != std::string::npos) {
        const char* frame = buffer.data() + start;
        size_t length = end - start;
        if (SetNumber(frame, length, "\"tp-") >= 0) ++throughputFrames;
        long set = SetNumber(frame, length, "\"lat-");
        if (set >= 0 && set < kMaxSets) {
          latenciesUs.push_back(static_cast<float>(now - g_sentUs[set].load()));
          lastLatencySet = set;
        }
        start = end + 2;
      }
      buffer.erase(0, start);
    }
  }
  int _fd = -1;
  std::thread _thread;
};

// The baseline: the library's own event connection.
class Baseline : public ConfigEventListener {
 public:
  bool ParamChanged(eParam_t, unsigned int, timeval) override { return true; }
  bool ParamChanged(eParam_t, std::string value, timeval) override {
    long set = SetNumber(value.data(), value.size(), "lat-");
    if (set >= 0 && set < kMaxSets) {
      latenciesUs.push_back(static_cast<float>(NowUs() - g_sentUs[set].load()));
      last = set;
    }
    return true;
  }
  std::vector<float> latenciesUs;
  std::atomic<long> last{-1};
};

float Percentile(std::vector<float> all, double p) {
  if (all.empty()) return 0;
  std::sort(all.begin(), all.end());
  return all[std::min(all.size() - 1, static_cast<size_t>(p * all.size()))];
}

// Waits until `done` holds, at most `ms`.
template <typename Done>
bool WaitUntil(Done done, long ms) {
  auto deadline = Clock::now() + std::chrono::milliseconds(ms);
  while (!done()) {
    if (Clock::now() > deadline) return false;
    std::this_thread::yield();
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  int streams = 20;
  double seconds = 3;
  int sets = 2000;
  for (int i = 1; i + 1 < argc; i += 2) {
    std::string option = argv[i];
    if (option == "--streams") streams = atoi(argv[i + 1]);
    if (option == "--seconds") seconds = atof(argv[i + 1]);
    if (option == "--sets") sets = std::min(atoi(argv[i + 1]), kMaxSets);
  }
  if (getenv("CONFIGWEB_LOAD_VERBOSE") == nullptr) freopen("/dev/null", "w", stderr);

  CreateDescriptors();
  configctl::BuildMapperTables();
  Config* store = ConfigFactoryImpl::GetInstance()->Connect("local:configid=0");
  SocketServer* server = new SocketServer(0);
  if (!server->Init() || !server->Start()) return 1;
  pthread_t serverThread = server->GetThread();
  std::string uri = "socket://127.0.0.1:" + std::to_string(server->GetPort());

  configweb::EventHub hub;
  configweb::DaemonSession session(uri, hub);
  configweb::WebApi api(session);
  configweb::HttpServer web(api, hub, [&session] { return session.StatusFrame(); });
  if (!session.Start() || !web.Start("127.0.0.1", 0)) return 1;
  std::vector<std::unique_ptr<PageStream>> readers;
  for (int i = 0; i < streams; ++i) {
    readers.push_back(std::make_unique<PageStream>());
    if (!readers.back()->Open(web.GetPort())) return 1;
  }
  WaitUntil([&] { return hub.SubscriberCount() == static_cast<size_t>(streams); }, 5000);

  SocketFactory factory;
  Config* writer = factory.Connect(uri);
  SocketFactory baselineFactory;
  Config* listener = baselineFactory.Connect(uri);
  Baseline baseline;
  listener->AddConfigEventListener(eParamID_SystemName, &baseline);

  // Throughput: sets as fast as the store takes them.
  long sent = 0;
  auto start = Clock::now();
  auto stop =
      start + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
  // Each set is followed by a read, as configctl does, which paces the
  // writer at the store's request rate.
  std::string kept;
  while (Clock::now() < stop) {
    writer->Set(eParamID_SystemName, "tp-" + std::to_string(sent++));
    writer->Get(eParamID_SystemName, kept);
  }
  WaitUntil(
      [&] {
        for (auto& reader : readers)
          if (reader->throughputFrames < sent) return false;
        return true;
      },
      5000);
  double elapsed = std::chrono::duration<double>(Clock::now() - start).count();
  long slowest = sent;
  for (auto& reader : readers) slowest = std::min(slowest, reader->throughputFrames.load());
  printf("op=stream streams=%d seconds=%g sets/s=%.0f ops/s=%.0f per_stream_ops/s=%.0f lost=%ld\n",
         streams, seconds, sent / elapsed, slowest * streams / elapsed, slowest / elapsed,
         sent - slowest);

  // Latency: one set at a time, until every stream and the baseline have it.
  int missed = 0;
  for (int set = 0; set < sets && missed < 3; ++set) {
    g_sentUs[set] = NowUs();
    writer->Set(eParamID_SystemName, "lat-" + std::to_string(set));
    missed += !WaitUntil(
        [&] {
          if (baseline.last < set) return false;
          for (auto& reader : readers)
            if (reader->lastLatencySet < set) return false;
          return true;
        },
        2000);
  }
  for (auto& reader : readers) reader->Close();
  std::vector<float> all;
  for (auto& reader : readers)
    all.insert(all.end(), reader->latenciesUs.begin(), reader->latenciesUs.end());
  listener->RemoveConfigEventListener(&baseline);
  printf("op=latency streams=%d sets=%d p50_us=%.1f p99_us=%.1f missed=%d\n", streams, sets,
         Percentile(all, 0.50), Percentile(all, 0.99), missed);
  printf("op=latency-listener sets=%d p50_us=%.1f p99_us=%.1f\n", sets,
         Percentile(baseline.latenciesUs, 0.50), Percentile(baseline.latenciesUs, 0.99));
  fflush(stdout);

  baselineFactory.Disconnect(listener);
  factory.Disconnect(writer);
  web.Stop();
  session.Stop();
  server->Stop();
  pthread_join(serverThread, nullptr);
  SocketConnection::StopAll();
  SocketConnection::WaitForAll(5000);
  ConfigFactoryImpl::GetInstance()->Disconnect(store);
  return 0;
}
