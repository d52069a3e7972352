// The ground that a frame's points show, and the words of warnings.
#include <cmath>
#include <cstring>

#include "tests/api/ground/roads.hpp"

namespace nadir::test {
namespace {

// The disparities of a ground that lies as from another mount.
Grid<float> groundOf(const NadirCamera& mount) {
  const StereoCtx context = contextOf(makeRoad(mount, defaultSettings(mount)));
  Grid<float> disparity(mount.width_px, mount.height_px, noDisparity);
  for (uint32_t y = 0; y < disparity.height; ++y)
    for (uint32_t x = 0; x < disparity.width; ++x) {
      const Point_f32 pixel{static_cast<float>(x), static_cast<float>(y)};
      Point3_f32 world, eye;
      ip_stereo_img2world(&context, &pixel, &world, context.orientation.height);
      ip_stereo_world2cam(&context, &world, &eye);
      if (eye.z > 0) disparity.at(x, y) = context.intCalib.focalLength * context.intCalib.baseline / eye.z;
    }
  return disparity;
}

struct Fit {
  NadirStatus status;
  NadirGroundPlane plane;
};

Fit fitOf(const NadirCamera& said, const Grid<float>& disparity) {
  const Road road = makeRoad(said, defaultSettings(said));
  const Result result = makeResult(road);
  const NadirFrame frame = frameOf(disparity);
  processed(road, frame, result);
  Fit fit{};
  fit.plane.size = sizeof fit.plane;
  fit.status = nadir_road_ground_plane(road.get(), &frame, result.get(), &fit.plane);
  return fit;
}

NadirCamera turned(double tilt, double height) {
  NadirCamera camera = smallCamera();
  camera.tilt_deg += tilt;
  camera.height_mm *= height;
  return camera;
}

TEST(GroundPlane, IsTheMountThatThePointsShow) {
  const NadirCamera there = turned(4, 1.05), said = smallCamera();
  const Fit fit = fitOf(said, groundOf(there));
  ASSERT_EQ(fit.status, NADIR_OK);
  EXPECT_NEAR(fit.plane.height_mm, there.height_mm, there.height_mm * 1e-3);
  EXPECT_NEAR(fit.plane.tilt_deg, there.tilt_deg, 0.05);
  EXPECT_NEAR(fit.plane.pan_deg, there.pan_deg, 0.05);
  EXPECT_EQ(fit.plane.inliers, fit.plane.points);
}

TEST(GroundPlane, OfAnotherDirectionIsNone) {
  EXPECT_EQ(fitOf(smallCamera(), groundOf(turned(20, 1))).status, NADIR_NOTHING_FOUND);
}

TEST(GroundPlane, OfNoPointsIsNone) {
  const NadirCamera camera = smallCamera();
  const Grid<float> empty(camera.width_px, camera.height_px, noDisparity);
  EXPECT_EQ(fitOf(camera, empty).status, NADIR_NOTHING_FOUND);
}

// The world begins where ip_stereo_disp2world places a disparity.
TEST(GroundPlane, CountsThePointsThatLieInTheWorld) {
  Grid<float> disparity = groundOf(smallCamera());
  const float least = std::numeric_limits<float>::epsilon();
  disparity.at(0, 0) = std::nextafter(least, 1.0f);
  const uint64_t points = fitOf(smallCamera(), disparity).plane.points;
  disparity.at(0, 0) = least;
  EXPECT_EQ(fitOf(smallCamera(), disparity).plane.points, points - 1);
}

TEST(GroundPlane, NeedsAFrameThatWasProcessed) {
  const NadirCamera camera = smallCamera();
  const Road road = makeRoad(camera, defaultSettings(camera));
  const Result result = makeResult(road);
  const Grid<float> disparity = groundOf(camera);
  const NadirFrame frame = frameOf(disparity);
  NadirGroundPlane plane{};
  plane.size = sizeof plane;
  EXPECT_EQ(nadir_road_ground_plane(road.get(), &frame, result.get(), &plane), NADIR_NOTHING_FOUND);
  EXPECT_EQ(nadir_road_ground_plane(nullptr, &frame, result.get(), &plane), NADIR_NULL_POINTER);
  EXPECT_EQ(nadir_road_ground_plane(road.get(), nullptr, result.get(), &plane), NADIR_NULL_POINTER);
  EXPECT_EQ(nadir_road_ground_plane(road.get(), &frame, nullptr, &plane), NADIR_NULL_POINTER);
  EXPECT_EQ(nadir_road_ground_plane(road.get(), &frame, result.get(), nullptr), NADIR_NULL_POINTER);
  plane.size = 8;
  EXPECT_EQ(nadir_road_ground_plane(road.get(), &frame, result.get(), &plane), NADIR_BAD_RECORD);
}

TEST(Warnings, TellSharesInPercent) {
  for (uint32_t id = 1; id <= NADIR_WARNINGS; ++id)
    for (uint32_t i = 0; nadir_warning_number_name(id, i); ++i) {
      const bool isShare = std::strstr(nadir_warning_number_name(id, i), "share") != nullptr;
      EXPECT_EQ(nadir_warning_scale(id, i), isShare ? 100 : 1) << nadir_warning_number_name(id, i);
    }
}

TEST(Warnings, OfNoIdHaveNoNumbers) {
  for (const uint32_t id : {0u, NADIR_WARNINGS + 1u, 0xFFFFFFFFu}) {
    EXPECT_EQ(nadir_warning_name(id), nullptr) << id;
    EXPECT_EQ(nadir_warning_sentence(id), nullptr) << id;
    EXPECT_EQ(nadir_warning_number_name(id, 0), nullptr) << id;
    EXPECT_EQ(nadir_warning_scale(id, 0), 1) << id;
  }
  EXPECT_EQ(nadir_warning_number_name(NADIR_WARNING_GROUND_ELSEWHERE, 4), nullptr);
  EXPECT_EQ(nadir_warning_scale(NADIR_WARNING_GROUND_ELSEWHERE, 4), 1);
}

// A frame without pictures says nothing of them, one without a mount nothing of the ground.
TEST(Trust, IsNotANumberForWhatCouldNotBeMeasured) {
  const NadirCamera camera = smallCamera();
  const Road road = makeRoad(camera, defaultSettings(camera));
  const Result result = makeResult(road);
  const Grid<float> disparity = groundOf(camera);
  const NadirTrust given = *processed(road, frameOf(disparity), result).trust;
  EXPECT_TRUE(std::isnan(given.dark_left) && std::isnan(given.matched) && std::isnan(given.range_end));
  EXPECT_EQ(given.on_ground, 1);
  EXPECT_NEAR(given.tilt_off_deg, 0, 0.05);
}

NadirTrust trustAt(const NadirCamera& camera) {
  const Road road = makeRoad(camera, defaultSettings(camera));
  const Result result = makeResult(road);
  return *processed(road, frameOf(groundOf(smallCamera())), result).trust;
}

TEST(Trust, ThereIsNoTopWhereNoDisparityIsLeft) {
  for (const double shift : {-61.5, -62.0, -1e6}) {
    NadirCamera camera = smallCamera();
    camera.column_shift_px = shift;
    const NadirTrust trust = trustAt(camera);
    EXPECT_TRUE(std::isnan(trust.least_top_mm) && std::isnan(trust.greatest_top_mm)) << shift;
  }
}

TEST(Trust, TopsOfACameraAtTheHorizonAreNoneOrFinite) {
  for (const double tilt : {-90.0, 90.0, -89.9999}) {
    NadirCamera camera = smallCamera();
    camera.tilt_deg = tilt;
    camera.map_offset_x_mm = camera.map_offset_y_mm = 0;
    const NadirTrust trust = trustAt(camera);
    EXPECT_FALSE(std::isinf(trust.least_top_mm) || std::isinf(trust.greatest_top_mm)) << tilt;
  }
}

}  // namespace
}  // namespace nadir::test
