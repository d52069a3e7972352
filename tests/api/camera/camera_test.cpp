// Calibration records, and the transforms between picture, camera, world and custom frame.
#include <gtest/gtest.h>
#include <nadir/camera.h>

#include <cmath>
#include <limits>

#include "tests/models/camera.hpp"
#include "tests/support/floats.hpp"

namespace nadir::test {
namespace {

constexpr float untouched = -777.0f;
constexpr float disparityBound = 1.1920929e-7f;
constexpr float infinity = std::numeric_limits<float>::infinity();

const IntCalib usualCalib = {100, 250, 160, 120};  // mm, pixels
const IntCalibParams usualLens = {100 * 256, 250 * 256, 160 * 16, 120 * 16};

ExtCalib external(float tilt, float pan) {
  const Orientation o = {2000, tilt, pan};
  ExtCalib e;
  EXPECT_EQ(ip_orientation2externalCalib(&o, &e), 1u);
  return e;
}

Orientation anyOrientation(lab::Random& random) {
  return {1000 + anyWithin(random, 900), anyWithin(random, 89), anyWithin(random, 180)};
}

// A rotation with a translation, as a calibration that comes from elsewhere may have.
ExtCalib anyExternal(lab::Random& random) {
  ExtCalib e = model::externalCalib(anyOrientation(random));
  for (float& t : e.T) t = anyWithin(random, 500);
  return e;
}

IntCalib anyInternal(lab::Random& random) {
  return {100 + anyWithin(random, 50), 300 + anyWithin(random, 100), 160 + anyWithin(random, 40),
          120 + anyWithin(random, 40)};
}

Point3_f32 anyPoint3(lab::Random& random, float range) {
  return {anyWithin(random, range), anyWithin(random, range), anyWithin(random, range)};
}

Point_f32 anyPixel(lab::Random& random) { return {160 + anyWithin(random, 200), 120 + anyWithin(random, 200)}; }

void expectNear(Point3_f32 wanted, Point3_f32 got, float tolerance) {
  EXPECT_NEAR(wanted.x, got.x, tolerance);
  EXPECT_NEAR(wanted.y, got.y, tolerance);
  EXPECT_NEAR(wanted.z, got.z, tolerance);
}

// ---- calibration records ----

TEST(InternalCalib, ScalesTheStoredIntegers) {
  const IntCalibParams params = {25600 + 128, 256, 16 + 8, -1};
  IntCalib calib;
  ip_params2internalCalib(&params, &calib);
  EXPECT_EQ(floats(calib), (Floats{100.5f, 1, 1.5f, -0.0625f}));
}

TEST(InternalCalib, ConvertsToFloatBeforeItScales) {
  // 2^24 + 1 is no float.
  const IntCalibParams params = {16777217, INT32_MAX, INT32_MIN, 16777219};
  IntCalib calib;
  ip_params2internalCalib(&params, &calib);
  EXPECT_EQ(floats(calib), (Floats{65536, 8388608, -134217728, 1048576.25f}));
}

TEST(ExternalCalib, OfACameraThatLooksStraightDownIsTheIdentity) {
  const ExtCalib e = external(0, 0);
  const float identity[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
  for (int i = 0; i < 9; i++) EXPECT_EQ(identity[i], e.R[i]) << i;  // zeros of either sign
  EXPECT_EQ(floats(e.T), (Floats{0, 0, 0}));
}

TEST(ExternalCalib, OfATiltRaisesTheOpticalAxisAlongY) {
  const ExtCalib e = external(30, 0);
  EXPECT_NEAR(0, e.R[2], 1e-6);
  EXPECT_NEAR(0.5, e.R[5], 1e-6);
  EXPECT_NEAR(0.8660254, e.R[8], 1e-6);
}

TEST(ExternalCalib, OfAPanTurnsTheOpticalAxisTowardsMinusX) {
  const ExtCalib e = external(0, 30);
  EXPECT_NEAR(-0.5, e.R[2], 1e-6);
  EXPECT_NEAR(0, e.R[5], 1e-6);
  EXPECT_NEAR(0.8660254, e.R[8], 1e-6);
}

TEST(ExternalCalib, PansBeforeItTilts) {
  const ExtCalib e = external(30, 30);
  EXPECT_NEAR(0, e.R[1], 1e-6);
  EXPECT_NEAR(0.25, e.R[3], 1e-6);
}

TEST(ExternalCalib, DoesNotLookAtTheHeight) {
  const Orientation low = {0, 33, 12}, high = {1e9f, 33, 12};
  ExtCalib a, b;
  ip_orientation2externalCalib(&low, &a);
  ip_orientation2externalCalib(&high, &b);
  EXPECT_EQ(floats(a), floats(b));
}

TEST(ExternalCalib, HasTheBitsOfTheDocumentedProduct) {
  lab::Random random(70);
  for (int round = 0; round < 2000; round++) {
    const Orientation o = round % 2 ? anyOrientation(random)
                                    : Orientation{0, static_cast<float>(random.between(-360, 360)) / 4,
                                                  static_cast<float>(random.between(-720, 720)) / 4};
    ExtCalib e;
    ASSERT_EQ(ip_orientation2externalCalib(&o, &e), 1u);
    ASSERT_EQ(floats(e), floats(model::externalCalib(o))) << o.tilt << " " << o.pan;
  }
}

TEST(ExternalCalib, IsARotation) {
  lab::Random random(71);
  for (int round = 0; round < 100; round++) {
    const Orientation o = anyOrientation(random);
    const ExtCalib e = external(o.tilt, o.pan);
    const model::Matrix r = model::rotationOf(e), should = model::product(r, model::transposed(r));
    for (size_t i = 0; i < 9; i++) ASSERT_NEAR(i % 4 == 0, should[i], 1e-6);
    const double det = double{r[0]} * (double{r[4]} * r[8] - double{r[5]} * r[7]) -
                       double{r[1]} * (double{r[3]} * r[8] - double{r[5]} * r[6]) +
                       double{r[2]} * (double{r[3]} * r[7] - double{r[4]} * r[6]);
    ASSERT_NEAR(1, det, 1e-6);
  }
}

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

// ---- custom ground frame ----

const Orientation mounting = {2000, 35, -10};

ExtCalib customCalib(const CustomFrameParams& frame, const Orientation& o = mounting) {
  ExtCalib e;
  EXPECT_EQ(ip_params2extCalibCustom(&usualLens, &o, &frame, &e), 1u);
  return e;
}

Point3_f32 ground(float x, float y, const Orientation& o = mounting) {
  return model::img2world({x, y}, model::externalCalib(o), model::internalCalib(usualLens), o.height);
}

Point3_f32 custom(Point3_f32 world, const ExtCalib& frame) {
  Point3_f32 out;
  EXPECT_EQ(ip_world2custom(&world, &out, &frame), 1u);
  return out;
}

TEST(CustomFrame, NotEnabledIsTheWorldFrameWhateverElseItHolds) {
  const ExtCalib e = customCalib({0, 10, 10, 10, 10, 123456, -99});
  EXPECT_EQ(floats(e.R), (Floats{1, 0, 0, 0, 1, 0, 0, 0, 1}));
  EXPECT_EQ(floats(e.T), (Floats{0, 0, 0}));
}

TEST(CustomFrame, IsEnabledByAnyNumberButZero) {
  const CustomFrameParams one = {1, 100, 100, 200, 100, 5, 6};
  CustomFrameParams high = one;
  high.enabled = 0x80000000u;
  EXPECT_EQ(floats(customCalib(one)), floats(customCalib(high)));
}

TEST(CustomFrame, RefusesADirectionPointAtItsOrigin) {
  const CustomFrameParams frame = {1, 100, 90, 100, 90, 5, 6};
  ExtCalib e, before;
  for (float& v : e.R) v = untouched;
  for (float& v : e.T) v = untouched;
  before = e;
  EXPECT_EQ(ip_params2extCalibCustom(&usualLens, &mounting, &frame, &e), 0u);
  EXPECT_EQ(floats(before), floats(e));
}

TEST(CustomFrame, RefusesGroundPointsCloserThanTheBound) {
  // A plane so near that neighbouring pixels meet it less than 2^-11.5 mm apart.
  const Orientation o = {0.05f, 0, 0};
  const CustomFrameParams frame = {1, 160, 120, 161, 120, 0, 0};
  ExtCalib e;
  EXPECT_EQ(ip_params2extCalibCustom(&usualLens, &o, &frame, &e), 0u);
  const Orientation higher = {0.1f, 0, 0};
  EXPECT_EQ(ip_params2extCalibCustom(&usualLens, &higher, &frame, &e), 1u);
}

TEST(CustomFrame, StraightDownTurnsYAndZRound) {
  const ExtCalib e = customCalib({1, 160, 120, 260, 120, 0, 0}, {2000, 0, 0});
  const float half[9] = {1, 0, 0, 0, -1, 0, 0, 0, -1};
  for (int i = 0; i < 9; i++) EXPECT_EQ(half[i], e.R[i]) << i;  // zeros of either sign
}

TEST(CustomFrame, GivesItsOriginTheOffsets) {
  const ExtCalib e = customCalib({1, 120, 200, 220, 90, 700, -300});
  expectNear({700, -300, 0}, custom(ground(120, 200), e), 0.01f);
}

TEST(CustomFrame, HasItsDirectionPointAlongX) {
  const ExtCalib e = customCalib({1, 120, 200, 220, 90, 700, -300});
  const Point3_f32 a = ground(120, 200), b = ground(220, 90);
  expectNear({700 + std::hypot(b.x - a.x, b.y - a.y), -300, 0}, custom(b, e), 0.02f);
}

TEST(CustomFrame, MeasuresZUpwardsFromTheGround) {
  const ExtCalib e = customCalib({1, 120, 200, 220, 90, 700, -300});
  EXPECT_NEAR(mounting.height, custom({0, 0, 0}, e).z, 0.01);
  EXPECT_NEAR(mounting.height - 250, custom({-80, 900, 250}, e).z, 0.01);
}

TEST(CustomFrame, IsRightHanded) {
  const ExtCalib e = customCalib({1, 120, 200, 220, 90, 0, 0});
  const float* r = e.R;
  EXPECT_NEAR(r[6], r[1] * r[5] - r[2] * r[4], 1e-6);
  EXPECT_NEAR(r[7], r[2] * r[3] - r[0] * r[5], 1e-6);
  EXPECT_NEAR(r[8], r[0] * r[4] - r[1] * r[3], 1e-6);
}

TEST(CustomFrame, IsTheTurnedDifferenceFromItsOriginPlusTheOffsets) {
  lab::Random random(83);
  for (int round = 0; round < 200; round++) {
    const CustomFrameParams frame = {1,
                                     static_cast<uint16_t>(random.below(160)),
                                     static_cast<uint16_t>(100 + random.below(140)),
                                     static_cast<uint16_t>(160 + random.below(160)),
                                     static_cast<uint16_t>(100 + random.below(140)),
                                     random.between(-3000, 3000),
                                     random.between(-3000, 3000)};
    const ExtCalib e = customCalib(frame);
    const Point3_f32 g1 = ground(frame.originX, frame.originY), world = anyPoint3(random, 3000);
    const model::Vec turned =
        model::product(model::rotationOf(e), model::Vec{world.x - g1.x, world.y - g1.y, world.z - g1.z});
    expectNear(
        {turned[0] + static_cast<float>(frame.offsetX), turned[1] + static_cast<float>(frame.offsetY), turned[2]},
        custom(world, e), 0.05f);
  }
}

ExtCalib expectedCustom(const Orientation& o, const CustomFrameParams& frame) {
  const Point3_f32 g1 = ground(frame.originX, frame.originY, o), g2 = ground(frame.directionX, frame.directionY, o);
  const float dx = g2.x - g1.x, dy = g1.y - g2.y, length = std::sqrt(dx * dx + dy * dy);
  const float ux = dx / length, uy = dy / length;
  const model::Matrix q = {ux, uy, 0, -uy, ux, 0, 0, 0, 1}, flip = {1, 0, 0, 0, -1, 0, 0, 0, -1};
  const model::Matrix s = model::product(q, flip);
  model::Vec t = model::product(s, model::Vec{g1.x, g1.y, g1.z});
  t[0] -= static_cast<float>(frame.offsetX);
  t[1] -= static_cast<float>(frame.offsetY);
  return model::externalOf(s, model::product(model::transposed(s), t));
}

TEST(CustomFrame, HasTheBitsOfTheDocumentedSteps) {
  lab::Random random(84);
  for (int round = 0; round < 500; round++) {
    const Orientation o = {1000 + anyWithin(random, 900), anyWithin(random, 40), anyWithin(random, 40)};
    const bool axisParallel = round % 5 == 0;
    const uint16_t originY = static_cast<uint16_t>(random.below(240));
    const CustomFrameParams frame = {1 + random.below(3),
                                     static_cast<uint16_t>(random.below(160)),
                                     originY,
                                     static_cast<uint16_t>(160 + random.below(65376)),
                                     axisParallel ? originY : static_cast<uint16_t>(random.below(240)),
                                     static_cast<int32_t>(random.next()),
                                     random.between(-3000, 3000)};
    ASSERT_EQ(floats(expectedCustom(o, frame)), floats(customCalib(frame, o)));
  }
}

}  // namespace
}  // namespace nadir::test
