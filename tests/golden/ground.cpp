// Results of the road from a pair of pictures to what stands on the ground.
#include <nadir/level.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "lab/road.hpp"
#include "lab/textured_pair.hpp"
#include "tests/golden/golden.hpp"

namespace nadir::test::golden {
namespace {

const lab::TexturedPair& somePair() {
  static const lab::TexturedPair pair = lab::texturedPair(163, 97);
  return pair;
}

lab::RoadPlan somePlan() {
  static constexpr int32_t pixels[] = {5, 5, 150, 9, 140, 92, 20, 90, 60, 50};
  static constexpr int32_t ground[] = {-2000, -4000, 3000, -4000, 2500, 1000, -1900, 900};
  lab::RoadPlan plan = lab::planOf(lab::cameraOver(somePair()));
  plan.areas = {{sizeof(NadirArea), NADIR_AREA_PIXELS, 5, 0, pixels, 0, 0},
                {sizeof(NadirArea), NADIR_AREA_GROUND_MM, 4, 0, ground, 0, 0}};
  return plan;
}

NadirFrame someFrame() {
  const lab::TexturedPair& pair = somePair();
  return lab::frameOf(pair.first.data(), pair.reference.data(), pair.width);
}

Fingerprint& addFoundAndPoints(Fingerprint& hash, const lab::RoadPlan& plan, const NadirFrame& frame) {
  lab::Road road(plan);
  lab::addFindings(hash, road.findings(frame));
  return plan.settings.until == NADIR_UNTIL_MATCH ? hash : lab::addPoints(hash, road, frame);
}

Fingerprint matched() {
  Fingerprint hash;
  for (const uint32_t grid : lab::bothGrids) {
    for (const uint32_t until : lab::everyEnd) {
      lab::RoadPlan plan = somePlan();
      plan.settings.grid = grid;
      plan.settings.until = until;
      plan.settings.postprocess = until != NADIR_UNTIL_MAP;
      addFoundAndPoints(hash, plan, someFrame());
    }
  }
  return hash;
}

Fingerprint masked() {
  NadirFrame frame = someFrame();
  frame.mask = somePair().mask.data();
  frame.mask_stride = somePair().width;
  Fingerprint hash;
  return addFoundAndPoints(hash, somePlan(), frame);
}

Fingerprint ofEightBits() {
  const auto narrow = [](const std::vector<uint16_t>& wide) {
    std::vector<uint8_t> bytes;
    for (const uint16_t value : wide) bytes.push_back(static_cast<uint8_t>(value / 16));
    return bytes;
  };
  const std::vector<uint8_t> left = narrow(somePair().first), right = narrow(somePair().reference);
  Fingerprint hash;
  return addFoundAndPoints(hash, somePlan(), lab::frameOf(left.data(), right.data(), somePair().width));
}

Fingerprint withoutHoles() {
  lab::RoadPlan plan = somePlan();
  plan.settings.fill_holes_m2 = 1;
  Fingerprint hash;
  return addFoundAndPoints(hash, plan, someFrame());
}

// Any disparities, beyond infinity and not a number among them, and any percentile.
Fingerprint given() {
  Fingerprint hash;
  for (uint64_t seed = 1; seed <= 10; ++seed) {
    lab::Random random(seed);
    std::vector<float> disparity(somePair().first.size());
    for (float& d : disparity) d = random.below(9) ? static_cast<float>(random.between(-20, 1000)) / 16 : NAN;
    lab::RoadPlan plan = somePlan();
    plan.settings.percentile = random.between(1, 1000) / 10.0;
    plan.settings.min_points = 1 + random.below(6);
    plan.settings.max_step_mm = random.below(2000);
    plan.settings.min_area_m2 = random.below(30) * 0.01;
    plan.camera.column_shift_px = random.between(-30, 30) / 10.0;
    addFoundAndPoints(hash, plan, lab::givenFrame(disparity.data(), somePair().width));
  }
  return hash;
}

// All checks, refined and not, with pictures of half the size.
Fingerprint matchedAgain() {
  static constexpr uint32_t checks[] = {NADIR_CHECK_NONE, NADIR_CHECK_FLIP, NADIR_CHECK_SIDES, NADIR_CHECK_BOTH};
  static constexpr uint32_t ranges[] = {NADIR_RANGE_61, NADIR_RANGE_122};
  Fingerprint hash;
  for (const uint32_t grid : lab::bothGrids)
    for (const uint32_t check : checks)
      for (const uint32_t range : ranges) {
        lab::RoadPlan plan = somePlan();
        plan.settings.grid = grid;
        plan.settings.check = check;
        plan.settings.range = range;
        plan.settings.refine = range == NADIR_RANGE_61 ? NADIR_REFINE_SURFACE : NADIR_REFINE_NONE;
        NadirFrame frame = someFrame();
        frame.mask = check == NADIR_CHECK_BOTH ? somePair().mask.data() : nullptr;
        frame.mask_stride = somePair().width;
        addFoundAndPoints(hash, plan, frame);
      }
  return hash;
}

// What two passes disagree on, kept more and less easily.
Fingerprint supported() {
  Fingerprint hash;
  for (const uint32_t grid : lab::bothGrids)
    for (const uint32_t support : {1u, 8u, 20u}) {
      lab::RoadPlan plan = somePlan();
      plan.settings.grid = grid;
      plan.settings.check = support == 20 ? NADIR_CHECK_BOTH : NADIR_CHECK_FLIP;
      plan.settings.range = NADIR_RANGE_122;
      plan.settings.support = support;
      addFoundAndPoints(hash, plan, someFrame());
    }
  return hash;
}

// Regions that are parted, and areas with heights of their own.
Fingerprint parted() {
  Fingerprint hash;
  for (const double dip : {1, 30, 400}) {
    lab::RoadPlan plan = somePlan();
    plan.settings.max_step_mm = 2000;
    plan.settings.min_area_m2 = 0;
    plan.settings.dip_mm = dip;
    plan.areas[0].min_height_mm = 20;
    plan.areas[1].max_height_mm = 900;
    addFoundAndPoints(hash, plan, someFrame());
  }
  return hash;
}

Fingerprint ranges() {
  Fingerprint hash;
  lab::RoadPlan plan = somePlan();
  for (plan.camera.width_px = 100; plan.camera.width_px < 900; plan.camera.width_px *= 2)
    for (plan.camera.tilt_deg = -60; plan.camera.tilt_deg <= 60; plan.camera.tilt_deg += 30)
      for (double tallest = 0; tallest < plan.camera.height_mm; tallest += 100) {
        uint32_t range;
        lab::demand(nadir_road_range(&plan.camera, &plan.settings, tallest, &range));
        hash.add(range);
      }
  return hash;
}

Fingerprint setUp() {
  const lab::RoadPlan plan = somePlan();
  const lab::Road road(plan);
  const NadirSettings& s = plan.settings;
  Fingerprint hash;
  hash.add(s.until).add(s.grid).add(s.uniqueness).add(s.postprocess).add(s.min_points).add(s.percentile);
  hash.add(s.fill_holes_m2).add(s.min_height_mm).add(s.max_step_mm).add(s.min_area_m2).add(s.dip_mm);
  StereoCtx context;
  lab::demand(nadir_road_context(road.road(), &context));
  hash.add(context.extCalib.R, 9).add(context.extCalib.T, 3).add(context.lowerLeft.x).add(context.lowerLeft.y);
  for (uint32_t i = 0; i < plan.areas.size(); ++i) {
    NadirPlacedArea area = lab::emptyRecord<NadirPlacedArea>();
    lab::demand(nadir_road_area(road.road(), i, &area));
    hash.add(area.cells).add(area.whole_on_map).add(area.ground_mm, 2 * area.corner_count);
    lab::addPlane<uint8_t>(hash, area.mask);
  }
  return hash;
}

// Measured heights that come and go, and maps that rise, in a log; frames of the road in between.
Fingerprint tracked() {
  lab::Road road(somePlan());
  road.findings(someFrame());
  NadirTrackSettings settings;
  lab::demand(nadir_track_settings_fill(&settings));
  Fingerprint hash;
  hash.add(settings.noise_mm).add(settings.acceleration_mm_per_s2).add(settings.patience_s);
  settings.average_frames = 4;
  const lab::Tracker tracker(road, settings), other(road, settings);
  lab::Random random(1);
  NadirMeasurement logged = lab::emptyRecord<NadirMeasurement>();
  for (int64_t frame = 0; frame < 30; ++frame) {
    const double highest[] = {random.below(3) ? double(900 + random.below(400)) : double{NAN},
                              random.below(9) ? 1700.5 : double{NAN}};
    const auto map = random.values<uint16_t>(64 * 80, 3000);
    logged.area_count = 2;
    logged.time_ns = frame * 100000000 + random.below(9000000);
    logged.highest_mm = highest;
    logged.heights = {random.below(4) ? map.data() : nullptr, 64 * sizeof(uint16_t), 64, 80};
    lab::demand(nadir_tracker_replay(tracker.get(), &logged));
    lab::addTrack(lab::addTrack(hash, tracker, 0), tracker, 1);
    if (frame % 7 == 6) lab::demand(nadir_tracker_step(tracker.get(), road.result(), frame * 100000000 + 50000000));
  }
  const std::vector<uint8_t> saved = tracker.saved();
  lab::demand(nadir_tracker_load(other.get(), saved.data(), saved.size()));
  return lab::addAverage(lab::addTrack(hash.add(saved), other, 1), other);
}

void addLevelled(Fingerprint& hash, const NadirLevel* level) {
  NadirLevelled found = lab::emptyRecord<NadirLevelled>();
  NadirPlane taken{};
  hash.add(nadir_level_read(level, &found)).add(found.pairs);
  for (const double value : {found.height_mm, found.tilt_deg, found.pan_deg, found.height_deviation_mm,
                             found.tilt_deviation_deg, found.pan_deviation_deg, found.axis_below_horizon_deg,
                             found.roll_deg, found.axis_deviation_deg, found.roll_deviation_deg, found.floor_share})
    lab::addReal(hash, value);
  if (nadir_level_taken(level, &taken) == NADIR_OK) lab::addPlane<uint8_t>(hash, taken);
}

// Two pairs, the second mirrored top to bottom, whose floors contradict each other.
Fingerprint levelled() {
  const lab::TexturedPair pair = lab::texturedPair(320, 240);
  lab::RoadPlan plan = lab::planOf(lab::cameraOver(pair));
  plan.settings.until = NADIR_UNTIL_MAP;
  lab::Road road(plan);
  NadirLevel* level = nullptr;
  lab::demand(nadir_level_create(road.road(), &level));
  Fingerprint hash;
  for (const bool mirrored : {false, true}) {
    std::vector<uint16_t> left = pair.first, right = pair.reference;
    if (mirrored) std::reverse(left.begin(), left.end()), std::reverse(right.begin(), right.end());
    const NadirFrame frame = mirrored ? lab::frameOf(right.data(), left.data(), pair.width)
                                      : lab::frameOf(left.data(), right.data(), pair.width);
    road.findings(frame);
    hash.add(nadir_level_add(level, &frame, road.result()));
    addLevelled(hash, level);
  }
  nadir_level_destroy(level);
  return hash;
}

}  // namespace

std::vector<Case> groundCases() {
  return {{"RoadSetUp", setUp},
          {"RoadMatched", matched},
          {"RoadMasked", masked},
          {"RoadOfEightBits", ofEightBits},
          {"RoadWithoutHoles", withoutHoles},
          {"RoadMatchedAgain", matchedAgain},
          {"RoadSupported", supported},
          {"RoadParted", parted},
          {"RoadRanges", ranges},
          {"RoadGiven", given},
          {"RoadTracked", tracked},
          {"Levelled", levelled}};
}

}  // namespace nadir::test::golden
