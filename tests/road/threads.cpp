// Two threads at once, each with a road of its own, find what one thread finds alone. ThreadSanitizer watches this
// program: libnadirground promises that roads share nothing.
#include <cstdio>
#include <thread>

#include "tests/road/frames.hpp"

namespace nadir::test {
namespace {

constexpr size_t frames = 6;

lab::RoadPlan planUntil(uint32_t until, uint32_t grid) {
  lab::RoadPlan plan = fullPlan(grid);
  plan.settings.until = until;
  return plan;
}

// Everything that a thread calls, from the making of its road to the saving of its tracks.
uint64_t worked(const lab::RoadPlan& plan) {
  lab::Fingerprint print;
  lab::Road road(plan);
  const lab::Tracker tracker(road, fullTracking());
  for (size_t frame = 0; frame < frames; ++frame) {
    const NadirFindings found = road.findings(pairFrame(frame));
    lab::addDisparities(print, found);
    if (found.heights.data) lab::addFindings(print, found);
    lab::demand(nadir_tracker_step(tracker.get(), road.result(), static_cast<int64_t>(frame) * 100000000));
  }
  return print.add(tracker.saved()).value();
}

int differences(const lab::RoadPlan& one, const lab::RoadPlan& other) {
  uint64_t found[2] = {};
  std::thread first([&] { found[0] = worked(one); }), second([&] { found[1] = worked(other); });
  first.join();
  second.join();
  return (found[0] != worked(one)) + (found[1] != worked(other));
}

// The threads come first: whatever is worked out once for the process is then worked out by two at a time.
int run() {
  int wrong = 0;
  for (const uint32_t until : lab::everyEnd)
    wrong += differences(planUntil(until, NADIR_GRID_LEFT), planUntil(until, NADIR_GRID_RIGHT));
  wrong += differences(planUntil(NADIR_UNTIL_ALL, NADIR_GRID_LEFT), planUntil(NADIR_UNTIL_MATCH, NADIR_GRID_LEFT));
  std::printf("8 roads in pairs of threads, %d differ from one thread's\n", wrong);
  return wrong;
}

}  // namespace
}  // namespace nadir::test

int main() { return nadir::test::run() == 0 ? 0 : 1; }
