// Cameras, their mounts, and what they see.
#pragma once

#include <gtest/gtest.h>
#include <nadir/camera.h>

#include <limits>

#include "tests/models/camera.hpp"
#include "tests/support/floats.hpp"

namespace nadir::test {

inline constexpr float untouched = -777.0f;
inline constexpr float disparityBound = 1.1920929e-7f;
inline constexpr float infinity = std::numeric_limits<float>::infinity();

inline const IntCalib usualCalib = {100, 250, 160, 120};  // mm, pixels
inline const IntCalibParams usualLens = {100 * 256, 250 * 256, 160 * 16, 120 * 16};

inline ExtCalib external(float tilt, float pan) {
  const Orientation o = {2000, tilt, pan};
  ExtCalib e;
  EXPECT_EQ(ip_orientation2externalCalib(&o, &e), 1u);
  return e;
}

inline Orientation anyOrientation(lab::Random& random) {
  return {1000 + anyWithin(random, 900), anyWithin(random, 89), anyWithin(random, 180)};
}

// A rotation with a translation, as a calibration that comes from elsewhere may have.
inline ExtCalib anyExternal(lab::Random& random) {
  ExtCalib e = model::externalCalib(anyOrientation(random));
  for (float& t : e.T) t = anyWithin(random, 500);
  return e;
}

inline IntCalib anyInternal(lab::Random& random) {
  return {100 + anyWithin(random, 50), 300 + anyWithin(random, 100), 160 + anyWithin(random, 40),
          120 + anyWithin(random, 40)};
}

inline Point3_f32 anyPoint3(lab::Random& random, float range) {
  return {anyWithin(random, range), anyWithin(random, range), anyWithin(random, range)};
}

inline Point_f32 anyPixel(lab::Random& random) { return {160 + anyWithin(random, 200), 120 + anyWithin(random, 200)}; }

inline void expectNear(Point3_f32 wanted, Point3_f32 got, float tolerance) {
  EXPECT_NEAR(wanted.x, got.x, tolerance);
  EXPECT_NEAR(wanted.y, got.y, tolerance);
  EXPECT_NEAR(wanted.z, got.z, tolerance);
}

}  // namespace nadir::test
