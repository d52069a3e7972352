// A saved state that was damaged, or whose numbers no tracker comes to, is refused.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "lab/fingerprint.hpp"
#include "tests/road/frames.hpp"

namespace nadir::test {
namespace {

NadirTrackSettings tracking() {
  NadirTrackSettings settings = fullTracking();
  settings.average_frames = 2;
  return settings;
}

lab::RoadPlan smallPlan() {
  lab::RoadPlan plan = fullPlan();
  plan.camera.map_width_cells = plan.camera.map_height_cells = 16;
  plan.camera.cell_mm = 600;
  return plan;
}

struct Tracked {
  lab::Road road{smallPlan()};
  lab::Tracker tracker{road, tracking()};

  Tracked() {
    road.findings(pairFrame());
    lab::demand(nadir_tracker_step(tracker.get(), road.result(), 5));
  }
  NadirStatus load(const std::vector<uint8_t>& state) const {
    return nadir_tracker_load(tracker.get(), state.data(), state.size());
  }
};

// The bytes of a state: its head, then `begun` and the time, the tracks of two areas, the window's count and next
// place.
constexpr size_t headBytes = 6 * 4 + 4 * 8, motionBytes = 6 * 4, trackBytes = 4 + 8 + motionBytes + 4 + motionBytes;
constexpr size_t begunAt = headBytes, timeAt = begunAt + 4, tracksAt = timeAt + 8, countAt = tracksAt + 2 * trackBytes,
                 doubtsAt = tracksAt + 12 + motionBytes;

std::vector<uint8_t> forged(std::vector<uint8_t> state, size_t at, uint8_t value) {
  state[at] = value;
  uint64_t sum = lab::Fingerprint().add(state.data(), state.size() - 8).value();
  for (size_t i = state.size() - 8; i < state.size(); ++i, sum >>= 8) state[i] = static_cast<uint8_t>(sum);
  return state;
}

TEST(RoadSavedState, EveryDamagedByteIsSeen) {
  const Tracked tracked;
  const std::vector<uint8_t> state = tracked.tracker.saved();
  for (size_t i = 0; i < state.size(); ++i) {
    std::vector<uint8_t> damaged = state;
    damaged[i] ^= static_cast<uint8_t>(1u << i % 8);
    ASSERT_EQ(tracked.load(damaged), NADIR_BAD_STATE) << i;
  }
  EXPECT_EQ(tracked.tracker.saved(), state);
  EXPECT_EQ(tracked.load(state), NADIR_OK);
}

TEST(RoadSavedState, NumbersThatNoTrackerComesToAreRefused) {
  const Tracked tracked;
  const std::vector<uint8_t> state = tracked.tracker.saved();
  ASSERT_EQ(tracked.load(forged(state, timeAt, 6)), NADIR_OK);  // the forger knows the sum
  const struct {
    const char* what;
    size_t at;
    uint8_t value;
  } bad[] = {{"begun twice", begunAt, 2},
             {"tracks before the beginning", begunAt, 0},
             {"half active", tracksAt, 2},
             {"measured in the future", timeAt, 4},
             {"of a negative variance", tracksAt + 12 + 11, 0xC2},
             {"more doubts than are believed", doubtsAt, 3},
             {"a height without a doubt", doubtsAt + 4, 1},
             {"a doubted variance without a doubt", doubtsAt + 12, 1},
             {"more maps than the window holds", countAt, 3},
             {"a place beyond the next one", countAt + 4, 0},
             {"a place beyond the window", countAt + 7, 1}};
  for (const auto& b : bad) EXPECT_EQ(tracked.load(forged(state, b.at, b.value)), NADIR_BAD_STATE) << b.what;
}

TEST(RoadSavedState, AnAreaWhereNothingIsFollowedKnowsNothing) {
  const lab::Road road(smallPlan());
  const lab::Tracker tracker(road, tracking());
  const std::vector<uint8_t> state = tracker.saved();
  ASSERT_EQ(nadir_tracker_load(tracker.get(), state.data(), state.size()), NADIR_OK);
  for (size_t at = tracksAt + 4; at < countAt; ++at) {
    if (at >= tracksAt + trackBytes && at < tracksAt + trackBytes + 4) continue;  // whether something is followed
    const std::vector<uint8_t> knowing = forged(state, at, 1);
    EXPECT_EQ(nadir_tracker_load(tracker.get(), knowing.data(), knowing.size()), NADIR_BAD_STATE) << at;
  }
}

// Each of a track's floats becomes an infinity by its two highest bytes.
TEST(RoadSavedState, NumbersThatAreNotFiniteAreRefused) {
  const Tracked tracked;
  const std::vector<uint8_t> state = tracked.tracker.saved();
  for (size_t area = 0; area < 2; ++area)
    for (size_t number = 0; number < 6; ++number) {
      const size_t at = tracksAt + area * trackBytes + 12 + 4 * number;
      EXPECT_EQ(tracked.load(forged(forged(state, at + 3, 0x7F), at + 2, 0x80)), NADIR_BAD_STATE) << area << number;
    }
}

TEST(RoadSavedState, TimesMayLieAsFarApartAsTheyCan) {
  const lab::Road road(smallPlan());
  const lab::Tracker tracker(road, tracking());
  const double highest[] = {1000, 2000}, nothing[] = {NAN, NAN};
  NadirMeasurement logged = lab::emptyRecord<NadirMeasurement>();
  logged.area_count = 2;
  logged.time_ns = INT64_MIN;
  logged.highest_mm = highest;
  lab::demand(nadir_tracker_replay(tracker.get(), &logged));
  logged.time_ns = INT64_MAX;
  logged.highest_mm = nothing;
  lab::demand(nadir_tracker_replay(tracker.get(), &logged));
  NadirTrack track = lab::emptyRecord<NadirTrack>();
  lab::demand(nadir_tracker_read(tracker.get(), 0, &track));
  EXPECT_EQ(track.active, 0u);
}

}  // namespace
}  // namespace nadir::test
