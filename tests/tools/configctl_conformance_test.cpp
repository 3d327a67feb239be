// configctl conformance against configd on every transport (all green), and
// against a proxy in front of configd that corrupts one word of one kind of
// answer: the checker must fail exactly the cases that judge that word.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <cstring>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <thread>

#include "config/access/xconfigmgr_records.h"
#include "tools_fixture.h"

using namespace tools_test;

namespace {

const std::vector<std::string> kScratch = {"--scratch", "FrontPanelLock", "--scratch",
                                           "SystemName"};

// Runs the checker with --json; the names of the failed cases.
std::set<std::string> FailedCases(const std::string& uri, int& passed, int& status) {
  std::vector<std::string> args = {CONFIGCTL_PATH, "conformance", uri, "--json"};
  args.insert(args.end(), kScratch.begin(), kScratch.end());
  Outcome run = RunToEnd(args);
  status = run.exitCode;
  nlohmann::json report = nlohmann::json::parse(run.out, nullptr, false);
  std::set<std::string> failed;
  if (report.is_discarded()) return {"unreadable report: " + run.out + run.err};
  passed = report["passed"].get<int>();
  for (const auto& entry : report["cases"])
    if (entry["result"] == "FAIL") failed.insert(entry["name"].get<std::string>());
  return failed;
}

// One kind of answer corrupted: word `word` of every record of `msgtype`
// from the server becomes `value`.
struct Fault {
  bool udp;
  uint32_t msgtype;
  int word;
  uint32_t value;
  std::set<std::string> failing;
};

// Forwards one transport to configd on its own thread, corrupting answers
// by the fault; requests pass through untouched.
class FaultyProxy {
 public:
  FaultyProxy(const Fault& fault, int serverPort) : _fault(fault), _server(serverPort) {
    _listen = Loopback(0);
    if (!fault.udp) listen(_listen, 16);
    sockaddr_in bound{};
    socklen_t length = sizeof bound;
    getsockname(_listen, reinterpret_cast<sockaddr*>(&bound), &length);
    port = ntohs(bound.sin_port);
    _thread = std::thread([this] { Run(); });
  }
  ~FaultyProxy() {
    _stop = true;
    _thread.join();
    for (auto& [key, pair] : _pairs) close(pair.upstream), _fault.udp || close(key);
    close(_listen);
  }
  int port = 0;

 private:
  struct Pair {
    int upstream;
    sockaddr_in client;            // UDP: where answers go
    std::vector<char> fromServer;  // stream bytes not yet a whole record
  };

  // A socket of the fault's transport on 127.0.0.1: bound to a port of the
  // system's choice (0), or connected to `to`.
  int Loopback(int to) {
    int fd = socket(AF_INET, _fault.udp ? SOCK_DGRAM : SOCK_STREAM, 0);
    sockaddr_in address{AF_INET, htons(static_cast<uint16_t>(to)), {htonl(INADDR_LOOPBACK)}, {}};
    auto* at = reinterpret_cast<sockaddr*>(&address);
    to == 0 ? bind(fd, at, sizeof address) : connect(fd, at, sizeof address);
    return fd;
  }
  void Corrupt(char* record, size_t size) {
    if (size >= 4 * static_cast<size_t>(_fault.word + 1) &&
        zyn::config::access::PeekMessageType(record) == _fault.msgtype)
      memcpy(record + 4 * _fault.word, &_fault.value, 4);
  }
  // Whole records (and their payloads) of the server's stream, corrupted.
  void Records(int client, Pair& pair) {
    std::vector<char>& in = pair.fromServer;
    for (;;) {
      if (in.size() < 4) return;
      size_t size =
          zyn::config::access::ResponseRecordSize(zyn::config::access::PeekMessageType(in.data()));
      if (size == 0) size = in.size();
      if (in.size() < size) return;
      uint32_t payload = 0;
      if (size == sizeof(XCONFIGMGR_RESPONSE_T)) memcpy(&payload, in.data() + 36, 4);
      if (in.size() < size + payload) return;
      Corrupt(in.data(), size);
      send(client, in.data(), size + payload, MSG_NOSIGNAL);
      in.erase(in.begin(), in.begin() + static_cast<long>(size + payload));
    }
  }
  void Run() {
    std::vector<char> buffer(65536);
    while (!_stop) {
      std::vector<pollfd> fds = {{_listen, POLLIN, 0}};
      for (auto& pair : _pairs) {
        if (!_fault.udp) fds.push_back({pair.first, POLLIN, 0});
        fds.push_back({pair.second.upstream, POLLIN, 0});
      }
      if (poll(fds.data(), fds.size(), 50) <= 0) continue;
      std::vector<int> ended;
      for (const pollfd& ready : fds) {
        if (ready.revents == 0) continue;
        if (ready.fd == _listen && !_fault.udp) {
          int client = accept(_listen, nullptr, nullptr);
          _pairs[client] = Pair{Loopback(_server), {}, {}};
          continue;
        }
        if (ready.fd == _listen) {  // a datagram from a client
          sockaddr_in from{};
          socklen_t length = sizeof from;
          ssize_t n = recvfrom(_listen, buffer.data(), buffer.size(), 0,
                               reinterpret_cast<sockaddr*>(&from), &length);
          int key = ntohs(from.sin_port);
          if (_pairs.count(key) == 0) _pairs[key] = Pair{Loopback(_server), from, {}};
          if (n >= 0) send(_pairs[key].upstream, buffer.data(), static_cast<size_t>(n), 0);
          continue;
        }
        for (auto& [client, pair] : _pairs) {
          if (ready.fd != client && ready.fd != pair.upstream) continue;
          ssize_t n = recv(ready.fd, buffer.data(), buffer.size(), 0);
          if (n <= 0 && !_fault.udp) {
            ended.push_back(client);
          } else if (ready.fd == client) {
            send(pair.upstream, buffer.data(), static_cast<size_t>(n), MSG_NOSIGNAL);
          } else if (_fault.udp) {
            Corrupt(buffer.data(), static_cast<size_t>(n));
            sendto(_listen, buffer.data(), static_cast<size_t>(n), 0,
                   reinterpret_cast<sockaddr*>(&pair.client), sizeof pair.client);
          } else {
            pair.fromServer.insert(pair.fromServer.end(), buffer.data(), buffer.data() + n);
            Records(client, pair);
          }
          break;
        }
      }
      for (int client : ended) {
        close(client);
        close(_pairs[client].upstream);
        _pairs.erase(client);
      }
    }
  }

