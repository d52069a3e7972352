// Edges: from a to b.
#pragma once

#include "geometry/orientation.hpp"

namespace nadir {

// Whether the edges ab and cd cross. An end point that touches the other edge counts only strictly inside that edge's
// box; so neighbours in a polygon, which share one, pass.
template <class Point>
bool edgesIntersect(const Point& a, const Point& b, const Point& c, const Point& d) {
  const int32_t ofC = orientation(a, b, c), ofD = orientation(a, b, d);
  const int32_t ofA = orientation(c, d, a), ofB = orientation(c, d, b);
  if (ofC == 0 && strictlyInsideBox(a, b, c)) return true;
  if (ofD == 0 && strictlyInsideBox(a, b, d)) return true;
  if (ofA == 0 && strictlyInsideBox(c, d, a)) return true;
  if (ofB == 0 && strictlyInsideBox(c, d, b)) return true;
  return ofC * ofD < 0 && ofA * ofB < 0;
}

inline Point_s32 startOf(const Edge_s32& e) { return {e.x0, e.y0}; }
inline Point_f32 startOf(const Edge_f32& e) { return {e.x0, e.y0}; }
inline Point_s32 endOf(const Edge_s32& e) { return {e.x1, e.y1}; }
inline Point_f32 endOf(const Edge_f32& e) { return {e.x1, e.y1}; }

template <class Edge>
bool edgesIntersect(const Edge& e, const Edge& f) {
  return edgesIntersect(startOf(e), endOf(e), startOf(f), endOf(f));
}

}  // namespace nadir
