// A pair is matched at one size with one picture moved, to see how much of it fits.
#pragma once

#include <cstddef>
#include <cstdint>

#include "ground/records/arena.hpp"

namespace nadir::ground {

// Two pictures, rows without a gap, and the memory of a look at them. The second one is the reference.
struct LookPair {
  uint32_t width, height;
  const uint16_t *first, *reference;
  uint32_t *firstCodes, *referenceCodes;  // with a row before and behind: a moved pointer reads them
  uint16_t* disparity;                    // on the reference's grid, 1/16 pixel, 0 for none
  uint8_t* mask;                          // nothing is masked
  void *walk, *cleanUp;
  size_t walkBytes, cleanUpBytes;

  size_t pixels() const { return size_t{width} * height; }
};

LookPair lookPair(Arena& arena, uint32_t width, uint32_t height);

// Census codes of both pictures.
void takeCodes(const LookPair& pair);

// Matches row y of the reference with row y + rows of the first picture, whose columns are moved to the right by
// `columns`: disparities are larger by as many. Those that would come from beyond the first picture's edges go.
void look(const LookPair& pair, int32_t rows, int32_t columns);

// The share of the pixels that have a disparity.
double matchedShare(const LookPair& pair);

}  // namespace nadir::ground
