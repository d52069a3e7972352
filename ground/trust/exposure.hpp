// How a picture is exposed.
#pragma once

#include <cstdint>

namespace nadir::ground {

// Pixels darker than an eighth of the matcher's 12 bits count as dark, so do those without data.
constexpr uint16_t darkLevel = 511;

struct Exposure {
  uint32_t pixels = 0;  // that were looked at: those of every fourth row
  uint32_t dark = 0;
  uint32_t clipped = 0;  // at the end of the sensor's range, 1/64 of which may be lost to compression and noise

  double darkShare() const { return pixels ? double{1} * dark / pixels : 1; }
  double clippedShare() const { return pixels ? double{1} * clipped / pixels : 0; }
};

// picture  as the matcher takes it, rows without a gap; mirrored or not makes no difference.
Exposure exposureOf(const uint16_t* picture, uint32_t width, uint32_t height);

}  // namespace nadir::ground
