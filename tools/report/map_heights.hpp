// How high the cells of an elevation map are.
#pragma once

#include "lab/grid.hpp"

namespace nadir::tool {

using lab::Grid;

// Counts and heights of the cells with a height; all 0 where there is none.
struct MapHeights {
  size_t known = 0;
  uint16_t lowest = 0, median = 0, highest = 0;  // mm
};

MapHeights heightsOf(const Grid<uint16_t>& heights);

}  // namespace nadir::tool
