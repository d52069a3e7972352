// What a tracker takes, and how it follows heights from frame to frame.
#include "tests/api/ground/tracks.hpp"
#include "tests/support/rounds.hpp"

namespace nadir::test {
namespace {

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
