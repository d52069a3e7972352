// A synthetic rectified pair: what the benchmarks work on.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace nadir::bench {

// A textured ground with boxes on it, seen from above at a slant: disparities grow from the top of the picture to the
// bottom, and jump at the boxes' edges.
struct Scene {
  uint32_t width, height;
  std::vector<uint16_t> first, reference;  // 12-bit intensities with noise; some pixels have no data and are 0
  std::vector<uint8_t> mask;               // covers the lower corners
};

Scene makeScene(uint32_t width, uint32_t height);

inline std::string sizeText(const Scene& scene) {
  return std::to_string(scene.width) + "x" + std::to_string(scene.height);
}

}  // namespace nadir::bench
