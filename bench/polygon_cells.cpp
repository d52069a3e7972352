// The table of cells marked by spans against cells asked one by one.
#include "bench/polygon_cells.hpp"

#include <cstdio>
#include <cstdlib>
#include <vector>

#include "bench/star.hpp"
#include "bench/timing.hpp"
#include "geometry/polygon_cells.hpp"

namespace nadir::bench {
namespace {

constexpr int32_t cell = 20;  // mm

void markOneByOne(const Polygon_s32& poly, const CellGrid& grid, uint8_t* cells) {
  for (uint32_t r = 0; r < grid.height; ++r) {
    for (uint32_t c = 0; c < grid.width; ++c) {
      const Point_s32 centre = {grid.x0 + static_cast<int32_t>(c) * grid.stepX,
                                grid.y0 + static_cast<int32_t>(r) * grid.stepY};
      *cells++ = static_cast<uint8_t>(IP_Polygon_IsInside(&poly, &centre));
    }
  }
}

void print(uint32_t side, uint32_t corners) {
  Star star(corners, static_cast<int32_t>(side) * cell);
  const CellGrid grid = {cell / 2, cell / 2, side, side, cell, cell};
  std::vector<uint8_t> bySpans(side * side), oneByOne(side * side);
  const std::vector<double> seconds = fastest({[&] { markCellsInside(*star.record(), grid, bySpans.data()); },
                                               [&] { markOneByOne(*star.record(), grid, oneByOne.data()); }});
  if (bySpans != oneByOne) std::abort();
  std::printf("| %ux%u | %u | %.1f |\n", side, side, corners, seconds[1] / seconds[0]);
}

}  // namespace

void printPolygonCells() {
  std::printf("| map, cells | corners | ratio |\n|---|--:|--:|\n");
  for (uint32_t side : {64u, 256u, 1024u}) {
    for (uint32_t corners : {4u, 40u}) print(side, corners);
  }
}

}  // namespace nadir::bench
