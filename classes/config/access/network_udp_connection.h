// NetworkUDPConnection answers every datagram of the network protocol that
// reaches the UDP server, for all its clients at once, and multicasts the
// changes those requests make: a "Param Changed Event" after every Set
// Request (a refused one too, re-announcing the unchanged value), then the
// events of the parameter's dependants from store 0; a "Param String
// Changed Event" or "Param Data Changed Event" after a successful Set String
// or Set Data Request.
//
// Ownership: the server creates it in its Run and deletes it when Run ends.
// It owns its event socket, bound to 127.0.0.1 on a free port and sending on
// the event interface (127.0.0.1 unless set otherwise), and one open store
// per config ID connected. A store that no request has named for the idle
// expiry (kDefaultStoreIdleMs unless set otherwise) is given back by
// ExpireIdleStores, so a few datagrams naming config IDs cannot hold the
// process's store limit for ever; store 0 and a store that another client
// (a stream connection, the owner) still holds are kept. A request that
// names a given-back store opens it again (store limit permitting), so its
// clients, which cannot tell, carry on. Whatever is left is released when
// the connection is deleted.
// A Connect that the process's store limit refuses is answered with the
// refusal; one for a store that cannot be made is not answered.
// The server's socket, used to answer, stays the server's.
//
// Threads: used by the server thread alone; no lock.
#ifndef CLASSES_CONFIG_ACCESS_NETWORK_UDP_CONNECTION_H
#define CLASSES_CONFIG_ACCESS_NETWORK_UDP_CONNECTION_H

#include <netinet/in.h>
#include <pthread.h>
#include <semaphore.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "config/access/network_connection.h"
#include "config/access/xconfigmgr_records.h"
#include "config/config_event_listener.h"

class Config;
class Socket;

namespace zyn {
namespace boxline {
namespace config {
namespace access {

class NetworkUDPConnection : public NetworkConnection {
 public:
  // The largest datagram the server takes.
  static constexpr int kMaxDatagram = 24 * 1024;
  // Send buffer of the event socket (and both buffers of the server's).
  static constexpr int kSocketBufferSize = 786432;
  static constexpr const char* kEventGroup = "239.18.27.18";
  static constexpr int kDefaultEventPort = 63110;
  static constexpr const char* kDefaultEventInterface = "127.0.0.1";
  // A dependent parameter with this class name is a data parameter: its
  // changes go out as "Param Data Changed Event" with its current data.
  static constexpr const char* kDataClassName = "data";
  // How long a store opened over UDP stays open without a request: 10 minutes.
  static constexpr long kDefaultStoreIdleMs = 10L * 60 * 1000;

  // `serverSocket` answers requests and is not owned. Failures to set up
  // the event socket are reported; the connection still answers requests.
  explicit NetworkUDPConnection(Socket* serverSocket);
  ~NetworkUDPConnection() override;

  // Where events go: the group's port (default 63110) and the address of
  // the interface they leave on (default "127.0.0.1"). False when the
  // interface address is refused.
  void SetMulticastPort(int port);
  bool SetEventInterface(const std::string& address);

  // How long a store may go without a request before it is given back
  // (0: never).
  void SetStoreIdleMs(long ms) { _store_idle = std::chrono::milliseconds(ms); }
  // Gives back the stores idle for the expiry; the server thread calls it
  // now and then. The number given back.
  int ExpireIdleStores();

  // Handles one datagram from `from`; every answer goes back there.
  // Datagrams that are too short, of a type the server does not accept, or
  // with a payload longer than what arrived are dropped with a message.
  void ProcessMessages(char* datagram, int length, sockaddr_in& from);

 private:
  // The store opened for `configID` by an earlier Connect Request, or null
  // (with a message). A given-back store is opened again; a store found is
  // marked as used now.
  Config* GetConfig(unsigned int configID);

