// Transforms between picture, camera and world.
#include <gtest/gtest.h>
#include <nadir/camera.h>

#include <cmath>
#include <limits>

#include "tests/models/camera.hpp"
#include "tests/support/cameras.hpp"

namespace nadir::test {
namespace {

// ---- world and camera ----

TEST(WorldAndCamera, AreTheSameForACameraThatLooksStraightDown) {
  const ExtCalib e = external(0, 0);
  const Point3_f32 p = {12.5f, -7, 900};
  Point3_f32 out;
  EXPECT_EQ(ip_world2cam(&p, &out, &e), 1u);
  EXPECT_EQ(floats(p), floats(out));
  EXPECT_EQ(ip_cam2world(&p, &out, &e), 1u);
  EXPECT_EQ(floats(p), floats(out));
}

TEST(WorldToCamera, TransposesThenTranslates) {
  const ExtCalib e = {{0, 1, 0, 0, 0, 1, 1, 0, 0}, {10, 20, 30}};
  const Point3_f32 world = {1, 2, 3};
  Point3_f32 cam;
  EXPECT_EQ(ip_world2cam(&world, &cam, &e), 1u);
  EXPECT_EQ(floats(cam), floats(Point3_f32{13, 21, 32}));
}

TEST(CameraToWorld, TakesTheTranslationOffThenRotates) {
  const ExtCalib e = {{0, 1, 0, 0, 0, 1, 1, 0, 0}, {10, 20, 30}};
  const Point3_f32 cam = {13, 21, 32};
  Point3_f32 world;
  EXPECT_EQ(ip_cam2world(&cam, &world, &e), 1u);
  EXPECT_EQ(floats(world), floats(Point3_f32{1, 2, 3}));
}

TEST(WorldToCustom, IsTheRotationOfTheDifference) {
  const ExtCalib e = {{0, 1, 0, 0, 0, 1, 1, 0, 0}, {10, 20, 30}};
  const Point3_f32 world = {13, 21, 32};
  Point3_f32 custom;
  EXPECT_EQ(ip_world2custom(&world, &custom, &e), 1u);
  EXPECT_EQ(floats(custom), floats(Point3_f32{1, 2, 3}));
}

TEST(WorldAndCamera, HaveTheBitsOfTheDocumentedProducts) {
  lab::Random random(72);
  for (int round = 0; round < 1000; round++) {
    const ExtCalib e = anyExternal(random);
    const Point3_f32 p = anyPoint3(random, 5000);
    Point3_f32 out;
    ASSERT_EQ(ip_world2cam(&p, &out, &e), 1u);
    ASSERT_EQ(floats(out), floats(model::world2cam(p, e)));
    ASSERT_EQ(ip_cam2world(&p, &out, &e), 1u);
    ASSERT_EQ(floats(out), floats(model::cam2world(p, e)));
    ASSERT_EQ(ip_world2custom(&p, &out, &e), 1u);
    ASSERT_EQ(floats(out), floats(model::cam2world(p, e)));
  }
}

TEST(WorldAndCamera, InvertEachOther) {
  lab::Random random(73);
  for (int round = 0; round < 300; round++) {
    const ExtCalib e = anyExternal(random);
    const Point3_f32 p = anyPoint3(random, 5000);
    Point3_f32 there, back;
    ip_world2cam(&p, &there, &e);
    ip_cam2world(&there, &back, &e);
    expectNear(p, back, 0.01f);
    ip_cam2world(&p, &there, &e);
    ip_world2cam(&there, &back, &e);
    expectNear(p, back, 0.01f);
  }
}

TEST(WorldAndCamera, MayBeComputedInPlace) {
  lab::Random random(74);
  const ExtCalib e = anyExternal(random);
  const Point3_f32 p = anyPoint3(random, 5000);
  Point3_f32 q = p;
  ip_world2cam(&q, &q, &e);
  EXPECT_EQ(floats(q), floats(model::world2cam(p, e)));
  q = p;
  ip_cam2world(&q, &q, &e);
  EXPECT_EQ(floats(q), floats(model::cam2world(p, e)));
  q = p;
  ip_world2custom(&q, &q, &e);
  EXPECT_EQ(floats(q), floats(model::cam2world(p, e)));
}

// ---- camera and image ----

struct Projection {
  uint32_t status;
  Point_f32 img;
};

Projection project(Point3_f32 cam, const IntCalib& calib = usualCalib) {
  Projection p = {99, {untouched, untouched}};
  p.status = ip_cam2img(&cam, &p.img, &calib);
  return p;
}

TEST(CameraToImage, AtFiftyMillimetresIsWrittenButRefused) {
  const Projection p = project({10, -20, 50});
  EXPECT_EQ(p.status, 0u);
  EXPECT_EQ(floats(p.img), floats(Point_f32{210, 20}));
}

TEST(CameraToImage, BeyondFiftyMillimetresDividesByTheDepth) {
  const Projection p = project({51, -102, 51});
  EXPECT_EQ(p.status, 1u);
  EXPECT_EQ(floats(p.img), floats(Point_f32{410, -380}));
  EXPECT_EQ(project({0, 0, std::nextafter(50.0f, 51.0f)}).status, 1u);
}

TEST(CameraToImage, BehindTheCameraDividesByFifty) {
  const Projection p = project({10, -20, -100});
  EXPECT_EQ(p.status, 0u);
  EXPECT_EQ(floats(p.img), floats(Point_f32{210, 20}));
}

TEST(CameraToImage, OfADepthThatIsNoNumberDividesByFifty) {
  const Projection p = project({10, -20, std::numeric_limits<float>::quiet_NaN()});
  EXPECT_EQ(p.status, 0u);
  EXPECT_EQ(floats(p.img), floats(Point_f32{210, 20}));
}

TEST(CameraToImage, HasTheBitsOfTheDocumentedFormula) {
  lab::Random random(75);
  for (int round = 0; round < 1000; round++) {
    const IntCalib calib = anyInternal(random);
    const Point3_f32 cam = anyPoint3(random, 3000);
    const Projection p = project(cam, calib);
    ASSERT_EQ(cam.z > 50, p.status);
    ASSERT_EQ(floats(p.img), floats(model::cam2img(cam, calib)));
  }
}

TEST(ImageToCamera, OfThePrincipalPointIsOnTheAxis) {
  const Point_f32 img = {160, 120};
  Point3_f32 cam;
  EXPECT_EQ(ip_img2cam(&img, &cam, &usualCalib, 700), 1u);
  EXPECT_EQ(floats(cam), floats(Point3_f32{0, 0, 700}));
}

TEST(ImageToCamera, HasTheBitsOfTheDocumentedFormula) {
  lab::Random random(76);
  for (int round = 0; round < 1000; round++) {
    const IntCalib calib = anyInternal(random);
    const Point_f32 img = anyPixel(random);
    const float z = anyWithin(random, 5000);
    Point3_f32 cam;
    ASSERT_EQ(ip_img2cam(&img, &cam, &calib, z), 1u);
    ASSERT_EQ(floats(cam), floats(model::img2cam(img, calib, z)));
  }
}

TEST(ImageToCamera, InvertsTheProjection) {
  lab::Random random(77);
  for (int round = 0; round < 300; round++) {
    const Point_f32 img = anyPixel(random);
    Point3_f32 cam;
    ip_img2cam(&img, &cam, &usualCalib, 60 + 3000 * std::fabs(anyWithin(random, 1)));
    const Projection p = project(cam);
    EXPECT_EQ(p.status, 1u);
    EXPECT_NEAR(img.x, p.img.x, 1e-3);
    EXPECT_NEAR(img.y, p.img.y, 1e-3);
  }
}

TEST(WorldToImage, GivesTheProjectionsResultAndPoint) {
  lab::Random random(78);
  int refused = 0;
  for (int round = 0; round < 500; round++) {
    const ExtCalib e = anyExternal(random);
    const IntCalib calib = anyInternal(random);
    const Point3_f32 world = anyPoint3(random, 3000), cam = model::world2cam(world, e);
    Point_f32 img;
    ASSERT_EQ(cam.z > 50, ip_world2img(&world, &img, &e, &calib));
    ASSERT_EQ(floats(img), floats(model::cam2img(cam, calib)));
    refused += cam.z <= 50;
  }
  EXPECT_GT(refused, 100);
}

// ---- image to world ----

TEST(ImageToWorld, OfThePrincipalPointStraightDownIsAtThePlane) {
  const ExtCalib e = external(0, 0);
  const Point_f32 img = {160, 120};
  Point3_f32 world;
  EXPECT_EQ(ip_img2world(&img, &world, &e, &usualCalib, 1234), 1u);
  EXPECT_EQ(world.x, 0);
  EXPECT_EQ(world.y, 0);
  EXPECT_EQ(world.z, 1234);
}

TEST(ImageToWorld, HasTheBitsOfTheDocumentedIntersection) {
  lab::Random random(79);
  for (int round = 0; round < 1000; round++) {
    const ExtCalib e = anyExternal(random);
    const IntCalib calib = anyInternal(random);
    const Point_f32 img = anyPixel(random);
    const float h = anyWithin(random, 4000);
    Point3_f32 world;
    ASSERT_EQ(ip_img2world(&img, &world, &e, &calib, h), 1u);
    ASSERT_EQ(floats(world), floats(model::img2world(img, e, calib, h)));
  }
}

TEST(ImageToWorld, LiesOnThePlaneAndUnderThePixel) {
  lab::Random random(80);
  for (int round = 0; round < 300; round++) {
    const Orientation o = {2000, anyWithin(random, 40), anyWithin(random, 20)};
    const ExtCalib e = external(o.tilt, o.pan);
    const Point_f32 img = {160 + anyWithin(random, 60), 120 + anyWithin(random, 60)};
    Point3_f32 world;
    ip_img2world(&img, &world, &e, &usualCalib, o.height);
    EXPECT_NEAR(o.height, world.z, 0.01);
    Point_f32 back;
    EXPECT_EQ(ip_world2img(&world, &back, &e, &usualCalib), 1u);
    EXPECT_NEAR(img.x, back.x, 0.01);
    EXPECT_NEAR(img.y, back.y, 0.01);
  }
}

TEST(ImageToWorld, OfARayAlongThePlaneIsInfinite) {
  // The third row cancels for this ray and the others have no zeros that would make NaNs.
  const ExtCalib e = {{1, 1, 1, -1, -2, -1, 0, -1, 1}, {0, 0, 0}};
  const Point_f32 img = {160 + 250, 120 + 250};
  Point3_f32 world;
  EXPECT_EQ(ip_img2world(&img, &world, &e, &usualCalib, 2000), 1u);
  EXPECT_EQ(world.x, infinity);
  EXPECT_EQ(world.y, -infinity);
  EXPECT_TRUE(std::isnan(world.z));
}

TEST(ImageToWorld, OfARayAwayFromThePlaneIsBehindTheCamera) {
  const ExtCalib e = external(-80, 0);
  const Point_f32 img = {160, 0};
  Point3_f32 world, cam;
  EXPECT_EQ(ip_img2world(&img, &world, &e, &usualCalib, 2000), 1u);
  ip_world2cam(&world, &cam, &e);
  EXPECT_LT(cam.z, 0);
  EXPECT_NEAR(2000, world.z, 0.1);
}

// ---- disparities ----

TEST(DisparityToCamera, GivesTheDepthOfTheBaseline) {
  const Point_f32 img = {160 + 125, 120 - 250};
  Point3_f32 cam;
  EXPECT_EQ(ip_disp2cam(&img, &cam, &usualCalib, 12.5f), 1u);
  EXPECT_EQ(floats(cam), floats(Point3_f32{1000, -2000, 2000}));
}

TEST(DisparityToCamera, RefusesWhatIsNotPositive) {
  const Point_f32 img = {1, 2};
  for (float d : {0.0f, -0.0f, -1.0f, -infinity, disparityBound}) {
    Point3_f32 cam = {untouched, untouched, untouched};
    EXPECT_EQ(ip_disp2cam(&img, &cam, &usualCalib, d), 0u) << d;
    EXPECT_EQ(floats(cam), floats(Point3_f32{untouched, untouched, untouched})) << d;
  }
}

TEST(DisparityToCamera, TakesTheSmallestAboveTheBound) {
  const Point_f32 img = {160, 120};
  Point3_f32 cam;
  EXPECT_EQ(ip_disp2cam(&img, &cam, &usualCalib, std::nextafter(disparityBound, 1.0f)), 1u);
}

TEST(DisparityToCamera, HasTheBitsOfTheDocumentedFormula) {
  lab::Random random(81);
  for (int round = 0; round < 500; round++) {
    const IntCalib calib = anyInternal(random);
    const Point_f32 img = anyPixel(random);
    const float d = static_cast<float>(1 + random.below(1023)) / 16;
    Point3_f32 cam;
    ASSERT_EQ(ip_disp2cam(&img, &cam, &calib, d), 1u);
    ASSERT_EQ(floats(cam), floats(model::img2cam(img, calib, calib.focalLength * calib.baseline / d)));
  }
}

TEST(DisparityToWorld, IsTheCameraPointInTheWorld) {
  lab::Random random(82);
  for (int round = 0; round < 500; round++) {
    const ExtCalib e = anyExternal(random);
    const Point_f32 img = anyPixel(random);
    const float d = static_cast<float>(1 + random.below(1023)) / 16;
    const Point3_f32 cam = model::img2cam(img, usualCalib, usualCalib.focalLength * usualCalib.baseline / d);
    Point3_f32 world;
    ASSERT_EQ(ip_disp2world(&img, &world, &e, &usualCalib, d), 1u);
    ASSERT_EQ(floats(world), floats(model::cam2world(cam, e)));
  }
}

TEST(DisparityToWorld, RefusesWhatIsNotPositive) {
  const ExtCalib e = external(10, 20);
  const Point_f32 img = {1, 2};
  for (float d : {0.0f, -3.0f, disparityBound}) {
    Point3_f32 world = {untouched, untouched, untouched};
    EXPECT_EQ(ip_disp2world(&img, &world, &e, &usualCalib, d), 0u) << d;
    EXPECT_EQ(floats(world), floats(Point3_f32{untouched, untouched, untouched})) << d;
  }
}

}  // namespace
}  // namespace nadir::test
