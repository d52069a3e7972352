#include "ground_report.hpp"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "chunks.hpp"
#include "evaluation.hpp"

namespace nadir::tool {

namespace {

using Json = nlohmann::ordered_json;

struct Heights {
  size_t seen = 0;
  uint16_t lowest = 0, median = 0, highest = 0;
};

Heights heightsOf(const Grid<uint16_t>& map) {
  std::vector<uint16_t> seen;
  std::copy_if(map.pixels.begin(), map.pixels.end(), std::back_inserter(seen), [](uint16_t v) { return v != 0; });
  if (seen.empty()) return {};
  std::sort(seen.begin(), seen.end());
  return {seen.size(), seen.front(), seen[seen.size() / 2], seen.back()};
}

double share(size_t part, size_t whole) {
  return whole == 0 ? 0 : static_cast<double>(part) / static_cast<double>(whole);
}

// Thousandths are far below what is measured here. Infinite and unknown numbers become null.
Json rounded(double value) { return std::isfinite(value) ? Json(std::round(value * 1000) / 1000) : Json(); }

Json cameraJson(const Camera& camera) {
  Json json;
  for (const CameraKey& key : cameraKeys()) {
    const double value = valueOf(camera, key);
    (*key.table ? json[key.table] : json)[key.name] = isCount(key) ? Json(static_cast<uint32_t>(value)) : Json(value);
  }
  return json;
}

Json mapJson(const GroundResult& result) {
  const Heights heights = heightsOf(result.map.heights);
  const MapFrame& frame = result.frame;
  const size_t cells = result.map.heights.pixels.size();
  return {{"width_cells", frame.cells.width},
          {"height_cells", frame.cells.height},
          {"cell_mm", frame.cells.cellSizeX},
          {"left_mm", rounded(frame.corner.x)},
          {"top_mm", rounded(frame.corner.y)},
          {"no_value", 0},
          {"percentile", result.rule.percentile},
          {"min_points", result.rule.minPoints},
          {"points_inside", result.map.pointsInside},
          {"seen_cells", heights.seen},
          {"seen_share", rounded(share(heights.seen, cells))},
          {"lowest_mm", heights.seen ? Json(heights.lowest) : Json()},
          {"median_mm", heights.seen ? Json(heights.median) : Json()},
          {"highest_mm", heights.seen ? Json(heights.highest) : Json()}};
}

Json planeJson(const std::optional<GroundPlane>& plane, size_t points) {
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

void addPlane(Table& table, const GroundResult& result) {
  table.gap();
  if (!result.plane) return table.heading("ground plane: none found near the camera file's", "");
  const GroundPlane& plane = *result.plane;
  const Camera& camera = result.camera;
  table.heading("ground plane fitted to the points", "");
  table.line("height", plane.heightMm, format("mm; the camera file says %.1f", camera.heightMm), 1);
  table.line("tilt", plane.tiltDeg, format("degrees; the camera file says %.2f", camera.tiltDeg), 2);
  table.line("pan", plane.panDeg, format("degrees; the camera file says %.2f", camera.panDeg), 2);
  table.line("rms", plane.rmsMm, format("mm, %.2f pixels of disparity", plane.rmsPx), 1);
  table.line("points on it", 100 * share(plane.inliers, result.points.size()), "%", 1);
}

}  // namespace

const char* nameOf(View view) { return view == View::left ? "left" : "right"; }

std::string groundTable(const GroundResult& result, const StageTimes& times) {
  const Heights heights = heightsOf(result.map.heights);
  const size_t cells = result.map.heights.pixels.size();
  Table table;
  table.heading("stage", "time");
  times.addTo(table);
  table.gap();
  table.line("pixels with a disparity", 100 * share(countKnown(result.disparity), result.disparity.pixels.size()), "%");
  table.line("points over the map", 100 * share(result.map.pointsInside, result.points.size()), "%");
  table.line("seen cells of " + sizeText(result.map.heights.width, result.map.heights.height),
             100 * share(heights.seen, cells), "%");
  table.line("highest cell", heights.seen ? heights.highest : std::nan(""), "mm", 0);
  addPlane(table, result);
  return table.text();
}

std::string groundJson(const GroundResult& result) {
  const size_t pixels = result.disparity.pixels.size(), known = countKnown(result.disparity);
  const Json json = {
      {"software", software()},
      {"camera", cameraJson(result.camera)},
      {"view", nameOf(result.view)},
      {"disparity", {{"pixels", pixels}, {"with_value", known}, {"share", rounded(share(known, pixels))}}},
      {"points", result.points.size()},
      {"map", mapJson(result)},
      {"ground_plane", planeJson(result.plane, result.points.size())}};
  return json.dump(2) + "\n";
}

}  // namespace nadir::tool
