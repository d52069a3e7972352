// This file tells what is true of polygons, mends them and measures distances from them.
#include "geometry/polygon.hpp"

#include <cfloat>
#include <cstring>

#include "geometry/edges.hpp"

namespace nadir {
namespace {

template <class Polygon>
bool isSimple(const Polygon& poly) {
  if (poly.count < 4) return true;
  for (uint32_t i = 1; i < poly.count; ++i) {
    for (uint32_t j = i; j < poly.count; ++j) {
      const uint32_t end = nextVertex(j, poly.count);
      if (edgesIntersect(poly.vertices[i - 1], poly.vertices[i], poly.vertices[j], poly.vertices[end])) return false;
    }
  }
  return true;
}

enum class Place { outside, inside, boundary };

// How the edge ab, with the point on its side o, changes the winding number: edges count where they cross the point's
// row to its right, and own their upper or lower end so that no crossing is counted twice.
template <class Point>
int32_t windingOf(const Point& a, const Point& b, const Point& p, int32_t o) {
  if (a.y <= p.y) return p.y < b.y && o < 0 ? 1 : 0;
  return p.y >= b.y && o > 0 ? -1 : 0;
}

template <class Polygon, class Point>
Place placeOf(const Polygon& poly, const Point& p) {
  int32_t winding = 0;
  for (uint32_t k = 0; k < poly.count; ++k) {
    const Point &a = poly.vertices[k], &b = poly.vertices[nextVertex(k, poly.count)];
    const int32_t o = orientation(a, b, p);
    if (o == 0 && insideBox(a, b, p)) return Place::boundary;
    winding += windingOf(a, b, p, o);
  }
  return winding != 0 ? Place::inside : Place::outside;
}

template <class Polygon>
void erase(Polygon& poly, uint32_t index) {
  if (index >= poly.count) return;
  --poly.count;
  std::memmove(&poly.vertices[index], &poly.vertices[index + 1], (poly.count - index) * sizeof(poly.vertices[0]));
}

bool areCollinear(const Point_s32& a, const Point_s32& b, const Point_s32& c) {
  const Wrap32 left = (Wrap32(c.x) - a.x) * (Wrap32(b.y) - a.y);
  const Wrap32 right = (Wrap32(c.y) - a.y) * (Wrap32(b.x) - a.x);
  return left.value() == right.value();
}

bool areCollinear(const Point_f32& a, const Point_f32& b, const Point_f32& c) { return orientation(a, b, c) == 0; }

template <class Polygon>
void removeCollinearPoints(Polygon& poly) {
  uint32_t i = 0;
  while (i < poly.count) {
    const uint32_t j = nextVertex(i, poly.count), k = nextVertex(j, poly.count);
    if (areCollinear(poly.vertices[i], poly.vertices[j], poly.vertices[k])) {
      erase(poly, j);
    } else {
      ++i;
    }
  }
}

float squaredDistance(const Point_f32& p, const Point_f32& q) {
  const float dx = p.x - q.x, dy = p.y - q.y;
  return dx * dx + dy * dy;
}

bool outsideBox(const Point_f32& a, const Point_f32& b, const Point_f32& p) {
  return p.x < std::min(a.x, b.x) || p.x > std::max(a.x, b.x) || p.y < std::min(a.y, b.y) || p.y > std::max(a.y, b.y);
}

Point_f32 nearerEnd(const Point_f32& a, const Point_f32& b, const Point_f32& p) {
  return squaredDistance(b, p) <= squaredDistance(a, p) ? b : a;
}

// The point of the edge ab that counts as nearest to p.
Point_f32 footOn(const Point_f32& a, const Point_f32& b, const Point_f32& p) {
  const float dx = b.x - a.x, dy = b.y - a.y;
  const Line_f32 edge = {a.x, a.y, dx, dy}, perpendicular = {p.x, p.y, dy, -dx};
  Point_f32 foot;
  if (!IP_Geom_IntersectLines_f32(&edge, &perpendicular, &foot)) return nearerEnd(a, b, p);
  return outsideBox(a, b, foot) ? nearerEnd(a, b, foot) : foot;
}

}  // namespace
}  // namespace nadir

int32_t IP_Polygon_IsSimple(const Polygon_s32* poly) { return nadir::isSimple(*poly); }

int32_t IP_Polygon_IsSimple_f32(const Polygon_f32* poly) { return nadir::isSimple(*poly); }

int32_t IP_Polygon_IsInsideContour(const Polygon_s32* poly, const Point_s32* p, uint32_t onBoundary) {
  const nadir::Place place = nadir::placeOf(*poly, *p);
  return place == nadir::Place::boundary ? static_cast<int32_t>(onBoundary) : place == nadir::Place::inside;
}

int32_t IP_Polygon_IsInside(const Polygon_s32* poly, const Point_s32* p) {
  return nadir::placeOf(*poly, *p) != nadir::Place::outside;
}

int32_t IP_Polygon_IsInside_f32(const Polygon_f32* poly, const Point_f32* p) {
  return nadir::placeOf(*poly, *p) != nadir::Place::outside;
}

void IP_Polygon_Erase(Polygon_s32* poly, uint32_t index) { nadir::erase(*poly, index); }

void IP_Polygon_Erase_f32(Polygon_f32* poly, uint32_t index) { nadir::erase(*poly, index); }

void IP_Polygon_RemoveCollinearPoints(Polygon_s32* poly) { nadir::removeCollinearPoints(*poly); }

void IP_Polygon_RemoveCollinearPoints_f32(Polygon_f32* poly) { nadir::removeCollinearPoints(*poly); }

float IP_Polygon_SquaredDist(const Polygon_f32* poly, const Point_f32* p) {
  float best = FLT_MAX;
  for (uint32_t k = 0; k < poly->count; ++k) {
    const Point_f32 foot = nadir::footOn(poly->vertices[k], poly->vertices[nadir::nextVertex(k, poly->count)], *p);
    const float distance = nadir::squaredDistance(*p, foot);
    if (distance < best) best = distance;
  }
  return best;
}
