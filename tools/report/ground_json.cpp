// The members of summary.json in their order.
#include "tools/report/ground_json.hpp"

#include "tools/base/known_values.hpp"
#include "tools/pictures/chunks.hpp"
#include "tools/report/json_parts.hpp"
#include "tools/report/map_heights.hpp"

namespace nadir::tool {

namespace {

Json disparitiesJson(const NadirPixelCounts& counts, size_t pixels) {
  return {{"pixels", pixels}, {"with_value", counts.value}, {"share", shareJson(counts.value, pixels)}};
}

// Null where the disparities were given.
Json matchingJson(const Road& road) {
  if (!road.options.disparity.empty()) return Json();
  const NadirSettings& s = road.settings;
  return {{"uniqueness", s.uniqueness}, {"check", wordOf(checkWords(), s.check)},
          {"support", s.support},       {"refine", wordOf(refineWords(), s.refine)},
          {"range_px", s.range},        {"post_processing", s.postprocess != 0}};
}

Json mapJson(const Road& road, const NadirFindings& findings) {
  const MapHeights heights = heightsOf(gridOf<uint16_t>(findings.heights));
  const NadirPlane& map = findings.heights;
  const size_t cells = size_t{map.width} * map.height;
  return {{"width_cells", map.width},
          {"height_cells", map.height},
          {"cell_mm", road.context.mapParams.cellSizeX},
          {"left_mm", measuredJson(road.context.lowerLeft.x)},
          {"top_mm", measuredJson(road.context.lowerLeft.y)},
          {"no_value", 0},
          {"percentile", road.settings.percentile},
          {"min_points", road.settings.min_points},
          {"points_inside", findings.points_inside},
          {"seen_cells", findings.seen_cells},
          {"seen_share", shareJson(findings.seen_cells, cells)},
          {"filled_cells", findings.filled_cells},
          {"lowest_mm", heights.known ? Json(heights.lowest) : Json()},
          {"median_mm", heights.known ? Json(heights.median) : Json()},
          {"highest_mm", heights.known ? Json(heights.highest) : Json()}};
}

Json planeJson(const std::optional<NadirGroundPlane>& plane, size_t points) {
  if (!plane) return Json();
  return {{"height_mm", measuredJson(plane->height_mm)},
          {"tilt_deg", measuredJson(plane->tilt_deg)},
          {"pan_deg", measuredJson(plane->pan_deg)},
          {"axis_below_horizon_deg", measuredJson(plane->axis_below_horizon_deg)},
          {"roll_deg", measuredJson(plane->roll_deg)},
          {"rms_mm", measuredJson(plane->rms_mm)},
          {"rms_px", measuredJson(plane->rms_px)},
          {"points", plane->inliers},
          {"share", shareJson(plane->inliers, points)}};
}

Json sharedJson(const NadirShare& shared, const StereoCtx& context) {
  Json json = {{"label", shared.label}, {"cells", shared.cells}, {"area_m2", squareMetresJson(shared.cells, context)}};
  addHeights(json, shared.cells, shared.highest_mm, shared.median_mm);
  return json;
}

Json areaJson(const WatchedArea& area, const NadirOccupancy& o, const NadirShare* shares, const StereoCtx& context) {
  Json json = {{"name", area.area.name}};
  if (area.area.unit == AreaUnit::pixels) json["pixels"] = cornersJson(area.area.corners);
  json["ground_mm"] = cornersJson(area.ground);
  addRule(json, area.area);
  json["whole_on_map"] = area.wholeOnMap;
  json["cells"] = area.cells;
  json["area_m2"] = squareMetresJson(area.cells, context);
  json["seen_cells"] = o.seen_cells;
  json["covered_cells"] = o.covered_cells;
  json["covered_m2"] = squareMetresJson(o.covered_cells, context);
  json["covered_share"] = shareJson(o.covered_cells, area.cells);
  addHeights(json, o.covered_cells, o.highest_mm, o.median_mm);
  json["regions"] = Json::array();
  for (uint32_t i = 0; i < o.share_count; ++i)
    json["regions"].push_back(sharedJson(shares[o.first_share + i], context));
  return json;
}

// All three are null where regions were not asked for.
void addFindings(Json& json, const Road& road, const NadirFindings& findings) {
  const bool asked = road.findsRegions();
  json["region_rule"] = asked ? ruleJson(road.settings) : Json();
  json["regions"] = asked ? Json::array() : Json();
  json["areas"] = asked ? Json::array() : Json();
  for (uint32_t i = 0; i < findings.region_count; ++i)
    json["regions"].push_back(regionJson(findings.regions[i], road.context));
  for (uint32_t i = 0; i < findings.area_count; ++i)
    json["areas"].push_back(areaJson(road.areas[i], findings.areas[i], findings.shares, road.context));
}

// Null where the ground was not looked for elsewhere.
Json foundGroundJson(const NadirTrust& t) {
  if (!t.searched) return Json();
  return {{"height_mm", measuredJson(t.found_height_mm)},
          {"tilt_deg", measuredJson(t.found_tilt_deg)},
          {"pan_deg", measuredJson(t.found_pan_deg)},
          {"share", measuredJson(t.found_share)}};
}

// What could not be measured is null.
Json trustJson(const NadirTrust& t) {
  return {{"dark_left_share", measuredJson(t.dark_left)},
          {"dark_right_share", measuredJson(t.dark_right)},
          {"overexposed_left_share", measuredJson(t.clipped_left)},
          {"overexposed_right_share", measuredJson(t.clipped_right)},
          {"matched_share", measuredJson(t.matched)},
          {"value_share", measuredJson(t.value)},
          {"range_end_share", measuredJson(t.range_end)},
          {"cut_off_share", measuredJson(t.cut_off)},
          {"on_ground_share", measuredJson(t.on_ground)},
          {"below_ground_share", measuredJson(t.below_ground)},
          {"mount_drift", driftJson(t)},
          {"found_ground", foundGroundJson(t)},
          {"map_seen_share", measuredJson(t.map_seen)},
          {"least_top_mm", measuredJson(t.least_top_mm)},
          {"greatest_top_mm", measuredJson(t.greatest_top_mm)}};
}

}  // namespace

std::string groundJson(const Road& road, const PairResult& result, const Warnings& warnings) {
  const NadirFindings& findings = result.findings;
  Json json = {{"schema", resultSchema},
               {"software", software()},
               {"warnings", warningsJson(warnings)},
               {"trust", trustJson(*findings.trust)},
               {"camera", cameraJson(road.camera)},
               {"view", nameOf(road.options.match.view)},
               {"matching", matchingJson(road)},
               {"disparity", disparitiesJson(*findings.pixels, result.picture.pixels.size())},
               {"points", findings.points},
               {"map", mapJson(road, findings)},
               {"ground_plane", planeJson(result.plane, findings.points)}};
  addFindings(json, road, findings);
  return json.dump(2) + "\n";
}

}  // namespace nadir::tool
