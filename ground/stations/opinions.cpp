// Opinions are held against each other pixel by pixel.
#include "ground/stations/opinions.hpp"

#include "ground/kernels/kernels.hpp"

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

}  // namespace

void keepAgreed(const uint16_t* other, const Shape& shape, uint16_t* own) {
  roadKernels().agree(other, own, shape.pixels());
}

void keepConfirmed(const uint16_t* otherSide, const Shape& shape, uint16_t* own) {
  for (uint32_t y = 0; y < shape.height; ++y)
    keepConfirmedRow(otherSide + size_t{y} * shape.width, shape.width, own + size_t{y} * shape.width);
}

}  // namespace nadir::ground
