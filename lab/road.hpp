// libnadirground run from C++: a road with its result, and hashes of what it finds.
#pragma once

#include <nadir/ground.h>

#include <cmath>
#include <memory>
#include <stdexcept>
#include <vector>

#include "lab/fingerprint.hpp"
#include "lab/textured_pair.hpp"

namespace nadir::lab {

constexpr uint32_t bothGrids[] = {NADIR_GRID_LEFT, NADIR_GRID_RIGHT};
constexpr uint32_t everyEnd[] = {NADIR_UNTIL_MATCH, NADIR_UNTIL_MAP, NADIR_UNTIL_ALL};

// What a road is made of. The areas' corners are the caller's.
struct RoadPlan {
  NadirCamera camera;
  NadirSettings settings;
  std::vector<NadirArea> areas;
};

inline void demand(NadirStatus status) {
  if (status != NADIR_OK) throw std::runtime_error(nadir_status_text(status));
}

// Records that a call fills have to know their size.
template <class Record>
Record emptyRecord() {
  Record record{};
  record.size = sizeof record;
  return record;
}

inline RoadPlan planOf(const NadirCamera& camera) {
  RoadPlan plan{camera, {}, {}};
  demand(nadir_settings_fill(&plan.settings, &camera));
  return plan;
}

// The ground of a textured pair has 6 + 34 * row / height pixels of disparity. This camera, two metres above it, sees
// it so at any size.
inline NadirCamera cameraOver(const TexturedPair& pair) {
  NadirCamera camera = emptyRecord<NadirCamera>();
  camera.width_px = pair.width;
  camera.height_px = pair.height;
  camera.cell_mm = 130;
  camera.map_width_cells = 64;
  camera.map_height_cells = 80;
  camera.baseline_mm = 836 * 97.0 / pair.height;
  camera.focal_px = 100 * pair.height / 97.0;
  camera.principal_x_px = pair.width / 2.0;
  camera.principal_y_px = pair.height / 2.0;
  camera.height_mm = 2000;
  camera.tilt_deg = -57;
  camera.map_offset_y_mm = 1500;
  return camera;
}

template <class Pixel>
NadirFrame frameOf(const Pixel* left, const Pixel* right, uint32_t width) {
  NadirFrame frame = emptyRecord<NadirFrame>();
  frame.bits = 8 * sizeof(Pixel);
  frame.left = left;
  frame.right = right;
  frame.left_stride = frame.right_stride = width * sizeof(Pixel);
  return frame;
}

inline NadirFrame givenFrame(const float* disparity, uint32_t width) {
  NadirFrame frame = emptyRecord<NadirFrame>();
  frame.disparity = disparity;
  frame.disparity_stride = width * sizeof *disparity;
  return frame;
}

class Road {
 public:
  explicit Road(const RoadPlan& plan) : road_(made(plan)), result_(resultOf(road_.get())) {}

  NadirFindings findings(const NadirFrame& frame) {
    demand(nadir_road_process(road_.get(), &frame, result_.get()));
    NadirFindings found = emptyRecord<NadirFindings>();
    demand(nadir_result_read(result_.get(), &found));
    return found;
  }
  NadirRoad* road() const { return road_.get(); }
  NadirResult* result() const { return result_.get(); }

 private:
  struct Destroy {
    void operator()(NadirRoad* road) const { nadir_road_destroy(road); }
    void operator()(NadirResult* result) const { nadir_result_destroy(result); }
  };
  static NadirRoad* made(const RoadPlan& plan) {
    NadirRoad* road = nullptr;
    const auto areas = static_cast<uint32_t>(plan.areas.size());
    demand(nadir_road_create(&plan.camera, &plan.settings, plan.areas.data(), areas, &road, nullptr));
    return road;
  }
  static NadirResult* resultOf(const NadirRoad* road) {
    NadirResult* result = nullptr;
    demand(nadir_result_create(road, &result));
    return result;
  }
  std::unique_ptr<NadirRoad, Destroy> road_;
  std::unique_ptr<NadirResult, Destroy> result_;
};

class Tracker {
 public:
  Tracker(const Road& road, const NadirTrackSettings& settings) {
    demand(nadir_tracker_create(road.road(), &settings, &tracker_, nullptr));
  }
  ~Tracker() { nadir_tracker_destroy(tracker_); }
  Tracker(const Tracker&) = delete;
  Tracker& operator=(const Tracker&) = delete;
  NadirTracker* get() const { return tracker_; }

  std::vector<uint8_t> saved() const {
    std::vector<uint8_t> bytes(nadir_tracker_save(tracker_, nullptr, 0));
    nadir_tracker_save(tracker_, bytes.data(), bytes.size());
    return bytes;
  }

