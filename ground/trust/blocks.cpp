// Means of squares of pixels, and how they lie about planes.
#include "ground/trust/blocks.hpp"

#include <cmath>

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

// A stretch of a band of blocks: of each of its columns the same sums, which the compiler makes vectors of. Stored
// disparities are below 4096: 8 of them fit 16 bits, and 64 squares of them fit 32.
struct Stretch {
  static constexpr uint32_t columns = 32 * blockSide;
  uint16_t known[columns] = {}, sum[columns] = {};
  uint32_t squares[columns] = {};

  void addRow(const uint16_t* row, uint32_t n) {
    for (uint32_t i = 0; i < n; ++i) {
      const uint16_t d = row[i], has = d != 0;
      known[i] = static_cast<uint16_t>(known[i] + has);
      sum[i] = static_cast<uint16_t>(sum[i] + d);
      squares[i] += uint32_t{d} * d;
    }
  }

  Sums ofBlock(uint32_t first) const {
    Sums s{0, 0, 0};
    for (uint32_t i = first; i < first + blockSide; ++i) {
      s.known += known[i];
      s.sum += sum[i];
      s.squares += squares[i];
    }
    return s;
  }
};

bool isOneSurface(const Sums& s) {
  if (s.known < leastKnown) return false;
  const double mean = double{1} * s.sum / s.known;
  const double variance = double{1} * s.squares / s.known - mean * mean;
  return variance <= largestDeviation * largestDeviation * storedPerPixel * storedPerPixel;
}

// The blocks of disparities whose columns `addRow` adds to a stretch: of row y, n of them from column `left` on.
template <class AddRow>
size_t listed(AddRow addRow, uint32_t width, uint32_t height, Block* blocks) {
  size_t count = 0;
  constexpr float middle = (blockSide - 1) / 2.0f;
  const uint32_t whole = width / blockSide * blockSide;
  for (uint32_t top = 0; top + blockSide <= height; top += blockSide)
    for (uint32_t left = 0; left < whole; left += Stretch::columns) {
      const uint32_t n = whole - left < Stretch::columns ? whole - left : Stretch::columns;
      Stretch stretch;
      for (uint32_t y = 0; y < blockSide; ++y) addRow(stretch, top + y, left, n);
      for (uint32_t x = 0; x < n; x += blockSide) {
        const Sums s = stretch.ofBlock(x);
        if (!isOneSurface(s)) continue;
        const double mean = s.sum / (storedPerPixel * s.known);
        blocks[count++] = {static_cast<float>(left + x) + middle, static_cast<float>(top) + middle,
                           static_cast<float>(mean)};
      }
    }
  return count;
}

// Given disparities as stored ones; what those cannot hold has none.
void takeStored(const float* given, uint32_t n, uint16_t* stored) {
  for (uint32_t i = 0; i < n; ++i) {
    const float rounded = given[i] * static_cast<float>(storedPerPixel) + 0.5f;
    const bool holds = rounded >= 1 && rounded < 4096;
    stored[i] = static_cast<uint16_t>(static_cast<int32_t>(holds ? rounded : 0.0f));
  }
}

}  // namespace

size_t listBlocks(const uint16_t* disparity, uint32_t width, uint32_t height, Block* blocks) {
  const auto addRow = [=](Stretch& stretch, uint32_t y, uint32_t left, uint32_t n) {
    stretch.addRow(disparity + size_t{y} * width + left, n);
  };
  return listed(addRow, width, height, blocks);
}

size_t listBlocks(const float* disparity, size_t stride, uint32_t width, uint32_t height, Block* blocks) {
  const auto addRow = [=](Stretch& stretch, uint32_t y, uint32_t left, uint32_t n) {
    const auto* row = reinterpret_cast<const float*>(reinterpret_cast<const uint8_t*>(disparity) + y * stride);
    uint16_t stored[Stretch::columns];
    takeStored(row + left, n, stored);
    stretch.addRow(stored, n);
  };
  return listed(addRow, width, height, blocks);
}

Agreement agreementOf(const DisparityPlane& plane, const Block* blocks, size_t count) {
  Agreement a;
  const BlockTolerance tolerance(plane);
  double sum = 0, squares = 0;
  for (size_t i = 0; i < count; ++i) {
    const double expected = plane.at(blocks[i].x, blocks[i].y);
    if (!(expected > 0)) continue;
    const double off = (blocks[i].disparity - expected) / tolerance.at(expected);
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
  const BlockTolerance tolerance(plane);
  for (size_t i = 0; i < count; ++i) {
    const double expected = plane.at(blocks[i].x, blocks[i].y);
    if (expected > 0 && std::fabs(blocks[i].disparity - expected) <= factor * tolerance.at(expected))
      equations.add(blocks[i].x, blocks[i].y, blocks[i].disparity);
  }
  return equations.solve(plane);
}

}  // namespace nadir::ground
