#include "config/access/socket.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "loopback_server.h"
#include "test_stderr.h"

namespace {

void ExpectContains(const std::string& text, const std::string& part) {
  EXPECT_TRUE(Has(text, part)) << "missing \"" << part << "\" in:\n" << text;
}

// A connected loopback pair on a port the kernel picked: `client` and the
// accepted `server` end.
struct StreamPair {
  Socket listener{Socket::kInternetDomain, Socket::kStream};
  Socket client{Socket::kInternetDomain, Socket::kStream};
  Socket server{Socket::kInternetDomain, Socket::kStream};

  bool Open() {
    return listener.create() && listener.bind(0) && listener.listen() && client.create() &&
           client.connect("127.0.0.1", PortOf(listener)) && listener.accept(&server);
  }
};

TEST(SocketTest, RecvReturnsWhatArrivedBeforeThePeerClosedOrOneDatagram) {
  StreamPair pair, silent;
  ASSERT_TRUE(pair.Open() && silent.Open());
  EXPECT_EQ(htonl(INADDR_LOOPBACK), pair.listener.get_inet_address().sin_addr.s_addr)
      << "accept stores the peer's address in the listener";
  char buffer[16] = {};
  EXPECT_EQ(0, pair.server.recv(buffer, 0)) << "a zero length must not wait";
  ASSERT_TRUE(pair.client.send("abcde", 5));
  EXPECT_EQ(2, pair.server.peek(buffer, 2));
  pair.client.close();
  EXPECT_EQ(5, pair.server.recv(buffer, sizeof buffer)) << "peek consumed nothing";
  EXPECT_EQ("abcde", std::string(buffer, 5));
  silent.client.close();
  EXPECT_EQ(0, silent.server.recv(buffer, sizeof buffer));

  // A datagram round trip.
  Socket receiver(Socket::kInternetDomain, Socket::kDatagram);
  Socket sender(Socket::kInternetDomain, Socket::kDatagram);
  ASSERT_TRUE(receiver.create() && receiver.bind("127.0.0.1", 0));
  ASSERT_TRUE(sender.create() && sender.bind("", 0));
  sockaddr_in to{}, from{};
  to.sin_family = AF_INET;
  to.sin_port = htons(static_cast<uint16_t>(PortOf(receiver)));
  to.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  ASSERT_TRUE(sender.sendto("datagram", 8, to) && sender.sendto("second", 6, to));
  EXPECT_EQ(8, receiver.recvfrom(buffer, sizeof buffer, from));
  EXPECT_EQ("datagram", std::string(buffer, 8));
  EXPECT_EQ(PortOf(sender), ntohs(from.sin_port)) << "recvfrom names the sender";
  EXPECT_EQ(6, receiver.recv(buffer, sizeof buffer)) << "one datagram per recv";
}

// The reader's one recv collects the megabyte from the many pieces it
// arrives in.
TEST(SocketTest, SendallDeliversEverythingAndASendTimeoutBoundsIt) {
  StreamPair pair;
  ASSERT_TRUE(pair.Open());
  std::vector<char> data(1 << 20), got(data.size());
  for (size_t i = 0; i < data.size(); ++i) data[i] = static_cast<char>(i * 7 + i / 251);
  std::thread reader([&] { pair.server.recv(got.data(), static_cast<int>(got.size())); });
  int length = static_cast<int>(data.size());
  EXPECT_TRUE(pair.client.sendall(data.data(), &length));
  reader.join();
  EXPECT_EQ(static_cast<int>(data.size()), length);
  EXPECT_TRUE(data == got);

  // Nobody reads any more: without the time-out this would block for good.
  data.resize(16 << 20);
  length = static_cast<int>(data.size());
  ASSERT_TRUE(pair.server.set_buffer_size(SO_RCVBUF, 4096) &&
              pair.client.set_buffer_size(SO_SNDBUF, 4096) && pair.client.set_send_timeout(100));
  auto start = std::chrono::steady_clock::now();
  ExpectContains(Stderr([&] { EXPECT_FALSE(pair.client.sendall(data.data(), &length)); }),
                 "Socket::sendall - send failed: ");
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
  EXPECT_GT(length, 0);
  EXPECT_LT(length, static_cast<int>(data.size())) << "*len holds what was sent";
}

TEST(SocketTest, LocalBindReplacesAStaleFileAndSetNonBlockingHasInvertedSense) {
  const int port = 30000 + static_cast<int>(getpid() % 30000);
  const std::string path = "/tmp/zyn_" + std::to_string(port);
  FILE* stale = fopen(path.c_str(), "w");
  ASSERT_NE(nullptr, stale);
  fclose(stale);
  Socket listener(Socket::kLocalDomain, Socket::kStream);
  Socket client(Socket::kLocalDomain, Socket::kStream);
  Socket server(Socket::kLocalDomain, Socket::kStream);
  bool bound = false, is_socket = false, connected = false;
  std::string err = Stderr([&] {
    listener.create();  // the kernel refuses TCP_NODELAY here; the descriptor stays usable
    client.create();
    bound = listener.bind(port);
    struct stat info;
    is_socket = stat(path.c_str(), &info) == 0 && S_ISSOCK(info.st_mode);
    connected = listener.listen() && client.connect("ignored", port) && listener.accept(&server);
  });
  unlink(path.c_str());

  ASSERT_TRUE(bound && connected) << err;
  EXPECT_TRUE(is_socket) << "the stale regular file must be replaced";
  ExpectContains(err, "Local path = " + path + "\n");
  EXPECT_EQ("ignored", client.get_host());
  char buffer[5];
  ASSERT_TRUE(client.send("local", 5));
  EXPECT_EQ(5, server.recv(buffer, 5));

  Socket socket(Socket::kInternetDomain, Socket::kStream);
  EXPECT_EQ(-1, socket.set_non_blocking(false)) << "no descriptor: the failed fcntl's result";
  ASSERT_TRUE(socket.create());
  EXPECT_EQ(0, socket.set_non_blocking(false));
  EXPECT_NE(0, fcntl(socket.get_fd(), F_GETFL) & O_NONBLOCK) << "false makes it non-blocking";
  EXPECT_EQ(0, socket.set_non_blocking(true));
  EXPECT_EQ(0, fcntl(socket.get_fd(), F_GETFL) & O_NONBLOCK) << "true makes it blocking";
}

TEST(SocketTest, ReadSelectWaitsForData) {
  StreamPair pair;
  ASSERT_TRUE(pair.Open());
  testing::internal::CaptureStderr();
  testing::internal::CaptureStdout();  // vmstat's report
  auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(pair.server.read_select(1050));
  auto waited = std::chrono::steady_clock::now() - start;
  testing::internal::GetCapturedStdout();
  std::string err = testing::internal::GetCapturedStderr();
  EXPECT_GE(waited, std::chrono::milliseconds(1000));
  ExpectContains(err, "Socket::read_select - readfds is not set (timeout secs:1 usecs:50000)\n");
  EXPECT_GT(err.size(), 120u) << "the time-out is followed by a backtrace";
  ASSERT_TRUE(pair.client.send("r", 1));
  EXPECT_TRUE(pair.server.read_select(2000));
}

}  // namespace
