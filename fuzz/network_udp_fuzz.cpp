// The network protocol's UDP datagram handler. One input is a few
// datagrams, each a 2-byte big-endian length and that many bytes (what is
// left when a length runs past the end is the last datagram), handled in
// order by a fresh NetworkUDPConnection after a Connect Request for store 0,
// as the server's thread would handle them. Answers go to a socket of the
// target's on 127.0.0.1, events to the multicast group on that socket's port
// through the loopback interface.
#include <arpa/inet.h>
#include <netinet/in.h>

#include <vector>

#include "config/access/network_udp_connection.h"
#include "config/access/xconfigmgr_records.h"
#include "fuzz_common.h"

namespace {

using zyn::boxline::config::access::NetworkUDPConnection;

struct Sockets {
  Socket server{Socket::kInternetDomain, Socket::kDatagram};
  Socket answers{Socket::kInternetDomain, Socket::kDatagram};
  sockaddr_in to{};
};

Sockets& Loopback() {
  static Sockets* sockets = [] {
    auto* s = new Sockets;
    s->server.create();
    s->server.bind("127.0.0.1", 0);
    s->answers.create();
    s->answers.bind("127.0.0.1", 0);
    socklen_t length = sizeof s->to;
    getsockname(s->answers.get_fd(), reinterpret_cast<sockaddr*>(&s->to), &length);
    return s;
  }();
  return *sockets;
}

void Handle(NetworkUDPConnection& connection, const uint8_t* bytes, size_t length) {
  if (length > static_cast<size_t>(NetworkUDPConnection::kMaxDatagram)) return;
  // A buffer of exactly the datagram's size, so a read past it is caught.
  std::vector<char> datagram(bytes, bytes + length);
  sockaddr_in from = Loopback().to;
  connection.ProcessMessages(datagram.data(), static_cast<int>(length), from);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz::Initialize(true);
  Loopback();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Sockets& sockets = Loopback();
  {
    NetworkUDPConnection connection(&sockets.server);
    connection.SetMulticastPort(ntohs(sockets.to.sin_port));
    XCONFIGMGR_CONNECTION_REQUEST_T connect{
        zyn::config::access::MakeHeader(XCFG_CONNECT_REQUEST, 1, 1, 0)};
    uint8_t record[sizeof connect];
    zyn::config::access::Pack(connect, reinterpret_cast<char*>(record));
    Handle(connection, record, sizeof record);
    while (size > 0) {
      size_t length = size >= 2 ? (static_cast<size_t>(data[0]) << 8 | data[1]) : size;
      size_t skip = size >= 2 ? 2 : 0;
      if (skip + length > size) length = size - skip;
      Handle(connection, data + skip, length);
      data += skip + length;
      size -= skip + length;
    }
  }
  char sink[NetworkUDPConnection::kMaxDatagram];
  while (recv(sockets.answers.get_fd(), sink, sizeof sink, MSG_DONTWAIT) > 0) {
  }
  return 0;
}
