// A socket server and the network servers on free loopback ports over the
// test catalogue's store, raw protocol peers (stream and datagram) that send
// and read records byte for byte, and a listener for the multicast events.
#ifndef TESTS_CONFIG_ACCESS_LOOPBACK_SERVER_H
#define TESTS_CONFIG_ACCESS_LOOPBACK_SERVER_H

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "config/access/network_server.h"
#include "config/access/network_tcp_connection.h"
#include "config/access/outbox.h"
#include "config/access/socket.h"
#include "config/access/socket_connection.h"
#include "config/access/socket_server.h"
#include "config/access/xconfigmgr_records.h"
#include "config/config_factory_impl.h"
#include "support/rate_limited_log.h"
#include "test_catalogue.h"
#include "test_stderr.h"

// The port a socket is bound to.
inline int PortOf(const Socket& socket) {
  sockaddr_in bound{};
  socklen_t length = sizeof bound;
  getsockname(socket.get_fd(), reinterpret_cast<sockaddr*>(&bound), &length);
  return ntohs(bound.sin_port);
}

// A stream or datagram server on a free loopback port over store 0 of the
// test catalogue, started for the test; Stop (or the destructor) stops it
// and waits for it and every connection it served.
template <typename Server, typename Connection>
class ServerOnLoopback {
 public:
  explicit ServerOnLoopback(Server* server) {
    RateLimitedLog::ResetAll();  // each test sees its first line of each kind
    test_catalogue::Register();
    Stderr([&] { store = ConfigFactoryImpl::GetInstance()->Connect("local:configid=0"); });
    if (!server->Init() || !server->Start()) {
      ADD_FAILURE() << "server did not start";
      delete server;
      return;
    }
    port = server->GetPort();
    thread = server->GetThread();
    running = server;
  }
  ~ServerOnLoopback() { Stop(); }
  void Stop() {
    if (running != nullptr) {
      running->Stop();
      pthread_join(thread, nullptr);  // the server deleted itself
      running = nullptr;
    }
    Connection::StopAll();
    EXPECT_TRUE(Connection::WaitForAll(10000));
    if (store != nullptr) ConfigFactoryImpl::GetInstance()->Disconnect(store);
    store = nullptr;
  }

  Config* store = nullptr;
  int port = 0;

 private:
  Server* running = nullptr;
  pthread_t thread{};
};

// The local protocol's socket server.
struct LoopbackServer
    : ServerOnLoopback<zyn::config::access::SocketServer, zyn::config::access::SocketConnection> {
  LoopbackServer() : ServerOnLoopback(new zyn::config::access::SocketServer(0)) {}
};

// A network server (TCP or UDP), its events sent to the test's own
// multicast port.
struct NetworkLoopbackServer
    : ServerOnLoopback<zyn::boxline::config::access::NetworkServer,
                       zyn::boxline::config::access::NetworkTCPConnection> {
  NetworkLoopbackServer(int type, int multicastPort)
      : ServerOnLoopback(Make(type, multicastPort)) {}
  static zyn::boxline::config::access::NetworkServer* Make(int type, int multicastPort) {
    auto* server = new zyn::boxline::config::access::NetworkServer(AF_INET, type, 0);
    server->SetMulticastPort(multicastPort);
    return server;
  }
};

// A protocol peer on a plain TCP socket.
class RawPeer {
 public:
  explicit RawPeer(int port, int receiveBuffer = 0) {
    fd = ::socket(AF_INET, SOCK_STREAM, 0);
    if (receiveBuffer > 0) setsockopt(fd, SOL_SOCKET, SO_RCVBUF, &receiveBuffer, sizeof(int));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    connected = ::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
  }
  ~RawPeer() { Close(); }
  void Close() {
    if (fd >= 0) ::close(fd);
    fd = -1;
  }

