// The stereo context and its elevation map.
#include <gtest/gtest.h>
#include <nadir/camera.h>

#include <cmath>
#include <cstring>

#include "tests/models/camera.hpp"
#include "tests/support/cameras.hpp"
#include "tests/support/floats.hpp"

namespace nadir::test {
namespace {

const Orientation lookingDown = {2000, 0, 0};
const Orientation tiltedMount = {1800, 40, -15};

StereoCtx context(const Orientation& orientation, const ElevMapParams& map = {100, 50, 20, 40}) {
  StereoCtx ctx;
  std::memset(&ctx, 0xA5, sizeof ctx);
  EXPECT_EQ(ip_stereo_init(&ctx, &usualLens, &orientation, &map), 1u);
  return ctx;
}

Point_f32 lowerLeft(const ExtCalib& e, const ElevMapParams& map, float h) {
  const IntCalib calib = model::internalCalib(usualLens);
  Point_f32 out;
  ip_calcMapRectLowerLeft(&e, &calib, &map, &out, h);
  return out;
}

const ExtCalib downward = {{1, 0, 0, 0, 1, 0, 0, 0, 1}, {0, 0, 0}};

// ---- the context ----

TEST(StereoInit, CopiesItsInputs) {
  const ElevMapParams map = {101, 52, 23, 44};
  const StereoCtx ctx = context(tiltedMount, map);
  EXPECT_EQ(std::memcmp(&usualLens, &ctx.intParams, sizeof usualLens), 0);
  EXPECT_EQ(floats(ctx.orientation), floats(tiltedMount));
  EXPECT_EQ(std::memcmp(&map, &ctx.mapParams, sizeof map), 0);
}

TEST(StereoInit, MakesTheCalibrations) {
  const StereoCtx ctx = context(tiltedMount);
  EXPECT_EQ(floats(ctx.intCalib), floats(model::internalCalib(usualLens)));
  EXPECT_EQ(floats(ctx.extCalib), floats(model::externalCalib(tiltedMount)));
}

TEST(StereoInit, AnchorsTheMapOnTheGround) {
  const ElevMapParams map = {100, 50, 20, 40};
  const StereoCtx ctx = context(tiltedMount, map);
  EXPECT_EQ(floats(ctx.lowerLeft), floats(lowerLeft(model::externalCalib(tiltedMount), map, tiltedMount.height)));
}

// ---- the map's corner ----

TEST(MapCorner, UsesTheHalfExtentAlongXOnBothAxes) {
  EXPECT_EQ(floats(lowerLeft(downward, {100, 50, 20, 40}, 2000)), floats(Point_f32{-1000, -1000}));
}

TEST(MapCorner, HalvesAnOddWidthBeforeItMultiplies) {
  EXPECT_EQ(floats(lowerLeft(downward, {5, 5, 100, 100}, 2000)), floats(Point_f32{-200, -200}));
}

TEST(MapCorner, OfAMapOneCellWideIsUnderThePrincipalPoint) {
  EXPECT_EQ(floats(lowerLeft(downward, {1, 9, 100, 100}, 2000)), floats(Point_f32{0, 0}));
}

TEST(MapCorner, HoldsTheLargestMap) {
  // 32767 * 65535 fits 31 bits and becomes the nearest float.
  EXPECT_EQ(floats(lowerLeft(downward, {65535, 65535, 65535, 65535}, 2000)),
            floats(Point_f32{-2147385345.0f, -2147385345.0f}));
}

TEST(MapCorner, IsMeasuredFromThePointUnderThePrincipalPoint) {
  lab::Random random(90);
  const IntCalib calib = model::internalCalib(usualLens);
  for (int round = 0; round < 300; round++) {
    const ExtCalib e = model::externalCalib({0, anyWithin(random, 60), anyWithin(random, 60)});
    const ElevMapParams map = {static_cast<uint16_t>(random.next()), static_cast<uint16_t>(random.next()),
                               static_cast<uint16_t>(random.next()), static_cast<uint16_t>(random.next())};
    const float h = anyWithin(random, 4000);
    const Point3_f32 g = model::img2world({calib.principalX, calib.principalY}, e, calib, h);
    const float half = static_cast<float>((map.width >> 1) * map.cellSizeX);
    ASSERT_EQ(floats(lowerLeft(e, map, h)), floats(Point_f32{g.x - half, g.y - half}));
  }
}

// ---- world and map ----

const ElevMapParams usualMap = {100, 50, 20, 40};
const Point_f32 usualCorner = {-1000, 300};

Point_f32 toMap(Point_f32 world) {
  Point_f32 out;
  EXPECT_EQ(ip_world2elev(&world, &out, &usualMap, &usualCorner), 1u);
  return out;
}

TEST(WorldToMap, StartsAtTheCorner) { EXPECT_EQ(floats(toMap(usualCorner)), floats(Point_f32{0, 0})); }

TEST(WorldToMap, CountsCellsOfEachAxisOwnSize) {
  EXPECT_EQ(floats(toMap({-980, 340})), floats(Point_f32{1, 1}));
  EXPECT_EQ(floats(toMap({-990, 310})), floats(Point_f32{0.5f, 0.25f}));
}

TEST(WorldToMap, GoesOnOutsideTheMap) {
  EXPECT_EQ(floats(toMap({-1100, 260})), floats(Point_f32{-5, -1}));
  EXPECT_EQ(floats(toMap({3000, 4300})), floats(Point_f32{200, 100}));
}

TEST(MapToWorld, IsTheCornerPlusTheCells) {
  const Point_f32 map = {2.5f, -1};
  Point_f32 world;
  EXPECT_EQ(ip_elev2world(&map, &world, &usualMap, &usualCorner), 1u);
  EXPECT_EQ(floats(world), floats(Point_f32{-950, 260}));
}

TEST(WorldAndMap, HaveTheBitsOfTheDocumentedFormulas) {
  lab::Random random(91);
  for (int round = 0; round < 500; round++) {
    const ElevMapParams map = {1, 1, static_cast<uint16_t>(1 + random.below(65535)),
                               static_cast<uint16_t>(1 + random.below(65535))};
    const Point_f32 corner = {anyWithin(random, 5000), anyWithin(random, 5000)},
                    p = {anyWithin(random, 5000), anyWithin(random, 5000)};
    const float cellX = map.cellSizeX, cellY = map.cellSizeY;
    Point_f32 out;
    ASSERT_EQ(ip_world2elev(&p, &out, &map, &corner), 1u);
    ASSERT_EQ(floats(out), floats(Point_f32{(p.x - corner.x) / cellX, (p.y - corner.y) / cellY}));
    ASSERT_EQ(ip_elev2world(&p, &out, &map, &corner), 1u);
    ASSERT_EQ(floats(out), floats(Point_f32{corner.x + cellX * p.x, corner.y + cellY * p.y}));
  }
}

// ---- the wrappers, each against the transform that it stands for ----

class StereoWrappers : public testing::Test {
 protected:
  const StereoCtx ctx = context(tiltedMount);
  const ExtCalib& ext = ctx.extCalib;
  const IntCalib& calib = ctx.intCalib;
  const Point3_f32 point = {123.5f, -456.25f, 789};
  const Point_f32 pixel = {101.5f, 33.25f};
  Point3_f32 p3 = {-777, -777, -777};
  Point_f32 p2 = {-777, -777};
};

TEST_F(StereoWrappers, WorldToCamera) {
  EXPECT_EQ(ip_stereo_world2cam(&ctx, &point, &p3), 1u);
  EXPECT_EQ(floats(p3), floats(model::world2cam(point, ext)));
}

TEST_F(StereoWrappers, CameraToWorld) {
  EXPECT_EQ(ip_stereo_cam2world(&ctx, &point, &p3), 1u);
  EXPECT_EQ(floats(p3), floats(model::cam2world(point, ext)));
}

TEST_F(StereoWrappers, CameraToImage) {
  EXPECT_EQ(ip_stereo_cam2img(&ctx, &point, &p2), 1u);
  EXPECT_EQ(floats(p2), floats(model::cam2img(point, calib)));
}

TEST_F(StereoWrappers, CameraToImageOfANearPointIsWrittenButRefused) {
  const Point3_f32 near = {10, -20, 50};
  EXPECT_EQ(ip_stereo_cam2img(&ctx, &near, &p2), 0u);
  EXPECT_EQ(floats(p2), floats(model::cam2img(near, calib)));
}

TEST_F(StereoWrappers, WorldToImage) {
  EXPECT_EQ(ip_stereo_world2img(&ctx, &point, &p2), 1u);
  EXPECT_EQ(floats(p2), floats(model::cam2img(model::world2cam(point, ext), calib)));
}

TEST_F(StereoWrappers, WorldToImageOfAPointBehindIsWrittenButRefused) {
  const Point3_f32 behind = {10, -20, -789};
  EXPECT_EQ(ip_stereo_world2img(&ctx, &behind, &p2), 0u);
  EXPECT_EQ(floats(p2), floats(model::cam2img(model::world2cam(behind, ext), calib)));
}

TEST_F(StereoWrappers, ImageToCamera) {
  EXPECT_EQ(ip_stereo_img2cam(&ctx, &pixel, &p3, 640), 1u);
  EXPECT_EQ(floats(p3), floats(model::img2cam(pixel, calib, 640)));
}

TEST_F(StereoWrappers, ImageToWorldUsesTheGivenPlane) {
  EXPECT_EQ(ip_stereo_img2world(&ctx, &pixel, &p3, 1500), 1u);
  EXPECT_EQ(floats(p3), floats(model::img2world(pixel, ext, calib, 1500)));
}

TEST_F(StereoWrappers, DisparityToWorld) {
  EXPECT_EQ(ip_stereo_disp2world(&ctx, &pixel, &p3, 13.25f), 1u);
  const Point3_f32 cam = model::img2cam(pixel, calib, calib.focalLength * calib.baseline / 13.25f);
  EXPECT_EQ(floats(p3), floats(model::cam2world(cam, ext)));
}

TEST_F(StereoWrappers, DisparityToWorldOfNoDisparityIsRefused) {
  EXPECT_EQ(ip_stereo_disp2world(&ctx, &pixel, &p3, 0), 0u);
  EXPECT_EQ(floats(p3), floats(Point3_f32{-777, -777, -777}));
}

Point_f32 mapPoint(const StereoCtx& ctx, Point3_f32 world) {
  return {(world.x - ctx.lowerLeft.x) / static_cast<float>(ctx.mapParams.cellSizeX),
          (world.y - ctx.lowerLeft.y) / static_cast<float>(ctx.mapParams.cellSizeY)};
}

Point3_f32 worldPoint(const StereoCtx& ctx, Point_f32 map, float z) {
  return {ctx.lowerLeft.x + static_cast<float>(ctx.mapParams.cellSizeX) * map.x,
          ctx.lowerLeft.y + static_cast<float>(ctx.mapParams.cellSizeY) * map.y, z};
}

TEST_F(StereoWrappers, WorldToMap) {
  EXPECT_EQ(ip_stereo_world2elev(&ctx, &point, &p2), 1u);
  EXPECT_EQ(floats(p2), floats(mapPoint(ctx, point)));
}

TEST_F(StereoWrappers, MapToWorldSetsTheElevationExactly) {
  for (float z : {1234.567f, -0.0f, 1e-40f}) {
    EXPECT_EQ(ip_stereo_elev2world(&ctx, &pixel, &p3, z), 1u);
    EXPECT_EQ(floats(p3), floats(worldPoint(ctx, pixel, z))) << z;
  }
}

TEST_F(StereoWrappers, ImageToMapUsesTheGivenPlane) {
  EXPECT_EQ(ip_stereo_img2elev(&ctx, &pixel, &p2, 1500), 1u);
  EXPECT_EQ(floats(p2), floats(mapPoint(ctx, model::img2world(pixel, ext, calib, 1500))));
}

TEST_F(StereoWrappers, MapToImageUsesTheGivenElevation) {
  const Point_f32 map = {70, 60};
  EXPECT_EQ(ip_stereo_elev2img(&ctx, &map, &p2, 1500), 1u);
  EXPECT_EQ(floats(p2), floats(model::cam2img(model::world2cam(worldPoint(ctx, map, 1500), ext), calib)));
}

TEST_F(StereoWrappers, MapToImageOfANearOrHiddenPointIsRefused) {
  const StereoCtx down = context(lookingDown);
  const Point_f32 map = {50, 25};
  EXPECT_EQ(ip_stereo_elev2img(&down, &map, &p2, 50), 0u);
  EXPECT_EQ(ip_stereo_elev2img(&down, &map, &p2, -100), 0u);
  EXPECT_EQ(ip_stereo_elev2img(&down, &map, &p2, 51), 1u);
}

TEST_F(StereoWrappers, ImageAndMapInvertEachOther) {
  lab::Random random(92);
  for (int round = 0; round < 200; round++) {
    const Point_f32 img = {160 + anyWithin(random, 60), 120 + anyWithin(random, 60)};
    Point_f32 map, back;
    ip_stereo_img2elev(&ctx, &img, &map, 1500);
    EXPECT_EQ(ip_stereo_elev2img(&ctx, &map, &back, 1500), 1u);
    EXPECT_NEAR(img.x, back.x, 0.01);
    EXPECT_NEAR(img.y, back.y, 0.01);
  }
}

TEST_F(StereoWrappers, ChangeNothingInTheContext) {
  StereoCtx used = ctx;
  const Point_f32 map = {70, 60};
  ip_stereo_world2cam(&used, &point, &p3);
  ip_stereo_disp2world(&used, &pixel, &p3, 13);
  ip_stereo_img2elev(&used, &pixel, &p2, 1500);
  ip_stereo_elev2img(&used, &map, &p2, 1500);
  EXPECT_EQ(std::memcmp(&ctx, &used, sizeof ctx), 0);
}

}  // namespace
}  // namespace nadir::test
