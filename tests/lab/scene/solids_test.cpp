// Each body against its definition as a set of points: the space in front of what is seen is empty, and just behind it
// the body begins. The same for what the other camera sees of it.
#include <gtest/gtest.h>

#include "tests/lab/scene/eye.hpp"

namespace nadir::test {
namespace {

using scene::Extent;
using scene::Site;

constexpr double groundZ = 3000;

// A point of the world in a body's own directions, as seen from its site.
Vec local(const Site& site, const Vec& p) {
  const double turn = site.degrees * std::acos(-1) / 180, x = p.x - site.x, y = p.y - site.y;
  return {x * std::cos(turn) + y * std::sin(turn), y * std::cos(turn) - x * std::sin(turn), site.groundZ - p.z};
}

struct Body {
  const char* name;
  scene::Solid solid;
  std::function<bool(const Vec&)> contains;  // of a world point
};

bool inBlock(const Extent& e, const Vec& p) {
  return std::abs(p.x) <= e.width / 2 && std::abs(p.y) <= e.depth / 2 && p.z >= 0 && p.z <= e.height;
}

std::vector<Body> bodies(const Site& site) {
  const Extent e{700, 500, 600};
  const Extent low{900, 700, 250};
  const auto in = [site](auto test) { return [site, test](const Vec& p) { return test(local(site, p)); }; };
  return {{"box", makeBox(site, e), in([e](const Vec& p) { return inBlock(e, p); })},
          {"ramp", makeRamp(site, e),
           in([e](const Vec& p) { return inBlock(e, p) && p.z / e.height <= p.y / e.depth + 0.5; })},
          {"ridge", makeRidge(site, low, 400), in([low](const Vec& p) {
             return inBlock(low, p) && std::abs(p.x) <= 450 + (200 - 450) * p.z / low.height;
           })},
          // Height 300 over a circle of radius 400: the ball's radius is 250000 / 600, by Pythagoras.
          {"dome", makeDome(site, 400, 300), in([](const Vec& p) {
             return p.z >= 0 && length({p.x, p.y, p.z - 300 + 2500.0 / 6}) <= 2500.0 / 6;
           })},
          {"raised half ball", makeDome(site, 300, 300, 400), in([](const Vec& p) {
             return p.z >= 400 && length({p.x, p.y, p.z - 400}) <= 300;
           })},
          {"capsule", makeCapsule(site, 240, 1800), in([](const Vec& p) {
             return length({p.x, p.y, p.z - std::min(std::max(p.z, 240.0), 1560.0)}) <= 240;
           })}};
}

// Whether any of 200 points between the two ends lies inside.
bool blocked(const Body& body, const Vec& from, const Vec& to) {
  for (int i = 0; i < 200; ++i)
    if (body.contains(from + (to - from) * (i / 200.0))) return true;
  return false;
}

class Solids : public testing::TestWithParam<std::tuple<double, double, double, Side>> {
 protected:
  Solids() : settings(cameraAt(std::get<0>(GetParam()), std::get<1>(GetParam()), std::get<3>(GetParam()))) {
    const Eye reference(settings, settings.reference);
    const Vec ray = reference.at(55, 50, 1);
    const Vec foot = reference.at(55, 50, groundZ / ray.z);
    all = bodies({foot.x, foot.y, groundZ, std::get<2>(GetParam())});
  }

  scene::ViewTruth truthOf(const Body& body, Side side) const {
    scene::Scene scene;
    scene.groundZ = groundZ;
    scene.objects.resize(2);
    scene.objects[0].solid = scene::makeGround(groundZ);
    scene.objects[1].solid = body.solid;
    return truth(scene, makeRig(settings), side, nothing);
  }

  CameraSettings settings;
  std::vector<Body> all;
};

TEST_P(Solids, AreSeenWhereTheyBegin) {
  for (const Body& body : all)
    for (const Side side : {Side::left, Side::right}) {
      const scene::ViewTruth t = truthOf(body, side);
      const Eye eye(settings, side);
      int seen = 0;
      for (uint32_t y = 0; y < settings.height; y += 2)
        for (uint32_t x = 0; x < settings.width; ++x) {
          if (t.disparity.at(x, y) == 0) continue;
          const double depth = settings.focal * settings.baseline / t.disparity.at(x, y);
          ASSERT_FALSE(blocked(body, eye.centre(), eye.at(x, y, depth - 0.001))) << body.name << ' ' << x << ' ' << y;
          ASSERT_NEAR(t.height.at(x, y), groundZ - eye.at(x, y, depth).z, 1e-6);
          if (t.height.at(x, y) < 0.01) continue;
          ++seen;
          ASSERT_TRUE(body.contains(eye.at(x, y, depth + 0.001))) << body.name << ' ' << x << ' ' << y;
        }
      EXPECT_GT(seen, 30) << body.name;
    }
}

TEST_P(Solids, HideWhatIsBehindThem) {
  for (const Body& body : all)
    for (const Side side : {Side::left, Side::right}) {
      const scene::ViewTruth t = truthOf(body, side);
      const Eye eye(settings, side), other(settings, side == Side::left ? Side::right : Side::left);
      int hidden = 0, unclear = 0;
      for (uint32_t y = 0; y < settings.height; y += 2)
        for (uint32_t x = 0; x < settings.width; ++x) {
          if (t.disparity.at(x, y) == 0) continue;
          const Vec point = eye.at(x, y, settings.focal * settings.baseline / t.disparity.at(x, y));
          const double column = other.image(point).x;
          if (column < -0.5 || column >= settings.width - 0.5) {
            ASSERT_TRUE(t.occluded.at(x, y));
            continue;
          }
          const Vec before = point + (other.centre() - point) * (0.02 / length(other.centre() - point));
          const bool isBlocked = blocked(body, other.centre(), before);
          hidden += isBlocked;
          unclear += isBlocked != (t.occluded.at(x, y) != 0);
        }
      // Samples along a line miss corners that are thinner than their distance.
      EXPECT_LE(unclear, 4) << body.name;
      EXPECT_GE(hidden, body.name == std::string("capsule") ? 8 : 0) << body.name;
    }
}

INSTANTIATE_TEST_SUITE_P(Views, Solids,
                         testing::Values(std::make_tuple(0.0, 0.0, 0.0, Side::left),
                                         std::make_tuple(-30.0, 0.0, 25.0, Side::left),
                                         std::make_tuple(-50.0, 20.0, -70.0, Side::right),
                                         std::make_tuple(20.0, -30.0, 130.0, Side::left)));

// By hand, straight from above: f * B / (3000 - height), and the height itself.
TEST(SolidsByHand, TopsOfABoxAndOfACapsule) {
  const CameraSettings settings = cameraAt(0, 0);
  for (const auto& [solid, height] : {std::make_pair(scene::makeBox({0, 0, groundZ, 30}, {400, 300, 500}), 500.0),
                                      std::make_pair(scene::makeCapsule({0, 0, groundZ, 0}, 230, 1750), 1750.0)}) {
    scene::Scene scene;
    scene.groundZ = groundZ;
    scene.objects.resize(2);
    scene.objects[0].solid = scene::makeGround(groundZ);
    scene.objects[1].solid = solid;
    const scene::ViewTruth t = truth(scene, makeRig(settings), Side::left, nothing);
    EXPECT_NEAR(t.height.at(48, 36), height, 1e-9);
    EXPECT_NEAR(t.disparity.at(48, 36), 80 * 130 / (3000 - height), 1e-9);
    EXPECT_NEAR(t.height.at(2, 2), 0, 1e-9);
  }
}

}  // namespace
}  // namespace nadir::test
