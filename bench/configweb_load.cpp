// Load tool for configweb's event stream. It starts a store and a socket
// server in this process, configweb's session, API and HTTP server on free
// loopback ports, N event streams (default 20, SSE over HTTP) and, as the
// baseline of the same run, one plain listener: the library's socket client
// registered with the server directly. Every value set carries its number,
// and the send time of each number is kept, so that every change a reader
// sees is a latency sample. Two phases, one line each:
//   op=flood   a writer pipelines --sets string Sets (default 100000, the
//              writer's maximum) without waiting for anything;
//   op=paced   --paced Sets (default 500), one every --pace-ms (default 20),
//              the rate of a person or a panel working the unit.
// Each line says how many streams ended on the final value, the frames that
// falsely said configd was lost and the streams closed under the reader
// (both must be 0), the resync frames, and the streams' p50/p99 latency
// against the plain listener's for the same changes, with the p50 ratio.
// Streams coalesce: they see the latest value per frame, not every one, so
// the listener is sampled at exactly the changes the streams saw.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "common/parameters.h"
#include "config/access/socket_connection.h"
#include "config/access/socket_factory.h"
#include "config/access/socket_server.h"
#include "config/config_event_listener.h"
#include "config/config_factory_impl.h"
#include "config/descriptors/param_descriptors.h"
#include "config/descriptors/param_ids.h"
#include "configweb/daemon_session.h"
#include "configweb/event_hub.h"
#include "configweb/http_server.h"
#include "configweb/web_api.h"
#include "load_figures.h"

using namespace zyn::config::access;
using Clock = std::chrono::steady_clock;

namespace {

constexpr int kMaxSets = 100000;
constexpr long kSettleMs = 20000;  // how long the readers may take to catch up

long long NowUs() {
  return std::chrono::duration_cast<std::chrono::microseconds>(Clock::now().time_since_epoch())
      .count();
}

// One phase: the value prefix, the send time of each number and when the
// plain listener saw it.
struct Phase {
  explicit Phase(const char* valuePrefix)
      : prefix(valuePrefix), sentUs(kMaxSets), listenerUs(kMaxSets) {}
  const std::string prefix;  // "f-" or "p-"
  std::vector<std::atomic<long long>> sentUs;
  std::vector<std::atomic<long long>> listenerUs;
};

std::atomic<Phase*> g_phase{nullptr};
// The number a phase ends on: readers wake the main thread only when they
// reach it (or close), so that waking it costs no reader its latency.
std::atomic<long> g_final{-1};
// Readers signal progress here; the main thread blocks on it.
std::mutex g_progressLock;
std::condition_variable g_progress;

void Progress() {
  { std::lock_guard<std::mutex> hold(g_progressLock); }
  g_progress.notify_all();
}

// Every number after `tag` in `text` (a frame may hold several changes).
template <typename Each>
void ForEachNumber(const char* text, size_t length, const std::string& tag, Each each) {
  std::string view(text, length);
  for (size_t at = view.find(tag); at != std::string::npos; at = view.find(tag, at + 1)) {
    char* end = nullptr;
    long number = strtol(view.c_str() + at + tag.size(), &end, 10);
    if (end != nullptr && *end == '"' && number >= 0 && number < kMaxSets) each(number);
  }
}

// One page's stream. All streams are read by one thread (ReadStreams) that
// waits on them with epoll, as the fan-out bench reads its listeners, so
// that the figure is configweb's and not the cost of waking a reader thread
// per stream on a small machine.
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
    return send(_fd, request, sizeof request - 1, MSG_NOSIGNAL) > 0;
  }
  void Close() { close(_fd); }
  int Fd() const { return _fd; }
  // Starts a phase's counts afresh; call while no phase is being written.
  void Reset() {
    std::lock_guard<std::mutex> hold(lock);
    last = -1;
    lostFrames = resyncFrames = 0;
    samples.clear();
    latencyUs.clear();
  }
  // Takes what has arrived; false once the stream has ended.
  bool OnReadable(bool closing) {
    char chunk[65536];
    ssize_t n = recv(_fd, chunk, sizeof chunk, 0);
    if (n <= 0) {
      if (!closing) closedUnderUs = true;
      Progress();
      return false;
    }
    long long now = NowUs();
    const bool wasConnected = connected;
    _buffer.append(chunk, static_cast<size_t>(n));
    size_t start = 0;
    size_t end;
    Phase* phase = g_phase;
    bool ended;
    {
      std::lock_guard<std::mutex> hold(lock);
      while ((end = _buffer.find("\n\n", start)) != std::string::npos) {
        const char* frame = _buffer.data() + start;
        size_t length = end - start;
        std::string text(frame, length);
        if (text.find("\"connected\":true") != std::string::npos) connected = true;
        if (text.find("\"connected\":false") != std::string::npos) ++lostFrames;
        if (text.compare(0, 13, "event: resync") == 0) ++resyncFrames;
        if (phase != nullptr)
          ForEachNumber(frame, length, "\"" + phase->prefix, [&](long number) {
            latencyUs.push_back(static_cast<double>(now - phase->sentUs[number].load()));
            samples.push_back(number);
            last = number;
          });
        start = end + 2;
      }
      ended = last == g_final;
    }
    _buffer.erase(0, start);
    if (ended || connected != wasConnected) Progress();
    return true;
  }

  std::atomic<bool> connected{false};
  std::atomic<bool> closedUnderUs{false};
  std::mutex lock;
  long last = -1;  // the last number seen this phase; guarded by lock
  int lostFrames = 0;
  int resyncFrames = 0;
  std::vector<long> samples;      // numbers seen, in order; guarded by lock
  std::vector<double> latencyUs;  // guarded by lock

 private:
  int _fd = -1;
  std::string _buffer;  // the reading thread's
};

