// The renderer agrees with the camera model about where things are.
#include <gtest/gtest.h>

#include "lab/random.hpp"
#include "lab/scene/ready_scenes.hpp"
#include "tests/lab/scene/eye.hpp"

namespace nadir::test {
namespace {

scene::ViewTruth floorTruth(const CameraSettings& settings, Side side) {
  const scene::Rig rig = makeRig(settings);
  return truth(scene::makeScene("empty-floor", rig, 1), rig, side, nothing);
}

TEST(SceneCamera, LookingStraightDownTheGroundHasOneDisparity) {
  const scene::ViewTruth t = floorTruth(cameraAt(0, 0), Side::left);
  for (const double d : t.disparity.pixels) ASSERT_NEAR(d, 80.0 * 130 / 3000, 1e-12);
  for (const double h : t.height.pixels) ASSERT_NEAR(h, 0, 1e-9);
}

// A pixel that looks `angle` away from straight down sees the ground at the distance height / cos(angle).
TEST(SceneCamera, NegativeTiltSeesFartherAtTheTop) {
  const scene::ViewTruth t = floorTruth(cameraAt(-30, 0), Side::left);
  const double degree = std::acos(-1) / 180;
  for (const uint32_t y : {0u, 20u, 36u, 60u, 72u}) {
    const double fromAxis = std::atan((36.0 - y) / 80);
    const double depth = 3000 / std::cos(30 * degree + fromAxis) * std::cos(fromAxis);
    for (const uint32_t x : {0u, 48u, 96u}) EXPECT_NEAR(t.disparity.at(x, y), 80 * 130 / depth, 1e-10) << y;
  }
  EXPECT_NEAR(t.disparity.at(48, 36), 80 * 130 * std::sqrt(0.75) / 3000, 1e-12);
}

TEST(SceneCamera, PositivePanSeesFartherOnTheLeft) {
  const scene::ViewTruth t = floorTruth(cameraAt(0, 25), Side::left);
  const double degree = std::acos(-1) / 180;
  for (const uint32_t x : {0u, 48u, 96u}) {
    const double fromAxis = std::atan((48.0 - x) / 80);
    const double depth = 3000 / std::cos(25 * degree + fromAxis) * std::cos(fromAxis);
    EXPECT_NEAR(t.disparity.at(x, 10), 80 * 130 / depth, 1e-10) << x;
  }
}

TEST(SceneCamera, EveryPixelOfTheGroundUnderEveryTurn) {
  for (const double tilt : {-75.0, -40.0, 10.0, 60.0})
    for (const double pan : {-50.0, 0.0, 15.0, 60.0})
      for (const Side side : {Side::left, Side::right}) {
        const CameraSettings settings = cameraAt(tilt, pan);
        const Eye eye(settings, side);
        const scene::ViewTruth t = floorTruth(settings, side);
        for (uint32_t y = 0; y < settings.height; y += 9)
          for (uint32_t x = 0; x < settings.width; x += 8) {
            const double fall = (eye.at(x, y, 1) - eye.centre()).z;  // per mm of depth
            const double depth = (3000 - eye.centre().z) / fall;
            const double expected = fall > 1e-9 ? 80 * 130 / depth : 0;
            ASSERT_NEAR(t.disparity.at(x, y), expected, 1e-9) << tilt << ' ' << pan << ' ' << x << ' ' << y;
            ASSERT_EQ(std::isnan(t.height.at(x, y)), expected == 0);
          }
      }
}

TEST(SceneCamera, ProjectsAsThePinholeDoes) {
  lab::Random random(1);
  for (const Side reference : {Side::left, Side::right}) {
    const CameraSettings settings = cameraAt(-35, 20, reference);
    const scene::Rig rig = makeRig(settings);
    const Eye left(settings, Side::left), right(settings, Side::right);
    for (int i = 0; i < 100; ++i) {
      const double depth = random.between(500, 9000);
      const Vec point = left.at(random.between(0, 96), random.between(0, 72), depth);
      const scene::ImagePoint l = rig.left.project(point), r = rig.right.project(point);
      EXPECT_NEAR(l.x, left.image(point).x, 1e-9);
      EXPECT_NEAR(r.x, right.image(point).x, 1e-9);
      EXPECT_NEAR(l.y, left.image(point).y, 1e-9);
      EXPECT_NEAR(l.x - r.x, 80 * 130 / depth, 1e-9);
      EXPECT_NEAR(l.y, r.y, 1e-9);
    }
  }
}

TEST(SceneCamera, TheReferenceIsTheOrigin) {
  const scene::Rig left = makeRig(cameraAt(-30, 0)), right = makeRig(cameraAt(-30, 0, Side::right));
  EXPECT_EQ(length(left.left.centre), 0);
  EXPECT_NEAR(left.right.centre.x, 130, 1e-12);
  EXPECT_EQ(length(right.right.centre), 0);
  EXPECT_NEAR(right.left.centre.x, -130, 1e-12);
}

// On a bare floor only what leaves the other picture is lost: left column - d < -0.5, right column + d >= 96.5.
TEST(SceneCamera, BareGroundIsLostAtThePicturesEdgeAlone) {
  for (const Side side : {Side::left, Side::right}) {
    const scene::ViewTruth t = floorTruth(cameraAt(-30, 0), side);
    for (uint32_t y = 0; y < 73; ++y)
      for (uint32_t x = 0; x < 97; ++x) {
        const double d = t.disparity.at(x, y), column = side == Side::left ? x - d : x + d;
        ASSERT_EQ(t.occluded.at(x, y) != 0, column < -0.5 || column >= 96.5) << x << ' ' << y;
      }
  }
}

}  // namespace
}  // namespace nadir::test
