// Rows are smoothed one by one, and the five around each are added up.
#include "ground/floor/smoothed.hpp"

#include <algorithm>
#include <cstring>

namespace nadir::ground {

namespace {

constexpr uint32_t reach = 2, rowsAround = 2 * reach + 1;
constexpr float weights[rowsAround] = {1, 4, 6, 4, 1};
constexpr float unknown = -1e9f;  // it outweighs all that pixels can add up to

float pixelAt(const uint8_t* row, uint32_t bits, uint32_t x) {
  if (bits == 8) return row[x];
  uint16_t pixel = 0;
  std::memcpy(&pixel, row + size_t{2} * x, sizeof pixel);
  return pixel == 0 ? unknown : pixel;
}

void smoothRow(const uint8_t* row, uint32_t bits, uint32_t width, float* out) {
  std::fill_n(out, width, unknown);
  for (uint32_t x = reach; x + reach < width; ++x) {
    float sum = 0;
    for (uint32_t k = 0; k < rowsAround; ++k) sum += weights[k] * pixelAt(row, bits, x + k - reach);
    out[x] = sum;
  }
}

}  // namespace

Smoothed smoothed(Arena& arena, uint32_t width, uint32_t height) {
  float* pixels = arena.take<float>(uint64_t{width} * height);
  return {pixels, arena.take<float>(uint64_t{rowsAround} * width), width, height};
}

void smooth(const void* picture, size_t stride, uint32_t bits, const Smoothed& into) {
  const auto* from = static_cast<const uint8_t*>(picture);
  const uint32_t width = into.width;
  std::fill_n(into.pixels, size_t{width} * into.height, unknown);
  for (uint32_t y = 0; y < into.height; ++y) {
    smoothRow(from + y * stride, bits, width, into.rows + size_t{width} * (y % rowsAround));
    if (y < 2 * reach) continue;
    float* out = into.pixels + size_t{width} * (y - reach);
    for (uint32_t x = 0; x < width; ++x) {
      float sum = 0;
      for (uint32_t k = 0; k < rowsAround; ++k)
        sum += weights[k] * into.rows[size_t{width} * ((y + 1 + k) % rowsAround) + x];
      out[x] = sum / 256;
    }
  }
}

}  // namespace nadir::ground
