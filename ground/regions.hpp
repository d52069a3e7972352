// What stands on the ground: neighbouring cells of an elevation map that are high enough and join without a large step.
#pragma once

#include <nadir/nadir.h>

#include <vector>

#include "ground/map.hpp"
#include "lab/grid.hpp"

namespace nadir::ground {

using lab::Grid;

// The library's region growing takes no larger side, cells.
constexpr uint32_t largestRegionMap = 128;

// What makes cells a region. Lengths in mm.
struct RegionRule {
  double minHeightMm;  // cells that are not higher belong to no region
  double maxStepMm;    // neighbours that differ by more are not joined
  double minAreaM2;    // smaller regions are dropped
};

// The values for cells of this size where the user says nothing; docs/ground.md says why.
RegionRule usualRule(double cellMm);

// Cells of a map and how high they are.
struct CellSet {
  size_t cells = 0;
  uint16_t highestMm = 0, medianMm = 0;  // the lower of the two middle ones
};

// heights  of the cells, mm, in any order.
CellSet cellSet(std::vector<uint16_t> heights);

struct Region {
  uint16_t label;  // 1, 2, ... in the order of their first cells, row by row
  CellSet set;
  Rect_s32 box;                 // cells, half-open
  double centreXMm, centreYMm;  // world, the mean of the cells' centres
};

struct Regions {
  Grid<uint16_t> labels;  // of the cells, 0 for none
  std::vector<Region> list;
};

double squareMetres(size_t cells, const ElevMapParams& map);

// heights  at most `largestRegionMap` cells a side.
Regions findRegions(const Grid<uint16_t>& heights, const MapFrame& frame, const RegionRule& rule);

}  // namespace nadir::ground
