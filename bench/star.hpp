// A star-shaped polygon.
#pragma once

#include <nadir/geometry.h>

#include <cstdint>
#include <vector>

namespace nadir::bench {

// A polygon record with room for its vertices.
class Star {
 public:
  // Its corners lie on two rings about the middle of a map of this side, in turn on the outer and the inner one.
  Star(uint32_t corners, int32_t side) : memory_(1 + 2 * corners) {
    record()->count = corners;
    for (uint32_t k = 0; k < corners; ++k) record()->vertices[k] = corner(k, corners, side);
  }
  Polygon_s32* record() { return reinterpret_cast<Polygon_s32*>(memory_.data()); }

 private:
  // The corners lie on diamonds, which need no trigonometry.
  static Point_s32 corner(uint32_t k, uint32_t corners, int32_t side) {
    const int32_t reach = side * (k % 2 ? 9 : 4) / 20;
    const int32_t along = static_cast<int32_t>(4 * k * 1000 / corners);  // thousandths of a quarter
    const int32_t part = along % 1000, rest = 1000 - part;
    const int32_t x[] = {rest, -part, -rest, part}, y[] = {part, rest, -part, -rest};
    return {side / 2 + reach * x[along / 1000] / 1000, side / 2 + reach * y[along / 1000] / 1000};
  }

  std::vector<int32_t> memory_;
};

}  // namespace nadir::bench
