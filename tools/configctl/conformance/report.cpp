#include "configctl/conformance/report.h"

#include <cstdio>
#include <nlohmann/json.hpp>

namespace configctl {
namespace conformance {

namespace {

const char* OutcomeName(Outcome outcome) {
  switch (outcome) {
    case Outcome::kPass:
      return "PASS";
    case Outcome::kFail:
      return "FAIL";
    case Outcome::kSkip:
      return "SKIP";
  }
  return "?";
}

}  // namespace

size_t Report::Count(Outcome outcome) const {
  size_t n = 0;
  for (const CaseResult& result : _results) n += result.outcome == outcome ? 1 : 0;
  return n;
}

void Report::Print(bool json, long totalMs) const {
  if (json) {
    nlohmann::json cases = nlohmann::json::array();
    for (const CaseResult& result : _results) {
      nlohmann::json entry = {{"name", result.name},
                              {"group", result.group},
                              {"transport", result.transport},
                              {"result", OutcomeName(result.outcome)},
                              {"ms", result.ms}};
      if (!result.detail.empty()) entry["detail"] = result.detail;
      cases.push_back(entry);
    }
    nlohmann::json report = {{"uri", _uri},
                             {"passed", Count(Outcome::kPass)},
                             {"failed", Count(Outcome::kFail)},
                             {"skipped", Count(Outcome::kSkip)},
                             {"ms", totalMs},
                             {"cases", cases}};
    printf("%s\n", report.dump(2).c_str());
    return;
  }
  for (const CaseResult& result : _results) {
    std::string line = std::string(OutcomeName(result.outcome)) + "  " + result.transport + "  " +
                       result.group + "/" + result.name;
    if (result.outcome == Outcome::kSkip) line += "  (" + result.detail + ")";
    printf("%s\n", line.c_str());
    if (result.outcome != Outcome::kFail) continue;
    size_t start = 0;
    while (start < result.detail.size()) {
      size_t end = result.detail.find('\n', start);
      if (end == std::string::npos) end = result.detail.size();
      printf("      %s\n", result.detail.substr(start, end - start).c_str());
      start = end + 1;
    }
  }
  printf("%zu cases against %s: %zu passed, %zu failed, %zu skipped in %ld ms\n", _results.size(),
         _uri.c_str(), Count(Outcome::kPass), Count(Outcome::kFail), Count(Outcome::kSkip),
         totalMs);
}

}  // namespace conformance
}  // namespace configctl
