// Which cells of a regular grid have their centres inside a polygon.
#pragma once

#include <nadir/geometry.h>

namespace nadir {

// The centre of cell (c, r) is (x0 + c * stepX, y0 + r * stepY), in arithmetic that wraps around at 32 bits.
struct CellGrid {
  int32_t x0, y0;
  uint32_t width, height;
  int32_t stepX, stepY;  // not negative, at most 65535
};

constexpr uint32_t mostCellPolygonVertices = 100;

// Writes width * height bytes row by row: what IP_Polygon_IsInside says about each cell's centre. The polygon has at
// most mostCellPolygonVertices vertices.
void markCellsInside(const Polygon_s32& poly, const CellGrid& grid, uint8_t* cells);

}  // namespace nadir
