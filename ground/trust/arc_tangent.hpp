// Angles without libm, whose last bits differ between machines.
#pragma once

namespace nadir::ground {

constexpr double degree = 0.017453292519943295;  // radians

// What rounding has made less than nothing is nothing.
inline double aboveZero(double value) { return value > 0 ? value : 0; }

// The direction of (x, y) in degrees, from -180 to 180; 0 for (0, 0). Off by less than 1e-13 degrees.
double directionDeg(double y, double x);

}  // namespace nadir::ground
