// Distances of points to lines, and where lines meet.
#include <gtest/gtest.h>
#include <nadir/geometry.h>

#include <cmath>

#include "tests/models/geometry.hpp"
#include "tests/support/points.hpp"

namespace nadir::test {
namespace {

// ---- squared distances ----

int32_t distance(Line_s32 l, Point_s32 p) { return IP_Geom_LinePoint2_SquaredDistance_s32(&l, &p); }
float distance(Line_f32 l, Point_f32 p) { return IP_Geom_LinePoint2_SquaredDistance_f32(&l, &p); }

TEST(LineDistance, IsSquaredAndPerpendicular) {
  EXPECT_EQ(distance(Line_s32{0, 0, 1, 0}, {5, 3}), 9);
  EXPECT_EQ(distance(Line_s32{2, 1, 4, -3}, {5, 5}), 25);
}

TEST(LineDistance, RoundsTowardsZero) { EXPECT_EQ(distance(Line_s32{0, 0, 1, 1}, {1, 0}), 0); }

TEST(LineDistance, WithoutADirectionIsZero) { EXPECT_EQ(distance(Line_s32{1, 1, 0, 0}, {50, 60}), 0); }

TEST(LineDistance, WithADirectionWhoseSquareWrapsToZeroIsZero) {
  EXPECT_EQ(distance(Line_s32{0, 0, 65536, 0}, {5, 3}), 0);
}

TEST(LineDistance, MayBeNegativeWhereSquaresWrap) {
  // 46341 squared is 2147488281, as a signed number -2147479015.
  EXPECT_EQ(distance(Line_s32{0, 0, 1, 0}, {0, 46341}), -2147479015);
}

TEST(LineDistance, OfAnyIntegersWrapsAround) {
  lab::Random random(16);
  for (int round = 0; round < 4000; round++) {
    const Point_s32 a = anyPoint(random), d = anyPoint(random), p = anyPoint(random);
    ASSERT_EQ(distance(Line_s32{a.x, a.y, d.x, d.y}, p), model::lineDistance({a.x, a.y, d.x, d.y}, p))
        << a.x << "," << a.y << " + " << d.x << "," << d.y << " to " << p.x << "," << p.y;
  }
}

TEST(LineDistanceF32, IsSquaredAndPerpendicular) { EXPECT_EQ(distance(Line_f32{0, 0, 1, 0}, {5, 3}), 9.0f); }

TEST(LineDistanceF32, WithADirectionAtTheDegeneracyBoundIsZero) {
  // 2^-12 on both axes is a squared length of exactly 2^-23; 2^-11 on one is 2^-22.
  EXPECT_EQ(distance(Line_f32{0, 0, 0.000244140625f, 0.000244140625f}, {5, 3}), 0.0f);
  EXPECT_EQ(distance(Line_f32{0, 0, 0.00048828125f, 0}, {5, 3}), 9.0f);
}

TEST(LineDistanceF32, OfALineTooFarOutToTellItsEndIsZero) {
  EXPECT_EQ(distance(Line_f32{1e8f, 0, 1, 0}, {5, 3}), 0.0f);
}

TEST(LineDistanceF32, OfANaNDirectionIsZero) { EXPECT_EQ(distance(Line_f32{0, 0, NAN, 0}, {5, 3}), 0.0f); }

TEST(LineDistanceF32, HasTheBitsOfTheDocumentedFormula) {
  lab::Random random(17);
  for (int round = 0; round < 3000; round++) {
    const Line_f32 l = {anyWithin(random, 500), anyWithin(random, 500), anyWithin(random, 50), anyWithin(random, 50)};
    const Point_f32 p = {anyWithin(random, 500), anyWithin(random, 500)};
    ASSERT_EQ(floats(distance(l, p)), floats(model::lineDistance(l, p)));
  }
}

TEST(LineDistanceF32, OfNumbersOfEveryMagnitude) {
  lab::Random random(18);
  for (int round = 0; round < 3000; round++) {
    const Line_f32 l = {anyNumber(random), anyNumber(random), anyNumber(random), anyNumber(random)};
    const Point_f32 p = {anyNumber(random), anyNumber(random)};
    ASSERT_EQ(floats(distance(l, p)), floats(model::lineDistance(l, p)));
  }
}

// ---- intersection of lines ----

struct Crossing {
  int32_t status;
  Point_s32 at;
};

Crossing cross(Line_s32 l1, Line_s32 l2) {
  Crossing c = {-7, {-77, -78}};
  c.status = IP_Geom_IntersectLines(&l1, &l2, &c.at);
  return c;
}

void expectCrossing(Line_s32 l1, Line_s32 l2, int32_t x, int32_t y) {
  const Crossing c = cross(l1, l2);
  EXPECT_EQ(c.status, 1);
  EXPECT_EQ(c.at.x, x);
  EXPECT_EQ(c.at.y, y);
}

TEST(IntersectLines, WithLongDirectionsMeetWhereShortOnesDo) {
  expectCrossing({0, 5, 1000, 0}, {7, 0, 0, 1000}, 7, 5);
  expectCrossing({0, 5, 1, 0}, {7, 0, 0, 1}, 7, 5);
}

TEST(IntersectLines, OfParallelsLeavesTheResult) {
  const Crossing c = cross({0, 5, 3, 6}, {7, 0, -1, -2});
  EXPECT_EQ(c.status, 0);
  EXPECT_EQ(c.at.x, -77);
  EXPECT_EQ(c.at.y, -78);
}

TEST(IntersectLines, WithoutADirectionIsParallel) { EXPECT_EQ(cross({0, 5, 0, 0}, {7, 0, 0, 1}).status, 0); }

TEST(IntersectLines, OfDirectionsThatReduceToTheSameIsParallel) {
  EXPECT_EQ(cross({0, 0, 12800, 1}, {0, 9, 12800, 2}).status, 0);
}

TEST(IntersectLines, RoundsHalvesAwayFromZero) {
  expectCrossing({0, 0, 1, 1}, {1, 0, -1, 1}, 1, 1);
  expectCrossing({0, 0, -1, -1}, {-1, 0, 1, -1}, -1, -1);
  expectCrossing({0, 0, -1, -1}, {-1, 0, -1, 1}, -1, -1);
}

TEST(IntersectLines, RoundsBelowHalvesTowardsZero) {
  expectCrossing({0, 0, 1, 2}, {1, 0, -1, 1}, 0, 1);
  expectCrossing({0, 0, -1, -2}, {-1, 0, 1, -1}, 0, -1);
}

TEST(IntersectLines, KeepsADirectionOf128) {
  // 128 : 1 needs no reduction; halved it would be 64 : 1 and meet the column at y = 2.
  expectCrossing({0, 0, 128, 1}, {128, 0, 0, 1}, 128, 1);
}

TEST(IntersectLines, HalvesADirectionOf129WithHalvesUp) {
  // k = 2: 129 becomes 65 and 1 becomes 1, so that 65 columns are one row.
  expectCrossing({0, 0, 129, 1}, {65, 0, 0, 1}, 65, 1);
  expectCrossing({0, 0, -129, -1}, {-65, 0, 0, 1}, -65, -1);
  expectCrossing({0, 0, 1, 129}, {0, 65, 1, 0}, 1, 65);
}

TEST(IntersectLines, TakesTheReductionFromTheLongerComponentOfEitherSign) {
  expectCrossing({0, 0, 2, -1000}, {0, 125, 1, 0}, 0, 125);
  // k = 8: 5 becomes 1, 3 becomes 0.
  expectCrossing({0, 0, -1000, 5}, {-125, 0, 0, 1}, -125, 1);
  expectCrossing({0, 0, -1000, 3}, {-125, 0, 0, 1}, -125, 0);
}

TEST(IntersectLines, LeavesTheLinesAsTheyWere) {
  const Line_s32 l1 = {0, 5, 1000, 0}, l2 = {7, 0, 0, 1000};
  Point_s32 out;
  IP_Geom_IntersectLines(&l1, &l2, &out);
  EXPECT_EQ(l1.dx, 1000);
  EXPECT_EQ(l2.dy, 1000);
}

int32_t anyDirection(lab::Random& random) {
  switch (random.below(4)) {
    case 0: return random.between(-3, 3);
    case 1: return random.between(-300, 300);
    case 2: return random.between(-1000000, 1000000);
    // 2^31 - 2^23 - 1: the largest magnitude to which half a divisor can be added.
    default: return static_cast<int32_t>(random.below(2139095040u)) * (random.below(2) ? 1 : -1);
  }
}

TEST(IntersectLines, OfAnyPointsAndDirectionsWrapsAround) {
  lab::Random random(21);
  int met = 0;
  for (int round = 0; round < 5000; round++) {
    auto line = [&] {
      const Point_s32 p = anyPoint(random);
      return Line_s32{p.x, p.y, anyDirection(random), anyDirection(random)};
    };
    const Line_s32 l1 = line(), l2 = line();
    Crossing wanted = {-7, {-77, -78}};
    wanted.status = model::intersectLines(l1, l2, &wanted.at);
    const Crossing c = cross(l1, l2);
    ASSERT_TRUE(wanted.status == c.status && wanted.at.x == c.at.x && wanted.at.y == c.at.y)
        << "lines " << l1.x << "," << l1.y << " + " << l1.dx << "," << l1.dy << " and " << l2.x << "," << l2.y << " + "
        << l2.dx << "," << l2.dy << ": wanted " << wanted.status << " " << wanted.at.x << "," << wanted.at.y << ", got "
        << c.status << " " << c.at.x << "," << c.at.y;
    met += c.status;
  }
  EXPECT_GT(met, 2500);
}

TEST(IntersectLines, WrapsWhereHalfTheDivisorIsAddedToALongDirection) {
  // 2147483647 + 2^23 is -2139095041, which 2^24 divides into -127: the direction has turned round and lost a count.
  Point_s32 wanted;
  const Line_s32 l1 = {0, 0, INT32_MAX, 16777216}, l2 = {1000, 0, 0, 1};
  ASSERT_EQ(model::intersectLines(l1, l2, &wanted), 1);
  EXPECT_EQ(wanted.y, -8);
  expectCrossing(l1, l2, wanted.x, wanted.y);
}

TEST(IntersectLines, WrapsWhereHalfTheDivisorIsAddedToALargeProduct) {
  // n = 2147483647, q = 2: n + 1 wraps to -2147483648.
  Point_s32 wanted;
  const Line_s32 l1 = {INT32_MAX, 0, 1, 2}, l2 = {0, 0, 0, 1};
  ASSERT_EQ(model::intersectLines(l1, l2, &wanted), 1);
  expectCrossing(l1, l2, wanted.x, wanted.y);
}

TEST(IntersectLinesF32, MeetWhereTheyCross) {
  const Line_f32 l1 = {0, 5, 1000, 0}, l2 = {7, 0, 0, 1000};
  Point_f32 out;
  EXPECT_EQ(IP_Geom_IntersectLines_f32(&l1, &l2, &out), 1);
  EXPECT_EQ(floats(out), floats(Point_f32{7, 5}));
}

TEST(IntersectLinesF32, OfNearlyParallelLinesLeaveTheResult) {
  const Line_f32 l1 = {0, 5, 1, 0}, l2 = {7, 0, 1, belowEps};
  Point_f32 out = {-77, -78};
  EXPECT_EQ(IP_Geom_IntersectLines_f32(&l1, &l2, &out), 0);
  EXPECT_EQ(floats(out), floats(Point_f32{-77, -78}));
}

TEST(IntersectLinesF32, OfADeterminantOfExactlyTheToleranceMeet) {
  const Line_f32 l1 = {0, 0, 1, 0}, l2 = {7, 0, 1, tolerance};
  Point_f32 out;
  EXPECT_EQ(IP_Geom_IntersectLines_f32(&l1, &l2, &out), 1);
  EXPECT_EQ(floats(out), floats(Point_f32{7, 0}));
}

TEST(IntersectLinesF32, OfShortDirectionsAreParallelHoweverTheyCross) {
  const Line_f32 l1 = {0, 0, 0.05f, 0}, l2 = {0, 0, 0, 0.05f};
  Point_f32 out;
  EXPECT_EQ(IP_Geom_IntersectLines_f32(&l1, &l2, &out), 0);
}

TEST(IntersectLinesF32, HasTheBitsOfTheDocumentedFormula) {
  lab::Random random(22);
  int met = 0;
  for (int round = 0; round < 4000; round++) {
    auto number = [&] { return round % 4 ? anyWithin(random, 100) : anyNumber(random); };
    const Line_f32 l1 = {number(), number(), number(), number()}, l2 = {number(), number(), number(), number()};
    Point_f32 wanted = {-77, -78}, out = {-77, -78};
    ASSERT_EQ(IP_Geom_IntersectLines_f32(&l1, &l2, &out), model::intersectLines(l1, l2, &wanted));
    ASSERT_EQ(floats(out), floats(wanted)) << floats(l1) << floats(l2);
    met += bitsOf(out.x) != bitsOf(-77.0f);
  }
  EXPECT_GT(met, 2000);
}

}  // namespace
}  // namespace nadir::test
