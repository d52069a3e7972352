// The statements of docs/coordinates.md and docs/axes.svg, one test each.
#include <gtest/gtest.h>
#include <nadir/nadir.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

namespace {

constexpr float height = 3000;

const IntCalibParams drawnLens = {120 * 256, 400 * 256, 320 * 16, 240 * 16};
const ElevMapParams drawnMap = {8, 8, 500, 500};

StereoCtx mounted(float tilt, float pan = 0, const ElevMapParams& map = drawnMap) {
  const Orientation orientation = {height, tilt, pan};
  StereoCtx ctx;
  ip_stereo_init(&ctx, &drawnLens, &orientation, &map);
  return ctx;
}

Point3_f32 ground(const StereoCtx& ctx, float x, float y) {
  const Point_f32 img = {x, y};
  Point3_f32 world;
  ip_stereo_img2world(&ctx, &img, &world, height);
  return world;
}

Point_f32 pictureOf(const StereoCtx& ctx, const Point3_f32& world) {
  Point_f32 img;
  EXPECT_EQ(ip_stereo_world2img(&ctx, &world, &img), 1u);
  return img;
}

Point_f32 cellOf(const StereoCtx& ctx, float x, float y) {
  const Point3_f32 world = {x, y, height};
  Point_f32 map;
  ip_stereo_world2elev(&ctx, &world, &map);
  return map;
}

void expectNear(const Point3_f32& p, double x, double y, double z, double tolerance) {
  EXPECT_NEAR(p.x, x, tolerance);
  EXPECT_NEAR(p.y, y, tolerance);
  EXPECT_NEAR(p.z, z, tolerance);
}

// The optical axis in world coordinates.
Point3_f32 axisOf(const StereoCtx& ctx) {
  const Point3_f32 forward = {0, 0, 1};
  Point3_f32 world;
  ip_stereo_cam2world(&ctx, &forward, &world);
  return world;
}

double sine(double degrees) { return std::sin(degrees * M_PI / 180); }
double cosine(double degrees) { return std::cos(degrees * M_PI / 180); }

CustomFrameParams customFrame() { return {1, 520, 400, 620, 300, 70, -30}; }

Point3_f32 customOf(const Point3_f32& world) {
  const Orientation orientation = {height, -30, 0};
  const CustomFrameParams frame = customFrame();
  ExtCalib ext;
  EXPECT_EQ(ip_params2extCalibCustom(&drawnLens, &orientation, &frame, &ext), 1u);
  Point3_f32 custom;
  ip_world2custom(&world, &custom, &ext);
  return custom;
}

}  // namespace

TEST(Axes, PictureXIsRightAndYIsDownAlongTheCameras) {
  const IntCalib calib = mounted(0).intCalib;
  const Point3_f32 cam = {100, 200, 1000};
  Point_f32 img;
  EXPECT_EQ(ip_cam2img(&cam, &img, &calib), 1u);
  EXPECT_FLOAT_EQ(img.x, 320 + 40);
  EXPECT_FLOAT_EQ(img.y, 240 + 80);
}

TEST(Axes, OpticalAxisGoesThroughThePrincipalPoint) {
  const IntCalib calib = mounted(0).intCalib;
  const Point3_f32 cam = {0, 0, 1234};
  Point_f32 img;
  EXPECT_EQ(ip_cam2img(&cam, &img, &calib), 1u);
  EXPECT_EQ(img.x, 320);
  EXPECT_EQ(img.y, 240);
}

TEST(Axes, DisparityTimesDepthIsFocalLengthTimesBaseline) {
  const IntCalib calib = mounted(0).intCalib;
  const Point_f32 img = {0, 0};
  Point3_f32 cam;
  EXPECT_EQ(ip_disp2cam(&img, &cam, &calib, 16), 1u);
  EXPECT_EQ(cam.z, 400.0f * 120 / 16);
}

TEST(Axes, WorldOriginIsTheCameraCentre) {
  const StereoCtx ctx = mounted(-30, 20);
  const Point3_f32 centre = {0, 0, 0};
  Point3_f32 world;
  ip_stereo_cam2world(&ctx, &centre, &world);
  expectNear(world, 0, 0, 0, 0);
}

