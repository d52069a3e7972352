// What nadir ground tells about its work.
#pragma once

#include <optional>
#include <string>

#include "camera_file.hpp"
#include "elevation_map.hpp"
#include "matching.hpp"
#include "plane_fit.hpp"

namespace nadir::tool {

struct GroundResult {
  Camera camera;
  View view;
  Grid<uint16_t> matched;  // what the matcher found; without pixels where disparities were given
  Grid<float> disparity;   // pixels, NaN for none
  std::vector<WorldPoint> points;
  MapFrame frame;
  CellRule rule;
  ElevationMap map;
  std::optional<GroundPlane> plane;
};

const char* nameOf(View view);

std::string groundTable(const GroundResult& result, const StageTimes& times);
std::string groundJson(const GroundResult& result);

}  // namespace nadir::tool
