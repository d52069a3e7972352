// Means of squares of pixels, and how they lie about planes.
#include "ground/trust/blocks.hpp"

#include <cmath>
#include <cstring>

#include "ground/trust/arc_tangent.hpp"

namespace nadir::ground {

namespace {

constexpr double storedPerPixel = 16;

// Where fewer pixels have a disparity the block lies at an edge or where the matcher guesses.
constexpr uint32_t leastKnown = blockSide * blockSide * 3 / 4;

// More than this, and a block holds two surfaces, or wrong matches. The steepest ground in use, a camera at 1 m that
// looks ahead, changes by 0.2 pixel from row to row: 8 rows of it have a deviation of 0.46.
constexpr double largestDeviation = 0.75;  // pixels

// Of the pixels of a block that have a disparity, 1/16 pixel.
struct Sums {
  uint32_t known, sum, squares;
};

// Stored disparities are below 4096: 64 squares of them fit 32 bits.
void addRow(const uint16_t* row, Sums& s) {
  for (uint32_t i = 0; i < blockSide; ++i) {
    const uint32_t d = row[i];
    s.known += d != 0;
    s.sum += d;
    s.squares += d * d;
  }
}

bool isOneSurface(const Sums& s) {
  if (s.known < leastKnown) return false;
  const double mean = double{1} * s.sum / s.known;
  const double variance = double{1} * s.squares / s.known - mean * mean;
  return variance <= largestDeviation * largestDeviation * storedPerPixel * storedPerPixel;
}

// The blocks of stored disparities that `rowAt` leads to.
template <class RowAt>
size_t listed(RowAt rowAt, uint32_t width, uint32_t height, Block* blocks) {
  size_t count = 0;
  constexpr float middle = (blockSide - 1) / 2.0f;
  for (uint32_t top = 0; top + blockSide <= height; top += blockSide)
    for (uint32_t left = 0; left + blockSide <= width; left += blockSide) {
      Sums s{0, 0, 0};
      for (uint32_t y = 0; y < blockSide; ++y) addRow(rowAt(top + y, left), s);
      if (!isOneSurface(s)) continue;
      const double mean = s.sum / (storedPerPixel * s.known);
      blocks[count++] = {static_cast<float>(left) + middle, static_cast<float>(top) + middle, static_cast<float>(mean)};
    }
  return count;
}

// Eight given disparities as stored ones; what those cannot hold has none.
struct StoredRow {
  const uint8_t* data;
  size_t stride;
  uint16_t row[blockSide];

  const uint16_t* operator()(uint32_t y, uint32_t left) {
    float given[blockSide];
    std::memcpy(given, data + y * stride + left * sizeof(float), sizeof given);
    for (uint32_t i = 0; i < blockSide; ++i) {
      const float stored = given[i] * static_cast<float>(storedPerPixel) + 0.5f;
      row[i] = stored >= 1 && stored < 4096 ? static_cast<uint16_t>(stored) : uint16_t{0};
    }
    return row;
  }
};

}  // namespace

size_t listBlocks(const uint16_t* disparity, uint32_t width, uint32_t height, Block* blocks) {
  const auto rowAt = [&](uint32_t y, uint32_t left) { return disparity + size_t{y} * width + left; };
  return listed(rowAt, width, height, blocks);
}

size_t listBlocks(const float* disparity, size_t stride, uint32_t width, uint32_t height, Block* blocks) {
  return listed(StoredRow{reinterpret_cast<const uint8_t*>(disparity), stride, {}}, width, height, blocks);
}

Agreement agreementOf(const DisparityPlane& plane, const Block* blocks, size_t count) {
  Agreement a;
  double sum = 0, squares = 0;
  for (size_t i = 0; i < count; ++i) {
    const double expected = plane.at(blocks[i].x, blocks[i].y);
    if (!(expected > 0)) continue;
    const double off = (blocks[i].disparity - expected) / blockTolerance(expected);
    ++a.blocks;
    a.below += off < -2;
    if (std::fabs(off) > 1) continue;
    ++a.on;
    sum += off;
    squares += off * off;
  }
  if (a.on == 0) return a;
  const double n = static_cast<double>(a.on);
  a.scatter = std::sqrt(aboveZero(squares / n - sum / n * (sum / n)));
  return a;
}

bool refine(DisparityPlane& plane, const Block* blocks, size_t count, double factor) {
  PlaneEquations equations;
  for (size_t i = 0; i < count; ++i) {
    const double expected = plane.at(blocks[i].x, blocks[i].y);
    if (expected > 0 && std::fabs(blocks[i].disparity - expected) <= factor * blockTolerance(expected))
      equations.add(blocks[i].x, blocks[i].y, blocks[i].disparity);
  }
  return equations.solve(plane);
}

}  // namespace nadir::ground
