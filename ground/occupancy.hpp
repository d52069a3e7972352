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
  size_t seen = 0;  // of the area's cells, those with a height
  CellSet covered;  // its cells that belong to any region
  std::vector<SharedRegion> regions;
};

Occupancy occupancyOf(const PlacedArea& area, const Grid<uint16_t>& heights, const Regions& regions);

}  // namespace nadir::ground
