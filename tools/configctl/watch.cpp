#include "configctl/watch.h"

#include <signal.h>

#include <chrono>
#include <cstdio>
#include <list>
#include <vector>

#include "common/formatting.h"
#include "config/access/socket_client.h"
#include "config/descriptors/param_descriptors.h"
#include "configctl/commands.h"
#include "configctl/console.h"
#include "configctl/daemon_link.h"

namespace configctl {

using namespace common;

namespace {

// How long the main thread waits for a change before it looks at the
// signals again, and how often it checks that configd is still there.
constexpr long kPollMs = 100;
constexpr auto kHeartbeatInterval = std::chrono::seconds(1);

}  // namespace

bool ChangeQueue::ParamChanged(eParam_t id, unsigned int value, timeval when) {
  Change change;
  change.id = id;
  change.value.number = value;
  change.when = when;
  Push(std::move(change));
  return true;
}

bool ChangeQueue::ParamChanged(eParam_t id, std::string value, timeval when) {
  Change change;
  change.id = id;
  change.value.isString = true;
  change.value.text = std::move(value);
  change.when = when;
  Push(std::move(change));
  return true;
}

void ChangeQueue::KeepOnly(std::set<unsigned int> ids) {
  std::lock_guard<std::mutex> hold(_lock);
  _only = std::move(ids);
}

void ChangeQueue::Push(Change change) {
  {
    std::lock_guard<std::mutex> hold(_lock);
    if (!_only.empty() && _only.count(change.id) == 0) return;
    _changes.push_back(std::move(change));
  }
  _ready.notify_one();
}

bool ChangeQueue::Next(Change& change, long timeoutMs) {
  std::unique_lock<std::mutex> hold(_lock);
  if (!_ready.wait_for(hold, std::chrono::milliseconds(timeoutMs),
                       [this] { return !_changes.empty(); }))
    return false;
  change = std::move(_changes.front());
  _changes.pop_front();
  return true;
}

int RunWatch(const Arguments& arguments) {
  std::vector<ParamDescriptor*> descriptors;
  if (!ResolveParameters(arguments.operands, descriptors)) return kExitFailure;
  // The stop signals stay pending until the loop below takes them; blocked
  // before the events thread starts, so that thread inherits the mask.
  sigset_t stopSignals;
  sigemptyset(&stopSignals);
  sigaddset(&stopSignals, SIGINT);
  sigaddset(&stopSignals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);

  ChangeQueue queue;  // outlives the link's clients
  DaemonLink link(arguments.uri);
  Config* events = link.OpenEvents();
  if (events == nullptr) return kExitFailure;
  Config* requests = link.Open();
  if (requests == nullptr) return kExitFailure;

  // The heartbeat reads a parameter that exists; none when the catalogue is
  // empty.
  const ParamDescriptor* probe = descriptors.empty() ? nullptr : descriptors[0];
  if (probe == nullptr) {
    std::vector<unsigned int> ids = GetParamIDs();
    if (!ids.empty()) probe = GetDescriptor(ids[0]);
  }

  // Mapped, the watch hears the changes of the parameters as the mapper
  // presents them; the events client then carries every change.
  Config* watched = arguments.mapped ? link.Map(requests, events) : events;
  if (descriptors.empty()) {
    watched->AddConfigEventListener(&queue);
  } else {
    std::list<eParam_t> ids;
    for (const ParamDescriptor* descriptor : descriptors) ids.push_back(descriptor->GetParamID());
    // A network client takes listeners for every parameter only; the queue
    // then keeps the ones asked for.
    if (!watched->AddConfigEventListener(ids, &queue)) {
      queue.KeepOnly(std::set<unsigned int>(ids.begin(), ids.end()));
      watched->AddConfigEventListener(&queue);
    }
  }

  int status = kExitOk;
  unsigned int seen = 0;
  auto lastBeat = std::chrono::steady_clock::now();
  for (;;) {
    const timespec noWait{0, 0};
    if (sigtimedwait(&stopSignals, nullptr, &noWait) > 0) break;
    ChangeQueue::Change change;
    if (queue.Next(change, kPollMs)) {
      const ParamDescriptor* descriptor = GetDescriptor(change.id);
      std::string line = arguments.json
                             ? EventJson(change.when, change.id, descriptor, change.value)
                             : EventLine(change.when, change.id, descriptor, change.value);
      fputs((line + "\n").c_str(), stdout);
      fflush(stdout);
      if (arguments.count != 0 && ++seen >= arguments.count) break;
      continue;
    }
    auto now = std::chrono::steady_clock::now();
    // An events-only (multicast) link has nothing to ask a heartbeat of.
    if (probe != nullptr && link.TakesRequests() && now - lastBeat >= kHeartbeatInterval) {
      lastBeat = now;
      ParamValue ignored;
      if (!ReadValue(requests, probe, ignored)) {
        Console::Error("lost the connection to configd at %s", link.GetUri().c_str());
        status = kExitFailure;
        break;
      }
    }
  }
  watched->RemoveConfigEventListener(&queue);
  return status;
}

}  // namespace configctl
