// Results of the functions of points, lines, rectangles and polygons.
#include <nadir/nadir.h>

#include "lab/random.hpp"
#include "tests/golden/golden.hpp"

namespace nadir::test::golden {
namespace {

// Coordinates in a small range, so that equal, collinear and touching things are frequent.
int32_t coordinate(lab::Random& random) { return random.between(-20, 20); }
float fraction(lab::Random& random) { return static_cast<float>(random.between(-80, 80)) / 4.0f; }

Point_s32 point(lab::Random& random) { return {coordinate(random), coordinate(random)}; }
Point_f32 pointF(lab::Random& random) { return {fraction(random), fraction(random)}; }

Fingerprint& add(Fingerprint& hash, const Point_s32& p) { return hash.add(p.x).add(p.y); }
Fingerprint& add(Fingerprint& hash, const Point_f32& p) { return hash.add(p.x).add(p.y); }

constexpr int rounds = 2000;

Fingerprint points() {
  Fingerprint hash;
  lab::Random random(1);
  for (int i = 0; i < rounds; ++i) {
    const Point_s32 a = point(random), b = point(random), c = point(random);
    hash.add(IP_Geom_Orientation(a.x, a.y, b.x, b.y, c.x, c.y));
    const Point_f32 d = pointF(random), e = pointF(random), f = pointF(random);
    hash.add(IP_Geom_Orientation_f32(&d, &e, &f)).add(IP_Geom_ArePointsEqual_f32(&d, &e));
    float weights[3] = {0, 0, 0};
    const Point_s32 triangle[3] = {a, b, c}, at = point(random);
    hash.add(IP_Geom_Barycentric(triangle, &at, weights)).add(weights[0]).add(weights[1]).add(weights[2]);
  }
  return hash;
}

Fingerprint edges() {
  Fingerprint hash;
  lab::Random random(2);
  for (int i = 0; i < rounds; ++i) {
    const Point_s32 a = point(random), b = point(random), c = point(random), d = point(random);
    const Edge_s32 e{a.x, a.y, b.x, b.y}, f{c.x, c.y, d.x, d.y};
    hash.add(IP_Geom_EdgesIntersect(&e, &f)).add(IP_Geom_EdgePoint2_SquaredDistance_s32(&e, &c));
    const Point_f32 p = pointF(random), q = pointF(random), r = pointF(random), s = pointF(random);
    const Edge_f32 g{p.x, p.y, q.x, q.y}, h{r.x, r.y, s.x, s.y};
    hash.add(IP_Geom_EdgesIntersect_f32(&g, &h)).add(IP_Geom_EdgePoint2_SquaredDistance_f32(&g, &r));
    hash.add(IP_Geom_IsPointOnEdge_f32(&g, &s));
  }
  return hash;
}

Fingerprint lines() {
  Fingerprint hash;
  lab::Random random(3);
  for (int i = 0; i < rounds; ++i) {
    const int32_t reach = i % 2 ? 20 : 3000;
    const auto any = [&] { return random.between(-reach, reach); };
    const Line_s32 a{any(), any(), any(), any()}, b{any(), any(), any(), any()};
    const Point_s32 p = point(random);
    Point_s32 crossing{7, 7};
    hash.add(IP_Geom_IntersectLines(&a, &b, &crossing)).add(IP_Geom_LinePoint2_SquaredDistance_s32(&a, &p));
    const auto anyF = [&] { return fraction(random); };
    const Line_f32 c{anyF(), anyF(), anyF(), anyF()}, d{anyF(), anyF(), anyF(), anyF()};
    const Point_f32 q = pointF(random);
    Point_f32 crossingF{7, 7};
    hash.add(IP_Geom_IntersectLines_f32(&c, &d, &crossingF)).add(IP_Geom_LinePoint2_SquaredDistance_f32(&c, &q));
    add(add(hash, crossing), crossingF);
  }
  return hash;
}

template <class Rect>
Fingerprint& addRect(Fingerprint& hash, const Rect& r) {
  return hash.add(r.x0).add(r.y0).add(r.x1).add(r.y1);
}

Fingerprint rectangles() {
  Fingerprint hash;
  lab::Random random(4);
  for (int i = 0; i < rounds; ++i) {
    const auto any = [&] { return random.between(-9, 9); };
    const Rect_s32 a{any(), any(), any(), any()}, b{any(), any(), any(), any()};
    Rect_s32 all{1, 2, 3, 4}, common{1, 2, 3, 4}, grown = a;
    IP_Geom_SetUnion_s32(&a, &b, &all);
    IP_Geom_SetIntersection_s32(&a, &b, &common);
    const int32_t gx = any(), gy = any();
    IP_Geom_RectGrow_s32(&grown, gx, gy);
    addRect(addRect(addRect(hash.add(IP_Geom_Intersects_s32(&a, &b)), all), common), grown);
    const auto anyU = [&] { return random.below(12); };
    const Rect_u32 c{anyU(), anyU(), anyU(), anyU()}, d{anyU(), anyU(), anyU(), anyU()};
    Rect_u32 allU{1, 2, 3, 4};
    IP_Geom_SetUnion_u32(&c, &d, &allU);
    addRect(hash.add(IP_Geom_Intersects_u32(&c, &d)), allU);
  }
  return hash;
}

// A count and vertices in one block, as the library takes them.
template <class Polygon, class Point>
class Ring {
 public:
  Ring(lab::Random& random, Point (*any)(lab::Random&)) : words_(1 + 2 * 12) {
    words_[0] = 3 + random.below(10);
    for (size_t i = 0; i < 12; ++i) {
      const Point p = any(random);
      std::memcpy(&words_[1 + 2 * i], &p, sizeof p);
    }
  }
  Polygon* get() { return reinterpret_cast<Polygon*>(words_.data()); }
  const std::vector<uint32_t>& words() const { return words_; }

