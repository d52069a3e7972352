// The caller's way of rounding: the disparities of a frame are the same in all of them, as ground.h says.
#include <gtest/gtest.h>

#include <cfenv>

#include "tests/road/frames.hpp"

namespace nadir::test {
namespace {

struct Hashes {
  uint64_t disparities, everything;
};

Hashes hashesOf(int rounding, const lab::RoadPlan& plan, const NadirFrame& frame) {
  EXPECT_EQ(std::fesetround(rounding), 0);
  lab::Road road(plan);
  lab::Fingerprint disparities, everything;
  const NadirFindings found = road.findings(frame);
  std::fesetround(FE_TONEAREST);
  return {lab::addDisparities(disparities, found).value(), lab::addFindings(everything, found).value()};
}

// That something else differs shows that the way of rounding reaches the road.
TEST(RoadRounding, LeavesTheDisparitiesAsTheyAre) {
  const lab::RoadPlan plan = fullPlan();
  for (const size_t which : {0, 2}) {
    const Hashes nearest = hashesOf(FE_TONEAREST, plan, pairFrame(which));
    for (const int rounding : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
      const Hashes rounded = hashesOf(rounding, plan, pairFrame(which));
      EXPECT_EQ(rounded.disparities, nearest.disparities) << rounding;
      EXPECT_NE(rounded.everything, nearest.everything) << rounding;
    }
  }
}

}  // namespace
}  // namespace nadir::test
