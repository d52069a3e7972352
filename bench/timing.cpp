// Several calls timed in turn, the fastest run of each.
#include "bench/timing.hpp"

#include <time.h>

#include <algorithm>
#include <limits>

namespace nadir::bench {
namespace {

constexpr double secondsPerRun = 0.002;  // long enough for the clock
constexpr double secondsInAll = 0.4;
constexpr int minRounds = 9;

size_t timesThatFillARun(const std::function<void()>& call) {
  size_t times = 1;
  while (secondsOf(call, times) < secondsPerRun) times *= 2;
  return times;
}

}  // namespace

double processorSeconds() {
  timespec time;
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

double secondsOf(const std::function<void()>& call, size_t times) {
  const double start = processorSeconds();
  for (size_t i = 0; i < times; ++i) call();
  return processorSeconds() - start;
}

std::vector<double> fastest(const std::vector<std::function<void()>>& ways) {
  std::vector<size_t> times;
  for (const auto& way : ways) times.push_back(timesThatFillARun(way));
  std::vector<double> best(ways.size(), std::numeric_limits<double>::max());
  const double start = processorSeconds();
  for (int round = 0; round < minRounds || processorSeconds() - start < secondsInAll; ++round) {
    for (size_t i = 0; i < ways.size(); ++i) {
      best[i] = std::min(best[i], secondsOf(ways[i], times[i]) / static_cast<double>(times[i]));
    }
  }
  return best;
}

}  // namespace nadir::bench
