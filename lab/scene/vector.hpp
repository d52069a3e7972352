// Points and directions of the world, in millimetres.
#pragma once

namespace nadir::scene {

struct Vec {
  double x = 0, y = 0, z = 0;
};

inline Vec operator+(const Vec& a, const Vec& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline Vec operator-(const Vec& a, const Vec& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline Vec operator*(const Vec& a, double factor) { return {a.x * factor, a.y * factor, a.z * factor}; }
inline double dot(const Vec& a, const Vec& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

// A ray is at at(distance) after `distance` times its direction.
struct Ray {
  Vec origin, direction;
  Vec at(double distance) const { return origin + direction * distance; }
};

}  // namespace nadir::scene
