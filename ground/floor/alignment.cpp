// Gauss-Newton on the three numbers of a plane; the method stands in include/nadir/level.h.
#include "ground/floor/alignment.hpp"

#include <nadir/level.h>

#include <cmath>

#include "ground/trust/arc_tangent.hpp"

namespace nadir::ground {

namespace {

// A step is some tenths of a pixel at first and a thousandth after five.
constexpr int rounds = 10;

// Parts of the picture whose errors are independent of each other, so that their differences tell the plane's error.
constexpr uint32_t tilesAcross = 8, tilesDown = 8, tiles = tilesAcross * tilesDown;

// Pixels that count have a disparity near the plane, so that one which moves further has followed something else.
constexpr double farthestMove = 0.75;

constexpr double leastPixels = 2000;

// Fewer parts say little about how they differ.
constexpr uint32_t leastTiles = 7;

// Pictures without noise agree in all their parts, but what is added up needs an inverse.
constexpr double leastVariance = 1e-18;

// ---- what a pixel says ----

// How the right picture's intensities become the left one's.
struct Exposure {
  double gain = 1, offset = 0, scatter = 0;  // scatter: standard deviation of what is left
};

struct Comparison {
  double left, right, gradient;
};

// Catmull-Rom's cubic through four pixels, t of the way from the second to the third (Keys, a = -1/2).
double between(const float* p, double t) {
  const double a = double{p[0]}, b = double{p[1]}, c = double{p[2]}, d = double{p[3]};
  return b + t * (c - a + t * (2 * a - 5 * b + 4 * c - d + t * (3 * (b - c) + d - a))) / 2;
}

bool areKnown(const float* p, int count) {
  bool known = true;
  for (int i = 0; i < count; ++i) known &= p[i] >= 0;
  return known;
}

// False where a pixel does not count, or where what lies over it has no data.
bool compare(const Overlay& o, const DisparityPlane& plane, uint32_t x, uint32_t y, Comparison& c) {
  if (o.taken[size_t{o.left.width} * y + x] != NADIR_LEVEL_TAKEN) return false;
  const double place = x - plane.at(x, y), whole = std::floor(place);
  if (!(whole >= 1 && whole + 2 < o.right.width)) return false;
  const float *left = o.left.row(y) + x, *right = o.right.row(y) + static_cast<uint32_t>(whole) - 1;
  if (!areKnown(left - 1, 3) || !areKnown(right, 4)) return false;
  c = {double{left[0]}, between(right, place - whole), (double{left[1]} - double{left[-1]}) / 2};
  return true;
}

template <class Use>
void forEachComparison(const Overlay& o, const DisparityPlane& plane, Use use) {
  Comparison c{};
  for (uint32_t y = 0; y < o.left.height; ++y)
    for (uint32_t x = 1; x + 1 < o.left.width; ++x)
      if (compare(o, plane, x, y, c)) use(x, y, c);
}

// ---- both exposures ----

struct Moments {
  double n = 0, left = 0, right = 0, leftLeft = 0, rightRight = 0, both = 0;

  void add(const Comparison& c) {
    n += 1;
    left += c.left;
    right += c.right;
    leftLeft += c.left * c.left;
    rightRight += c.right * c.right;
    both += c.left * c.right;
  }

