#include "support/semaphore_helper.h"

#include <gtest/gtest.h>

#include <thread>

TEST(SemaphoreHelperTest, ExcludesConcurrentHoldersAndReleasesOnScopeExit) {
  sem_t lock;
  ASSERT_TRUE(SemaphoreHelper::InitSemaphore(&lock));
  long counter = 0;  // read-modify-write races without the lock
  auto work = [&] {
    for (int i = 0; i < 20000; ++i) {
      SemaphoreHelper hold(&lock);
      long seen = counter;
      counter = seen + 1;
    }
  };
  std::thread a(work), b(work);
  a.join();
  b.join();
  EXPECT_EQ(40000, counter);
  { SemaphoreHelper hold(&lock); }
  int count = -1;
  sem_getvalue(&lock, &count);
  EXPECT_EQ(1, count) << "the holder must post exactly once";
  { SemaphoreHelper hold(nullptr); }  // a null semaphore is held by nobody
  SemaphoreHelper::DestroySemaphore(&lock);
}
