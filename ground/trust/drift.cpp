// Least squares over the blocks near the ground, from wide to narrow.
#include "ground/trust/drift.hpp"

#include <cmath>

#include "ground/trust/arc_tangent.hpp"

namespace nadir::ground {

namespace {

// The ground may have moved by three tolerances, which is about two degrees; then the fit narrows, so that what stands
// low on the ground does not pull it.
constexpr double factors[] = {3, 2, 1.5, 1, 1, 1};

constexpr double leastShare = 0.1;  // of the blocks

// A search asks for no less, so that nothing is settled without one that it would not settle the same way.
constexpr double leastOn = 0.2, mostBelow = 0.04, leastOfDrift = 0.75;

// The matcher's paths run through many blocks, whose errors go together: a fit scatters as if it had fewer of them.
// With one for 3 x 3, what is said is 1 to 5 times what the mounts of rendered scenes scatter by over five seeds. The
// pull of the paths is the same in all of them and not in it: 10 mm of 3 m at 640 x 480 pixels.
constexpr double blocksPerError = 9;

// The scatter of the blocks on a plane, as the variance of one.
double variance(const DisparityPlane& plane, const Block* blocks, size_t count, PlaneEquations& equations, size_t& on) {
  const BlockTolerance tolerance(plane);
  double squares = 0;
  on = 0;
  for (size_t i = 0; i < count; ++i) {
    const double expected = plane.at(blocks[i].x, blocks[i].y), off = blocks[i].disparity - expected;
    if (!(expected > 0 && std::fabs(off) <= tolerance.at(expected))) continue;
    equations.add(blocks[i].x, blocks[i].y, 0);
    squares += off * off;
    ++on;
  }
  return on > 3 ? squares / static_cast<double>(on - 3) : 0;
}

// The deviation of a number of the mount that changes by g when the plane's numbers change by 1 each.
double deviation(const double (&g)[3], const double (&inverse)[9], double variance) {
  double sum = 0;
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) sum += g[i] * inverse[3 * i + j] * g[j];
  return std::sqrt(aboveZero(sum * variance * blocksPerError));
}

struct Slopes {
  double height[3], tilt[3], pan[3];
};

// By differences: the plane's numbers are changed so little that the mount's change with them in proportion.
Slopes slopesAt(const DisparityPlane& plane, const StereoCtx& context, double columnShift) {
  constexpr double steps[3] = {1e-6, 1e-6, 1e-4};
  const Mount here = mountOf(plane, context, columnShift);
  Slopes s{};
  for (int i = 0; i < 3; ++i) {
    const DisparityPlane moved{plane.perColumn + (i == 0 ? steps[0] : 0), plane.perRow + (i == 1 ? steps[1] : 0),
                               plane.atOrigin + (i == 2 ? steps[2] : 0)};
    const Mount there = mountOf(moved, context, columnShift);
    s.height[i] = (there.heightMm - here.heightMm) / steps[i];
    s.tilt[i] = (there.tiltDeg - here.tiltDeg) / steps[i];
    s.pan[i] = (there.panDeg - here.panDeg) / steps[i];
  }
  return s;
}

}  // namespace

Drift driftOf(const DisparityPlane& expected, const Block* blocks, size_t count, const StereoCtx& context,
              double columnShift) {
  constexpr double none = NAN;
  Drift drift{none, none, none, none, none, none, 0};
  DisparityPlane plane = expected;
  for (const double factor : factors)
    if (!refine(plane, blocks, count, factor)) return drift;
  PlaneEquations equations;
  size_t on = 0;
  const double each = variance(plane, blocks, count, equations, on);
  drift.share = count ? static_cast<double>(on) / static_cast<double>(count) : 0;
  double inverse[9];
  if (drift.share < leastShare || !equations.invert(inverse)) return drift;
  const Mount there = mountOf(plane, context, columnShift), said = mountOf(expected, context, columnShift);
  const Slopes s = slopesAt(plane, context, columnShift);
  return {there.heightMm - said.heightMm,
          there.tiltDeg - said.tiltDeg,
          there.panDeg - said.panDeg,
          deviation(s.height, inverse, each),
          deviation(s.tilt, inverse, each),
          deviation(s.pan, inverse, each),
          drift.share};
}

bool asksForSearch(const Drift& drift, const Agreement& expected) {
  const auto blocks = static_cast<double>(expected.blocks);
  return !(static_cast<double>(expected.on) >= leastOn * blocks &&
           static_cast<double>(expected.below) <= mostBelow * blocks &&
           expected.score() >= leastOfDrift * drift.share * blocks);
}

}  // namespace nadir::ground
