// The road of nadir ground: from a pair to heights above the ground and to what stands there.
#pragma once

#include <optional>
#include <string>

#include "ground/map.hpp"
#include "ground/match.hpp"
#include "ground/occupancy.hpp"
#include "ground/plane.hpp"
#include "ground/regions.hpp"

namespace nadir::tool {

using lab::Grid;

struct GroundOptions {
  std::string camera, mask, disparity, areas;
  ground::View view = ground::View::left;
  bool noPostprocessing = false;
  uint32_t uniqueness = ground::MatchOptions().uniqueness;
  double disparityScale = 0;  // of the given disparities; 0: what their file says
  ground::CellRule rule;
  double fillHolesM2 = 0;  // patches of unseen cells up to this area are filled
  bool noRegions = false;
  std::optional<double> minHeightMm, maxStepMm, minAreaM2;  // else the usual ones for the map's cells
};

// What stands on the map, and in the areas of interest.
struct Findings {
  ground::RegionRule rule;
  ground::Regions regions;
  std::vector<ground::Occupancy> areas;
};

struct GroundResult {
  ground::Camera camera;
  ground::View view;
  Grid<uint16_t> picture;  // the view's
  Grid<uint16_t> matched;  // what the matcher found; without pixels where disparities were given
  Grid<float> disparity;   // pixels, NaN for none
  StereoCtx context;
  std::vector<ground::WorldPoint> points;
  ground::MapFrame frame;
  ground::CellRule rule;
  ground::ElevationMap map;
  std::optional<ground::GroundPlane> plane;
  std::optional<Findings> findings;
};

// What is the same for every pair of a camera: read and checked once.
struct GroundSetup {
  GroundOptions options;
  ground::Camera camera;
  StereoCtx context;
  ground::MapFrame frame;
  std::vector<ground::Area> areas;
  std::vector<ground::AreaCells> places;  // of the areas
};

GroundSetup groundSetup(const GroundOptions& options);

// The one asked for, or the usual one.
ground::RegionRule regionRule(const GroundSetup& setup);

// Throws where the pictures are not of the camera's size.
void checkSize(const ground::Pair& pair, const GroundSetup& setup);

// The pair of the two files. Several threads may work at a time.
GroundResult ground(const GroundSetup& setup, const std::string& left, const std::string& right, StageTimes& times);

}  // namespace nadir::tool
