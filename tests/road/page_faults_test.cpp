// After the first frame, processing touches no page of memory for the first time.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>

#include "tests/road/frames.hpp"
#include "tests/support/sanitized.hpp"

namespace nadir::test {
namespace {

long pageFaults() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_minflt + usage.ru_majflt;
}

// The kernel may take a page back at any time and give it again. That does not happen in all of ten frames.
long fewestFaults(lab::Road& road, const NadirFrame& frame) {
  long fewest = 1000000;
  for (int i = 0; i < 10; ++i) {
    const long before = pageFaults();
    lab::demand(nadir_road_process(road.road(), &frame, road.result()));
    fewest = std::min(fewest, pageFaults() - before);
  }
  return fewest;
}

TEST(RoadPageFaults, NoneAfterTheFirstFrame) {
#ifdef NADIR_COUNTED
  GTEST_SKIP() << "what is counted has pages of its own";
#endif
  if (isSanitized) GTEST_SKIP() << "sanitizers have pages of their own";
  const lab::TexturedPair pair = lab::texturedPair(640, 480);
  lab::RoadPlan plan = fullPlan();
  plan.camera = lab::cameraOver(pair);
  plan.areas.erase(plan.areas.begin());  // its pixels are those of a smaller picture
  lab::Road road(plan);
  const NadirFrame frame = lab::frameOf(pair.first.data(), pair.reference.data(), pair.width);
  const long before = pageFaults();
  road.findings(frame);
  EXPECT_GT(pageFaults() - before, 100);  // the first one touches all of its memory, so they are counted at all
  EXPECT_EQ(fewestFaults(road, frame), 0);
}

}  // namespace
}  // namespace nadir::test
