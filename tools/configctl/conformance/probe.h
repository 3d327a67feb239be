// Probe is the checker's raw end of one conversation with a server under
// test: a TCP connection (the socket and tcp transports), a connected UDP
// socket, or a UDP socket on the event port joined to the event group. It
// sends and receives bytes only; what they mean is the cases' business, so
// no client-side tolerance hides a server's mistake.
//
// Every wait is bounded by the caller's time-out; a silent server makes a
// receive fail, never hang. The descriptor is closed when the Probe is
// destroyed. One thread per Probe.
#ifndef TOOLS_CONFIGCTL_CONFORMANCE_PROBE_H
#define TOOLS_CONFIGCTL_CONFORMANCE_PROBE_H

#include <cstddef>
#include <string>
#include <vector>

namespace configctl {
namespace conformance {

class Probe {
 public:
  Probe() = default;
  ~Probe();
  Probe(const Probe&) = delete;
  Probe& operator=(const Probe&) = delete;

  // Connects a stream (`datagram` false) or a datagram socket to host:port
  // within `timeoutMs`. False, with the reason in `error`, when it cannot.
  bool Open(const std::string& host, int port, bool datagram, int timeoutMs, std::string& error);
  // Binds a datagram socket to `port` and joins `group` on the loopback
  // interface.
  bool Listen(const std::string& group, int port, std::string& error);
  void Close();

  // Sends the whole block (one datagram on UDP). False on any failure.
  bool Send(const std::vector<char>& bytes);
  // Stream: exactly `size` bytes within `timeoutMs`. Datagram: the next
  // datagram, whatever its size (up to 64 KiB). False on time-out, error or
  // end of stream; `out` then holds what did arrive.
  bool Receive(size_t size, int timeoutMs, std::vector<char>& out);
  // True when nothing at all arrives within `timeoutMs` (no data and, on a
  // stream, no end either).
  bool Quiet(int timeoutMs);
  // Stream: true when the peer ends the connection within `timeoutMs`
  // (anything it sends first is discarded).
  bool Ended(int timeoutMs);

 private:
  // Waits for the descriptor to be readable; false on time-out.
  bool Readable(int timeoutMs);

  int _fd = -1;
  bool _datagram = false;
};

}  // namespace conformance
}  // namespace configctl

#endif  // TOOLS_CONFIGCTL_CONFORMANCE_PROBE_H
