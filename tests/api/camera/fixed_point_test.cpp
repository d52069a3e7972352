// The transforms in fixed point, against the float ones.
#include <gtest/gtest.h>
#include <nadir/camera.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <tuple>

#include "tests/models/camera.hpp"
#include "tests/support/cameras.hpp"
#include "tests/support/floats.hpp"
#include "tests/support/integers.hpp"

namespace nadir::test {
namespace {

auto xyz(const Point3_s32& p) { return std::make_tuple(p.x, p.y, p.z); }
auto xy(const Point_s32& p) { return std::make_tuple(p.x, p.y); }

// A camera that looks straight down: every transform between world and camera is the identity.
TrafoParams straightDown() {
  TrafoParams trafo = {};
  trafo.intParams = usualLens;
  trafo.ext.R[0] = trafo.ext.R[4] = trafo.ext.R[8] = 4096;
  return trafo;
}

TrafoParams tilted(float tilt, float pan) {
  const Orientation o = {2000, tilt, pan};
  TrafoParams trafo;
  EXPECT_EQ(ip_createTrafoParams(&o, &usualLens, &trafo), 1u);
  return trafo;
}

TrafoParams anyTrafo(lab::Random& random) {
  TrafoParams trafo = tilted(anyWithin(random, 80), anyWithin(random, 80));
  for (int32_t& t : trafo.ext.T) t = random.between(-8000, 8000);
  return trafo;
}

Point3_s32 anyFixedPoint3(lab::Random& random, int32_t range) {
  return {random.between(-range, range), random.between(-range, range), random.between(-range, range)};
}

ExtCalib widenedExternal(const TrafoParams& trafo) {
  ExtCalib e;
  for (int i = 0; i < 9; i++) e.R[i] = static_cast<float>(trafo.ext.R[i]) * 0.000244140625f;
  for (int i = 0; i < 3; i++) e.T[i] = static_cast<float>(trafo.ext.T[i]) * 0.0625f;
  return e;
}

Point3_f32 widened(Point3_s32 p) {
  return {static_cast<float>(p.x) * 0.0625f, static_cast<float>(p.y) * 0.0625f, static_cast<float>(p.z) * 0.0625f};
}
Point_f32 widened(Point_s32 p) { return {static_cast<float>(p.x) * 0.0625f, static_cast<float>(p.y) * 0.0625f}; }

int32_t counts(float v) { return static_cast<int32_t>(std::floor(0.5f + v * 16)); }
Point3_s32 counts(Point3_f32 p) { return {counts(p.x), counts(p.y), counts(p.z)}; }
Point_s32 counts(Point_f32 p) { return {counts(p.x), counts(p.y)}; }

// ---- parameters ----

TEST(TrafoParameters, OfACameraStraightDownAreTheIdentityIn4096ths) {
  const Orientation o = {2000, 0, 0};
  ExtCalibFixed ext;
  std::memset(&ext, 0xA5, sizeof ext);
  EXPECT_EQ(ip_orientation2trafo(&o, &ext), 1u);
  const TrafoParams wanted = straightDown();
  EXPECT_EQ(std::memcmp(&wanted.ext, &ext, sizeof ext), 0);
}

TEST(TrafoParameters, RoundCoefficientsToTheNearest) {
  lab::Random random(100);
  for (int round = 0; round < 500; round++) {
    const Orientation o = {0, anyWithin(random, 180), anyWithin(random, 180)};
    const ExtCalib e = model::externalCalib(o);
    ExtCalibFixed ext;
    ASSERT_EQ(ip_orientation2trafo(&o, &ext), 1u);
    for (int i = 0; i < 9; i++) ASSERT_EQ(ext.R[i], static_cast<int32_t>(std::round(e.R[i] * 4096)));
    for (int32_t t : ext.T) ASSERT_EQ(t, 0);
  }
}

TEST(TrafoParameters, RoundNegativeHalvesAwayFromZero) {
  // An angle whose sine is 0.5 / 4096 to the last bit makes coefficients of half a count of either sign.
  float degrees = 0.00699415f;
  auto coefficient = [](float tilt) { return model::externalCalib({0, tilt, 0}).R[7] * 4096; };
  while (coefficient(degrees) > -0.5f) degrees = std::nextafter(degrees, 1.0f);
  while (coefficient(degrees) < -0.5f) degrees = std::nextafter(degrees, 0.0f);
  ASSERT_EQ(coefficient(degrees), -0.5f);
  ExtCalibFixed ext;
  const Orientation o = {0, degrees, 0};
  ip_orientation2trafo(&o, &ext);
  EXPECT_EQ(ext.R[7], -1);
  EXPECT_EQ(ext.R[5], 1);
}

TEST(TrafoParameters, AreOneFlatRecord) {
  const Orientation o = {2000, 30, 20};
  TrafoParams trafo;
  std::memset(&trafo, 0xA5, sizeof trafo);
  EXPECT_EQ(ip_createTrafoParams(&o, &usualLens, &trafo), 1u);
  ExtCalibFixed ext;
  ip_orientation2trafo(&o, &ext);
  int32_t flat[17];
  ASSERT_EQ(sizeof flat, sizeof trafo);
  std::memcpy(flat, &trafo, sizeof flat);
  EXPECT_EQ(flat[0], 0);
  EXPECT_EQ(std::memcmp(&usualLens, flat + 1, sizeof usualLens), 0);
  EXPECT_EQ(std::memcmp(&ext, flat + 5, sizeof ext), 0);
}

TEST(TrafoParameters, CopyTheInternalOnesWhateverTheyHold) {
  const Orientation o = {2000, 30, 20};
  const IntCalibParams odd = {INT32_MIN, INT32_MAX, -1, 0};
  TrafoParams trafo;
  ip_createTrafoParams(&o, &odd, &trafo);
  EXPECT_EQ(std::memcmp(&odd, &trafo.intParams, sizeof odd), 0);
}

TEST(TrafoParameters, WidenToFloats) {
  lab::Random random(101);
  for (int round = 0; round < 300; round++) {
    int32_t flat[17];
    for (int32_t& v : flat) v = round % 2 ? anyInteger(random) : random.between(-9000, 9000);
    TrafoParams trafo;
    std::memcpy(&trafo, flat, sizeof trafo);
    ExtCalib ext;
    IntCalib calib;
    ASSERT_EQ(ip_trafoParams2calib(&trafo, &ext, &calib), 1u);
    ASSERT_EQ(floats(ext), floats(widenedExternal(trafo)));
    ASSERT_EQ(floats(calib), floats(model::internalCalib(trafo.intParams)));
  }
}

TEST(TrafoParameters, ComeBackWithinHalfACount) {
  const Orientation o = {2000, 37, -21};
  const TrafoParams trafo = tilted(o.tilt, o.pan);
  ExtCalib ext;
  IntCalib calib;
  ip_trafoParams2calib(&trafo, &ext, &calib);
  EXPECT_EQ(floats(calib), floats(model::internalCalib(usualLens)));
  const ExtCalib exact = model::externalCalib(o);
  for (int i = 0; i < 9; i++) EXPECT_NEAR(exact.R[i], ext.R[i], 1.0 / 8192) << i;
  EXPECT_EQ(floats(ext.T), (Floats{0, 0, 0}));
}

// ---- transforms ----

TEST(FixedWorldToCamera, StraightDownIsTheIdentity) {
  const TrafoParams trafo = straightDown();
  for (Point3_s32 p : {Point3_s32{0, 0, 0}, {1, -1, 32000}, {-16, 17, -8388607}}) {
    Point3_s32 cam;
    ip_world2cam_s32(&cam, &p, &trafo);
    EXPECT_EQ(xyz(cam), xyz(p));
  }
}

TEST(FixedWorldToCamera, RoundsHalvesUp) {
  // Half the scale of the world: odd counts end on halves.
  TrafoParams trafo = straightDown();
  trafo.ext.R[0] = trafo.ext.R[4] = trafo.ext.R[8] = 2048;
  const Point3_s32 world = {-1, 1, -3};
  Point3_s32 cam;
  ip_world2cam_s32(&cam, &world, &trafo);
  EXPECT_EQ(xyz(cam), xyz({0, 1, -1}));
}

TEST(FixedWorldToCamera, AddsTheHalfInSinglePrecision) {
  // From 2^23 on floats are whole numbers: an odd count plus a half ends on the even one above or below.
  const TrafoParams trafo = straightDown();
  const Point3_s32 world = {8388609, 8388611, -8388609};
  Point3_s32 cam;
  ip_world2cam_s32(&cam, &world, &trafo);
  EXPECT_EQ(xyz(cam), xyz({8388610, 8388612, -8388608}));
}

TEST(FixedWorldToCamera, AddsTheTranslation) {
  TrafoParams trafo = straightDown();
  trafo.ext.T[0] = 5;
  trafo.ext.T[1] = -6;
  trafo.ext.T[2] = 7;
  const Point3_s32 world = {100, 200, 300};
  Point3_s32 cam;
  ip_world2cam_s32(&cam, &world, &trafo);
  EXPECT_EQ(xyz(cam), xyz({105, 194, 307}));
}

TEST(FixedWorldToCamera, IsTheRoundedFloatTransform) {
  lab::Random random(102);
  for (int round = 0; round < 1000; round++) {
    const TrafoParams trafo = anyTrafo(random);
    const Point3_s32 world = anyFixedPoint3(random, 100000);
    Point3_s32 cam;
    ip_world2cam_s32(&cam, &world, &trafo);
    ASSERT_EQ(xyz(cam), xyz(counts(model::world2cam(widened(world), widenedExternal(trafo)))));
  }
}

TEST(FixedWorldToCamera, IsNearTheUnroundedOrientation) {
  // Three coefficients, each up to 2^-13 off, times up to 5000 mm, and half a count.
  lab::Random random(103);
  for (int round = 0; round < 300; round++) {
    const Orientation o = {2000, anyWithin(random, 80), anyWithin(random, 80)};
    const TrafoParams trafo = tilted(o.tilt, o.pan);
    const Point3_s32 world = anyFixedPoint3(random, 80000);
    Point3_s32 cam;
    ip_world2cam_s32(&cam, &world, &trafo);
    const Point3_f32 exact = model::world2cam(widened(world), model::externalCalib(o)), got = widened(cam);
    const float tolerance = 3 * 5000.0f / 8192 + 0.05f;
    EXPECT_NEAR(exact.x, got.x, tolerance);
    EXPECT_NEAR(exact.y, got.y, tolerance);
    EXPECT_NEAR(exact.z, got.z, tolerance);
  }
}

Point_s32 image(Point3_s32 world, const TrafoParams& trafo) {
  Point_s32 img = {-777, -777};
  ip_world2img_s32(&img, &world, &trafo);
  return img;
}

TEST(FixedWorldToImage, ProjectsTo16thsOfAPixel) {
  // 200 mm right and 100 mm up at 1000 mm.
  EXPECT_EQ(xy(image({200 * 16, -100 * 16, 1000 * 16}, straightDown())), xy({(160 + 50) * 16, (120 - 25) * 16}));
}

TEST(FixedWorldToImage, IsWrittenForPointsTheProjectionRefuses) {
  EXPECT_EQ(xy(image({10 * 16, 0, 50 * 16}, straightDown())), xy({(160 + 50) * 16, 120 * 16}));
  EXPECT_EQ(xy(image({10 * 16, 0, -9000}, straightDown())), xy({(160 + 50) * 16, 120 * 16}));
}

TEST(FixedWorldToImage, IsTheRoundedFloatTransform) {
  lab::Random random(104);
  for (int round = 0; round < 1000; round++) {
    const TrafoParams trafo = anyTrafo(random);
    const Point3_s32 world = anyFixedPoint3(random, 50000);
    const Point3_f32 cam = model::world2cam(widened(world), widenedExternal(trafo));
    ASSERT_EQ(xy(image(world, trafo)), xy(counts(model::cam2img(cam, model::internalCalib(trafo.intParams)))));
  }
}

TEST(FixedImageToGround, StraightDownScalesByTheHeight) {
  const Point_s32 img = {(160 + 25) * 16, (120 - 50) * 16};
  const TrafoParams trafo = straightDown();
  Point3_s32 world;
  ip_img2groundplane_s32(&world, &img, 2000 * 16, &trafo);
  EXPECT_EQ(xyz(world), xyz({200 * 16, -400 * 16, 2000 * 16}));
}

TEST(FixedImageToGround, IsTheRoundedFloatTransform) {
  lab::Random random(105);
  for (int round = 0; round < 1000; round++) {
    TrafoParams trafo = tilted(anyWithin(random, 40), anyWithin(random, 40));
    for (int32_t& t : trafo.ext.T) t = random.between(-8000, 8000);
    const Point_s32 img = {random.between(100 * 16, 220 * 16), random.between(60 * 16, 180 * 16)};
    const int32_t height = random.between(-60000, 60000);
    Point3_s32 world;
    ip_img2groundplane_s32(&world, &img, height, &trafo);
    const Point3_f32 wanted = model::img2world(widened(img), widenedExternal(trafo), model::internalCalib(usualLens),
                                               static_cast<float>(height) * 0.0625f);
    ASSERT_EQ(xyz(world), xyz(counts(wanted)));
  }
}

TEST(FixedImageToGround, RoundsMinusAHalfUpToZero) {
  // (x - cx) / f * h = -1 / 1 * 0.03125 mm is -0.5 counts.
  TrafoParams trafo = straightDown();
  trafo.intParams = {256, 256, 32, 0};
  trafo.ext.R[8] = 8192;
  const Point_s32 img = {16, 48};
  Point3_s32 world;
  ip_img2groundplane_s32(&world, &img, 1, &trafo);
  EXPECT_EQ(world.x, 0);
  EXPECT_EQ(world.y, 2);
}

TEST(FixedOutOfRange, BecomesTheNearestIntegerAndNaNZero) {
  // f * x / 50 with f = 8388608 pixels goes beyond the range on either side; a plane along the ray is no number.
  TrafoParams trafo = straightDown();
  trafo.intParams = {0, INT32_MAX, 0, 0};
  EXPECT_EQ(xy(image({1000000, -1000000, 0}, trafo)), xy({INT32_MAX, INT32_MIN}));
  TrafoParams level = straightDown();
  level.ext.R[8] = 0;
  const Point_s32 principal = {160 * 16, 120 * 16};
  Point3_s32 world = {-777, -777, -777};
  ip_img2groundplane_s32(&world, &principal, 2000 * 16, &level);
  EXPECT_EQ(xyz(world), xyz({0, 0, 0}));
}

TEST(FixedImageToWorldFloat, RoundsNothing) {
  lab::Random random(106);
  for (int round = 0; round < 500; round++) {
    const TrafoParams trafo = anyTrafo(random);
    const Point_f32 img = {160 + anyWithin(random, 160), 120 + anyWithin(random, 120)};
    const float h = anyWithin(random, 4000);
    Point3_f32 world;
    ASSERT_EQ(ip_img2world_f32(&world, &img, &trafo, h), 1u);
    ASSERT_EQ(floats(world), floats(model::img2world(img, widenedExternal(trafo), model::internalCalib(usualLens), h)));
  }
}

// ---- the map's rectangle ----

TEST(FixedMapRect, RunsRoundTheCentre) {
  const TrafoParams trafo = straightDown();
  Point3_s32 corner[4];
  EXPECT_EQ(ip_calcMapRect_s32(corner, 1000, 32000, &trafo), 1u);
  EXPECT_EQ(xyz(corner[0]), xyz({-500, -500, 32000}));
  EXPECT_EQ(xyz(corner[1]), xyz({-500, 500, 32000}));
  EXPECT_EQ(xyz(corner[2]), xyz({500, 500, 32000}));
  EXPECT_EQ(xyz(corner[3]), xyz({500, -500, 32000}));
}

TEST(FixedMapRect, HalvesAnOddSizeTowardsZero) {
  const TrafoParams trafo = straightDown();
  Point3_s32 corner[4];
  ip_calcMapRect_s32(corner, 5, 32000, &trafo);
  EXPECT_EQ(xyz(corner[0]), xyz({-2, -2, 32000}));
  ip_calcMapRect_s32(corner, -5, 32000, &trafo);
  EXPECT_EQ(xyz(corner[0]), xyz({2, 2, 32000}));
}

TEST(FixedMapRect, WrapsAroundWhereACornerLeaves32Bits) {
  const Orientation o = {0, 0, 60};
  const IntCalibParams lens = {256, 128000, 0, 0};
  TrafoParams trafo;
  ASSERT_EQ(ip_createTrafoParams(&o, &lens, &trafo), 1u);
  const Point_s32 principal = {0, 0};
  Point3_s32 centre, corner[4];
  ip_img2groundplane_s32(&centre, &principal, 1 << 30, &trafo);
  EXPECT_EQ(centre.x, -1859649536);
  EXPECT_EQ(ip_calcMapRect_s32(corner, INT32_MAX, 1 << 30, &trafo), 1u);
  EXPECT_EQ(corner[0].x, 1361575937);
  EXPECT_EQ(corner[2].x, -785907713);
}

TEST(FixedMapRect, IsCentredUnderThePrincipalPoint) {
  lab::Random random(107);
  for (int round = 0; round < 300; round++) {
    TrafoParams trafo = tilted(anyWithin(random, 50), anyWithin(random, 50));
    trafo.intParams.principalX = random.between(-100, 5000);
    const Point_s32 principal = {trafo.intParams.principalX, trafo.intParams.principalY};
    const int32_t size = random.between(-50000, 50000), height = random.between(-40000, 40000), half = size / 2;
    Point3_s32 g, corner[4];
    ip_img2groundplane_s32(&g, &principal, height, &trafo);
    ASSERT_EQ(ip_calcMapRect_s32(corner, size, height, &trafo), 1u);
    ASSERT_EQ(xyz(corner[0]), xyz({g.x - half, g.y - half, g.z}));
    ASSERT_EQ(xyz(corner[1]), xyz({g.x - half, g.y + half, g.z}));
    ASSERT_EQ(xyz(corner[2]), xyz({g.x + half, g.y + half, g.z}));
    ASSERT_EQ(xyz(corner[3]), xyz({g.x + half, g.y - half, g.z}));
  }
}

// ---- millimetres and grids ----

TEST(CalibrationCoordinate, IsSixteenPerMillimetre) {
  EXPECT_EQ(ip_millimeter2CalibCoord_s32(0), 0);
  EXPECT_EQ(ip_millimeter2CalibCoord_s32(-3), -48);
  EXPECT_EQ(ip_millimeter2CalibCoord_s32(INT32_MAX / 16), INT32_MAX - 15);
}

TEST(CalibrationCoordinate, WrapsAround) {
  EXPECT_EQ(ip_millimeter2CalibCoord_s32(INT32_MAX), -16);
  EXPECT_EQ(ip_millimeter2CalibCoord_s32(INT32_MIN), 0);
}

TEST(CalibrationCoordinate, GoesBackRoundedDown) {
  EXPECT_EQ(ip_calibCoord2Millimeter_s32(-1), -1);
  EXPECT_EQ(ip_calibCoord2Millimeter_s32(-16), -1);
  EXPECT_EQ(ip_calibCoord2Millimeter_s32(-17), -2);
  EXPECT_EQ(ip_calibCoord2Millimeter_s32(15), 0);
  EXPECT_EQ(ip_calibCoord2Millimeter_s32(16), 1);
  EXPECT_EQ(ip_calibCoord2Millimeter_s32(INT32_MIN), -134217728);
}

TEST(GridCentre, IsHalfACellIntoTheCell) { EXPECT_EQ(ip_gridCoord2Coord_s32(2, 100, 10), 125); }

TEST(GridCentre, HalvesAnOddCellDown) { EXPECT_EQ(ip_gridCoord2Coord_s32(2, 100, 11), 127); }

TEST(GridCentre, OfANegativeCellIsBelowTheOrigin) { EXPECT_EQ(ip_gridCoord2Coord_s32(-1, 100, 10), 95); }

TEST(GridCentre, TakesTheCellSizeWithoutASign) {
  EXPECT_EQ(ip_gridCoord2Coord_s32(0, 0, 0x80000000u), 0x40000000);
  EXPECT_EQ(ip_gridCoord2Coord_s32(0, 0, 0xFFFFFFFFu), INT32_MAX);
}

TEST(GridCentre, OfAnyIntegersWrapsAround) {
  lab::Random random(108);
  for (int round = 0; round < 1000; round++) {
    const int32_t g = anyInteger(random), o = anyInteger(random), c = anyInteger(random);
    const int32_t half = static_cast<int32_t>(static_cast<uint32_t>(c) >> 1);
    ASSERT_EQ(ip_gridCoord2Coord_s32(g, o, static_cast<uint32_t>(c)), (Wrap(half) + Wrap(c) * g + o).value());
  }
}

TEST(GridCell, IsTheWholeNumberOfCellsFromTheOrigin) {
  EXPECT_EQ(ip_coord2GridCoord_s32(125, 100, 10), 2);
  EXPECT_EQ(ip_coord2GridCoord_s32(129, 100, 10), 2);
  EXPECT_EQ(ip_coord2GridCoord_s32(130, 100, 10), 3);
}

TEST(GridCell, BelowTheOriginIsZero) {
  EXPECT_EQ(ip_coord2GridCoord_s32(99, 100, 1), 0);
  EXPECT_EQ(ip_coord2GridCoord_s32(-5000, 100, 1), 0);
}

TEST(GridCell, OfCellsWithoutSizeIsZero) { EXPECT_EQ(ip_coord2GridCoord_s32(125, 100, 0), 0); }

TEST(GridCell, DividesByTheCellSizeWithoutASign) {
  EXPECT_EQ(ip_coord2GridCoord_s32(INT32_MAX, 0, 0x80000000u), 0);
  EXPECT_EQ(ip_coord2GridCoord_s32(INT32_MAX, 0, 0x7FFFFFFFu), 1);
}

TEST(GridCell, WrapsTheDifferenceBeforeItLooksAtTheSign) {
  EXPECT_EQ(ip_coord2GridCoord_s32(INT32_MAX, -1, 1), 0);
  EXPECT_EQ(ip_coord2GridCoord_s32(INT32_MIN, 1, 1), INT32_MAX);
}

TEST(GridCell, OfAnyIntegersFollowsTheWrappedDifference) {
  lab::Random random(109);
  for (int round = 0; round < 1000; round++) {
    const int32_t x = anyInteger(random), o = anyInteger(random);
    const uint32_t c = static_cast<uint32_t>(anyInteger(random));
    const uint32_t difference = static_cast<uint32_t>(std::max((Wrap(x) - o).value(), 0));
    ASSERT_EQ(ip_coord2GridCoord_s32(x, o, c), c == 0 ? 0 : static_cast<int32_t>(difference / c));
  }
}

}  // namespace
}  // namespace nadir::test
