// An elevation map in colours, seen from above, with its axes in mm.
#pragma once

#include <nadir/camera.h>

#include "tools/draw/canvas.hpp"
#include "tools/files/files.hpp"

namespace nadir::tool {

// Row 0 is on top: world x grows to the right, world y downwards.
struct MapPlot {
  Grid<Rgb> picture;
  uint32_t left, top;  // where the first cell begins, pixels
  uint32_t cellPixels;
  Rect place;  // of all cells, without axes and scale

  Spot spot(double column, double row) const { return {left + column * cellPixels, top + row * cellPixels}; }
};

// context       of the map: its cells and its corner.
// smallestSide  of the map's larger side, pixels: small maps are drawn with several pixels a cell.
MapPlot drawMap(const Grid<uint16_t>& heights, const StereoCtx& context, uint32_t smallestSide);

Bytes encodeMapPlot(const Grid<uint16_t>& heights, const StereoCtx& context);

}  // namespace nadir::tool
