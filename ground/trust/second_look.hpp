// A part of the pictures is matched once more, otherwise, to learn why so little could be placed.
#pragma once

#include <cstddef>
#include <cstdint>

namespace nadir::ground {

// What the matcher was given, on its own grid, rows without a gap, and memory that is free again.
struct LookMemory {
  uint32_t *firstCodes, *referenceCodes;  // census codes of both pictures; their frame of two pixels is written
  const uint16_t *first, *reference;
  uint32_t width, height;
  void* walk;  // of nadir_sgm_full for this width
  size_t walkBytes;
  bool isRangeLonger;  // what is nearer than a pass can find was looked for in smaller pictures
  uint16_t* strip;     // receives disparities, lookRows(width, height) * width of them
};

// What a look asks of a peak; the usual number.
constexpr uint32_t lookUniqueness = 48;

// How many rows a look takes: enough to tell, few enough to be cheap. 0 for pictures that are too small for one.
uint32_t lookRows(uint32_t width, uint32_t height);

// Shares of the strip's pixels.
struct SecondLook {
  double empty;         // that have no disparity after the clean-up
  double asGiven;       // that have a disparity, at the usual uniqueness
  double exchanged;     // that have one with the pictures exchanged
  double unmoved;       // that lie in the same column of both pictures, to a quarter of a pixel
  double nearerInHole;  // that have none as given, and a disparity beyond the range when one picture is moved towards
                        // the other; 0 where the range was longer
};

// Looks at the rows of the picture with the fewest disparities; it must be large enough. `cleaned` are those, on the
// matcher's grid.
SecondLook secondLook(const LookMemory& memory, const uint16_t* cleaned);

}  // namespace nadir::ground
