// The turn that three points make, and equality of points.
#include <gtest/gtest.h>
#include <nadir/geometry.h>

#include <cmath>
#include <limits>

#include "tests/models/geometry.hpp"
#include "tests/support/points.hpp"

namespace nadir::test {
namespace {

// ---- orientation ----

int32_t turn(Point_s32 a, Point_s32 b, Point_s32 c) { return IP_Geom_Orientation(a.x, a.y, b.x, b.y, c.x, c.y); }
int32_t turn(Point_f32 a, Point_f32 b, Point_f32 c) { return IP_Geom_Orientation_f32(&a, &b, &c); }

TEST(Orientation, FromXTowardsYIsNegative) { EXPECT_EQ(turn(Point_s32{0, 0}, {1, 0}, {1, 1}), -1); }

TEST(Orientation, FromYTowardsXIsPositive) { EXPECT_EQ(turn(Point_s32{0, 0}, {0, 1}, {1, 1}), 1); }

TEST(Orientation, OfCollinearPointsIsZero) { EXPECT_EQ(turn(Point_s32{0, 0}, {2, 1}, {-4, -2}), 0); }

TEST(Orientation, OfCoincidingPointsIsZero) { EXPECT_EQ(turn(Point_s32{3, 3}, {3, 3}, {9, 1}), 0); }

TEST(Orientation, WrapsAroundIn32Bits) {
  // (65536 * 65536) is 0 modulo 2^32.
  EXPECT_EQ(turn(Point_s32{0, 0}, {0, 65536}, {65536, 65536}), 0);
  // 46341 squared is just above 2^31 and turns negative.
  EXPECT_EQ(turn(Point_s32{0, 0}, {0, 46341}, {46341, 46341}), -1);
  EXPECT_EQ(turn(Point_s32{0, 0}, {0, 46340}, {46340, 46340}), 1);
}

TEST(Orientation, OfAnyIntegersIsTheWrappedCrossProductsSign) {
  lab::Random random(10);
  for (int round = 0; round < 3000; round++) {
    const Point_s32 a = anyPoint(random), b = anyPoint(random), c = anyPoint(random);
    ASSERT_EQ(turn(a, b, c), model::orientation(a, b, c))
        << a.x << "," << a.y << " " << b.x << "," << b.y << " " << c.x << "," << c.y;
  }
}

TEST(OrientationF32, HasTheSignOfTheIntegerOne) {
  EXPECT_EQ(turn(Point_f32{0, 0}, {1, 0}, {1, 1}), -1);
  EXPECT_EQ(turn(Point_f32{0, 0}, {0, 1}, {1, 1}), 1);
}

TEST(OrientationF32, SeesFivePixelsBesideALongLeg) { EXPECT_EQ(turn(Point_f32{0, 0}, {1000, 0}, {1000, 5}), -1); }

TEST(OrientationF32, TakesADeviationBelowTheToleranceForCollinear) {
  EXPECT_EQ(turn(Point_f32{0, 0}, {1000, 0}, {1000, 0.005f}), 0);
}

TEST(OrientationF32, TakesACrossProductBelowTheToleranceForCollinear) {
  // The deviation itself, 0.09 beside legs of 0.1, would be far above it.
  EXPECT_EQ(turn(Point_f32{0, 0}, {0.1f, 0}, {0.1f, 0.09f}), 0);
}

TEST(OrientationF32, TakesACrossProductOfExactlyTheToleranceForATurn) {
  EXPECT_EQ(turn(Point_f32{0, 0}, {1, 0}, {1, tolerance}), -1);
  EXPECT_EQ(turn(Point_f32{0, 0}, {1, 0}, {1, belowEps}), 0);
}

TEST(OrientationF32, MeasuresAgainstTheLongerLeg) {
  // K is 0.05 both times; a second leg of 10 makes it a deviation of 0.005.
  EXPECT_EQ(turn(Point_f32{0, 0}, {1, 0}, {1, 0.05f}), -1);
  EXPECT_EQ(turn(Point_f32{0, 0}, {1, 0}, {11, 0.05f}), 0);
}

TEST(OrientationF32, TakesTheRootAndTheQuotientInDoublePrecision) {
  // Single precision would round these to the tolerance's other side.
  EXPECT_EQ(turn(Point_f32{0, 0}, {1189.18005f, 0}, {597.754028f, 0.00999999978f}), 0);
  EXPECT_EQ(turn(Point_f32{0, 0}, {1683.13f, 0}, {727.939026f, 0.00999999978f}), -1);
}

TEST(OrientationF32, OfLegsWhoseSquaresOverflowIsZero) {
  EXPECT_EQ(turn(Point_f32{0, 0}, {1e30f, 0}, {1e30f, 1e-20f}), 0);
}

TEST(OrientationF32, OfANaNIsNegative) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  EXPECT_EQ(turn(Point_f32{nan, 0}, {1, 0}, {1, 1}), -1);
  EXPECT_EQ(turn(Point_f32{0, 0}, {1, 0}, {1, nan}), -1);
}

TEST(OrientationF32, OfAnyPointsFollowsBothTolerances) {
  lab::Random random(11);
  int zeros = 0;
  for (int round = 0; round < 3000; round++) {
    const Point_f32 a = anyPointF(random), b = anyPointF(random), c = anyPointF(random);
    ASSERT_EQ(turn(a, b, c), model::orientation(a, b, c))
        << a.x << "," << a.y << " " << b.x << "," << b.y << " " << c.x << "," << c.y;
    zeros += turn(a, b, c) == 0;
  }
  EXPECT_GT(zeros, 100);
}

TEST(OrientationF32, OfNumbersOfEveryMagnitude) {
  lab::Random random(12);
  for (int round = 0; round < 3000; round++) {
    const Point_f32 a = {anyNumber(random), anyNumber(random)}, b = {anyNumber(random), anyNumber(random)},
                    c = {anyNumber(random), anyNumber(random)};
    ASSERT_EQ(turn(a, b, c), model::orientation(a, b, c))
        << a.x << "," << a.y << " " << b.x << "," << b.y << " " << c.x << "," << c.y;
  }
}

// ---- equality of points ----

int32_t areEqual(Point_f32 p, Point_f32 q) { return IP_Geom_ArePointsEqual_f32(&p, &q); }

TEST(PointsEqualF32, WithinTheToleranceOnBothAxes) {
  EXPECT_EQ(areEqual({1, 2}, {1, 2}), 1);
  EXPECT_EQ(areEqual({0, 0}, {belowEps, -belowEps}), 1);
}

TEST(PointsEqualF32, NotAtTheToleranceItself) {
  EXPECT_EQ(areEqual({0, 0}, {tolerance, 0}), 0);
  EXPECT_EQ(areEqual({0, 0}, {0, -tolerance}), 0);
}

TEST(PointsEqualF32, NotWhereOneAxisAloneIsFar) {
  EXPECT_EQ(areEqual({0, 0}, {0, 1}), 0);
  EXPECT_EQ(areEqual({0, 0}, {1, 0}), 0);
}

TEST(PointsEqualF32, NotForANaN) { EXPECT_EQ(areEqual({NAN, 0}, {NAN, 0}), 0); }

TEST(PointsEqualF32, NotForTwoInfinities) { EXPECT_EQ(areEqual({infinity, 0}, {infinity, 0}), 0); }

}  // namespace
}  // namespace nadir::test
