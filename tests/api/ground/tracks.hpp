// Trackers of a road with two areas, and logs of what frames said of both, for the tests of what goes from frame to
// frame.
#pragma once

#include <algorithm>
#include <limits>

#include "tests/api/ground/roads.hpp"

namespace nadir::test {

constexpr double nothing = std::numeric_limits<double>::quiet_NaN();
constexpr int64_t second = 1000000000;

inline const std::vector<int32_t> leftArea = {-300, -200, 0, -200, 0, 200, -300, 200};
inline const std::vector<int32_t> rightArea = {20, -200, 300, -200, 300, 200, 20, 200};

inline Road roadWithTwoAreas(const NadirCamera& camera = smallCamera()) {
  return makeRoad(camera, defaultSettings(camera), {areaOf(leftArea), areaOf(rightArea)});
}

inline NadirTrackSettings trackSettings(uint32_t averageFrames = 0) {
  NadirTrackSettings settings{};
  EXPECT_EQ(nadir_track_settings_fill(&settings), NADIR_OK);
  settings.average_frames = averageFrames;
  return settings;
}

inline Tracker makeTracker(const Road& road, const NadirTrackSettings& settings = trackSettings()) {
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

inline NadirMeasurement measurementOf(const Log& log) {
  NadirMeasurement m{};
  m.size = sizeof m;
  m.area_count = 2;
  m.time_ns = log.time;
  m.highest_mm = log.highest;
  if (!log.pieces.empty()) m.piece_mm = log.pieces.data();
  if (!log.map.pixels.empty()) m.heights = {log.map.pixels.data(), log.map.width * 2, log.map.width, log.map.height};
  return m;
}

inline NadirStatus replay(const Tracker& tracker, const Log& log) {
  const NadirMeasurement m = measurementOf(log);
  return nadir_tracker_replay(tracker.get(), &m);
}

inline NadirStatus replay(const Tracker& tracker, double seconds, double highest) {
  return replay(tracker, {static_cast<int64_t>(seconds * 1000) * 1000000, {highest, nothing}, {}});
}

inline NadirTrack trackOf(const Tracker& tracker, uint32_t area = 0) {
  NadirTrack track{};
  track.size = sizeof track;
  EXPECT_EQ(nadir_tracker_read(tracker.get(), area, &track), NADIR_OK);
  return track;
}

inline Grid<uint16_t> averageOf(const Tracker& tracker) {
  NadirPlane plane{};
  EXPECT_EQ(nadir_tracker_average(tracker.get(), &plane), NADIR_OK);
  return gridOf<uint16_t>(plane);
}

inline std::vector<unsigned char> saved(const Tracker& tracker) {
  std::vector<unsigned char> state(nadir_tracker_save(tracker.get(), nullptr, 0));
  EXPECT_EQ(nadir_tracker_save(tracker.get(), state.data(), state.size()), state.size());
  return state;
}

inline Grid<uint16_t> anyMap(lab::Random& random) {
  Grid<uint16_t> map(16, 14);
  for (uint16_t& h : map.pixels) h = random.below(2) ? static_cast<uint16_t>(random.below(65536)) : uint16_t{0};
  return map;
}

inline Log anyLog(lab::Random& random, int64_t& time) {
  time += random.below(4) ? random.below(200) * 1000000 : random.below(1500) * 1000000;
  Log log{time, {nothing, nothing}, {}};
  for (double& h : log.highest) h = random.below(3) ? 100.0 + random.below(2000) : nothing;
  if (random.below(5)) log.map = anyMap(random);
  return log;
}

inline std::vector<Log> anyLogs(lab::Random& random, uint32_t count) {
  std::vector<Log> logs;
  int64_t time = random.between(-1000, 1000);
  for (uint32_t i = 0; i < count; ++i) logs.push_back(anyLog(random, time));
  return logs;
}

}  // namespace nadir::test
