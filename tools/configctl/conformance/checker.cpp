#include "configctl/conformance/checker.h"

#include <arpa/inet.h>

#include <chrono>
#include <cstdlib>

#include "config/access/url.h"
#include "config/config_uri.h"
#include "config/descriptors/param_descriptor.h"
#include "config/descriptors/param_descriptors.h"
#include "configctl/commands.h"
#include "configctl/conformance/cases.h"
#include "configctl/conformance/report.h"
#include "configctl/console.h"

namespace configctl {
namespace conformance {

namespace {

using Clock = std::chrono::steady_clock;

struct SchemeName {
  const char* prefix;
  Transport transport;
};
constexpr SchemeName kSchemes[] = {{"socket://", kSocket}, {"tcp://", kTcp}, {"udp://", kUdp}};

bool IsString(const ParamDescriptor* descriptor) {
  return descriptor->GetParamType() == eCParam_StringValue;
}

// `preferred` when the catalogue has it, else its first parameter of the
// kind asked for; 0 when it has none.
uint32_t ReadableParam(const char* preferred, bool string) {
  ParamDescriptor* descriptor = GetDescriptor(std::string(preferred));
  if (descriptor != nullptr) return descriptor->GetParamID();
  for (unsigned int id : GetParamIDs()) {
    descriptor = GetDescriptor(id);
    if (descriptor != nullptr && IsString(descriptor) == string) return id;
  }
  return 0;
}

// Fills the address, transport and parameters of `target`; false after
// reporting why the URI or a scratch parameter cannot be used.
bool MakeTarget(const Arguments& arguments, Target& target) {
  const std::string& uri = arguments.operands[0];
  bool known = false;
  for (const SchemeName& scheme : kSchemes) {
    if (uri.rfind(scheme.prefix, 0) != 0) continue;
    target.transport = scheme.transport;
    known = true;
  }
  zyn::config::access::url parts;
  if (!known || !parts.parse(uri) || atoi(parts.port.c_str()) <= 0) {
    Console::Error("conformance: cannot check '%s' (socket://, tcp:// or udp://HOST:PORT)",
                   uri.c_str());
    return false;
  }
  target.host = parts.host;
  target.port = atoi(parts.port.c_str());
  in_addr address{};
  if (inet_pton(AF_INET, target.host.c_str(), &address) != 1) {
    Console::Error("conformance: '%s' is not an IPv4 address", target.host.c_str());
    return false;
  }
  if ((ntohl(address.s_addr) >> 24) != 127 && !arguments.allowRemote) {
    Console::Error(
        "conformance: %s is not on this host (127.0.0.0/8); add --allow-remote to "
        "check a server elsewhere",
        target.host.c_str());
    return false;
  }
  zyn::config::access::url events;
  target.eventPort =
      events.parse(MulticastEventsURI(uri)) ? atoi(events.port.c_str()) : kMulticastEventPort;

  std::vector<ParamDescriptor*> scratch;
  if (!ResolveParameters(arguments.scratch, scratch)) return false;
  for (const ParamDescriptor* descriptor : scratch) {
    uint32_t& slot = IsString(descriptor) ? target.stringScratch : target.integerScratch;
    if (slot != 0) {
      Console::Error("conformance: --scratch takes one integer and one string parameter");
      return false;
    }
    slot = descriptor->GetParamID();
  }
  target.integerParam = target.integerScratch != 0
                            ? target.integerScratch
                            : ReadableParam("eParamID_FrontPanelLock", false);
  target.stringParam =
      target.stringScratch != 0 ? target.stringScratch : ReadableParam("eParamID_SystemName", true);
  target.unknownParam = 0xFFFFFF00;
  while (GetDescriptor(target.unknownParam) != nullptr) --target.unknownParam;
  return true;
}

// The scratch value a changing case starts from, read before it and put
// back after it.
struct Saved {
  uint32_t number = 0;
  std::string text;
};

bool Save(const Target& target, Scratch scratch, Saved& saved, std::string& error) {
  Session session(target);
  std::unique_ptr<Link> link = session.Connect();
  bool read =
      link != nullptr &&
      (scratch == Scratch::kInteger ? session.GetInteger(*link, target.integerScratch, saved.number)
                                    : session.GetText(*link, target.stringScratch, saved.text));
  if (!read) error = "could not read the scratch value first: " + session.Detail();
  return read;
}

bool Restore(const Target& target, Scratch scratch, const Saved& saved, std::string& error) {
  Session session(target);
  std::unique_ptr<Link> link = session.Connect();
  uint32_t number = 0;
  std::string text;
  bool restored =
      link != nullptr &&
      (scratch == Scratch::kInteger
           ? session.SetInteger(*link, target.integerScratch, saved.number) &&
                 session.GetInteger(*link, target.integerScratch, number) && number == saved.number
           : session.SetText(*link, target.stringScratch, saved.text) &&
                 session.GetText(*link, target.stringScratch, text) && text == saved.text);
  if (!restored)
    error += std::string(error.empty() ? "" : "\n") +
             "could not restore the scratch value: " + session.Detail();
  return restored;
}

CaseResult RunCase(const Case& test, const Target& target) {
  CaseResult result{test.name, test.group, TransportName(target.transport), Outcome::kPass, "", 0};
  if ((test.scratch == Scratch::kInteger && target.integerScratch == 0) ||
      (test.scratch == Scratch::kString && target.stringScratch == 0)) {
    result.outcome = Outcome::kSkip;
    result.detail = std::string("changes a value: needs --scratch with ") +
                    (test.scratch == Scratch::kInteger ? "an integer" : "a string") + " parameter";
    return result;
  }
  auto start = Clock::now();
  Saved saved;
  std::string error;
  bool ok = test.scratch == Scratch::kNone || Save(target, test.scratch, saved, error);
  if (ok) {
    Session session(target);
    ok = test.run(session);
    if (!session.Skipped().empty()) {
      result.outcome = Outcome::kSkip;
      result.detail = session.Skipped();
    } else if (!ok) {
      error = session.Detail();
      if (error.empty()) error = "failed";
    }
    if (test.scratch != Scratch::kNone && !Restore(target, test.scratch, saved, error)) ok = false;
  }
  if (!ok && result.outcome != Outcome::kSkip) {
    result.outcome = Outcome::kFail;
    result.detail = error;
  }
  result.ms = static_cast<long>(
      std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count());
  return result;
}

}  // namespace

int RunConformance(const Arguments& arguments) {
  Target target;
  if (!MakeTarget(arguments, target)) return kExitUsage;
  Report report(arguments.operands[0]);
  auto start = Clock::now();
  size_t count = 0;
  const Case* cases = Cases(count);
  for (size_t i = 0; i < count; ++i) {
    if ((cases[i].transports & target.transport) != 0) report.Add(RunCase(cases[i], target));
  }
  long total = static_cast<long>(
      std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count());
  report.Print(arguments.json, total);
  return report.Count(Outcome::kFail) == 0 ? kExitOk : kExitFailure;
}

}  // namespace conformance
}  // namespace configctl
