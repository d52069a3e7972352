// A plane in space is a plane over the picture, too: with (u, v) = ((x - cx) / f, (y - cy) / f) and w = 1 / Z a point
// lies on n * P = h where w = (n.x * u + n.y * v + n.z) / h. There the matcher's errors are alike everywhere, while in
// space they grow with the square of the distance: near and far ground get the weight that they deserve.
//
// M. Fischler, R. Bolles, "Random sample consensus", Communications of the ACM 24(6), 1981; then least squares.
#include "ground/trust/near_plane.hpp"

#include <cmath>
#include <cstring>
#include <random>

#include "ground/kernels/kernels.hpp"
#include "ground/trust/arc_tangent.hpp"

namespace nadir::ground {

namespace {

constexpr double tolerancePx = 0.5;

// Three points lie on a plane that holds the share s of all points with a probability of s^3, so that 500 triples miss
// it altogether with (1 - s^3)^500: once in 2600 runs for a quarter of the points, once in 55 for a fifth. For a tenth
// it is missed more often than found (61 in 100), which is why less than a tenth is not called the ground at all.
constexpr int hypotheses = 500;
constexpr double leastShare = 0.1;

// A hypothesis is tried on 2000 to nearPlaneJudges of the points where there are more. Its share is then known with a
// standard deviation of sqrt(0.25 / 2000) = 1.1 percent points at most, far less than what tells the ground from a
// table.

// Rendered pairs with the usual noise settle after three or four rounds. With forty times that noise they go on for
// thirty, but after ten the height is within 0.2 percent and the tilt within 0.3 degrees of where they end.
constexpr int refinements = 10;

// A mount that somebody measured is not further off: ten degrees make heights wrong by 18 percent of the camera's
// height at that distance from its foot (tan 10 degrees). Beyond a quarter of the height the plane may be another one,
// such as a table of 750 mm below a camera at 3 m.
constexpr double leastCosine = 0.98480775301220802;
constexpr double largestHeightChange = 0.25;

// w = a * u + b * v + c
struct Plane {
  double a, b, c;
  double at(const RayPoint& p) const { return a * p.u + b * p.v + c; }
  double inverseHeight() const { return std::sqrt(a * a + b * b + c * c); }
};

// The disparity of a pixel with the column shift, as points are made of it; not a point where it is not above the least
// one.
float disparityAt(const DisparityPicture& picture, uint32_t x, uint32_t y) {
  const uint8_t* row = static_cast<const uint8_t*>(picture.data) + y * picture.stride;
  if (picture.given) {
    float value;
    std::memcpy(&value, row + x * sizeof value, sizeof value);
    return value + picture.columnShift;
  }
  uint16_t stored;
  std::memcpy(&stored, row + x * sizeof stored, sizeof stored);
  return stored == 0 ? 0 : static_cast<float>(stored) / 16 + picture.columnShift;
}

// All points row by row: each pass makes them anew, which is faster than to fetch them from memory.
template <class Use>
void forEachPoint(const DisparityPicture& picture, const IntCalib& calib, Use use) {
  const double f = calib.focalLength, scale = f * calib.baseline;
  for (uint32_t y = 0; y < picture.height; ++y) {
    const double v = (double{static_cast<float>(y)} - calib.principalY) / f;
    for (uint32_t x = 0; x < picture.width; ++x) {
      const float disparity = disparityAt(picture, x, y);
      // Not-a-number is no point either.
      if (!(disparity > leastDisparity)) continue;
      use(RayPoint{(double{static_cast<float>(x)} - calib.principalX) / f, v, disparity / scale});
    }
  }
}

// ---- the normal equations of three unknowns ----

struct Equations {
  double rows[3][4];

  void add(const RayPoint& p) {
    const double row[4] = {p.u, p.v, 1, p.w};
    const double* factor = row;
    for (double(&sums)[4] : rows) {
      for (int j = 0; j < 4; ++j) sums[j] += *factor * row[j];
      ++factor;
    }
  }

  double determinant(int x, int y, int z) const {
    return rows[0][x] * (rows[1][y] * rows[2][z] - rows[1][z] * rows[2][y]) -
           rows[0][y] * (rows[1][x] * rows[2][z] - rows[1][z] * rows[2][x]) +
           rows[0][z] * (rows[1][x] * rows[2][y] - rows[1][y] * rows[2][x]);
  }

  // Cramer's rule. Not-a-number where the points lie on one line.
  Plane solved() const {
    const double whole = determinant(0, 1, 2);
    const double safe = std::fabs(whole) > 1e-18 ? whole : NAN;
    return {determinant(3, 1, 2) / safe, determinant(0, 3, 2) / safe, determinant(0, 1, 3) / safe};
  }
};

// ---- judging ----

struct Judge {
  const StereoCtx& context;
  double tolerance;  // of w

