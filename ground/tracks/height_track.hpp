// The height of what stands in an area, followed from frame to frame.
#pragma once

#include <nadir/ground.h>
#include <nadir/numeric.h>

namespace nadir::ground {

// The difference of two times may be more than an int64_t holds. The later one must not be smaller.
inline double secondsBetween(int64_t earlierNs, int64_t laterNs) {
  return static_cast<double>(static_cast<uint64_t>(laterNs) - static_cast<uint64_t>(earlierNs)) / 1e9;
}

// What a filter knows.
struct Motion {
  float height, rate, covariance[4];
};

// All numbers that a track goes on with. What it cannot believe may be true nevertheless, and is followed beside it:
// `doubted` for as many frames in which it was measured; all 0 where nothing is doubted.
struct HeightTrack {
  uint32_t active;
  int64_t measuredAtNs;
  Motion motion;
  uint32_t doubts;
  Motion doubted;
};

// What a frame says of an area, mm; not-a-number for nothing.
struct MeasuredHeight {
  double piece;   // the highest cell of what is at least half a region: a track needs no more to go on
  double region;  // the same, no higher than the regions are; without one no track begins
};

// How far a measured height is off, mm, standard deviations.
struct Precision {
  double noise;    // in another direction in every frame
  double lasting;  // and for as long as the same disparity is met, which no filter evens out
};

// False for numbers that no track comes to: an inactive one knows nothing.
bool isPossible(const HeightTrack& track);

// One frame. A track whose numbers are not finite any more knows nothing, and begins anew.
//
// sinceLast  seconds since the frame before.
void stepTrack(HeightTrack& track, const NadirTrackSettings& settings, const Precision& precision, int64_t timeNs,
               double sinceLast, const MeasuredHeight& measured);

NadirTrack described(const HeightTrack& track, double lasting);

}  // namespace nadir::ground
