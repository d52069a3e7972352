// A matcher's costs tell whole pixels, and a curve through three of them guesses the rest: it is drawn to whole pixels.
// Intensities that are held against each other again are not (B. Lucas, T. Kanade, "An iterative image registration
// technique with an application to stereo vision", IJCAI 1981). Slopes are the reference's alone: their noise has
// nothing to do with that of the differences.
#include "ground/stations/compare.hpp"

#include <cstring>

#include "ground/kernels/kernels.hpp"

namespace nadir::ground {

namespace {

constexpr size_t kinds = 3;  // of numbers that a ComparedRow holds

// Row y and row y + comparedRows share a place; y is -1 at least.
struct Rows {
  float* rows;
  size_t width;  // with what lies beside a row

  float* row(size_t kind, int64_t y) const {
    return rows + (kind * comparedRows + static_cast<size_t>((y + comparedRows) % comparedRows)) * width;
  }

  ComparedRow inside(int64_t y) const {
    return {row(0, y) + comparedBeside, row(1, y) + comparedBeside, row(2, y) + comparedBeside};
  }

  void clear(int64_t y) const {
    for (size_t kind = 0; kind < kinds; ++kind) std::memset(row(kind, y), 0, width * sizeof *rows);
  }

  ComparedRows around(int64_t y) const {
    ComparedRows out = {};
    for (int k = 0; k < comparedRows; ++k) {
      out.known[k] = row(0, y + k - comparedRows / 2);
      out.slope[k] = row(1, y + k - comparedRows / 2);
      out.difference[k] = row(2, y + k - comparedRows / 2);
    }
    return out;
  }
};

uint64_t widthWithBeside(const Shape& shape) { return uint64_t{shape.width} + 2 * comparedBeside; }

}  // namespace

CompareMemory compareMemory(Arena& arena, const Shape& shape) {
  return {arena.take<float>(kinds * comparedRows * widthWithBeside(shape))};
}

// What lies beside the picture is not known.
void compare(const CompareMemory& memory, const Shape& shape, const uint16_t* first, const uint16_t* reference,
             uint16_t* disparity) {
  const Rows rows{memory.rows, static_cast<size_t>(widthWithBeside(shape))};
  const int64_t height = shape.height;
  const auto start = [&](int64_t y) { return static_cast<size_t>(y) * shape.width; };
  for (int64_t y = -1; y <= height; ++y) {
    rows.clear(y);
    if (y >= 0 && y < height)
      roadKernels().compare(first + start(y), reference + start(y), disparity + start(y), shape.width, rows.inside(y));
    if (y > 0) roadKernels().move(rows.around(y - 1), shape.width, disparity + start(y - 1));
  }
}

}  // namespace nadir::ground
