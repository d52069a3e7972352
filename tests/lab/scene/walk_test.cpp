// Figures that walk: how they move, and that their pictures follow.
#include "lab/scene/walk.hpp"

#include <gtest/gtest.h>

#include <algorithm>

#include "lab/scene/ready_scenes.hpp"
#include "tests/lab/scene/eye.hpp"

namespace nadir::test {
namespace {

using scene::Footing;
using scene::Walk;

scene::Site corner(double x, double y) { return {x, y, 3000, 0}; }

TEST(SceneWalk, GoesToAndFroBetweenTwoCorners) {
  const Walk walk{{corner(100, 0), corner(1100, 0)}, 500, 600, 0, 0};
  const std::pair<double, double> expected[] = {{0, 100}, {1, 600}, {2, 1100}, {3, 600}, {4, 100}, {5, 600}};
  for (const auto& [seconds, x] : expected) {
    EXPECT_NEAR(walk.at(seconds).x, x, 1e-9) << seconds;
    EXPECT_NEAR(walk.at(seconds).y, 0, 1e-9) << seconds;
  }
}

TEST(SceneWalk, GoesRoundAndRoundThreeCorners) {
  const Walk walk{{corner(0, 0), corner(300, 0), corner(0, 400)}, 100, 600, 0, 250};
  EXPECT_NEAR(walk.at(0).x, 250, 1e-9);
  EXPECT_NEAR(walk.at(3).x, 300 - 250 * 3 / 5.0, 1e-9) << "half of the slanted edge";
  EXPECT_NEAR(walk.at(3).y, 200, 1e-9);
  EXPECT_NEAR(walk.at(9).x, 0, 1e-9);
  EXPECT_NEAR(walk.at(9).y, 50, 1e-9) << "1150 mm on: 50 before the first corner";
  EXPECT_NEAR(walk.at(12).x, 250, 1e-9) << "once around";
}

TEST(SceneWalk, BobsOnceAStep) {
  const Walk walk{{corner(0, 0), corner(5000, 0)}, 600, 600, 35, 0};
  double least = 99, most = -1;
  for (int i = 0; i <= 100; ++i) {
    const double dip = walk.at(i / 100.0).dip;
    EXPECT_NEAR(dip, 17.5 * (1 - std::cos(2 * std::acos(-1) * i / 100)), 1e-9) << i;
    least = std::min(least, dip);
    most = std::max(most, dip);
  }
  EXPECT_NEAR(least, 0, 1e-9);
  EXPECT_NEAR(most, 35, 1e-9);
}

double number(const scene::Object& object, const std::string& name) {
  for (const auto& [key, value] : object.numbers)
    if (key == name) return value;
  ADD_FAILURE() << name;
  return 0;
}

TEST(SceneWalkers, NeverMeetAndStayInThePicture) {
  const CameraSettings settings;
  const scene::Rig rig = makeRig(settings);
  const Eye eye(settings, Side::left);
  for (const uint64_t seed : {1, 2, 3})
    for (int frame = 0; frame < 600; ++frame) {
      const scene::Scene scene = scene::makeScene("walkers", rig, seed, frame / 10.0);
      ASSERT_EQ(scene.objects.size(), 4u);
      for (size_t i = 1; i < 4; ++i) {
        const scene::Object& a = scene.objects[i];
        const scene::ImagePoint head = eye.image({number(a, "x_mm"), number(a, "y_mm"), 3000 - number(a, "height_mm")});
        ASSERT_TRUE(head.x > 0 && head.y > 0 && head.x < 639 && head.y < 479) << seed << ' ' << frame;
        for (size_t j = 1; j < i; ++j) {
          const scene::Object& b = scene.objects[j];
          const double apart = std::hypot(number(a, "x_mm") - number(b, "x_mm"), number(a, "y_mm") - number(b, "y_mm"));
          ASSERT_GT(apart, number(a, "radius_mm") + number(b, "radius_mm")) << seed << ' ' << frame;
        }
      }
    }
}

// Seen from straight above, the pattern on a head is the same after the way, because it goes along.
TEST(SceneWalkers, CarryTheirPatternAlong) {
  CameraSettings settings = cameraAt(0, 0);
  const scene::Rig rig = makeRig(settings);
  const scene::Scene before = scene::makeScene("walkers", rig, 1, 0), after = scene::makeScene("walkers", rig, 1, 0.4);
  for (size_t i = 1; i < before.objects.size(); ++i) {
    const auto moved = [&](const char* name) {
      return number(after.objects[i], name) - number(before.objects[i], name);
    };
    EXPECT_GT(std::hypot(moved("x_mm"), moved("y_mm")), 20);
    const Vec way = after.objects[i].anchor - before.objects[i].anchor;
    EXPECT_NEAR(way.x, moved("x_mm"), 1e-9);
    EXPECT_NEAR(way.y, moved("y_mm"), 1e-9);
    EXPECT_NEAR(way.z, -moved("height_mm"), 1e-9) << "z points down";
    EXPECT_EQ(before.objects[i].pattern, after.objects[i].pattern);
  }
}

TEST(SceneNoise, EveryFrameAndSideHasItsOwn) {
  const CameraSettings settings = cameraAt(-30, 0);
  const scene::Rig rig = makeRig(settings);
  const scene::Scene scene = scene::makeScene("empty-floor", rig, 1);
  std::vector<std::vector<uint16_t>> noises;
  for (const uint32_t frame : {0u, 1u, 2u})
    for (const Side side : {Side::left, Side::right}) {
      const auto clean = picture(scene, rig, side, {}, nothing),
                 noisy = picture(scene, rig, side, {9, false, frame}, nothing);
      std::vector<uint16_t> difference;
      for (size_t i = 0; i < clean.pixels.size(); ++i)
        difference.push_back(static_cast<uint16_t>(noisy.pixels[i] - clean.pixels[i]));
      EXPECT_EQ(std::count(noises.begin(), noises.end(), difference), 0) << frame;
      noises.push_back(difference);
    }
}

}  // namespace
}  // namespace nadir::test
