// The planar geometry once more, written for clearness only, for the tests to compare with.
#pragma once

#include <nadir/geometry.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "tests/support/integers.hpp"

namespace nadir::test::model {

constexpr float tolerance = 0.01f;

inline int32_t signOf(int32_t v) { return (v > 0) - (v < 0); }

inline int32_t orientation(Point_s32 a, Point_s32 b, Point_s32 c) {
  return signOf(((Wrap(c.x) - b.x) * (Wrap(b.y) - a.y) - (Wrap(c.y) - b.y) * (Wrap(b.x) - a.x)).value());
}

inline int32_t orientation(Point_f32 a, Point_f32 b, Point_f32 c) {
  const float ux = b.x - a.x, uy = b.y - a.y, vx = c.x - b.x, vy = c.y - b.y;
  const float k = uy * vx - ux * vy;
  if (std::fabs(k) < tolerance) return 0;
  const float u2 = ux * ux + uy * uy, v2 = vx * vx + vy * vy;
  const double length = std::sqrt(static_cast<double>(u2 > v2 ? u2 : v2));
  const float deviation = static_cast<float>(static_cast<double>(k) / length);
  if (std::fabs(deviation) < tolerance) return 0;
  return k > 0 ? 1 : -1;
}

inline bool strictlyWithin(int32_t p, int32_t a, int32_t b) { return std::min(a, b) < p && p < std::max(a, b); }
inline bool strictlyWithin(float p, float a, float b) {
  return p - std::max(a, b) <= -tolerance && p - std::min(a, b) >= tolerance;
}

template <class Point>
bool strictlyInBox(Point p, Point a, Point b) {
  return strictlyWithin(p.x, a.x, b.x) && strictlyWithin(p.y, a.y, b.y);
}

// The edges are e0-e1 and f0-f1.
template <class Point>
int32_t edgesIntersect(Point e0, Point e1, Point f0, Point f1) {
  const int32_t o1 = orientation(e0, e1, f0), o2 = orientation(e0, e1, f1);
  const int32_t o3 = orientation(f0, f1, e0), o4 = orientation(f0, f1, e1);
  if (o1 == 0 && strictlyInBox(f0, e0, e1)) return 1;
  if (o2 == 0 && strictlyInBox(f1, e0, e1)) return 1;
  if (o3 == 0 && strictlyInBox(e0, f0, f1)) return 1;
  if (o4 == 0 && strictlyInBox(e1, f0, f1)) return 1;
  return o1 * o2 < 0 && o3 * o4 < 0;
}

inline int32_t lineDistance(const Line_s32& l, Point_s32 p) {
  const int32_t length = (Wrap(l.dx) * l.dx + Wrap(l.dy) * l.dy).value();
  if (length == 0) return 0;
  const Wrap n = Wrap(l.dy) * p.x - Wrap(l.dx) * p.y + Wrap(l.y) * l.dx - Wrap(l.x) * l.dy;
  return (n * n).value() / length;
}

inline float lineDistance(const Line_f32& l, Point_f32 p) {
  const float tx = l.x + l.dx, ty = l.y + l.dy;
  const float dx = tx - l.x, dy = ty - l.y;
  const float length = dx * dx + dy * dy;
  if (!(length > 1.1920929e-7f)) return 0;
  const float n = dy * p.x - dx * p.y + l.y * tx - l.x * ty;
  return n * n / length;
}

inline int32_t edgeDistance(Point_s32 a, Point_s32 b, Point_s32 p) {
  return lineDistance({a.x, a.y, (Wrap(b.x) - a.x).value(), (Wrap(b.y) - a.y).value()}, p);
}
inline float edgeDistance(Point_f32 a, Point_f32 b, Point_f32 p) {
  return lineDistance({a.x, a.y, b.x - a.x, b.y - a.y}, p);
}

inline int32_t intersectLines(const Line_f32& l1, const Line_f32& l2, Point_f32* out) {
  const float det = l1.dy * l2.dx - l1.dx * l2.dy;
  if (std::fabs(det) < tolerance) return 0;
  const float t = (l1.x - l2.x) * l2.dy + (l2.y - l1.y) * l2.dx;
  *out = {l1.dx * t / det + l1.x, l1.dy * t / det + l1.y};
  return 1;
}

inline Wrap magnitude(Wrap v) { return v.value() < 0 ? Wrap(0) - v : v; }

// A direction brought down to about 128 counts.
inline Point_s32 reduced(int32_t dx, int32_t dy) {
  const int32_t m = std::max(magnitude(dx).value(), magnitude(dy).value());
  if (m <= 128) return {dx, dy};
  const int32_t k = ((m - 1) >> 7) + 1;
  auto component = [k](int32_t c) { return signOf(c) * ((magnitude(c) + (k >> 1)).value() / k); };
  return {component(dx), component(dy)};
}

inline Wrap roundedQuotient(Wrap n, Wrap q) {
  const Wrap size = magnitude(q);
  return Wrap(signOf(n.value()) * signOf(q.value())) * Wrap((magnitude(n) + size.value() / 2).value() / size.value());
}

inline int32_t intersectLines(const Line_s32& l1, const Line_s32& l2, Point_s32* out) {
  const Point_s32 d1 = reduced(l1.dx, l1.dy), d2 = reduced(l2.dx, l2.dy);
  const Wrap det = Wrap(d2.x) * d1.y - Wrap(d2.y) * d1.x;
  if (det.value() == 0) return 0;
  const Wrap t = Wrap(d2.y) * (Wrap(l1.x) - l2.x) + Wrap(d2.x) * (Wrap(l2.y) - l1.y);
  *out = {(Wrap(l1.x) + roundedQuotient(t * d1.x, det)).value(), (Wrap(l1.y) + roundedQuotient(t * d1.y, det)).value()};
  return 1;
}

template <class Point>
int32_t isSimple(const std::vector<Point>& v) {
  const size_t n = v.size();
  if (n < 4) return 1;
  for (size_t i = 1; i < n; i++) {
    for (size_t j = i; j < n; j++) {
      if (edgesIntersect(v[i - 1], v[i], v[j], v[(j + 1) % n])) return 0;
    }
  }
  return 1;
}

inline bool onBox(int32_t p, int32_t a, int32_t b) { return std::min(a, b) <= p && p <= std::max(a, b); }
inline bool onBox(float p, float a, float b) {
  return p - std::min(a, b) > -tolerance && p - std::max(a, b) < tolerance;
}

template <class Point>
int32_t isInsideContour(const std::vector<Point>& v, Point p, uint32_t onBoundary) {
  int32_t winding = 0;
  for (size_t k = 0; k < v.size(); k++) {
    const Point a = v[k], b = v[(k + 1) % v.size()];
    const int32_t o = orientation(a, b, p);
    if (o == 0) {
      if (onBox(p.x, a.x, b.x) && onBox(p.y, a.y, b.y)) return static_cast<int32_t>(onBoundary);
    } else if (a.y <= p.y) {
      if (p.y < b.y && o < 0) winding++;
    } else if (p.y >= b.y && o > 0) {
      winding--;
    }
  }
  return winding != 0;
}

inline bool collinear(Point_s32 i, Point_s32 j, Point_s32 k) {
  return ((Wrap(k.x) - i.x) * (Wrap(j.y) - i.y)).value() == ((Wrap(k.y) - i.y) * (Wrap(j.x) - i.x)).value();
}
inline bool collinear(Point_f32 i, Point_f32 j, Point_f32 k) { return orientation(i, j, k) == 0; }

template <class Point>
std::vector<Point> withoutCollinearPoints(std::vector<Point> v) {
  size_t i = 0;
  while (i < v.size()) {
    const size_t j = (i + 1) % v.size(), k = (i + 2) % v.size();
    if (collinear(v[i], v[j], v[k])) {
      v.erase(v.begin() + static_cast<std::ptrdiff_t>(j));
    } else {
      i++;
    }
  }
  return v;
}

inline int32_t largest(Point_s32) { return 2147483647; }
inline float largest(Point_f32) { return 3.4028235e38f; }

template <class Point>
int32_t polylineOrientation(const std::vector<Point>& v, Point p) {
  if (v.size() < 2) return -2;
  auto nearest = largest(p);
  size_t best = v.size();
  for (size_t s = 0; s + 1 < v.size(); s++) {
    const auto d = edgeDistance(v[s], v[s + 1], p);
    if (d < nearest) {
      nearest = d;
      best = s;
    }
  }
  return best == v.size() ? -2 : orientation(v[best], v[best + 1], p);
}

inline float squaredDistance(Point_f32 p, Point_f32 q) { return (p.x - q.x) * (p.x - q.x) + (p.y - q.y) * (p.y - q.y); }

// The point of the edge a-b that counts for p.
inline Point_f32 footOn(Point_f32 a, Point_f32 b, Point_f32 p) {
  const float dx = b.x - a.x, dy = b.y - a.y;
  Point_f32 f;
  if (!intersectLines(Line_f32{a.x, a.y, dx, dy}, Line_f32{p.x, p.y, dy, -dx}, &f)) {
    return squaredDistance(b, p) <= squaredDistance(a, p) ? b : a;
  }
  const bool outside =
      f.x < std::min(a.x, b.x) || f.x > std::max(a.x, b.x) || f.y < std::min(a.y, b.y) || f.y > std::max(a.y, b.y);
  if (!outside) return f;
  return squaredDistance(b, f) <= squaredDistance(a, f) ? b : a;
}

inline float polygonDistance(const std::vector<Point_f32>& v, Point_f32 p) {
  float best = 3.4028235e38f;
  for (size_t k = 0; k < v.size(); k++) {
    const float e = squaredDistance(p, footOn(v[k], v[(k + 1) % v.size()], p));
    if (e < best) best = e;
  }
  return best;
}

}  // namespace nadir::test::model
