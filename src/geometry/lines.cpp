// This file computes distances of points from lines and where lines meet.
#include <nadir/geometry.h>

#include <algorithm>
#include <cmath>

#include "core/constants.hpp"
#include "geometry/orientation.hpp"

namespace nadir {
namespace {

struct Direction {
  int32_t x, y;
};

// n / q to the nearest integer, halves away from zero. q is not 0.
int32_t dividedRounding(int32_t n, int32_t q) {
  const int32_t magnitude = (Wrap32(wrapAbs(n)) + wrapAbs(q) / 2).value() / wrapAbs(q);
  return (Wrap32(signOf(n) * signOf(q)) * magnitude).value();
}

// Divides the direction so that its longer component is about 128: products of two directions and a coordinate
// difference then have room in 32 bits.
Direction shortened(const Line_s32& line) {
  const int32_t longer = std::max(wrapAbs(line.dx), wrapAbs(line.dy));
  if (longer <= 128) return {line.dx, line.dy};
  const int32_t k = ((longer - 1) >> 7) + 1;
  return {dividedRounding(line.dx, k), dividedRounding(line.dy, k)};
}

}  // namespace
}  // namespace nadir

int32_t IP_Geom_LinePoint2_SquaredDistance_s32(const Line_s32* l, const Point_s32* p) {
  const nadir::Wrap32 x = l->x, y = l->y, dx = l->dx, dy = l->dy;
  const int32_t squaredLength = (dx * dx + dy * dy).value();
  if (squaredLength == 0) return 0;
  const nadir::Wrap32 n = dy * p->x - dx * p->y + y * dx - x * dy;
  // No quotient leaves the range: two squares never add up to -1 modulo 2^32, since they leave 0, 1 or 2 modulo 4.
  return (n * n).value() / squaredLength;
}

float IP_Geom_LinePoint2_SquaredDistance_f32(const Line_f32* l, const Point_f32* p) {
  const Point_f32 s = {l->x, l->y}, t = {l->x + l->dx, l->y + l->dy};
  const float dx = t.x - s.x, dy = t.y - s.y;
  const float squaredLength = dx * dx + dy * dy;
  if (!(squaredLength > nadir::floatEpsilon)) return 0;
  const float n = dy * p->x - dx * p->y + s.y * t.x - s.x * t.y;
  return n * n / squaredLength;
}

int32_t IP_Geom_IntersectLines(const Line_s32* l1, const Line_s32* l2, Point_s32* out) {
  const nadir::Direction d1 = nadir::shortened(*l1), d2 = nadir::shortened(*l2);
  const int32_t det = (nadir::Wrap32(d2.x) * d1.y - nadir::Wrap32(d2.y) * d1.x).value();
  if (det == 0) return 0;
  const nadir::Wrap32 t = d2.y * (nadir::Wrap32(l1->x) - l2->x) + d2.x * (nadir::Wrap32(l2->y) - l1->y);
  *out = {(nadir::Wrap32(l1->x) + nadir::dividedRounding((t * d1.x).value(), det)).value(),
          (nadir::Wrap32(l1->y) + nadir::dividedRounding((t * d1.y).value(), det)).value()};
  return 1;
}

int32_t IP_Geom_IntersectLines_f32(const Line_f32* l1, const Line_f32* l2, Point_f32* out) {
  const float det = l1->dy * l2->dx - l1->dx * l2->dy;
  if (std::fabs(det) < GEOM_EPS) return 0;
  const float t = (l1->x - l2->x) * l2->dy + (l2->y - l1->y) * l2->dx;
  *out = {l1->dx * t / det + l1->x, l1->dy * t / det + l1->y};
  return 1;
}