// Reads every stream on one thread until `closing` is set and each has ended.
class StreamReaders {
 public:
  explicit StreamReaders(std::vector<std::unique_ptr<PageStream>>& streams) : _streams(streams) {
    _epoll = epoll_create1(0);
    for (auto& stream : _streams) {
      epoll_event event{};
      event.events = EPOLLIN;
      event.data.ptr = stream.get();
      epoll_ctl(_epoll, EPOLL_CTL_ADD, stream->Fd(), &event);
    }
    _thread = std::thread([this] { Run(); });
  }
  // Ends the streams (their server side closes them) and the thread.
  void Stop() {
    _closing = true;
    for (auto& stream : _streams) shutdown(stream->Fd(), SHUT_RDWR);
    _thread.join();
    close(_epoll);
  }

 private:
  void Run() {
    size_t open = _streams.size();
    epoll_event events[64];
    while (open > 0) {
      int count = epoll_wait(_epoll, events, 64, 1000);
      for (int i = 0; i < count; ++i) {
        auto* stream = static_cast<PageStream*>(events[i].data.ptr);
        if (!stream->OnReadable(_closing)) {
          epoll_ctl(_epoll, EPOLL_CTL_DEL, stream->Fd(), nullptr);
          --open;
        }
      }
    }
  }
  std::vector<std::unique_ptr<PageStream>>& _streams;
  std::atomic<bool> _closing{false};
  int _epoll = -1;
  std::thread _thread;
};

// The baseline: the library's own event connection, straight to the server.
class Baseline : public ConfigEventListener {
 public:
  bool ParamChanged(eParam_t, unsigned int, timeval) override { return true; }
  bool ParamChanged(eParam_t, std::string value, timeval) override {
    long long now = NowUs();
    Phase* phase = g_phase;
    if (phase == nullptr) return true;
    if (value.compare(0, phase->prefix.size(), phase->prefix) != 0) return true;
    long number = strtol(value.c_str() + phase->prefix.size(), nullptr, 10);
    if (number >= 0 && number < kMaxSets) {
      phase->listenerUs[number] = now - phase->sentUs[number].load();
      last = number;
      if (number == g_final) Progress();
    }
    return true;
  }
  std::atomic<long> last{-1};
};

// Blocks until `done` holds or `ms` pass; readers call Progress on news.
template <typename Done>
bool WaitUntil(Done done, long ms) {
  std::unique_lock<std::mutex> hold(g_progressLock);
  return g_progress.wait_for(hold, std::chrono::milliseconds(ms), done);
}