  double variance(double squares, double sum) const { return squares / n - sum / n * (sum / n); }
};

// The gain is that of the deviations: noise would make that of a regression too small.
bool findExposure(const Overlay& o, const DisparityPlane& plane, Exposure& e) {
  Moments m;
  forEachComparison(o, plane, [&](uint32_t, uint32_t, const Comparison& c) { m.add(c); });
  if (m.n < leastPixels) return false;
  const double left = m.variance(m.leftLeft, m.left), right = m.variance(m.rightRight, m.right);
  if (!(left > 0 && right > 0)) return false;
  e.gain = std::sqrt(left / right);
  e.offset = m.left / m.n - e.gain * (m.right / m.n);
  const double together = m.both / m.n - m.left / m.n * (m.right / m.n), off = 2 * (left - e.gain * together);
  e.scatter = std::sqrt(aboveZero(off));
  return true;
}

double residual(const Comparison& c, const Exposure& e) { return c.left - (e.gain * c.right + e.offset); }

// Cauchy's weight: half where a residual is twice the scatter.
double weightOf(double residual, const Exposure& e) {
  const double ratio = residual / (2 * e.scatter + 1e-9);
  return 1 / (1 + ratio * ratio);
}

// ---- a step, and how certain it is ----

// Calls use(x, y, weight, weightedMove) with what each pixel says of how far the plane's disparities are to move.
template <class Use>
void forEachMove(const Overlay& o, const DisparityPlane& plane, const Exposure& e, Use use) {
  forEachComparison(o, plane, [&](uint32_t x, uint32_t y, const Comparison& c) {
    const double r = residual(c, e), weighted = weightOf(r, e) * c.gradient;
    use(x, y, weighted * c.gradient, -weighted * r);
  });
}

bool step(const Overlay& o, DisparityPlane& plane, Exposure& e) {
  DisparityPlane move;
  PlaneEquations equations;
  if (!findExposure(o, plane, e)) return false;
  forEachMove(o, plane, e, [&](uint32_t x, uint32_t y, double weight, double weightedMove) {
    equations.addWeighted(x, y, weight, weightedMove);
  });
  if (!equations.solve(move)) return false;
  plane = {plane.perColumn + move.perColumn, plane.perRow + move.perRow, plane.atOrigin + move.atOrigin};
  return true;
}

struct Tiled {
  PlaneEquations whole, tile[tiles];
};

void addTiles(const Overlay& o, const DisparityPlane& plane, const Exposure& e, Tiled& equations) {
  forEachMove(o, plane, e, [&](uint32_t x, uint32_t y, double weight, double weightedMove) {
    const uint32_t tile = y * tilesDown / o.left.height * tilesAcross + x * tilesAcross / o.left.width;
    equations.whole.addWeighted(x, y, weight, weightedMove);
    equations.tile[tile].addWeighted(x, y, weight, weightedMove);
  });
}

void addSquares(const DisparityPlane& move, double (&covariance)[9]) {
  const double numbers[] = {move.perColumn, move.perRow, move.atOrigin};
  for (int i = 0; i < 9; ++i) covariance[i] += numbers[i / 3] * numbers[i % 3];
}

// How far the plane moves when one part of the picture after the other is left out tells how uncertain it is (B. Efron,
// C. Stein, "The jackknife estimate of variance", Annals of Statistics 9(3), 1981).
bool findCovariance(const Overlay& o, const Exposure& e, UncertainPlane& plane) {
  Tiled equations;
  addTiles(o, plane.plane, e, equations);
  uint32_t used = 0;
  for (int i = 0; i < 9; ++i) plane.covariance[i] = i % 4 == 0 ? leastVariance : 0;
  for (const PlaneEquations& tile : equations.tile) {
    if (tile.isEmpty()) continue;
    DisparityPlane move;
    if (!equations.whole.without(tile).solve(move)) return false;
    addSquares(move, plane.covariance);
    ++used;
  }
  for (double& value : plane.covariance) value *= (used - 1.0) / used;
  return used >= leastTiles;
}

// Of the pixels that count, the root mean square of how far their disparities moved.
double moveBetween(const Overlay& o, const DisparityPlane& from, const DisparityPlane& to) {
  double pixels = 0, squares = 0;
  forEachComparison(o, to, [&](uint32_t x, uint32_t y, const Comparison&) {
    const double move = to.at(x, y) - from.at(x, y);
    pixels += 1;
    squares += move * move;
  });
  return std::sqrt(squares / pixels);
}

}  // namespace

bool align(const Overlay& overlay, UncertainPlane& plane) {
  UncertainPlane moved = plane;
  Exposure e;
  for (int i = 0; i < rounds; ++i)
    if (!step(overlay, moved.plane, e)) return false;
  if (!(moveBetween(overlay, plane.plane, moved.plane) <= farthestMove)) return false;
  if (!findCovariance(overlay, e, moved)) return false;
  plane = moved;
  return true;
}

}  // namespace nadir::ground
