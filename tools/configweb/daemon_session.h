// DaemonSession is configweb's link to configd: a request connection that
// the HTTP handlers share, and an event connection whose listener hands
// every change to the ChangeBatcher, which publishes them to the EventHub.
// A supervisor thread watches the event connection's loss count every
// kLossCheckMs and checks the link with a heartbeat read every `checkMs`.
// When the link breaks (configd closed the event connection, or a read
// failed) it connects again at once; if configd answers, it reads the
// values the pages have been sent again and gives every stream a resync
// frame, and the pages never hear of the gap as a loss. Only when configd
// does not answer are the pages told ("daemon" frame, connected false);
// the supervisor then retries every `checkMs` and says so when it is back.
//
// Locks: _lock guards the two connections and _connected, and is held for
// the whole of each WithConfig call, so requests from different HTTP threads
// take turns (the connection's factory serialises exchanges anyway).
// _linked mirrors _connected for readers that must not wait behind a
// request (the resync frame). The listener runs on the event connection's
// thread and takes only the batcher's lock. Start and Stop belong to main's
// thread; WithConfig and IsConnected may be called from any thread.
#ifndef TOOLS_CONFIGWEB_DAEMON_SESSION_H
#define TOOLS_CONFIGWEB_DAEMON_SESSION_H

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

#include "config/access/socket_factory.h"
#include "config/config_event_listener.h"
#include "configweb/change_batcher.h"
#include "configweb/value_cache.h"

class Config;
class ParamDescriptor;
class EventLossCounter;

namespace zyn {
namespace boxline {
namespace config {
namespace access {
class ParamMapper;
}  // namespace access
}  // namespace config
}  // namespace boxline
}  // namespace zyn

namespace configweb {

class EventHub;

// The connections behind the page: `requests` is what the page reads and
// writes through and `events` what its listener registers with; both are a
// MappingConfig over a request and an event client, so a generic parameter
// reads, writes and changes as the specific one it stands for now. `loss`
// is the event client's loss count. The pieces are kept for closing.
struct PageLink {
  Config* requests = nullptr;
  Config* events = nullptr;
  EventLossCounter* loss = nullptr;
  Config* requestClient = nullptr;
  Config* eventClient = nullptr;
  Config* mapping = nullptr;
  zyn::boxline::config::access::ParamMapper* mapper = nullptr;
};

// Opens the page's connections to `uri`; the mapper's tables must have been
// built (TundraParamMapper::Initialize). False, with nothing left open, when
// configd does not answer.
bool OpenPageLink(zyn::config::access::SocketFactory& factory, const std::string& uri,
                  PageLink& link);
// Closes what OpenPageLink opened and clears `link`.
void ClosePageLink(zyn::config::access::SocketFactory& factory, PageLink& link);

class DaemonSession {
 public:
  // How often the supervisor checks the link or retries a lost one.
  static constexpr long kDefaultCheckMs = 500;
  // How often the supervisor looks at the event connection's loss count (a
  // counter read, no traffic).
  static constexpr long kLossCheckMs = 10;

  DaemonSession(std::string uri, EventHub& hub, long checkMs = kDefaultCheckMs);
  ~DaemonSession();
  DaemonSession(const DaemonSession&) = delete;
  DaemonSession& operator=(const DaemonSession&) = delete;

  // Connects (true when configd answered now) and starts the supervisor,
  // which keeps trying in the background when it did not.
  bool Start();
  // Ends the supervisor and both connections.
  void Stop();

  // Runs `work` on the request connection while holding it; false (and
  // `work` not run) when configd is not connected.
  bool WithConfig(const std::function<void(Config*)>& work);
  // The current value of `descriptor`'s parameter, from the value cache
  // when it holds it, else read through the request connection. False when
  // configd is not connected; otherwise `read` says whether a value came.
  bool ReadValue(const ParamDescriptor* descriptor, common::ParamValue& value, bool& read);
  // Makes the next read of `id` go to configd (after a set through it).
  void ForgetValue(unsigned int id) { _cache.Forget(id); }
  bool IsConnected();
  const std::string& GetUri() const { return _uri; }
  // The "daemon" frame for the current state, which a new stream starts with.
  std::string StatusFrame();

 private:
  class Forwarder : public ConfigEventListener {
   public:
    Forwarder(ChangeBatcher& batcher, ValueCache& cache) : _batcher(batcher), _cache(cache) {}
    bool ParamChanged(eParam_t id, unsigned int value, timeval when) override;
    bool ParamChanged(eParam_t id, std::string value, timeval when) override;

   private:
    ChangeBatcher& _batcher;
    ValueCache& _cache;
  };

  // Both connections, or neither; call with _lock held.
  bool ConnectLocked();
  void DropLocked();
  bool HeartbeatLocked();
  // After a break: connects again and resynchronises the streams, or
  // tells them configd is lost.
  void ReconnectLocked();
  void ResyncLocked();
  void Supervise();
  std::string StatusFrameLocked() const;

  const std::string _uri;
  EventHub& _hub;
  const long _checkMs;
  ChangeBatcher _batcher;
  ValueCache _cache;     // valid only while _link is; reset with it
  Forwarder _forwarder;  // registered with _link.events while connected
  zyn::config::access::SocketFactory _factory;

  std::mutex _lock;
  std::condition_variable _wake;
  PageLink _link;           // guarded by _lock
  bool _connected = false;  // guarded by _lock
  bool _stopping = false;   // guarded by _lock
  std::atomic<bool> _linked{false};
  std::thread _supervisor;
};

}  // namespace configweb

#endif  // TOOLS_CONFIGWEB_DAEMON_SESSION_H
