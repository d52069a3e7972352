// Opinions are held against each other pixel by pixel.
#include "ground/stations/opinions.hpp"

#include "ground/stations/rows_around.hpp"

namespace nadir::ground {

namespace {

bool isConfirmed(uint16_t own, uint16_t other) {
  return other != 0 && (own > other ? own - other : other - own) <= agreement;
}

// Column x with disparity d lies in column x + d of the first picture, to the nearest pixel.
void keepConfirmedRow(const uint16_t* otherSide, uint32_t width, uint16_t* own) {
  for (uint32_t x = 0; x < width; ++x) {
    const uint32_t column = x + (own[x] + 8u) / 16;
    if (column >= width || !isConfirmed(own[x], otherSide[width - 1 - column])) own[x] = 0;
  }
}

AgreedRows agreedAround(const RowsAround& agreed, int64_t y) {
  AgreedRows rows = {};
  for (int k = 0; k < nearbySide; ++k) rows.row[k] = agreed.padded(y + k - nearby);
  return rows;
}

}  // namespace

void keepAgreed(const uint16_t* other, const Shape& shape, uint16_t* own) {
  roadKernels().agree(other, own, shape.pixels());
}

// A row that is agreed on is kept nowhere but among those around: its pixels' own opinions are needed until it is
// judged.
void keepSupported(const uint16_t* other, uint32_t least, const Shape& shape, uint16_t* agreed, uint16_t* own) {
  const RowsAround rows{agreed, shape.width};
  const int64_t height = shape.height;
  const auto start = [&](int64_t y) { return static_cast<size_t>(y) * shape.width; };
  for (int64_t y = -nearby; y < height + nearby; ++y) {
    const bool isInside = y >= 0 && y < height;
    rows.take(y, isInside ? own + start(y) : nullptr);
    if (isInside) roadKernels().agree(other + start(y), rows.row(y), shape.width);
    const int64_t done = y - nearby;
    if (done >= 0)
      roadKernels().support(agreedAround(rows, done), other + start(done), shape.width, static_cast<uint16_t>(least),
                            own + start(done));
  }
}

void keepConfirmed(const uint16_t* otherSide, const Shape& shape, uint16_t* own) {
  for (uint32_t y = 0; y < shape.height; ++y)
    keepConfirmedRow(otherSide + size_t{y} * shape.width, shape.width, own + size_t{y} * shape.width);
}

}  // namespace nadir::ground
