// This tells on which side of a polyline a point lies.
#include <nadir/geometry.h>

#include <limits>

#include "geometry/orientation.hpp"

namespace nadir {
namespace {

int32_t lineDistance(const Point_s32& a, const Point_s32& b, const Point_s32& p) {
  const Edge_s32 segment = {a.x, a.y, b.x, b.y};
  return IP_Geom_EdgePoint2_SquaredDistance_s32(&segment, &p);
}

float lineDistance(const Point_f32& a, const Point_f32& b, const Point_f32& p) {
  const Edge_f32 segment = {a.x, a.y, b.x, b.y};
  return IP_Geom_EdgePoint2_SquaredDistance_f32(&segment, &p);
}

template <class Distance, class Polyline, class Point>
int32_t sideOf(const Polyline* line, const Point* p) {
  constexpr int32_t noSide = -2;
  if (!line || !p || line->count < 2) return noSide;
  Distance best = std::numeric_limits<Distance>::max();
  const Point* nearest = nullptr;
  for (const Point* start = line->vertices; start != line->vertices + line->count - 1; ++start) {
    const Distance distance = lineDistance(start[0], start[1], *p);
    if (distance < best) {
      best = distance;
      nearest = start;
    }
  }
  return nearest ? orientation(nearest[0], nearest[1], *p) : noSide;
}

}  // namespace
}  // namespace nadir

int32_t IP_Polyline_Orientation(const Polygon_s32* line, const Point_s32* p) { return nadir::sideOf<int32_t>(line, p); }

int32_t IP_Polyline_Orientation_f32(const Polygon_f32* line, const Point_f32* p) {
  return nadir::sideOf<float>(line, p);
}
