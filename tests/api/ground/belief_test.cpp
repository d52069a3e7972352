// What a track believes of single frames, and what a disparity is worth to it.
#include "tests/api/ground/tracks.hpp"
#include "tests/support/rounds.hpp"

namespace nadir::test {
namespace {

// ---- what a track believes ----

constexpr double frameSeconds = 1 / 15.0;

// Somebody 1150 mm tall who bobs by 17 mm, measured with an error of one part in ten of what tracks expect.
double bobbing(uint32_t frame) { return 1150 + 17 * std::sin(0.48 * frame) + (frame * 7 % 3) - 1.0; }

// Followed for so many frames.
Tracker walked(const Road& road, uint32_t frames) {
  Tracker tracker = makeTracker(road);
  for (uint32_t i = 0; i < frames; ++i) EXPECT_EQ(replay(tracker, i * frameSeconds, bobbing(i)), NADIR_OK);
  return tracker;
}

TEST(Belief, OneWrongHeightMovesATrackByAFewDeviationsAtMost) {
  const Road road = roadWithTwoAreas();
  for (const uint32_t frames : {1u, 2u, 20u}) {
    const Tracker unmeasured = walked(road, frames);
    replay(unmeasured, frames * frameSeconds, nothing);
    const NadirTrack wanted = trackOf(unmeasured);
    for (double wrong = 0; wrong <= 65535; wrong += wrong < 3000 ? 13 : 5000) {
      const Tracker tracker = walked(road, frames);
      replay(tracker, frames * frameSeconds, wrong);
      const double moved = std::abs(trackOf(tracker).height_mm - wanted.height_mm);
      ASSERT_LE(moved, 5 * wanted.deviation_mm) << wrong << " after " << frames;
      if (std::abs(wrong - wanted.height_mm) <= 200) continue;
      ASSERT_TRUE(sameBytes(wanted, trackOf(tracker))) << wrong;
    }
  }
}

TEST(Belief, AChangeThatStaysIsFollowedInItsThirdFrame) {
  const Road road = roadWithTwoAreas();
  for (const double change : {-1000.0, -300.0, 300.0, 700.0}) {
    const Tracker tracker = walked(road, 20);
    for (uint32_t i = 20; i < 23; ++i) {
      EXPECT_NEAR(trackOf(tracker).height_mm, 1150, 60) << change;
      replay(tracker, i * frameSeconds, bobbing(i) + change);
    }
    EXPECT_NEAR(trackOf(tracker).height_mm, bobbing(22) + change, 20) << change;
    for (uint32_t i = 23; i < 40; ++i) replay(tracker, i * frameSeconds, bobbing(i) + change);
    EXPECT_NEAR(trackOf(tracker).height_mm, bobbing(39) + change, 10) << change;
  }
}

TEST(Belief, AChangeThatStaysIsKnownAsWellAsANewTrackIs) {
  const Road road = roadWithTwoAreas();
  const Tracker changed = walked(road, 20), begun = makeTracker(road);
  for (uint32_t i = 20; i < 23; ++i)
    for (const Tracker* tracker : {&changed, &begun}) replay(*tracker, i * frameSeconds, 1700 + i);
  EXPECT_TRUE(sameBytes(trackOf(changed), trackOf(begun)));
}

TEST(Belief, WrongHeightsThatDisagreeAreNotBelieved) {
  const Tracker tracker = walked(roadWithTwoAreas(), 20);
  const double wrong[] = {278, 75, 600, 1700, 90, 500};
  for (uint32_t i = 0; i < 6; ++i) {
    replay(tracker, (20 + i) * frameSeconds, wrong[i]);
    EXPECT_EQ(trackOf(tracker).active, 1u);
    EXPECT_NEAR(trackOf(tracker).height_mm, 1150, 120) << i;
  }
}

TEST(Belief, ABelievedHeightEndsAllDoubt) {
  const Tracker tracker = walked(roadWithTwoAreas(), 20);
  for (uint32_t i = 20; i < 50; ++i) {
    replay(tracker, i * frameSeconds, i % 3 == 0 ? bobbing(i) : 500);
    EXPECT_NEAR(trackOf(tracker).height_mm, bobbing(i), 60) << i;
  }
}

TEST(Belief, FramesWithoutAMeasurementLeaveADoubt) {
  const Tracker tracker = walked(roadWithTwoAreas(), 20);
  for (uint32_t i = 20; i < 25; ++i) replay(tracker, i * frameSeconds, i % 2 ? nothing : 500);
  EXPECT_NEAR(trackOf(tracker).height_mm, 500, 1);
}

TEST(Belief, ThePatienceCountsFromTheLastBelievedHeight) {
  const Tracker tracker = makeTracker(roadWithTwoAreas());
  replay(tracker, 0, 1150);
  replay(tracker, 0.4, 60000);
  EXPECT_NEAR(trackOf(tracker).height_mm, 1150, 1e-3);
  replay(tracker, 0.51, 30000);
  EXPECT_EQ(trackOf(tracker).height_mm, 30000);
}

// What `piece` and `highest` say of a track of 1150 mm, and of an area where nothing is followed.
NadirTrack afterPiece(double highest, double piece, bool followed) {
  const Road road = roadWithTwoAreas();
  const Tracker tracker = followed ? walked(road, 20) : makeTracker(road);
  EXPECT_EQ(replay(tracker, {4 * second / 3, {highest, nothing}, {}, {piece, nothing}}), NADIR_OK);
  return trackOf(tracker);
}

TEST(Belief, APieceOfARegionKeepsATrackButBeginsNone) {
  EXPECT_TRUE(sameBytes(afterPiece(nothing, 1160, true), afterPiece(1160, 1160, true)));
  EXPECT_EQ(afterPiece(nothing, 1160, false).active, 0u);
}

TEST(Belief, APieceTallerThanRegionsIsWhatTheAreaMeasures) {
  EXPECT_TRUE(sameBytes(afterPiece(250, 1160, true), afterPiece(1160, 1160, true)));
  EXPECT_EQ(afterPiece(250, 1160, false).height_mm, 1160);
}

TEST(Belief, RegionsKeepATrackThatATallerPieceWouldNot) {
  EXPECT_TRUE(sameBytes(afterPiece(1160, 1900, true), afterPiece(1160, 1160, true)));
}

TEST(Belief, TooFewCellsAreNoMeasurement) {
  EXPECT_TRUE(sameBytes(afterPiece(1160, nothing, true), afterPiece(nothing, nothing, true)));
  EXPECT_EQ(afterPiece(1160, nothing, false).active, 0u);
  EXPECT_TRUE(sameBytes(afterPiece(1700, 1160, true), afterPiece(1160, 1160, true)));
  EXPECT_EQ(afterPiece(1700, 1160, false).height_mm, 1160);
}

// The squares of such noise lie at the end of single precision: whatever becomes of doubts, the state stays one.
TEST(Belief, DoubtsOfTheLeastNoiseCanBeSaved) {
  const Road road = roadWithTwoAreas();
  NadirTrackSettings settings = trackSettings();
  for (const double noise : {1e-18, 1e-19, 5e-20, 1e-20, 1e-22}) {
    settings.noise_mm = noise;
    const Tracker tracker = makeTracker(road, settings), other = makeTracker(road, settings);
    double time = 0;
    for (const double height : {1000.0, 0.0, 900.0, 900.0, 900.0, 300.0, 300.0, 900.0}) {
      if (height == 0) time = 0.1;
      replay(tracker, time, height > 0 ? height : nothing);
      const std::vector<unsigned char> state = saved(tracker);
      ASSERT_EQ(nadir_tracker_load(other.get(), state.data(), state.size()), NADIR_OK) << noise;
    }
  }
}

// ---- what a disparity is worth ----

NadirTrackSettings ofDisparities(double pixels) {
  NadirTrackSettings settings = trackSettings();
  settings.disparity_px = pixels;
  return settings;
}

// From straight above and 2000 mm high a pixel of disparity is depth * depth / 16000 mm everywhere.
TEST(Precision, IsThatOfTheDisparityAtTheHeight) {
  for (const double height : {0.0, 700.0, 1500.0})
    for (const double pixels : {0.05, 0.1, 1.0}) {
      const Tracker tracker = makeTracker(roadWithTwoAreas(), ofDisparities(pixels));
      replay(tracker, 0, height);
      const double off = pixels * (2000 - height) * (2000 - height) / 16000;
      EXPECT_NEAR(trackOf(tracker).deviation_mm, std::hypot(std::max(10.0, 0.4 * off), off), 0.01 * off) << height;
    }
}

TEST(Precision, GrowsWithTheDepthOfTheArea) {
  NadirCamera camera = smallCamera();
  camera.tilt_deg = -40;
  const std::vector<int32_t> away = {-300, -1980, 300, -1980, 300, -1850, -300, -1850};
  const std::vector<int32_t> nearby = {-300, -1600, 300, -1600, 300, -1470, -300, -1470};
  const Road road = makeRoad(camera, defaultSettings(camera), {areaOf(away), areaOf(nearby)});
  const Tracker tracker = makeTracker(road, ofDisparities(0.1));
  ASSERT_EQ(replay(tracker, {0, {500, 500}, {}}), NADIR_OK);
  EXPECT_GT(trackOf(tracker, 0).deviation_mm, trackOf(tracker, 1).deviation_mm + 0.5);
}

TEST(Precision, WhatLastsIsNotEvenedOut) {
  const Tracker tracker = makeTracker(roadWithTwoAreas(), ofDisparities(0.1));
  for (int i = 0; i < 200; ++i) replay(tracker, i * frameSeconds, 400);
  EXPECT_GE(trackOf(tracker).deviation_mm, 0.1 * 1600 * 1600 / 16000);
}

// No camera sees it, and nothing is said of its disparity.
TEST(Precision, AboveTheCameraIsThatOfTheNoise) {
  for (const double height : {2000.0, 2500.0, 65535.0}) {
    const Tracker tracker = makeTracker(roadWithTwoAreas(), ofDisparities(0.1));
    replay(tracker, 0, height);
    EXPECT_FLOAT_EQ(static_cast<float>(trackOf(tracker).deviation_mm), 10) << height;
  }
}

TEST(Precision, WidensWhatIsLikely) {
  for (const double pixels : {0.0, 0.2}) {
    const Tracker tracker = makeTracker(roadWithTwoAreas(), ofDisparities(pixels));
    for (uint32_t i = 0; i < 20; ++i) replay(tracker, i * frameSeconds, 400);
    replay(tracker, 20 * frameSeconds, 500);
    EXPECT_EQ(trackOf(tracker).height_mm > 405, pixels > 0);
  }
}

// Walkers, measured with the error that the settings tell.
TEST(Belief, TheStatedDeviationCoversTheError) {
  uint32_t covered = 0, frames = 0;
  inRounds(20, [&](lab::Random& random) {
    const Tracker tracker = makeTracker(roadWithTwoAreas());
    for (uint32_t i = 0; i < 60; ++i) {
      const double truth = 1600 + 17 * std::sin(0.48 * i),
                   sum = random.below(1000) + random.below(1000) + random.below(1000);
      replay(tracker, i * frameSeconds, truth + 10 * (sum - 1498.5) / 500);
      covered += std::abs(trackOf(tracker).height_mm - truth) <= 2 * trackOf(tracker).deviation_mm;
      ++frames;
    }
  });
  EXPECT_GE(covered, 0.95 * frames);
}

}  // namespace
}  // namespace nadir::test
