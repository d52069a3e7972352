// Heights above the ground on the map's cells.
#pragma once

#include <nadir/nadir.h>

#include <optional>

#include "ground/points.hpp"
#include "ground/records/camera.hpp"
#include "ground/records/map_place.hpp"
#include "lab/grid.hpp"

namespace nadir::ground {

using lab::Grid;

// The map as the library's functions take it: its cells, and where they lie.
struct MapFrame {
  ElevMapParams cells;
  Point_f32 corner;  // world x and y of cell (0, 0)'s outer corner, mm: the smallest of the map
};

MapFrame mapFrame(const StereoCtx& context, const Camera& camera);

MapPlace placeOf(const MapFrame& frame);

// The cell, counted row by row, that a point lies over; nothing beside the map.
std::optional<size_t> cellUnder(const Point3_f32& world, const MapFrame& frame);

// A seen cell stores 1 to 65535 mm, because 0 means unseen: what lies lower, the bare ground's noise included, is 1.
constexpr float lowestStoredMm = 1;
constexpr float highestStoredMm = 65535;

// The height rounded into the range that a seen cell can have.
uint16_t storedHeight(double mm);

struct CellRule {
  double percentile = 90;  // of a cell's points in order of height: more than 0, to 100 (the highest)
  uint32_t minPoints = 1;  // cells with fewer stay unseen
};

struct ElevationMap {
  Grid<uint16_t> heights;   // mm, 0 for unseen
  size_t pointsInside = 0;  // of the points, those over a cell
  size_t filled = 0;        // of the cells with a height, those that no point gave it
};

// groundZ  world z of the ground: the camera's height.
ElevationMap elevationMap(const std::vector<WorldPoint>& points, const MapFrame& frame, float groundZ,
                          const CellRule& rule);

}  // namespace nadir::ground
