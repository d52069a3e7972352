// Disparities of small squares of the picture: fewer and steadier than those of pixels.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "ground/trust/disparity_plane.hpp"

namespace nadir::ground {

constexpr uint32_t blockSide = 8;  // pixels

// Where a block's centre lies, pixels, and the mean of its disparities, pixels.
struct Block {
  float x, y, disparity;
};

inline size_t largestBlockCount(uint32_t width, uint32_t height) {
  return size_t{width / blockSide} * (height / blockSide);
}

// Lists the blocks of which three quarters have a disparity and which hold one surface, row by row. Returns how many.
//
// disparity  1/16 pixel, 0 for none, rows without a gap
// blocks     room for largestBlockCount
size_t listBlocks(const uint16_t* disparity, uint32_t width, uint32_t height, Block* blocks);

// The same of disparities in pixels, not-a-number for none; row y begins y * stride bytes behind the first.
size_t listBlocks(const float* disparity, size_t stride, uint32_t width, uint32_t height, Block* blocks);

// How far blocks may be off a plane, pixels. Ground is not flat: 1.5 percent of the camera's height are 45 mm at 3 m.
// And the matcher's paths run down the picture: a block has the disparity of two and a half to four rows further up,
// 0.08 pixel off where the ground changes by 0.02 from row to row, 0.24 where it changes by 0.08; from column to column
// nothing of the kind is seen.
class BlockTolerance {
 public:
  explicit BlockTolerance(const DisparityPlane& plane) {
    const double pull = pulledRows * (plane.perRow < 0 ? -plane.perRow : plane.perRow);
    least_ = std::max(leastOfAll, pull);
  }

  // Where the plane has so much.
  template <class Real>
  Real at(Real disparity) const {
    const Real share = Real(0.015) * disparity, least = static_cast<Real>(least_);
    return std::max(least, share);
  }

 private:
  static constexpr double pulledRows = 4, leastOfAll = 0.15;
  double least_;
};

// How blocks lie about a plane.
struct Agreement {
  size_t blocks = 0;   // where the plane has a disparity above 0
  size_t on = 0;       // within the tolerance
  size_t below = 0;    // further from the camera by more than two tolerances
  double scatter = 0;  // standard deviation of the differences of those on it, tolerances: 0.58 where they are even

  // What speaks for this plane as the ground: nothing lies below ground.
  double score() const { return static_cast<double>(on) - static_cast<double>(below); }
};

Agreement agreementOf(const DisparityPlane& plane, const Block* blocks, size_t count);

// The plane by least squares through the blocks within `factor` tolerances of a plane, which it replaces. False, with
// the plane untouched, where these do not span one.
bool refine(DisparityPlane& plane, const Block* blocks, size_t count, double factor);

}  // namespace nadir::ground
