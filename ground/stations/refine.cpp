// The neighbourhood is found in two steps: along each row, and then down the columns over the rows' sums. So it follows
// a surface around an edge, and a pixel takes twice seven comparisons instead of forty-nine.
#include "ground/stations/refine.hpp"

#include "ground/stations/rows_around.hpp"

namespace nadir::ground {

namespace {

// A quarter of the neighbourhood: less is an island, or a seam between surfaces.
constexpr uint16_t leastClose = nearbySide * nearbySide / 4;

struct Rows {
  const RefineMemory& m;
  RowsAround disparity;

  uint16_t* more(int64_t y) const { return m.more + RowsAround::place(y) * disparity.width; }
  uint16_t* count(int64_t y) const { return m.count + RowsAround::place(y) * disparity.width; }

  void take(int64_t y, const uint16_t* row) const {
    disparity.take(y, row);
    roadKernels().close(disparity.padded(y), disparity.width, more(y), count(y));
  }

  NearRows around(int64_t y) const {
    NearRows rows = {};
    for (int k = 0; k < nearbySide; ++k) {
      rows.disparity[k] = disparity.row(y + k - nearby);
      rows.more[k] = more(y + k - nearby);
      rows.count[k] = count(y + k - nearby);
    }
    return rows;
  }
};

}  // namespace

RefineMemory refineMemory(Arena& arena, const Shape& shape) {
  const uint64_t width = shape.width;
  return {rowsAroundMemory(arena, width), arena.take<uint16_t>(nearbySide * width),
          arena.take<uint16_t>(nearbySide * width)};
}

void refine(const RefineMemory& memory, const Shape& shape, uint16_t* disparity) {
  const Rows rows{memory, {memory.disparity, shape.width}};
  const int64_t height = shape.height;
  const auto row = [&](int64_t y) { return disparity + static_cast<size_t>(y) * shape.width; };
  for (int64_t y = -nearby; y < height + nearby; ++y) {
    rows.take(y, y >= 0 && y < height ? row(y) : nullptr);
    const int64_t done = y - nearby;
    if (done >= 0) roadKernels().mean(rows.around(done), shape.width, leastClose, row(done));
  }
}

}  // namespace nadir::ground
