// Holds idle clients on a running configd's local socket server, for the
// idle-connection load run (bench/idle_connections). It raises its own
// descriptor limit, opens N connections, each confirmed with its Connect
// Request and then silent, prints one line
//   idle=10000 open_s=1.52 opens/s=6579
// and keeps them until SIGINT or SIGTERM. Then it checks that every idle
// connection is still served with one integer Get each, closes them all and
// prints
//   idle=10000 answered=10000
// Usage: idle_load --port P [--idle N] [--param ID]
// Exits 1 when a connection cannot be opened (after saying why).
#include <pthread.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "config/access/socket_factory.h"
#include "config/config.h"
#include "config/descriptors/param_ids.h"

namespace {

// Descriptors the program needs besides one per connection.
constexpr rlim_t kSpareDescriptors = 32;

// Raises the soft descriptor limit to the hard one; false when even that
// is too low for `needed`.
bool RaiseDescriptorLimit(rlim_t needed) {
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return false;
  limit.rlim_cur = limit.rlim_max;
  if (setrlimit(RLIMIT_NOFILE, &limit) != 0) return false;
  if (limit.rlim_cur != RLIM_INFINITY && limit.rlim_cur < needed) {
    fprintf(stderr, "idle_load: %zu descriptors needed, the hard limit is %zu\n",
            static_cast<size_t>(needed), static_cast<size_t>(limit.rlim_cur));
    return false;
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  int port = 0, idle = 10000;
  unsigned int param = eParamID_Vid1RGBProcAmpGainBlue;
  for (int i = 1; i + 1 < argc; i += 2) {
    if (strcmp(argv[i], "--port") == 0) port = atoi(argv[i + 1]);
    if (strcmp(argv[i], "--idle") == 0) idle = atoi(argv[i + 1]);
    if (strcmp(argv[i], "--param") == 0)
      param = static_cast<unsigned int>(strtoul(argv[i + 1], nullptr, 0));
  }
  if (port <= 0 || idle < 1) {
    fprintf(stderr, "usage: idle_load --port P [--idle N] [--param ID]\n");
    return 2;
  }
  if (!RaiseDescriptorLimit(static_cast<rlim_t>(idle) + kSpareDescriptors)) return 1;
  // Every connect says which store it opens; thousands of those lines are
  // not the output. The program's own messages keep a copy of stderr.
  FILE* report = fdopen(dup(2), "w");
  if (getenv("SOCKET_LOAD_VERBOSE") == nullptr) freopen("/dev/null", "w", stderr);
  // The stop signals wait for sigwait, blocked before any thread exists.
  sigset_t stop;
  sigemptyset(&stop);
  sigaddset(&stop, SIGINT);
  sigaddset(&stop, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &stop, nullptr);

  const std::string uri = "socket://127.0.0.1:" + std::to_string(port) + "/configid=0";
  zyn::config::access::SocketFactory factory;
  std::vector<Config*> clients;
  clients.reserve(idle);
  auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < idle; ++i) {
    Config* client = factory.Connect(uri);
    if (client == nullptr) {
      fprintf(report, "idle_load: connection %d of %d to %s was not confirmed\n", i + 1, idle,
              uri.c_str());
      fflush(report);
      for (Config* open : clients) factory.Disconnect(open);
      return 1;
    }
    clients.push_back(client);
  }
  double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  printf("idle=%d open_s=%.2f opens/s=%.0f\n", idle, seconds, idle / seconds);
  fflush(stdout);

  int received = 0;
  sigwait(&stop, &received);
  int answered = 0;
  unsigned int value = 0;
  for (Config* client : clients) {
    if (client->Get(param, value)) ++answered;
    factory.Disconnect(client);
  }
  printf("idle=%d answered=%d\n", idle, answered);
  return answered == idle ? 0 : 1;
}
