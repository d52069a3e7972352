// The program's way onto the road: what the user names becomes a setup and pairs.
#pragma once

#include <optional>
#include <string>

#include "ground/road.hpp"

namespace nadir::tool {

using lab::Grid;

// What the user may say. A file with an empty name is not given.
struct RoadOptions {
  std::string camera, mask, disparity, areas;
  double disparityScale = 0;  // of the given disparities; 0: what their file says
  ground::View view = ground::Settings().view;
  bool noPostprocessing = false;
  uint32_t uniqueness = ground::Settings().uniqueness;
  ground::CellRule cells;
  double fillHolesM2 = ground::Settings().fillHolesM2;
  bool noRegions = false;
  std::optional<double> minHeightMm, maxStepMm, minAreaM2;  // else the usual ones for the map's cells
};

// What is the same for every pair of a camera: read and checked once.
struct Road {
  RoadOptions options;
  ground::Setup setup;
};

Road roadOf(const RoadOptions& options);

// Throws where the pictures are not of the camera's size.
void checkSize(const ground::Pair& pair, const Road& road);

// What comes of the pair in the two files. Several threads may work on one road at a time.
ground::Result resultOf(const Road& road, const std::string& left, const std::string& right,
                        const ground::StageRunner& run = ground::runStage);

}  // namespace nadir::tool
