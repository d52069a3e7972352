// docs/ground.schema.json describes what is written here.
#include <zlib.h>

#include <cmath>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "ground/known_values.hpp"
#include "tools/camera/camera_file.hpp"
#include "tools/pictures/chunks.hpp"
#include "tools/pictures/pictures.hpp"
#include "tools/report/ground_report.hpp"

namespace nadir::tool {

namespace {

using Json = nlohmann::ordered_json;

// Infinite and unknown numbers become null.
Json rounded(double value, double steps) {
  return std::isfinite(value) ? Json(std::round(value * steps) / steps) : Json();
}

// Thousandths are far below what is measured here.
Json rounded(double value) { return rounded(value, 1000); }

// To the square millimetre, so that an area is a number of cells.
Json area(size_t cells, const ground::MapFrame& frame) {
  return rounded(ground::squareMetres(cells, frame.cells), 1e6);
}

Json cameraJson(const Camera& camera) {
  Json json;
  for (const CameraKey& key : cameraKeys()) {
    const double value = valueOf(camera, key);
    (*key.table ? json[key.table] : json)[key.name] = isCount(key) ? Json(static_cast<uint32_t>(value)) : Json(value);
  }
  return json;
}

Json disparitiesJson(const Grid<float>& disparity) {
  const size_t pixels = disparity.pixels.size(), known = ground::countKnown(disparity);
  return {{"pixels", pixels}, {"with_value", known}, {"share", rounded(share(known, pixels))}};
}

Json mapJson(const GroundResult& result) {
  const ground::MapHeights heights = ground::heightsOf(result.map.heights);
  const ground::MapFrame& frame = result.frame;
  const size_t cells = result.map.heights.pixels.size(), seen = heights.known - result.map.filled;
  return {{"width_cells", frame.cells.width},
          {"height_cells", frame.cells.height},
          {"cell_mm", frame.cells.cellSizeX},
          {"left_mm", rounded(frame.corner.x)},
          {"top_mm", rounded(frame.corner.y)},
          {"no_value", 0},
          {"percentile", result.rule.percentile},
          {"min_points", result.rule.minPoints},
          {"points_inside", result.map.pointsInside},
          {"seen_cells", seen},
          {"seen_share", rounded(share(seen, cells))},
          {"filled_cells", result.map.filled},
          {"lowest_mm", heights.known ? Json(heights.lowest) : Json()},
          {"median_mm", heights.known ? Json(heights.median) : Json()},
          {"highest_mm", heights.known ? Json(heights.highest) : Json()}};
}

Json planeJson(const std::optional<ground::GroundPlane>& plane, size_t points) {
  if (!plane) return Json();
  return {{"height_mm", rounded(plane->heightMm)},
          {"tilt_deg", rounded(plane->tiltDeg)},
          {"pan_deg", rounded(plane->panDeg)},
          {"axis_below_horizon_deg", rounded(plane->axisBelowHorizonDeg)},
          {"roll_deg", rounded(plane->rollDeg)},
          {"rms_mm", rounded(plane->rmsMm)},
          {"rms_px", rounded(plane->rmsPx)},
          {"points", plane->inliers},
          {"share", rounded(share(plane->inliers, points))}};
}

Json ruleJson(const ground::RegionRule& rule) {
  return {{"min_height_mm", rule.minHeightMm},
          {"max_step_mm", rule.maxStepMm},
          {"min_area_m2", rounded(rule.minAreaM2, 1e6)}};
}

// The heights are null where there is no cell.
void addSet(Json& json, const ground::CellSet& set) {
  json["highest_mm"] = set.cells ? Json(set.highestMm) : Json();
  json["median_mm"] = set.cells ? Json(set.medianMm) : Json();
}

Json boxJson(const Rect_s32& box, const ground::MapFrame& frame) {
  const double cell = frame.cells.cellSizeX, left = frame.corner.x, top = frame.corner.y;
  return {{"left", rounded(left + box.x0 * cell)},
          {"top", rounded(top + box.y0 * cell)},
          {"right", rounded(left + box.x1 * cell)},
          {"bottom", rounded(top + box.y1 * cell)}};
}

Json regionJson(const ground::Region& region, const ground::MapFrame& frame) {
  Json json = {{"label", region.label},
               {"cells", region.set.cells},
               {"area_m2", area(region.set.cells, frame)},
               {"box_mm", boxJson(region.box, frame)},
               {"centre_mm", {{"x", rounded(region.centreXMm)}, {"y", rounded(region.centreYMm)}}}};
  addSet(json, region.set);
  return json;
}

Json sharedJson(const ground::SharedRegion& shared, const ground::MapFrame& frame) {
  Json json = {{"label", shared.label}, {"cells", shared.set.cells}, {"area_m2", area(shared.set.cells, frame)}};
  addSet(json, shared.set);
  return json;
}

Json cornersJson(const std::vector<Point_s32>& corners) {
  Json json = Json::array();
  for (const Point_s32& corner : corners) json.push_back({corner.x, corner.y});
  return json;
}

Json areaJson(const ground::Occupancy& o, const ground::MapFrame& frame) {
  Json json = {{"name", o.area.name}};
  if (o.area.unit == ground::AreaUnit::pixels) json["pixels"] = cornersJson(o.area.corners);
  json["ground_mm"] = cornersJson(o.place.ground);
  json["whole_on_map"] = o.place.wholeOnMap;
  json["cells"] = o.place.count;
  json["area_m2"] = area(o.place.count, frame);
  json["seen_cells"] = o.seen;
  json["covered_cells"] = o.covered.cells;
  json["covered_m2"] = area(o.covered.cells, frame);
  json["covered_share"] = rounded(share(o.covered.cells, o.place.count));
  addSet(json, o.covered);
  json["regions"] = Json::array();
  for (const ground::SharedRegion& shared : o.regions) json["regions"].push_back(sharedJson(shared, frame));
  return json;
}

// Null where regions were not asked for.
void addFindings(Json& json, const std::optional<Findings>& findings, const ground::MapFrame& frame) {
  json["region_rule"] = findings ? ruleJson(findings->rule) : Json();
  json["regions"] = findings ? Json::array() : Json();
  json["areas"] = findings ? Json::array() : Json();
  if (!findings) return;
  for (const ground::Region& region : findings->regions.list) json["regions"].push_back(regionJson(region, frame));
  for (const ground::Occupancy& o : findings->areas) json["areas"].push_back(areaJson(o, frame));
}

// To a tenth of a millimetre; null where nothing is tracked.
void addTrack(Json& json, const std::optional<ground::TrackedHeight>& track) {
  json["tracked_mm"] = track ? rounded(track->mm, 10) : Json();
  json["tracked_mm_per_s"] = track ? rounded(track->mmPerS, 10) : Json();
  json["tracked_deviation_mm"] = track ? rounded(track->deviationMm, 10) : Json();
}

Json watchedJson(const ground::Occupancy& o, const std::optional<ground::TrackedHeight>& track) {
  Json json = {{"name", o.area.name},
               {"seen_cells", o.seen},
               {"covered_cells", o.covered.cells},
               {"covered_share", rounded(share(o.covered.cells, o.place.count))}};
  addSet(json, o.covered);
  addTrack(json, track);
  return json;
}

Json areasJson(const GroundSetup& setup) {
  Json json = Json::array();
  for (size_t i = 0; i < setup.areas.size(); ++i)
    json.push_back({{"name", setup.areas[i].name},
                    {"ground_mm", cornersJson(setup.places[i].ground)},
                    {"cells", setup.places[i].count}});
  return json;
}

Json trackJson(const ground::TrackRule& rule) {
  return {
      {"noise_mm", rule.noiseMm}, {"acceleration_mm_per_s2", rule.accelerationMmPerS2}, {"patience_s", rule.patienceS}};
}

// By its pixels, so that a mask that was drawn anew is another one.
Json maskJson(const std::string& path) {
  if (path.empty()) return Json();
  const Grid<uint8_t> mask = readMask(path);
  const uLong sum = crc32_z(0, mask.pixels.data(), mask.pixels.size());
  return {{"width_px", mask.width}, {"height_px", mask.height}, {"crc32", format("%08lx", sum)}};
}

// The same for every way to write the path; a link at its end stays.
std::string absolutePath(const std::filesystem::path& path) {
  const std::filesystem::path folder = path.has_parent_path() ? path.parent_path() : ".";
  return (std::filesystem::weakly_canonical(folder) / path.filename()).string();
}

}  // namespace

std::string groundJson(const GroundResult& result) {
  Json json = {{"software", software()},
               {"camera", cameraJson(result.camera)},
               {"view", nameOf(result.view)},
               {"disparity", disparitiesJson(result.disparity)},
               {"points", result.points.size()},
               {"map", mapJson(result)},
               {"ground_plane", planeJson(result.plane, result.points.size())}};
  addFindings(json, result.findings, result.frame);
  return json.dump(2) + "\n";
}

std::string frameLine(const FrameReport& report, const GroundSetup& setup) {
  Json json = {{"frame", report.number}, {"name", report.name}, {"time_s", rounded(report.seconds, 1e6)}};
  if (!report.error.empty()) {
    json["error"] = report.error;
  } else {
    json["seen_cells"] = report.seenCells;
    json["regions"] = report.findings ? Json::array() : Json();
    json["areas"] = report.findings ? Json::array() : Json();
  }
  if (report.findings) {
    for (const ground::Region& region : report.findings->regions.list)
      json["regions"].push_back(regionJson(region, setup.frame));
    for (size_t i = 0; i < report.tracks.size(); ++i)
      json["areas"].push_back(watchedJson(report.findings->areas[i], report.tracks[i]));
  }
  return json.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::string sequenceJson(const GroundSetup& setup, const SequenceRule& rule, const FrameSource& source) {
  const GroundOptions& options = setup.options;
  const Json json = {{"software", software()},
                     {"first_left", absolutePath(source.left(0))},
                     {"first_right", absolutePath(source.right(0))},
                     {"fps", rule.framesPerSecond},
                     {"average_frames", rule.averageFrames},
                     {"track", trackJson(rule.track)},
                     {"maps", !rule.noMaps},
                     {"camera", cameraJson(setup.camera)},
                     {"view", nameOf(options.view)},
                     {"uniqueness", options.uniqueness},
                     {"post_processing", !options.noPostprocessing},
                     {"mask", maskJson(options.mask)},
                     {"percentile", options.rule.percentile},
                     {"min_points", options.rule.minPoints},
                     {"fill_holes_m2", options.fillHolesM2},
                     {"region_rule", options.noRegions ? Json() : ruleJson(regionRule(setup))},
                     {"areas", areasJson(setup)}};
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace nadir::tool
