// A plane moved until both pictures fit each other under it.
#pragma once

#include "ground/floor/smoothed.hpp"
#include "ground/trust/disparity_plane.hpp"

namespace nadir::ground {

// A plane and how uncertain it is: the covariance of perColumn, perRow and atOrigin, row by row.
struct UncertainPlane {
  DisparityPlane plane;
  double covariance[9];
};

// Both pictures, and which pixels of the left one count (NADIR_LEVEL_TAKEN).
struct Overlay {
  Smoothed left, right;
  const uint8_t* taken;
};

// False, with the plane untouched, where the pixels that count do not hold it.
bool align(const Overlay& overlay, UncertainPlane& plane);

}  // namespace nadir::ground
