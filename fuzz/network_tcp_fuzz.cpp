// The network protocol's TCP record stream: the input is what a client
// writes on its connection, served by a NetworkTCPConnection over the
// in-process store.
#include "config/access/network_tcp_connection.h"
#include "fuzz_common.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz::Initialize(true);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fuzz::StreamExchange(data, size, [](Socket* socket) {
    auto* connection = new zyn::boxline::config::access::NetworkTCPConnection(socket);
    connection->Run();
    delete connection;
  });
  return 0;
}
