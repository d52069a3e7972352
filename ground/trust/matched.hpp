// How much of the pictures the matcher could place, and what lies at the end of its range.
#pragma once

#include <cstdint>

#include "ground/trust/disparity_plane.hpp"

namespace nadir::ground {

// What the matcher was given and made of it, all on its own grid, rows without a gap.
struct MatchedPictures {
  const uint16_t *raw, *cleaned;  // disparities before and after the clean-up, 1/16 pixel
  const uint16_t* reference;      // the measured view, 0 for no data
  const uint8_t* mask;            // not 0 discards
  uint32_t width, height;
  uint16_t rangeEnd;  // the disparities that are called the range's last ones begin here
};

// The matcher finds disparities up to 61.5 pixels, in pictures that were halved twice as many for each time. What is
// nearer leaves no value, and around it a rim of the last ones.
constexpr uint16_t rangeEndOf(uint32_t halvings) { return static_cast<uint16_t>(58 * 16 << halvings); }

struct MatchedShares {
  uint32_t pixels = 0;   // of the picture
  uint32_t able = 0;     // that can have a disparity: inside the matcher's border, with data, not masked
  uint32_t matched = 0;  // of them, those with a value before the clean-up
  uint32_t value = 0;    // and after it
  uint32_t atEnd = 0;    // of all, those with rangeEnd or more after the clean-up
  uint32_t cutOff = 0;   // of them, those with a pixel without a value among their eight neighbours
};

// ground  null, or the expected ground on the matcher's grid: where it has less than the least disparity that is found,
//         at the horizon and above it, a pixel need not have one.
MatchedShares matchedShares(const MatchedPictures& pictures, const DisparityPlane* ground);

}  // namespace nadir::ground
