// The members of summary.json in their order.
#include "tools/report/ground_json.hpp"

#include "ground/records/known_values.hpp"
#include "tools/pictures/chunks.hpp"
#include "tools/report/json_parts.hpp"
#include "tools/report/map_heights.hpp"

namespace nadir::tool {

namespace {

Json disparitiesJson(const Grid<float>& disparity) {
  const size_t pixels = disparity.pixels.size(), known = ground::countKnown(disparity);
  return {{"pixels", pixels}, {"with_value", known}, {"share", shareJson(known, pixels)}};
}

Json mapJson(const ground::Setup& setup, const ground::ElevationMap& map) {
  const MapHeights heights = heightsOf(map.heights);
  const ground::MapFrame& frame = setup.frame;
  const size_t cells = map.heights.pixels.size(), seen = heights.known - map.filled;
  return {{"width_cells", frame.cells.width},
          {"height_cells", frame.cells.height},
          {"cell_mm", frame.cells.cellSizeX},
          {"left_mm", measuredJson(frame.corner.x)},
          {"top_mm", measuredJson(frame.corner.y)},
          {"no_value", 0},
          {"percentile", setup.settings.cells.percentile},
          {"min_points", setup.settings.cells.minPoints},
          {"points_inside", map.pointsInside},
          {"seen_cells", seen},
          {"seen_share", shareJson(seen, cells)},
          {"filled_cells", map.filled},
          {"lowest_mm", heights.known ? Json(heights.lowest) : Json()},
          {"median_mm", heights.known ? Json(heights.median) : Json()},
          {"highest_mm", heights.known ? Json(heights.highest) : Json()}};
}

Json planeJson(const std::optional<ground::GroundPlane>& plane, size_t points) {
  if (!plane) return Json();
  return {{"height_mm", measuredJson(plane->heightMm)},
          {"tilt_deg", measuredJson(plane->tiltDeg)},
          {"pan_deg", measuredJson(plane->panDeg)},
          {"axis_below_horizon_deg", measuredJson(plane->axisBelowHorizonDeg)},
          {"roll_deg", measuredJson(plane->rollDeg)},
          {"rms_mm", measuredJson(plane->rmsMm)},
          {"rms_px", measuredJson(plane->rmsPx)},
          {"points", plane->inliers},
          {"share", shareJson(plane->inliers, points)}};
}

Json sharedJson(const ground::SharedRegion& shared, const ground::MapFrame& frame) {
  Json json = {
      {"label", shared.label}, {"cells", shared.set.cells}, {"area_m2", squareMetresJson(shared.set.cells, frame)}};
  addHeights(json, shared.set);
  return json;
}

Json areaJson(const ground::PlacedArea& area, const ground::Occupancy& o, const ground::MapFrame& frame) {
  Json json = {{"name", area.area.name}};
  if (area.area.unit == ground::AreaUnit::pixels) json["pixels"] = cornersJson(area.area.corners);
  json["ground_mm"] = cornersJson(area.ground);
  json["whole_on_map"] = area.wholeOnMap;
  json["cells"] = area.count;
  json["area_m2"] = squareMetresJson(area.count, frame);
  json["seen_cells"] = o.seen;
  json["covered_cells"] = o.covered.cells;
  json["covered_m2"] = squareMetresJson(o.covered.cells, frame);
  json["covered_share"] = shareJson(o.covered.cells, area.count);
  addHeights(json, o.covered);
  json["regions"] = Json::array();
  for (const ground::SharedRegion& shared : o.regions) json["regions"].push_back(sharedJson(shared, frame));
  return json;
}

// All three are null where regions were not asked for.
void addFindings(Json& json, const ground::Setup& setup, const std::optional<ground::Findings>& findings) {
  json["region_rule"] = findings ? ruleJson(*setup.settings.regions) : Json();
  json["regions"] = findings ? Json::array() : Json();
  json["areas"] = findings ? Json::array() : Json();
  if (!findings) return;
  for (const ground::Region& region : findings->regions.list)
    json["regions"].push_back(regionJson(region, setup.frame));
  for (size_t i = 0; i < setup.areas.size(); ++i)
    json["areas"].push_back(areaJson(setup.areas[i], findings->areas[i], setup.frame));
}

}  // namespace

std::string groundJson(const ground::Setup& setup, const ground::Result& result, const Warnings& warnings) {
  Json json = {{"schema", resultSchema},
               {"software", software()},
               {"warnings", warningsJson(warnings)},
               {"camera", cameraJson(setup.camera)},
               {"view", nameOf(setup.settings.view)},
               {"disparity", disparitiesJson(result.disparity)},
               {"points", result.points.size()},
               {"map", mapJson(setup, result.map)},
               {"ground_plane", planeJson(result.plane, result.points.size())}};
  addFindings(json, setup, result.findings);
  return json.dump(2) + "\n";
}

}  // namespace nadir::tool