  Fault _fault;
  int _server;
  int _listen = -1;
  std::map<int, Pair> _pairs;  // by client descriptor (TCP) or client port (UDP)
  std::atomic<bool> _stop{false};
  std::thread _thread;
};

}  // namespace

TEST_F(ConfigctlDaemonTest, ConformanceIsGreenOnEveryTransportRefusesRemoteServersAndNeedsScratch) {
  int total = 0;
  for (const std::string& uri :
       {daemon.Uri(), daemon.NetworkUri("tcp"), daemon.NetworkUri("udp")}) {
    SCOPED_TRACE(uri);
    int passed = 0, status = -1;
    EXPECT_EQ(std::set<std::string>{}, FailedCases(uri, passed, status));
    EXPECT_EQ(0, status);
    total += passed;
  }
  EXPECT_GE(total, 60) << "case-runs across the three transports";
  EXPECT_EQ("eParamID_SystemName = zyn-kr-9\n", Ctl({"get", "SystemName"}).out)
      << "the scratch values are restored";

  // It refuses remote servers, and needs scratch parameters to change values.
  Outcome remote = RunToEnd({CONFIGCTL_PATH, "conformance", "tcp://0.0.0.0:43110"});
  EXPECT_EQ(2, remote.exitCode);
  EXPECT_TRUE(Has(remote.err, "add --allow-remote")) << remote.err;
  Outcome readOnly = RunToEnd({CONFIGCTL_PATH, "conformance", daemon.Uri()});
  EXPECT_EQ(0, readOnly.exitCode) << readOnly.out;
  EXPECT_TRUE(Has(readOnly.out,
                  "SKIP  socket  integer/set.unanswered  (changes a value: needs "
                  "--scratch with an integer parameter)"))
      << readOnly.out;
  // A server that is not there fails its cases in bounded time.
  Outcome silent = RunToEnd(
      {CONFIGCTL_PATH, "conformance", "udp://127.0.0.1:" + std::to_string(FreePort())}, 10000);
  EXPECT_EQ(1, silent.exitCode);
  EXPECT_TRUE(Has(silent.out, "FAIL  udp  connection/connect.reply")) << silent.out;
}

TEST_F(ConfigctlDaemonTest, ConformanceFailsExactlyTheCasesAFaultyServerBreaks) {
  const Fault kFaults[] = {
      {false, XCFG_CONNECT_RESPONSE, 5, 2048, {"connect.reply", "connect.again"}},
      {false, XCFG_GET_PARAM_RESPONSE, 10, 3072, {"get.reply"}},
      {false, XCFG_GET_STREAM_PARAM_RESPONSE, 10, 0, {"string.get-reply", "string.get-integer"}},
      {false,
       XCFG_SET_STREAM_PARAM_RESPONSE,
       7,
       1,
       {"string.set-refused", "string.payload-3072", "malformed.bad-payload"}},
      {false,
       XCFG_REMOVE_CONFIG_EVENT_LISTENER_RESPONSE,
       0,
       64,
       {"events.remove-reply", "events.after-remove"}},
      {false, XCFG_PARAM_CHANGED_EVENT, 2, 0, {"events.param-changed"}},
      {false, XCFG_DISCONNECT_RESPONSE, 2, 12345, {"disconnect.reply"}},
      {true, XCFG_SET_PARAM_RESPONSE, 7, 0, {"set.refused"}},
      {true,
       XCFG_GET_PARAM_RESPONSE,
       1,
       7,
       {"connect.two-clients", "get.reply", "get.request-ids", "get.unknown-param",
        "datagram.at-limit"}},
      {true, XCFG_GET_STREAM_PARAM_RESPONSE, 3, 9, {"string.get-reply", "string.get-integer"}},
      {true, XCFG_DISCONNECT_RESPONSE, 6, 1, {"disconnect.reply"}},
  };
  for (const Fault& fault : kFaults) {
    SCOPED_TRACE(std::string(fault.udp ? "udp" : "tcp") + " type " + std::to_string(fault.msgtype) +
                 " word " + std::to_string(fault.word));
    FaultyProxy proxy(fault, fault.udp ? daemon.udpPort : daemon.tcpPort);
    std::string uri = std::string(fault.udp ? "udp" : "tcp") +
                      "://127.0.0.1:" + std::to_string(proxy.port) +
                      "/eventport=" + std::to_string(daemon.multicastPort);
    int passed = 0, status = -1;
    EXPECT_EQ(fault.failing, FailedCases(uri, passed, status));
    EXPECT_EQ(1, status);
  }
}
