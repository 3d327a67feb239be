#include "support/ctimeval.h"

#include <gtest/gtest.h>

#include <utility>

namespace {
std::pair<long, long> Parts(const timeval& t) { return {t.tv_sec, t.tv_usec}; }
}  // namespace

TEST(TimeValTest, SubtractAndAddCarry) {
  timeval x{3, 0}, y{1, 999999}, y_copy = y, result;
  EXPECT_EQ(0, CTimeVal::timeval_subtract(&result, &x, &y)) << "3.000000 - 1.999999 is positive";
  EXPECT_EQ(std::make_pair(1L, 1L), Parts(result));
  EXPECT_EQ(std::make_pair(2L, -1L), Parts(y)) << "y is normalised in place";
  EXPECT_EQ(1000, CTimeVal::timeval_subtract(&x, &y_copy));
  timeval early{1, 0}, late{2, 0}, wide{1, 2500000}, zero{0, 0};
  EXPECT_EQ(1, CTimeVal::timeval_subtract(&result, &early, &late)) << "negative result";
  EXPECT_EQ(0, CTimeVal::timeval_subtract(&result, &wide, &zero));
  EXPECT_EQ(std::make_pair(3L, 500000L), Parts(result)) << "whole seconds carried out of usec";

  // Adding microseconds carries only above one second.
  timeval t{0, 0}, u{0, 0}, v{5, 999999};
  CTimeVal::timeval_add_usec(&t, 1000000);
  CTimeVal::timeval_add_usec(&u, 1000001);
  CTimeVal::timeval_add_usec(&v, 2000001);
  EXPECT_EQ(std::make_pair(0L, 1000000L), Parts(t)) << "exactly 1000000 usec stays";
  EXPECT_EQ(std::make_pair(1L, 1L), Parts(u));
  EXPECT_EQ(std::make_pair(7L, 1000000L), Parts(v)) << "carry stops at 1000000";
  timeval a{1, 500000}, b{2, 600000}, sum;
  CTimeVal::timeval_add(&sum, &a, &b);
  EXPECT_EQ(std::make_pair(4L, 100000L), Parts(sum));
}

TEST(TimeValTest, ComparisonIsTrueForEqualTimesAndTheTotalStopsTheWatch) {
  CTimeVal a, b;
  a.startTime = b.startTime = {100, 500};
  EXPECT_TRUE(a > b) << "equal start times count as greater";
  EXPECT_TRUE(CTimeVal::isGT(a, b));
  EXPECT_FALSE(a <= b);
  b.startTime.tv_usec = 501;
  EXPECT_FALSE(a > b);
  EXPECT_TRUE(a <= b);
  b.startTime = {99, 900};
  EXPECT_TRUE(a > b) << "seconds decide before microseconds";
  a += b;
  EXPECT_EQ(std::make_pair(199L, 1400L), Parts(a.startTime));

  // get_total_ms without a stop stops the watch.
  CTimeVal watch;
  watch.start();
  watch.startTime.tv_sec -= 2;  // started two seconds ago
  EXPECT_GE(watch.get_elapsed_ms(), 2000);
  int total = watch.get_total_ms();
  EXPECT_GE(total, 2000);
  EXPECT_LT(total, 3000);
  EXPECT_NE(0, watch.stopTime.tv_sec) << "get_total_ms must stop the watch";
  watch.startTime = {10, 999999};
  watch.stopTime = {12, 0};
  EXPECT_EQ(1000, watch.get_total_ms()) << "a stopped watch keeps its stop time";
  EXPECT_EQ(std::make_pair(10L, 999999L), Parts(watch.startTime)) << "the start stays normalised";
}
