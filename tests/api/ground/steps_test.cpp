// What steps refuse, what a log repeats, and the average of the last maps.
#include "tests/api/ground/tracks.hpp"
#include "tests/support/guarded.hpp"
#include "tests/support/rounds.hpp"
#include "tests/support/same.hpp"

namespace nadir::test {
namespace {

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

}  // namespace
}  // namespace nadir::test
