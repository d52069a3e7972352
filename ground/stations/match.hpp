// Matching: from a frame's pictures to the disparities of the measured view.
#pragma once

#include <nadir/ground.h>

#include "ground/records/arena.hpp"
#include "ground/records/shape.hpp"
#include "ground/records/stages.hpp"
#include "ground/stations/compare.hpp"
#include "ground/stations/passes.hpp"
#include "ground/stations/refine.hpp"

namespace nadir::ground {

// All memory of matching; the codes are free again when it is done, 8 bytes a pixel together.
struct MatchMemory {
  PassMemory pass;
  uint16_t* cleaned;             // disparities on the matcher's grid
  uint16_t *turned, *otherSide;  // those of passes that check them; null where there is none
  uint16_t* agreed;              // likewise, rows of what they agree on
  CompareMemory compare;         // likewise
  RefineMemory refine;           // likewise
  uint32_t halvings;             // how often the pictures are halved
  uint16_t* nearer[2];           // disparities of the view in pictures that were halved once and twice
};

MatchMemory matchMemory(Arena& arena, const Shape& shape, const NadirSettings& settings);

// disparity  receives the view's, width * height of them.
void match(const NadirFrame& frame, const NadirSettings& settings, const Shape& shape, const MatchMemory& memory,
           const Stages& stages, uint16_t* disparity, NadirPixelCounts& counts);

}  // namespace nadir::ground
