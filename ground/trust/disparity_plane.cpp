// Between planes over the picture, mounts and points.
#include "ground/trust/disparity_plane.hpp"

#include <cmath>

#include "ground/trust/arc_tangent.hpp"

namespace nadir::ground {

// Row 2 of R is the world's z axis, the ground's normal, in camera coordinates.
DisparityPlane expectedGround(const StereoCtx& context, double columnShift) {
  const IntCalib& c = context.intCalib;
  const float* down = context.extCalib.R + 6;
  const double scale = double{c.baseline} / context.orientation.height;
  DisparityPlane plane{scale * down[0], scale * down[1], 0};
  plane.atOrigin =
      scale * c.focalLength * down[2] - plane.perColumn * c.principalX - plane.perRow * c.principalY - columnShift;
  return plane;
}

DisparityPlane mirrored(const DisparityPlane& plane, uint32_t width) {
  return {-plane.perColumn, plane.perRow, plane.at(width - 1.0, 0)};
}

Mount mountOf(const DisparityPlane& plane, const StereoCtx& context, double columnShift) {
  const IntCalib& c = context.intCalib;
  const double x = plane.perColumn / c.baseline, y = plane.perRow / c.baseline;
  const double z = (plane.at(c.principalX, c.principalY) + columnShift) / (double{c.focalLength} * c.baseline);
  const double inverse = std::sqrt(x * x + y * y + z * z);
  const double sine = -y / inverse;
  return {1 / inverse, directionDeg(sine, std::sqrt(aboveZero(1 - sine * sine))), directionDeg(x, z)};
}

PlaneEquations PlaneEquations::without(const PlaneEquations& part) const {
  PlaneEquations rest;
  rest.n_ = n_ - part.n_;
  rest.x_ = x_ - part.x_;
  rest.y_ = y_ - part.y_;
  rest.xx_ = xx_ - part.xx_;
  rest.xy_ = xy_ - part.xy_;
  rest.yy_ = yy_ - part.yy_;
  rest.d_ = d_ - part.d_;
  rest.xd_ = xd_ - part.xd_;
  rest.yd_ = yd_ - part.yd_;
  return rest;
}

// The adjugate over the determinant, for the unknowns per column, per row and at the origin.
bool PlaneEquations::invert(double (&inverse)[9]) const {
  const double a = yy_ * n_ - y_ * y_, b = y_ * x_ - xy_ * n_, c = xy_ * y_ - yy_ * x_;
  const double whole = xx_ * a + xy_ * b + x_ * c;
  if (!(whole > 1e-9 * n_ * n_ * n_)) return false;
  const double adjugate[9] = {
      a, b, c, b, xx_ * n_ - x_ * x_, xy_ * x_ - xx_ * y_, c, xy_ * x_ - xx_ * y_, xx_ * yy_ - xy_ * xy_};
  for (int i = 0; i < 9; ++i) inverse[i] = adjugate[i] / whole;
  return true;
}

bool PlaneEquations::solve(DisparityPlane& plane) const {
  double m[9];
  if (!invert(m)) return false;
  plane = {m[0] * xd_ + m[1] * yd_ + m[2] * d_, m[3] * xd_ + m[4] * yd_ + m[5] * d_,
           m[6] * xd_ + m[7] * yd_ + m[8] * d_};
  return true;
}

}  // namespace nadir::ground
