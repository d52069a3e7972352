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
  PixelCounts pixels;
  Grid<uint16_t> disparity;
  std::vector<WorldPoint> points;
  MapFrame frame;
  CellRule rule;
  ElevationMap map;
  std::optional<GroundPlane> plane;
};

std::string groundTable(const GroundResult& result, const StageTimes& times);
std::string groundJson(const GroundResult& result);

}  // namespace nadir::tool
