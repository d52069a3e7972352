// Areas of interest: polygons that the user watches, and where they lie on the elevation map.
#pragma once

#include <nadir/nadir.h>

#include <string>
#include <vector>

#include "ground/map.hpp"
#include "lab/grid.hpp"

namespace nadir::ground {

using lab::Grid;

// How far from the origin an area may reach, pixels or mm. The library tells sides by products of two differences in 32
// bits: 46000 * 46000 still fits.
constexpr int32_t areaReach = 23000;

enum class AreaUnit { pixels, groundMm };

struct Area {
  std::string name;
  AreaUnit unit;
  std::vector<Point_s32> corners;  // pixels of the measured view, 0 = centre of the first; or world x and y, mm
  std::string origin;              // FILE:LINE, for what is found wrong later
};

// A polygon as the library takes it, the vertices behind their count.
class PolygonRecord {
 public:
  explicit PolygonRecord(const std::vector<Point_s32>& corners);
  const Polygon_s32* get() const;

 private:
  std::vector<int32_t> words_;
};

// An area on a map.
struct PlacedArea {
  Area area;
  std::vector<Point_s32> ground;  // its corners on the ground, world x and y in mm
  Grid<uint8_t> cells;            // of the map: 1 where the centre lies inside or on the edge
  size_t count = 0;               // of the ones
  bool wholeOnMap = true;         // no corner lies outside the map
};

// Areas of pixels are projected onto the ground, along the rays through the pixels' centres.
//
// context  of the measured view.
// Throws Error where a corner does not show the ground, or where not a single cell lies inside.
PlacedArea placedArea(const Area& area, const MapFrame& frame, const StereoCtx& context);

}  // namespace nadir::ground
