// SemaphoreHelper is the library's only lock: a scoped holder of a POSIX
// unnamed semaphore initialised to 1 and used as a mutex. The constructor
// waits on the semaphore and the destructor posts it. A failed wait is
// reported and the holder goes on as if it held the lock; a failed post is
// reported and nothing else happens. The lock is not recursive: taking the
// same semaphore twice on one thread blocks for ever.
//
// InitSemaphore/DestroySemaphore are the owner's side: every lock-owning
// object creates its semaphore process-private with count 1 and destroys it
// in its destructor.
#ifndef CLASSES_SUPPORT_SEMAPHORE_HELPER_H
#define CLASSES_SUPPORT_SEMAPHORE_HELPER_H

#include <semaphore.h>

class SemaphoreHelper {
 public:
  explicit SemaphoreHelper(sem_t* semaphore);
  virtual ~SemaphoreHelper();

  SemaphoreHelper(const SemaphoreHelper&) = delete;
  SemaphoreHelper& operator=(const SemaphoreHelper&) = delete;

  // Creates `semaphore` process-private with count 1. Reports
  // "SemaphoreHelper::Init - failed" through perror and returns false on
  // failure.
  static bool InitSemaphore(sem_t* semaphore);
  static void DestroySemaphore(sem_t* semaphore);

 private:
  sem_t* _semaphore;
  bool _post;
};

#endif  // CLASSES_SUPPORT_SEMAPHORE_HELPER_H
