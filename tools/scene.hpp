// A rendered stereo pair whose disparities are known: planes in disparity space, each with its own texture. Everything
// is computed in integers, so a seed gives the same pixels on every machine.
#pragma once

#include "grid.hpp"

namespace nadir::tool {

struct SceneOptions {
  uint32_t width = 640;
  uint32_t height = 480;
  uint32_t seed = 1;
  uint32_t noise = 8;  // largest sensor noise, intensity levels
};

constexpr uint32_t truthScale = 256;

struct Scene {
  Grid<uint16_t> left, right;  // 12 bits, never 0
  Grid<uint16_t> truth;        // of the left picture, pixels * truthScale; 0 where the right picture does not show it
};

Scene renderScene(const SceneOptions& options);

}  // namespace nadir::tool
