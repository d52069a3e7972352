// Heights above the ground on the map's cells.
#pragma once

#include <nadir/ground.h>

#include "ground/kernels/kernels.hpp"
#include "ground/records/arena.hpp"
#include "ground/records/shape.hpp"

namespace nadir::ground {

// The points of a picture, sorted by the cell that they lie over.
struct SortMemory {
  uint32_t* cells;             // of each pixel
  uint16_t *heights, *sorted;  // mm: of each pixel; and those of one cell after the other
  uint32_t* begins;            // of each cell's heights among the sorted ones, and of the pixels over no cell
  float* disparity;            // of one row
  float* rayX;                 // of each column
};

// `cells` and `heights` may lie in memory that is free then.
SortMemory sortMemory(Arena& arena, const Shape& shape, uint32_t* cells, uint16_t* heights);

struct MapCounts {
  uint32_t points, inside, seen;
};

// What places the points of a camera's pictures over its map; `rayX` is filled.
Placing placingOf(const StereoCtx& context, const Shape& shape, float* rayX);

// One row of the measured view's disparities, pixels at the camera's column shift, 0 for none.
class DisparityRows {
 public:
  DisparityRows(const NadirFrame& frame, const uint16_t* matched, const Shape& shape, float shift)
      : frame_(frame), matched_(matched), width_(shape.width), shift_(shift) {}
  void read(uint32_t row, float* disparity) const;

 private:
  const NadirFrame& frame_;
  const uint16_t* matched_;
  uint32_t width_;
  float shift_;
};

// The cells that the points of row y lie over, and their heights above the ground: see the kernel `place`.
void placeRow(const StereoCtx& context, const Placing& placing, const Shape& shape, uint32_t y, const float* disparity,
              uint32_t* cells, uint16_t* heights);

// heights, counts  receive one number for each cell.
MapCounts mapHeights(const DisparityRows& rows, const StereoCtx& context, const Placing& placing,
                     const NadirSettings& settings, const Shape& shape, const SortMemory& memory, uint16_t* heights,
                     uint32_t* counts);

}  // namespace nadir::ground