  template <typename Record>
  void Send(const Record& record) {
    char bytes[sizeof(Record)];
    zyn::config::access::Pack(record, bytes);
    SendBytes(bytes, sizeof bytes);
  }
  void SendBytes(const void* bytes, size_t length) {
    ASSERT_EQ(static_cast<ssize_t>(length), ::send(fd, bytes, length, MSG_NOSIGNAL));
  }
  // Exactly `length` bytes, or fewer when nothing more arrives in time.
  std::vector<char> Read(size_t length, int timeoutMs = 3000) {
    std::vector<char> bytes;
    while (bytes.size() < length) {
      pollfd p{fd, POLLIN, 0};
      if (poll(&p, 1, timeoutMs) <= 0) break;
      char chunk[4096];
      ssize_t n = ::recv(fd, chunk, std::min(sizeof chunk, length - bytes.size()), 0);
      if (n <= 0) break;
      bytes.insert(bytes.end(), chunk, chunk + n);
    }
    return bytes;
  }
  template <typename Record>
  bool ReadRecord(Record& record, int timeoutMs = 3000) {
    std::vector<char> bytes = Read(sizeof(Record), timeoutMs);
    if (bytes.size() != sizeof(Record)) return false;
    zyn::config::access::Unpack(bytes.data(), record);
    return true;
  }
  // True when the server closes (or resets) the connection in time; with
  // `afterData`, after whatever it sent before, else before sending anything.
  bool ClosedByPeer(int timeoutMs = 3000, bool afterData = false) {
    char chunk[4096];
    for (pollfd p{fd, POLLIN, 0}; poll(&p, 1, timeoutMs) > 0;) {
      ssize_t n = ::recv(fd, chunk, afterData ? sizeof chunk : 1, 0);
      if (n <= 0) return n == 0 || errno == ECONNRESET;
      if (!afterData) return false;
    }
    return false;
  }
  // Connects the peer to store `configID`; the Connect Response's error.
  uint32_t Connect(uint32_t connectionID, uint32_t configID = 0) {
    Send(XCONFIGMGR_CONNECTION_REQUEST_T{
        zyn::config::access::MakeHeader(XCFG_CONNECT_REQUEST, connectionID, 1, configID)});
    XCONFIGMGR_CONNECTION_RESPONSE_T response{};
    EXPECT_TRUE(ReadRecord(response));
    return response.error;
  }

  // Makes sure the server has handled everything the peer sent so far: a
  // Get answered.
  void Sync() {
    Send(XCONFIGMGR_REQUEST_T{zyn::config::access::MakeHeader(XCFG_GET_PARAM_REQUEST, 0, 1000, 0),
                              test_catalogue::kRaw, 0, 0, 0});
    XCONFIGMGR_RESPONSE_T response{};
    ASSERT_TRUE(ReadRecord(response));
    ASSERT_EQ(96u, response.header.msgtype);
  }

  int fd = -1;
  bool connected = false;
};

// A datagram socket on 127.0.0.1: sends to a loopback port, or, joined to
// the event group on 127.0.0.1, receives the multicast events sent to its
// own port.
class RawDatagramPeer {
 public:
  RawDatagramPeer() : socket(Socket::kInternetDomain, Socket::kDatagram) {
    socket.create();
    socket.bind("", 0);
    port = PortOf(socket);
  }
  // False where the machine cannot deliver multicast on the loopback.
  bool JoinEvents() { return socket.add_membership("239.18.27.18", "127.0.0.1"); }

  void SendBytes(int to, const std::vector<char>& bytes) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<uint16_t>(to));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ASSERT_TRUE(socket.sendto(bytes.data(), static_cast<int>(bytes.size()), address));
  }
  template <typename Record>
  void Send(int to, const Record& record, const std::vector<char>& payload = {}) {
    std::vector<char> bytes(sizeof(Record));
    zyn::config::access::Pack(record, bytes.data());
    bytes.insert(bytes.end(), payload.begin(), payload.end());
    SendBytes(to, bytes);
  }
  // The next datagram, empty when none arrives in time.
  std::vector<char> Receive(int timeoutMs = 3000) {
    pollfd p{socket.get_fd(), POLLIN, 0};
    if (poll(&p, 1, timeoutMs) <= 0) return {};
    std::vector<char> bytes(24 * 1024);
    ssize_t n = ::recv(socket.get_fd(), bytes.data(), bytes.size(), 0);
    bytes.resize(n > 0 ? static_cast<size_t>(n) : 0);
    return bytes;
  }
  // The words of the next datagram's leading record.
  template <typename Record>
  std::vector<uint32_t> ReceiveWords(std::vector<char>* payload = nullptr, int timeoutMs = 3000) {
    std::vector<char> bytes = Receive(timeoutMs);
    if (bytes.size() < sizeof(Record)) return {static_cast<uint32_t>(bytes.size())};
    if (payload != nullptr) payload->assign(bytes.begin() + sizeof(Record), bytes.end());
    std::vector<uint32_t> words(sizeof(Record) / 4);
    memcpy(words.data(), bytes.data(), sizeof(Record));
    return words;
  }

  Socket socket;
  int port = 0;
};

