// From frame to frame: tracks of heights, averages of maps, and a state that can be saved and taken up.
#include <algorithm>

#include "tests/api/ground/roads.hpp"
#include "tests/support/guarded.hpp"
#include "tests/support/rounds.hpp"
#include "tests/support/same.hpp"

namespace nadir::test {
namespace {

constexpr double nothing = std::numeric_limits<double>::quiet_NaN();
constexpr int64_t second = 1000000000;

const std::vector<int32_t> leftArea = {-300, -200, 0, -200, 0, 200, -300, 200};
const std::vector<int32_t> rightArea = {20, -200, 300, -200, 300, 200, 20, 200};

Road roadWithTwoAreas(const NadirCamera& camera = smallCamera()) {
  return makeRoad(camera, defaultSettings(camera), {areaOf(leftArea), areaOf(rightArea)});
}

NadirTrackSettings trackSettings(uint32_t averageFrames = 0) {
  NadirTrackSettings settings{};
  EXPECT_EQ(nadir_track_settings_fill(&settings), NADIR_OK);
  settings.average_frames = averageFrames;
  return settings;
}

Tracker makeTracker(const Road& road, const NadirTrackSettings& settings = trackSettings()) {
  NadirTracker* tracker = nullptr;
  EXPECT_EQ(nadir_tracker_create(road.get(), &settings, &tracker, nullptr), NADIR_OK);
  return Tracker(tracker);
}

// What a frame says of the two areas, and its map where it has one.
struct Log {
  int64_t time;
  double highest[2];
  Grid<uint16_t> map;
  std::vector<double> pieces = {};
};

NadirMeasurement measurementOf(const Log& log) {
  NadirMeasurement m{};
  m.size = sizeof m;
  m.area_count = 2;
  m.time_ns = log.time;
  m.highest_mm = log.highest;
  if (!log.pieces.empty()) m.piece_mm = log.pieces.data();
  if (!log.map.pixels.empty()) m.heights = {log.map.pixels.data(), log.map.width * 2, log.map.width, log.map.height};
  return m;
}

NadirStatus replay(const Tracker& tracker, const Log& log) {
  const NadirMeasurement m = measurementOf(log);
  return nadir_tracker_replay(tracker.get(), &m);
}

NadirStatus replay(const Tracker& tracker, double seconds, double highest) {
  return replay(tracker, {static_cast<int64_t>(seconds * 1000) * 1000000, {highest, nothing}, {}});
}

NadirTrack trackOf(const Tracker& tracker, uint32_t area = 0) {
  NadirTrack track{};
  track.size = sizeof track;
  EXPECT_EQ(nadir_tracker_read(tracker.get(), area, &track), NADIR_OK);
  return track;
}

Grid<uint16_t> averageOf(const Tracker& tracker) {
  NadirPlane plane{};
  EXPECT_EQ(nadir_tracker_average(tracker.get(), &plane), NADIR_OK);
  return gridOf<uint16_t>(plane);
}

std::vector<unsigned char> saved(const Tracker& tracker) {
  std::vector<unsigned char> state(nadir_tracker_save(tracker.get(), nullptr, 0));
  EXPECT_EQ(nadir_tracker_save(tracker.get(), state.data(), state.size()), state.size());
  return state;
}

Grid<uint16_t> anyMap(lab::Random& random) {
  Grid<uint16_t> map(16, 14);
  for (uint16_t& h : map.pixels) h = random.below(2) ? static_cast<uint16_t>(random.below(65536)) : uint16_t{0};
  return map;
}

Log anyLog(lab::Random& random, int64_t& time) {
  time += random.below(4) ? random.below(200) * 1000000 : random.below(1500) * 1000000;
  Log log{time, {nothing, nothing}, {}};
  for (double& h : log.highest) h = random.below(3) ? 100.0 + random.below(2000) : nothing;
  if (random.below(5)) log.map = anyMap(random);
  return log;
}

std::vector<Log> anyLogs(lab::Random& random, uint32_t count) {
  std::vector<Log> logs;
  int64_t time = random.between(-1000, 1000);
  for (uint32_t i = 0; i < count; ++i) logs.push_back(anyLog(random, time));
  return logs;
}

// ---- settings ----

struct TrackLimit {
  const char* name;
  void (*set)(NadirTrackSettings&, double);
  std::vector<double> good, bad;
};

std::vector<TrackLimit> trackLimits() {
  const double inf = std::numeric_limits<double>::infinity();
  return {{"average_frames",
           [](NadirTrackSettings& s, double v) { s.average_frames = static_cast<uint32_t>(v); },
           {0, 1, 1000},
           {1001, 4294967295.0}},
          {"noise_mm",
           [](NadirTrackSettings& s, double v) { s.noise_mm = v; },
           {1e-3, 1e6},
           {0, -1, 1e6 + 1, nothing, inf}},
          {"acceleration_mm_per_s2",
           [](NadirTrackSettings& s, double v) { s.acceleration_mm_per_s2 = v; },
           {0, 1e9},
           {-1e-9, 1e9 + 1, nothing, inf}},
          {"patience_s",
           [](NadirTrackSettings& s, double v) { s.patience_s = v; },
           {0, 1e6},
           {-1e-9, 1e6 + 1, nothing, inf}},
          {"disparity_px",
           [](NadirTrackSettings& s, double v) { s.disparity_px = v; },
           {0, 1000},
           {-1e-9, 1001, nothing, inf}}};
}

class TrackLimits : public ::testing::TestWithParam<TrackLimit> {};

TEST_P(TrackLimits, NumbersAtTheLimitAreAccepted) {
  const Road road = roadWithTwoAreas();
  for (const double value : GetParam().good) {
    NadirTrackSettings settings = trackSettings();
    GetParam().set(settings, value);
    EXPECT_NE(makeTracker(road, settings), nullptr) << value;
  }
}

TEST_P(TrackLimits, NumbersBeyondItAreRefusedByName) {
  const Road road = roadWithTwoAreas();
  for (const double value : GetParam().bad) {
    NadirTrackSettings settings = trackSettings();
    GetParam().set(settings, value);
    NadirTracker* tracker = nullptr;
    NadirFault fault = marked<NadirFault>();
    EXPECT_EQ(nadir_tracker_create(road.get(), &settings, &tracker, &fault), NADIR_BAD_SETTING) << value;
    EXPECT_STREQ(fault.field, GetParam().name) << value;
    EXPECT_EQ(tracker, nullptr) << value;
  }
}

TEST_P(TrackLimits, NumbersBeyondItTakeNoBytes) {
  const Road road = roadWithTwoAreas();
  for (const double value : GetParam().bad) {
    NadirTrackSettings settings = trackSettings();
    GetParam().set(settings, value);
    EXPECT_EQ(nadir_tracker_bytes(road.get(), &settings), 0u) << value;
  }
}

INSTANTIATE_TEST_SUITE_P(Members, TrackLimits, ::testing::ValuesIn(trackLimits()),
                         [](const auto& limit) { return std::string(limit.param.name); });

TEST(TrackerBytes, GrowWithTheWindow) {
  const Road road = roadWithTwoAreas();
  const NadirTrackSettings less = trackSettings(0), more = trackSettings(5);
  EXPECT_GT(nadir_tracker_bytes(road.get(), &less), 0u);
  EXPECT_GE(nadir_tracker_bytes(road.get(), &more), nadir_tracker_bytes(road.get(), &less) + 5 * 16 * 14 * 2);
}

TEST(TrackerBytes, AreNoneForWhatCannotBeMade) {
  const Road road = roadWithTwoAreas();
  const NadirTrackSettings good = trackSettings(), bad = trackSettings(1001);
  EXPECT_EQ(nadir_tracker_bytes(nullptr, &good), 0u);
  EXPECT_EQ(nadir_tracker_bytes(road.get(), nullptr), 0u);
  EXPECT_EQ(nadir_tracker_bytes(road.get(), &bad), 0u);
}

TEST(TrackerCreate, RefusesNullPointers) {
  const Road road = roadWithTwoAreas();
  const NadirTrackSettings settings = trackSettings();
  NadirTracker* tracker = nullptr;
  EXPECT_EQ(nadir_tracker_create(nullptr, &settings, &tracker, nullptr), NADIR_NULL_POINTER);
  EXPECT_EQ(nadir_tracker_create(road.get(), nullptr, &tracker, nullptr), NADIR_NULL_POINTER);
  EXPECT_EQ(nadir_tracker_create(road.get(), &settings, nullptr, nullptr), NADIR_NULL_POINTER);
  EXPECT_EQ(tracker, nullptr);
}

TEST(TrackerCreate, RefusesSettingsOfAnotherSize) {
  const Road road = roadWithTwoAreas();
  for (const uint32_t size : badSizes(sizeof(NadirTrackSettings))) {
    NadirTrackSettings settings = trackSettings();
    settings.size = size;
    NadirTracker* tracker = nullptr;
    EXPECT_EQ(nadir_tracker_create(road.get(), &settings, &tracker, nullptr), NADIR_BAD_RECORD) << size;
    EXPECT_EQ(tracker, nullptr) << size;
  }
}

TEST(TrackerCreate, RefusesAFaultOfAnotherSizeUntouched) {
  const Road road = roadWithTwoAreas();
  const NadirTrackSettings settings = trackSettings(1001);
  for (const uint32_t size : badSizes(sizeof(NadirFault))) {
    NadirFault fault = marked<NadirFault>();
    fault.size = size;
    const NadirFault before = fault;
    NadirTracker* tracker = nullptr;
    EXPECT_EQ(nadir_tracker_create(road.get(), &settings, &tracker, &fault), NADIR_BAD_RECORD) << size;
    EXPECT_TRUE(sameBytes(before, fault)) << size;
  }
}

TEST(TrackerDestroy, AcceptsNull) { nadir_tracker_destroy(nullptr); }

TEST(TrackerCreate, TheTrackerOutlivesItsRoad) {
  Road road = roadWithTwoAreas();
  const Tracker tracker = makeTracker(road);
  road.reset();
  EXPECT_EQ(replay(tracker, 0, 500), NADIR_OK);
  EXPECT_EQ(trackOf(tracker).height_mm, 500);
}

// ---- tracks ----

TEST(Track, BeforeTheFirstMeasurementNothingIsFollowed) {
  const NadirTrack track = trackOf(makeTracker(roadWithTwoAreas()));
  EXPECT_EQ(track.active, 0u);
  EXPECT_EQ(track.height_mm, 0);
  EXPECT_EQ(track.rate_mm_per_s, 0);
  EXPECT_EQ(track.deviation_mm, 0);
}

TEST(Track, BeginsAtTheFirstMeasurementAsUncertainAsThat) {
  const Tracker tracker = makeTracker(roadWithTwoAreas());
  ASSERT_EQ(replay(tracker, 7, 1234), NADIR_OK);
  const NadirTrack track = trackOf(tracker);
  EXPECT_EQ(track.active, 1u);
  EXPECT_EQ(track.height_mm, 1234);
  EXPECT_EQ(track.rate_mm_per_s, 0);
  EXPECT_FLOAT_EQ(static_cast<float>(track.deviation_mm), 10);
}

TEST(Track, AreasAreFollowedApart) {
  const Tracker tracker = makeTracker(roadWithTwoAreas());
  ASSERT_EQ(replay(tracker, {0, {nothing, 700}, {}}), NADIR_OK);
  EXPECT_EQ(trackOf(tracker, 0).active, 0u);
  EXPECT_EQ(trackOf(tracker, 1).height_mm, 700);
}

TEST(Track, FollowsASteadyClimb) {
  const Tracker tracker = makeTracker(roadWithTwoAreas());
  for (int i = 0; i <= 100; ++i) ASSERT_EQ(replay(tracker, i / 50.0, 1000 + i * 4), NADIR_OK);
  EXPECT_NEAR(trackOf(tracker).height_mm, 1400, 1);
  EXPECT_NEAR(trackOf(tracker).rate_mm_per_s, 200, 5);
}

TEST(Track, GrowsSurerOfWhatStandsStill) {
  const Tracker tracker = makeTracker(roadWithTwoAreas());
  replay(tracker, 0, 1000);
  const double before = trackOf(tracker).deviation_mm;
  for (int i = 1; i < 30; ++i) replay(tracker, i / 50.0, 1000);
  EXPECT_LT(trackOf(tracker).deviation_mm, before);
}

// The filter is libnadir's; it begins with a rate that is as uncertain as that of somebody who walks into the area.
TEST(Track, IsThatOfLibnadirsFilter) {
  constexpr float firstRateDeviation = 300;
  inRounds(20, [](lab::Random& random) {
    NadirTrackSettings settings = trackSettings();
    settings.noise_mm = 1 + random.below(50);
    settings.acceleration_mm_per_s2 = random.below(3000);
    settings.patience_s = 100;
    const Tracker tracker = makeTracker(roadWithTwoAreas(), settings);
    Kalman1d filter{};
    IP_Kalman1d_Create(&filter, 800, 0, static_cast<float>(settings.noise_mm), firstRateDeviation,
                       static_cast<float>(settings.acceleration_mm_per_s2));
    int64_t time = random.between(-1000, 1000);
    ASSERT_EQ(replay(tracker, {time, {800, nothing}, {}}), NADIR_OK);
    for (int i = 0; i < 20; ++i) {
      const int64_t passed = random.below(300) * int64_t{1000000};
      IP_Kalman1d_Predict(&filter, static_cast<float>(static_cast<double>(passed) / 1e9));
      const double deviation = std::sqrt(static_cast<double>(filter.P[0] + filter.R));
      const double likely = static_cast<double>(filter.x) + 0.01 * random.between(-480, 480) * deviation;
      const double highest = random.below(4) && likely >= 0 ? likely : nothing;
      ASSERT_EQ(replay(tracker, {time += passed, {highest, nothing}, {}}), NADIR_OK);
      if (highest == highest) IP_Kalman1d_Update(&filter, static_cast<float>(highest));
      const NadirTrack track = trackOf(tracker);
      EXPECT_NEAR(track.height_mm, static_cast<double>(filter.x), 1e-3);
      EXPECT_NEAR(track.rate_mm_per_s, static_cast<double>(filter.v), 1e-2);
      EXPECT_NEAR(track.deviation_mm, std::sqrt(static_cast<double>(filter.P[0])), 1e-3);
    }
  });
}

TEST(Track, WithoutAMeasurementItGoesOnLessSure) {
  const Tracker tracker = makeTracker(roadWithTwoAreas());
  replay(tracker, 0, 1000);
  replay(tracker, 0.2, nothing);
  const NadirTrack track = trackOf(tracker);
  EXPECT_EQ(track.active, 1u);
  EXPECT_GT(track.deviation_mm, 10);
}

TEST(Track, GoesOnAsLongAsThePatience) {
  const Tracker tracker = makeTracker(roadWithTwoAreas());
  replay(tracker, 10, 1000);
  replay(tracker, 10.5, nothing);
  EXPECT_EQ(trackOf(tracker).active, 1u);
}

TEST(Track, EndsWhenThePatienceIsOver) {
  const Tracker tracker = makeTracker(roadWithTwoAreas());
  replay(tracker, 10, 1000);
  replay(tracker, 10.501, nothing);
  const NadirTrack track = trackOf(tracker);
  EXPECT_EQ(track.active, 0u);
  EXPECT_EQ(track.height_mm, 0);
  EXPECT_EQ(track.rate_mm_per_s, 0);
  EXPECT_EQ(track.deviation_mm, 0);
}

TEST(Track, ThePatienceCountsFromTheLastMeasurement) {
  const Tracker tracker = makeTracker(roadWithTwoAreas());
  for (const double seconds : {0.0, 0.4, 0.8, 1.2}) replay(tracker, seconds, 1000);
  replay(tracker, 1.7, nothing);
  EXPECT_EQ(trackOf(tracker).active, 1u);
}

TEST(Track, BeginsAnewAfterItEnded) {
  const Tracker tracker = makeTracker(roadWithTwoAreas());
  replay(tracker, 0, 1000);
  replay(tracker, 0.1, 1040);
  replay(tracker, 5, 300);
  EXPECT_EQ(trackOf(tracker).height_mm, 300);
  EXPECT_EQ(trackOf(tracker).rate_mm_per_s, 0);
}

TEST(Track, WithoutPatienceItEndsAtTheFirstGap) {
  NadirTrackSettings settings = trackSettings();
  settings.patience_s = 0;
  const Tracker tracker = makeTracker(roadWithTwoAreas(), settings);
  replay(tracker, 0, 1000);
  replay(tracker, 0.001, nothing);
  EXPECT_EQ(trackOf(tracker).active, 0u);
}

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

TEST(Track, LivesInNanosecondsOfAnyBeginning) {
  const Road road = roadWithTwoAreas();
  const Tracker plain = makeTracker(road), shifted = makeTracker(road);
  const int64_t beginning = 1760000000 * second + 123456789;
  for (int i = 0; i < 20; ++i) {
    const double highest = 1000 + i % 5;
    ASSERT_EQ(replay(plain, {i * second / 30, {highest, nothing}, {}}), NADIR_OK);
    ASSERT_EQ(replay(shifted, {beginning + i * second / 30, {highest, nothing}, {}}), NADIR_OK);
    EXPECT_TRUE(sameBytes(trackOf(plain), trackOf(shifted))) << i;
  }
}

TEST(TrackerRead, ThereIsNoAreaBehindTheLast) {
  const Tracker tracker = makeTracker(roadWithTwoAreas());
  for (const uint32_t area : {2u, 0xFFFFFFFFu}) {
    const NadirTrack before = marked<NadirTrack>();
    NadirTrack track = before;
    EXPECT_EQ(nadir_tracker_read(tracker.get(), area, &track), NADIR_NOTHING_FOUND) << area;
    EXPECT_TRUE(sameBytes(before, track)) << area;
  }
}

TEST(TrackerRead, RefusesNullPointers) {
  const Tracker tracker = makeTracker(roadWithTwoAreas());
  NadirTrack track = marked<NadirTrack>();
  EXPECT_EQ(nadir_tracker_read(nullptr, 0, &track), NADIR_NULL_POINTER);
  EXPECT_EQ(nadir_tracker_read(tracker.get(), 0, nullptr), NADIR_NULL_POINTER);
}

TEST(TrackerRead, RefusesOtherSizesUntouched) {
  const Tracker tracker = makeTracker(roadWithTwoAreas());
  for (const uint32_t size : badSizes(sizeof(NadirTrack))) {
    NadirTrack track = marked<NadirTrack>();
    track.size = size;
    const NadirTrack before = track;
    EXPECT_EQ(nadir_tracker_read(tracker.get(), 0, &track), NADIR_BAD_RECORD) << size;
    EXPECT_TRUE(sameBytes(before, track)) << size;
  }
}

// ---- what steps refuse ----

class RefusedSteps : public ::testing::Test {
 protected:
  RefusedSteps() : road_(roadWithTwoAreas()), tracker_(makeTracker(road_, trackSettings(3))) {
    lab::Random random(1);
    log_ = {5 * second, {900, 400}, anyMap(random)};
    EXPECT_EQ(replay(tracker_, log_), NADIR_OK);
    before_ = saved(tracker_);
    log_.time += second / 10;
  }

