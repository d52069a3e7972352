// What stands in an area of interest.
#pragma once

#include "ground/areas.hpp"
#include "ground/regions.hpp"

namespace nadir::ground {

struct SharedRegion {
  uint16_t label;
  CellSet set;  // of the region's cells that lie in the area
};

struct Occupancy {
  Area area;
  AreaCells place;
  size_t seen = 0;  // of its cells, those with a height
  CellSet covered;  // its cells that belong to any region
  std::vector<SharedRegion> regions;
};

Occupancy occupancyOf(const Area& area, const AreaCells& place, const Grid<uint16_t>& heights, const Regions& regions);

}  // namespace nadir::ground
