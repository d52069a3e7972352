// Edges: where they cross, points on them, and distances to the lines through them.
#include <gtest/gtest.h>
#include <nadir/geometry.h>

#include "tests/models/geometry.hpp"
#include "tests/support/points.hpp"

namespace nadir::test {
namespace {

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

int32_t distance(Edge_s32 e, Point_s32 p) { return IP_Geom_EdgePoint2_SquaredDistance_s32(&e, &p); }
float distance(Edge_f32 e, Point_f32 p) { return IP_Geom_EdgePoint2_SquaredDistance_f32(&e, &p); }

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

}  // namespace
}  // namespace nadir::test
