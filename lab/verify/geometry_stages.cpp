// The stages of geometry.
#include "lab/verify/stages.hpp"

namespace nadir::verify {

namespace {

// Points that lie this way and that: pairs of intensities of the left picture, from -2048 to 2047.
Point_s32 pointAt(const Material& m, size_t i) {
  const auto coordinate = [&m](size_t k) { return m.left.pixels[k % m.left.pixels.size()] - 2048; };
  return {coordinate(2 * i), coordinate(2 * i + 1)};
}

Point_f32 floatPointAt(const Material& m, size_t i) {
  const Point_s32 p = pointAt(m, i);
  return {static_cast<float>(p.x) / 16, static_cast<float>(p.y) / 16};
}

constexpr size_t figures = 500;

Fingerprint wholeGeometry(const Material& m) {
  Fingerprint print;
  for (size_t i = 0; i < figures; ++i) {
    const Point_s32 a = pointAt(m, i), b = pointAt(m, i + 1), c = pointAt(m, i + 2), d = pointAt(m, i + 3);
    const Edge_s32 e{a.x, a.y, b.x, b.y}, f{c.x, c.y, d.x, d.y};
    const Line_s32 l{a.x, a.y, b.x - a.x, b.y - a.y}, n{c.x, c.y, d.x - c.x, d.y - c.y};
    const Point_s32 triangle[] = {a, b, c};
    Point_s32 crossing{};
    float weights[3] = {};
    print.add(IP_Geom_Orientation(a.x, a.y, b.x, b.y, c.x, c.y)).add(IP_Geom_EdgesIntersect(&e, &f));
    print.add(IP_Geom_LinePoint2_SquaredDistance_s32(&l, &c)).add(IP_Geom_EdgePoint2_SquaredDistance_s32(&e, &c));
    print.add(IP_Geom_IntersectLines(&l, &n, &crossing)).add(crossing.x).add(crossing.y);
    print.add(IP_Geom_Barycentric(triangle, &d, weights)).add(weights, 3);
  }
  return print;
}

Fingerprint floatGeometry(const Material& m) {
  Fingerprint print;
  for (size_t i = 0; i < figures; ++i) {
    const Point_f32 a = floatPointAt(m, i), b = floatPointAt(m, i + 1), c = floatPointAt(m, i + 2),
                    d = floatPointAt(m, i + 3);
    const Edge_f32 e{a.x, a.y, b.x, b.y}, f{c.x, c.y, d.x, d.y};
    const Line_f32 l{a.x, a.y, b.x - a.x, b.y - a.y}, n{c.x, c.y, d.x - c.x, d.y - c.y};
    Point_f32 crossing{};
    print.add(IP_Geom_Orientation_f32(&a, &b, &c)).add(IP_Geom_EdgesIntersect_f32(&e, &f));
    print.add(IP_Geom_LinePoint2_SquaredDistance_f32(&l, &c)).add(IP_Geom_EdgePoint2_SquaredDistance_f32(&e, &c));
    print.add(IP_Geom_IntersectLines_f32(&l, &n, &crossing)).add(crossing.x).add(crossing.y);
    print.add(IP_Geom_IsPointOnEdge_f32(&e, &c)).add(IP_Geom_ArePointsEqual_f32(&a, &b));
  }
  return print;
}

Fingerprint rectangles(const Material& m) {
  Fingerprint print;
  for (size_t i = 0; i < figures; ++i) {
    const Point_s32 a = pointAt(m, i), b = pointAt(m, i + 1);
    const Rect_s32 r{a.x, a.y, a.x + 900, a.y + 700}, s{b.x, b.y, b.x + 500, b.y + 1100};
    Rect_s32 both, shared, grown = r;
    IP_Geom_SetUnion_s32(&r, &s, &both);
    IP_Geom_SetIntersection_s32(&r, &s, &shared);
    IP_Geom_RectGrow_s32(&grown, 10, -20);
    print.add(IP_Geom_Intersects_s32(&r, &s));
    for (const Rect_s32& q : {both, shared, grown}) print.add(q.x0).add(q.y0).add(q.x1).add(q.y1);
  }
  return print;
}

// A polygon record over memory of its own: the count, then the vertices.
template <class Polygon, class Coordinate>
class Ring {
 public:
  explicit Ring(uint32_t vertices) : words_(1 + 2 * vertices) { words_[0] = vertices; }
  void set(uint32_t i, Coordinate x, Coordinate y) {
    std::memcpy(&words_[1 + 2 * i], &x, sizeof x);
    std::memcpy(&words_[2 + 2 * i], &y, sizeof y);
  }
  Polygon* get() { return reinterpret_cast<Polygon*>(words_.data()); }
  const std::vector<uint32_t>& words() const { return words_; }

 private:
  static_assert(sizeof(Coordinate) == sizeof(uint32_t));
  std::vector<uint32_t> words_;
};

Fingerprint polygons(const Material& m) {
  Fingerprint print;
  for (size_t i = 0; i < figures / 5; ++i) {
    Ring<Polygon_s32, int32_t> whole(7);
    Ring<Polygon_f32, float> real(7);
    for (uint32_t k = 0; k < 7; ++k) {
      const Point_s32 p = pointAt(m, 7 * i + k);
      whole.set(k, p.x, p.y);
      real.set(k, static_cast<float>(p.x) / 8, static_cast<float>(p.y) / 8);
    }
    const Point_s32 p = pointAt(m, i);
    const Point_f32 q = floatPointAt(m, i);
    print.add(IP_Polygon_IsSimple(whole.get())).add(IP_Polygon_IsSimple_f32(real.get()));
    print.add(IP_Polygon_IsInside(whole.get(), &p)).add(IP_Polygon_IsInside_f32(real.get(), &q));
    print.add(IP_Polygon_IsInsideContour(whole.get(), &p, 1)).add(IP_Polygon_SquaredDist(real.get(), &q));
    print.add(IP_Polyline_Orientation(whole.get(), &p)).add(IP_Polyline_Orientation_f32(real.get(), &q));
    IP_Polygon_Erase(whole.get(), 2);
    IP_Polygon_RemoveCollinearPoints(whole.get());
    print.add(whole.words());
  }
  return print;
}

// The callback has nothing but a word to remember with.
std::vector<int32_t> visited;

Fingerprint lines(const Material& m) {
  visited.clear();
  for (size_t i = 0; i < 40; ++i) {
    const Point_s32 from = pointAt(m, i), to = pointAt(m, i + 1);
    IP_Utils_Bresenham(&from, &to, 0, [](int32_t x, int32_t y, int32_t) { visited.insert(visited.end(), {x, y}); });
  }
  return Fingerprint().add(visited);
}

}  // namespace

Stages geometryStages() {
  return {{"geometry", wholeGeometry},
          {"geometry, float", floatGeometry},
          {"rectangles", rectangles},
          {"polygons", polygons},
          {"lines", lines}};
}

}  // namespace nadir::verify
