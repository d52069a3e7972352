// The memory of one frame's findings.
#pragma once

#include <nadir/ground.h>

#include "ground/records/arena.hpp"
#include "ground/records/shape.hpp"

struct NadirResult {
  nadir::ground::Shape shape;
  bool holdsFrame;
  uint32_t points, pointsInside, seenCells, filledCells, regionCount, shareCount;
  bool matched;  // else the disparities were given
  NadirPixelCounts pixels;
  uint16_t *disparity, *heights, *labels;
  uint32_t* pointCounts;
  NadirRegion* regions;
  NadirOccupancy* areas;
  NadirShare* shares;
  NadirTrust trust;
  uint32_t warningCount;
  NadirWarning warnings[NADIR_WARNINGS];
};

namespace nadir::ground {

// The result stands at the beginning of its own block; null where the arena has none.
NadirResult* resultIn(Arena& arena, const Shape& shape);

}  // namespace nadir::ground
