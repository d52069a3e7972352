// The height of what stands in an area, followed from frame to frame.
#pragma once

#include <nadir/ground.h>
#include <nadir/numeric.h>

namespace nadir::ground {

// All numbers that a track goes on with.
struct HeightTrack {
  uint32_t active;
  int64_t measuredAtNs;
  float height, rate, covariance[4];
};

// A frame in which the height was measured, or nothing stood there (not-a-number).
//
// sinceLast  seconds since the frame before.
void stepTrack(HeightTrack& track, const NadirTrackSettings& settings, int64_t timeNs, double sinceLast,
               double measuredMm);

NadirTrack described(const HeightTrack& track);

}  // namespace nadir::ground
