#include "config/access/event_sender.h"

#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <utility>

#include "config/access/connection_utilities.h"
#include "support/semaphore_helper.h"

namespace zyn {
namespace config {
namespace access {

namespace {

std::atomic<long> s_drain_limit_ms{EventSender::kDefaultDrainLimitMs};

}  // namespace

void EventSender::SetDrainLimitMs(long ms) {
  s_drain_limit_ms = ms > 0 ? ms : kDefaultDrainLimitMs;
}

long EventSender::DrainLimitMs() { return s_drain_limit_ms; }

EventSender::EventSender(SendFunction send, CutOffFunction cutOff, long drainLimitMs, size_t bound)
    : _send(std::move(send)),
      _cut_off_callback(std::move(cutOff)),
      _drain_limit(drainLimitMs > 0 ? drainLimitMs : DrainLimitMs()),
      _bound(bound),
      _stopping(false),
      _cut_off(false),
      _idle(false),
      _started(false),
      _thread() {
  SemaphoreHelper::InitSemaphore(&_lock);
  if (sem_init(&_pending, 0, 0) != 0) perror("SemaphoreHelper::Init - failed\n");
}

EventSender::~EventSender() {
  Stop();
  SemaphoreHelper::DestroySemaphore(&_lock);
  sem_destroy(&_pending);
}

XCONFIGMGR_RESPONSE_T ParamChangedEvent(const QueuedEvent& event) {
  return XCONFIGMGR_RESPONSE_T{MakeHeader(XCFG_PARAM_CHANGED_EVENT, event.connectionID,
                                          kXConfigEventRequestID, event.configID),
                               event.paramID,
                               0,
                               event.value,
                               0,
                               kXConfigStreamBufferSize};
}

std::vector<char> EncodeEventBatch(
    const std::vector<QueuedEvent>& events,
    const std::function<bool(const XCONFIGMGR_REQUEST_T&, std::vector<char>&)>& buildStream) {
  std::vector<char> bytes;
  for (const QueuedEvent& event : events) {
    if (event.text) {
      std::vector<char> record;
      if (buildStream(StreamChangedEvent(event), record))
        bytes.insert(bytes.end(), record.begin(), record.end());
      continue;
    }
    XCONFIGMGR_RESPONSE_T changed = ParamChangedEvent(event);
    char record[sizeof changed];
    Pack(changed, record);
    ConnectionUtilities::Dump(changed);
    bytes.insert(bytes.end(), record, record + sizeof record);
  }
  return bytes;
}

XCONFIGMGR_REQUEST_T StreamChangedEvent(const QueuedEvent& event) {
  return XCONFIGMGR_REQUEST_T{MakeHeader(XCFG_PARAM_STREAM_CHANGED_EVENT, event.connectionID,
                                         kXConfigEventRequestID, event.configID),
                              event.paramID, 0, 0, 0};
}

std::unique_ptr<EventSender> EventSender::StartFor(int fd, SendFunction send,
                                                   CutOffFunction cutOff) {
  if (setsockopt(fd, SOL_SOCKET, SO_SNDBUF, &kSocketSendBuffer, sizeof kSocketSendBuffer) != 0)
    perror("EventSender::StartFor - unable to set the send buffer size");
  std::unique_ptr<EventSender> sender(new EventSender(std::move(send), std::move(cutOff)));
  if (!sender->Start()) sender.reset();
  return sender;
}

bool EventSender::Start() {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, kThreadStackSize);
  int rc = pthread_create(&_thread, &attributes, pthread_start, this);
  pthread_attr_destroy(&attributes);
  _started = rc == 0;
  if (rc != 0) {
    errno = rc;
    perror("EventSender::Start");
    fprintf(stderr, "EventSender::Start - pthread_create failed\n");
  }
  return _started;
}

void* EventSender::pthread_start(void* arg) {
  static_cast<EventSender*>(arg)->Run();
  return nullptr;
}

bool EventSender::Post(const QueuedEvent& event) {
  char why[64];
  {
    auto now = std::chrono::steady_clock::now();
    SemaphoreHelper hold(&_lock);
    if (_stopping || _cut_off) return false;
    if (_queue.empty()) _undrained_since = now;
    if (_queue.size() >= _bound) {
      snprintf(why, sizeof why, "over %zu events", _bound);
    } else if (now - _undrained_since > _drain_limit) {
      snprintf(why, sizeof why, "not drained for %lld ms",
               static_cast<long long>(_drain_limit.count()));
    } else {
      _queue.push_back(event);
      // Only an idle sender is woken: a busy one finds the event itself, and
      // the writer makes no system call.
      if (_idle) sem_post(&_pending);
      _idle = false;
      return true;
    }
    _cut_off = true;
    _queue.clear();
  }
  _cut_off_callback(why);
  return false;
}

bool EventSender::IsCutOff() {
  SemaphoreHelper hold(&_lock);
  return _cut_off;
}

void EventSender::Stop() {
  {
    SemaphoreHelper hold(&_lock);
    if (_stopping) return;
    _stopping = true;
    _queue.clear();
  }
  sem_post(&_pending);
  if (_started) pthread_join(_thread, nullptr);
  _started = false;
}

void EventSender::Run() {
  std::vector<QueuedEvent> batch;
  batch.reserve(kMaxBatch);
  for (;;) {
    int next = Next(batch);
    if (next < 0) return;
    if (next > 0) {
      _send(batch);
      continue;
    }
    while (sem_wait(&_pending) != 0 && errno == EINTR) {
    }
  }
}

int EventSender::Next(std::vector<QueuedEvent>& batch) {
  batch.clear();
  SemaphoreHelper hold(&_lock);
  if (_stopping) return -1;
  if (_queue.empty()) {
    _idle = true;
    return 0;
  }
  size_t take = std::min(_queue.size(), kMaxBatch);
  batch.assign(_queue.begin(), _queue.begin() + static_cast<long>(take));
  _queue.erase(_queue.begin(), _queue.begin() + static_cast<long>(take));
  return 1;
}

}  // namespace access
}  // namespace config
}  // namespace zyn
