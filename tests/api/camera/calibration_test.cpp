// Calibration records, made of stored integers and of angles.
#include <gtest/gtest.h>
#include <nadir/camera.h>

#include "tests/models/camera.hpp"
#include "tests/support/cameras.hpp"

namespace nadir::test {
namespace {

TEST(InternalCalib, ScalesTheStoredIntegers) {
  const IntCalibParams params = {25600 + 128, 256, 16 + 8, -1};
  IntCalib calib;
  ip_params2internalCalib(&params, &calib);
  EXPECT_EQ(floats(calib), (Floats{100.5f, 1, 1.5f, -0.0625f}));
}

TEST(InternalCalib, ConvertsToFloatBeforeItScales) {
  // 2^24 + 1 is no float.
  const IntCalibParams params = {16777217, INT32_MAX, INT32_MIN, 16777219};
  IntCalib calib;
  ip_params2internalCalib(&params, &calib);
  EXPECT_EQ(floats(calib), (Floats{65536, 8388608, -134217728, 1048576.25f}));
}

TEST(ExternalCalib, OfACameraThatLooksStraightDownIsTheIdentity) {
  const ExtCalib e = external(0, 0);
  const float identity[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
  for (int i = 0; i < 9; i++) EXPECT_EQ(identity[i], e.R[i]) << i;  // zeros of either sign
  EXPECT_EQ(floats(e.T), (Floats{0, 0, 0}));
}

TEST(ExternalCalib, OfATiltRaisesTheOpticalAxisAlongY) {
  const ExtCalib e = external(30, 0);
  EXPECT_NEAR(0, e.R[2], 1e-6);
  EXPECT_NEAR(0.5, e.R[5], 1e-6);
  EXPECT_NEAR(0.8660254, e.R[8], 1e-6);
}

TEST(ExternalCalib, OfAPanTurnsTheOpticalAxisTowardsMinusX) {
  const ExtCalib e = external(0, 30);
  EXPECT_NEAR(-0.5, e.R[2], 1e-6);
  EXPECT_NEAR(0, e.R[5], 1e-6);
  EXPECT_NEAR(0.8660254, e.R[8], 1e-6);
}

TEST(ExternalCalib, PansBeforeItTilts) {
  const ExtCalib e = external(30, 30);
  EXPECT_NEAR(0, e.R[1], 1e-6);
  EXPECT_NEAR(0.25, e.R[3], 1e-6);
}

TEST(ExternalCalib, DoesNotLookAtTheHeight) {
  const Orientation low = {0, 33, 12}, high = {1e9f, 33, 12};
  ExtCalib a, b;
  ip_orientation2externalCalib(&low, &a);
  ip_orientation2externalCalib(&high, &b);
  EXPECT_EQ(floats(a), floats(b));
}

TEST(ExternalCalib, HasTheBitsOfTheDocumentedProduct) {
  lab::Random random(70);
  for (int round = 0; round < 2000; round++) {
    const Orientation o = round % 2 ? anyOrientation(random)
                                    : Orientation{0, static_cast<float>(random.between(-360, 360)) / 4,
                                                  static_cast<float>(random.between(-720, 720)) / 4};
    ExtCalib e;
    ASSERT_EQ(ip_orientation2externalCalib(&o, &e), 1u);
    ASSERT_EQ(floats(e), floats(model::externalCalib(o))) << o.tilt << " " << o.pan;
  }
}

TEST(ExternalCalib, IsARotation) {
  lab::Random random(71);
  for (int round = 0; round < 100; round++) {
    const Orientation o = anyOrientation(random);
    const ExtCalib e = external(o.tilt, o.pan);
    const model::Matrix r = model::rotationOf(e), should = model::product(r, model::transposed(r));
    for (size_t i = 0; i < 9; i++) ASSERT_NEAR(i % 4 == 0, should[i], 1e-6);
    const double det = double{r[0]} * (double{r[4]} * r[8] - double{r[5]} * r[7]) -
                       double{r[1]} * (double{r[3]} * r[8] - double{r[5]} * r[6]) +
                       double{r[2]} * (double{r[3]} * r[7] - double{r[4]} * r[6]);
    ASSERT_NEAR(1, det, 1e-6);
  }
}

}  // namespace
}  // namespace nadir::test
