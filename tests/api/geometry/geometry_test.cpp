// Points, edges, lines, rectangles and triangles.
#include <gtest/gtest.h>
#include <nadir/geometry.h>

#include <cfloat>
#include <cmath>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/models/geometry.hpp"
#include "tests/support/floats.hpp"
#include "tests/support/integers.hpp"

namespace nadir::test {
namespace {

constexpr float tolerance = 0.01f;
constexpr float infinity = std::numeric_limits<float>::infinity();
const float belowEps = std::nextafter(tolerance, 0.0f);

Point_s32 anyPoint(lab::Random& random) { return {anyInteger(random), anyInteger(random)}; }

// Mostly on a small grid of quarters, so that equal, collinear and touching points are frequent.
Point_f32 anyPointF(lab::Random& random) {
  if (random.below(8) == 0) return {anyWithin(random, 1000), anyWithin(random, 1000)};
  const float nudge = random.below(4) == 0 ? anyWithin(random, 0.03f) : 0.0f;
  return {static_cast<float>(random.between(-3, 3)) / 4, static_cast<float>(random.between(-3, 3)) / 4 + nudge};
}

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

// ---- intersection of edges ----

int32_t intersect(Edge_s32 e, Edge_s32 f) { return IP_Geom_EdgesIntersect(&e, &f); }
int32_t intersect(Edge_f32 e, Edge_f32 f) { return IP_Geom_EdgesIntersect_f32(&e, &f); }

TEST(EdgesIntersect, WhereTheyCross) { EXPECT_EQ(intersect(Edge_s32{0, 0, 4, 4}, {0, 4, 4, 0}), 1); }

TEST(EdgesIntersect, NotWhereTheyAreApart) {
  EXPECT_EQ(intersect(Edge_s32{0, 0, 4, 4}, {5, 0, 9, 4}), 0);
  EXPECT_EQ(intersect(Edge_s32{0, 0, 4, 4}, {3, 0, 9, 0}), 0);
}

TEST(EdgesIntersect, NotWhereAnEndTouchesAHorizontalEdge) {
  EXPECT_EQ(intersect(Edge_s32{0, 0, 4, 0}, {2, 0, 2, 3}), 0);
}

TEST(EdgesIntersect, NotWhereAnEndTouchesAVerticalEdge) { EXPECT_EQ(intersect(Edge_s32{0, 0, 0, 4}, {0, 2, 3, 2}), 0); }

TEST(EdgesIntersect, WhereTheSecondStartsInsideASlantedEdge) {
  EXPECT_EQ(intersect(Edge_s32{0, 0, 4, 4}, {2, 2, 5, 0}), 1);
}

TEST(EdgesIntersect, WhereTheSecondEndsInsideASlantedEdge) {
  EXPECT_EQ(intersect(Edge_s32{0, 0, 4, 4}, {5, 0, 2, 2}), 1);
}

TEST(EdgesIntersect, WhereTheFirstStartsInsideASlantedEdge) {
  EXPECT_EQ(intersect(Edge_s32{2, 2, 5, 0}, {0, 0, 4, 4}), 1);
}

TEST(EdgesIntersect, WhereTheFirstEndsInsideASlantedEdge) {
  EXPECT_EQ(intersect(Edge_s32{5, 0, 2, 2}, {0, 0, 4, 4}), 1);
}

TEST(EdgesIntersect, NotWhereTheyShareAnEnd) {
  EXPECT_EQ(intersect(Edge_s32{0, 0, 2, 2}, {2, 2, 4, 0}), 0);
  EXPECT_EQ(intersect(Edge_s32{0, 0, 2, 2}, {0, 0, 4, 1}), 0);
}

TEST(EdgesIntersect, NotWithThemselves) { EXPECT_EQ(intersect(Edge_s32{0, 0, 4, 4}, {0, 0, 4, 4}), 0); }

TEST(EdgesIntersect, WhereCollinearSlantedEdgesOverlap) { EXPECT_EQ(intersect(Edge_s32{0, 0, 4, 4}, {2, 2, 6, 6}), 1); }

TEST(EdgesIntersect, NotWhereCollinearHorizontalEdgesOverlap) {
  EXPECT_EQ(intersect(Edge_s32{0, 0, 4, 0}, {2, 0, 6, 0}), 0);
}

TEST(EdgesIntersect, OfAnyIntegersFollowsTheWrappedOrientations) {
  lab::Random random(13);
  int hits = 0;
  for (int round = 0; round < 4000; round++) {
    const bool small = round % 2 == 0;
    auto point = [&] { return small ? Point_s32{random.between(0, 5), random.between(0, 5)} : anyPoint(random); };
    const Point_s32 a = point(), b = point(), c = point(), d = point();
    const int32_t wanted = model::edgesIntersect(a, b, c, d);
    ASSERT_EQ(intersect(Edge_s32{a.x, a.y, b.x, b.y}, {c.x, c.y, d.x, d.y}), wanted)
        << a.x << "," << a.y << "-" << b.x << "," << b.y << " and " << c.x << "," << c.y << "-" << d.x << "," << d.y;
    hits += wanted;
  }
  EXPECT_GT(hits, 200);
}

TEST(EdgesIntersectF32, WhereTheyCross) { EXPECT_EQ(intersect(Edge_f32{0, 0, 4, 4}, {0, 4, 4, 0}), 1); }

TEST(EdgesIntersectF32, NotWhereAnEndTouchesAHorizontalEdge) {
  EXPECT_EQ(intersect(Edge_f32{0, 0, 4, 0}, {2, 0, 2, 3}), 0);
}

TEST(EdgesIntersectF32, NotWhereTheyShareAnEnd) { EXPECT_EQ(intersect(Edge_f32{0, 0, 2, 2}, {2, 2, 4, 0}), 0); }

TEST(EdgesIntersectF32, WhereAnEndTouchesASlantedEdge) {
  EXPECT_EQ(intersect(Edge_f32{0, 0, 4, 4}, {2, 2, 5, 0}), 1);
  EXPECT_EQ(intersect(Edge_f32{0, 0, 4, 4}, {5, 0, 2, 2}), 1);
  EXPECT_EQ(intersect(Edge_f32{2, 2, 5, 0}, {0, 0, 4, 4}), 1);
  EXPECT_EQ(intersect(Edge_f32{5, 0, 2, 2}, {0, 0, 4, 4}), 1);
}

TEST(EdgesIntersectF32, CountsATouchOnlyFromTheToleranceInwards) {
  // The second edge starts on the diagonal and leaves it on one side only, so that nothing but the touch can count.
  EXPECT_EQ(intersect(Edge_f32{0, 0, 4, 4}, {tolerance, tolerance, 5, 0}), 1);
  EXPECT_EQ(intersect(Edge_f32{0, 0, 4, 4}, {belowEps, belowEps, 5, 0}), 0);
}

TEST(EdgesIntersectF32, OfAnyEdgesFollowsTheInsetBox) {
  lab::Random random(14);
  int hits = 0;
  for (int round = 0; round < 4000; round++) {
    const Point_f32 a = anyPointF(random), b = anyPointF(random), c = anyPointF(random), d = anyPointF(random);
    const int32_t wanted = model::edgesIntersect(a, b, c, d);
    ASSERT_EQ(intersect(Edge_f32{a.x, a.y, b.x, b.y}, {c.x, c.y, d.x, d.y}), wanted)
        << a.x << "," << a.y << "-" << b.x << "," << b.y << " and " << c.x << "," << c.y << "-" << d.x << "," << d.y;
    hits += wanted;
  }
  EXPECT_GT(hits, 200);
}

// ---- point on edge ----

int32_t isOn(Edge_f32 e, Point_f32 p) { return IP_Geom_IsPointOnEdge_f32(&e, &p); }

TEST(PointOnEdgeF32, HoldsBetweenTheEnds) { EXPECT_EQ(isOn({0, 0, 4, 2}, {2, 1}), 1); }

TEST(PointOnEdgeF32, HoldsFarBeyondEitherEnd) {
  EXPECT_EQ(isOn({0, 0, 1, 0}, {5, 0}), 1);
  EXPECT_EQ(isOn({0, 0, 1, 0}, {-500, 0}), 1);
}

TEST(PointOnEdgeF32, FailsBesideTheLine) { EXPECT_EQ(isOn({0, 0, 4, 0}, {2, 0.5f}), 0); }

TEST(PointOnEdgeF32, IsCollinearityForAnyFinitePoint) {
  lab::Random random(15);
  for (int round = 0; round < 2000; round++) {
    const Point_f32 a = anyPointF(random), b = anyPointF(random), p = anyPointF(random);
    ASSERT_EQ(isOn({a.x, a.y, b.x, b.y}, p), model::orientation(a, b, p) == 0);
  }
}

// ---- squared distances ----

int32_t distance(Line_s32 l, Point_s32 p) { return IP_Geom_LinePoint2_SquaredDistance_s32(&l, &p); }
float distance(Line_f32 l, Point_f32 p) { return IP_Geom_LinePoint2_SquaredDistance_f32(&l, &p); }
int32_t distance(Edge_s32 e, Point_s32 p) { return IP_Geom_EdgePoint2_SquaredDistance_s32(&e, &p); }
float distance(Edge_f32 e, Point_f32 p) { return IP_Geom_EdgePoint2_SquaredDistance_f32(&e, &p); }

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

TEST(EdgeDistance, IsToTheLineBeyondTheEnds) { EXPECT_EQ(distance(Edge_s32{0, 0, 1, 0}, {5, 3}), 9); }

TEST(EdgeDistance, OfAnEdgeWithoutLengthIsZero) { EXPECT_EQ(distance(Edge_s32{4, 4, 4, 4}, {50, 60}), 0); }

TEST(EdgeDistance, OfAnyIntegersWrapsAround) {
  lab::Random random(19);
  for (int round = 0; round < 3000; round++) {
    const Point_s32 a = anyPoint(random), b = anyPoint(random), p = anyPoint(random);
    ASSERT_EQ(distance(Edge_s32{a.x, a.y, b.x, b.y}, p), model::edgeDistance(a, b, p))
        << a.x << "," << a.y << " - " << b.x << "," << b.y << " to " << p.x << "," << p.y;
  }
}

TEST(EdgeDistanceF32, IsToTheLineBeyondTheEnds) { EXPECT_EQ(distance(Edge_f32{0, 0, 1, 0}, {5, 3}), 9.0f); }

TEST(EdgeDistanceF32, OfAnEdgeWithoutLengthIsZero) { EXPECT_EQ(distance(Edge_f32{4, 4, 4, 4}, {50, 60}), 0.0f); }

TEST(EdgeDistanceF32, HasTheBitsOfTheLineThroughItsEnds) {
  lab::Random random(20);
  for (int round = 0; round < 3000; round++) {
    const Point_f32 a = {anyWithin(random, 500), anyWithin(random, 500)}, b = {anyWithin(random, 500), a.y},
                    p = {anyWithin(random, 500), anyWithin(random, 500)};
    ASSERT_EQ(floats(distance(Edge_f32{a.x, a.y, b.x, b.y}, p)), floats(model::edgeDistance(a, b, p)));
    ASSERT_EQ(floats(distance(Edge_f32{a.x, a.y, p.x, p.y}, b)), floats(model::edgeDistance(a, p, b)));
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

// ---- barycentric weights ----

struct Weights {
  int32_t status;
  float w[3];
};

Weights weigh(const std::vector<Point_s32>& triangle, Point_s32 p) {
  Weights out = {-7, {-77, -78, -79}};
  out.status = IP_Geom_Barycentric(triangle.data(), &p, out.w);
  return out;
}

// The model reasons on 32-bit integers.
Weights expectedWeights(const std::vector<Point_s32>& t, Point_s32 p) {
  const Point_s32 &a = t[0], &b = t[1], &c = t[2];
  const Wrap abx = Wrap(b.x) - a.x, aby = Wrap(b.y) - a.y, acx = Wrap(c.x) - a.x, acy = Wrap(c.y) - a.y;
  const Wrap d = acy * abx - acx * aby;
  if (d.value() == 0) return {-1, {-77, -78, -79}};
  const Wrap qx = Wrap(p.x) - a.x, qy = Wrap(p.y) - a.y;
  const Wrap u = qx * acy - qy * acx, v = qy * abx - qx * aby, w = d - (u + v);
  const float r = 1.0f / static_cast<float>(d.value());
  Weights out = {
      0, {static_cast<float>(w.value()) * r, static_cast<float>(u.value()) * r, static_cast<float>(v.value()) * r}};
  if (u.value() < 0 || v.value() < 0 || w.value() < 0 || d.value() < w.value()) return out;
  out.status = d.value() >= std::max(u.value(), v.value());
  return out;
}

const std::vector<Point_s32> rightTriangle = {{0, 0}, {10, 0}, {0, 10}};

TEST(Barycentric, WeighsTheCornersInTheirOrder) {
  const Weights out = weigh(rightTriangle, {1, 2});
  EXPECT_EQ(out.status, 1);
  const float tenth = 1.0f / 100;
  EXPECT_EQ(floats(out.w), (Floats{70 * tenth, 10 * tenth, 20 * tenth}));
}

TEST(Barycentric, OfTheOtherVertexOrderIsNeverInside) {
  const Weights out = weigh({{0, 0}, {0, 10}, {10, 0}}, {1, 1});
  EXPECT_EQ(out.status, 0);
  const float tenth = 1.0f / -100;
  EXPECT_EQ(floats(out.w), (Floats{-80 * tenth, -10 * tenth, -10 * tenth}));
}

TEST(Barycentric, HoldsOnTheBoundaryAndAtTheCorners) {
  for (Point_s32 p : {Point_s32{0, 0}, {10, 0}, {0, 10}, {5, 5}, {0, 3}, {3, 0}}) {
    EXPECT_EQ(weigh(rightTriangle, p).status, 1) << p.x << "," << p.y;
  }
}

TEST(Barycentric, WritesTheWeightsOfAPointOutside) {
  const Weights out = weigh(rightTriangle, {-10, 0});
  EXPECT_EQ(out.status, 0);
  const float tenth = 1.0f / 100;
  EXPECT_EQ(floats(out.w), (Floats{200 * tenth, -100 * tenth, 0}));
}

TEST(Barycentric, FailsBeyondEachSide) {
  for (Point_s32 p : {Point_s32{-1, 5}, {5, -1}, {6, 5}})
    EXPECT_EQ(weigh(rightTriangle, p).status, 0) << p.x << "," << p.y;
}

TEST(Barycentric, RefusesADegenerateTriangle) {
  const Weights out = weigh({{0, 0}, {1, 1}, {2, 2}}, {1, 1});
  EXPECT_EQ(out.status, -1);
  EXPECT_EQ(floats(out.w), (Floats{-77, -78, -79}));
}

TEST(Barycentric, RefusesATriangleWhoseAreaWrapsToZero) {
  EXPECT_EQ(weigh({{0, 0}, {65536, 0}, {0, 65536}}, {1, 1}).status, -1);
}

TEST(Barycentric, RefusesEachNullPointer) {
  const Point_s32 p = {1, 1};
  float w[3] = {-77, -78, -79};
  EXPECT_EQ(IP_Geom_Barycentric(nullptr, &p, w), -1);
  EXPECT_EQ(IP_Geom_Barycentric(rightTriangle.data(), nullptr, w), -1);
  EXPECT_EQ(IP_Geom_Barycentric(rightTriangle.data(), &p, nullptr), -1);
  EXPECT_EQ(floats(w), (Floats{-77, -78, -79}));
}

TEST(Barycentric, OfAnyIntegersWrapsAround) {
  lab::Random random(23);
  int inside = 0;
  for (int round = 0; round < 5000; round++) {
    const bool small = round % 2 == 0;
    auto point = [&] { return small ? Point_s32{random.between(0, 6), random.between(0, 6)} : anyPoint(random); };
    const std::vector<Point_s32> t = {point(), point(), point()};
    const Point_s32 p = point();
    const Weights wanted = expectedWeights(t, p), out = weigh(t, p);
    ASSERT_EQ(out.status, wanted.status) << t[0].x << "," << t[0].y << " " << t[1].x << "," << t[1].y << " " << t[2].x
                                         << "," << t[2].y << " at " << p.x << "," << p.y;
    ASSERT_EQ(floats(out.w), floats(wanted.w));
    inside += out.status == 1;
  }
  EXPECT_GT(inside, 100);
}

// ---- rectangles ----

template <class Rect>
struct RectOps;
template <>
struct RectOps<Rect_s32> {
  using Coordinate = int32_t;
  static int32_t overlap(const Rect_s32& a, const Rect_s32& b) { return IP_Geom_Intersects_s32(&a, &b); }
  static void unite(const Rect_s32& a, const Rect_s32& b, Rect_s32* out) { IP_Geom_SetUnion_s32(&a, &b, out); }
};
template <>
struct RectOps<Rect_u32> {
  using Coordinate = uint32_t;
  static int32_t overlap(const Rect_u32& a, const Rect_u32& b) { return IP_Geom_Intersects_u32(&a, &b); }
  static void unite(const Rect_u32& a, const Rect_u32& b, Rect_u32* out) { IP_Geom_SetUnion_u32(&a, &b, out); }
};

template <class Rect>
auto sides(const Rect& r) {
  return std::vector<decltype(r.x0)>{r.x0, r.y0, r.x1, r.y1};
}

template <class Rect>
bool isEmpty(const Rect& r) {
  return r.x0 == r.x1 || r.y0 == r.y1;
}

template <class Rect>
Rect anyRect(lab::Random& random) {
  using C = typename RectOps<Rect>::Coordinate;
  auto side = [&] { return static_cast<C>(random.below(2) ? anyInteger(random) : random.between(-3, 3)); };
  return {side(), side(), side(), side()};
}

template <class Rect>
class Rectangles : public testing::Test {};
using RectTypes = testing::Types<Rect_s32, Rect_u32>;
struct RectNames {
  template <class Rect>
  static std::string GetName(int) {
    return std::is_same_v<Rect, Rect_s32> ? "Signed" : "Unsigned";
  }
};
TYPED_TEST_SUITE(Rectangles, RectTypes, RectNames);

TYPED_TEST(Rectangles, OverlapWhereTheyShareACell) {
  EXPECT_EQ(RectOps<TypeParam>::overlap({0, 0, 4, 4}, {3, 3, 9, 9}), 1);
  EXPECT_EQ(RectOps<TypeParam>::overlap({3, 3, 9, 9}, {0, 0, 4, 4}), 1);
  EXPECT_EQ(RectOps<TypeParam>::overlap({0, 0, 9, 9}, {3, 3, 4, 4}), 1);
}

TYPED_TEST(Rectangles, DoNotOverlapWhereTheyOnlyTouch) {
  const TypeParam centre = {4, 4, 8, 8};
  for (const TypeParam& r : {TypeParam{0, 4, 4, 8}, {8, 4, 9, 8}, {4, 0, 8, 4}, {4, 8, 8, 9}, {8, 8, 9, 9}}) {
    EXPECT_EQ(RectOps<TypeParam>::overlap(centre, r), 0);
    EXPECT_EQ(RectOps<TypeParam>::overlap(r, centre), 0);
  }
}

TYPED_TEST(Rectangles, DoNotOverlapWhereOneIsEmpty) {
  EXPECT_EQ(RectOps<TypeParam>::overlap({2, 2, 2, 3}, {0, 0, 9, 9}), 0);
  EXPECT_EQ(RectOps<TypeParam>::overlap({0, 0, 9, 9}, {2, 2, 3, 2}), 0);
}

TYPED_TEST(Rectangles, OverlapIsTheFourStrictComparisonsForAnySides) {
  lab::Random random(24);
  int hits = 0;
  for (int round = 0; round < 4000; round++) {
    const TypeParam a = anyRect<TypeParam>(random), b = anyRect<TypeParam>(random);
    const bool wanted = !isEmpty(a) && !isEmpty(b) && b.x0 < a.x1 && b.x1 > a.x0 && a.y0 < b.y1 && a.y1 > b.y0;
    ASSERT_EQ(RectOps<TypeParam>::overlap(a, b), wanted);
    hits += wanted;
  }
  EXPECT_GT(hits, 100);
}

TYPED_TEST(Rectangles, UnionIsTheBoxAroundBoth) {
  TypeParam out = {};
  RectOps<TypeParam>::unite({0, 5, 2, 7}, {4, 1, 9, 3}, &out);
  EXPECT_EQ(sides(out), sides(TypeParam{0, 1, 9, 7}));
}

TYPED_TEST(Rectangles, UnionWithAnEmptyOneIsTheOther) {
  const TypeParam full = {4, 4, 8, 8};
  for (const TypeParam& empty : {TypeParam{1, 1, 1, 9}, {1, 1, 9, 1}}) {
    TypeParam out = {};
    RectOps<TypeParam>::unite(full, empty, &out);
    EXPECT_EQ(sides(out), sides(full));
    out = {};
    RectOps<TypeParam>::unite(empty, full, &out);
    EXPECT_EQ(sides(out), sides(full));
  }
}

TYPED_TEST(Rectangles, UnionOfTwoEmptyOnesLeavesTheResult) {
  TypeParam out = {11, 12, 13, 14};
  RectOps<TypeParam>::unite({1, 1, 1, 9}, {2, 2, 9, 2}, &out);
  EXPECT_EQ(sides(out), sides(TypeParam{11, 12, 13, 14}));
}

TYPED_TEST(Rectangles, UnionMayBeWrittenOverEitherOperand) {
  TypeParam a = {0, 5, 2, 7}, b = {4, 1, 9, 3};
  RectOps<TypeParam>::unite(a, b, &a);
  EXPECT_EQ(sides(a), sides(TypeParam{0, 1, 9, 7}));
  a = {0, 5, 2, 7};
  RectOps<TypeParam>::unite(a, b, &b);
  EXPECT_EQ(sides(b), sides(TypeParam{0, 1, 9, 7}));
}

TYPED_TEST(Rectangles, UnionUsesInvertedOnesAsTheyStand) {
  TypeParam out = {};
  RectOps<TypeParam>::unite({9, 9, 5, 5}, {6, 6, 7, 7}, &out);
  EXPECT_EQ(sides(out), sides(TypeParam{6, 6, 7, 7}));
}

TYPED_TEST(Rectangles, UnionTakesTheOuterSidesOfAny) {
  lab::Random random(25);
  for (int round = 0; round < 4000; round++) {
    const TypeParam a = anyRect<TypeParam>(random), b = anyRect<TypeParam>(random);
    TypeParam out = {11, 12, 13, 14}, wanted = out;
    RectOps<TypeParam>::unite(a, b, &out);
    if (!isEmpty(a)) wanted = a;
    if (!isEmpty(b)) wanted = b;
    if (!isEmpty(a) && !isEmpty(b)) {
      wanted = {std::min(a.x0, b.x0), std::min(a.y0, b.y0), std::max(a.x1, b.x1), std::max(a.y1, b.y1)};
    }
    ASSERT_EQ(sides(out), sides(wanted));
  }
}

TEST(RectanglesSigned, CompareNegativeSidesBelowZero) {
  EXPECT_EQ(RectOps<Rect_s32>::overlap({-5, -5, 1, 1}, {-1, -1, 9, 9}), 1);
}

TEST(RectanglesUnsigned, CompareSidesAboveTheSignBitAsLarge) {
  EXPECT_EQ(RectOps<Rect_u32>::overlap({1, 1, 0x80000005u, 0x80000005u}, {0x80000000u, 0x80000000u, ~0u, ~0u}), 1);
}

Rect_s32 intersection(const Rect_s32& a, const Rect_s32& b) {
  Rect_s32 out = {11, 12, 13, 14};
  IP_Geom_SetIntersection_s32(&a, &b, &out);
  return out;
}

TEST(RectIntersection, IsTheCommonPart) {
  EXPECT_EQ(sides(intersection({0, 0, 4, 5}, {3, 2, 9, 9})), sides(Rect_s32{3, 2, 4, 5}));
}

TEST(RectIntersection, OfTouchingOnesIsAllZero) {
  EXPECT_EQ(sides(intersection({1, 1, 4, 4}, {4, 1, 9, 4})), sides(Rect_s32{0, 0, 0, 0}));
}

TEST(RectIntersection, OfAnEmptyOneInsideAnotherIsThatEmptyOne) {
  // A column without width passes the four strict comparisons where it lies inside the other.
  EXPECT_EQ(sides(intersection({0, 0, 9, 9}, {2, 1, 2, 3})), sides(Rect_s32{2, 1, 2, 3}));
}

TEST(RectIntersection, OfAnySidesFollowsTheFourComparisons) {
  lab::Random random(26);
  for (int round = 0; round < 4000; round++) {
    const Rect_s32 a = anyRect<Rect_s32>(random), b = anyRect<Rect_s32>(random);
    Rect_s32 wanted = {0, 0, 0, 0};
    if (a.x1 > b.x0 && a.x0 < b.x1 && a.y1 > b.y0 && a.y0 < b.y1) {
      wanted = {std::max(a.x0, b.x0), std::max(a.y0, b.y0), std::min(a.x1, b.x1), std::min(a.y1, b.y1)};
    }
    ASSERT_EQ(sides(intersection(a, b)), sides(wanted));
  }
}

TEST(RectGrow, MovesEverySideOutwards) {
  Rect_s32 r = {10, 20, 30, 40};
  IP_Geom_RectGrow_s32(&r, 1, 2);
  EXPECT_EQ(sides(r), sides(Rect_s32{9, 18, 31, 42}));
}

TEST(RectGrow, ByANegativeAmountShrinksEvenPastItself) {
  Rect_s32 r = {10, 20, 30, 40};
  IP_Geom_RectGrow_s32(&r, -15, -1);
  EXPECT_EQ(sides(r), sides(Rect_s32{25, 21, 15, 39}));
}

TEST(RectGrow, WrapsAround) {
  Rect_s32 r = {INT32_MIN, 0, INT32_MAX, 0};
  IP_Geom_RectGrow_s32(&r, 1, INT32_MIN);
  EXPECT_EQ(sides(r), sides(Rect_s32{INT32_MAX, INT32_MIN, INT32_MIN, INT32_MIN}));
}

}  // namespace
}  // namespace nadir::test