  bool accepts(const Plane& plane, const RayPoint& p) const { return std::fabs(p.w - plane.at(p)) <= tolerance; }

  // Row 2 of R is the world's z axis, the expected normal, in camera coordinates.
  bool isLikeGround(const Plane& plane) const {
    const float* down = context.extCalib.R + 6;
    const double inverse = plane.inverseHeight();
    const double cosine = (plane.a * down[0] + plane.b * down[1] + plane.c * down[2]) / inverse;
    const double change = 1 / inverse / context.orientation.height - 1;
    return cosine >= leastCosine && std::fabs(change) <= largestHeightChange;
  }
};

// ---- the two steps ----

size_t countPoints(const DisparityPicture& picture, const IntCalib& calib) {
  size_t count = 0;
  forEachPoint(picture, calib, [&](const RayPoint&) { ++count; });
  return count;
}

// Every so manieth point, so that there are no more than memory holds.
size_t takeJudges(const DisparityPicture& picture, const IntCalib& calib, size_t points, RayPoint* judges) {
  const size_t step = points / nearPlaneJudges + 1;
  size_t index = 0, count = 0;
  forEachPoint(picture, calib, [&](const RayPoint& p) {
    if (index++ % step == 0) judges[count++] = p;
  });
  return count;
}

Plane throughThree(const RayPoint* points, size_t count, std::mt19937& random) {
  Equations e{};
  for (int i = 0; i < 3; ++i) e.add(points[random() % count]);
  return e.solved();
}

size_t agreeing(const Plane& plane, const RayPoint* points, size_t count, const Judge& judge) {
  size_t on = 0;
  for (size_t i = 0; i < count; ++i) on += judge.accepts(plane, points[i]);
  return on;
}

// The generator's numbers are the same everywhere, and so is the plane.
bool bestHypothesis(const RayPoint* points, size_t count, const Judge& judge, Plane& best) {
  std::mt19937 random(1);
  bool found = false;
  size_t most = static_cast<size_t>(leastShare * static_cast<double>(count));
  for (int i = 0; i < hypotheses; ++i) {
    const Plane plane = throughThree(points, count, random);
    if (!judge.isLikeGround(plane)) continue;
    const size_t on = agreeing(plane, points, count, judge);
    if (on > most) most = on, best = plane, found = true;
  }
  return found;
}

Plane refined(Plane plane, const DisparityPicture& picture, const Judge& judge) {
  for (int i = 0; i < refinements; ++i) {
    Equations e{};
    forEachPoint(picture, judge.context.intCalib, [&](const RayPoint& p) {
      if (judge.accepts(plane, p)) e.add(p);
    });
    plane = e.solved();
  }
  return plane;
}

// An arc sine by its right-angled triangle.
double inclineDeg(double sine) { return directionDeg(sine, std::sqrt(aboveZero((1 - sine) * (1 + sine)))); }

NearPlane described(const Plane& plane, const DisparityPicture& picture, const Judge& judge, size_t points) {
  const IntCalib& calib = judge.context.intCalib;
  const double h = 1 / plane.inverseHeight();
  const double nx = plane.a * h, ny = plane.b * h, nz = plane.c * h;
  NearPlane ground{h, -inclineDeg(ny), directionDeg(nx, nz), inclineDeg(nz), directionDeg(nx, ny), 0, 0, 0, points};
  double squaredMm = 0, squaredW = 0;
  forEachPoint(picture, calib, [&](const RayPoint& p) {
    if (!judge.accepts(plane, p)) return;
    const double distance = h - (nx * p.u + ny * p.v + nz) / p.w;
    squaredMm += distance * distance;
    squaredW += (p.w - plane.at(p)) * (p.w - plane.at(p));
    ++ground.inliers;
  });
  const auto count = static_cast<double>(ground.inliers);
  ground.rmsMm = std::sqrt(squaredMm / count);
  ground.rmsPx = std::sqrt(squaredW / count) * calib.focalLength * calib.baseline;
  return ground;
}

}  // namespace

bool nearPlane(const DisparityPicture& picture, const StereoCtx& context, RayPoint* memory, NearPlane& plane) {
  const IntCalib& calib = context.intCalib;
  const size_t points = countPoints(picture, calib);
  if (points < 3) return false;
  const Judge judge{context, tolerancePx / (double{calib.focalLength} * calib.baseline)};
  const size_t count = takeJudges(picture, calib, points, memory);
  Plane best{};
  if (!bestHypothesis(memory, count, judge, best)) return false;
  best = refined(best, picture, judge);
  if (!judge.isLikeGround(best)) return false;
  plane = described(best, picture, judge, points);
  return true;
}

}  // namespace nadir::ground
