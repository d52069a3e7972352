// Blocks of 2 x 2 pixels become one, and disparities of one those of four.
#include "ground/stations/halves.hpp"

#include <cstring>

#include "ground/kernels/kernels.hpp"

namespace nadir::ground {

namespace {

constexpr uint32_t leastWidth = 64, leastHeight = 5;

// The matcher's last disparities, 1/16 pixel. Those beyond `end` are for pictures of half the size; between both a
// pixel can be found in either, and noise decides in which.
constexpr uint32_t end = 60 * 16, nearEnd = 56 * 16;

void takeNearerPixel(uint32_t coarse, uint16_t& own, uint16_t& raw) {
  const uint32_t twice = 2 * coarse;
  if (twice > end || (own == 0 && twice > nearEnd)) own = raw = static_cast<uint16_t>(twice);
}

}  // namespace

uint32_t halvings(uint32_t range, const Shape& shape) {
  const auto isLarge = [&](uint32_t times) {
    return (shape.width >> times) >= leastWidth && (shape.height >> times) >= leastHeight;
  };
  uint32_t times = 0;
  while ((uint32_t{NADIR_RANGE_61} << times) < range && isLarge(times + 1)) ++times;
  return times;
}

Shape halvedShape(Shape shape, uint32_t times) {
  shape.width >>= times;
  shape.height >>= times;
  return shape;
}

void halve(uint16_t* pixels, const Shape& shape, uint16_t* row) {
  const size_t width = shape.width, half = width / 2;
  for (size_t y = 0; y < shape.height / 2; ++y) {
    const uint16_t* top = pixels + 2 * y * width;
    roadKernels().halve(top, top + width, row, half);
    std::memcpy(pixels + y * half, row, half * sizeof *row);
  }
}

void halve(uint8_t* mask, const Shape& shape) {
  const size_t width = shape.width, half = width / 2;
  for (size_t y = 0; y < shape.height / 2; ++y)
    for (size_t x = 0; x < half; ++x) {
      const uint8_t *top = mask + 2 * y * width + 2 * x, *bottom = top + width;
      mask[y * half + x] = top[0] != 0 && top[1] != 0 && bottom[0] != 0 && bottom[1] != 0;
    }
}

void takeNearer(const uint16_t* coarse, const Shape& shape, bool mirrored, uint16_t* own, uint16_t* raw) {
  const size_t width = shape.width, half = width / 2;
  for (size_t y = 0; y < shape.height / 2 * 2; ++y)
    for (size_t x = 0; x < half * 2; ++x) {
      const size_t at = y * width + (mirrored ? width - 1 - x : x);
      takeNearerPixel(coarse[y / 2 * half + x / 2], own[at], raw[at]);
    }
}

}  // namespace nadir::ground
