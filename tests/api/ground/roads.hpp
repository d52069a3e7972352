// Roads, results and trackers for tests: a small camera, what is made for it, and planes as vectors.
#pragma once

#include <gtest/gtest.h>
#include <nadir/ground.h>
#include <nadir/nadir.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "lab/grid.hpp"
#include "lab/random.hpp"

namespace nadir::test {

using lab::Grid;
using Picture = Grid<uint16_t>;

inline constexpr float noDisparity = std::numeric_limits<float>::quiet_NaN();

// A camera 2 m above a map of 16 x 14 cells, all of which it sees.
inline NadirCamera smallCamera() {
  NadirCamera camera{};
  camera.size = sizeof camera;
  camera.width_px = 96;
  camera.height_px = 60;
  camera.cell_mm = 40;
  camera.map_width_cells = 16;
  camera.map_height_cells = 14;
  camera.baseline_mm = 160;
  camera.focal_px = 100;
  camera.principal_x_px = 47.5;
  camera.principal_y_px = 29.5;
  camera.height_mm = 2000;
  return camera;
}

// The same, tilted, turned and with a map that was moved.
inline NadirCamera crookedCamera() {
  NadirCamera camera = smallCamera();
  camera.column_shift_px = 0.75;
  camera.tilt_deg = -20;
  camera.pan_deg = 9;
  camera.map_offset_x_mm = 50;
  camera.map_offset_y_mm = -30.5;
  return camera;
}

inline NadirSettings defaultSettings(const NadirCamera& camera) {
  NadirSettings settings{};
  EXPECT_EQ(nadir_settings_fill(&settings, &camera), NADIR_OK);
  return settings;
}

inline NadirSettings settingsUntil(uint32_t until, const NadirCamera& camera = smallCamera()) {
  NadirSettings settings = defaultSettings(camera);
  settings.until = until;
  return settings;
}

inline NadirArea areaOf(const std::vector<int32_t>& corners, uint32_t unit = NADIR_AREA_GROUND_MM) {
  return {sizeof(NadirArea), unit, static_cast<uint32_t>(corners.size() / 2), 0, corners.data(), 0, 0};
}

template <class Object, void (*destroy)(Object*)>
struct Destroy {
  void operator()(Object* object) const { destroy(object); }
};
using Road = std::unique_ptr<NadirRoad, Destroy<NadirRoad, nadir_road_destroy>>;
using Result = std::unique_ptr<NadirResult, Destroy<NadirResult, nadir_result_destroy>>;
using Tracker = std::unique_ptr<NadirTracker, Destroy<NadirTracker, nadir_tracker_destroy>>;

inline Road makeRoad(const NadirCamera& camera, const NadirSettings& settings,
                     const std::vector<NadirArea>& areas = {}) {
  NadirRoad* road = nullptr;
  NadirFault fault{};
  fault.size = sizeof fault;
  EXPECT_EQ(nadir_road_create(&camera, &settings, areas.empty() ? nullptr : areas.data(),
                              static_cast<uint32_t>(areas.size()), &road, &fault),
            NADIR_OK)
      << "fault: " << (fault.field ? fault.field : "no field") << ", area " << fault.area << ", corner "
      << fault.corner;
  return Road(road);
}

inline Result makeResult(const Road& road) {
  NadirResult* result = nullptr;
  EXPECT_EQ(nadir_result_create(road.get(), &result), NADIR_OK);
  return Result(result);
}

inline NadirFrame emptyFrame() {
  NadirFrame frame{};
  frame.size = sizeof frame;
  frame.bits = 16;
  return frame;
}

inline NadirFrame frameOf(const Grid<uint16_t>& left, const Grid<uint16_t>& right) {
  NadirFrame frame = emptyFrame();
  frame.left = left.pixels.data();
  frame.right = right.pixels.data();
  frame.left_stride = frame.right_stride = left.width * sizeof(uint16_t);
  return frame;
}

inline NadirFrame frameOf(const Grid<float>& disparity) {
  NadirFrame frame = emptyFrame();
  frame.disparity = disparity.pixels.data();
  frame.disparity_stride = disparity.width * sizeof(float);
  return frame;
}

inline NadirFindings read(const Result& result) {
  NadirFindings findings{};
  findings.size = sizeof findings;
  EXPECT_EQ(nadir_result_read(result.get(), &findings), NADIR_OK);
  return findings;
}

inline NadirFindings processed(const Road& road, const NadirFrame& frame, const Result& result) {
  EXPECT_EQ(nadir_road_process(road.get(), &frame, result.get()), NADIR_OK);
  return read(result);
}

inline StereoCtx contextOf(const Road& road) {
  StereoCtx context{};
  EXPECT_EQ(nadir_road_context(road.get(), &context), NADIR_OK);
  return context;
}

template <class T>
Grid<T> gridOf(const NadirPlane& plane) {
  Grid<T> grid(plane.width, plane.height);
  for (uint32_t y = 0; y < plane.height; ++y) {
    const unsigned char* row = static_cast<const unsigned char*>(plane.data) + y * plane.stride;
    if (plane.width > 0) std::memcpy(grid.row(y), row, plane.width * sizeof(T));
  }
  return grid;
}

// Records lie as far apart as the library says.
template <class Record>
std::vector<Record> recordsOf(const Record* first, uint32_t count) {
  std::vector<Record> records;
  for (uint32_t i = 0; i < count; ++i) {
    Record record;
    std::memcpy(&record, reinterpret_cast<const char*>(first) + size_t{i} * first->size, sizeof record);
    records.push_back(record);
  }
  return records;
}

// All bytes the same: whatever is written over them shows.
template <class Record>
Record marked() {
  Record record;
  std::memset(&record, 0x5A, sizeof record);
  record.size = sizeof record;
  return record;
}

template <class Record>
bool sameBytes(const Record& a, const Record& b) {
  return std::memcmp(&a, &b, sizeof(Record)) == 0;
}

// Sizes that a record must not claim: none, its first version less a byte, one more than the library knows, all bits.
inline std::vector<uint32_t> badSizes(size_t size) {
  const uint32_t right = static_cast<uint32_t>(size);
  return {0, right - 1, right + 1, std::numeric_limits<uint32_t>::max()};
}

// All that findings say, as bytes: two frames are the same when these are.
inline std::string everythingIn(const NadirFindings& f) {
  std::string out;
  const auto add = [&out](const void* bytes, size_t count) { out.append(static_cast<const char*>(bytes), count); };
  const auto addPlane = [&](const NadirPlane& plane, size_t bytes) {
    if (!plane.data) return;
    for (uint32_t y = 0; y < plane.height; ++y)
      add(static_cast<const char*>(plane.data) + y * plane.stride, plane.width * bytes);
  };
  const uint32_t numbers[] = {f.region_count, f.area_count,    f.share_count, f.warning_count,
                              f.points,       f.points_inside, f.seen_cells,  f.filled_cells};
  add(numbers, sizeof numbers);
  addPlane(f.disparity, 2);
  addPlane(f.heights, 2);
  addPlane(f.point_counts, 4);
  addPlane(f.labels, 2);
  if (f.pixels) add(f.pixels, sizeof *f.pixels);
  for (const NadirRegion& region : recordsOf(f.regions, f.region_count)) add(&region, sizeof region);
  for (const NadirOccupancy& area : recordsOf(f.areas, f.area_count)) add(&area, sizeof area);
  for (const NadirShare& share : recordsOf(f.shares, f.share_count)) add(&share, sizeof share);
  return out;
}

// A small camera whose pictures are of that size.
inline NadirCamera cameraOf(const Picture& picture) {
  NadirCamera camera = smallCamera();
  camera.width_px = picture.width;
  camera.height_px = picture.height;
  return camera;
}

// What the match alone gives.
struct Matched {
  Picture disparity;
  NadirPixelCounts pixels;
};

}  // namespace nadir::test
