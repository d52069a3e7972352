// The custom frame: axes of its own on the ground.
#include <gtest/gtest.h>
#include <nadir/camera.h>

#include <cmath>
#include <cstring>

#include "tests/models/camera.hpp"
#include "tests/support/cameras.hpp"

namespace nadir::test {
namespace {

const Orientation mounting = {2000, 35, -10};

ExtCalib customCalib(const CustomFrameParams& frame, const Orientation& o = mounting) {
  ExtCalib e;
  std::memset(&e, 0x7F, sizeof e);  // what is not written must not pass for 0
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

TEST(CustomFrame, TakesGroundPointsAtTheBoundItself) {
  // Pixels (0, 0) and (1, 1) meet the ground 2^-12 mm apart in x and in y: the squared distance is 2^-23.
  const IntCalibParams lens = {256, 1048576, 0, 0};
  const Orientation o = {1, 0, 0};
  const CustomFrameParams frame = {1, 0, 0, 1, 1, 0, 0};
  ExtCalib e;
  EXPECT_EQ(ip_params2extCalibCustom(&lens, &o, &frame, &e), 1u);
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
