// Report collects the outcome of every case the checker ran against one
// server and prints it: one line per case ("PASS", "FAIL" with the
// byte-level difference indented below it, "SKIP" with why) and a summary,
// or the same as one JSON object.
//
// Plain value owned by the command that runs the checker; one thread.
#ifndef TOOLS_CONFIGCTL_CONFORMANCE_REPORT_H
#define TOOLS_CONFIGCTL_CONFORMANCE_REPORT_H

#include <string>
#include <vector>

namespace configctl {
namespace conformance {

enum class Outcome { kPass, kFail, kSkip };

struct CaseResult {
  std::string name;       // "get.reply"
  std::string group;      // "integer"
  std::string transport;  // "socket", "tcp" or "udp"
  Outcome outcome = Outcome::kPass;
  std::string detail;  // why it failed or was skipped; lines separated by '\n'
  long ms = 0;         // how long it ran
};

class Report {
 public:
  explicit Report(std::string uri) : _uri(std::move(uri)) {}

  void Add(CaseResult result) { _results.push_back(std::move(result)); }
  // The text report, or with `json` one JSON object, on standard output.
  void Print(bool json, long totalMs) const;
  [[nodiscard]] size_t Count(Outcome outcome) const;
  [[nodiscard]] const std::vector<CaseResult>& Results() const { return _results; }

 private:
  std::string _uri;
  std::vector<CaseResult> _results;
};

}  // namespace conformance
}  // namespace configctl

#endif  // TOOLS_CONFIGCTL_CONFORMANCE_REPORT_H
