// How far the mount is from what the camera file says, as one frame shows it.
#pragma once

#include "ground/trust/blocks.hpp"

namespace nadir::ground {

// What to add to the camera file's height, tilt and pan. Not-a-number where too little of the ground is seen.
struct Drift {
  double heightMm, tiltDeg, panDeg;
  double heightDeviationMm, tiltDeviationDeg, panDeviationDeg;  // standard deviations
  double share;                                                 // of the blocks, those on the plane
};

// Fits a plane to the blocks near the expected ground. What stands on it is left out.
Drift driftOf(const DisparityPlane& expected, const Block* blocks, size_t count, const StereoCtx& context,
              double columnShift);

// True where the expected ground leaves a doubt, and is to be looked for at every tilt: little of the picture lies on
// it, or something below it, or the plane near it that most blocks lie on has many more of them.
bool asksForSearch(const Drift& drift, const Agreement& expected);

}  // namespace nadir::ground
