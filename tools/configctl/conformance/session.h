// Session is what one conformance case works with: the server under test
// (transport, address, event port), the parameters it may read and the
// scratch parameters it may change, and the exchanges every case is made
// of: connect, send a request record, take the answer, compare it word by
// word with the record the protocol prescribes, check that nothing else
// came, check that the server still serves. Requests are built and answers
// decoded by the library's record codec, never by a client class.
//
// A Session belongs to the runner; each case gets a fresh one and reads its
// failure text from `Detail()`. Links it opens are closed when their owner
// lets go of them. One thread.
#ifndef TOOLS_CONFIGCTL_CONFORMANCE_SESSION_H
#define TOOLS_CONFIGCTL_CONFORMANCE_SESSION_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "config/access/xconfigmgr_records.h"
#include "configctl/conformance/probe.h"

class ConfigValue;

namespace configctl {
namespace conformance {

// Transports as a bit set, so a case names those it applies to.
enum Transport : unsigned { kSocket = 1, kTcp = 2, kUdp = 4 };
const char* TransportName(Transport transport);

// What the checker was pointed at.
struct Target {
  Transport transport = kSocket;
  std::string host;
  int port = 0;
  int eventPort = 0;          // UDP: where the server multicasts its events
  uint32_t integerParam = 0;  // read by every transport's read-only cases
  uint32_t stringParam = 0;
  uint32_t integerScratch = 0;  // 0: none given; cases that change values skip
  uint32_t stringScratch = 0;
  uint32_t unknownParam = 0;  // an ID the catalogue does not have
};

// One connection (or, over UDP, one socket) with the connection ID its
// Connect Request carried.
struct Link {
  Probe probe;
  uint32_t connectionID = 0;
};

class Session {
 public:
  // Time allowed for each expected answer, and for a "nothing comes" wait
  // that no later answer can fence.
  static constexpr int kAnswerMs = 500;
  static constexpr int kQuietMs = 120;

  explicit Session(const Target& target) : _target(target) {}
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  [[nodiscard]] const Target& target() const { return _target; }
  [[nodiscard]] bool Stream() const { return _target.transport != kUdp; }
  [[nodiscard]] bool Is(Transport transport) const { return _target.transport == transport; }

  // A connected link without any exchange yet; null after failing the case.
  std::unique_ptr<Link> Open();
  // A link whose Connect Request was answered with a Connect Response of
  // error 0 (only those two words are judged here).
  std::unique_ptr<Link> Connect();
  // The UDP event group's listener; null after skipping the case when this
  // host cannot join it.
  std::unique_ptr<Probe> Events();

  // Records of `link`'s connection, each with a request ID of its own.
  XCONFIGMGR_HEADER_T Header(const Link& link, uint32_t msgtype);
  XCONFIGMGR_REQUEST_T Request(const Link& link, uint32_t msgtype, uint32_t paramID,
                               uint32_t value = 0, uint32_t streamLength = 0);
  // Sends the record and its payload (one datagram over UDP).
  template <typename Record>
  bool Send(Link& link, const Record& record, const std::vector<char>& payload = {}) {
    std::vector<char> bytes(sizeof record);
    zyn::config::access::Pack(record, bytes.data());
    bytes.insert(bytes.end(), payload.begin(), payload.end());
    return link.probe.Send(bytes) || Fail("the server did not take a request (connection lost)");
  }
  // The next answer: `size` bytes on a stream, the next datagram over UDP.
  bool Answer(Link& link, size_t size, std::vector<char>& bytes, const std::string& what);
  // Compares `actual` with the packed `expected` record word by word; words
  // whose bit is set in `ignore` are not judged. Fails with one line per
  // difference ("word 5 (bufferSize): expected 00001000, got 00000800").
  template <typename Record>
  bool Expect(const std::vector<char>& actual, const Record& expected, uint32_t ignore,
              const std::string& what) {
    std::vector<char> bytes(sizeof expected);
    zyn::config::access::Pack(expected, bytes.data());
    return Compare(actual, bytes, ignore, what);
  }
  // Proves that nothing answered what was sent before: a Get sent now must
  // be answered by the very next record.
  bool Fence(Link& link, const std::string& what);
  // True when a new connection still gets a Get answered.
  bool Serving(const std::string& after);

  // Integer Get; the value, or false after failing the case.
  bool GetInteger(Link& link, uint32_t paramID, uint32_t& value);
  // String Get: the payload's text (integers as decimal text).
  bool GetText(Link& link, uint32_t paramID, std::string& text);
  // Integer Set; over UDP also takes its Set Response into `answer`.
  bool SetInteger(Link& link, uint32_t paramID, uint32_t value,
                  std::vector<char>* answer = nullptr);
  bool SetText(Link& link, uint32_t paramID, const std::string& text);
  // The text of a decoded StringValue, an IntegerValue's number as decimal
  // text; false for anything else.
  static bool TextOf(ConfigValue* value, std::string& text);
  // The encoded StringValue of `text` for `paramID`.
  static std::vector<char> TextPayload(uint32_t paramID, const std::string& text);
  // A value of the integer scratch other than `current` that its
  // descriptor allows; a text for the string scratch other than `current`.
  [[nodiscard]] uint32_t OtherInteger(uint32_t current) const;
  [[nodiscard]] std::string OtherText(const std::string& current) const;

  // The next event of `msgtype` for `paramID` on `events` (stream link or
  // multicast listener); `others` counts the "Param Changed Event"s of other
  // parameters passed over on the way.
  bool NextEvent(Probe& events, uint32_t msgtype, uint32_t paramID, std::vector<char>& bytes,
                 uint32_t* others = nullptr);

  // Adds a line to the failure text; always false.
  bool Fail(const std::string& line);
  void Skip(const std::string& why) { _skipped = why; }
  [[nodiscard]] const std::string& Detail() const { return _detail; }
  [[nodiscard]] const std::string& Skipped() const { return _skipped; }

 private:
  bool Compare(const std::vector<char>& actual, const std::vector<char>& expected, uint32_t ignore,
               const std::string& what);

  Target _target;
  uint32_t _nextRequest = 1;
  std::string _detail;
  std::string _skipped;
};

// Word masks for Expect.
constexpr uint32_t Word(int index) { return 1u << index; }

}  // namespace conformance
}  // namespace configctl

#endif  // TOOLS_CONFIGCTL_CONFORMANCE_SESSION_H
