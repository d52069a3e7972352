// The clock.
#include <gtest/gtest.h>
#include <nadir/numeric.h>
#include <time.h>

namespace {

double monotonicMilliseconds() {
  timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<double>(now.tv_nsec) / 1e6 + static_cast<double>(now.tv_sec) * 1000.0;
}

}  // namespace

// Taken between two readings of the clock, so it must lie between them.
TEST(GetTimeMS, ReadsTheMonotonicClockInMilliseconds) {
  for (int i = 0; i < 1000; ++i) {
    const double before = monotonicMilliseconds(), time = IP_Utils_GetTimeMS(), after = monotonicMilliseconds();
    ASSERT_LE(before, time);
    ASSERT_LE(time, after);
  }
}

TEST(GetTimeMS, NeverGoesBackwards) {
  double last = IP_Utils_GetTimeMS();
  for (int i = 0; i < 10000; ++i) {
    const double now = IP_Utils_GetTimeMS();
    ASSERT_LE(last, now);
    last = now;
  }
}

TEST(GetTimeMS, CountsFractionsOfAMillisecond) {
  const double start = IP_Utils_GetTimeMS();
  double now = start;
  while (now == start) now = IP_Utils_GetTimeMS();
  int shortSteps = 0;
  for (int i = 0; i < 1000; ++i) {
    const double next = IP_Utils_GetTimeMS();
    shortSteps += next > now && next - now < 0.5;
    now = next;
  }
  EXPECT_GT(shortSteps, 0);
}

TEST(GetTimeMS, SeesTimePass) {
  const double start = IP_Utils_GetTimeMS();
  const timespec pause{0, 2000000};
  nanosleep(&pause, nullptr);
  EXPECT_GE(IP_Utils_GetTimeMS() - start, 2.0);
}

TEST(GetTimeS, IsTheSameTimeInSeconds) {
  for (int i = 0; i < 1000; ++i) {
    const double before = IP_Utils_GetTimeMS(), seconds = IP_Utils_GetTimeS(), after = IP_Utils_GetTimeMS();
    ASSERT_LE(before / 1000.0, seconds);
    ASSERT_LE(seconds, after / 1000.0);
  }
}

TEST(GetTimeS, NeverGoesBackwards) {
  double last = IP_Utils_GetTimeS();
  for (int i = 0; i < 10000; ++i) {
    const double now = IP_Utils_GetTimeS();
    ASSERT_LE(last, now);
    last = now;
  }
}
