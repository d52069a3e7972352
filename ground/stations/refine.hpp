// A surface is smoother than its disparities: each becomes the mean of the neighbours that lie close to it.
#pragma once

#include <cstdint>

#include "ground/kernels/kernels.hpp"
#include "ground/records/arena.hpp"
#include "ground/records/shape.hpp"

namespace nadir::ground {

// The rows around the one that is worked on, as they were.
struct RefineMemory {
  uint16_t* disparity;  // nearbySide rows, each with `nearby` columns more on both sides
  uint16_t *more, *count;
};

RefineMemory refineMemory(Arena& arena, const Shape& shape);

// Pixels that too few neighbours are close to become 0: they lie on no surface.
void refine(const RefineMemory& memory, const Shape& shape, uint16_t* disparity);

}  // namespace nadir::ground
