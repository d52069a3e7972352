// Counts the pixels at both ends of the sensor's range.
#include "ground/trust/exposure.hpp"

#include <cstddef>

namespace nadir::ground {

namespace {

// A share needs no more rows: those of the smallest picture hold thousands of pixels.
constexpr uint32_t rowStep = 4;

uint16_t brightest(const uint16_t* row, uint32_t n, uint16_t most) {
  for (uint32_t i = 0; i < n; ++i) most = row[i] > most ? row[i] : most;
  return most;
}

// The sensor's range is told by the brightest pixel: 12 bits, which 8 bits times 16 nearly fill, 14 or 16.
uint16_t fullScale(uint16_t most) { return most <= 4095 ? 4095 : most <= 16383 ? 16383 : 65535; }

// A row has at most 65535 pixels: counters as wide as pixels make whole vectors of the sums.
void countRow(const uint16_t* row, uint32_t n, uint16_t bright, Exposure& exposure) {
  uint16_t dark = 0, clipped = 0;
  for (uint32_t i = 0; i < n; ++i) {
    dark = static_cast<uint16_t>(dark + (row[i] <= darkLevel));
    clipped = static_cast<uint16_t>(clipped + (row[i] >= bright));
  }
  exposure.pixels += n;
  exposure.dark += dark;
  exposure.clipped += clipped;
}

}  // namespace

Exposure exposureOf(const uint16_t* picture, uint32_t width, uint32_t height) {
  uint16_t most = 0;
  for (uint32_t y = 0; y < height; y += rowStep) most = brightest(picture + size_t{y} * width, width, most);
  const uint16_t full = fullScale(most);
  Exposure exposure;
  for (uint32_t y = 0; y < height; y += rowStep)
    countRow(picture + size_t{y} * width, width, static_cast<uint16_t>(full - full / 64), exposure);
  return exposure;
}

}  // namespace nadir::ground
