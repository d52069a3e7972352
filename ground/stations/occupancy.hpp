// What stands in the areas of interest.
#pragma once

#include "ground/stations/areas.hpp"
#include "ground/stations/regions.hpp"

namespace nadir::ground {

// leastOfRegion  the cells that make up the least area of a region, which need not be whole.
// memory         of the regions, which are found by then.
// shares         room for the shape's areas times its regions.
//
// Returns how many shares there are.
uint32_t fillOccupancies(const PlacedArea* areas, const uint16_t* heights, const uint16_t* labels, uint32_t regions,
                         double leastOfRegion, const Shape& shape, const RegionMemory& memory,
                         NadirOccupancy* occupancies, NadirShare* shares);

}  // namespace nadir::ground
