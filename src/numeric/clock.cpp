// This reads the monotonic clock.
#include <nadir/numeric.h>

#include <ctime>

double IP_Utils_GetTimeMS(void) {
  timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<double>(now.tv_nsec) / 1e6 + static_cast<double>(now.tv_sec) * 1000.0;
}

double IP_Utils_GetTimeS(void) { return IP_Utils_GetTimeMS() / 1000.0; }
