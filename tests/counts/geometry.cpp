// Calls of geometry.h.
#include <nadir/geometry.h>

#include <vector>

#include "lab/random.hpp"
#include "tests/counts/calls.hpp"
#include "tests/support/polygons.hpp"

namespace nadir::test::counts {
namespace {

// The range is small, so that equal, collinear and touching things are among them.
Point_s32 point(lab::Random& random) { return {random.between(-20, 20), random.between(-20, 20)}; }
Point_f32 pointF(lab::Random& random) {
  const Point_s32 p = point(random);
  return {static_cast<float>(p.x) / 4.0f, static_cast<float>(p.y) / 4.0f};
}

void callPoints(lab::Random& random) {
  const Point_s32 a = point(random), b = point(random), c = point(random), triangle[3] = {a, b, c}, at = point(random);
  const Point_f32 d = pointF(random), e = pointF(random), f = pointF(random);
  float weights[3];
  IP_Geom_Orientation(a.x, a.y, b.x, b.y, c.x, c.y);
  IP_Geom_Orientation_f32(&d, &e, &f);
  IP_Geom_ArePointsEqual_f32(&d, &e);
  IP_Geom_Barycentric(triangle, &at, weights);
}

void callEdges(lab::Random& random) {
  const Point_s32 a = point(random), b = point(random), c = point(random), d = point(random);
  const Point_f32 e = pointF(random), f = pointF(random), g = pointF(random), h = pointF(random);
  const Edge_s32 first{a.x, a.y, b.x, b.y}, second{c.x, c.y, d.x, d.y};
  const Edge_f32 firstF{e.x, e.y, f.x, f.y}, secondF{g.x, g.y, h.x, h.y};
  IP_Geom_EdgesIntersect(&first, &second);
  IP_Geom_EdgesIntersect_f32(&firstF, &secondF);
  IP_Geom_IsPointOnEdge_f32(&firstF, &g);
  IP_Geom_EdgePoint2_SquaredDistance_s32(&first, &c);
  IP_Geom_EdgePoint2_SquaredDistance_f32(&firstF, &g);
}

void callLines(lab::Random& random) {
  const Point_s32 a = point(random), b = point(random), c = point(random), d = point(random);
  const Point_f32 e = pointF(random), f = pointF(random), g = pointF(random), h = pointF(random);
  const Line_s32 first{a.x, a.y, b.x, b.y}, second{c.x, c.y, d.x, d.y};
  const Line_f32 firstF{e.x, e.y, f.x, f.y}, secondF{g.x, g.y, h.x, h.y};
  Point_s32 crossing;
  Point_f32 crossingF;
  IP_Geom_LinePoint2_SquaredDistance_s32(&first, &c);
  IP_Geom_LinePoint2_SquaredDistance_f32(&firstF, &g);
  IP_Geom_IntersectLines(&first, &second, &crossing);
  IP_Geom_IntersectLines_f32(&firstF, &secondF, &crossingF);
}

void callRectangles(lab::Random& random) {
  const Point_s32 a = point(random), b = point(random);
  const Rect_s32 r{a.x, a.y, a.x + 15, a.y + 12}, s{b.x, b.y, b.x + 9, b.y + 20};
  const Rect_u32 t{random.below(12), random.below(12), 15, 15}, u{random.below(12), random.below(12), 13, 19};
  Rect_s32 result = r;
  Rect_u32 resultU;
  IP_Geom_Intersects_s32(&r, &s);
  IP_Geom_Intersects_u32(&t, &u);
  IP_Geom_SetUnion_s32(&r, &s, &result);
  IP_Geom_SetUnion_u32(&t, &u, &resultU);
  IP_Geom_SetIntersection_s32(&r, &s, &result);
  IP_Geom_RectGrow_s32(&result, 3, -2);
}

// Convex and in order, but for the last two vertices, whose edges cross others.
template <class Point>
std::vector<Point> ring() {
  return {{40, 0},  {35, 15},   {20, 26},   {0, 30},  {-20, 26}, {-35, 15},
          {-40, 0}, {-35, -15}, {-20, -26}, {0, -30}, {20, -26}, {35, 20}};
}

void callPolygons(lab::Random& random) {
  PolygonS polygon(ring<Point_s32>());
  PolygonF polygonF(ring<Point_f32>());
  const Point_s32 p = point(random);
  const Point_f32 q = pointF(random);
  IP_Polygon_IsSimple(polygon.get());
  IP_Polygon_IsSimple_f32(polygonF.get());
  IP_Polygon_IsInsideContour(polygon.get(), &p, 2);
  IP_Polygon_IsInside(polygon.get(), &p);
  IP_Polygon_IsInside_f32(polygonF.get(), &q);
  IP_Polyline_Orientation(polygon.get(), &p);
  IP_Polyline_Orientation_f32(polygonF.get(), &q);
  IP_Polygon_SquaredDist(polygonF.get(), &q);
  IP_Polygon_Erase(polygon.get(), 5);
  IP_Polygon_Erase_f32(polygonF.get(), 5);
  IP_Polygon_RemoveCollinearPoints(polygon.get());
  IP_Polygon_RemoveCollinearPoints_f32(polygonF.get());
}

void callDigitalLine(lab::Random& random) {
  const Point_s32 from = point(random), to{from.x + 50, from.y + 23};
  IP_Utils_Bresenham(&from, &to, 0, [](int32_t, int32_t, int32_t) {});
}

}  // namespace

void callGeometry() {
  lab::Random random(1);
  for (int i = 0; i < 50; ++i) {
    callPoints(random);
    callEdges(random);
    callLines(random);
    callRectangles(random);
    callPolygons(random);
    callDigitalLine(random);
  }
}

}  // namespace nadir::test::counts