TEST(Axes, WithoutTiltAndPanTheCameraLooksStraightDownAndTheAxesAgree) {
  const StereoCtx ctx = mounted(0);
  expectNear(ground(ctx, 320, 240), 0, 0, height, 0);
  const Point3_f32 cam = {100, -200, 1000};
  Point3_f32 world;
  ip_stereo_cam2world(&ctx, &cam, &world);
  expectNear(world, 100, -200, 1000, 0);
}

TEST(Axes, WorldZPointsDown) {
  const StereoCtx ctx = mounted(0);
  const Point3_f32 onGround = {500, 0, height}, raised = {500, 0, height - 500};
  // What is nearer to the camera lies farther from the picture's centre.
  EXPECT_GT(pictureOf(ctx, raised).x, pictureOf(ctx, onGround).x);
}

TEST(Axes, RotationsKeepTheFrameRightHanded) {
  for (float tilt : {-90.0f, -30.0f, 0.0f, 50.0f}) {
    for (float pan : {-70.0f, 0.0f, 20.0f}) {
      const StereoCtx ctx = mounted(tilt, pan);
      const float* R = ctx.extCalib.R;
      // Column x cross column y is column z.
      EXPECT_NEAR(R[3] * R[7] - R[6] * R[4], R[2], 1e-6);
      EXPECT_NEAR(R[6] * R[1] - R[0] * R[7], R[5], 1e-6);
      EXPECT_NEAR(R[0] * R[4] - R[3] * R[1], R[8], 1e-6);
    }
  }
}

TEST(Axes, OpticalAxisFollowsTheTwoAngles) {
  for (float tilt : {-90.0f, -30.0f, 0.0f, 30.0f, 90.0f}) {
    for (float pan : {-70.0f, 0.0f, 20.0f}) {
      expectNear(axisOf(mounted(tilt, pan)), -sine(pan), sine(tilt) * cosine(pan), cosine(tilt) * cosine(pan), 1e-6);
    }
  }
}

TEST(Axes, NegativeTiltSeesFarthestAtThePicturesUpperEdge) {
  const StereoCtx ctx = mounted(-30);
  expectNear(ground(ctx, 320, 0), 0, -5404, height, 0.5);
  expectNear(ground(ctx, 320, 240), 0, -1732, height, 0.5);
  expectNear(ground(ctx, 320, 480), 0, 50, height, 0.5);
}

TEST(Axes, PositiveTiltSeesFarthestAtThePicturesLowerEdge) {
  const StereoCtx ctx = mounted(30);
  expectNear(ground(ctx, 320, 480), 0, 5404, height, 0.5);
  expectNear(ground(ctx, 320, 0), 0, -50, height, 0.5);
}

TEST(Axes, TiltOfMinus90LooksLevelWithThePictureUpright) {
  const StereoCtx ctx = mounted(-90);
  const Point3_f32 ahead = {0, -5000, 0}, higher = {0, -5000, -1000}, right = {1000, -5000, 0};
  EXPECT_NEAR(pictureOf(ctx, ahead).x, 320, 1e-3);
  EXPECT_NEAR(pictureOf(ctx, ahead).y, 240, 1e-3);
  EXPECT_NEAR(pictureOf(ctx, higher).y, 240 - 80, 1e-3);
  EXPECT_NEAR(pictureOf(ctx, right).x, 320 + 80, 1e-3);
}

TEST(Axes, TiltOf90LooksLevelWithThePictureUpsideDown) {
  const StereoCtx ctx = mounted(90);
  const Point3_f32 higher = {0, 5000, -1000};
  EXPECT_NEAR(pictureOf(ctx, higher).y, 240 + 80, 1e-3);
}

TEST(Axes, PositivePanLooksToThePicturesLeft) {
  expectNear(ground(mounted(-30, 20), 320, 240), -1260.8, -1732, height, 0.5);
  EXPECT_LT(axisOf(mounted(0, 20)).x, 0);
  // Panned to the left, what was straight ahead appears on the right.
  EXPECT_GT(pictureOf(mounted(-90, 20), {0, -5000, 0}).x, 320);
}

TEST(Axes, PanIsATurnAboutTheVerticalForALevelCamera) {
  const Point3_f32 axis = axisOf(mounted(-90, 20));
  expectNear(axis, -sine(20), -cosine(20), 0, 1e-6);
}

