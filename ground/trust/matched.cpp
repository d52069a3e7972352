// Counts pixels row by row.
#include "ground/trust/matched.hpp"

#include <cstddef>

namespace nadir::ground {

namespace {

// The matcher cannot work in these outermost columns and rows.
constexpr uint32_t borderLeft = 2, borderRight = 4, borderRow = 2;

constexpr double leastFound = 2;  // pixels

struct Span {
  uint32_t from, to;
};

bool isFound(const DisparityPlane& ground, uint32_t x, uint32_t y) { return ground.at(x, y) >= leastFound; }

// The columns of a row that are below the horizon. The plane is linear, so they are a stretch that begins or ends where
// the row does.
Span belowHorizon(const DisparityPlane* ground, uint32_t y, Span row) {
  if (!ground) return row;
  while (row.from < row.to && !isFound(*ground, row.from, y)) ++row.from;
  while (row.from < row.to && !isFound(*ground, row.to - 1, y)) --row.to;
  return row;
}

// A row has at most 65535 pixels: counters as wide as pixels make whole vectors of the sums.
void countRow(const MatchedPictures& p, size_t at, uint32_t n, MatchedShares& shares) {
  const uint16_t *raw = p.raw + at, *cleaned = p.cleaned + at, *reference = p.reference + at;
  const uint8_t* mask = p.mask + at;
  uint16_t able = 0, matched = 0, value = 0;
  for (uint32_t i = 0; i < n; ++i) {
    const uint16_t isAble = (reference[i] != 0) & (mask[i] == 0), has = cleaned[i] != 0, had = raw[i] != 0;
    able = static_cast<uint16_t>(able + isAble);
    matched = static_cast<uint16_t>(matched + (isAble & had));
    value = static_cast<uint16_t>(value + (isAble & has));
  }
  shares.able += able;
  shares.matched += matched;
  shares.value += value;
}

bool hasEmptyNeighbour(const uint16_t* pixel, size_t width) {
  for (const uint16_t* row = pixel - width; row <= pixel + width; row += width)
    if (row[-1] == 0 || row[0] == 0 || row[1] == 0) return true;
  return false;
}

uint32_t countAtEnd(const uint16_t* row, uint32_t n, uint16_t rangeEnd) {
  uint16_t count = 0;
  for (uint32_t i = 0; i < n; ++i) count = static_cast<uint16_t>(count + (row[i] >= rangeEnd));
  return count;
}

void countEnd(const uint16_t* row, uint32_t width, uint16_t rangeEnd, MatchedShares& shares) {
  const uint32_t n = width - borderLeft - borderRight, atEnd = countAtEnd(row + borderLeft, n, rangeEnd);
  if (atEnd == 0) return;
  shares.atEnd += atEnd;
  for (uint32_t x = borderLeft; x < width - borderRight; ++x)
    if (row[x] >= rangeEnd) shares.cutOff += hasEmptyNeighbour(row + x, width);
}

}  // namespace

MatchedShares matchedShares(const MatchedPictures& p, const DisparityPlane* ground) {
  MatchedShares shares;
  shares.pixels = p.width * p.height;
  if (p.width <= borderLeft + borderRight) return shares;
  for (uint32_t y = borderRow; y + borderRow < p.height; ++y) {
    const size_t row = size_t{y} * p.width;
    const Span able = belowHorizon(ground, y, {borderLeft, p.width - borderRight});
    countRow(p, row + able.from, able.to - able.from, shares);
    countEnd(p.cleaned + row, p.width, p.rangeEnd, shares);
  }
  return shares;
}

}  // namespace nadir::ground
