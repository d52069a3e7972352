// Points of the plane, and numbers around the tolerance of the functions that compare them.
#pragma once

#include <nadir/geometry.h>

#include <cmath>
#include <limits>

#include "tests/support/floats.hpp"
#include "tests/support/integers.hpp"

namespace nadir::test {

inline constexpr float tolerance = 0.01f;
inline constexpr float infinity = std::numeric_limits<float>::infinity();
inline const float belowEps = std::nextafter(tolerance, 0.0f);

inline Point_s32 anyPoint(lab::Random& random) { return {anyInteger(random), anyInteger(random)}; }

// Mostly on a small grid of quarters, so that equal, collinear and touching points are frequent.
inline Point_f32 anyPointF(lab::Random& random) {
  if (random.below(8) == 0) return {anyWithin(random, 1000), anyWithin(random, 1000)};
  const float nudge = random.below(4) == 0 ? anyWithin(random, 0.03f) : 0.0f;
  return {static_cast<float>(random.between(-3, 3)) / 4, static_cast<float>(random.between(-3, 3)) / 4 + nudge};
}

}  // namespace nadir::test
