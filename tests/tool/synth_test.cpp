// nadir synth: rendered pairs with their truth.
#include <gtest/gtest.h>
#include <nadir/nadir.h>

#include <algorithm>
#include <cmath>

#include "tests/tool/json.hpp"
#include "tests/tool/tool.hpp"

namespace nadir::test {
namespace {

void synth(const Folder& folder, const std::string& name, std::vector<std::string> options) {
  options.insert(options.begin(), {"synth", name});
  const Outcome outcome = folder.run(options);
  ASSERT_EQ(outcome.status, 0) << outcome.err;
}

const std::vector<std::string> everyFile = {
    "camera.toml",        "disparity_gt.png",    "disparity_left_gt.png", "disparity_right_gt.png",
    "elevation_gt.png",   "height_left_gt.png",  "height_right_gt.png",   "left.png",
    "occlusion_left.png", "occlusion_right.png", "regions_gt.png",        "right.png",
    "scene.json"};

TEST(Synth, SameSeedSameBytes) {
  const Folder folder;
  const std::vector<std::string> options = {"--size", "96x64", "--seed", "5", "--dead-area"};
  synth(folder, "a", options);
  synth(folder, "b", options);
  synth(folder, "c", {"--size", "96x64", "--seed", "6", "--dead-area"});
  for (const std::string& name : everyFile) {
    const Bytes a = readFile(folder.path("a/" + name));
    EXPECT_EQ(a, readFile(folder.path("b/" + name))) << name;
    EXPECT_EQ(a == readFile(folder.path("c/" + name)), name == "camera.toml") << name;
  }
}

TEST(Synth, WritesTheseFilesForEveryScene) {
  for (const char* scene : {"boxes", "people", "couples", "walkers", "steps", "slope", "crop-rows", "empty-floor"}) {
    const Folder folder;
    synth(folder, ".", {"--size", "64x64", "--scene", scene});
    EXPECT_EQ(folder.names(), everyFile);
    EXPECT_NE(readFile(folder.path("scene.json")).find(scene), std::string::npos);
  }
}

// The right picture at column x, between pixels.
double between(const Picture& picture, double x, uint32_t y) {
  const auto column = static_cast<uint32_t>(x);
  const double share = x - column;
  const uint32_t next = std::min(column + 1, picture.width - 1);
  return picture.at(column, y) * (1 - share) + picture.at(next, y) * share;
}

// The mean difference between a left pixel and the right one that the truth, moved by `shift` pixels, names.
double meanDifference(const Folder& folder, double shift) {
  const Picture left = readPng(folder.path("s/left.png")), right = readPng(folder.path("s/right.png"));
  const Picture truth = readPng(folder.path("s/disparity_gt.png"));
  double sum = 0, count = 0;
  for (uint32_t y = 0; y < left.height; ++y)
    for (uint32_t x = 0; x < left.width; ++x) {
      const double column = x - truth.at(x, y) / 256.0 + shift;
      if (truth.at(x, y) == 0 || column < 0 || column > left.width - 1) continue;
      sum += std::abs(left.at(x, y) - between(right, column, y));
      ++count;
    }
  EXPECT_GT(count, 0.8 * left.width * left.height);
  return sum / count;
}

TEST(Synth, TheTruthNamesTheMatchingPixel) {
  const Folder folder;
  synth(folder, "s", {"--noise", "0"});
  const double right = meanDifference(folder, 0);
  EXPECT_LT(right, 60);
  for (const double shift : {-1.0, -0.5, 0.5, 1.0}) EXPECT_GT(meanDifference(folder, shift), 2 * right) << shift;
}

TEST(Synth, TruthsOfTheLeftGridDifferInTheOccludedAlone) {
  const Folder folder;
  synth(folder, ".", {"--scene", "people", "--size", "320x240"});
  const Picture visible = readPng(folder.path("disparity_gt.png")), all = readPng(folder.path("disparity_left_gt.png"));
  const Picture occluded = readPng(folder.path("occlusion_left.png"));
  EXPECT_EQ(occluded.bits, 8u);
  int count = 0;
  for (size_t i = 0; i < all.samples.size(); ++i) {
    ASSERT_TRUE(occluded.samples[i] == 0 || occluded.samples[i] == 255);
    ASSERT_EQ(visible.samples[i], occluded.samples[i] ? 0 : all.samples[i]);
    ASSERT_TRUE(all.samples[i] > 2 * 256 && all.samples[i] < 61 * 256);
    count += occluded.samples[i] == 255;
  }
  EXPECT_GT(count, 3000);
  EXPECT_EQ(visible.text.at("nadir:scale"), "256");
  EXPECT_EQ(visible.text.at("nadir:grid"), "left");
  EXPECT_EQ(readPng(folder.path("disparity_right_gt.png")).text.at("nadir:grid"), "right");
}

// ---- the list of regions ----

class SynthRegions : public testing::Test {
 protected:
  SynthRegions() {
    synth(folder, ".", {"--scene", "boxes", "--size", "320x240"});
    json = readJson(folder.path("scene.json"));
    regions = readPng(folder.path("regions_gt.png"));
    elevation = readPng(folder.path("elevation_gt.png"));
  }

