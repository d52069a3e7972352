// An elevation map in colours, seen from above, with its axes in mm.
#pragma once

#include <utility>

#include "tools/base/map_place.hpp"
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

// Heights in mm, NaN for unseen. Where the place is not known, there are no axes.
//
// range         the heights at the two ends of the colours, mm.
// leastSide     of the map's larger side, pixels: small maps are drawn with several pixels a cell.
MapPlot drawMap(const Grid<float>& heights, const MapPlace& place, std::pair<double, double> range, uint32_t leastSide);

// The same of cells that have their colours already, and no scale.
MapPlot drawColouredMap(const Grid<Rgb>& cells, const MapPlace& place, uint32_t leastSide);

Bytes encodeMapPlot(const Grid<float>& heights, const MapPlace& place, std::pair<double, double> range);

}  // namespace nadir::tool
