// Calls of ground.h. The road is walked once, with given disparities: so its count is that of everything behind the
// match.
#include <nadir/ground.h>
#include <nadir/level.h>

#include <cmath>
#include <vector>

#include "lab/random.hpp"
#include "lab/road.hpp"
#include "tests/counts/calls.hpp"

namespace nadir::test::counts {
namespace {

// A quarter of a VGA picture over as many cells as a product's map has: what a frame costs whatever its size weighs as
// much as it does there.
constexpr uint32_t width = 320, height = 240;

void found(NadirStatus status) { done(status == NADIR_OK); }

// The mount is as exact as a product's, so that the ground lies where it says and need not be searched for.
NadirCamera camera() {
  lab::TexturedPair pair{};
  pair.width = width;
  pair.height = height;
  NadirCamera made = lab::cameraOver(pair);
  made.map_height_cells = 64;
  made.tilt_deg = -56.73;
  made.height_mm = 1994;
  return made;
}

// The ground of a textured pair with boxes on it, an error of up to a quarter of a pixel, and one pixel in ten without
// a value.
std::vector<float> disparities() {
  lab::Random random(1);
  std::vector<float> all;
  for (uint32_t y = 0; y < height; ++y)
    for (uint32_t x = 0; x < width; ++x) {
      const bool onBox = (x > 60 && x < 130 && y > 70 && y < 130) || (x > 190 && x < 240 && y > 120 && y < 215);
      const float disparity =
          6 + 34 * static_cast<float>(y) / height + (onBox ? 11 : 0) + static_cast<float>(random.between(-4, 4)) / 16;
      all.push_back(random.below(10) ? disparity : NAN);
    }
  return all;
}

NadirTracker* trackerOf(const NadirRoad* road) {
  NadirTrackSettings settings;
  NadirTracker* tracker;
  found(nadir_track_settings_fill(&settings));
  settings.average_frames = 4;
  done(nadir_tracker_bytes(road, &settings) > 0);
  found(nadir_tracker_create(road, &settings, &tracker, nullptr));
  return tracker;
}

void callTracker(const NadirRoad* road, const NadirResult* result) {
  NadirTracker* const tracker = trackerOf(road);
  const double highest = 1000;
  NadirMeasurement logged = lab::emptyRecord<NadirMeasurement>();
  logged.area_count = 1;
  logged.highest_mm = &highest;
  logged.time_ns = 100000000;
  NadirTrack track = lab::emptyRecord<NadirTrack>();
  NadirPlane mean;
  found(nadir_tracker_step(tracker, result, 0));
  found(nadir_tracker_replay(tracker, &logged));
  found(nadir_tracker_read(tracker, 0, &track));
  found(nadir_tracker_average(tracker, &mean));
  std::vector<uint8_t> saved(nadir_tracker_save(tracker, nullptr, 0));
  done(nadir_tracker_save(tracker, saved.data(), saved.size()) == saved.size());
  found(nadir_tracker_load(tracker, saved.data(), saved.size()));
  nadir_tracker_destroy(tracker);
}

NadirRoad* roadOf(const NadirCamera& camera, const NadirSettings& settings) {
  static constexpr int32_t corners[] = {60, 60, 260, 60, 260, 220, 60, 220};
  const NadirArea area = {sizeof(NadirArea), NADIR_AREA_PIXELS, 4, 0, corners, 0, 0};
  NadirRoad* road;
  done(nadir_road_bytes(&camera, &settings, 1) > 0 && nadir_result_bytes(&camera, &settings, 1) > 0);
  found(nadir_road_create(&camera, &settings, &area, 1, &road, nullptr));
  return road;
}

void callWarnings() {
  done(nadir_warning_name(NADIR_WARNING_TOO_NEAR) && nadir_warning_sentence(NADIR_WARNING_TOO_NEAR));
  done(nadir_warning_number_name(NADIR_WARNING_TOO_NEAR, 0) != nullptr);
  done(nadir_warning_scale(NADIR_WARNING_TOO_NEAR, 0) > 0);
}

void callFrame(NadirRoad* road, NadirResult* result) {
  const std::vector<float> disparity = disparities();
  const NadirFrame frame = lab::givenFrame(disparity.data(), width);
  NadirFindings findings = lab::emptyRecord<NadirFindings>();
  std::vector<NadirPoint> points(disparity.size());
  size_t count;
  found(nadir_road_process(road, &frame, result));
  found(nadir_result_read(result, &findings));
  done(findings.region_count > 0 && findings.areas[0].covered_cells > 0 && !findings.trust->searched);
  found(nadir_road_points(road, &frame, result, points.data(), points.size(), &count));
  NadirGroundPlane plane = lab::emptyRecord<NadirGroundPlane>();
  found(nadir_road_ground_plane(road, &frame, result, &plane));
}

// The ground of disparities() with its boxes, as intensities show it.
void callLevel(const NadirRoad* road, const NadirResult* result) {
  const lab::TexturedPair pair = lab::texturedPair(width, height);
  const std::vector<float> disparity = disparities();
  NadirFrame frame = lab::frameOf(pair.first.data(), pair.reference.data(), width);
  frame.disparity = disparity.data();
  frame.disparity_stride = width * sizeof(float);
  NadirLevelled levelled = lab::emptyRecord<NadirLevelled>();
  NadirPlane taken;
  NadirLevel* level;
  done(nadir_level_bytes(road) > 0);
  found(nadir_level_create(road, &level));
  found(nadir_level_add(level, &frame, result));
  found(nadir_level_read(level, &levelled));
  found(nadir_level_taken(level, &taken));
  nadir_level_destroy(level);
}

}  // namespace

void callGround() {
  const NadirCamera made = camera();
  NadirSettings settings;
  NadirResult* result;
  StereoCtx context;
  NadirPlacedArea area = lab::emptyRecord<NadirPlacedArea>();
  found(nadir_settings_fill(&settings, &made));
  uint32_t range;
  found(nadir_road_range(&made, &settings, 2000, &range));
  NadirRoad* const road = roadOf(made, settings);
  found(nadir_road_context(road, &context));
  found(nadir_road_area(road, 0, &area));
  found(nadir_result_create(road, &result));
  callFrame(road, result);
  callTracker(road, result);
  callLevel(road, result);
  callWarnings();
  done(nadir_status_text(NADIR_OK) != nullptr);
  nadir_result_destroy(result);
  nadir_road_destroy(road);
}

}  // namespace nadir::test::counts