 private:
  NadirTracker* tracker_ = nullptr;
};

template <class T>
Fingerprint& addPlane(Fingerprint& print, const NadirPlane& plane) {
  const auto* row = static_cast<const T*>(plane.data);
  for (uint32_t y = 0; row && y < plane.height; ++y, row += plane.stride / sizeof(T)) print.add(row, plane.width);
  return print;
}

inline Fingerprint& addCounts(Fingerprint& print, const NadirPixelCounts& c) {
  return print.add(c.value).add(c.ambiguous).add(c.removed).add(c.masked).add(c.border).add(c.filled);
}

inline Fingerprint& addDisparities(Fingerprint& print, const NadirFindings& f) {
  return addCounts(addPlane<uint16_t>(print, f.disparity), *f.pixels);
}

inline Fingerprint& addHeights(Fingerprint& print, const NadirFindings& f) {
  addPlane<uint32_t>(addPlane<uint16_t>(print, f.heights), f.point_counts);
  return print.add(f.points).add(f.points_inside).add(f.seen_cells).add(f.filled_cells);
}

inline Fingerprint& addRegions(Fingerprint& print, const NadirFindings& f) {
  addPlane<uint16_t>(print, f.labels).add(f.region_count);
  for (uint32_t i = 0; i < f.region_count; ++i) {
    const NadirRegion& r = f.regions[i];
    print.add(r.label).add(r.cells).add(r.highest_mm).add(r.median_mm).add(r.left).add(r.top).add(r.right);
    print.add(r.bottom).add(r.at_map_edge).add(r.at_picture_edge).add(r.centre_x_mm).add(r.centre_y_mm).add(r.area_m2);
  }
  return print;
}

inline Fingerprint& addAreas(Fingerprint& print, const NadirFindings& f) {
  print.add(f.area_count).add(f.share_count);
  for (uint32_t i = 0; i < f.area_count; ++i) {
    const NadirOccupancy& a = f.areas[i];
    print.add(a.cells).add(a.seen_cells).add(a.covered_cells).add(a.highest_mm).add(a.median_mm);
    print.add(a.first_share).add(a.share_count);
  }
  for (uint32_t i = 0; i < f.share_count; ++i) {
    const NadirShare& s = f.shares[i];
    print.add(s.label).add(s.cells).add(s.highest_mm).add(s.median_mm);
  }
  return print;
}

// There are many ways to write not-a-number, and processors choose among them.
inline Fingerprint& addReal(Fingerprint& print, double value) { return print.add(std::isnan(value) ? -1e300 : value); }

inline Fingerprint& addTrust(Fingerprint& print, const NadirFindings& f) {
  const NadirTrust& t = *f.trust;
  print.add(t.searched);
  for (const double value : {t.dark_left,
                             t.dark_right,
                             t.clipped_left,
                             t.clipped_right,
                             t.matched,
                             t.value,
                             t.range_end,
                             t.cut_off,
                             t.on_ground,
                             t.below_ground,
                             t.height_off_mm,
                             t.tilt_off_deg,
                             t.pan_off_deg,
                             t.height_deviation_mm,
                             t.tilt_deviation_deg,
                             t.pan_deviation_deg,
                             t.found_height_mm,
                             t.found_tilt_deg,
                             t.found_pan_deg,
                             t.found_share,
                             t.map_seen,
                             t.least_top_mm,
                             t.greatest_top_mm})
    addReal(print, value);
  for (uint32_t i = 0; i < f.warning_count; ++i) {
    print.add(f.warnings[i].id);
    for (uint32_t k = 0; k < f.warnings[i].count; ++k) addReal(print, f.warnings[i].numbers[k]);
  }
  return print;
}

inline Fingerprint& addFindings(Fingerprint& print, const NadirFindings& f) {
  if (f.pixels) addDisparities(print, f);
  return addTrust(addAreas(addRegions(addHeights(print, f), f), f), f);
}

inline Fingerprint& addGroundPlane(Fingerprint& print, const Road& road, const NadirFrame& frame) {
  NadirGroundPlane p = emptyRecord<NadirGroundPlane>();
  const NadirStatus status = nadir_road_ground_plane(road.road(), &frame, road.result(), &p);
  print.add(status);
  for (const double value :
       {p.height_mm, p.tilt_deg, p.pan_deg, p.axis_below_horizon_deg, p.roll_deg, p.rms_mm, p.rms_px})
    addReal(print, value);
  return print.add(p.points).add(p.inliers);
}

inline Fingerprint& addPoints(Fingerprint& print, const Road& road, const NadirFrame& frame) {
  size_t count = 0;
  demand(nadir_road_points(road.road(), &frame, road.result(), nullptr, 0, &count));
  std::vector<NadirPoint> points(count);
  demand(nadir_road_points(road.road(), &frame, road.result(), points.data(), count, &count));
  for (const NadirPoint& p : points)
    print.add(p.x_mm).add(p.y_mm).add(p.z_mm).add(p.disparity_px).add(p.column).add(p.row).add(p.cell);
  return addGroundPlane(print.add(uint64_t{count}), road, frame);
}

inline Fingerprint& addTrack(Fingerprint& print, const Tracker& tracker, uint32_t area) {
  NadirTrack track = emptyRecord<NadirTrack>();
  demand(nadir_tracker_read(tracker.get(), area, &track));
  return print.add(track.active).add(track.height_mm).add(track.rate_mm_per_s).add(track.deviation_mm);
}

inline Fingerprint& addAverage(Fingerprint& print, const Tracker& tracker) {
  NadirPlane mean{};
  demand(nadir_tracker_average(tracker.get(), &mean));
  return addPlane<uint16_t>(print, mean);
}

}  // namespace nadir::lab
