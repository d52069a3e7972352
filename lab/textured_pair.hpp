// Synthetic rectified pairs for benchmarks, instruction counts and tests of matching.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "lab/random.hpp"

namespace nadir::lab {

struct TexturedPair {
  uint32_t width, height;
  std::vector<uint16_t> first, reference;  // intensities with noise; some pixels have no data and are 0
  std::vector<uint8_t> mask;               // empty, or it covers the lower corners
};

// A textured ground with boxes on it, seen from above at a slant in 12 bits: disparities grow from the top of the
// picture to the bottom, and jump at the boxes' edges.
TexturedPair texturedPair(uint32_t width, uint32_t height);

// Every row has a texture of its own: pixel x of the reference picture shows what pixel x + shiftOf(y) of the first one
// shows. All shifts lie below `reach`.
TexturedPair shiftedRows(uint32_t width, uint32_t height, uint32_t reach,
                         const std::function<uint32_t(uint32_t y)>& shiftOf, Random& random);

inline std::string sizeText(const TexturedPair& pair) {
  return std::to_string(pair.width) + "x" + std::to_string(pair.height);
}

}  // namespace nadir::lab
