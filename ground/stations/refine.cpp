// The neighbourhood is found in two steps: along each row, and then down the columns over the rows' sums. So it follows
// a surface around an edge, and a pixel takes twice seven comparisons instead of forty-nine.
#include "ground/stations/refine.hpp"

#include <cstring>

namespace nadir::ground {

namespace {

// A quarter of the neighbourhood: less is an island, or a seam between surfaces.
constexpr uint16_t leastClose = nearbySide * nearbySide / 4;

// Rows go round: row y and row y + nearbySide share a place.
struct Rows {
  const RefineMemory& m;
  uint32_t width;

  size_t place(int64_t y) const { return static_cast<size_t>((y + nearbySide) % nearbySide); }
  uint16_t* disparity(int64_t y) const { return m.disparity + place(y) * (width + 2 * nearby); }
  uint16_t* more(int64_t y) const { return m.more + place(y) * width; }
  uint16_t* count(int64_t y) const { return m.count + place(y) * width; }

  // What lies beside the picture is not known.
  void take(int64_t y, const uint16_t* row) const {
    uint16_t* to = disparity(y);
    std::memset(to, 0, (width + 2 * nearby) * sizeof *to);
    if (row) std::memcpy(to + nearby, row, width * sizeof *to);
    roadKernels().close(to, width, more(y), count(y));
  }

  NearRows around(int64_t y) const {
    NearRows rows = {};
    for (int k = 0; k < nearbySide; ++k) {
      rows.disparity[k] = disparity(y + k - nearby) + nearby;
      rows.more[k] = more(y + k - nearby);
      rows.count[k] = count(y + k - nearby);
    }
    return rows;
  }
};

}  // namespace

RefineMemory refineMemory(Arena& arena, const Shape& shape) {
  const uint64_t width = shape.width;
  return {arena.take<uint16_t>(nearbySide * (width + 2 * nearby)), arena.take<uint16_t>(nearbySide * width),
          arena.take<uint16_t>(nearbySide * width)};
}

void refine(const RefineMemory& memory, const Shape& shape, uint16_t* disparity) {
  const Rows rows{memory, shape.width};
  const int64_t height = shape.height;
  const auto row = [&](int64_t y) { return disparity + static_cast<size_t>(y) * shape.width; };
  for (int64_t y = -nearby; y < height + nearby; ++y) {
    rows.take(y, y >= 0 && y < height ? row(y) : nullptr);
    const int64_t done = y - nearby;
    if (done >= 0) roadKernels().mean(rows.around(done), shape.width, leastClose, row(done));
  }
}

}  // namespace nadir::ground