  // World x and y of a cell's centre.
  double centreX(uint32_t x) const { return json["map_corner_x_mm"].get<double>() + 40 * (x + 0.5); }
  double centreY(uint32_t y) const { return json["map_corner_y_mm"].get<double>() + 40 * (y + 0.5); }

  Folder folder;
  Json json;
  Picture regions, elevation;
};

TEST_F(SynthRegions, TellTheCellsThatThePictureShows) {
  ASSERT_EQ(json["regions"].size(), 6u);
  for (const Json& region : json["regions"]) {
    double count = 0, sumX = 0, sumY = 0, highest = 0;
    for (uint32_t y = 0; y < 128; ++y)
      for (uint32_t x = 0; x < 128; ++x) {
        if (regions.at(x, y) != region["region"] || elevation.at(x, y) == 0) continue;
        ++count;
        sumX += centreX(x);
        sumY += centreY(y);
        highest = std::max<double>(highest, elevation.at(x, y));
      }
    EXPECT_EQ(region["cells"], count);
    EXPECT_NEAR(region["area_m2"], count * 0.0016, 1e-9);
    EXPECT_NEAR(region["centre_mm"]["x"], sumX / count, 1e-3);
    EXPECT_NEAR(region["centre_mm"]["y"], sumY / count, 1e-3);
    EXPECT_NEAR(region["highest_mm"], highest, 0.5);
    EXPECT_EQ(region["kind"], "box");
  }
}

// Twice the area of a, b and p, with a sign.
double sideOfEdge(const Json& a, const Json& b, double x, double y) {
  const double ax = a[0], ay = a[1], bx = b[0], by = b[1];
  return (bx - ax) * (y - ay) - (by - ay) * (x - ax);
}

// The corners go round in one direction.
bool isInside(const Json& corners, double x, double y) {
  for (size_t i = 0; i < 4; ++i)
    if (sideOfEdge(corners[i], corners[(i + 1) % 4], x, y) < 0) return false;
  return true;
}

TEST_F(SynthRegions, FootprintsHoldTheCellsOfTheirRegion) {
  for (const Json& object : json["objects"]) {
    int inside = 0;
    for (uint32_t y = 0; y < 128; ++y)
      for (uint32_t x = 0; x < 128; ++x) {
        const bool within = isInside(object["footprint_mm"], centreX(x), centreY(y));
        EXPECT_EQ(within, regions.at(x, y) == object["region"]) << object["region"] << " at " << x << ", " << y;
        inside += within;
      }
    EXPECT_GT(inside, 20);
  }
}

// ---- the library against the renderer ----

struct Mount {
  std::string tilt, pan, grid;
};

void PrintTo(const Mount& mount, std::ostream* out) {
  *out << "tilt" << mount.tilt << "pan" << mount.pan << mount.grid;
}

// The library's transforms for a camera file.
StereoCtx contextOf(const std::string& cameraFile) {
  const auto number = [&cameraFile](const char* key) {
    return numberAfter(cameraFile, std::string("\n") + key + " =");
  };
  const auto fixed = [&number](const char* key, double steps) { return static_cast<int32_t>(number(key) * steps); };
  const IntCalibParams params{fixed("baseline_mm", 256), fixed("focal_px", 256), fixed("principal_x_px", 16),
                              fixed("principal_y_px", 16)};
  const Orientation orientation{static_cast<float>(number("height_mm")), static_cast<float>(number("tilt_deg")),
                                static_cast<float>(number("pan_deg"))};
  const auto cell = static_cast<uint16_t>(number("cell_mm"));
  const ElevMapParams map{static_cast<uint16_t>(number("width_cells")), static_cast<uint16_t>(number("height_cells")),
                          cell, cell};
  StereoCtx context;
  EXPECT_EQ(ip_stereo_init(&context, &params, &orientation, &map), 1);
  return context;
}

class SynthMounts : public testing::TestWithParam<Mount> {
 protected:
  SynthMounts() {
    const Mount& mount = GetParam();
    synth(folder, ".", {"--size", "240x180", "--tilt", mount.tilt, "--pan", mount.pan, "--grid", mount.grid});
    disparity = readPng(folder.path("disparity_" + mount.grid + "_gt.png"));
    height = readPng(folder.path("height_" + mount.grid + "_gt.png"));
    elevation = readPng(folder.path("elevation_gt.png"));
    context = contextOf(readFile(folder.path("camera.toml")));
  }

