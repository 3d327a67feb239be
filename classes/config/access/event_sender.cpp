#include "config/access/event_sender.h"

#include <sys/socket.h>

#include <cerrno>
#include <cstdio>
#include <utility>

#include "support/semaphore_helper.h"

namespace zyn {
namespace config {
namespace access {

EventSender::EventSender(SendFunction send, CutOffFunction cutOff, size_t bound)
    : _send(std::move(send)),
      _cut_off_callback(std::move(cutOff)),
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
  {
    SemaphoreHelper hold(&_lock);
    if (_stopping || _cut_off) return false;
    if (_queue.size() < _bound) {
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
  _cut_off_callback();
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
  QueuedEvent event;
  for (;;) {
    int next = Next(event);
    if (next < 0) return;
    if (next > 0) {
      _send(event);
      continue;
    }
    while (sem_wait(&_pending) != 0 && errno == EINTR) {
    }
  }
}

int EventSender::Next(QueuedEvent& event) {
  SemaphoreHelper hold(&_lock);
  if (_stopping) return -1;
  if (_queue.empty()) {
    _idle = true;
    return 0;
  }
  event = _queue.front();
  _queue.pop_front();
  return 1;
}

}  // namespace access
}  // namespace config
}  // namespace zyn
