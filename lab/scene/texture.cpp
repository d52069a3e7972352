// Patterns are noise on lattices of several widths, of which each distance shows those that a picture resolves.
#include "lab/scene/texture.hpp"

#include <cmath>

#include "lab/scene/hash.hpp"

namespace nadir::scene {

namespace {

double blend(double a, double b, double share) { return a + (b - a) * share; }

// 3 t^2 - 2 t^3, which is level at both ends: the lattice does not show.
double smooth(double t) { return t * t * (3 - 2 * t); }

// Rises from 0 at `from` to 1 at `to`.
double ramp(double v, double from, double to) {
  if (v <= from) return 0;
  return v >= to ? 1 : (v - from) / (to - from);
}

// A coordinate on the lattice: its cell, and how far into the cell it lies.
struct Position {
  int64_t cell;
  double share;
  explicit Position(double v) : cell(static_cast<int64_t>(v)) {
    cell -= static_cast<double>(cell) > v;
    share = smooth(v - static_cast<double>(cell));
  }
};

// Random values from -1 to 1 at the corners of cubes, joined smoothly.
double cellNoise(uint64_t key, const Vec& p) {
  const Position x(p.x), y(p.y), z(p.z);
  const auto corner = [&](int64_t i, int64_t j, int64_t k) {
    return 2 * fraction(hashAt(key, x.cell + i, y.cell + j, z.cell + k)) - 1;
  };
  const auto edge = [&](int64_t j, int64_t k) { return blend(corner(0, j, k), corner(1, j, k), x.share); };
  const auto face = [&](int64_t k) { return blend(edge(0, k), edge(1, k), y.share); };
  return blend(face(0), face(1), z.share);
}

}  // namespace

double texture(uint64_t key, const Vec& place, double pixel) {
  double sum = 0, power = 0;
  for (double cell = 0.25; cell < 64 * pixel; cell *= 2, ++key) {
    const double weight = ramp(cell, 2 * pixel, 4 * pixel) * (1 - ramp(cell, 32 * pixel, 64 * pixel));
    if (weight == 0) continue;
    sum += weight * cellNoise(mixed(key), place * (1 / cell));
    power += weight * weight;
  }
  return power > 0 ? sum / std::sqrt(power) : 0;
}

}  // namespace nadir::scene