TEST(Axes, PictureCoversTheDrawnPieceOfGround) {
  const StereoCtx ctx = mounted(-30);
  expectNear(ground(ctx, 0, 0), -4240, -5404, height, 0.5);
  expectNear(ground(ctx, 640, 0), 4240, -5404, height, 0.5);
  expectNear(ground(ctx, 640, 480), 2058, 50, height, 1);
  expectNear(ground(ctx, 0, 480), -2058, 50, height, 1);
}

TEST(Axes, MapCornerIsItsSmallestWorldPoint) {
  const StereoCtx ctx = mounted(-30);
  EXPECT_NEAR(ctx.lowerLeft.x, -2000, 0.5);
  EXPECT_NEAR(ctx.lowerLeft.y, -3732, 0.5);
  const Point_f32 corner = cellOf(ctx, ctx.lowerLeft.x, ctx.lowerLeft.y);
  EXPECT_EQ(corner.x, 0);
  EXPECT_EQ(corner.y, 0);
}

TEST(Axes, MapCoordinatesGrowWithWorldXAndY) {
  const StereoCtx ctx = mounted(-30);
  const Point_f32 map = cellOf(ctx, ctx.lowerLeft.x + 1500, ctx.lowerLeft.y + 1000);
  EXPECT_FLOAT_EQ(map.x, 3);
  EXPECT_FLOAT_EQ(map.y, 2);
}

TEST(Axes, CellCentreIsHalfACellFromItsCorner) {
  const StereoCtx ctx = mounted(-30);
  const Point_f32 centre = {0.5f, 0.5f};
  Point3_f32 world;
  ip_stereo_elev2world(&ctx, &centre, &world, height);
  expectNear(world, -1750, -3482, height, 0.5);
}

TEST(Axes, MapOfAnUprightCameraHasFarOnTopAndRightOnTheRight) {
  const StereoCtx ctx = mounted(-30);
  const Point_f32 middle = {320, 240}, above = {320, 140}, right = {420, 240};
  Point_f32 ofMiddle, ofAbove, ofRight;
  ip_stereo_img2elev(&ctx, &middle, &ofMiddle, height);
  ip_stereo_img2elev(&ctx, &above, &ofAbove, height);
  ip_stereo_img2elev(&ctx, &right, &ofRight, height);
  EXPECT_LT(ofAbove.y, ofMiddle.y);
  EXPECT_GT(ofRight.x, ofMiddle.x);
}

TEST(Axes, MapIsAnchoredWithHalfItsWidthOnBothAxes) {
  const StereoCtx ctx = mounted(-30, 0, {8, 2, 500, 300});
  EXPECT_NEAR(ctx.lowerLeft.x, -2000, 0.5);
  EXPECT_NEAR(ctx.lowerLeft.y, -1732 - 2000, 0.5);
}

TEST(Axes, MaskRowZeroHasTheSmallestWorldY) {
  const StereoCtx ctx = mounted(-30);
  std::vector<uint16_t> heights(640 * 480, static_cast<uint16_t>(height));
  std::vector<uint8_t> cells(8 * 8);
  ImgC values;
  ImgC_Init(&values, 640, 480, IMG_TYPE_U16, heights.data());
  Img mask;
  Img_Init(&mask, 8, 8, IMG_TYPE_U8, cells.data());
  // The upper half of the picture sees the ground beyond y = -1732, the map's middle: its first four rows.
  std::vector<uint32_t> words(1 + 2 * 4);
  Polygon_s32* upperHalf = reinterpret_cast<Polygon_s32*>(words.data());
  upperHalf->count = 4;
  const Point_s32 vertices[4] = {{0, 0}, {639, 0}, {639, 239}, {0, 239}};
  for (int k = 0; k < 4; ++k) upperHalf->vertices[k] = vertices[k];
  ASSERT_EQ(IP_Utils_CreateElevMaskFromImgPoly(upperHalf, &ctx, &values, &mask), 1);
  for (size_t i = 0; i < cells.size(); ++i) EXPECT_EQ(cells[i], i < 4 * 8) << "cell " << i;
}