// Writes `sets` values of `phase`, `paceUs` apart (0: pipelined, as fast as
// the connection takes them), waits for the readers and prints the line.
void RunPhase(const char* name, Phase& phase, int sets, long paceUs, Config* writer,
              Baseline& baseline, std::vector<std::unique_ptr<PageStream>>& readers) {
  for (auto& reader : readers) reader->Reset();
  g_final = sets - 1;
  g_phase = &phase;
  auto start = Clock::now();
  for (int i = 0; i < sets; ++i) {
    if (paceUs > 0) std::this_thread::sleep_until(start + std::chrono::microseconds(paceUs * i));
    phase.sentUs[i] = NowUs();
    writer->Set(eParamID_SystemName, phase.prefix + std::to_string(i));
  }
  double writeSeconds = std::chrono::duration<double>(Clock::now() - start).count();
  long final = sets - 1;
  auto ended = [&] {
    if (baseline.last < final) return false;
    for (auto& reader : readers) {
      if (reader->closedUnderUs) continue;
      std::lock_guard<std::mutex> hold(reader->lock);
      if (reader->last != final) return false;
    }
    return true;
  };
  WaitUntil(ended, kSettleMs);
  double seconds = std::chrono::duration<double>(Clock::now() - start).count();
  g_phase = nullptr;

  int onFinal = 0, lost = 0, closed = 0, resyncs = 0;
  std::vector<double> streamUs, listenerUs;
  for (auto& reader : readers) {
    std::lock_guard<std::mutex> hold(reader->lock);
    onFinal += reader->last == final;
    lost += reader->lostFrames;
    closed += reader->closedUnderUs;
    resyncs += reader->resyncFrames;
    streamUs.insert(streamUs.end(), reader->latencyUs.begin(), reader->latencyUs.end());
    for (long number : reader->samples) {
      long long heard = phase.listenerUs[number];
      if (heard > 0) listenerUs.push_back(static_cast<double>(heard));
    }
  }
  Figures stream = Summarise(streamUs, seconds);
  Figures listener = Summarise(listenerUs, seconds);
  printf(
      "op=%s sets=%d write_sets/s=%.0f streams=%zu on_final=%d/%zu lost_frames=%d "
      "closed=%d resyncs=%d samples=%zu stream_p50_us=%.1f stream_p99_us=%.1f "
      "listener_p50_us=%.1f listener_p99_us=%.1f p50_ratio=%.2f\n",
      name, sets, sets / writeSeconds, readers.size(), onFinal, readers.size(), lost, closed,
      resyncs, streamUs.size(), stream.p50, stream.p99, listener.p50, listener.p99,
      listener.p50 > 0 ? stream.p50 / listener.p50 : 0.0);
  fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  int streams = 20;
  int sets = kMaxSets;
  int paced = 500;
  long paceMs = 20;
  for (int i = 1; i + 1 < argc; i += 2) {
    std::string option = argv[i];
    if (option == "--streams") streams = atoi(argv[i + 1]);
    if (option == "--sets") sets = std::min(atoi(argv[i + 1]), kMaxSets);
    if (option == "--paced") paced = std::min(atoi(argv[i + 1]), kMaxSets);
    if (option == "--pace-ms") paceMs = atol(argv[i + 1]);
  }
  if (getenv("CONFIGWEB_LOAD_VERBOSE") == nullptr) freopen("/dev/null", "w", stderr);

  CreateDescriptors();
  common::BuildMapperTables();
  Config* store = ConfigFactoryImpl::GetInstance()->Connect("local:configid=0");
  SocketServer* server = new SocketServer(0);
  if (!server->Init() || !server->Start()) return 1;
  pthread_t serverThread = server->GetThread();
  std::string uri = "socket://127.0.0.1:" + std::to_string(server->GetPort());

  configweb::EventHub hub;
  configweb::DaemonSession session(uri, hub);
  configweb::WebApi api(session);
  configweb::HttpServer web(
      api, hub, [&session] { return session.StatusFrame(); }, static_cast<size_t>(streams));
  if (!session.Start() || !web.Start("127.0.0.1", 0)) return 1;
  std::vector<std::unique_ptr<PageStream>> readers;
  for (int i = 0; i < streams; ++i) {
    readers.push_back(std::make_unique<PageStream>());
    if (!readers.back()->Open(web.GetPort())) return 1;
  }
  StreamReaders reading(readers);
  WaitUntil(
      [&] {
        for (auto& reader : readers)
          if (!reader->connected) return false;
        return true;
      },
      5000);

  SocketFactory factory;
  Config* writer = factory.Connect(uri);
  SocketFactory baselineFactory;
  Config* listener = baselineFactory.Connect(uri);
  Baseline baseline;
  if (writer == nullptr || listener == nullptr ||
      !listener->AddConfigEventListener(eParamID_SystemName, &baseline))
    return 1;
  // The registrations are taken asynchronously: one change seen by all
  // before anything is measured.
  Phase warm("w-");
  g_final = 0;
  g_phase = &warm;
  for (int i = 0; i < 50 && baseline.last < 0; ++i) {
    warm.sentUs[i] = NowUs();
    writer->Set(eParamID_SystemName, "w-" + std::to_string(i));
    WaitUntil([&] { return baseline.last >= 0; }, 100);
  }
  g_phase = nullptr;

  auto flood = std::make_unique<Phase>("f-");
  RunPhase("flood", *flood, sets, 0, writer, baseline, readers);
  baseline.last = -1;
  auto steady = std::make_unique<Phase>("p-");
  RunPhase("paced", *steady, paced, paceMs * 1000, writer, baseline, readers);

  reading.Stop();
  for (auto& reader : readers) reader->Close();
  listener->RemoveConfigEventListener(&baseline);
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
