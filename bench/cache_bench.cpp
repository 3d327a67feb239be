// A read over the local socket with and without "caching=true", against a
// server in this process: the uncached read is one request/response
// exchange, the cached one a map look-up once the value is held.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "config/access/socket_connection.h"
#include "config/access/socket_factory.h"
#include "config/access/socket_server.h"
#include "config/config_factory_impl.h"
#include "config/descriptors/integer_descriptor.h"
#include "config/descriptors/param_descriptors.h"

using namespace zyn::config::access;

namespace {

constexpr unsigned int kBenchInteger = 0xFEEDE001;

// The store and its server, started once for every benchmark of the run.
struct Server {
  Server() {
    IntegerDescriptor* d = new IntegerDescriptor();
    d->SetParamID(kBenchInteger);
    d->SetParamIDName("eParamID_BenchCached");
    d->SetParamType(eCParam_IntegerValue);
    d->SetMinValue(0);
    d->SetMaxValue(1000);
    d->SetFactoryDefault(500);
    AddDescriptor(d);
    IndexDescriptorNames();
    store = ConfigFactoryImpl::GetInstance()->Connect("local:configid=0");
    server = new SocketServer(0);
    if (!server->Init() || !server->Start()) {
      fprintf(stdout, "cache_bench: server did not start\n");
      exit(1);
    }
    uri = "socket://127.0.0.1:" + std::to_string(server->GetPort()) + "/configid=0";
    thread = server->GetThread();
  }
  // Stops the server (which deletes itself) and every connection it served.
  void Stop() {
    server->Stop();
    pthread_join(thread, nullptr);
    SocketConnection::StopAll();
    SocketConnection::WaitForAll(5000);
    ConfigFactoryImpl::GetInstance()->Disconnect(store);
  }
  Config* store;
  SocketServer* server;
  pthread_t thread;
  std::string uri;
};

Server& TheServer() {
  static Server server;
  return server;
}

void Read(benchmark::State& state, const char* options) {
  SocketFactory factory;
  Config* config = factory.Connect(TheServer().uri + options);
  if (config == nullptr) {
    state.SkipWithError("cannot connect");
    return;
  }
  uint64_t sum = 0;
  for (auto _ : state) sum += config->Get(kBenchInteger);
  benchmark::DoNotOptimize(sum);
  if (sum != 500u * static_cast<uint64_t>(state.iterations()))
    state.SkipWithError("wrong value read");
  factory.Disconnect(config);
}

void BM_UncachedGet(benchmark::State& state) { Read(state, ""); }
void BM_CachedGet(benchmark::State& state) { Read(state, "/caching=true"); }

BENCHMARK(BM_UncachedGet);
BENCHMARK(BM_CachedGet);

}  // namespace

int main(int argc, char** argv) {
  // The library's connect and disconnect reports are not the output.
  if (getenv("CACHE_BENCH_VERBOSE") == nullptr) freopen("/dev/null", "w", stderr);
  benchmark::Initialize(&argc, argv);
  TheServer();
  benchmark::RunSpecifiedBenchmarks();
  TheServer().Stop();
  return 0;
}
