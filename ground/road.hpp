// The road from a pair of pictures to heights above the ground and to what stands there.
#pragma once

#include <optional>
#include <vector>

#include "ground/areas.hpp"
#include "ground/map.hpp"
#include "ground/occupancy.hpp"
#include "ground/plane.hpp"
#include "ground/points.hpp"
#include "ground/records/camera.hpp"
#include "ground/records/settings.hpp"
#include "ground/records/stages.hpp"
#include "ground/regions.hpp"

namespace nadir::ground {

// What is the same for every pair of a camera, worked out once.
struct Setup {
  Camera camera;
  Settings settings;
  StereoCtx context;
  MapFrame frame;
  std::vector<PlacedArea> areas;
};

// Throws Error where an area cannot lie on the map.
Setup setupOf(const Camera& camera, const Settings& settings, const std::vector<Area>& areas);

struct Input {
  Pair pair;              // of the camera's size
  Grid<uint8_t> mask;     // on the view's grid, not 0 discards; without pixels: nothing is discarded
  Grid<float> disparity;  // of the view in pixels, NaN for none; without pixels: the pair is matched
};

// What stands on the map, and in each of the setup's areas.
struct Findings {
  Regions regions;
  std::vector<Occupancy> areas;
};

struct Result {
  Grid<uint16_t> picture;  // the view's
  Grid<uint16_t> matched;  // what the matcher found; without pixels where disparities were given
  Grid<float> disparity;   // pixels, NaN for none
  std::vector<WorldPoint> points;
  ElevationMap map;
  std::optional<GroundPlane> plane;
  std::optional<Findings> findings;
};

// Several threads may work with one setup at a time.
Result resultOf(const Setup& setup, Input input, const StageRunner& run = runStage);

}  // namespace nadir::ground
