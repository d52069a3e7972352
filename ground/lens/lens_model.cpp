// Distortions in doubles formed in one order, so that they are the same everywhere.
#include "ground/lens/lens_model.hpp"

#include <cmath>
#include <limits>

#include "ground/trust/arc_tangent.hpp"

namespace nadir::ground {

namespace {

struct Coefficients {
  double k1, k2, p1, p2, k3, k4, k5, k6, s1, s2, s3, s4;
};

Coefficients coefficientsOf(const NadirLens& lens) {
  const double* c = lens.coefficients;
  return {c[0], c[1], c[2], c[3], c[4], c[5], c[6], c[7], c[8], c[9], c[10], c[11]};
}

// 1 + a s + b s^2 + c s^3 and its derivative.
double cubic(double a, double b, double c, double s) { return 1 + s * (a + s * (b + s * c)); }
double cubicSlope(double a, double b, double c, double s) { return a + s * (2 * b + s * (3 * c)); }

PlanePoint brown(const Coefficients& c, const PlanePoint& ray) {
  const double x = ray.x, y = ray.y, squared = x * x + y * y, both = 2 * x * y;
  const double g = cubic(c.k1, c.k2, c.k3, squared) / cubic(c.k4, c.k5, c.k6, squared);
  return {x * g + c.p1 * both + c.p2 * (squared + 2 * x * x) + squared * (c.s1 + squared * c.s2),
          y * g + c.p1 * (squared + 2 * y * y) + c.p2 * both + squared * (c.s3 + squared * c.s4)};
}

double angleOf(double r) { return directionDeg(r, 1) * degree; }

PlanePoint fisheye(const double* k, const PlanePoint& ray) {
  const double r = std::sqrt(ray.x * ray.x + ray.y * ray.y);
  if (r == 0) return ray;
  const double t = angleOf(r), squared = t * t;
  const double g = t * (1 + squared * (k[0] + squared * (k[1] + squared * (k[2] + squared * k[3])))) / r;
  return {ray.x * g, ray.y * g};
}

// Whether the distance from the axis, r N(s) / D(s) with s = r^2, grows with r: its derivative times D^2 is
// (N + 2 s N') D - 2 s N D'.
bool brownGrows(const Coefficients& c, double r) {
  const double s = r * r, above = cubic(c.k1, c.k2, c.k3, s), below = cubic(c.k4, c.k5, c.k6, s);
  const double slope =
      (above + 2 * s * cubicSlope(c.k1, c.k2, c.k3, s)) * below - 2 * s * above * cubicSlope(c.k4, c.k5, c.k6, s);
  return below > 0 && slope > 0;
}

bool fisheyeGrows(const double* k, double r) {
  const double t = angleOf(r), s = t * t;
  return 1 + s * (3 * k[0] + s * (5 * k[1] + s * (7 * k[2] + s * (9 * k[3])))) > 0;
}

bool grows(const NadirLens& lens, double r) {
  if (lens.model == NADIR_LENS_FISHEYE) return fisheyeGrows(lens.coefficients, r);
  return brownGrows(coefficientsOf(lens), r);
}

// Rays up to 89.99 degrees from the axis are looked at, in steps that are finest near it.
constexpr int steps = 4096, halvings = 40;

double distanceAt(double step) { return step / (steps - step); }

double largestDistance(const NadirLens& lens) {
  int first = 1;
  while (first < steps && grows(lens, distanceAt(first))) ++first;
  if (first == steps) return distanceAt(steps - 1);
  double inside = first - 1, outside = first;
  for (int i = 0; i < halvings; ++i) {
    const double middle = (inside + outside) / 2;
    (grows(lens, distanceAt(middle)) ? inside : outside) = middle;
  }
  return distanceAt(outside);
}

}  // namespace

LensModel::LensModel(const NadirLens& lens) : lens_(lens), largestSquared_(std::numeric_limits<double>::infinity()) {
  if (lens.model == NADIR_LENS_NONE) return;
  const double largest = largestDistance(lens);
  largestSquared_ = largest * largest;
}

PlanePoint LensModel::bent(const PlanePoint& ray) const {
  switch (lens_.model) {
    case NADIR_LENS_BROWN: return brown(coefficientsOf(lens_), ray);
    case NADIR_LENS_FISHEYE: return fisheye(lens_.coefficients, ray);
    default: return ray;
  }
}

PlanePoint LensModel::source(const PlanePoint& ray) const {
  const PlanePoint at = bent(ray);
  return {lens_.focal_x_px * at.x + lens_.principal_x_px, lens_.focal_y_px * at.y + lens_.principal_y_px};
}

}  // namespace nadir::ground
