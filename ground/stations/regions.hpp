// What stands on the ground: neighbouring cells of an elevation map that are high enough and join without a large step.
#pragma once

#include <nadir/segment.h>

#include "ground/records/arena.hpp"
#include "ground/records/shape.hpp"
#include "ground/stations/areas.hpp"
#include "ground/stations/parts.hpp"

namespace nadir::ground {

struct RegionMemory {
  NadirElevationRegions* state;
  PartCell* parts;         // null where nothing is parted
  uint16_t* grown;         // of each cell: the library's label
  uint16_t* kept;          // of each library's label: ours, and later how many of its cells lie in an area
  struct Extent* extents;  // of each library's label
  uint32_t* begins;        // of each of our labels, see cell_groups.hpp
  uint16_t* sorted;        // heights, region by region
};

// A null arena's memory has no state.
RegionMemory regionMemory(Arena& arena, const Shape& shape, const NadirSettings& settings);

// The cells that make up the least area of a region, which need not be whole.
double leastCells(const NadirSettings& settings, const ElevMapParams& map);

// areas    the shape's, whose own rules hold in them.
// labels   receives each cell's region.
// regions  room for the shape's.
//
// Returns how many regions there are.
uint32_t findRegions(const uint16_t* heights, const StereoCtx& context, const NadirSettings& settings,
                     const Shape& shape, const PlacedArea* areas, const RegionMemory& memory, uint16_t* labels,
                     NadirRegion* regions);

}  // namespace nadir::ground
