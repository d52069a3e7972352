// The arc tangent by its power series, after the angle was halved twice.
#include "ground/trust/arc_tangent.hpp"

#include <cmath>

namespace nadir::ground {

namespace {

// tan(a / 2) = tan(a) / (1 + sqrt(1 + tan(a)^2))
double halved(double tangent) { return tangent / (1 + std::sqrt(1 + tangent * tangent)); }

// The tangent is 0 to 1: halved twice it is at most tan(45 / 4 degrees) = 0.1989, whose 25th power is below 1e-17.
double smallAngle(double tangent) {
  const double t = halved(halved(tangent)), squared = t * t;
  double sum = 0;
  for (int power = 25; power >= 1; power -= 2) sum = 1.0 / power - squared * sum;
  return 4 * t * sum;
}

}  // namespace

double directionDeg(double y, double x) {
  const double across = std::fabs(x), up = std::fabs(y);
  if (!(across + up > 0)) return 0;
  double angle = up <= across ? smallAngle(up / across) / degree : 90 - smallAngle(across / up) / degree;
  if (x < 0) angle = 180 - angle;
  return y < 0 ? -angle : angle;
}

}  // namespace nadir::ground
