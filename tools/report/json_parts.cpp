// Cameras, rules, corners, regions and heights as JSON.
#include "tools/report/json_parts.hpp"

#include "tools/base/statistics.hpp"
#include "tools/camera/camera_file.hpp"

namespace nadir::tool {

namespace {

Json boxJson(const Rect_s32& box, const ground::MapFrame& frame) {
  const double cell = frame.cells.cellSizeX, left = frame.corner.x, top = frame.corner.y;
  return {{"left", measuredJson(left + box.x0 * cell)},
          {"top", measuredJson(top + box.y0 * cell)},
          {"right", measuredJson(left + box.x1 * cell)},
          {"bottom", measuredJson(top + box.y1 * cell)}};
}

}  // namespace

Json measuredJson(double value) { return roundedNumber(value, 1000); }

Json squareMetresJson(size_t cells, const ground::MapFrame& frame) {
  return roundedNumber(ground::squareMetres(cells, frame.cells), 1e6);
}

Json shareJson(size_t part, size_t whole) { return measuredJson(shareOf(part, whole, 0)); }

Json cameraJson(const ground::Camera& camera) {
  Json json;
  for (const CameraKey& key : cameraKeys()) {
    const double value = valueOf(camera, key);
    (*key.table ? json[key.table] : json)[key.name] = isCount(key) ? Json(static_cast<uint32_t>(value)) : Json(value);
  }
  return json;
}

Json ruleJson(const ground::RegionRule& rule) {
  return {{"min_height_mm", rule.minHeightMm},
          {"max_step_mm", rule.maxStepMm},
          {"min_area_m2", roundedNumber(rule.minAreaM2, 1e6)}};
}

Json cornersJson(const std::vector<Point_s32>& corners) {
  Json json = Json::array();
  for (const Point_s32& corner : corners) json.push_back({corner.x, corner.y});
  return json;
}

Json regionJson(const ground::Region& region, const ground::MapFrame& frame) {
  Json json = {{"label", region.label},
               {"cells", region.set.cells},
               {"area_m2", squareMetresJson(region.set.cells, frame)},
               {"box_mm", boxJson(region.box, frame)},
               {"centre_mm", {{"x", measuredJson(region.centreXMm)}, {"y", measuredJson(region.centreYMm)}}}};
  addHeights(json, region.set);
  return json;
}

Json warningsJson(const Warnings& warnings) {
  Json json = Json::array();
  for (const Warning& warning : warnings) {
    Json numbers = Json::object();
    for (const auto& [name, value] : warning.numbers) numbers[name] = measuredJson(value);
    json.push_back({{"id", warning.id}, {"sentence", warning.sentence}, {"numbers", numbers}});
  }
  return json;
}

void addHeights(Json& json, const ground::CellSet& set) {
  json["highest_mm"] = set.cells ? Json(set.highestMm) : Json();
  json["median_mm"] = set.cells ? Json(set.medianMm) : Json();
}

}  // namespace nadir::tool