  // Calls use(world point, height, depth) for every pixel that is not sky.
  template <class Use>
  void forEachPoint(Use use) const {
    for (uint32_t y = 0; y < disparity.height; ++y)
      for (uint32_t x = 0; x < disparity.width; ++x) {
        ASSERT_EQ(disparity.at(x, y) == 0, height.at(x, y) == 65535);
        const Point_f32 pixel{static_cast<float>(x), static_cast<float>(y)};
        const float d = static_cast<float>(disparity.at(x, y)) / 256;
        Point3_f32 world;
        if (ip_stereo_disp2world(&context, &pixel, &world, d)) use(world, height.at(x, y) / 8.0, 187.5 * 130 / d);
      }
  }

  // The least and the greatest elevation of a cell and its neighbours.
  std::pair<uint16_t, uint16_t> aroundCell(uint32_t column, uint32_t row) const {
    uint16_t lowest = 65535, highest = 0;
    for (uint32_t y = row - 1; y <= row + 1; ++y)
      for (uint32_t x = column - 1; x <= column + 1; ++x) {
        lowest = std::min(lowest, elevation.at(x, y));
        highest = std::max(highest, elevation.at(x, y));
      }
    return {lowest, highest};
  }

  Folder folder;
  Picture disparity, height, elevation;
  StereoCtx context;
};

TEST_P(SynthMounts, TheLibraryFindsTheSameHeights) {
  int count = 0;
  forEachPoint([&](const Point3_f32& world, double truth, double depth) {
    // The bound is half a step of the stored disparity, and single precision.
    const double tolerance = depth * depth / (187.5 * 130) / 512 + 0.5;
    ASSERT_NEAR(3000 - world.z, truth, tolerance);
    ++count;
  });
  EXPECT_GT(count, 20000);
}

// A vertical face may belong to the cell beside the one whose centre it shadows.
TEST_P(SynthMounts, TheLibraryLaysTheMapAtTheSamePlace) {
  EXPECT_NEAR(context.lowerLeft.x, std::stod(elevation.text.at("nadir:left-mm")), 0.05);
  EXPECT_NEAR(context.lowerLeft.y, std::stod(elevation.text.at("nadir:top-mm")), 0.05);
  int high = 0;
  forEachPoint([&](const Point3_f32& world, double truth, double) {
    Point_f32 cell;
    ip_stereo_world2elev(&context, &world, &cell);
    if (truth < 300 || cell.x < 1 || cell.y < 1 || cell.x >= 127 || cell.y >= 127) return;
    const auto [lowest, highest] = aroundCell(static_cast<uint32_t>(cell.x), static_cast<uint32_t>(cell.y));
    if (lowest == 0) return;  // beyond the picture's edge
    ++high;
    ASSERT_GE(highest, truth - 5);
  });
  EXPECT_GT(high, 200);
}

std::string nameOf(const testing::TestParamInfo<Mount>& info) {
  std::string name = testing::PrintToString(info.param);
  std::replace(name.begin(), name.end(), '-', 'm');
  return name;
}

INSTANTIATE_TEST_SUITE_P(All, SynthMounts,
                         testing::Values(Mount{"0", "0", "left"}, Mount{"-30", "0", "left"}, Mount{"-30", "0", "right"},
                                         Mount{"-40", "25", "left"}, Mount{"-20", "-30", "right"},
                                         Mount{"35", "10", "left"}, Mount{"-70", "0", "left"}),
                         nameOf);

}  // namespace
}  // namespace nadir::test
