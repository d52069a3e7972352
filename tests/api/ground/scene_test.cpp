// Rendered scenes, of which the truth is known without the library: the map lies where it should and shows what stands
// there.
#include <algorithm>
#include <map>

#include "lab/scene/ready_scenes.hpp"
#include "lab/scene/render.hpp"
#include "tests/api/ground/roads.hpp"

namespace nadir::test {
namespace {

constexpr scene::MapLayout layout{32, 32, 100};

scene::Rig rigOf(scene::Side reference) {
  scene::CameraSettings settings;
  settings.width = 160;
  settings.height = 120;
  settings.focal = 125;
  settings.baseline = 260;
  settings.reference = reference;
  return scene::makeRig(settings);
}

// The camera of the rig, whose principal columns are equal.
NadirCamera cameraOf(const scene::Rig& rig) {
  NadirCamera camera = smallCamera();
  camera.width_px = rig.left.width;
  camera.height_px = rig.left.height;
  camera.cell_mm = layout.cell;
  camera.map_width_cells = layout.width;
  camera.map_height_cells = layout.height;
  camera.baseline_mm = rig.baseline;
  camera.focal_px = rig.left.focal;
  camera.principal_x_px = rig.left.principalX;
  camera.principal_y_px = rig.left.principalY;
  camera.height_mm = rig.mountingHeight;
  camera.tilt_deg = -30;
  return camera;
}

struct Seen {
  Grid<uint16_t> heights, labels;
  uint32_t regions;
  StereoCtx context;
  scene::MapTruth truth;
};

Seen processedScene(const std::string& name, scene::Side reference) {
  const scene::Rig rig = rigOf(reference);
  const scene::Scene objects = scene::makeScene(name, rig, 1);
  const auto rowDone = [] {};
  const Grid<uint16_t> left = scene::picture(objects, rig, scene::Side::left, {}, rowDone);
  const Grid<uint16_t> right = scene::picture(objects, rig, scene::Side::right, {}, rowDone);
  NadirSettings settings = defaultSettings(cameraOf(rig));
  settings.grid = reference == scene::Side::left ? NADIR_GRID_LEFT : NADIR_GRID_RIGHT;
  settings.max_step_mm = 400;
  settings.min_area_m2 = 0.1;
  const Road road = makeRoad(cameraOf(rig), settings);
  const Result result = makeResult(road);
  const NadirFindings f = processed(road, frameOf(left, right), result);
  return {gridOf<uint16_t>(f.heights), gridOf<uint16_t>(f.labels), f.region_count, contextOf(road),
          scene::mapTruth(objects, rig, layout)};
}

// Rendering takes longer than all else, on an emulator by far: each scene is rendered once.
const Seen& seen(const std::string& name, scene::Side reference) {
  static std::map<std::pair<std::string, scene::Side>, Seen> all;
  const auto key = std::make_pair(name, reference);
  const auto found = all.find(key);
  return found != all.end() ? found->second : all.emplace(key, processedScene(name, reference)).first->second;
}

class Scenes : public ::testing::TestWithParam<scene::Side> {};

TEST_P(Scenes, TheMapLiesWhereTheTruthDoes) {
  const Seen& floor = seen("empty-floor", GetParam());
  EXPECT_NEAR(static_cast<double>(floor.context.lowerLeft.x), floor.truth.cornerX, 0.5);
  EXPECT_NEAR(static_cast<double>(floor.context.lowerLeft.y), floor.truth.cornerY, 0.5);
}

TEST_P(Scenes, AnEmptyFloorIsLow) {
  const Seen& floor = seen("empty-floor", GetParam());
  uint32_t low = 0, all = 0;
  for (const uint16_t height : floor.heights.pixels) {
    all += height != 0;
    low += height != 0 && height <= 150;
  }
  EXPECT_GT(all, 500u);
  EXPECT_GT(low, all * 95 / 100);
}

TEST_P(Scenes, AnEmptyFloorHasNoRegion) { EXPECT_EQ(seen("empty-floor", GetParam()).regions, 0u); }

// The inside of a solid alone: at its rim a cell may show either.
TEST_P(Scenes, WhatStandsIsAsHighAsItIs) {
  const Seen& boxes = seen("boxes", GetParam());
  uint32_t right = 0, all = 0;
  for (uint32_t y = 1; y + 1 < layout.height; ++y) {
    for (uint32_t x = 1; x + 1 < layout.width; ++x) {
      const uint16_t region = boxes.truth.region.at(x, y);
      const bool inside = region != 0 && boxes.truth.region.at(x - 1, y) == region &&
                          boxes.truth.region.at(x + 1, y) == region && boxes.truth.region.at(x, y - 1) == region &&
                          boxes.truth.region.at(x, y + 1) == region;
      if (!inside || boxes.heights.at(x, y) == 0) continue;
      ++all;
      right += std::abs(boxes.heights.at(x, y) - boxes.truth.elevation.at(x, y)) < 150;
    }
  }
  EXPECT_GT(all, 20u);
  EXPECT_GT(right, all * 8 / 10);
}

TEST_P(Scenes, WhatStandsIsARegion) {
  const Seen& boxes = seen("boxes", GetParam());
  uint32_t labelled = 0, all = 0;
  for (size_t i = 0; i < boxes.labels.pixels.size(); ++i) {
    if (boxes.truth.elevation.pixels[i] < 300 || boxes.heights.pixels[i] == 0) continue;
    ++all;
    labelled += boxes.labels.pixels[i] != 0;
  }
  EXPECT_GT(all, 20u);
  EXPECT_GT(labelled, all * 8 / 10);
}

INSTANTIATE_TEST_SUITE_P(Views, Scenes, ::testing::Values(scene::Side::left, scene::Side::right),
                         [](const auto& view) { return view.param == scene::Side::left ? "Left" : "Right"; });

}  // namespace
}  // namespace nadir::test
