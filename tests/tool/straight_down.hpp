// Pairs made by hand, for a camera that looks straight down, so that every height is a short formula.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "tests/tool/tool.hpp"

namespace nadir::test {

namespace straight_down {

inline constexpr uint32_t width = 120, height = 80;
inline constexpr double focal = 100, baseline = 200, mount = 1500, principalX = 59.5, principalY = 39.5;

inline std::string camera(const std::string& more = "",
                          const std::string& map = "width_cells = 40\nheight_cells = 30\ncell_mm = 50\n") {
  return "baseline_mm = 200\nfocal_px = 100\nprincipal_x_px = 59.5\nprincipal_y_px = 39.5\nwidth_px = 120\n"
         "height_px = 80\nheight_mm = 1500\ntilt_deg = 0\n" +
         more + "[map]\n" + map;
}

inline uint16_t noise(uint32_t x, uint32_t y) {
  uint32_t v = x * 2654435761u + y * 40503u * 65537u;
  v = (v ^ v >> 15) * 2246822519u;
  v = (v ^ v >> 13) * 3266489917u;
  return static_cast<uint16_t>(100 + (v ^ v >> 16) % 3900);
}

inline Picture drawn(const std::function<uint16_t(uint32_t, uint32_t)>& value) {
  std::vector<uint16_t> samples;
  for (uint32_t y = 0; y < height; ++y)
    for (uint32_t x = 0; x < width; ++x) samples.push_back(value(x, y));
  return picture(width, height, 16, samples);
}

}  // namespace straight_down

class StraightDown : public testing::Test {
 protected:
  StraightDown() {
    writePng(folder.path("left.png"), straight_down::drawn(straight_down::noise));
    writeFile(folder.path("c.toml"), straight_down::camera());
  }

  // A right picture in which everything lies `disparity` columns further left.
  void shiftRight(uint32_t disparity) {
    writePng(folder.path("right.png"), straight_down::drawn([disparity](uint32_t x, uint32_t y) {
               return straight_down::noise(x + disparity, y);
             }));
  }

  // Disparities in 1/16 pixel that ground is to take instead of matching.
  void give(const std::function<uint16_t(uint32_t, uint32_t)>& value) {
    shiftRight(0);
    writePng(folder.path("d.png"), straight_down::drawn(value));
  }

  Outcome ground(std::vector<std::string> options = {}) {
    options.insert(options.begin(), {"ground", "left.png", "right.png", "--camera", "c.toml", "-o", "result"});
    const Outcome outcome = folder.run(options);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    return outcome;
  }

  Picture map() { return readPng(folder.path("result/elevation.png")); }
  double summary(const std::string& name) {
    return numberAfter(readFile(folder.path("result/summary.json")), "\"" + name + "\"");
  }

  Folder folder;
};

}  // namespace nadir::test
