// Small holes of an elevation map filled from around them.
#pragma once

#include "ground/records/arena.hpp"
#include "ground/records/shape.hpp"

namespace nadir::ground {

struct HoleMemory {
  uint16_t *labels, *filled;  // of each cell: its patch, and the map without holes
  uint32_t* sizes;            // of each label
  void *growing, *pulling;
  size_t growingBytes, pullingBytes;
};

// Nothing where no hole is to be filled.
HoleMemory holeMemory(Arena& arena, const Shape& shape);

// Fills patches of unseen cells (0), connected along sides and corners, that are no larger than the shape's `fillable`.
// Larger ones stay: what nobody saw is not guessed. Returns how many cells were filled.
uint32_t fillHoles(const Shape& shape, const HoleMemory& memory, uint16_t* heights);

}  // namespace nadir::ground
