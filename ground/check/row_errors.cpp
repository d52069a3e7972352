// Census codes are compared along the disparities that were found, one and two rows up and down.
#include "ground/check/row_errors.hpp"

#include <nadir/stereo.h>

namespace nadir::ground {

namespace {

constexpr int reach = 2, tries = 2 * reach + 1;

// Half of a block must be matched, and its disparities lie within two pixels of each other or nearly so: what is wrong
// scatters. A row is distinct where a row further off costs one bit of 24 more at least, in the mean.
constexpr uint32_t leastKnown = errorSide * errorSide / 2;
constexpr double largestVariance = 1;

uint32_t bitsIn(uint32_t word) {
  word -= word >> 1 & 0x55555555u;
  word = (word & 0x33333333u) + (word >> 2 & 0x33333333u);
  return ((word + (word >> 4)) & 0x0F0F0F0Fu) * 0x01010101u >> 24;
}

struct Block {
  uint32_t cost[tries] = {}, known = 0;
  double sum = 0, squared = 0;  // of disparities, pixels

  double mean() const { return sum / known; }
  bool isOneSurface() const { return known >= leastKnown && squared / known - mean() * mean() <= largestVariance; }

  // own: a code; others: of the first picture, from the row that is `reach` rows up, `width` codes a row.
  void add(uint32_t own, const uint32_t* others, size_t width, double disparity) {
    if (own == CENSUS_INVALID) return;
    for (int i = 0; i < tries; ++i)
      if (others[static_cast<size_t>(i) * width] == CENSUS_INVALID) return;
    for (int i = 0; i < tries; ++i) cost[i] += bitsIn(own ^ others[static_cast<size_t>(i) * width]);
    sum += disparity;
    squared += disparity * disparity;
    ++known;
  }

  // Costs rise alike on both sides of the least one. False where they do not tell.
  bool takeRows(double& rows) const {
    int best = 0;
    for (int i = 1; i < tries; ++i)
      if (cost[i] < cost[best]) best = i;
    if (best == 0 || best == tries - 1) return false;
    const double above = cost[best - 1], below = cost[best + 1], least = cost[best];
    const double rise = (above > below ? above : below) - least;
    if (rise < known) return false;
    rows = best - reach + (above - below) / (2 * rise);
    return true;
  }
};

Block blockAt(const LookPair& pair, int32_t columns, uint32_t left, uint32_t top) {
  Block block;
  const size_t width = pair.width;
  for (size_t y = top; y < top + errorSide; ++y)
    for (size_t x = left; x < left + errorSide; ++x) {
      const uint32_t disparity = pair.disparity[y * width + x];
      if (disparity == 0) continue;
      const size_t column = x + ((disparity + 8) >> 4) - static_cast<size_t>(columns);  // wraps beyond the left edge
      if (column >= width) continue;
      block.add(pair.referenceCodes[y * width + x], pair.firstCodes + (y - reach) * width + column, width,
                disparity / 16.0 - columns);
    }
  return block;
}

uint16_t between(const uint16_t* column, size_t width, uint32_t height, double row) {
  if (!(row >= 0 && row <= height - 1)) return 0;
  const auto above = static_cast<uint32_t>(row);
  const double f = row - above;
  const uint32_t upper = column[above * width], lower = column[(f > 0 ? above + 1 : above) * width];
  return upper == 0 || lower == 0 ? uint16_t{0} : static_cast<uint16_t>((1 - f) * upper + f * lower + 0.5);
}

}  // namespace

void moveRows(const uint16_t* picture, uint32_t width, uint32_t height, const RowField& field, uint16_t* moved) {
  const PlaceOf place(width, height);
  for (uint32_t y = 0; y < height; ++y)
    for (uint32_t x = 0; x < width; ++x)
      moved[size_t{y} * width + x] = between(picture + x, width, height, y - field.at(place(x, y)));
}

size_t listErrors(const LookPair& pair, int32_t columns, RowError* errors) {
  const PlaceOf place(pair.width, pair.height);
  constexpr uint32_t frame = 4;  // two rows without codes, and two rows up and down
  constexpr double middle = (errorSide - 1) / 2.0;
  size_t count = 0;
  for (uint32_t top = frame; top + errorSide + frame <= pair.height; top += errorSide)
    for (uint32_t left = 0; left + errorSide <= pair.width; left += errorSide) {
      const Block block = blockAt(pair, columns, left, top);
      double rows = 0;
      if (block.isOneSurface() && block.takeRows(rows))
        errors[count++] = {place(left + middle, top + middle), rows, block.mean()};
    }
  return count;
}

}  // namespace nadir::ground
