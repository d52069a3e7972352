// The two questions that the rest of the plane geometry is built on, for integer and for float points alike: which way
// do three points turn, and where does a point lie against the box of two others.
#pragma once

#include <nadir/geometry.h>

#include <algorithm>
#include <cmath>

#include "core/wrap.hpp"

namespace nadir {

inline int32_t orientation(const Point_s32& a, const Point_s32& b, const Point_s32& c) {
  const Wrap32 cross = (Wrap32(c.x) - b.x) * (Wrap32(b.y) - a.y) - (Wrap32(c.y) - b.y) * (Wrap32(b.x) - a.x);
  return signOf(cross.value());
}

inline int32_t orientation(const Point_f32& a, const Point_f32& b, const Point_f32& c) {
  const float ux = b.x - a.x, uy = b.y - a.y;
  const float vx = c.x - b.x, vy = c.y - b.y;
  const float cross = uy * vx - ux * vy;
  if (std::fabs(cross) < GEOM_EPS) return 0;
  const double longer = std::max(ux * ux + uy * uy, vx * vx + vy * vy);
  const float deviation = static_cast<float>(static_cast<double>(cross) / std::sqrt(longer));
  if (std::fabs(deviation) < GEOM_EPS) return 0;
  return cross > 0 ? 1 : -1;
}

// Tells whether v lies between lo and hi and is none of them; floats keep away from them by GEOM_EPS.
inline bool strictlyBetween(int32_t v, int32_t lo, int32_t hi) { return lo < v && v < hi; }
inline bool strictlyBetween(float v, float lo, float hi) { return v - hi <= -GEOM_EPS && v - lo >= GEOM_EPS; }

// Tells whether v lies between lo and hi or is one of them; floats may lie outside by less than GEOM_EPS.
inline bool between(int32_t v, int32_t lo, int32_t hi) { return lo <= v && v <= hi; }
inline bool between(float v, float lo, float hi) { return v - lo > -GEOM_EPS && v - hi < GEOM_EPS; }

template <class Point>
bool strictlyInsideBox(const Point& a, const Point& b, const Point& p) {
  return strictlyBetween(p.x, std::min(a.x, b.x), std::max(a.x, b.x)) &&
         strictlyBetween(p.y, std::min(a.y, b.y), std::max(a.y, b.y));
}

template <class Point>
bool insideBox(const Point& a, const Point& b, const Point& p) {
  return between(p.x, std::min(a.x, b.x), std::max(a.x, b.x)) && between(p.y, std::min(a.y, b.y), std::max(a.y, b.y));
}

}  // namespace nadir
