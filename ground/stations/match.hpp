// Matching: from a frame's pictures to the disparities of the measured view.
#pragma once

#include <nadir/ground.h>

#include "ground/records/arena.hpp"
#include "ground/records/shape.hpp"
#include "ground/records/stages.hpp"

namespace nadir::ground {

// All memory of matching, and two arrays of 8 bytes a pixel together that are free again when it is done.
struct MatchMemory {
  uint16_t *first, *reference;            // the pictures as the matcher takes them
  uint32_t *firstCodes, *referenceCodes;  // their census codes
  uint8_t* mask;                          // all 0 while nothing is masked
  uint16_t *raw, *cleaned;                // disparities on the matcher's grid
  void *walk, *cleanUp;                   // of nadir_sgm_full and nadir_sgm_postproc
  size_t walkBytes, cleanUpBytes;
};

MatchMemory matchMemory(Arena& arena, const Shape& shape);

// disparity  receives the view's, width * height of them.
void match(const NadirFrame& frame, const NadirSettings& settings, const Shape& shape, const MatchMemory& memory,
           const Stages& stages, uint16_t* disparity, NadirPixelCounts& counts);

}  // namespace nadir::ground
