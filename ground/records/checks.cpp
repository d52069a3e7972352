// Numbers are held against their ranges, record by record.
#include "ground/records/checks.hpp"

namespace nadir::ground {

namespace {

// Not-a-number lies in no range.
struct Range {
  const char* field;
  double value, least, most;
  bool holds() const { return value >= least && value <= most; }
};

constexpr double justAboveZero = 4.9406564584124654e-324;  // the least of all doubles above 0
constexpr double farthest = 1e6;                           // mm and pixels: what libnadir's fixed point holds
constexpr double highest = 65535;                          // mm: what a map can hold
constexpr uint32_t leastSide = 5, largestSide = 65535, largestMap = 65535, mostPixels = 1u << 25;

template <size_t n>
Judgement outside(NadirStatus status, const Range (&ranges)[n]) {
  for (const Range& range : ranges)
    if (!range.holds()) return {status, range.field};
  return {};
}

// Of cameras, lenses and views.
template <class Record>
Judgement judgedSize(const Record& c) {
  const Range ranges[] = {{"width_px", double(c.width_px), leastSide, largestSide},
                          {"height_px", double(c.height_px), leastSide, largestSide},
                          {"height_px", double(c.width_px) * c.height_px, 0, mostPixels}};
  return outside(NADIR_BAD_CAMERA, ranges);
}

Judgement judgedMount(const NadirCamera& c) {
  const Range ranges[] = {{"cell_mm", double(c.cell_mm), 1, 65535},
                          {"map_width_cells", double(c.map_width_cells), 1, largestMap},
                          {"map_height_cells", double(c.map_height_cells), 1, largestMap},
                          {"baseline_mm", c.baseline_mm, justAboveZero, farthest},
                          {"focal_px", c.focal_px, justAboveZero, farthest},
                          {"principal_x_px", c.principal_x_px, -farthest, farthest},
                          {"principal_y_px", c.principal_y_px, -farthest, farthest},
                          {"column_shift_px", c.column_shift_px, -farthest, farthest},
                          {"height_mm", c.height_mm, justAboveZero, farthest},
                          {"tilt_deg", c.tilt_deg, -90, 90},
                          {"pan_deg", c.pan_deg, -90, 90},
                          {"map_offset_x_mm", c.map_offset_x_mm, -farthest, farthest},
                          {"map_offset_y_mm", c.map_offset_y_mm, -farthest, farthest}};
  return outside(NADIR_BAD_CAMERA, ranges);
}

Judgement judgedMatching(const NadirSettings& s) {
  const Range ranges[] = {{"until", double(s.until), NADIR_UNTIL_MATCH, NADIR_UNTIL_ALL},
                          {"grid", double(s.grid), NADIR_GRID_LEFT, NADIR_GRID_RIGHT},
                          {"postprocess", double(s.postprocess), 0, 1},
                          {"check", double(s.check), NADIR_CHECK_NONE, NADIR_CHECK_BOTH},
                          {"refine", double(s.refine), NADIR_REFINE_NONE, NADIR_REFINE_SURFACE},
                          {"support", double(s.support), 0, NADIR_LARGEST_SUPPORT}};
  if (s.range != NADIR_RANGE_61 && s.range != NADIR_RANGE_122 && s.range != NADIR_RANGE_244)
    return {NADIR_BAD_SETTING, "range"};
  return outside(NADIR_BAD_SETTING, ranges);
}

Judgement judgedCells(const NadirSettings& s) {
  const Range ranges[] = {{"min_points", double(s.min_points), 1, 1000000},
                          {"percentile", s.percentile, justAboveZero, 100},
                          {"fill_holes_m2", s.fill_holes_m2, 0, 1e6}};
  return outside(NADIR_BAD_SETTING, ranges);
}

Judgement judgedRegions(const NadirSettings& s) {
  const Range ranges[] = {{"min_height_mm", s.min_height_mm, 0, 65534},
                          {"max_step_mm", s.max_step_mm, 0, 65535},
                          {"min_area_m2", s.min_area_m2, 0, 1e6},
                          {"dip_mm", s.dip_mm, 0, highest}};
  return outside(NADIR_BAD_SETTING, ranges);
}

// Pull and push halve a map until nothing is left of it.
Judgement judgedHoles(const NadirCamera& c, const NadirSettings& s) {
  if (s.fill_holes_m2 == 0) return {};
  const Range ranges[] = {{"map_width_cells", double(c.map_width_cells), 2, 4095},
                          {"map_height_cells", double(c.map_height_cells), 2, 4095}};
  return outside(NADIR_BAD_CAMERA, ranges);
}

Judgement judgedRegionMap(const NadirCamera& c) {
  const Range ranges[] = {{"map_width_cells", double(c.map_width_cells), 1, NADIR_LARGEST_REGION_MAP},
                          {"map_height_cells", double(c.map_height_cells), 1, NADIR_LARGEST_REGION_MAP}};
  return outside(NADIR_BAD_CAMERA, ranges);
}

bool isBad(const Judgement& judgement) { return judgement.status != NADIR_OK; }

}  // namespace

Judgement judged(const NadirCamera& camera, const NadirSettings& settings) {
  if (!isWhole(&camera)) return {NADIR_BAD_RECORD, "camera"};
  if (!isWhole(&settings)) return {NADIR_BAD_RECORD, "settings"};
  if (const Judgement j = judgedMatching(settings); isBad(j)) return j;
  if (const Judgement j = judgedSize(camera); isBad(j)) return j;
  if (settings.until == NADIR_UNTIL_MATCH) return {};
  if (const Judgement j = judgedMount(camera); isBad(j)) return j;
  if (const Judgement j = judgedCells(settings); isBad(j)) return j;
  if (const Judgement j = judgedHoles(camera, settings); isBad(j)) return j;
  if (settings.until == NADIR_UNTIL_MAP) return {};
  if (const Judgement j = judgedRegions(settings); isBad(j)) return j;
  return judgedRegionMap(camera);
}

Judgement judged(const NadirArea& area) {
  if (!isWhole(&area)) return {NADIR_BAD_RECORD, "areas"};
  if (area.unit > NADIR_AREA_GROUND_MM) return {NADIR_BAD_AREA, "unit"};
  if (area.corner_count < 3 || area.corner_count > 100) return {NADIR_BAD_AREA, "corner_count"};
  if (!area.corners) return {NADIR_NULL_POINTER, "corners"};
  for (uint32_t i = 0; i < 2 * area.corner_count; ++i)
    if (area.corners[i] < -NADIR_AREA_REACH || area.corners[i] > NADIR_AREA_REACH)
      return {NADIR_BAD_AREA, "corners", 0, i / 2};
  const Range ranges[] = {{"min_height_mm", double(area.min_height_mm), 0, highest},
                          {"max_height_mm", double(area.max_height_mm), 0, highest}};
  if (const Judgement j = outside(NADIR_BAD_AREA, ranges); isBad(j)) return j;
  if (area.max_height_mm > 0 && area.max_height_mm <= area.min_height_mm) return {NADIR_BAD_AREA, "max_height_mm"};
  return {};
}

Judgement judged(const NadirTrackSettings& s) {
  if (!isWhole(&s)) return {NADIR_BAD_RECORD, "settings"};
  const Range ranges[] = {{"average_frames", double(s.average_frames), 0, 1000},
                          {"noise_mm", s.noise_mm, justAboveZero, 1e6},
                          {"acceleration_mm_per_s2", s.acceleration_mm_per_s2, 0, 1e9},
                          {"patience_s", s.patience_s, 0, 1e6},
                          {"disparity_px", s.disparity_px, 0, 1000}};
  return outside(NADIR_BAD_SETTING, ranges);
}

Judgement judged(const NadirLens& lens) {
  if (!isWhole(&lens)) return {NADIR_BAD_RECORD, "lens"};
  if (const Judgement j = judgedSize(lens); isBad(j)) return j;
  const Range ranges[] = {{"model", double(lens.model), NADIR_LENS_NONE, NADIR_LENS_FISHEYE},
                          {"focal_x_px", lens.focal_x_px, justAboveZero, farthest},
                          {"focal_y_px", lens.focal_y_px, justAboveZero, farthest},
                          {"principal_x_px", lens.principal_x_px, -farthest, farthest},
                          {"principal_y_px", lens.principal_y_px, -farthest, farthest}};
  if (const Judgement j = outside(NADIR_BAD_CAMERA, ranges); isBad(j)) return j;
  constexpr uint32_t ofModel[] = {0, 12, 4};
  for (uint32_t i = 0; i < 12; ++i) {
    const double most = i < ofModel[lens.model] ? farthest : 0;
    if (!Range{"coefficients", lens.coefficients[i], -most, most}.holds()) return {NADIR_BAD_CAMERA, "coefficients"};
  }
  return {};
}

Judgement judged(const NadirRectifiedView& view) {
  if (!isWhole(&view)) return {NADIR_BAD_RECORD, "view"};
  if (const Judgement j = judgedSize(view); isBad(j)) return j;
  const Range ranges[] = {{"focal_px", view.focal_px, justAboveZero, farthest},
                          {"principal_x_px", view.principal_x_px, -farthest, farthest},
                          {"principal_y_px", view.principal_y_px, -farthest, farthest}};
  return outside(NADIR_BAD_CAMERA, ranges);
}

}  // namespace nadir::ground