  void ProcessConnectRequest(const XCONFIGMGR_CONNECTION_REQUEST_T& request,
                             const sockaddr_in& from);
  void ProcessDisconnectRequest(const XCONFIGMGR_CONNECTION_REQUEST_T& request,
                                const sockaddr_in& from);
  void ProcessGetRequest(const XCONFIGMGR_REQUEST_T& request, const sockaddr_in& from);
  void ProcessSetRequest(const XCONFIGMGR_REQUEST_T& request, const sockaddr_in& from);
  void ProcessGetStreamRequest(const XCONFIGMGR_REQUEST_T& request, const sockaddr_in& from);
  void ProcessSetStreamRequest(unsigned int configID, char* payload, unsigned int length);
  void ProcessGetDataRequest(const XCONFIGMGR_REQUEST_T& request, const sockaddr_in& from);
  void ProcessSetDataRequest(const XCONFIGMGR_REQUEST_T& request, char* payload,
                             unsigned int length);

  // Multicasts a "Param Changed Event" (numbered by eventSequence) or a
  // "Param String Changed Event" carrying `payload`.
  void ParamChanged(unsigned int paramID, unsigned int configID, unsigned int value);
  void ParamChanged(unsigned int paramID, unsigned int configID, const char* payload,
                    unsigned int length);
  // Multicasts a "Param Data Changed Event" with the request's header.
  void DataChanged(const XCONFIGMGR_REQUEST_T& request, const char* payload, unsigned int length);
  void FireDependentParamsChangedEvents(const XCONFIGMGR_REQUEST_T& request, unsigned int paramID);

  // Answers a Get String or Get Data Request with `payload`, or with error
  // 0xFFFFFFFF and no payload when it is empty.
  bool AnswerWithPayload(const XCONFIGMGR_REQUEST_T& request, uint32_t msgtype,
                         const std::vector<char>& payload, const sockaddr_in& to);
  // Sends a response, with its payload if any, back to the requester.
  bool Answer(const std::vector<char>& bytes, const sockaddr_in& to);
  template <typename Record>
  bool Answer(const Record& record, const sockaddr_in& to);
  bool Multicast(const XCONFIGMGR_RESPONSE_T& event, const std::vector<char>& payload);

  // Hears the changes that other clients (local socket, network TCP, the
  // owner itself) make to one store and multicasts them too, so that every
  // change reaches the UDP clients. Changes made by this connection's own
  // requests are left to the request handlers, which multicast them after
  // answering.
  class StoreRelay : public ConfigEventListener {
   public:
    StoreRelay(NetworkUDPConnection* owner, unsigned int configID)
        : _owner(owner), _config_id(configID) {}
    bool ParamChanged(eParam_t id, unsigned int value, timeval when) override;
    bool ParamChanged(eParam_t id, std::string value, timeval when) override;

   private:
    NetworkUDPConnection* _owner;
    unsigned int _config_id;
  };
  // Opens the relay of `configID` on `config`, or closes it before the
  // store is released.
  void Relay(unsigned int configID, Config* config);
  void Unrelay(unsigned int configID);
  bool MulticastLocked(const XCONFIGMGR_RESPONSE_T& event, const std::vector<char>& payload);

  Socket* eventSocket;
  sockaddr_in eventAddress;
  std::map<unsigned int, Config*> configs;  // server thread only
  // When each open store was last named by a request; server thread only.
  std::map<unsigned int, std::chrono::steady_clock::time_point> _last_used;
  std::chrono::milliseconds _store_idle{kDefaultStoreIdleMs};
  // Config IDs whose stores were given back for idleness; server thread only.
  std::set<unsigned int> _expired;
  Socket* serverSocket;
  unsigned int eventSequence;  // guarded by _event_lock
  // Guards the event socket and the sequence counter: relays multicast from
  // the threads of other clients' writes.
  sem_t _event_lock;
  pthread_t _server_thread;                     // the thread that handles the datagrams
  std::map<unsigned int, StoreRelay*> _relays;  // server thread only
};

}  // namespace access
}  // namespace config
}  // namespace boxline
}  // namespace zyn

#endif  // CLASSES_CONFIG_ACCESS_NETWORK_UDP_CONNECTION_H
