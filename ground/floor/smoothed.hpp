// Pictures as they are laid over each other: without the finest detail, which is noise and cannot be read between
// pixels.
#pragma once

#include <nadir/ground.h>

#include "ground/records/arena.hpp"

namespace nadir::ground {

// Rows without a gap. Below 0 where a pixel or one around it has no data.
struct Smoothed {
  float* pixels;
  float* rows;  // room for five rows
  uint32_t width, height;

  const float* row(uint32_t y) const { return pixels + size_t{width} * y; }
};

Smoothed smoothed(Arena& arena, uint32_t width, uint32_t height);

// The weights are 1 4 6 4 1 in both directions. Two pixels at each edge have no data.
void smooth(const void* picture, size_t stride, uint32_t bits, const Smoothed& into);

}  // namespace nadir::ground
