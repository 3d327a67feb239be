// A socket server on a free loopback port over the test catalogue's store,
// and a raw protocol peer that sends and reads records byte for byte.
#ifndef TESTS_CONFIG_ACCESS_LOOPBACK_SERVER_H
#define TESTS_CONFIG_ACCESS_LOOPBACK_SERVER_H

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>
#include <string>
#include <vector>

#include "config/access/socket_connection.h"
#include "config/access/socket_server.h"
#include "config/access/xconfigmgr_records.h"
#include "config/config_factory_impl.h"
#include "test_catalogue.h"

// Starts a server on a free port for the test and stops it, and every
// connection it served, afterwards.
class LoopbackServer {
 public:
  LoopbackServer() {
    test_catalogue::Register();
    testing::internal::CaptureStderr();
    store = ConfigFactoryImpl::GetInstance()->Connect("local:configid=0");
    testing::internal::GetCapturedStderr();
    auto* server = new zyn::config::access::SocketServer(0);
    if (!server->Init() || !server->Start()) {
      ADD_FAILURE() << "server did not start";
      delete server;
      return;
    }
    port = server->GetPort();
    thread = server->GetThread();
    running = server;
  }
  ~LoopbackServer() {
    if (running != nullptr) {
      running->Stop();
      pthread_join(thread, nullptr);  // the server deleted itself
    }
    zyn::config::access::SocketConnection::StopAll();
    EXPECT_TRUE(zyn::config::access::SocketConnection::WaitForAll(10000));
    ConfigFactoryImpl::GetInstance()->Disconnect(store);
  }

  Config* store = nullptr;
  int port = 0;

 private:
  zyn::config::access::SocketServer* running = nullptr;
  pthread_t thread{};
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
  // True when the server closed the connection.
  bool ClosedByPeer(int timeoutMs = 3000) {
    pollfd p{fd, POLLIN, 0};
    if (poll(&p, 1, timeoutMs) <= 0) return false;
    char c;
    return ::recv(fd, &c, 1, 0) == 0;
  }
  // Connects the peer to store `configID`; the Connect Response's error.
  uint32_t Connect(uint32_t connectionID, uint32_t configID = 0) {
    Send(XCONFIGMGR_CONNECTION_REQUEST_T{
        zyn::config::access::MakeHeader(XCFG_CONNECT_REQUEST, connectionID, 1, configID)});
    XCONFIGMGR_CONNECTION_RESPONSE_T response{};
    EXPECT_TRUE(ReadRecord(response));
    return response.error;
  }

  int fd = -1;
  bool connected = false;
};

// The words of a record, for whole-record comparisons.
template <typename Record>
std::vector<uint32_t> WordsOf(const Record& record) {
  std::vector<uint32_t> words(sizeof(Record) / 4);
  memcpy(words.data(), &record, sizeof(Record));
  return words;
}

#endif  // TESTS_CONFIG_ACCESS_LOOPBACK_SERVER_H
