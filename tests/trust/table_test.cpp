// The table of warnings: every fault gives its own and no other, and nothing unspoilt gives any.
#include <algorithm>
#include <cstdlib>

#include "lab/scene/ready_scenes.hpp"
#include "tests/trust/faults.hpp"
#include "tests/trust/real_pairs.hpp"

namespace nadir::ground::test {

namespace {

void expectNone(const Rendered& r, const std::string& what) {
  EXPECT_EQ("none", trustOf(r.pair, &r.camera).names()) << what;
}

void expectOwn(const std::vector<Fault>& faults, bool hasMount, const std::string& what) {
  for (const Fault& f : faults)
    EXPECT_EQ(f.warning, trustOf(f.pair, hasMount ? &f.camera : nullptr).names()) << what << ": " << f.name;
}

class TableOfScene : public testing::TestWithParam<const char*> {};

}  // namespace

TEST_P(TableOfScene, UnspoiltGivesNone) {
  for (uint64_t seed = 1; seed <= 5; ++seed) {
    const Rendered r = rendered(GetParam(), 320, 240, seed, 0);
    for (const double noise : {0.0, 5.0, 20.0})
      expectNone({noisy(r.pair, noise, seed), r.camera}, "seed " + std::to_string(seed));
  }
}

TEST_P(TableOfScene, UnspoiltInOtherSizesGivesNone) {
  expectNone(rendered(GetParam(), 640, 480, 6, 5), "640 x 480");
  expectNone(rendered(GetParam(), 400, 300, 7, 20), "400 x 300");
  const Rendered small = rendered(GetParam(), 160, 120, 8, 5);
  expectNone(small, "160 x 120");
  EXPECT_EQ("none", trustOf(small.pair, nullptr).names()) << "160 x 120, without a mount";
}

TEST_P(TableOfScene, SpoiltPicturesGiveTheirOwn) {
  expectOwn(spoiltPictures(rendered(GetParam(), 320, 240, 9, 5)), true, GetParam());
  expectOwn(spoiltPictures(rendered(GetParam(), 160, 120, 9, 20)), false, GetParam());
}

TEST_P(TableOfScene, SpoiltCamerasGiveTheirOwn) {
  expectOwn(spoiltCameras(rendered(GetParam(), 320, 240, 10, 5), true), true, GetParam());
  expectOwn(spoiltCameras(rendered(GetParam(), 400, 300, 11, 20), true), true, GetParam());
}

INSTANTIATE_TEST_SUITE_P(Table, TableOfScene,
                         testing::Values("boxes", "people", "couples", "walkers", "steps", "slope", "crop-rows",
                                         "empty-floor"));

TEST(Table, HoldsEveryReadyScene) { EXPECT_EQ(8u, scene::readyScenes().size()); }

TEST(Table, PeopleUnderALowCameraAreTooNear) {
  const Rendered people = rendered("people", 640, 480, 12, 5, 2500),
                 walkers = rendered("walkers", 640, 480, 12, 5, 2200);
  EXPECT_EQ("nearer-than-the-range", trustOf(people.pair, &people.camera).names());
  EXPECT_EQ("nearer-than-the-range", trustOf(walkers.pair, &walkers.camera).names());
}

TEST(Table, PeopleJustWithinTheRangeAreNot) { expectNone(rendered("people", 320, 240, 12, 5, 2500), "2500 mm"); }

TEST(Table, AFlatThingThatLeavesNoRimIsTooNear) {
  const Rendered r = nearBox(640, 480, 2000, 500, 1);
  EXPECT_EQ("nearer-than-the-range", trustOf(r.pair, &r.camera).names());
}

// Ground that changes by 0.06 to 0.08 pixel from row to row is pulled by more than the tolerance elsewhere.
TEST(Table, SteepGroundUnderALowCameraIsUnspoilt) {
  for (const char* scene : {"boxes", "steps", "crop-rows", "empty-floor"})
    for (const double tilt : {-60.0, -70.0})
      for (const double height : {1500.0, 1800.0}) {
        const Rendered r = rendered(scene, 320, 240, 13, 10, height, tilt);
        expectNone(r, std::string(scene) + " at " + std::to_string(height) + ", " + std::to_string(tilt));
      }
}

// The matcher's wrong matches lie at all disparities then, those at the range's end too.
TEST(Table, PicturesThatDoNotBelongTogetherAreOfLowDensity) {
  for (const char* scene : {"boxes", "people", "crop-rows", "empty-floor"}) {
    Rendered r = rendered(scene, 320, 240, 14, 5);
    std::vector<uint16_t>& right = r.pair.right.pixels;
    std::rotate(right.begin(), right.begin() + 3 * 320, right.end());
    EXPECT_EQ("low-density", trustOf(r.pair, &r.camera).names()) << scene << ", three rows off";
    std::reverse(right.begin(), right.end());
    EXPECT_EQ("low-density", trustOf(r.pair, &r.camera).names()) << scene << ", upside down";
  }
}

TEST(Table, ALaxPeakCheckHidesNothing) {
  for (const char* scene : {"boxes", "people", "crop-rows", "empty-floor"}) {
    const Rendered r = rendered(scene, 320, 240, 15, 5);
    const Pair swapped{r.pair.right, r.pair.left}, same{r.pair.left, r.pair.left};
    EXPECT_EQ("none", trustOf(r.pair, &r.camera, 0).names()) << scene;
    EXPECT_EQ("left-and-right-swapped", trustOf(swapped, &r.camera, 0).names()) << scene;
    EXPECT_EQ("same-picture-twice", trustOf(same, &r.camera, 0).names()) << scene;
  }
}

TEST(Table, APitLiesBelowTheGround) {
  for (const double depth : {300.0, 1000.0})
    for (const double side : {1000.0, 2000.0}) {
      const Rendered r = pit(320, 240, depth, side, 1);
      EXPECT_EQ("below-the-ground", trustOf(r.pair, &r.camera).names()) << depth << " deep, " << side << " wide";
    }
}

// Ramps fill the picture and outvote the ground, which is there all the same.
TEST(Table, ASlopeSeenFromOtherMountsIsUnspoilt) {
  for (const double tilt : {0.0, -45.0, -60.0}) expectNone(rendered("slope", 640, 480, 1, 5, 3000, tilt), "slope");
  for (const double height : {1500.0, 4500.0}) expectNone(rendered("slope", 640, 480, 1, 5, height), "slope");
}

TEST(Table, RealPairs) {
  const std::vector<RealPair> pairs = realPairs();
  if (pairs.empty()) GTEST_SKIP() << "NADIR_DATA names no folder with pairs";
  for (const RealPair& r : pairs) {
    EXPECT_EQ("none", trustOf(r.good.pair, r.hasMount ? &r.good.camera : nullptr).names()) << r.name;
    expectOwn(spoiltPictures(r.good), r.hasMount, r.name);
    if (r.hasMount) expectOwn(spoiltCameras(r.good, false), true, r.name);
  }
}

}  // namespace nadir::ground::test
