// Polygons and polylines.
#include <gtest/gtest.h>
#include <nadir/geometry.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "tests/models/geometry.hpp"
#include "tests/support/floats.hpp"
#include "tests/support/polygons.hpp"

namespace nadir::test {
namespace {

using Shape = std::vector<Point_s32>;
using ShapeF = std::vector<Point_f32>;

const Shape squareOfTen = {{0, 0}, {10, 0}, {10, 10}, {0, 10}};
const Shape bowTie = {{0, 0}, {10, 10}, {10, 0}, {0, 10}};

Shape reversed(Shape s) {
  std::reverse(s.begin(), s.end());
  return s;
}

ShapeF toFloat(const Shape& s) {
  ShapeF out;
  for (Point_s32 p : s) out.push_back({static_cast<float>(p.x), static_cast<float>(p.y)});
  return out;
}

Shape anyShape(lab::Random& random, uint32_t maxCount, int32_t range) {
  Shape s(random.below(maxCount + 1));
  for (Point_s32& p : s) p = {random.between(-range, range), random.between(-range, range)};
  return s;
}

Shape extremeShape(lab::Random& random, uint32_t maxCount) {
  Shape s(random.below(maxCount + 1));
  for (Point_s32& p : s) p = {anyInteger(random), anyInteger(random)};
  return s;
}

// The points lie on quarters, some of them a little off.
ShapeF anyShapeF(lab::Random& random, uint32_t maxCount) {
  ShapeF s(random.below(maxCount + 1));
  for (Point_f32& p : s) {
    p = {static_cast<float>(random.between(-4, 4)) / 4, static_cast<float>(random.between(-4, 4)) / 4};
    if (random.below(4) == 0) p.x += anyWithin(random, 0.03f);
  }
  return s;
}

template <class Point>
std::string text(const std::vector<Point>& shape) {
  std::ostringstream out;
  for (Point p : shape) out << "(" << p.x << "," << p.y << ") ";
  return out.str();
}

// Corners in order around the origin: no two edges can meet.
Shape starShape(lab::Random& random, size_t count) {
  Shape s;
  for (size_t k = 0; k < count; k++) {
    const double angle = 6.283185307179586 * static_cast<double>(k) / static_cast<double>(count);
    const double radius = 500 + random.below(500);
    s.push_back({static_cast<int32_t>(radius * std::cos(angle)), static_cast<int32_t>(radius * std::sin(angle))});
  }
  return s;
}

// ---- simplicity ----

int32_t isSimple(const Shape& s) { return IP_Polygon_IsSimple(PolygonS(s).get()); }
int32_t isSimple(const ShapeF& s) { return IP_Polygon_IsSimple_f32(PolygonF(s).get()); }

TEST(PolygonSimple, HoldsForASquare) { EXPECT_EQ(isSimple(squareOfTen), 1); }

TEST(PolygonSimple, FailsForABowTie) { EXPECT_EQ(isSimple(bowTie), 0); }

TEST(PolygonSimple, HoldsBelowFourVerticesHoweverDegenerate) {
  EXPECT_EQ(isSimple(Shape{}), 1);
  EXPECT_EQ(isSimple(Shape{{1, 1}}), 1);
  EXPECT_EQ(isSimple(Shape{{1, 1}, {1, 1}}), 1);
  EXPECT_EQ(isSimple(Shape{{0, 0}, {9, 9}, {4, 4}}), 1);
}

TEST(PolygonSimple, FailsWhereAVertexDoublesBackAlongASlantedEdge) {
  EXPECT_EQ(isSimple(Shape{{0, 0}, {8, 8}, {4, 4}, {0, 9}}), 0);
}

TEST(PolygonSimple, HoldsWhereAVertexDoublesBackAlongAHorizontalEdge) {
  EXPECT_EQ(isSimple(Shape{{0, 0}, {8, 0}, {4, 0}, {4, 9}}), 1);
}

TEST(PolygonSimple, TestsTheClosingEdge) {
  EXPECT_EQ(isSimple(Shape{{0, 0}, {4, 0}, {4, 6}, {8, 3}, {8, 7}}), 0);
  EXPECT_EQ(isSimple(Shape{{0, 0}, {4, 0}, {4, 2}, {8, 3}, {8, 7}}), 1);
}

TEST(PolygonSimple, HoldsForStars) {
  lab::Random random(30);
  for (size_t count = 4; count < 20; count++) EXPECT_EQ(isSimple(starShape(random, count)), 1) << count;
}

TEST(PolygonSimple, FailsForAStarWithTwoDistantCornersExchanged) {
  lab::Random random(31);
  for (size_t count = 8; count < 20; count++) {
    Shape s = starShape(random, count);
    std::swap(s[1], s[1 + count / 2]);
    EXPECT_EQ(isSimple(s), 0) << count;
  }
}

TEST(PolygonSimple, ReadsNothingBehindTheLastVertex) {
  GuardedPolygonS guarded(squareOfTen);
  EXPECT_EQ(IP_Polygon_IsSimple(guarded.get()), 1);
}

TEST(PolygonSimple, ComparesEveryPairOfEdges) {
  lab::Random random(32);
  int simple = 0, crossed = 0;
  for (int round = 0; round < 3000; round++) {
    const Shape s = round % 3 ? anyShape(random, 8, 4) : extremeShape(random, 8);
    ASSERT_EQ(isSimple(s), model::isSimple(s)) << text(s);
    if (s.size() > 3) (isSimple(s) ? simple : crossed)++;
  }
  EXPECT_GT(simple, 100);
  EXPECT_GT(crossed, 100);
}

TEST(PolygonSimpleF32, HoldsForASquareAndFailsForABowTie) {
  EXPECT_EQ(isSimple(toFloat(squareOfTen)), 1);
  EXPECT_EQ(isSimple(toFloat(bowTie)), 0);
}

TEST(PolygonSimpleF32, HoldsBelowFourVertices) {
  EXPECT_EQ(isSimple(ShapeF{}), 1);
  EXPECT_EQ(isSimple(ShapeF{{0, 0}, {9, 9}, {4, 4}}), 1);
}

TEST(PolygonSimpleF32, ComparesEveryPairOfEdges) {
  lab::Random random(33);
  for (int round = 0; round < 1500; round++) {
    const ShapeF s = anyShapeF(random, 8);
    ASSERT_EQ(isSimple(s), model::isSimple(s)) << text(s);
  }
}

// ---- point in polygon ----

int32_t contour(const Shape& s, Point_s32 p, uint32_t onBoundary) {
  return IP_Polygon_IsInsideContour(PolygonS(s).get(), &p, onBoundary);
}
int32_t inside(const Shape& s, Point_s32 p) { return IP_Polygon_IsInside(PolygonS(s).get(), &p); }
int32_t inside(const ShapeF& s, Point_f32 p) { return IP_Polygon_IsInside_f32(PolygonF(s).get(), &p); }

TEST(PolygonInside, CountsTheBoundaryIn) {
  EXPECT_EQ(inside(squareOfTen, {10, 5}), 1);
  EXPECT_EQ(inside(squareOfTen, {0, 0}), 1);
}

TEST(PolygonInside, IsTheSameForEitherVertexOrder) {
  for (const Shape& s : {squareOfTen, reversed(squareOfTen)}) {
    EXPECT_EQ(contour(s, {5, 5}, 0), 1);
    EXPECT_EQ(contour(s, {11, 5}, 0), 0);
    EXPECT_EQ(contour(s, {-1, 5}, 0), 0);
    EXPECT_EQ(contour(s, {5, -1}, 0), 0);
    EXPECT_EQ(contour(s, {5, 11}, 0), 0);
    EXPECT_EQ(contour(s, {10, 5}, 0), 0);
    EXPECT_EQ(inside(s, {10, 5}), 1);
  }
}

TEST(PolygonInside, GivesWhateverTheCallerWantsOnTheBoundary) {
  for (Point_s32 p : {Point_s32{10, 5}, {5, 0}, {0, 5}, {5, 10}, {10, 10}}) {
    EXPECT_EQ(contour(squareOfTen, p, 7), 7) << p.x << "," << p.y;
    EXPECT_EQ(contour(squareOfTen, p, 0xFFFFFFFFu), -1) << p.x << "," << p.y;
  }
  EXPECT_EQ(contour(squareOfTen, {5, 5}, 7), 1);
  EXPECT_EQ(contour(squareOfTen, {11, 5}, 7), 0);
}

TEST(PolygonInside, DoesNotTakeAnEdgesExtensionForTheBoundary) { EXPECT_EQ(contour(squareOfTen, {15, 10}, 7), 0); }

TEST(PolygonInside, OfNoVerticesIsNothing) {
  GuardedPolygonS none(Shape{});
  const Point_s32 p = {0, 0};
  EXPECT_EQ(IP_Polygon_IsInsideContour(none.get(), &p, 1), 0);
  EXPECT_EQ(IP_Polygon_IsInside(none.get(), &p), 0);
}

TEST(PolygonInside, OfOneVertexIsThatPoint) {
  EXPECT_EQ(inside(Shape{{3, 4}}, {3, 4}), 1);
  EXPECT_EQ(inside(Shape{{3, 4}}, {3, 5}), 0);
  EXPECT_EQ(inside(Shape{{3, 4}}, {2, 4}), 0);
}

TEST(PolygonInside, OfTwoVerticesIsTheSegment) {
  const Shape segment = {{0, 0}, {4, 2}};
  EXPECT_EQ(inside(segment, {2, 1}), 1);
  EXPECT_EQ(inside(segment, {6, 3}), 0);
  EXPECT_EQ(inside(segment, {2, 2}), 0);
}

TEST(PolygonInside, HoldsWhereThePolygonWindsTwice) {
  // A square run round twice in the same direction, and once in each of two overlapping places.
  const Shape twice = {{0, 0}, {8, 0}, {8, 8}, {0, 8}, {0, 0}, {8, 0}, {8, 8}, {0, 8}};
  EXPECT_EQ(inside(twice, {4, 4}), 1);
  const Shape overlap = {{0, 0}, {8, 0}, {8, 8}, {4, 8}, {4, 2}, {12, 2}, {12, 6}, {0, 6}};
  EXPECT_EQ(contour(overlap, {6, 4}, 0), 1);
}

TEST(PolygonInside, FailsWhereTheWindingsCancel) {
  const Shape backAndForth = {{0, 0}, {8, 0}, {8, 8}, {0, 8}, {0, 0}, {0, 8}, {8, 8}, {8, 0}};
  EXPECT_EQ(inside(backAndForth, {4, 4}), 0);
}

TEST(PolygonInside, ReadsNothingBehindTheLastVertex) {
  GuardedPolygonS guarded(squareOfTen);
  const Point_s32 p = {5, 5};
  EXPECT_EQ(IP_Polygon_IsInside(guarded.get(), &p), 1);
}

// Exact, in 64 bits, and by another road: on a segment by the dot product, windings by a ray along +y.
int32_t windingAlongY(const Shape& s, Point_s32 p) {
  int32_t winding = 0;
  for (size_t k = 0; k < s.size(); k++) {
    const int64_t ax = int64_t{s[k].x} - p.x, ay = int64_t{s[k].y} - p.y;
    const int64_t bx = int64_t{s[(k + 1) % s.size()].x} - p.x, by = int64_t{s[(k + 1) % s.size()].y} - p.y;
    const int64_t cross = ax * by - ay * bx;
    if (cross == 0 && ax * bx + ay * by <= 0) return 1;
    const bool crosses = (ax <= 0) != (bx <= 0);
    // Where the edge meets the axis x = 0: y is cross / (bx - ax), up to its sign above the point.
    if (crosses && (ax <= 0 ? -cross : cross) > 0) winding += ax <= 0 ? 1 : -1;
  }
  return winding != 0;
}

TEST(PolygonInside, AgreesWithAnotherRayForEverySmallPolygon) {
  for (uint32_t count = 0; count <= 3; count++) {
    uint32_t shapes = 1;
    for (uint32_t i = 0; i < count; i++) shapes *= 9;
    for (uint32_t code = 0; code < shapes; code++) {
      Shape s(count);
      uint32_t rest = code;
      for (Point_s32& v : s) {
        v = {static_cast<int32_t>(rest % 3), static_cast<int32_t>(rest / 3 % 3)};
        rest /= 9;
      }
      PolygonS polygon(s);
      for (int32_t y = -1; y <= 3; y++) {
        for (int32_t x = -1; x <= 3; x++) {
          const Point_s32 p = {x, y};
          ASSERT_EQ(windingAlongY(s, p), IP_Polygon_IsInside(polygon.get(), &p)) << text(s) << "at " << x << "," << y;
        }
      }
    }
  }
}

TEST(PolygonInside, AgreesWithAnotherRayForSelfCrossingPolygons) {
  lab::Random random(34);
  int hits = 0;
  for (int round = 0; round < 500; round++) {
    const Shape s = anyShape(random, 12, round % 2 ? 4 : 10000);
    PolygonS polygon(s);
    for (int i = 0; i < 20; i++) {
      const int32_t range = round % 2 ? 5 : 11000;
      const Point_s32 p = {random.between(-range, range), random.between(-range, range)};
      ASSERT_EQ(windingAlongY(s, p), IP_Polygon_IsInside(polygon.get(), &p)) << text(s) << "at " << p.x << "," << p.y;
      hits += windingAlongY(s, p);
    }
  }
  EXPECT_GT(hits, 1000);
}

TEST(PolygonInside, OfAnyIntegersFollowsTheWrappedOrientations) {
  lab::Random random(35);
  for (int round = 0; round < 2000; round++) {
    const Shape s = extremeShape(random, 8);
    const Point_s32 p = {anyInteger(random), anyInteger(random)};
    const uint32_t onBoundary = random.below(3);
    ASSERT_EQ(contour(s, p, onBoundary), model::isInsideContour(s, p, onBoundary))
        << text(s) << "at " << p.x << "," << p.y;
  }
}

TEST(PolygonInsideF32, CountsTheBoundaryIn) {
  for (const Shape& s : {squareOfTen, reversed(squareOfTen)}) {
    EXPECT_EQ(inside(toFloat(s), {10, 5}), 1);
    EXPECT_EQ(inside(toFloat(s), {5, 5}), 1);
    EXPECT_EQ(inside(toFloat(s), {11, 5}), 0);
  }
}

TEST(PolygonInsideF32, WidensTheBoundaryByLessThanTheTolerance) {
  const ShapeF square = toFloat(squareOfTen);
  EXPECT_EQ(inside(square, {5, -0.0005f}), 1);
  EXPECT_EQ(inside(square, {-0.009f, 0}), 1);
  EXPECT_EQ(inside(square, {-0.01f, 0}), 0);
  EXPECT_EQ(inside(square, {-0.011f, 0}), 0);
  EXPECT_EQ(inside(square, {10.009f, 0}), 1);
  EXPECT_EQ(inside(square, {10.011f, 0}), 0);
}

TEST(PolygonInsideF32, OfNoVerticesIsNothing) { EXPECT_EQ(inside(ShapeF{}, {0, 0}), 0); }

TEST(PolygonInsideF32, OfOneVertexIsThatPointWithinTheTolerance) {
  EXPECT_EQ(inside(ShapeF{{3, 4}}, {3.005f, 3.995f}), 1);
  EXPECT_EQ(inside(ShapeF{{3, 4}}, {3.02f, 4}), 0);
}

TEST(PolygonInsideF32, ReadsNothingBehindTheLastVertex) {
  GuardedPolygonF guarded(toFloat(squareOfTen));
  const Point_f32 p = {5, 5};
  EXPECT_EQ(IP_Polygon_IsInside_f32(guarded.get(), &p), 1);
}

TEST(PolygonInsideF32, OfAnyPolygonFollowsTheTolerantOrientations) {
  lab::Random random(36);
  int hits = 0;
  for (int round = 0; round < 3000; round++) {
    const ShapeF s = anyShapeF(random, 8);
    const ShapeF points = anyShapeF(random, 6);
    for (Point_f32 p : points) {
      ASSERT_EQ(inside(s, p), model::isInsideContour(s, p, 1)) << text(s) << "at " << p.x << "," << p.y;
      hits += inside(s, p);
    }
  }
  EXPECT_GT(hits, 500);
}

// ---- removal of vertices ----

using Slots = std::vector<std::pair<uint32_t, uint32_t>>;

Slots slotsOf(const Shape& s) { return PolygonS(s).slots(); }

TEST(PolygonErase, MovesTheLaterVerticesDownAndLeavesTheFreedSlot) {
  GuardedPolygonS p(Shape{{1, -1}, {2, -2}, {3, -3}, {4, -4}});
  IP_Polygon_Erase(p.get(), 1);
  EXPECT_EQ(p.count(), 3u);
  EXPECT_EQ(p.slots(), slotsOf({{1, -1}, {3, -3}, {4, -4}, {4, -4}}));
}

TEST(PolygonErase, OfTheFirstVertexMovesAllOthers) {
  GuardedPolygonS p(Shape{{1, -1}, {2, -2}, {3, -3}});
  IP_Polygon_Erase(p.get(), 0);
  EXPECT_EQ(p.count(), 2u);
  EXPECT_EQ(p.slots(), slotsOf({{2, -2}, {3, -3}, {3, -3}}));
}

TEST(PolygonErase, OfTheLastVertexMovesNone) {
  GuardedPolygonS p(Shape{{1, -1}, {2, -2}, {3, -3}});
  IP_Polygon_Erase(p.get(), 2);
  EXPECT_EQ(p.count(), 2u);
  EXPECT_EQ(p.slots(), slotsOf({{1, -1}, {2, -2}, {3, -3}}));
}

TEST(PolygonErase, OfTheOnlyVertexLeavesNone) {
  GuardedPolygonS p(Shape{{1, -1}});
  IP_Polygon_Erase(p.get(), 0);
  EXPECT_EQ(p.count(), 0u);
}

TEST(PolygonErase, OfAnIndexThatIsNoVertexChangesNothing) {
  for (uint32_t index : {3u, 4u, 0x80000000u, 0xFFFFFFFFu}) {
    GuardedPolygonS p(Shape{{1, -1}, {2, -2}, {3, -3}});
    IP_Polygon_Erase(p.get(), index);
    EXPECT_EQ(p.count(), 3u) << index;
    EXPECT_EQ(p.slots(), slotsOf({{1, -1}, {2, -2}, {3, -3}})) << index;
  }
}

TEST(PolygonErase, OfAnEmptyPolygonChangesNothing) {
  GuardedPolygonS p(Shape{});
  IP_Polygon_Erase(p.get(), 0);
  EXPECT_EQ(p.count(), 0u);
}

TEST(PolygonErase, StaysWithinTheVerticesInUse) {
  // Two vertices in use of four stored: the others are not moved.
  PolygonS p(Shape{{1, -1}, {2, -2}, {3, -3}, {4, -4}}, 2);
  IP_Polygon_Erase(p.get(), 0);
  EXPECT_EQ(p.count(), 1u);
  EXPECT_EQ(p.slots(), slotsOf({{2, -2}, {2, -2}, {3, -3}, {4, -4}}));
}

TEST(PolygonEraseF32, MovesBitsNotNumbers) {
  // A signalling NaN and a negative zero come through as they are.
  std::vector<Point_s32> bits = {{1, 1}, {2, 2}, {0x7F812345, INT32_MIN}};
  StoredPolygon<Point_s32, Guarded<uint32_t>> p(bits);
  IP_Polygon_Erase_f32(reinterpret_cast<Polygon_f32*>(p.get()), 0);
  EXPECT_EQ(p.count(), 2u);
  EXPECT_EQ(p.slots(), slotsOf({{2, 2}, {0x7F812345, INT32_MIN}, {0x7F812345, INT32_MIN}}));
}

TEST(PolygonEraseF32, OfAnIndexThatIsNoVertexChangesNothing) {
  GuardedPolygonF p(ShapeF{{1, -1}, {2, -2}});
  IP_Polygon_Erase_f32(p.get(), 2);
  EXPECT_EQ(p.count(), 2u);
  EXPECT_EQ(p.slots(), PolygonF(ShapeF{{1, -1}, {2, -2}}).slots());
}

template <class Point>
Slots remaining(const std::vector<Point>& s, void (*remove)(typename PolygonOf<Point>::Type*)) {
  StoredPolygon<Point, std::vector<uint32_t>> p(s);
  remove(p.get());
  Slots slots = p.slots();
  slots.resize(p.count());
  return slots;
}

Slots thinned(const Shape& s) { return remaining(s, IP_Polygon_RemoveCollinearPoints); }
Slots thinned(const ShapeF& s) { return remaining(s, IP_Polygon_RemoveCollinearPoints_f32); }

TEST(RemoveCollinear, DropsAVertexInsideAStraightSide) {
  EXPECT_EQ(thinned(Shape{{0, 0}, {5, 0}, {10, 0}, {10, 10}, {0, 10}}), slotsOf(squareOfTen));
}

TEST(RemoveCollinear, KeepsASquare) { EXPECT_EQ(thinned(squareOfTen), slotsOf(squareOfTen)); }

TEST(RemoveCollinear, DropsTheFirstVertexWhereTheWalkWraps) {
  EXPECT_EQ(thinned(Shape{{5, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}}), slotsOf({{10, 0}, {10, 10}, {0, 10}, {0, 0}}));
}

TEST(RemoveCollinear, DropsARepeatedVertex) {
  EXPECT_EQ(thinned(Shape{{0, 0}, {10, 0}, {10, 0}, {10, 0}, {10, 10}, {0, 10}}), slotsOf(squareOfTen));
}

TEST(RemoveCollinear, DropsASpikeThatDoublesBack) {
  EXPECT_EQ(thinned(Shape{{0, 0}, {20, 0}, {10, 0}, {10, 10}, {0, 10}}), slotsOf(squareOfTen));
}

TEST(RemoveCollinear, LeavesNothingOfALine) {
  EXPECT_EQ(thinned(Shape{{0, 0}, {1, 1}, {2, 2}}), Slots());
  EXPECT_EQ(thinned(Shape{{0, 0}, {4, 2}, {2, 1}, {-6, -3}, {0, 0}}), Slots());
}

TEST(RemoveCollinear, LeavesNothingBelowThreeVertices) {
  EXPECT_EQ(thinned(Shape{}), Slots());
  EXPECT_EQ(thinned(Shape{{3, 4}}), Slots());
  EXPECT_EQ(thinned(Shape{{3, 4}, {5, 9}}), Slots());
}

TEST(RemoveCollinear, StaysWithinThePolygon) {
  GuardedPolygonS p(Shape{{5, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}});
  IP_Polygon_RemoveCollinearPoints(p.get());
  EXPECT_EQ(p.count(), 4u);
}

TEST(RemoveCollinear, OfAnyIntegersFollowsTheWalk) {
  lab::Random random(37);
  for (int round = 0; round < 3000; round++) {
    const Shape s = round % 3 ? anyShape(random, 8, 2) : extremeShape(random, 8);
    ASSERT_EQ(thinned(s), slotsOf(model::withoutCollinearPoints(s))) << text(s);
  }
}

TEST(RemoveCollinearF32, DropsAVertexWithinTheToleranceOfASide) {
  EXPECT_EQ(thinned(ShapeF{{0, 0}, {5, 0.005f}, {10, 0}, {10, 10}, {0, 10}}), PolygonF(toFloat(squareOfTen)).slots());
}

TEST(RemoveCollinearF32, KeepsAVertexBeyondTheTolerance) {
  const ShapeF bent = {{0, 0}, {5, 0.02f}, {10, 0}, {10, 10}, {0, 10}};
  EXPECT_EQ(thinned(bent), PolygonF(bent).slots());
}

TEST(RemoveCollinearF32, LeavesNothingOfALineOrOfFewerThanThreeVertices) {
  EXPECT_EQ(thinned(ShapeF{{0, 0}, {1, 1}, {2, 2}}), Slots());
  EXPECT_EQ(thinned(ShapeF{{3, 4}, {5, 9}}), Slots());
  EXPECT_EQ(thinned(ShapeF{{3, 4}}), Slots());
  EXPECT_EQ(thinned(ShapeF{}), Slots());
}

TEST(RemoveCollinearF32, OfAnyPolygonFollowsTheWalk) {
  lab::Random random(38);
  for (int round = 0; round < 2000; round++) {
    const ShapeF s = anyShapeF(random, 8);
    ASSERT_EQ(thinned(s), PolygonF(model::withoutCollinearPoints(s)).slots()) << text(s);
  }
}

// ---- side of a polyline ----

int32_t side(const Shape& s, Point_s32 p) { return IP_Polyline_Orientation(PolygonS(s).get(), &p); }
int32_t side(const ShapeF& s, Point_f32 p) { return IP_Polyline_Orientation_f32(PolygonF(s).get(), &p); }

TEST(PolylineSide, HasTheSignOfTheOrientation) {
  EXPECT_EQ(side(Shape{{0, 0}, {10, 0}}, {5, 3}), -1);
  EXPECT_EQ(side(Shape{{0, 0}, {10, 0}}, {5, -3}), 1);
  EXPECT_EQ(side(Shape{{0, 0}, {10, 0}}, {25, 0}), 0);
}

TEST(PolylineSide, IsUndefinedBelowTwoVertices) {
  EXPECT_EQ(side(Shape{}, {5, 3}), -2);
  EXPECT_EQ(side(Shape{{0, 0}}, {5, 3}), -2);
}

TEST(PolylineSide, IsUndefinedForNullPointers) {
  PolygonS line(Shape{{0, 0}, {10, 0}});
  const Point_s32 p = {5, 3};
  EXPECT_EQ(IP_Polyline_Orientation(nullptr, &p), -2);
  EXPECT_EQ(IP_Polyline_Orientation(line.get(), nullptr), -2);
}

TEST(PolylineSide, HasNoClosingSegment) {
  // The point lies on the line from the last vertex back to the first, which is no segment.
  EXPECT_EQ(side(Shape{{0, 0}, {10, 0}, {10, 10}}, {3, 3}), -1);
}

TEST(PolylineSide, OfEquallyNearSegmentsTakesTheFirst) {
  // The point lies at distance 3 from both lines, to the right of the first and to the left of the second.
  EXPECT_EQ(side(Shape{{0, 0}, {10, 0}, {10, 10}}, {7, 3}), -1);
  EXPECT_EQ(side(Shape{{10, 10}, {10, 0}, {0, 0}}, {7, 3}), 1);
  EXPECT_EQ(side(Shape{{0, 0}, {10, 0}, {10, -10}}, {7, -3}), 1);
  EXPECT_EQ(side(Shape{{0, 0}, {10, 0}, {10, 10}}, {13, 3}), -1);
  EXPECT_EQ(side(Shape{{10, 10}, {10, 0}, {0, 0}}, {7, 3}), 1);
}

TEST(PolylineSide, GoesByALineThatPassesNearEvenIfItsSegmentIsFar) {
  // The second segment's line runs through y = 20, 1 above the point; the segment itself is 80 away.
  EXPECT_EQ(side(Shape{{0, 10}, {20, 10}, {100, 20}, {120, 20}}, {0, 19}), 1);
}

TEST(PolylineSide, OfASegmentWithoutLengthIsZero) { EXPECT_EQ(side(Shape{{0, 0}, {10, 0}, {10, 0}}, {5, 3}), 0); }

TEST(PolylineSide, ReadsNothingBehindTheLastVertex) {
  GuardedPolygonS guarded(Shape{{0, 0}, {10, 0}});
  const Point_s32 p = {5, 3};
  EXPECT_EQ(IP_Polyline_Orientation(guarded.get(), &p), -1);
}

TEST(PolylineSide, OfAnyIntegersFollowsTheWrappedDistances) {
  lab::Random random(39);
  for (int round = 0; round < 3000; round++) {
    const Shape s = round % 2 ? anyShape(random, 6, 10) : extremeShape(random, 6);
    const Point_s32 p = round % 2 ? Point_s32{random.between(-12, 12), random.between(-12, 12)}
                                  : Point_s32{anyInteger(random), anyInteger(random)};
    ASSERT_EQ(side(s, p), model::polylineOrientation(s, p)) << text(s) << "at " << p.x << "," << p.y;
  }
}

TEST(PolylineSideF32, HasTheSignOfTheOrientation) {
  EXPECT_EQ(side(ShapeF{{0, 0}, {10, 0}}, {5, 3}), -1);
  EXPECT_EQ(side(ShapeF{{0, 0}, {10, 0}}, {5, -3}), 1);
  EXPECT_EQ(side(ShapeF{{0, 0}, {10, 0}}, {25, 0.005f}), 0);
}

TEST(PolylineSideF32, IsUndefinedForNullPointersAndBelowTwoVertices) {
  PolygonF line(ShapeF{{0, 0}, {10, 0}});
  const Point_f32 p = {5, 3};
  EXPECT_EQ(IP_Polyline_Orientation_f32(nullptr, &p), -2);
  EXPECT_EQ(IP_Polyline_Orientation_f32(line.get(), nullptr), -2);
  EXPECT_EQ(side(ShapeF{}, {5, 3}), -2);
  EXPECT_EQ(side(ShapeF{{0, 0}}, {5, 3}), -2);
}

TEST(PolylineSideF32, IsUndefinedWhereEveryDistanceOverflows) {
  EXPECT_EQ(side(ShapeF{{0, 0}, {1, 0}}, {0, 1e30f}), -2);
  EXPECT_EQ(side(ShapeF{{0, 0}, {1, 0}}, {0, std::numeric_limits<float>::quiet_NaN()}), -2);
}

TEST(PolylineSideF32, OfAnyPolylineFollowsTheLineDistances) {
  lab::Random random(40);
  for (int round = 0; round < 3000; round++) {
    const ShapeF s = anyShapeF(random, 6);
    const Point_f32 p = {anyWithin(random, 2), anyWithin(random, 2)};
    ASSERT_EQ(side(s, p), model::polylineOrientation(s, p)) << text(s) << "at " << p.x << "," << p.y;
  }
}

// ---- distance from the outline ----

float distance(const ShapeF& s, Point_f32 p) { return IP_Polygon_SquaredDist(PolygonF(s).get(), &p); }

TEST(PolygonDistance, FromOutsideGoesToTheNearestCorner) { EXPECT_EQ(distance(toFloat(squareOfTen), {12, 15}), 29.0f); }

TEST(PolygonDistance, FromInsideGoesToTheNearestSide) {
  EXPECT_EQ(distance(toFloat(squareOfTen), {5, 5}), 25.0f);
  EXPECT_EQ(distance(toFloat(squareOfTen), {8, 5}), 4.0f);
}

TEST(PolygonDistance, OnTheOutlineIsZero) { EXPECT_EQ(distance(toFloat(squareOfTen), {10, 5}), 0.0f); }

TEST(PolygonDistance, CountsTheClosingEdge) {
  EXPECT_EQ(distance({{0, 0}, {100, 0}, {100, 100}, {0, 100}}, {1, 50}), 1.0f);
}

TEST(PolygonDistance, OfNoVerticesIsTheLargestFloat) { EXPECT_EQ(distance(ShapeF{}, {0, 0}), 3.4028235e38f); }

TEST(PolygonDistance, OfOneVertexIsToThatVertex) { EXPECT_EQ(distance({{3, 4}}, {0, 0}), 25.0f); }

TEST(PolygonDistance, OfAnEdgeShorterThanATenthGoesToItsNearerEnd) {
  // Between the ends the foot would be 1 away; the ends are a little farther.
  const float atEnd = 0.04f * 0.04f + 1.0f;
  EXPECT_EQ(distance({{-0.05f, 0}, {0.04f, 0}}, {0, 1}), atEnd);
  EXPECT_EQ(distance({{0.04f, 0}, {-0.05f, 0}}, {0, 1}), atEnd);
}

TEST(PolygonDistance, OfAnEdgeOfATenthAndMoreUsesTheFoot) {
  EXPECT_EQ(distance({{-0.06f, 0}, {0.06f, 0}}, {0, 1}), 1.0f);
}

TEST(PolygonDistance, LeavesOutEdgesWhoseFootIsNoNumber) {
  // The squared length of the long edges overflows.
  EXPECT_EQ(distance({{-1e25f, 0}, {1e25f, 0}}, {0, 1}), 3.4028235e38f);
}

TEST(PolygonDistance, ReadsNothingBehindTheLastVertex) {
  GuardedPolygonF guarded(toFloat(squareOfTen));
  const Point_f32 p = {5, 5};
  EXPECT_EQ(IP_Polygon_SquaredDist(guarded.get(), &p), 25.0f);
}

TEST(PolygonDistance, HasTheBitsOfTheDocumentedSteps) {
  lab::Random random(41);
  for (int round = 0; round < 2000; round++) {
    ShapeF s = anyShapeF(random, 6);
    const float scale = round % 2 ? 1.0f : 57.0f;
    for (Point_f32& v : s) v = {v.x * scale, v.y * scale};
    const Point_f32 p = {anyWithin(random, 3 * scale), anyWithin(random, 3 * scale)};
    ASSERT_EQ((Floats{model::polygonDistance(s, p)}), (Floats{distance(s, p)}))
        << text(s) << "at " << p.x << "," << p.y;
  }
}

// The model clamps the foot's parameter, in double precision.
double exactDistance(const Shape& s, double px, double py) {
  double best = std::numeric_limits<double>::infinity();
  for (size_t k = 0; k < s.size(); k++) {
    const Point_s32 a = s[k], b = s[(k + 1) % s.size()];
    const double dx = b.x - a.x, dy = b.y - a.y, length = dx * dx + dy * dy;
    double t = length > 0 ? ((px - a.x) * dx + (py - a.y) * dy) / length : 0;
    t = std::min(1.0, std::max(0.0, t));
    const double ex = a.x + t * dx - px, ey = a.y + t * dy - py;
    best = std::min(best, ex * ex + ey * ey);
  }
  return best;
}

TEST(PolygonDistance, IsNearTheExactOne) {
  lab::Random random(42);
  for (int round = 0; round < 1000; round++) {
    Shape s = anyShape(random, 6, 40);
    s.push_back({random.between(-40, 40), random.between(-40, 40)});
    const Point_f32 p = {anyWithin(random, 60), anyWithin(random, 60)};
    const double exact = exactDistance(s, p.x, p.y);
    ASSERT_NEAR(exact, distance(toFloat(s), p), 1e-3 + 1e-4 * exact) << text(s) << "at " << p.x << "," << p.y;
  }
}

}  // namespace
}  // namespace nadir::test
