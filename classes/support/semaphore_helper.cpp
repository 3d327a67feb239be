#include "support/semaphore_helper.h"

#include <cerrno>
#include <cstdio>

SemaphoreHelper::SemaphoreHelper(sem_t* semaphore) : _semaphore(semaphore), _post(true) {
  if (_semaphore == nullptr) return;
  int rc;
  // A signal interrupting the wait is not a failure: wait again.
  do {
    rc = sem_wait(_semaphore);
  } while (rc != 0 && errno == EINTR);
  if (rc != 0) perror("Semaphore(): call to sem_wait failed\n");
}

SemaphoreHelper::~SemaphoreHelper() {
  if (_semaphore != nullptr && _post && sem_post(_semaphore) != 0)
    perror("SemaphoreHelper::~SemaphoreHelper failed to post\n");
}

bool SemaphoreHelper::InitSemaphore(sem_t* semaphore) {
  if (sem_init(semaphore, 0, 1) != 0) {
    perror("SemaphoreHelper::Init - failed\n");
    return false;
  }
  return true;
}

void SemaphoreHelper::DestroySemaphore(sem_t* semaphore) { sem_destroy(semaphore); }