  void expectRefused(const NadirMeasurement& measurement, NadirStatus wanted) {
    EXPECT_EQ(nadir_tracker_replay(tracker_.get(), &measurement), wanted);
    EXPECT_TRUE(same(before_, saved(tracker_))) << "the tracker changed";
  }

  Road road_;
  Tracker tracker_;
  Log log_;
  std::vector<unsigned char> before_;
};

TEST_F(RefusedSteps, BackInTime) {
  for (const int64_t back : {int64_t{1}, second, int64_t{1} << 62}) {
    log_.time = 5 * second - back;
    expectRefused(measurementOf(log_), NADIR_BAD_TIME);
  }
}

TEST_F(RefusedSteps, TheSameTimeIsNoneOfThem) {
  log_.time = 5 * second;
  EXPECT_EQ(replay(tracker_, log_), NADIR_OK);
}

TEST_F(RefusedSteps, NullPointers) {
  const NadirMeasurement m = measurementOf(log_);
  EXPECT_EQ(nadir_tracker_replay(nullptr, &m), NADIR_NULL_POINTER);
  EXPECT_EQ(nadir_tracker_replay(tracker_.get(), nullptr), NADIR_NULL_POINTER);
}

TEST_F(RefusedSteps, OtherSizes) {
  for (const uint32_t size : badSizes(sizeof(NadirMeasurement))) {
    NadirMeasurement m = measurementOf(log_);
    m.size = size;
    expectRefused(m, NADIR_BAD_RECORD);
  }
}

TEST_F(RefusedSteps, OtherNumbersOfAreas) {
  for (const uint32_t areas : {0u, 1u, 3u, 0xFFFFFFFFu}) {
    NadirMeasurement m = measurementOf(log_);
    m.area_count = areas;
    expectRefused(m, NADIR_FOREIGN_RESULT);
  }
}

TEST_F(RefusedSteps, PiecesThatNoMapHolds) {
  for (const double height : {-1.0, 65535.5, std::numeric_limits<double>::infinity()}) {
    log_.pieces = {900, height};
    expectRefused(measurementOf(log_), NADIR_BAD_FRAME);
  }
}

TEST_F(RefusedSteps, NoHeightsOfAreas) {
  NadirMeasurement m = measurementOf(log_);
  m.highest_mm = nullptr;
  expectRefused(m, NADIR_NULL_POINTER);
}

TEST_F(RefusedSteps, MapsOfAnotherWidth) {
  NadirMeasurement m = measurementOf(log_);
  m.heights.width = 15;
  expectRefused(m, NADIR_FOREIGN_RESULT);
}

TEST_F(RefusedSteps, MapsOfAnotherHeight) {
  NadirMeasurement m = measurementOf(log_);
  m.heights.height = 13;
  expectRefused(m, NADIR_FOREIGN_RESULT);
}

TEST_F(RefusedSteps, MapsThatNoMemoryHolds) {
  NadirMeasurement m = measurementOf(log_);
  m.heights.stride = size_t{0} - 32;
  expectRefused(m, NADIR_FOREIGN_RESULT);
}

TEST_F(RefusedSteps, ResultsWithoutAFrame) {
  const Result result = makeResult(road_);
  EXPECT_EQ(nadir_tracker_step(tracker_.get(), result.get(), log_.time), NADIR_NOTHING_FOUND);
  EXPECT_TRUE(same(before_, saved(tracker_)));
}

TEST_F(RefusedSteps, NoTrackerOrNoResult) {
  const Result result = makeResult(road_);
  EXPECT_EQ(nadir_tracker_step(nullptr, result.get(), log_.time), NADIR_NULL_POINTER);
  EXPECT_EQ(nadir_tracker_step(tracker_.get(), nullptr, log_.time), NADIR_NULL_POINTER);
}

TEST_F(RefusedSteps, ResultsOfAnotherNumberOfAreas) {
  const Road other = makeRoad(smallCamera(), defaultSettings(smallCamera()), {areaOf(leftArea)});
  const Result result = makeResult(other);
  const Grid<float> disparity(96, 60, 8.0f);
  processed(other, frameOf(disparity), result);
  EXPECT_EQ(nadir_tracker_step(tracker_.get(), result.get(), log_.time), NADIR_FOREIGN_RESULT);
  EXPECT_TRUE(same(before_, saved(tracker_)));
}

TEST_F(RefusedSteps, ResultsOfAnotherMapSize) {
  NadirCamera camera = smallCamera();
  camera.map_width_cells = 15;
  const Road other = roadWithTwoAreas(camera);
  const Result result = makeResult(other);
  const Grid<float> disparity(96, 60, 8.0f);
  processed(other, frameOf(disparity), result);
  EXPECT_EQ(nadir_tracker_step(tracker_.get(), result.get(), log_.time), NADIR_FOREIGN_RESULT);
  EXPECT_TRUE(same(before_, saved(tracker_)));
}

TEST_F(RefusedSteps, ResultsBackInTime) {
  const Result result = makeResult(road_);
  const Grid<float> disparity(96, 60, 8.0f);
  processed(road_, frameOf(disparity), result);
  EXPECT_EQ(nadir_tracker_step(tracker_.get(), result.get(), 5 * second - 1), NADIR_BAD_TIME);
  EXPECT_TRUE(same(before_, saved(tracker_)));
}

// ---- steps and logs ----

// A floor with a box that moves through both areas and now and then is not there.
Grid<float> frameNumber(uint32_t number) {
  Grid<float> grid(96, 60, 8.0f);
  const uint32_t x = 30 + number * 2;
  for (uint32_t y = 20; y < 42 && number % 5 != 4; ++y)
    std::fill(grid.row(y) + x, grid.row(y) + x + 18, 10.0f + static_cast<float>(number % 3));
  return grid;
}

Log logOf(const NadirFindings& findings, int64_t time) {
  Log log{time, {nothing, nothing}, gridOf<uint16_t>(findings.heights)};
  const std::vector<NadirOccupancy> areas = recordsOf(findings.areas, findings.area_count);
  for (size_t i = 0; i < areas.size(); ++i) {
    if (areas[i].covered_cells > 0) log.highest[i] = areas[i].highest_mm;
    log.pieces.push_back(areas[i].piece_mm > 0 ? areas[i].piece_mm : nothing);
  }
  return log;
}

TEST(Replay, LeadsToTheSameStateAsSteps) {
  const Road road = roadWithTwoAreas();
  const Result result = makeResult(road);
  const Tracker stepped = makeTracker(road, trackSettings(4)), replayed = makeTracker(road, trackSettings(4));
  uint32_t followed = 0;
  for (uint32_t i = 0; i < 14; ++i) {
    const Grid<float> frame = frameNumber(i);
    const NadirFindings findings = processed(road, frameOf(frame), result);
    const int64_t time = i * second / 10;
    ASSERT_EQ(nadir_tracker_step(stepped.get(), result.get(), time), NADIR_OK);
    ASSERT_EQ(replay(replayed, logOf(findings, time)), NADIR_OK);
    EXPECT_TRUE(same(saved(stepped), saved(replayed))) << "frame " << i;
    followed += trackOf(stepped, 0).active + trackOf(stepped, 1).active;
  }
  EXPECT_GT(followed, 14u);
}

TEST(Replay, MapsMayHavePadding) {
  lab::Random random(1);
  const Road road = roadWithTwoAreas();
  const Tracker tight = makeTracker(road, trackSettings(3)), wide = makeTracker(road, trackSettings(3));
  const Log log{0, {nothing, nothing}, anyMap(random)};
  ASSERT_EQ(replay(tight, log), NADIR_OK);
  const Guarded<uint16_t> rows(13 * 20 + 16);
  for (uint32_t y = 0; y < 14; ++y) std::copy_n(log.map.row(y), 16, rows.data() + y * 20);
  NadirMeasurement m = measurementOf(log);
  m.heights.data = rows.data();
  m.heights.stride = 40;
  ASSERT_EQ(nadir_tracker_replay(wide.get(), &m), NADIR_OK);
  EXPECT_TRUE(same(saved(tight), saved(wide)));
}

// ---- the average ----

// Cell by cell over the last maps.
Grid<uint16_t> meanOf(const std::vector<Grid<uint16_t>>& maps, uint32_t window) {
  const size_t first = maps.size() > window ? maps.size() - window : 0, count = maps.size() - first;
  Grid<uint16_t> mean(16, 14);
  for (size_t cell = 0; cell < mean.pixels.size(); ++cell) {
    uint64_t sum = 0, seen = 0;
    for (size_t i = first; i < maps.size(); ++i) {
      sum += maps[i].pixels[cell];
      seen += maps[i].pixels[cell] != 0;
    }
    if (seen * 2 > count) mean.pixels[cell] = static_cast<uint16_t>(sum / seen);
  }
  return mean;
}

TEST(Average, IsTheMeanOfTheWindowsMaps) {
  const Road road = roadWithTwoAreas();
  for (const uint32_t window : {1u, 2u, 3u, 7u, 1000u}) {
    lab::Random random(window);
    const Tracker tracker = makeTracker(road, trackSettings(window));
    std::vector<Grid<uint16_t>> maps;
    for (int i = 0; i < 25; ++i) {
      maps.push_back(anyMap(random));
      ASSERT_EQ(replay(tracker, {i * second, {nothing, nothing}, maps.back()}), NADIR_OK);
      ASSERT_TRUE(same(meanOf(maps, window).pixels, averageOf(tracker).pixels)) << "window " << window << ", map " << i;
    }
  }
}

TEST(Average, LargestHeightsDoNotOverflow) {
  const Tracker tracker = makeTracker(roadWithTwoAreas(), trackSettings(1000));
  const Grid<uint16_t> map(16, 14, 65535);
  for (int i = 0; i < 1000; ++i) ASSERT_EQ(replay(tracker, {i, {nothing, nothing}, map}), NADIR_OK);
  EXPECT_TRUE(same(map.pixels, averageOf(tracker).pixels));
}

TEST(Average, StepsWithoutAMapDoNotEnter) {
  lab::Random random(2);
  const Tracker tracker = makeTracker(roadWithTwoAreas(), trackSettings(2));
  const std::vector<Grid<uint16_t>> maps = {anyMap(random), anyMap(random)};
  int64_t time = 0;
  for (const Grid<uint16_t>& map : maps) {
    ASSERT_EQ(replay(tracker, {++time, {nothing, nothing}, map}), NADIR_OK);
    ASSERT_EQ(replay(tracker, {++time, {nothing, nothing}, {}}), NADIR_OK);
  }
  EXPECT_TRUE(same(meanOf(maps, 2).pixels, averageOf(tracker).pixels));
}

void expectNoAverage(const Tracker& tracker) {
  const NadirPlane before{&before, 77, 78, 79};
  NadirPlane plane = before;
  EXPECT_EQ(nadir_tracker_average(tracker.get(), &plane), NADIR_NOTHING_FOUND);
  EXPECT_EQ(plane.data, before.data);
  EXPECT_EQ(plane.stride, before.stride);
}

TEST(Average, BeforeTheFirstMapThereIsNone) {
  const Tracker tracker = makeTracker(roadWithTwoAreas(), trackSettings(3));
  replay(tracker, 0, 500);
  expectNoAverage(tracker);
}

TEST(Average, WithoutAWindowThereIsNone) {
  lab::Random random(2);
  const Tracker tracker = makeTracker(roadWithTwoAreas(), trackSettings(0));
  ASSERT_EQ(replay(tracker, {0, {nothing, nothing}, anyMap(random)}), NADIR_OK);
  expectNoAverage(tracker);
}

TEST(Average, ReadingItChangesNothing) {
  lab::Random random(2);
  const Tracker tracker = makeTracker(roadWithTwoAreas(), trackSettings(3));
  ASSERT_EQ(replay(tracker, {0, {nothing, nothing}, anyMap(random)}), NADIR_OK);
  const std::vector<unsigned char> before = saved(tracker);
  averageOf(tracker);
  EXPECT_TRUE(same(before, saved(tracker)));
}

TEST(Average, RefusesNullPointers) {
  NadirPlane plane{};
  EXPECT_EQ(nadir_tracker_average(nullptr, &plane), NADIR_NULL_POINTER);
  EXPECT_EQ(nadir_tracker_average(makeTracker(roadWithTwoAreas()).get(), nullptr), NADIR_NULL_POINTER);
}

// ---- saving ----

Tracker filled(const Road& road, uint32_t steps, const NadirTrackSettings& settings = trackSettings(3)) {
  lab::Random random(11);
  Tracker tracker = makeTracker(road, settings);
  for (const Log& log : anyLogs(random, steps)) EXPECT_EQ(replay(tracker, log), NADIR_OK);
  return tracker;
}

NadirStatus load(const Tracker& tracker, const std::vector<unsigned char>& state) {
  return nadir_tracker_load(tracker.get(), state.data(), state.size());
}

TEST(Saving, GoesOnIdenticallyFromAnyFrame) {
  inRounds(4, [](lab::Random& random) {
    const Road road = roadWithTwoAreas();
    const std::vector<Log> logs = anyLogs(random, 14);
    const Tracker first = makeTracker(road, trackSettings(4));
    for (size_t i = 0; i < logs.size(); ++i) {
      const Tracker resumed = makeTracker(road, trackSettings(4));
      ASSERT_EQ(load(resumed, saved(first)), NADIR_OK);
      const Tracker on = makeTracker(road, trackSettings(4));
      for (size_t j = 0; j < i; ++j) replay(on, logs[j]);
      for (size_t j = i; j < logs.size(); ++j) {
        ASSERT_EQ(replay(resumed, logs[j]), NADIR_OK);
        ASSERT_EQ(replay(on, logs[j]), NADIR_OK);
        ASSERT_TRUE(same(saved(on), saved(resumed))) << "from " << i << " at " << j;
      }
      for (uint32_t area = 0; area < 2; ++area) ASSERT_TRUE(sameBytes(trackOf(on, area), trackOf(resumed, area)));
      ASSERT_EQ(replay(first, logs[i]), NADIR_OK);
    }
  });
}

TEST(Saving, KeepsTheAverage) {
  const Road road = roadWithTwoAreas();
  const Tracker before = filled(road, 9), after = makeTracker(road, trackSettings(3));
  ASSERT_EQ(load(after, saved(before)), NADIR_OK);
  EXPECT_TRUE(same(averageOf(before).pixels, averageOf(after).pixels));
}

TEST(Saving, ReplacesAllThatTheTrackerKnew) {
  const Road road = roadWithTwoAreas();
  const Tracker fresh = makeTracker(road, trackSettings(3)), used = filled(road, 9);
  ASSERT_EQ(load(used, saved(fresh)), NADIR_OK);
  EXPECT_TRUE(same(saved(fresh), saved(used)));
  EXPECT_EQ(replay(used, {-second * 1000, {nothing, nothing}, {}}), NADIR_OK) << "the last time was kept";
}

TEST(Saving, TakesMemoryOfExactlyItsSize) {
  const Tracker tracker = filled(roadWithTwoAreas(), 9);
  const std::vector<unsigned char> state = saved(tracker);
  for (const Guard side : {Guard::behind, Guard::before}) {
    const Guarded<unsigned char> room(state.size(), side);
    EXPECT_EQ(nadir_tracker_save(tracker.get(), room.data(), room.size()), state.size());
    EXPECT_TRUE(same(state, room.values()));
    EXPECT_EQ(nadir_tracker_load(tracker.get(), room.data(), room.size()), NADIR_OK);
  }
}

TEST(Saving, GoesToAnyAddress) {
  const Tracker tracker = filled(roadWithTwoAreas(), 9);
  const std::vector<unsigned char> state = saved(tracker);
  std::vector<unsigned char> room(state.size() + 1);
  ASSERT_EQ(nadir_tracker_save(tracker.get(), room.data() + 1, state.size()), state.size());
  EXPECT_TRUE(same(state, std::vector<unsigned char>(room.begin() + 1, room.end())));
  EXPECT_EQ(nadir_tracker_load(tracker.get(), room.data() + 1, state.size()), NADIR_OK);
}

TEST(Saving, WithoutRoomWritesNothing) {
  const Tracker tracker = filled(roadWithTwoAreas(), 9);
  const size_t bytes = saved(tracker).size();
  const std::vector<unsigned char> before(bytes, 0x5A);
  for (const size_t room : {size_t{0}, size_t{1}, bytes / 2, bytes - 1}) {
    std::vector<unsigned char> memory = before;
    EXPECT_EQ(nadir_tracker_save(tracker.get(), memory.data(), room), bytes) << room;
    EXPECT_TRUE(same(before, memory)) << room;
  }
}

TEST(Saving, WithoutMemoryTellsItsSizeWhateverTheRoom) {
  const Tracker tracker = filled(roadWithTwoAreas(), 9);
  EXPECT_EQ(nadir_tracker_save(tracker.get(), nullptr, SIZE_MAX), saved(tracker).size());
}

TEST(Saving, WithMoreRoomLeavesTheRest) {
  const Tracker tracker = filled(roadWithTwoAreas(), 9);
  const size_t bytes = saved(tracker).size();
  std::vector<unsigned char> memory(bytes + 9, 0x5A);
  EXPECT_EQ(nadir_tracker_save(tracker.get(), memory.data(), memory.size()), bytes);
  EXPECT_EQ(std::count(memory.begin() + static_cast<ptrdiff_t>(bytes), memory.end(), 0x5A), 9);
}

TEST(Saving, ANullTrackerTakesNoBytes) { EXPECT_EQ(nadir_tracker_save(nullptr, nullptr, 0), 0u); }

TEST(Loading, RefusesNullPointers) {
  const Tracker tracker = makeTracker(roadWithTwoAreas());
  const std::vector<unsigned char> state = saved(tracker);
  EXPECT_EQ(nadir_tracker_load(nullptr, state.data(), state.size()), NADIR_NULL_POINTER);
  EXPECT_EQ(nadir_tracker_load(tracker.get(), nullptr, state.size()), NADIR_NULL_POINTER);
}

// `state` is refused by a tracker with another state, which it keeps.
void expectRefused(const Tracker& tracker, const std::vector<unsigned char>& state, const std::string& what) {
  const std::vector<unsigned char> before = saved(tracker);
  const Guarded<unsigned char> guarded(state);
  ASSERT_EQ(nadir_tracker_load(tracker.get(), guarded.data(), guarded.size()), NADIR_BAD_STATE) << what;
  ASSERT_TRUE(same(before, saved(tracker))) << what;
}

TEST(Loading, RefusesEveryTruncation) {
  const Road road = roadWithTwoAreas();
  const std::vector<unsigned char> state = saved(filled(road, 9));
  const Tracker tracker = filled(road, 4);
  for (size_t bytes = 0; bytes < state.size(); ++bytes) {
    expectRefused(tracker, {state.begin(), state.begin() + static_cast<ptrdiff_t>(bytes)}, std::to_string(bytes));
    if (HasFailure()) return;
  }
}

TEST(Loading, RefusesMoreThanWasSaved) {
  const Road road = roadWithTwoAreas();
  std::vector<unsigned char> state = saved(filled(road, 9));
  state.push_back(0);
  expectRefused(filled(road, 4), state, "one byte more");
}

// What stands at the beginning says who saved it: a mark, the version, numbers of areas and cells, and the settings.
TEST(Loading, RefusesEveryFlippedBitOfItsHead) {
  constexpr size_t headBytes = 56;
  const Road road = roadWithTwoAreas();
  const std::vector<unsigned char> state = saved(filled(road, 9));
  const Tracker tracker = filled(road, 4);
  for (size_t bit = 0; bit < headBytes * 8; ++bit) {
    std::vector<unsigned char> damaged = state;
    damaged[bit / 8] = static_cast<unsigned char>(damaged[bit / 8] ^ (1u << bit % 8));
    expectRefused(tracker, damaged, "bit " + std::to_string(bit));
    if (HasFailure()) return;
  }
}

TEST(Loading, RefusesOtherSettings) {
  const Road road = roadWithTwoAreas();
  const std::vector<unsigned char> state = saved(filled(road, 9));
  for (int member = 0; member < 5; ++member) {
    NadirTrackSettings settings = trackSettings(3);
    settings.average_frames += member == 0;
    settings.noise_mm += member == 1;
    settings.acceleration_mm_per_s2 += member == 2;
    settings.patience_s += member == 3;
    settings.disparity_px += member == 4;
    expectRefused(makeTracker(road, settings), state, "member " + std::to_string(member));
  }
}

TEST(Loading, RefusesAnotherNumberOfAreas) {
  const std::vector<unsigned char> state = saved(filled(roadWithTwoAreas(), 9));
  const Road other = makeRoad(smallCamera(), defaultSettings(smallCamera()), {areaOf(leftArea)});
  expectRefused(makeTracker(other, trackSettings(3)), state, "one area");
}

TEST(Loading, RefusesAnotherMapSize) {
  const std::vector<unsigned char> state = saved(filled(roadWithTwoAreas(), 9));
  NadirCamera turned = smallCamera();
  std::swap(turned.map_width_cells, turned.map_height_cells);
  expectRefused(makeTracker(roadWithTwoAreas(turned), trackSettings(3)), state, "a map of as many cells");
}

// Bytes that were written down, so that a machine of either byte order must read and write the same.
TEST(Saving, IsLittleEndian) {
  const std::vector<unsigned char> state = saved(makeTracker(roadWithTwoAreas(), trackSettings(3)));
  const std::vector<unsigned char> noise = {0, 0, 0, 0, 0, 0, 0x24, 0x40};  // 10.0
  EXPECT_NE(std::search(state.begin(), state.end(), noise.begin(), noise.end()), state.end());
}

// Whatever was damaged: it is refused, or what was loaded works without touching memory of others.
TEST(Loading, DamageIsRefusedOrHarmless) {
  const Road road = roadWithTwoAreas();
  const std::vector<unsigned char> state = saved(filled(road, 9));
  inRounds(1500, [&](lab::Random& random) {
    std::vector<unsigned char> damaged = state;
    for (uint32_t hits = 1 + random.below(3); hits > 0; --hits)
      damaged[random.below(std::min<uint32_t>(static_cast<uint32_t>(state.size()), 200))] =
          static_cast<unsigned char>(random.below(3) ? random.next() : 0xFF);
    const Tracker tracker = makeTracker(road, trackSettings(3));
    const NadirStatus status = load(tracker, damaged);
    ASSERT_TRUE(status == NADIR_OK || status == NADIR_BAD_STATE) << status;
    int64_t time = std::numeric_limits<int64_t>::max() - 20 * second;
    for (int i = 0; i < 5; ++i) replay(tracker, anyLog(random, time));
    NadirPlane plane{};
    nadir_tracker_average(tracker.get(), &plane);
    EXPECT_EQ(saved(tracker).size(), state.size());
  });
}

// No map holds such heights, and no filter can take them.
TEST(Track, HeightsThatNoMapHoldsAreRefused) {
  for (const double height :
       {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(), 1e300, -1.0, 65535.5}) {
    const Tracker tracker = makeTracker(roadWithTwoAreas());
    EXPECT_EQ(replay(tracker, 0, height), NADIR_BAD_FRAME) << height;
    replay(tracker, 0.1, 500);
    EXPECT_EQ(trackOf(tracker).height_mm, 500) << height;
  }
}

bool isFinite(const NadirTrack& t) {
  return std::isfinite(t.height_mm) && std::isfinite(t.rate_mm_per_s) && std::isfinite(t.deviation_mm);
}

// Such a square is 0 in single precision, and a measurement is then all that there is to know.
TEST(Track, OfNoUncertaintyIsWhatWasMeasured) {
  for (const double noise : {4.9406564584124654e-324, 1e-30, 1e-20}) {
    NadirTrackSettings settings = trackSettings();
    settings.noise_mm = noise;
    const Tracker tracker = makeTracker(roadWithTwoAreas(), settings);
    for (const double height : {500.0, 510.0, 700.0}) {
      replay(tracker, 1, height);
      EXPECT_EQ(trackOf(tracker).height_mm, height) << noise;
      EXPECT_TRUE(isFinite(trackOf(tracker))) << noise;
    }
  }
}

TEST(Track, OfMoreUncertaintyThanNumbersHoldBeginsAnew) {
  NadirTrackSettings settings = trackSettings();
  settings.acceleration_mm_per_s2 = 1e9;
  settings.patience_s = 1e6;
  const Tracker tracker = makeTracker(roadWithTwoAreas(), settings);
  replay(tracker, 0, 500);
  replay(tracker, 4e5, nothing);
  EXPECT_EQ(trackOf(tracker).active, 0u);
  replay(tracker, 8e5, 700);
  EXPECT_EQ(trackOf(tracker).height_mm, 700);
  replay(tracker, 9.9e5, 800);
  EXPECT_EQ(trackOf(tracker).height_mm, 800);
  EXPECT_TRUE(isFinite(trackOf(tracker)));
}

// A step of more nanoseconds than 63 bits hold is longer than every patience.
TEST(Track, EndsOverTheLongestStepOfTime) {
  const Tracker tracker = makeTracker(roadWithTwoAreas());
  ASSERT_EQ(replay(tracker, {std::numeric_limits<int64_t>::min(), {500, nothing}, {}}), NADIR_OK);
  ASSERT_EQ(replay(tracker, {std::numeric_limits<int64_t>::max(), {nothing, nothing}, {}}), NADIR_OK);
  EXPECT_EQ(trackOf(tracker).active, 0u);
}

}  // namespace
}  // namespace nadir::test
