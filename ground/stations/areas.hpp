// Areas of interest: polygons that the user watches, and where they lie on the elevation map.
#pragma once

#include "ground/records/arena.hpp"
#include "ground/records/checks.hpp"
#include "ground/records/shape.hpp"

namespace nadir::ground {

constexpr uint32_t mostCorners = 100;

struct PlacedArea {
  int32_t ground[2 * mostCorners];  // its corners, world x and y, mm
  uint32_t corners;
  uint8_t* mask;  // of the map: 1 for each of its cells
  uint32_t cells;
  uint32_t firstCell, endCell;  // they lie among these of the map
  bool wholeOnMap;
  uint16_t leastMm, mostMm;  // where regions are other cells than elsewhere, else 0; see NadirArea

  bool hasRule() const { return leastMm > 0 || mostMm > 0; }
};

// For the shape's number of areas.
PlacedArea* areaMemory(Arena& arena, const Shape& shape);

// Areas of pixels are projected onto the ground, along the rays through the pixels' centres.
//
// context  of the measured view, lowerLeft the map's corner.
Judgement placeArea(const NadirArea& area, const StereoCtx& context, const Shape& shape, PlacedArea& placed);

}  // namespace nadir::ground
