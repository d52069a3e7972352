// A tracker's state is saved, taken up, and refused where it is damaged.
#include "tests/api/ground/tracks.hpp"
#include "tests/support/guarded.hpp"
#include "tests/support/rounds.hpp"
#include "tests/support/same.hpp"

namespace nadir::test {
namespace {

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

}  // namespace
}  // namespace nadir::test
