// Every ready scene: the two pictures, the two truths and the map agree with each other.
#include "lab/scene/ready_scenes.hpp"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/lab/scene/eye.hpp"

namespace nadir::test {
namespace {

struct Rendered {
  scene::Rig rig;
  scene::Scene scene;
  scene::ViewTruth left, right;
};

CameraSettings usualCamera() {
  CameraSettings settings;
  settings.width = 320;
  settings.height = 240;
  settings.focal = 250;
  settings.baseline = 260;
  return settings;
}

Rendered rendered(const std::string& name, const CameraSettings& settings) {
  Rendered r{makeRig(settings), {}, {}, {}};
  r.scene = scene::makeScene(name, r.rig, 3);
  r.left = truth(r.scene, r.rig, Side::left, nothing);
  r.right = truth(r.scene, r.rig, Side::right, nothing);
  return r;
}

template <class T>
double between(const lab::Grid<T>& grid, double x, uint32_t y) {
  const auto column = std::min(static_cast<uint32_t>(std::max(x, 0.0)), grid.width - 2);
  const double share = x - column;
  return grid.at(column, y) * (1 - share) + grid.at(column + 1, y) * share;
}

// Calls use(x, y, right column, disparity) for every left pixel that the right picture shows.
template <class Use>
void forEachVisible(const Rendered& r, Use use) {
  for (uint32_t y = 0; y < r.rig.left.height; ++y)
    for (uint32_t x = 0; x < r.rig.left.width; ++x) {
      const double d = r.left.disparity.at(x, y), column = x - d;
      if (d > 0 && !r.left.occluded.at(x, y) && column >= 0 && column <= r.rig.left.width - 1) use(x, y, column, d);
    }
}

class ReadyScenes : public testing::TestWithParam<const char*> {};

TEST_P(ReadyScenes, LeftAndRightDisparitiesAgree) {
  const Rendered r = rendered(GetParam(), usualCamera());
  double all = 0, off = 0;
  forEachVisible(r, [&](uint32_t, uint32_t y, double column, double d) {
    ++all;
    off += std::abs(between(r.right.disparity, column, y) - d) > 0.05;
  });
  EXPECT_GT(all, 0.7 * 320 * 240);
  // Between two pixels on either side of an edge there is no common surface.
  EXPECT_LT(off / all, 0.03);
}

TEST_P(ReadyScenes, SomethingNearerStandsBeforeTheOccluded) {
  const Rendered r = rendered(GetParam(), usualCamera());
  double hidden = 0, explained = 0;
  for (uint32_t y = 0; y < 240; ++y)
    for (uint32_t x = 0; x < 320; ++x) {
      const double d = r.left.disparity.at(x, y), column = x - d;
      if (!r.left.occluded.at(x, y) || column < 0 || column > 319) continue;
      const auto first = std::min(static_cast<uint32_t>(column), 318u);
      const double nearest = std::max(r.right.disparity.at(first, y), r.right.disparity.at(first + 1, y));
      ++hidden;
      explained += nearest > d;
    }
  EXPECT_GE(hidden, r.scene.objects.size() > 1 ? 20 : 0);
  // What hides a point is seen by the right camera exactly there; a corner may end between two pixels.
  EXPECT_GE(explained, 0.99 * hidden);
}

TEST_P(ReadyScenes, PicturesAgreeAtTheTrueDisparity) {
  const Rendered r = rendered(GetParam(), usualCamera());
  const auto left = picture(r.scene, r.rig, Side::left, {}, nothing);
  const auto right = picture(r.scene, r.rig, Side::right, {}, nothing);
  double count = 0, difference = 0, unrelated = 0, slopes = 0, shifts = 0;
  forEachVisible(r, [&](uint32_t x, uint32_t y, double column, double) {
    if (column < 6 || column > 313) return;
    const double l = left.at(x, y), there = between(right, column, y);
    ++count;
    difference += std::abs(l - there);
    unrelated += std::abs(l - between(right, column - 5, y));
    if (std::abs(l - there) > 200) return;  // an edge within the pixel
    const double slope = (between(right, column + 1, y) - between(right, column - 1, y)) / 2;
    slopes += slope * slope;
    shifts += slope * (l - there);
  });
  EXPECT_LT(difference / count, 45);
  EXPECT_GT(unrelated / count, 5 * difference / count);
  // The shift that would fit best: the truth is not off by a part of a pixel.
  EXPECT_NEAR(shifts / slopes, 0, 0.01);
}

TEST_P(ReadyScenes, TheDefaultCameraStaysWithinTheMatchersRange) {
  const Rendered r = rendered(GetParam(), CameraSettings());
  for (const double d : r.left.disparity.pixels) ASSERT_TRUE(d > 4 && d < 60) << d;
}

// What the reference camera sees of the scene, put into the map, is nowhere above the map's truth.
TEST_P(ReadyScenes, NothingSeenIsAboveTheMap) {
  const CameraSettings settings = usualCamera();
  const Rendered r = rendered(GetParam(), settings);
  const scene::MapLayout layout{640, 640, 8};
  const scene::MapTruth map = mapTruth(r.scene, r.rig, layout);
  const Eye eye(settings, Side::left);
  double all = 0, near = 0;
  for (uint32_t y = 0; y < 240; ++y)
    for (uint32_t x = 0; x < 320; ++x) {
      const Vec point = eye.at(x, y, settings.focal * settings.baseline / r.left.disparity.at(x, y));
      const double u = (point.x - map.cornerX) / 8, v = (point.y - map.cornerY) / 8;
      if (u < 1 || v < 1 || u >= 639 || v >= 639) continue;
      double highest = 0;
      for (int dv = -1; dv <= 1; ++dv)
        for (int du = -1; du <= 1; ++du)
          highest = std::max(highest, map.elevation.at(static_cast<uint32_t>(u + du), static_cast<uint32_t>(v + dv)));
      ASSERT_LT(r.left.height.at(x, y), highest + 12) << x << ' ' << y;
      ++all;
      near +=
          std::abs(map.elevation.at(static_cast<uint32_t>(u), static_cast<uint32_t>(v)) - r.left.height.at(x, y)) < 15;
    }
  EXPECT_GT(all, 50000);
  EXPECT_GT(near, 0.6 * all);
}

INSTANTIATE_TEST_SUITE_P(All, ReadyScenes,
                         testing::Values("boxes", "people", "couples", "walkers", "steps", "slope", "crop-rows",
                                         "empty-floor"));

TEST(SceneMap, LiesAroundTheGroundPointOfTheOpticalAxis) {
  const scene::Rig rig = makeRig(cameraAt(-30, 0));
  const scene::MapTruth map = mapTruth(scene::makeScene("empty-floor", rig, 1), rig, {101, 60, 40});
  // 50 cells of 40 mm before (0, -3000 * tan 30 degrees), on both axes.
  EXPECT_NEAR(map.cornerX, -2000, 1e-9);
  EXPECT_NEAR(map.cornerY, -1732.0508075688772 - 2000, 1e-9);
  for (const double e : map.elevation.pixels) ASSERT_NEAR(e, 0, 1e-9);
}

TEST(SceneMap, MarksTheCellsInThePicture) {
  const CameraSettings settings = cameraAt(-35, 20);
  const scene::Rig rig = makeRig(settings);
  const Eye eye(settings, Side::left);
  const scene::MapTruth map = mapTruth(scene::makeScene("empty-floor", rig, 1), rig, {100, 100, 60});
  int inside = 0;
  for (uint32_t row = 0; row < 100; ++row)
    for (uint32_t column = 0; column < 100; ++column) {
      const Vec cell{map.cornerX + (column + 0.5) * 60, map.cornerY + (row + 0.5) * 60, 3000};
      const scene::ImagePoint p = eye.image(cell);
      const bool shown = eye.depth(cell) > 0 && std::abs(p.x - 48) < 48.5 && std::abs(p.y - 36) < 36.5;
      ASSERT_EQ(map.inPicture.at(column, row) != 0, shown) << column << ' ' << row;
      inside += shown;
    }
  EXPECT_GT(inside, 2000);
}

// The steps rise by 170 mm from tread to tread, away from the camera; each tread is its own region.
TEST(SceneMap, KnowsTheStepsAndTheirRegions) {
  const scene::Rig rig = makeRig(CameraSettings());
  const scene::Scene steps = scene::makeScene("steps", rig, 1);
  const scene::MapTruth map = mapTruth(steps, rig, {128, 128, 40});
  std::vector<int> cells(6);
  for (size_t i = 0; i < map.region.pixels.size(); ++i) {
    const uint16_t region = map.region.pixels[i];
    ASSERT_LT(region, 6);
    ++cells[region];
    const double heights[] = {0, 170, 340, 510, 680, 120};
    ASSERT_NEAR(map.elevation.pixels[i], heights[region], 1e-9);
  }
  for (const size_t region : {1, 2, 3}) EXPECT_NEAR(cells[region], 1600 / 40 * 320 / 40, 45);
  EXPECT_NEAR(cells[4], 1600 / 40 * 600 / 40, 60);
  EXPECT_NEAR(cells[5], 900 / 40.0 * 1400 / 40, 60);
}

TEST(SceneSensor, NoiseHasTheDeviationAskedFor) {
  const scene::Rig rig = makeRig(usualCamera());
  const scene::Scene scene = scene::makeScene("boxes", rig, 1);
  const auto clean = picture(scene, rig, Side::left, {}, nothing);
  const auto noisy = picture(scene, rig, Side::left, {30, false}, nothing);
  const auto other = picture(scene, rig, Side::right, {30, false}, nothing);
  double count = 0, sum = 0, squares = 0;
  for (size_t i = 0; i < clean.pixels.size(); ++i) {
    if (clean.pixels[i] < 200 || clean.pixels[i] > 3900) continue;
    const double noise = noisy.pixels[i] - clean.pixels[i];
    ++count;
    sum += noise;
    squares += noise * noise;
  }
  EXPECT_GT(count, 60000);
  EXPECT_NEAR(sum / count, 0, 0.4);
  EXPECT_NEAR(std::sqrt(squares / count), 30, 0.5);
  EXPECT_NE(noisy.pixels, other.pixels);
}

TEST(SceneSensor, OnlyTheDeadAreaHasNoData) {
  const scene::Rig rig = makeRig(usualCamera());
  const scene::Scene scene = scene::makeScene("people", rig, 1);
  const auto whole = picture(scene, rig, Side::left, {200, false}, nothing);
  const auto holed = picture(scene, rig, Side::left, {200, true}, nothing);
  const auto [least, most] = std::minmax_element(whole.pixels.begin(), whole.pixels.end());
  EXPECT_GE(*least, 16);
  EXPECT_LE(*most, 4080);
  const double radius = 0.08 * 320;
  EXPECT_NEAR(static_cast<double>(std::count(holed.pixels.begin(), holed.pixels.end(), 0)),
              std::acos(-1) * radius * radius, 30);
  for (size_t i = 0; i < whole.pixels.size(); ++i)
    ASSERT_TRUE(holed.pixels[i] == whole.pixels[i] || holed.pixels[i] == 0);
}

}  // namespace
}  // namespace nadir::test
