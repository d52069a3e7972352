// Planes through three blocks each are tried on the others.
//
// M. Fischler, R. Bolles, "Random sample consensus", Communications of the ACM 24(6), 1981; then least squares.
#include "ground/trust/ground_search.hpp"

#include <cmath>
#include <initializer_list>
#include <random>

namespace nadir::ground {

namespace {

// Three blocks lie on a plane that holds the share s of all with a probability of s^3: 500 triples miss it altogether
// with (1 - s^3)^500, once in 2600 runs for a quarter of the blocks.
constexpr int hypotheses = 500;

// A hypothesis is tried on at most this many blocks. Its share is then known with a standard deviation of 2 percent
// points at most.
constexpr size_t judges = 600;

constexpr int refinements = 4;

// Every unspoilt scene and pair has a score of at least 0.79 of the best plane's at the scenes' own mount. A tilt or
// pan that is wrong by 5 degrees leaves 0.41 at most in pictures of 320 x 240 pixels and more.
constexpr double leastOfBest = 0.7;

// A slope that fills the picture may outvote the ground, which then lies on its plane in one piece all the same: the
// ready scene from straight above has 0.24 of its blocks there, with a scatter of 0.17 tolerances. A plane that only
// cuts through another has blocks on it as evenly as the tolerance is wide, with a scatter of 0.53 or more, or fewer
// than 0.14.
constexpr double leastCluster = 0.18, largestScatter = 0.43, mostBelowCluster = 0.05;

// Tolerances: a pan that is off by 5 degrees differs by 1.7 in the smallest pictures, 160 x 120 pixels.
constexpr double alike = 1.5;

// The blocks that hypotheses are tried on, each number in a row of its own, in single precision: what is counted over
// and over is counted in vectors then.
struct Sample {
  float x[judges], y[judges], disparity[judges];
  uint32_t count = 0;
};

void take(Sample& sample, const Block* blocks, size_t count) {
  const size_t step = (count + judges - 1) / judges;
  for (size_t i = 0; i < count; i += step, ++sample.count) {
    sample.x[sample.count] = blocks[i].x;
    sample.y[sample.count] = blocks[i].y;
    sample.disparity[sample.count] = blocks[i].disparity;
  }
}

bool throughThree(const Sample& sample, std::mt19937& random, DisparityPlane& plane) {
  PlaneEquations equations;
  for (int i = 0; i < 3; ++i) {
    const size_t b = random() % sample.count;
    equations.add(sample.x[b], sample.y[b], sample.disparity[b]);
  }
  return equations.solve(plane);
}

// The score of agreementOf.
int32_t scoreOf(const DisparityPlane& plane, const Sample& sample) {
  const auto perColumn = static_cast<float>(plane.perColumn), perRow = static_cast<float>(plane.perRow),
             atOrigin = static_cast<float>(plane.atOrigin);
  const BlockTolerance tolerance(plane);
  int32_t score = 0;
  for (uint32_t i = 0; i < sample.count; ++i) {
    const float expected = perColumn * sample.x[i] + perRow * sample.y[i] + atOrigin;
    const float off = sample.disparity[i] - expected, most = tolerance.at(expected);
    const int32_t counts = expected > 0, on = (off <= most) & (off >= -most), below = off < -2 * most;
    score += counts & on;
    score -= counts & below;
  }
  return score;
}

}  // namespace

FoundGround searchedGround(const Block* blocks, size_t count) {
  FoundGround found{};
  if (count < 3) return found;
  Sample sample;
  take(sample, blocks, count);
  std::mt19937 random(1);
  int32_t most = 0;
  for (int i = 0; i < hypotheses; ++i) {
    DisparityPlane plane;
    if (!throughThree(sample, random, plane)) continue;
    const int32_t score = scoreOf(plane, sample);
    if (score > most) most = score, found.plane = plane;
  }
  if (most == 0) return found;
  for (int i = 0; i < refinements; ++i) refine(found.plane, blocks, count, 1);
  found.agreement = agreementOf(found.plane, blocks, count);
  return found;
}

bool clusters(const Agreement& a) {
  const auto blocks = static_cast<double>(a.blocks);
  return static_cast<double>(a.on) >= leastCluster * blocks && a.scatter <= largestScatter &&
         static_cast<double>(a.below) <= mostBelowCluster * blocks;
}

bool isThere(const Agreement& expected, const Agreement& best) {
  return expected.score() >= leastOfBest * best.score() || clusters(expected);
}

// Planes are linear: they differ most at a corner, of those in which the ground is seen.
bool areAlike(const DisparityPlane& a, const DisparityPlane& b, uint32_t width, uint32_t height) {
  const BlockTolerance tolerance(a);
  for (const double x : {0.0, width - 1.0})
    for (const double y : {0.0, height - 1.0})
      if (a.at(x, y) > 0 && std::fabs(a.at(x, y) - b.at(x, y)) > alike * tolerance.at(a.at(x, y))) return false;
  return true;
}

}  // namespace nadir::ground
