// Where an area of interest lies on the elevation map.
#pragma once

#include "ground/map.hpp"
#include "lab/grid.hpp"
#include "tools/camera/areas.hpp"

namespace nadir::tool {

using lab::Grid;

struct AreaCells {
  std::vector<Point_s32> ground;  // its corners on the ground, world x and y in mm
  Grid<uint8_t> cells;            // of the map: 1 where the centre lies inside or on the edge
  size_t count = 0;               // of the ones
  bool wholeOnMap = true;         // no corner lies outside the map
};

// Areas of pixels are projected onto the ground, along the rays through the pixels' centres.
//
// context  of the measured view.
// Throws Error where a corner does not show the ground, or where not a single cell lies inside.
AreaCells cellsOf(const Area& area, const MapFrame& frame, const StereoCtx& context);

}  // namespace nadir::tool
