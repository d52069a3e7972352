// An elevation map in colours, seen from above, with its axes in mm.
#pragma once

#include "elevation_map.hpp"
#include "files.hpp"

namespace nadir::tool {

// Row 0 is on top: world x grows to the right, world y downwards. Small maps are drawn with several pixels a cell.
Bytes encodeMapPlot(const Grid<uint16_t>& heights, const MapFrame& frame);

}  // namespace nadir::tool