 private:
  std::vector<uint32_t> words_;
};

Fingerprint polygons() {
  Fingerprint hash;
  lab::Random random(5);
  for (int i = 0; i < 300; ++i) {
    Ring<Polygon_s32, Point_s32> ring(random, point);
    hash.add(IP_Polygon_IsSimple(ring.get()));
    for (int k = 0; k < 20; ++k) {
      const Point_s32 p = point(random);
      hash.add(IP_Polygon_IsInsideContour(ring.get(), &p, 2)).add(IP_Polygon_IsInside(ring.get(), &p));
      hash.add(IP_Polyline_Orientation(ring.get(), &p));
    }
    IP_Polygon_Erase(ring.get(), random.below(12));
    hash.add(ring.words());
    IP_Polygon_RemoveCollinearPoints(ring.get());
    hash.add(ring.words());
  }
  return hash;
}

Fingerprint polygonsF() {
  Fingerprint hash;
  lab::Random random(6);
  for (int i = 0; i < 300; ++i) {
    Ring<Polygon_f32, Point_f32> ring(random, pointF);
    hash.add(IP_Polygon_IsSimple_f32(ring.get()));
    for (int k = 0; k < 20; ++k) {
      const Point_f32 p = pointF(random);
      hash.add(IP_Polygon_IsInside_f32(ring.get(), &p)).add(IP_Polyline_Orientation_f32(ring.get(), &p));
      hash.add(IP_Polygon_SquaredDist(ring.get(), &p));
    }
    IP_Polygon_Erase_f32(ring.get(), random.below(12));
    hash.add(ring.words());
    IP_Polygon_RemoveCollinearPoints_f32(ring.get());
    hash.add(ring.words());
  }
  return hash;
}

// The callback has no place for a pointer to where its points shall go.
thread_local std::vector<int32_t> visited;

Fingerprint digitalLines() {
  Fingerprint hash;
  lab::Random random(7);
  for (int i = 0; i < 300; ++i) {
    const Point_s32 from = point(random), to = point(random);
    visited.clear();
    IP_Utils_Bresenham(&from, &to, i, [](int32_t x, int32_t y, int32_t line) {
      visited.insert(visited.end(), {x, y, line});
    });
    hash.add(visited);
  }
  return hash;
}

}  // namespace

std::vector<Case> geometryCases() {
  return {
      {"Points", points},
      {"Edges", edges},
      {"Lines", lines},
      {"Rectangles", rectangles},
      {"Polygons", polygons},
      {"PolygonsF32", polygonsF},
      {"DigitalLines", digitalLines},
  };
}

}  // namespace nadir::test::golden
