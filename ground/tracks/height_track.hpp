// The height of what stands in an area, followed from frame to frame.
#pragma once

#include <nadir/ground.h>
#include <nadir/numeric.h>

namespace nadir::ground {

// The difference of two times may be more than an int64_t holds. The later one must not be smaller.
inline double secondsBetween(int64_t earlierNs, int64_t laterNs) {
  return static_cast<double>(static_cast<uint64_t>(laterNs) - static_cast<uint64_t>(earlierNs)) / 1e9;
}

// All numbers that a track goes on with.
struct HeightTrack {
  uint32_t active;
  int64_t measuredAtNs;
  float height, rate, covariance[4];
};

// False for what a filter comes to when its uncertainties' squares leave single precision, at either end.
bool isFinite(const HeightTrack& track);

// A frame in which the height was measured, or nothing stood there (not-a-number). A track whose numbers are not finite
// any more knows nothing, and begins anew.
//
// sinceLast  seconds since the frame before.
void stepTrack(HeightTrack& track, const NadirTrackSettings& settings, int64_t timeNs, double sinceLast,
               double measuredMm);

NadirTrack described(const HeightTrack& track);

}  // namespace nadir::ground
