// Each object of the road is one block whose bytes are known before, and nothing else asks for memory.
#include <gtest/gtest.h>
#include <nadir/level.h>

#include <functional>
#include <string>

#include "lab/checker.hpp"
#include "lab/heap.hpp"
#include "lab/rectifier.hpp"
#include "tests/road/frames.hpp"

namespace nadir::test {
namespace {

namespace heap = lab::heap;

struct Creation {
  std::string name;
  std::function<NadirStatus()> create;  // gives back at once what it was given; checks what a failure leaves
  size_t bytes;
  size_t borrowed;  // blocks that are given back before the call ends
};

constexpr size_t borrowedBytes = 614400;

// What an output holds that nobody wrote to.
template <class Object>
Object* untouched() {
  static char place;
  return reinterpret_cast<Object*>(&place);
}

NadirStatus createRoad(const lab::RoadPlan& plan) {
  NadirRoad* road = untouched<NadirRoad>();
  const auto areas = static_cast<uint32_t>(plan.areas.size());
  const NadirStatus status = nadir_road_create(&plan.camera, &plan.settings, plan.areas.data(), areas, &road, nullptr);
  EXPECT_EQ(status != NADIR_OK, road == nullptr);
  nadir_road_destroy(road);
  return status;
}

NadirStatus createResult(const NadirRoad* road) {
  NadirResult* result = untouched<NadirResult>();
  const NadirStatus status = nadir_result_create(road, &result);
  EXPECT_EQ(status != NADIR_OK, result == untouched<NadirResult>());
  if (status == NADIR_OK) nadir_result_destroy(result);
  return status;
}

NadirStatus createTracker(const NadirRoad* road, const NadirTrackSettings& settings) {
  NadirTracker* tracker = untouched<NadirTracker>();
  const NadirStatus status = nadir_tracker_create(road, &settings, &tracker, nullptr);
  EXPECT_EQ(status != NADIR_OK, tracker == untouched<NadirTracker>());
  if (status == NADIR_OK) nadir_tracker_destroy(tracker);
  return status;
}

const NadirRectifiedView& someView() {
  static const NadirRectifiedView view = lab::turnedView(40, 30);
  return view;
}

size_t rectifierBytes() { return nadir_rectifier_bytes(&someView()); }

NadirStatus createRectifier() {
  static const NadirLens lens = lab::lensOf(lab::lensKinds()[2], 50, 40);
  NadirRectifier* rectifier = untouched<NadirRectifier>();
  const NadirStatus status = nadir_rectifier_create(&lens, &someView(), &rectifier, nullptr);
  EXPECT_EQ(status != NADIR_OK, rectifier == untouched<NadirRectifier>());
  if (status == NADIR_OK) nadir_rectifier_destroy(rectifier);
  return status;
}

NadirStatus createChecker() {
  NadirChecker* checker = untouched<NadirChecker>();
  const NadirStatus status = nadir_checker_create(80, 70, &checker, nullptr);
  EXPECT_EQ(status != NADIR_OK, checker == untouched<NadirChecker>());
  if (status == NADIR_OK) nadir_checker_destroy(checker);
  return status;
}

std::vector<Creation> creations(const lab::Road& road, const lab::RoadPlan& plan) {
  const auto areas = static_cast<uint32_t>(plan.areas.size());
  const NadirTrackSettings settings = fullTracking();
  const size_t inPixels = plan.settings.until == NADIR_UNTIL_ALL ? 1 : 0;
  return {
      {"road", [plan] { return createRoad(plan); }, nadir_road_bytes(&plan.camera, &plan.settings, areas), inPixels},
      {"result", [&road] { return createResult(road.road()); }, nadir_result_bytes(&plan.camera, &plan.settings, areas),
       0},
      {"tracker", [&road, settings] { return createTracker(road.road(), settings); },
       nadir_tracker_bytes(road.road(), &settings), 0},
      {"rectifier", createRectifier, rectifierBytes(), 0},
      {"checker", createChecker, nadir_checker_bytes(80, 70), 0}};
}

NadirStatus createLevel(const NadirRoad* road) {
  NadirLevel* level = untouched<NadirLevel>();
  const NadirStatus status = nadir_level_create(road, &level);
  EXPECT_EQ(status != NADIR_OK, level == untouched<NadirLevel>());
  if (status == NADIR_OK) nadir_level_destroy(level);
  return status;
}

std::vector<lab::RoadPlan> plans() {
  std::vector<lab::RoadPlan> all;
  for (const uint32_t until : lab::everyEnd) {
    all.push_back(fullPlan());
    all.back().settings.until = until;
  }
  return all;
}

template <class Check>
void forEachCreation(Check check) {
  for (const lab::RoadPlan& plan : plans()) {
    const lab::Road road(plan);
    std::vector<Creation> all = creations(road, plan);
    if (plan.settings.until != NADIR_UNTIL_MATCH)
      all.push_back({"level", [&road] { return createLevel(road.road()); }, nadir_level_bytes(road.road()), 0});
    for (const Creation& c : all) {
      SCOPED_TRACE(c.name + ", until " + std::to_string(plan.settings.until));
      check(c);
    }
  }
}

TEST(RoadAlloc, EachObjectIsOneBlockOfTheStatedBytes) {
  forEachCreation([](const Creation& c) {
    const size_t live = heap::liveBlocks();
    heap::watch();
    EXPECT_EQ(c.create(), NADIR_OK);
    EXPECT_EQ(heap::allocations(), 1 + c.borrowed);
    EXPECT_EQ(heap::bytes(), c.bytes + c.borrowed * borrowedBytes);
    EXPECT_EQ(heap::liveBlocks(), live);
  });
}

TEST(RoadAlloc, WithoutMemoryThereIsNoObject) {
  forEachCreation([](const Creation& c) {
    const size_t live = heap::liveBlocks();
    for (size_t n = 1; n <= 1 + c.borrowed; ++n) {
      heap::watch(heap::Failing::once, n);
      EXPECT_EQ(c.create(), NADIR_NO_MEMORY) << n;
      EXPECT_EQ(heap::failures(), 1u) << n;
      EXPECT_EQ(heap::liveBlocks(), live) << n;
    }
    heap::watch();
  });
}

TEST(RoadAlloc, ARefusedAreaGivesTheBlockBack) {
  static constexpr int32_t besideTheMap[] = {-20000, -20000, -19990, -20000, -19990, -19990};
  lab::RoadPlan plan = fullPlan();
  plan.areas[1] = {sizeof(NadirArea), NADIR_AREA_GROUND_MM, 3, 0, besideTheMap, 0, 0};
  const size_t live = heap::liveBlocks();
  EXPECT_EQ(createRoad(plan), NADIR_AREA_WITHOUT_CELLS);
  EXPECT_EQ(heap::liveBlocks(), live);
}

// All that a frame may call.
void workOn(lab::Road& road, const lab::Tracker& tracker, const lab::Tracker& other, size_t frame,
            std::vector<NadirPoint>& points, std::vector<uint8_t>& state) {
  const NadirFrame pair = pairFrame(frame);
  size_t count = 0;
  NadirPlane mean{};
  NadirTrack track = lab::emptyRecord<NadirTrack>();
  NadirMeasurement logged = lab::emptyRecord<NadirMeasurement>();
  const double highest[] = {1000, 1200};
  logged.area_count = 2;
  logged.time_ns = static_cast<int64_t>(frame) * 100000000 + 50000000;
  logged.highest_mm = highest;
  logged.heights = road.findings(pair).heights;
  lab::demand(nadir_road_points(road.road(), &pair, road.result(), points.data(), points.size(), &count));
  lab::demand(nadir_tracker_step(tracker.get(), road.result(), static_cast<int64_t>(frame) * 100000000));
  lab::demand(nadir_tracker_replay(tracker.get(), &logged));
  lab::demand(nadir_tracker_read(tracker.get(), 0, &track));
  lab::demand(nadir_tracker_average(tracker.get(), &mean));
  nadir_tracker_save(tracker.get(), state.data(), state.size());
  lab::demand(nadir_tracker_load(other.get(), state.data(), state.size()));
}

TEST(RoadAlloc, FramesTakeNoMemory) {
  for (const uint32_t grid : lab::bothGrids) {
    lab::Road road(fullPlan(grid));
    const lab::Tracker tracker(road, fullTracking()), other(road, fullTracking());
    std::vector<NadirPoint> points(somePair().first.size());
    std::vector<uint8_t> state = tracker.saved();
    heap::watch();
    for (size_t frame = 0; frame < 5; ++frame) workOn(road, tracker, other, frame, points, state);
    EXPECT_EQ(heap::allocations(), 0u);
  }
}

TEST(RoadAlloc, RectifyingTakesNoMemory) {
  const lab::Rectifier rectifier(lab::lensOf(lab::lensKinds()[2], 50, 40), someView());
  const std::vector<uint16_t> picture(50 * 40, 9);
  std::vector<uint16_t> out(40 * 30);
  double x = 0, y = 0;
  heap::watch();
  lab::demand(nadir_rectifier_process(rectifier.get(), 16, picture.data(), 100, out.data(), 80));
  lab::demand(nadir_rectifier_source(rectifier.get(), 20, 15, &x, &y));
  EXPECT_EQ(heap::allocations(), 0u);
}

TEST(RoadAlloc, LevellingTakesNoMemory) {
  lab::Road road(fullPlan());
  NadirLevel* level = nullptr;
  lab::demand(nadir_level_create(road.road(), &level));
  const NadirFrame frame = pairFrame();
  road.findings(frame);
  NadirLevelled found = lab::emptyRecord<NadirLevelled>();
  heap::watch();
  nadir_level_add(level, &frame, road.result());
  nadir_level_read(level, &found);
  EXPECT_EQ(heap::allocations(), 0u);
  nadir_level_destroy(level);
}

TEST(RoadAlloc, CheckingTakesNoMemory) {
  const lab::Checker checker(80, 70);
  const lab::Grid<uint16_t> picture(80, 70, uint16_t{900});
  const NadirPair pair = lab::pairOf(picture, picture);
  NadirCheckup checkup = lab::emptyRecord<NadirCheckup>();
  heap::watch();
  lab::demand(nadir_checker_process(checker.get(), &pair, &checkup));
  EXPECT_EQ(heap::allocations(), 0u);
}

// The heap hands out blocks full of other bytes than 0, and frames leave their own behind.
TEST(RoadAlloc, WhatMemoryHeldBeforeDoesNotMatter) {
  const auto findings = [](lab::Road& road, size_t frame) {
    lab::Fingerprint print;
    return lab::addFindings(print, road.findings(pairFrame(frame))).value();
  };
  lab::Road worn(fullPlan());
  for (size_t frame = 0; frame < 6; ++frame) {
    lab::Road fresh(fullPlan());
    EXPECT_EQ(findings(worn, frame), findings(fresh, frame)) << frame;
  }
}

}  // namespace
}  // namespace nadir::test