TEST(Axes, CustomZIsTheHeightAboveTheGround) {
  EXPECT_NEAR(customOf({800, -2000, height}).z, 0, 1e-2);
  EXPECT_NEAR(customOf({800, -2000, height - 500}).z, 500, 1e-2);
}

TEST(Axes, CustomOriginPixelGetsTheOffset) {
  const StereoCtx ctx = mounted(-30);
  const Point3_f32 origin = ground(ctx, 520, 400);
  expectNear(origin, 1407, -432, height, 0.5);
  expectNear(customOf(origin), 70, -30, 0, 1e-2);
}

TEST(Axes, CustomXPointsTowardsTheDirectionPixel) {
  const StereoCtx ctx = mounted(-30);
  const Point3_f32 origin = ground(ctx, 520, 400), target = ground(ctx, 620, 300);
  expectNear(target, 2391, -1180, height, 0.5);
  const double distance = std::hypot(target.x - origin.x, target.y - origin.y);
  expectNear(customOf(target), 70 + distance, -30, 0, 1e-2);
}

TEST(Axes, CustomYIsLeftOfXAsSeenFromAbove) {
  // Seen from above with world x to the right and y down, x of the custom frame points up and to the right.
  const Point3_f32 origin = ground(mounted(-30), 520, 400);
  EXPECT_GT(customOf({origin.x - 100, origin.y - 100, height}).y, -30);
  EXPECT_LT(customOf({origin.x + 100, origin.y + 100, height}).y, -30);
}

TEST(Axes, CustomFrameThatIsNotEnabledIsTheWorld) {
  const Orientation orientation = {height, -30, 0};
  const CustomFrameParams frame = {0, 1, 2, 3, 4, 5, 6};
  ExtCalib ext;
  std::memset(&ext, 0x7F, sizeof ext);  // what is not written must not pass for 0
  EXPECT_EQ(ip_params2extCalibCustom(&drawnLens, &orientation, &frame, &ext), 1u);
  const Point3_f32 world = {1, 2, 3};
  Point3_f32 custom;
  ip_world2custom(&world, &custom, &ext);
  expectNear(custom, 1, 2, 3, 0);
}

TEST(Axes, CustomFrameLooksThroughPixelCorners) {
  const StereoCtx ctx = mounted(-30);
  const Point3_f32 custom = customOf(ground(ctx, 520.5f, 400.5f));
  EXPECT_GT(std::hypot(custom.x - 70, custom.y + 30), 1.0);
}

TEST(Axes, MaskLooksThroughPixelCentres) {
  // Straight down at 4000 mm, a pixel is 10 mm wide: the square of pixels 319 to 320 spans -5 to 5 mm.
  const IntCalibParams params = {120 * 256, 400 * 256, 320 * 16, 320 * 16};
  const Orientation orientation = {4000, 0, 0};
  const ElevMapParams map = {20, 20, 1, 1};
  StereoCtx ctx;
  ip_stereo_init(&ctx, &params, &orientation, &map);
  const std::vector<uint16_t> heights(640 * 640, 4000);
  std::vector<uint8_t> cells(20 * 20);
  ImgC values;
  ImgC_Init(&values, 640, 640, IMG_TYPE_U16, heights.data());
  Img mask;
  Img_Init(&mask, 20, 20, IMG_TYPE_U8, cells.data());
  std::vector<uint32_t> words(1 + 2 * 4);
  Polygon_s32* square = reinterpret_cast<Polygon_s32*>(words.data());
  square->count = 4;
  const Point_s32 vertices[4] = {{319, 319}, {320, 319}, {320, 320}, {319, 320}};
  for (int k = 0; k < 4; ++k) square->vertices[k] = vertices[k];
  ASSERT_EQ(IP_Utils_CreateElevMaskFromImgPoly(square, &ctx, &values, &mask), 1);
  // Centres lie at x - 10; -5 is rounded to -4.
  for (int y = 0; y < 20; ++y) {
    for (int x = 0; x < 20; ++x) {
      const bool inside = x - 10 >= -4 && x - 10 <= 5 && y - 10 >= -4 && y - 10 <= 5;
      EXPECT_EQ(cells[static_cast<size_t>(20 * y + x)], inside) << x << ", " << y;
    }
  }
}