// The words of a record, for whole-record comparisons.
template <typename Record>
std::vector<uint32_t> WordsOf(const Record& record) {
  std::vector<uint32_t> words(sizeof(Record) / 4);
  memcpy(words.data(), &record, sizeof(Record));
  return words;
}

// A writer that pipelines Sets as fast as a stream server on `port` takes
// them, a listener that reads its events and one that never reads. The
// reader is never cut off and hears every change in order; the other is.
inline void CheckReaderKeepsUpWithPipelinedSets(int port, int (*liveCount)()) {
  using zyn::config::access::MakeHeader;
  constexpr uint32_t kSets = 20000;
  constexpr uint32_t kBase = 0x00700000;  // values no earlier test has set
  // Connections made from here on cut a stalled client off sooner.
  zyn::config::access::Outbox::SetDrainLimitMs(2000);
  RawPeer reader(port), stalled(port, 4096), writer(port);
  for (RawPeer* listener : {&reader, &stalled}) {
    ASSERT_EQ(0u, listener->Connect(0x00081000));
    listener->Send(XCONFIGMGR_EVENT_HANDLER_REQUEST_T{
        MakeHeader(XCFG_ADD_CONFIG_EVENT_LISTENER_REQUEST, 1, 2, 0), 0});
    listener->Sync();
  }
  ASSERT_EQ(0u, writer.Connect(0x00082000));
  std::vector<char> sets(kSets * sizeof(XCONFIGMGR_REQUEST_T));
  for (uint32_t i = 0; i < kSets; ++i)
    zyn::config::access::Pack(XCONFIGMGR_REQUEST_T{MakeHeader(XCFG_SET_PARAM_REQUEST, 1, 3, 0),
                                                   test_catalogue::kRaw, kBase + i, 0, 0},
                              sets.data() + i * sizeof(XCONFIGMGR_REQUEST_T));
  std::atomic<uint32_t> heard{0};
  std::thread listening([&] {
    XCONFIGMGR_RESPONSE_T event{};
    while (heard < kSets && reader.ReadRecord(event, 10000) && event.header.msgtype == 144 &&
           event.value == kBase + heard)
      ++heard;
  });
  std::string err = Stderr([&] {
    writer.SendBytes(sets.data(), sets.size());
    writer.Sync();
    listening.join();
  });
  EXPECT_EQ(kSets, heard.load()) << "the reading listener was cut off or missed events:\n" << err;
  // Cut off while it still does not read; only then is its end read.
  for (int waited = 0; liveCount() > 2 && waited < 1000; ++waited) usleep(10000);
  EXPECT_TRUE(stalled.ClosedByPeer(10000, true)) << "the listener that never reads was kept:\n"
                                                 << err;
  zyn::config::access::Outbox::SetDrainLimitMs(0);
}

// A stream server on `port` with a limit of `slots` connections and a short
// read time-out: one client idles between records while the others stall
// mid-record (in the message type, then in the record's body). The stalled
// ones are closed, with `line`, which frees their slots for a new client;
// the idle one is kept and still served.
inline void CheckStalledRecordsTimedOut(int port, int slots, const std::string& line) {
  std::string err = Stderr([&] {
    RawPeer idle(port);
    ASSERT_EQ(0u, idle.Connect(0x00071000));
    std::vector<std::unique_ptr<RawPeer>> stalled;
    const char half[8] = {3, 0, 0, 0, 1, 0, 0, 0};  // a Get Request cut short
    for (int i = 1; i < slots; ++i) {
      stalled.emplace_back(new RawPeer(port));
      ASSERT_EQ(0u, stalled.back()->Connect(0x00071000 + i));
      stalled.back()->SendBytes(half, i % 2 == 1 ? 2 : sizeof half);
    }
    for (auto& peer : stalled) EXPECT_TRUE(peer->ClosedByPeer(10000)) << "a stalled peer kept";
    RawPeer fresh(port);
    EXPECT_EQ(0u, fresh.Connect(0x00071100)) << "the freed slots serve a new client";
    fresh.Sync();
    idle.Sync();
  });
  EXPECT_TRUE(Has(err, line)) << err;
}

#endif  // TESTS_CONFIG_ACCESS_LOOPBACK_SERVER_H
