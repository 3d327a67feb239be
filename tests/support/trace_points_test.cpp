#include "support/trace_points.h"

#include <gtest/gtest.h>

#include <string>

#include "test_stderr.h"

TEST(TraceTest, StoresAndPrintsUpToTheStoreSize) {
  save_timeval("stale");
  clear_timevals();
  save_timeval("one");
  EXPECT_EQ("=========== Printing timevals ===============\ntimeval: elapsed 0, delta 0 - one\n",
            Stderr(print_timevals))
      << "a cleared store must not print older points";

  timeval first{10, 0}, previous{11, 999999}, current{12, 500000};
  EXPECT_EQ("timeval: elapsed 2500, delta 500 - m\n",
            Stderr([&] { print_timeval(&first, &previous, &current, "m"); }));
  EXPECT_EQ(999999, previous.tv_usec) << "printing must not change the points";

  for (int i = 1; i < 102400; ++i) save_timeval("kept");
  save_timeval("dropped");
  std::string out = Stderr(print_timevals);
  EXPECT_EQ(1 + 102400, std::count(out.begin(), out.end(), '\n'));
  EXPECT_FALSE(Has(out, "dropped")) << "the 102401st point is ignored";
  clear_timevals();
}
