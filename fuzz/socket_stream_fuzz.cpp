// The local protocol's record stream: the input is what a client writes on
// its connection, served by a SocketConnection over the in-process store.
#include "config/access/socket_connection.h"
#include "fuzz_common.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz::Initialize(true);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fuzz::StreamExchange(data, size, [](Socket* socket) {
    auto* connection = new zyn::config::access::SocketConnection(socket);
    connection->Run();
    delete connection;
  });
  return 0;
}
